// Where the frames of a picture lie, and the files and patch regions made of them.
#pragma once

#include "image/firmware_image.hpp"
#include "image/patch_writer.hpp"
#include "picture_table.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zevran::pictures {

// A picture row read as numbers.
struct FrameGeometry {
    std::int64_t start = 0;      // the first frame's offset in the image
    std::int64_t frameSize = 0;  // bytes per frame
    std::int64_t frames = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    int depth = 0;
};

// Reads a row's cells the way every picture command reads them: the address in hex
// ("0X" reads as zeros), the others by their leading number. Throws image::HexOverflow
// or PictureTableError for numbers that do not fit.
FrameGeometry frameGeometry(const PictureEntry& row);

// Frame k lies k frame sizes after the start; k may step outside the picture.
// True when a frame of `geometry` at `address` reaches past an image of `imageSize`
// bytes (or starts before it): the bytes it lacks decode as black.
bool frameRunsPastImage(const FrameGeometry& geometry, std::int64_t address, std::size_t imageSize);

std::int64_t frameAddress(const FrameGeometry& geometry, std::int64_t k);

// folder + the trimmed name + "-" + the frame's ordinal (at least two digits) + ".bmp".
// The folder ends in "/", as the folder chooser returns it.
std::string pictureFramePath(std::string_view folder, std::string_view name, std::int64_t frameIndex);

inline constexpr int kMessageEmptyRegion = 1;
inline constexpr std::int64_t kMostPatchFrames = 32767;

// The region of all frames of a row, bytes taken from the image as it stands;
// nullopt for a row of length 0 (message 1). Throws std::out_of_range naming the row
// for more than 32767 frames, a negative length, or bytes outside the image, and
// image::HexOverflow for an address above 7FFFFFFF.
std::optional<image::Region> picturePatchRegion(const image::ImageState& state, const PictureEntry& row);

}  // namespace zevran::pictures
