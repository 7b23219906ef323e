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
#include "pictures/picture_import.hpp"
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

// One frame's picture read and encoded; every refusal names the row, frame and file,
// and pixels the frame cannot hold are told on stderr while the import goes on.
void importOne(RowImport& import, const PictureEntry& row, std::int64_t frame, const std::string& file,
               const ColourTable& colours)
{
    const std::string where = placeOf(row) + ", frame " + std::to_string(frame + 1);
    PictureGrid picture;
    try {
        picture = readPictureThroughReader(file, colours);
    } catch (const PictureFileError& error) {
        throw std::runtime_error(where + ": " + error.what());
    }
    std::int64_t unstored = 0;
    try {
        unstored = import.importFrame(frame, picture);
    } catch (const PictureImportError& error) {
        throw std::runtime_error(where + ", " + file + ": " + error.what());
    }
    if (unstored > 0)
        std::cerr << "zevran-cli: " << where << ", " << file << ": " << unstored
                  << (unstored == 1 ? " pixel" : " pixels")
                  << " of the last column cannot be stored (a 4-bit row of odd width keeps no nibble for "
                  << (unstored == 1 ? "it" : "them") << "); the import goes on\n";
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
    if (args.has("-o")) refusePhoneFile(phonePath, *args.value("-o"));
    const auto rows = openPictureTable(tablePath, args.has("--recompute-size"));
    const PictureEntry& row = pictureRow(rows, rowNumber, tablePath);

    FrameGeometry geometry;
    try {
        geometry = frameGeometry(row);
    } catch (const std::exception& error) {
        throw std::runtime_error(placeOf(row) + ": " + error.what());
    }
    const ColourTable colours = coloursForDepth(geometry.depth, context.home + "/16.dat");
    RowImport import(state.FirmwareImage, geometry, colours);
    try {
        // The row's depth and size are refused before any file is looked for.
        shownImageBytes(import.layoutOf(0));
    } catch (const PictureImportError& error) {
        throw std::runtime_error(placeOf(row) + ": " + error.what());
    }

    if (args.has("--from")) {
        importOne(import, row, frameNumber - 1, *args.value("--from"), colours);
    } else {
        std::string folder = *args.value("--from-folder");
        if (folder.empty() || folder.back() != '/') folder += '/';
        if (geometry.frames <= 0)
            throw std::runtime_error(placeOf(row) + ": the row has " + std::to_string(geometry.frames) +
                                     " frames; there is nothing to import");
        // Every frame's picture must be there and fit, or nothing is written.
        for (std::int64_t frame = 0; frame < geometry.frames; ++frame) {
            const auto file = exportedFramePicture(folder, row.name, frame);
            if (!file)
                throw std::runtime_error(placeOf(row) + ", frame " + std::to_string(frame + 1) + ": " +
                                         pictureFramePath(folder, row.name, frame) + " (or .png) is missing");
            importOne(import, row, frame, *file, colours);
        }
    }

    const std::vector<Region> regions = import.regions();
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
