// import-picture: a user's picture (or a folder of them, as export-pictures writes
// them) into the frames of a picture row, as an S-record patch or into an "asf" file.
#include "cli_args.hpp"
#include "command.hpp"
#include "phone_argument.hpp"
#include "picture_reader_process.hpp"
#include "picture_rows.hpp"

#include "image/file_io.hpp"
#include "image/patch_writer.hpp"
#include "pictures/picture_file.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_import_job.hpp"
#include "pictures/picture_player.hpp"

#include <iostream>
#include <stdexcept>

namespace zevran::cli {

namespace {

using namespace zevran::image;
using namespace zevran::pictures;

constexpr const char* kUsage =
    "import-picture FILE TABLE ROW (--from PICTURE [--frame K] | --from-folder DIR) [--recompute-size] "
    "(-o OUT.s3 | --in-place)";

// The import's stop in the command line's words: the row, the frame counted from 1,
// the file, and why.
std::runtime_error stopText(const PictureEntry& row, const RowImportError& error)
{
    const std::string frame = ", frame " + std::to_string(error.frame + 1);
    switch (error.stop) {
    case ImportStop::RowRefused: return std::runtime_error(placeOf(row) + ": " + error.what());
    case ImportStop::NoFrames:
        return std::runtime_error(placeOf(row) + ": the row has " + std::to_string(error.frames) +
                                  " frames; there is nothing to import");
    case ImportStop::PictureMissing:
    case ImportStop::Unreadable: return std::runtime_error(placeOf(row) + frame + ": " + error.what());
    case ImportStop::NoSuchFrame:
    case ImportStop::Refused: return std::runtime_error(placeOf(row) + frame + ", " + error.file + ": " + error.what());
    }
    return std::runtime_error(error.what());
}

// Pixels a frame cannot hold are told, frame by frame, while the import goes on.
void tellUnstoredPixels(const PictureEntry& row, const std::vector<FramePicture>& pictures,
                        const std::vector<std::int64_t>& unstored)
{
    for (std::size_t k = 0; k < pictures.size() && k < unstored.size(); ++k) {
        if (unstored[k] <= 0) continue;
        std::cerr << "zevran-cli: " << placeOf(row) << ", frame " << pictures[k].frame + 1 << ", " << pictures[k].file
                  << ": " << unstored[k] << (unstored[k] == 1 ? " pixel" : " pixels")
                  << " of the last column cannot be stored (a 4-bit row of odd width keeps no nibble for "
                  << (unstored[k] == 1 ? "it" : "them") << "); the import goes on\n";
    }
}

int runImportPicture(const std::vector<std::string>& words, const Context& context)
{
    Arguments args(words, {"--from", "--from-folder", "--frame", "-o"}, {"--recompute-size", "--in-place"});
    args.expectPositional(3, kUsage);
    if (args.has("--from") == args.has("--from-folder"))
        throw UsageError("import-picture needs either --from PICTURE or --from-folder DIR");
    if (args.has("--frame") && !args.has("--from"))
        throw UsageError("--frame names the frame of --from PICTURE; --from-folder imports every frame");
    if (args.has("-o") == args.has("--in-place"))
        throw UsageError("import-picture needs either -o OUT.s3 or --in-place");
    const std::string& phonePath = args.positional()[0];
    const std::string& tablePath = args.positional()[1];
    const long rowNumber = numberArgument(args.positional()[2], "ROW");
    const std::int64_t frameNumber = frameNumberArgument(args);

    image::PhoneDocument document = openPhoneFile(phonePath);

    image::ImageState& state = document.state();
    if (args.has("--in-place") && state.FileKind != "asf")
        throw std::runtime_error(phonePath + ": only an \"asf\" phone file is changed in place; this one is \"" +
                                 state.FileKind + "\" (write a patch with -o)");
    if (args.has("-o")) document.refuseAsOutput(*args.value("-o"));
    const auto rows = openPictureTable(tablePath, args.has("--recompute-size"));
    const PictureEntry& entry = pictureRow(rows, rowNumber, tablePath);

    RowImportResult result;
    try {
        const ImportableRow row = importableRow(entry, context.home + "/16.dat");
        const std::vector<FramePicture> pictures = args.has("--from")
                                                       ? onePicture(row, frameNumber - 1, *args.value("--from"))
                                                       : folderPictures(row, *args.value("--from-folder"));
        result = importPictures(state.FirmwareImage, row, pictures, readPictureThroughReader);
        tellUnstoredPixels(entry, pictures, result.unstoredPixels);
    } catch (const RowImportError& error) {
        throw stopText(entry, error);
    }
    const std::vector<Region>& regions = result.regions;
    writeEdits(args, document, regions);
    return 0;
}

}  // namespace

std::vector<Command> importCommands()
{
    return {
        {"import-picture",
         "FILE TABLE ROW (--from PICTURE [--frame K] | --from-folder DIR) [--recompute-size] (-o OUT.s3 | --in-place)",
         "a picture (BMP, PNG) into frame K of a row, or every frame from DIR/NAME-NN.bmp: an S-record patch, or "
         "into an asf file",
         "  --from PICTURE  a BMP or PNG for one frame\n"
         "  --frame K       the frame it goes into, counting from 1 (default 1)\n"
         "  --from-folder DIR  every frame from DIR/NAME-01.bmp, ... (or .png)\n"
         "  --recompute-size  the frame size from width, height and depth, not the table's\n"
         "  -o OUT.s3       an S-record patch\n"
         "  --in-place      change an asf file itself\n",
         runImportPicture},
    };
}

}  // namespace zevran::cli
