// Importing the user's pictures into the frames of one picture row: the job the
// picture tab's two import items and zevran-cli import-picture both run. The row is
// refused before any file is looked for, every frame's picture must be there before
// any is read, and the first picture that cannot be read or does not fit stops the
// import with nothing written.
#pragma once

#include "image/failure.hpp"
#include "image/patch_writer.hpp"
#include "picture_encode.hpp"
#include "picture_frames.hpp"
#include "picture_table.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::pictures {

// A row ready to take pictures: its frames and the colours its depth encodes to.
struct ImportableRow {
    PictureEntry entry;
    FrameGeometry geometry;
    ColourTable colours;
};

// One picture file and the frame it goes into (0 for the first).
struct FramePicture {
    std::int64_t frame = 0;
    std::string file;
};

// Where an import stopped, with what it names; the front ends word it.
enum class ImportStop {
    RowRefused,      // the row's depth or size cannot be imported: refusal or detail
    NoSuchFrame,     // frame is not one of the row's: refusal
    NoFrames,        // the row has no frames at all: frames
    PictureMissing,  // frame, file: neither NAME-NN.bmp nor .png in the folder
    Unreadable,      // frame, file, detail: the reader's words
    Refused,         // frame, file, refusal: the picture does not fit the frame
};

// Its failure (what()) is the cause's: the reader's, the table's, the encoder's.
class RowImportError : public image::WorkshopError {
public:
    RowImportError(ImportStop stop, const image::Failure& cause);

    ImportStop stop = ImportStop::RowRefused;
    std::int64_t frame = 0;   // 0 for the first
    std::int64_t frames = 0;  // the row's frame count, for NoFrames
    std::string file;
    std::optional<PictureImportError> refusal;  // the encoder's reason and values
};

// The row read as numbers and its colours from `colourTablePath` (16.dat), refused
// (RowRefused) when no picture can be imported into it.
ImportableRow importableRow(const PictureEntry& entry, const std::string& colourTablePath);

// Frame `frame` of the row on its own (NoSuchFrame past its frames).
std::vector<FramePicture> onePicture(const ImportableRow& row, std::int64_t frame, const std::string& file);
// Every frame's picture from an export folder (NAME-01.bmp, ..., or .png): NoFrames,
// PictureMissing.
std::vector<FramePicture> folderPictures(const ImportableRow& row, const std::string& folder);

// What the import makes of the image: one region per frame (RowImport::regions), the
// pixels no image bit can hold, frame by frame, and the image bytes it changes.
struct RowImportResult {
    std::vector<image::Region> regions;
    std::vector<std::int64_t> unstoredPixels;  // per picture, in the order given
    std::int64_t changedBytes = 0;
};

using PictureReader = std::function<PictureGrid(const std::string& file, const ColourTable& colours)>;

// Reads (through `read`, which throws when it cannot) and encodes every picture into
// its frame against `image`, which is not changed: Unreadable, Refused.
RowImportResult importPictures(std::span<const std::uint8_t> image, const ImportableRow& row,
                               const std::vector<FramePicture>& pictures, const PictureReader& read);

// Image bytes that the regions change, each address counted once.
std::int64_t changedByteCount(std::span<const std::uint8_t> image, std::vector<image::Region> regions);

}  // namespace zevran::pictures
