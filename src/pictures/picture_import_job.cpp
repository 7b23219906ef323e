#include "picture_import_job.hpp"

#include "picture_import.hpp"
#include "picture_player.hpp"

#include <algorithm>

namespace zevran::pictures {

namespace {

image::Failure sentence(std::string text) { return {image::Reason::Text, {std::move(text)}, nullptr}; }

RowImportError stopped(ImportStop stop, std::int64_t frame, std::string file, const image::Failure& cause)
{
    RowImportError error(stop, cause);
    error.frame = frame;
    error.file = std::move(file);
    return error;
}

}  // namespace

RowImportError::RowImportError(ImportStop stopReason, const image::Failure& cause)
    : image::WorkshopError(cause), stop(stopReason)
{
}

ImportableRow importableRow(const PictureEntry& entry, const std::string& colourTablePath)
{
    try {
        ImportableRow row{entry, frameGeometry(entry), {}};
        row.colours = coloursForDepth(row.geometry.depth, colourTablePath);
        const FrameGeometry& geometry = row.geometry;
        shownImageBytes({frameAddress(geometry, 0), geometry.width, geometry.height, geometry.depth});
        return row;
    } catch (const PictureImportError& error) {
        RowImportError refused(ImportStop::RowRefused, image::failureOf(error));
        refused.refusal = error;
        throw refused;
    } catch (const std::exception& error) {
        throw RowImportError(ImportStop::RowRefused, image::failureOf(error));
    }
}

std::vector<FramePicture> onePicture(const ImportableRow& row, std::int64_t frame, const std::string& file)
{
    try {
        requireFrameOfRow(row.geometry, frame);
    } catch (const PictureImportError& error) {
        RowImportError refused = stopped(ImportStop::NoSuchFrame, frame, file, image::failureOf(error));
        refused.refusal = error;
        throw refused;
    }
    return {{frame, file}};
}

std::vector<FramePicture> folderPictures(const ImportableRow& row, const std::string& folder)
{
    if (row.geometry.frames <= 0) {
        RowImportError none(ImportStop::NoFrames,
                            sentence("the row has " + std::to_string(row.geometry.frames) + " frames"));
        none.frames = row.geometry.frames;
        throw none;
    }
    const std::string slashed = folder.empty() || folder.back() != '/' ? folder + '/' : folder;
    std::vector<FramePicture> pictures;
    for (std::int64_t frame = 0; frame < row.geometry.frames; ++frame) {
        const auto file = exportedFramePicture(slashed, row.entry.name, frame);
        if (!file) {
            const std::string path = pictureFramePath(slashed, row.entry.name, frame);
            throw stopped(ImportStop::PictureMissing, frame, path, sentence(path + " (or .png) is missing"));
        }
        pictures.push_back({frame, *file});
    }
    return pictures;
}

RowImportResult importPictures(std::span<const std::uint8_t> image, const ImportableRow& row,
                               const std::vector<FramePicture>& pictures, const PictureReader& read)
{
    RowImport import(image, row.geometry, row.colours);
    RowImportResult result;
    for (const FramePicture& picture : pictures) {
        PictureGrid grid;
        try {
            grid = read(picture.file, row.colours);
        } catch (const std::exception& error) {
            throw stopped(ImportStop::Unreadable, picture.frame, picture.file, image::failureOf(error));
        }
        try {
            result.unstoredPixels.push_back(import.importFrame(picture.frame, grid));
        } catch (const PictureImportError& error) {
            RowImportError refused = stopped(ImportStop::Refused, picture.frame, picture.file, image::failureOf(error));
            refused.refusal = error;
            throw refused;
        }
    }
    result.regions = import.regions();
    result.changedBytes = changedByteCount(image, result.regions);
    return result;
}

std::int64_t changedByteCount(std::span<const std::uint8_t> image, std::vector<image::Region> regions)
{
    std::sort(regions.begin(), regions.end(),
              [](const image::Region& a, const image::Region& b) { return a.first < b.first; });
    std::int64_t changed = 0;
    std::int64_t counted = -1;  // the last address counted
    for (const image::Region& region : regions)
        for (std::int64_t at = std::max<std::int64_t>(region.first, counted + 1); at <= region.last; ++at) {
            if (region.bytes[static_cast<std::size_t>(at - region.first)] != image[static_cast<std::size_t>(at)])
                ++changed;
            counted = at;
        }
    return changed;
}

}  // namespace zevran::pictures
