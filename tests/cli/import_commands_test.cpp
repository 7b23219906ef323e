// zevran-cli import-picture: BMP and PNG pictures, made here, into the frames of a
// picture table's row, as an S-record patch or into an "asf" file.
#include "cli_run.hpp"

#include <QImage>

using namespace zevran::test;

namespace {

// Fields split at single spaces: 1 name, 2 address, 4 frames, 6 frame size, 8 W*H, 10 depth.
std::string tableLine(const std::string& name, const std::string& address, int frames, int frameSize,
                      const std::string& pixels, int depth)
{
    return "001 " + name + "\t 0X" + address + "\t Frames: " + std::to_string(frames) +
           "\t Size: " + std::to_string(frameSize) + "\t Pixels: " + pixels + "\t Bits: " + std::to_string(depth) +
           "\t\r\n";
}

// The program folder with the shipped 16-colour table.
void writeHome(const TempFolder& folder)
{
    std::filesystem::create_directory(folder.path("home"));
    std::filesystem::copy_file(ZEVRAN_DATA_DIR "/16.dat", folder.path("home/16.dat"),
                               std::filesystem::copy_options::overwrite_existing);
}

RunResult runAtHome(const TempFolder& folder, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--home", folder.path("home")});
    return runCli(folder, args);
}

// Sets up image and table, then runs import-picture on row 001 with the options.
RunResult importPicture(const TempFolder& folder, const std::string& imageName, const Bytes& image,
                        const std::string& table, std::vector<std::string> options)
{
    writeHome(folder);
    writeFile(folder.path(imageName), image);
    writeFile(folder.path("table.txt"), table);
    std::vector<std::string> args = {"import-picture", imageName, "table.txt", "001"};
    args.insert(args.end(), options.begin(), options.end());
    return runAtHome(folder, args);
}

// A 24-bit BMP, rows given bottom row first and padded as stored.
Bytes bmp24(std::uint8_t width, std::uint8_t height, const Bytes& rows)
{
    const auto size = static_cast<std::uint8_t>(54 + rows.size());
    const Bytes header = {'B', 'M',    size, 0,  0,     0, 0,
                          0,   0,      0,    54, 0,     0, 0,
                          40,  0,      0,    0,  width, 0, 0,
                          0,   height, 0,    0,  0,     1, 0,
                          24,  0,      0,    0,  0,     0, static_cast<std::uint8_t>(rows.size()),
                          0,   0,      0,    0,  0,     0, 0,
                          0,   0,      0,    0,  0,     0, 0,
                          0,   0,      0,    0,  0};
    return joined({header, rows});
}

// A PNG of the given pixels (0xRRGGBB), top row first.
void writePng(const std::string& path, int width, int height, const std::vector<std::uint32_t>& pixels)
{
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, 0xFF000000u | pixels[static_cast<std::size_t>(y) * width + x]);
    ASSERT_TRUE(picture.save(QString::fromStdString(path), "PNG"));
}

const std::string kPatchStart = "S00600004844521B\r\n";
const std::string kPatchEnd = "S705A002000058\r\n";

}  // namespace

TEST(ImportPictureCommand, BmpIntoASixteenBitFrameGivesOneRegionOfItsBytes)
{
    TempFolder folder;
    // Top row red, green, blue; bottom row white, black, R 87 G 46 B 2B (words F800,
    // 07E0, 001F, FFFF, 0000, 8225).
    writeFile(folder.path("new.bmp"), bmp24(3, 2, {0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x2B, 0x46, 0x87, 0, 0, 0,
                                                   0x00, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0x00, 0, 0, 0}));
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x40, 0xEE), tableLine("logo", "00000010", 1, 12, "3*2", 16),
                      {"--from", "new.bmp", "-o", "out.s3"});
    ASSERT_TRUE(succeeded(result));
    // 11 + 10 + (00 + F8 + E0 + 07 + 1F + 00 + FF + FF + 00 + 00 + 25 + 82 = 4A3) = 4C4 -> 3B.
    EXPECT_EQ(readText(folder.path("out.s3")), kPatchStart + "S3110000001000F8E0071F00FFFF000025823B\r\n" + kPatchEnd);
    EXPECT_EQ(readBytes(folder.path("image.bin")), repeated(0x40, 0xEE));
}

