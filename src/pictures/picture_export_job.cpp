#include "picture_export_job.hpp"

#include "image/output_file.hpp"
#include "picture_player.hpp"
#include "pixel_decode.hpp"

#include <algorithm>

namespace zevran::pictures {

FrameExport exportFrame(const image::PhoneDocument& document, const FrameGeometry& geometry, std::int64_t frame,
                        const std::string& output, const std::string& colourTablePath)
{
    if (bmpBitsPerPixel(geometry.depth) == 0) return FrameExport::DepthNotDrawable;
    document.refuseAsOutput(output);
    const std::int64_t address = frameAddress(geometry, frame);
    image::writeThroughTemporary(output, [&](const std::string& path) {
        decodePreviewFrame(document.bytes(), geometry, address, path, colourTablePath);
    });
    return FrameExport::Written;
}

ExportTally exportRows(const image::PhoneDocument& document, const std::vector<PictureEntry>& rows,
                       const std::string& folder, const std::string& colourTablePath, const ExportListener& listener)
{
    const std::string slashed = folder.empty() || folder.back() != '/' ? folder + '/' : folder;
    ExportTally tally;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        const PictureEntry& row = rows[r];
        try {
            const FrameGeometry geometry = frameGeometry(row);
            if (listener.rowStarted) listener.rowStarted(r, geometry.frames);
            for (std::int64_t frame = 0; frame < geometry.frames; ++frame) {
                const std::string output = pictureFramePath(slashed, row.name, frame);
                const FrameExport outcome = exportFrame(document, geometry, frame, output, colourTablePath);
                if (outcome == FrameExport::Written) ++tally.written;
                else if (std::find(tally.skippedRows.begin(), tally.skippedRows.end(), row.number) ==
                         tally.skippedRows.end())
                    tally.skippedRows.push_back(row.number);
                if (listener.frameDone) listener.frameDone(r, frame, outcome);
            }
        } catch (const std::exception& error) {
            throw RowExportError(r, tally, image::failureOf(error));
        }
        if (listener.rowDone) listener.rowDone(r);
    }
    return tally;
}

RowsPatch rowsPatch(const image::PhoneDocument& document, const std::vector<PictureEntry>& rows)
{
    RowsPatch patch;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::optional<image::Region> region;
        try {
            region = picturePatchRegion(document.state(), rows[r]);
        } catch (const std::exception& error) {
            throw RowExportError(r, {}, image::failureOf(error));
        }
        if (region) patch.regions.push_back(std::move(*region));
        else patch.emptyRows.push_back(r);
    }
    return patch;
}

}  // namespace zevran::pictures
