// picture, export-pictures and picture-patch: the picture tab's jobs from the command line.
#include "cli_args.hpp"
#include "command.hpp"
#include "output_file.hpp"
#include "phone_argument.hpp"
#include "picture_rows.hpp"

#include "image/file_io.hpp"
#include "image/output_file.hpp"
#include "image/patch_writer.hpp"
#include "image/phone_file.hpp"
#include "pictures/picture_export_job.hpp"
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

// A depth the preview cannot draw, said in English (the window shows its fixed text).
std::string undrawableDepth(const PictureEntry& row)
{
    return placeOf(row) + ": depth " + row.depth + " cannot be drawn (depths 1, 4, 8, 12, 16 and 24 can)";
}

int runPicture(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--frame", "-o"}, {"--recompute-size"});
    args.expectPositional(3, "picture FILE TABLE ROW [--frame K] [--recompute-size] -o OUT.bmp");
    if (!args.has("-o")) throw UsageError("picture needs -o OUT.bmp");
    const std::int64_t frameNumber = frameNumberArgument(args);
    const image::PhoneDocument document = openPhoneFile(args.positional()[0]);
    const auto rows = openPictureTable(args.positional()[1], args.has("--recompute-size"));
    const PictureEntry& row = pictureRow(rows, numberArgument(args.positional()[2], "ROW"), args.positional()[1]);
    const FrameGeometry geometry = frameGeometry(row);
    const std::int64_t index = frameIndexOfRow(frameNumber, row, geometry.frames);
    if (exportFrame(document, geometry, index, *args.value("-o"), context.home + "/16.dat") != FrameExport::Written)
        throw std::runtime_error(undrawableDepth(row));
    return 0;
}

int runExportPictures(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--to"}, {"--recompute-size"});
    args.expectPositional(2, "export-pictures FILE TABLE --to DIR");
    if (!args.has("--to")) throw UsageError("export-pictures needs --to DIR");
    const image::PhoneDocument document = openPhoneFile(args.positional()[0]);
    const std::vector<PictureEntry> rows = openPictureTable(args.positional()[1], args.has("--recompute-size"));
    // Each frame as `picture` writes it, mono pictures too, so every export imports back.
    const ExportTally tally = exportRows(document, rows, *args.value("--to"), context.home + "/16.dat");
    for (const PictureEntry& row : rows)
        if (std::find(tally.skippedRows.begin(), tally.skippedRows.end(), row.number) != tally.skippedRows.end())
            std::cerr << "zevran-cli: " << undrawableDepth(row) << "; the row is not exported\n";
    return 0;
}

int runPicturePatch(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {"--rows", "-o"}, {"--recompute-size"});
    args.expectPositional(2, "picture-patch FILE TABLE --rows 001,003 -o OUT.s3");
    if (!args.has("--rows") || !args.has("-o")) throw UsageError("picture-patch needs --rows and -o");
    const image::PhoneDocument document = openPhoneFile(args.positional()[0]);
    const auto rows = openPictureTable(args.positional()[1], args.has("--recompute-size"));
    const std::set<long> wanted = numberListArgument(*args.value("--rows"), "--rows");
    for (long number : wanted) pictureRow(rows, number, args.positional()[1]);
    std::vector<PictureEntry> chosen;
    chosen.reserve(wanted.size());
    for (long number : wanted) chosen.push_back(rows[static_cast<std::size_t>(number) - 1]);
    const RowsPatch patch = rowsPatch(document, chosen);
    for (std::size_t empty : patch.emptyRows)
        std::cerr << "zevran-cli: row " << chosen[empty].number << " (" << chosen[empty].name
                  << ") holds no bytes and is skipped\n";
    if (patch.regions.empty()) throw std::runtime_error("none of the rows holds any bytes; no patch was written");
    writeEditsAsPatch(document, *args.value("-o"), patch.regions);
    return 0;
}

}  // namespace

std::vector<Command> pictureCommands()
{
    return {
        {"picture", "FILE TABLE ROW [--frame K] [--recompute-size] -o OUT.bmp",
         "one frame of a picture table's row as a BMP, as the preview shows it",
         "  --frame K       the frame, counting from 1 (default 1)\n"
         "  --recompute-size  the frame size from width, height and depth, not the table's\n"
         "  -o OUT.bmp      the BMP file\n",
         runPicture},
        {"export-pictures", "FILE TABLE --to DIR [--recompute-size]",
         "every frame of every row as DIR/NAME-NN.bmp, as picture writes each",
         "  --to DIR        the folder of the BMP files\n"
         "  --recompute-size  the frame size from width, height and depth, not the table's\n",
         runExportPictures},
        {"picture-patch", "FILE TABLE --rows 001,003 -o OUT.s3 [--recompute-size]",
         "an S-record patch of the named rows, all their frames",
         "  --rows LIST     the rows, such as 001,003\n"
         "  --recompute-size  the frame size from width, height and depth, not the table's\n"
         "  -o OUT.s3       the S-record patch\n",
         runPicturePatch},
    };
}

}  // namespace zevran::cli
