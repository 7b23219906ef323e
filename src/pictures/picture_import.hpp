// Pictures imported into the frames of one picture row, and the export folder's
// picture of each frame.
#pragma once

#include "image/patch_writer.hpp"
#include "picture_encode.hpp"
#include "picture_frames.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::pictures {

// The frames of one row, imported one after another: each against the image as the
// frames before it left it, so frames that share bytes compose as they would in the
// image. The image itself is not changed.
class RowImport {
public:
    RowImport(std::span<const std::uint8_t> image, const FrameGeometry& geometry, const ColourTable& colours);

    // Encodes the picture into frame `frame` (frame k lies k frame sizes after the
    // row's address; 0 is the first). Throws PictureImportError, and keeps nothing of
    // the frame. Returns how many of the picture's pixels no image bit can hold.
    std::int64_t importFrame(std::int64_t frame, const PictureGrid& picture);

    // The pixels of all frames imported that no image bit can hold (see EncodedFrame).
    std::int64_t unstoredPixels() const { return m_unstoredPixels; }

    // One region per imported frame, in the order imported: from the first to the last
    // image byte that the frame's picture shows, holding the image's bytes after the
    // whole import.
    std::vector<image::Region> regions() const;

    // The frame layout of frame `frame` of the row.
    FrameLayout layoutOf(std::int64_t frame) const;

private:
    std::span<const std::uint8_t> m_image;
    FrameGeometry m_geometry;
    ColourTable m_colours;
    std::vector<image::Region> m_regions;
    std::int64_t m_unstoredPixels = 0;
};

// Throws PictureImportError (NoSuchFrame) unless `frame` (0 for the first) is one of
// the row's frames: the player may step past the last to look, but an import only
// goes into a frame of the row.
void requireFrameOfRow(const FrameGeometry& geometry, std::int64_t frame);

// The picture of frame `frameIndex` in an export folder (ending in "/"): NAME-NN.bmp as
// the export writes it, else NAME-NN.png; nullopt when neither is a file there.
std::optional<std::string> exportedFramePicture(std::string_view folder, std::string_view name,
                                                std::int64_t frameIndex);

}  // namespace zevran::pictures