TEST(ImportPictureCommand, PngIntoAFourBitAsfFileInPlace)
{
    TempFolder folder;
    writeHome(folder);
    // Black 0, red 12, blue 9, white 15; dark red 4, dark green 2, silver 7, and a
    // near-yellow whose nearest colour is yellow 14.
    writePng(folder.path("new.png"), 4, 2,
             {0x000000, 0xFF0000, 0x0000FF, 0xFFFFFF, 0x800000, 0x008000, 0xC0C0C0, 0xFAFA05});
    const RunResult result =
        importPicture(folder, "phone.asf", repeated(16, 0x77), tableLine("icon", "00000004", 1, 4, "4*2", 4),
                      {"--from", "new.png", "--in-place"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(readBytes(folder.path("phone.asf")),
              joined({repeated(4, 0x77), {0x0C, 0x9F, 0x42, 0x7E}, repeated(8, 0x77)}));
}

TEST(ImportPictureCommand, FrameOptionPicksTheFrame)
{
    TempFolder folder;
    writeFile(folder.path("new.bmp"), bmp24(1, 1, {0x33, 0x22, 0x11, 0}));
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("dot", "00000010", 3, 4, "1*1", 24),
                      {"--from", "new.bmp", "--frame", "3", "-o", "out.s3"});
    ASSERT_TRUE(succeeded(result));
    // 08 + 18 + 33 + 22 + 11 = 86 -> 79.
    EXPECT_EQ(readText(folder.path("out.s3")), kPatchStart +
                                                   "S30800000018332211"
                                                   "79\r\n" +
                                                   kPatchEnd);
}

TEST(ImportPictureCommand, FramesCountFromOneAndStopAtTheLast)
{
    TempFolder folder;
    writeFile(folder.path("new.bmp"), bmp24(1, 1, {0x33, 0x22, 0x11, 0}));
    const std::string table = tableLine("dot", "00000010", 3, 4, "1*1", 24);
    const RunResult zero = importPicture(folder, "image.bin", repeated(0x20, 0), table,
                                         {"--from", "new.bmp", "--frame", "0", "-o", "out.s3"});
    EXPECT_TRUE(usageError(zero));
    EXPECT_NE(zero.err.find("frames count from 1"), std::string::npos) << zero.err;
    EXPECT_TRUE(failedWith(importPicture(folder, "image.bin", repeated(0x20, 0), table,
                                         {"--from", "new.bmp", "--frame", "4", "-o", "out.s3"}),
                           {"row 001 (dot), frame 4", "the row has 3 frames", "no frame 4"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
    // Without --frame the first frame takes the picture: 08 + 10 + 33 + 22 + 11 = 7E -> 81.
    ASSERT_TRUE(
        succeeded(importPicture(folder, "image.bin", repeated(0x20, 0), table, {"--from", "new.bmp", "-o", "out.s3"})));
    EXPECT_EQ(readText(folder.path("out.s3")), kPatchStart +
                                                   "S30800000010332211"
                                                   "81\r\n" +
                                                   kPatchEnd);
}

TEST(ImportPictureCommand, FolderOfExportedFramesBmpAndPngGivesOneRegionPerFrame)
{
    TempFolder folder;
    Bytes image = repeated(0x30, 0);
    for (int i = 0; i < 8; ++i) image[0x10 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(1 + i);
    for (int i = 0; i < 8; ++i) image[0x18 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(0x11 + i);
    const std::string table = tableLine("ball", "00000010", 2, 8, "2*2", 16);
    writeHome(folder);
    writeFile(folder.path("image.bin"), image);
    writeFile(folder.path("table.txt"), table);
    std::filesystem::create_directory(folder.path("frames"));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-pictures", "image.bin", "table.txt", "--to", "frames"})));
    // The second frame edited and saved as PNG: all white.
    std::filesystem::remove(folder.path("frames/ball-02.bmp"));
    writePng(folder.path("frames/ball-02.png"), 2, 2, {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF});
    ASSERT_TRUE(succeeded(runAtHome(
        folder, {"import-picture", "image.bin", "table.txt", "1", "--from-folder", "frames", "-o", "out.s3"})));
    // 0D + 10 + 24 (01..08) = 41 -> BE; 0D + 18 + 8 * FF = 0D + 18 + 7F8 = 81D -> E2.
    EXPECT_EQ(readText(folder.path("out.s3")),
              kPatchStart + "S30D000000100102030405060708BE\r\n" + "S30D00000018FFFFFFFFFFFFFFFFE2\r\n" + kPatchEnd);
}

TEST(ImportPictureCommand, MonoPictureWrittenByThePictureCommandComesBackUnchanged)
{
    TempFolder folder;
    Bytes image(0x400);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i * 37 + i / 7);
    writeHome(folder);
    writeFile(folder.path("phone.asf"), image);
    writeFile(folder.path("table.txt"), tableLine("smile", "00000040", 1, 768, "64*96", 1));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"picture", "phone.asf", "table.txt", "1", "-o", "mono.bmp"})));
    ASSERT_TRUE(succeeded(
        runAtHome(folder, {"import-picture", "phone.asf", "table.txt", "1", "--from", "mono.bmp", "--in-place"})));
    EXPECT_EQ(readBytes(folder.path("phone.asf")), image);
}

TEST(ImportPictureCommand, MissingFrameInTheFolderNamesItAndWritesNothing)
{
    TempFolder folder;
    std::filesystem::create_directory(folder.path("frames"));
    writeFile(folder.path("frames/ball-01.bmp"), bmp24(1, 1, {1, 2, 3, 0}));
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("ball", "00000010", 2, 3, "1*1", 24),
                      {"--from-folder", "frames/", "-o", "out.s3"});
    EXPECT_TRUE(failedWith(result, {"row 001 (ball), frame 2", "frames/ball-02.bmp (or .png) is missing"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
}

TEST(ImportPictureCommand, PictureOfAnotherSizeIsRefusedNamingBothSizes)
{
    TempFolder folder;
    writeFile(folder.path("big.bmp"), bmp24(2, 1, {1, 2, 3, 4, 5, 6, 0, 0}));
    const RunResult result =
        importPicture(folder, "phone.asf", repeated(0x20, 0), tableLine("dot", "00000010", 1, 3, "1*1", 24),
                      {"--from", "big.bmp", "--in-place"});
    EXPECT_TRUE(failedWith(result, {"row 001 (dot), frame 1, big.bmp", "2*1", "1*1"}));
    EXPECT_EQ(readBytes(folder.path("phone.asf")), repeated(0x20, 0));
}

TEST(ImportPictureCommand, TwoColoursForOneNibbleAreRefusedNamingThePixels)
{
    TempFolder folder;
    writeHome(folder);
    // 5*2 at depth 4: pixel (0, 1) shows the nibble that (4, 0) shows.
    writePng(folder.path("odd.png"), 5, 2,
             {0, 0, 0, 0, 0xFFFFFF,  //
              0, 0, 0, 0, 0});
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("odd", "00000010", 1, 5, "5*2", 4),
                      {"--from", "odd.png", "-o", "out.s3"});
    EXPECT_TRUE(failedWith(result, {"row 001 (odd), frame 1, odd.png", "(4, 0)", "(0, 1)", "0x00000012"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
}

TEST(ImportPictureCommand, PixelsAnOddFourBitRowCannotHoldAreCountedAndTheImportGoesOn)
{
    TempFolder folder;
    writeHome(folder);
    // 3*2 at depth 4: one byte a row, so the third pixel of each row has no nibble. The
    // shipped table's colour 0 is black: the white one is lost, the black one is not.
    writePng(folder.path("odd.png"), 3, 2,
             {0x000000, 0x000000, 0xFFFFFF,  //
              0x000000, 0x000000, 0x000000});
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0x77), tableLine("odd", "00000010", 1, 2, "3*2", 4),
                      {"--from", "odd.png", "-o", "out.s3"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "zevran-cli: row 001 (odd), frame 1, odd.png: 1 pixel of the last column cannot be stored "
                          "(a 4-bit row of odd width keeps no nibble for it); the import goes on\n");
    EXPECT_TRUE(exists(folder.path("out.s3")));
}

TEST(ImportPictureCommand, FramePastTheImagesEndIsRefused)
{
    TempFolder folder;
    writeFile(folder.path("dot.bmp"), bmp24(1, 1, {1, 2, 3, 0}));
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("dot", "0000001F", 1, 3, "1*1", 24),
                      {"--from", "dot.bmp", "-o", "out.s3"});
    EXPECT_TRUE(failedWith(result, {"row 001 (dot), frame 1", "0x0000001F-0x00000021", "32 bytes"}));
}

TEST(ImportPictureCommand, UnreadablePictureAndUnimportableDepthAreRefused)
{
    TempFolder folder;
    writeFile(folder.path("notes.png"), std::string("not a picture"));
    EXPECT_TRUE(
        failedWith(importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("dot", "00000010", 1, 3, "1*1", 24),
                                 {"--from", "notes.png", "-o", "out.s3"}),
                   {"row 001 (dot), frame 1", "notes.png"}));
    TempFolder other;
    EXPECT_TRUE(
        failedWith(importPicture(other, "image.bin", repeated(0x20, 0), tableLine("dot", "00000010", 1, 3, "1*1", 2),
                                 {"--from-folder", "nowhere", "-o", "out.s3"}),
                   {"row 001 (dot)", "depth 2"}));
}

TEST(ImportPictureCommand, InPlaceIsRefusedForABinFile)
{
    TempFolder folder;
    writeFile(folder.path("dot.bmp"), bmp24(1, 1, {1, 2, 3, 0}));
    const RunResult result =
        importPicture(folder, "image.bin", repeated(0x20, 0), tableLine("dot", "00000010", 1, 3, "1*1", 24),
                      {"--from", "dot.bmp", "--in-place"});
    EXPECT_TRUE(failedWith(result, {"image.bin", "\"asf\"", "\"bin\""}));
    EXPECT_EQ(readBytes(folder.path("image.bin")), repeated(0x20, 0));
}

TEST(ImportPictureCommand, UsageErrors)
{
    const std::string table = tableLine("dot", "00000010", 1, 3, "1*1", 24);
    const std::vector<std::vector<std::string>> wrong = {
        {"-o", "out.s3"},                                           // no picture
        {"--from", "a.bmp", "--from-folder", "f", "-o", "out.s3"},  // two sources
        {"--from", "a.bmp"},                                        // no output
        {"--from", "a.bmp", "-o", "out.s3", "--in-place"},          // two outputs
        {"--from-folder", "f", "--frame", "1", "-o", "out.s3"},     // a frame with a folder
        {"--from", "a.bmp", "--frame", "x", "-o", "out.s3"},        // a frame that is no number
    };
    for (const auto& options : wrong) {
        TempFolder folder;
        EXPECT_TRUE(usageError(importPicture(folder, "image.bin", repeated(0x20, 0), table, options)))
            << options.front();
    }
}
