// picture, export-pictures and picture-patch: the picture tab's jobs from the command line.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"
#include "picture_rows.hpp"

#include "image/file_io.hpp"
#include "image/patch_writer.hpp"
#include "image/phone_file.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_player.hpp"
#include "pictures/picture_table.hpp"
#include "pictures/pixel_decode.hpp"

#include <algorithm>
#include <iostream>
#include <set>
#include <sstream>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::pictures;

// Decodes one frame as the preview does: depth 1 through the mono display memory.
bool decodeFrame(const ImageState& state, const PictureEntry& row, std::int64_t frame, const std::string& path,
                 const Context& context, bool monoAllowed)
{
    const FrameGeometry geometry = frameGeometry(row);
    const std::int64_t address = frameAddress(geometry, frame);
    const std::string colourTable = context.home + "/16.dat";
    if (monoAllowed) return decodePreviewFrame(state.FirmwareImage, geometry, address, path, colourTable);
    return DecodePictureFrame(state.FirmwareImage, address, path, geometry.width, geometry.height, geometry.depth,
                              coloursForDepth(geometry.depth, colourTable));
}

int runPicture(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--frame", "-o"}, {"--recompute-size"});
    args.expectPositional(3, "picture FILE TABLE ROW [--frame K] [--recompute-size] -o OUT.bmp");
    if (!args.has("-o")) throw UsageError("picture needs -o OUT.bmp");
    const ImageState state = openPhoneFile(args.positional()[0]);
    const auto rows = openPictureTable(args.positional()[1], args.has("--recompute-size"));
    const PictureEntry& row = pictureRow(rows, numberArgument(args.positional()[2], "ROW"), args.positional()[1]);
    const std::int64_t frame = args.has("--frame") ? numberArgument(*args.value("--frame"), "--frame") : 0;
    if (!decodeFrame(state, row, frame, *args.value("-o"), context, true))
        throw std::runtime_error(std::string(kWrongFormatText) + " (row " + row.number + ", depth " + row.depth + ")");
    return 0;
}

int runExportPictures(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--to"}, {"--recompute-size"});
    args.expectPositional(2, "export-pictures FILE TABLE --to DIR");
    if (!args.has("--to")) throw UsageError("export-pictures needs --to DIR");
    std::string folder = *args.value("--to");
    if (folder.empty() || folder.back() != '/') folder += '/';
    const ImageState state = openPhoneFile(args.positional()[0]);
    for (const PictureEntry& row : openPictureTable(args.positional()[1], args.has("--recompute-size"))) {
        const FrameGeometry geometry = frameGeometry(row);
        bool refused = false;
        for (std::int64_t j = 0; j < geometry.frames && !refused; ++j)
            refused = !decodeFrame(state, row, j, pictureFramePath(folder, row.name, j), context, false);
        // The export writes BMPs only for the depths it converts; mono pictures are previewed.
        if (refused)
            std::cerr << "zevran-cli: row " << row.number << " (" << row.name << "): " << kWrongFormatText
                      << ", depth " << row.depth << " is not exported\n";
    }
    return 0;
}

int runPicturePatch(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--rows", "-o"}, {"--recompute-size"});
    args.expectPositional(2, "picture-patch FILE TABLE --rows 001,003 -o OUT.s3");
    if (!args.has("--rows") || !args.has("-o")) throw UsageError("picture-patch needs --rows and -o");
    const ImageState state = openPhoneFile(args.positional()[0]);
    const auto rows = openPictureTable(args.positional()[1], args.has("--recompute-size"));
    const std::set<long> wanted = numberListArgument(*args.value("--rows"), "--rows");
    for (long number : wanted) pictureRow(rows, number, args.positional()[1]);
    std::vector<Region> regions;
    for (long number : wanted) {
        const PictureEntry& row = rows[static_cast<std::size_t>(number) - 1];
        auto region = picturePatchRegion(state, row);
        if (region) regions.push_back(std::move(*region));
        else std::cerr << "zevran-cli: row " << row.number << " (" << row.name << ") holds no bytes and is skipped\n";
    }
    if (regions.empty()) throw std::runtime_error("none of the rows holds any bytes; no patch was written");
    writeSRecordPatch(*args.value("-o"), regions);
    return 0;
}

}  // namespace

std::vector<Command> pictureCommands()
{
    return {
        {"picture", "FILE TABLE ROW [--frame K] [--recompute-size] -o OUT.bmp",
         "one frame of a picture table's row as a BMP, as the preview shows it", runPicture},
        {"export-pictures", "FILE TABLE --to DIR [--recompute-size]",
         "every frame of every row as DIR/NAME-NN.bmp; mono rows are refused", runExportPictures},
        {"picture-patch", "FILE TABLE --rows 001,003 -o OUT.s3 [--recompute-size]",
         "an S-record patch of the named rows, all their frames", runPicturePatch},
    };
}

}  // namespace zevran::cli
