// Exporting the frames of picture rows as the user's picture files: the job of the
// picture tab's two export items and of zevran-cli picture and export-pictures. Each
// frame is written as the preview draws it (mono pictures through the display memory),
// through a temporary file and never over the phone file, so every export imports back.
#pragma once

#include "image/failure.hpp"
#include "image/phone_document.hpp"
#include "picture_frames.hpp"
#include "picture_table.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zevran::pictures {

enum class FrameExport {
    Written,
    DepthNotDrawable,  // the preview draws no picture of the row's depth: nothing written
};

// Frame `frame` (0 for the first) of a row of `geometry` written to `output`; throws as
// the decoders and writers do, and FileError for the phone file itself.
FrameExport exportFrame(const image::PhoneDocument& document, const FrameGeometry& geometry, std::int64_t frame,
                        const std::string& output, const std::string& colourTablePath);

// What an export of rows wrote so far.
struct ExportTally {
    int written = 0;                       // picture files
    std::vector<std::string> skippedRows;  // numbers of rows of a depth no picture is drawn of
};

// Where an export of rows stands, for a progress bar and a window that stays alive.
struct ExportListener {
    std::function<void(std::size_t row, std::int64_t frames)> rowStarted;
    std::function<void(std::size_t row, std::int64_t frame, FrameExport outcome)> frameDone;
    std::function<void(std::size_t row)> rowDone;
};

// A row that failed (its geometry, a frame's file): the cause's failure, and what was
// written before it.
class RowExportError : public image::WorkshopError {
public:
    RowExportError(std::size_t rowIndex, ExportTally written, const image::Failure& cause)
        : image::WorkshopError(cause), row(rowIndex), tally(std::move(written))
    {
    }
    std::size_t row;
    ExportTally tally;
};

// Every frame of every row as FOLDER/NAME-NN.bmp (`folder` with or without its "/").
ExportTally exportRows(const image::PhoneDocument& document, const std::vector<PictureEntry>& rows,
                       const std::string& folder, const std::string& colourTablePath,
                       const ExportListener& listener = {});

// The bytes of every row, all frames together, at the rows' own addresses: the picture
// patch of the rows. Rows that hold no bytes are left out and named by their index, so
// the patch still ends in its S7 line. A row that cannot be read throws RowExportError.
struct RowsPatch {
    std::vector<image::Region> regions;
    std::vector<std::size_t> emptyRows;
};
RowsPatch rowsPatch(const image::PhoneDocument& document, const std::vector<PictureEntry>& rows);

}  // namespace zevran::pictures
