// zevran-cli picture, export-pictures and picture-patch: frames named by a picture
// table the test writes, turned into BMP files and S-record patches.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

// Fields split at single spaces: 1 name, 2 address, 4 frames, 6 frame size, 8 W*H, 10 depth.
std::string tableLine(const std::string& number, const std::string& name, const std::string& address, int frames,
                      int frameSize, const std::string& pixels, int depth)
{
    return number + " " + name + "\t 0X" + address + "\t Frames: " + std::to_string(frames) +
           "\t Size: " + std::to_string(frameSize) + "\t Pixels: " + pixels + "\t Bits: " + std::to_string(depth) +
           "\t\r\n";
}

// The program folder holds the depth-4 colour table; a run without --home would
// create one beside the executable.
void writeHome(const TempFolder& folder)
{
    std::filesystem::create_directory(folder.path("home"));
    Bytes colours(64);
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint8_t>(0xC0 + i);
    writeFile(folder.path("home/16.dat"), colours);
}

RunResult runAtHome(const TempFolder& folder, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--home", folder.path("home")});
    return runCli(folder, args);
}

// Two 3*2 frames of 16-bit pixels: A0..AB at 0x10 and B0..BB at 0x1C.
Bytes sixteenBitImage()
{
    Bytes image(0x40, 0xEE);
    for (int i = 0; i < 12; ++i) image[0x10 + i] = static_cast<std::uint8_t>(0xA0 + i);
    for (int i = 0; i < 12; ++i) image[0x1C + i] = static_cast<std::uint8_t>(0xB0 + i);
    return image;
}

// Size 70 + 16 = 86 (56); offset 70 (46); 3 * 2 pixels; 16 bits with bit fields (3);
// 16 data bytes; 3780 (0EC4) dots a metre both ways.
const Bytes kSixteenBitHeader = {
    0x42, 0x4D, 0x56, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00,
    0x03, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x10, 0x00, 0x03, 0x00, 0x00, 0x00, 0x10, 0x00,
    0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0xF8, 0x00, 0x00, 0xE0, 0x07, 0x00, 0x00, 0x1F, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
};

// Rows of 6 bytes padded to 8, the bottom row first.
const Bytes kFirstFrameBmp = joined({kSixteenBitHeader,
                                     {0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB, 0x00, 0x00},
                                     {0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0x00, 0x00}});
const Bytes kSecondFrameBmp = joined({kSixteenBitHeader,
                                      {0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xBB, 0x00, 0x00},
                                      {0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0x00, 0x00}});

const std::string kSixteenBitTable =
    tableLine("001", "logo", "00000010", 2, 12, "3*2", 16) + tableLine("002", "other", "00000030", 1, 12, "3*2", 16);

RunResult picture(const TempFolder& folder, const Bytes& image, const std::string& table,
                  std::vector<std::string> rowAndOptions)
{
    writeHome(folder);
    writeFile(folder.path("image.bin"), image);
    writeFile(folder.path("table.txt"), table);
    std::vector<std::string> args = {"picture", "image.bin", "table.txt"};
    args.insert(args.end(), rowAndOptions.begin(), rowAndOptions.end());
    return runAtHome(folder, args);
}

}  // namespace

TEST(PictureCommand, SixteenBitFrameGivesABitFieldBmpStoredBottomUp)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(picture(folder, sixteenBitImage(), kSixteenBitTable, {"001", "-o", "out.bmp"})));
    EXPECT_EQ(readBytes(folder.path("out.bmp")), kFirstFrameBmp);
}

TEST(PictureCommand, RowOneWithAndWithoutLeadingZerosIsTheSameRow)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(picture(folder, sixteenBitImage(), kSixteenBitTable, {"1", "-o", "short.bmp"})));
    ASSERT_TRUE(succeeded(picture(folder, sixteenBitImage(), kSixteenBitTable, {"001", "-o", "padded.bmp"})));
    EXPECT_EQ(readBytes(folder.path("short.bmp")), kFirstFrameBmp);
    EXPECT_EQ(readBytes(folder.path("padded.bmp")), kFirstFrameBmp);
}

TEST(PictureCommand, FrameTwoIsTheNextFrameSizeOfBytes)
{
    TempFolder folder;
    ASSERT_TRUE(
        succeeded(picture(folder, sixteenBitImage(), kSixteenBitTable, {"1", "--frame", "2", "-o", "out.bmp"})));
    EXPECT_EQ(readBytes(folder.path("out.bmp")), kSecondFrameBmp);
}

TEST(PictureCommand, FourBitFrameCarriesTheColourTableOfTheProgramFolder)
{
    TempFolder folder;
    // 4 * 2 pixels of 4 bits: 2 bytes a row, padded to 4. Image bytes 12 34 | 56 78 at 0x08.
    Bytes image(0x20, 0xEE);
    image[0x08] = 0x12, image[0x09] = 0x34, image[0x0A] = 0x56, image[0x0B] = 0x78;
    ASSERT_TRUE(succeeded(
        picture(folder, image, tableLine("001", "dots", "00000008", 1, 4, "4*2", 4), {"1", "-o", "out.bmp"})));
    // Size 54 + 64 + 8 = 126 (7E); offset 118 (76); 4 bits, no compression, 8 data bytes.
    Bytes colours(64);
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint8_t>(0xC0 + i);
    const Bytes expected = joined({
        {0x42, 0x4D, 0x7E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x76, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00,
         0x04, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x00,
         0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
        colours,
        {0x56, 0x78, 0x00, 0x00, 0x12, 0x34, 0x00, 0x00},
    });
    EXPECT_EQ(readBytes(folder.path("out.bmp")), expected);
}

TEST(PictureCommand, DepthTwoFailsInEnglishAndWritesNothing)
{
    TempFolder folder;
    const RunResult result =
        picture(folder, sixteenBitImage(), tableLine("001", "odd", "00000010", 1, 2, "4*2", 2), {"1", "-o", "out.bmp"});
    EXPECT_TRUE(failedWith(result, {"row 001 (odd): depth 2 cannot be drawn"}));
    EXPECT_EQ(result.err.find("错误"), std::string::npos) << result.err;
    EXPECT_FALSE(exists(folder.path("out.bmp")));
}

TEST(PictureCommand, FramesCountFromOne)
{
    TempFolder folder;
    ASSERT_TRUE(
        succeeded(picture(folder, sixteenBitImage(), kSixteenBitTable, {"1", "--frame", "1", "-o", "one.bmp"})));
    EXPECT_EQ(readBytes(folder.path("one.bmp")), kFirstFrameBmp);
    const RunResult zero =
        picture(folder, sixteenBitImage(), kSixteenBitTable, {"1", "--frame", "0", "-o", "zero.bmp"});
    EXPECT_TRUE(usageError(zero));
    EXPECT_NE(zero.err.find("frames count from 1"), std::string::npos) << zero.err;
    EXPECT_FALSE(exists(folder.path("zero.bmp")));
    EXPECT_TRUE(
        failedWith(picture(folder, sixteenBitImage(), kSixteenBitTable, {"1", "--frame", "3", "-o", "past.bmp"}),
                   {"row 001 (logo) has 2 frames; there is no frame 3"}));
    EXPECT_FALSE(exists(folder.path("past.bmp")));
}

TEST(PictureCommand, DepthOneReadsTheWholeDisplayMemoryColumnsAsRows)
{
    TempFolder folder;
    // The display memory lies at 0x20: 8 pages of 96 column bytes, byte p * 96 + c.
    // Bytes around it are EE, so a read outside it would show.
    Bytes image(0x20 + 768 + 0x20, 0xEE);
    std::fill(image.begin() + 0x20, image.begin() + 0x20 + 768, 0x00);
    image[0x20 + 0 * 96 + 0] = 0x81;   // page 0, column 0
    image[0x20 + 7 * 96 + 0] = 0x7E;   // page 7, column 0
    image[0x20 + 0 * 96 + 95] = 0x01;  // page 0, column 95
    image[0x20 + 3 * 96 + 10] = 0x3C;  // page 3, column 10
    ASSERT_TRUE(succeeded(
        picture(folder, image, tableLine("001", "screen", "00000020", 1, 768, "64*96", 1), {"1", "-o", "out.bmp"})));
    // Size 62 + 768 = 830 (033E); offset 62 (3E); 64 * 96 pixels of 1 bit; 768 (0300) data bytes.
    Bytes expected = joined({
        {0x42, 0x4D, 0x3E, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x3E, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00,
         0x40, 0x00, 0x00, 0x00, 0x60, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03,
         0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
        {0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0x00},
        repeated(768, 0x00),
    });
    // Column c is stored as row 95 - c (8 bytes from 62 + 8 * (95 - c)), page 7 first.
    expected[62 + 8 * 95 + 7] = 0x81;
    expected[62 + 8 * 95 + 0] = 0x7E;
    expected[62 + 8 * 0 + 7] = 0x01;
    expected[62 + 8 * 85 + 4] = 0x3C;
    EXPECT_EQ(readBytes(folder.path("out.bmp")), expected);
}

namespace {

// Row 001: two 16-bit frames; row 002: a mono screen; row 003: one 16-bit frame;
// row 004: a depth no BMP is drawn at.
const std::string kExportTable = tableLine("001", "logo", "00000010", 2, 12, "3*2", 16) +
                                 tableLine("002", "screen", "00000000", 1, 768, "64*96", 1) +
                                 tableLine("003", "icon", "0000001C", 1, 12, "3*2", 16) +
                                 tableLine("004", "odd", "00000010", 1, 2, "4*2", 2);

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

TEST(ExportPicturesCommand, EveryFrameOfEveryRowIsWrittenMonoRowsAsPictureWritesThem)
{
    for (const std::string to : {"out", "out/"}) {
        SCOPED_TRACE("--to " + to);
        TempFolder folder;
        writeHome(folder);
        std::filesystem::create_directory(folder.path("out"));
        writeFile(folder.path("image.bin"), sixteenBitImage());
        writeFile(folder.path("table.txt"), kExportTable);
        const RunResult result = runAtHome(folder, {"export-pictures", "image.bin", "table.txt", "--to", to});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_NE(result.err.find("row 004 (odd): depth 2 cannot be drawn"), std::string::npos) << result.err;
        EXPECT_EQ(result.err.find("错误"), std::string::npos) << result.err;
        EXPECT_EQ(namesIn(folder.path("out")),
                  (std::vector<std::string>{"icon-01.bmp", "logo-01.bmp", "logo-02.bmp", "screen-01.bmp"}));
        EXPECT_EQ(readBytes(folder.path("out/logo-01.bmp")), kFirstFrameBmp);
        EXPECT_EQ(readBytes(folder.path("out/logo-02.bmp")), kSecondFrameBmp);
        EXPECT_EQ(readBytes(folder.path("out/icon-01.bmp")), kSecondFrameBmp);
        ASSERT_TRUE(succeeded(runAtHome(folder, {"picture", "image.bin", "table.txt", "2", "-o", "screen.bmp"})));
        EXPECT_EQ(readBytes(folder.path("out/screen-01.bmp")), readBytes(folder.path("screen.bmp")));
        EXPECT_EQ(readBytes(folder.path("screen.bmp")).size(), 62u + 768u);
    }
}

namespace {

// Three frames of 2048 bytes from 0x120000; the first 16 bytes are 00..0F, the rest 5A.
// One more row of 16 bytes at 0x100, and one that holds no frames.
Bytes bigImage()
{
    Bytes image(0x121800 + 0x100, 0x00);
    std::fill(image.begin() + 0x120000, image.begin() + 0x121800, 0x5A);
    for (int i = 0; i < 16; ++i) image[0x120000 + i] = static_cast<std::uint8_t>(i);
    for (int i = 0; i < 16; ++i) image[0x100 + i] = 0x11;
    return image;
}

const std::string kPatchTable = tableLine("001", "wallpaper", "00120000", 3, 2048, "32*32", 16) +
                                tableLine("002", "empty", "00000200", 0, 2048, "32*32", 16) +
                                tableLine("003", "tiny", "00000100", 1, 16, "8*1", 16);

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t pos = 0; pos < text.size();) {
        const std::size_t end = text.find("\r\n", pos);
        if (end == std::string::npos) {
            lines.push_back(text.substr(pos));
            break;
        }
        lines.push_back(text.substr(pos, end - pos));
        pos = end + 2;
    }
    return lines;
}

RunResult picturePatch(const TempFolder& folder, const std::string& rows)
{
    writeHome(folder);
    writeFile(folder.path("image.bin"), bigImage());
    writeFile(folder.path("table.txt"), kPatchTable);
    return runAtHome(folder, {"picture-patch", "image.bin", "table.txt", "--rows", rows, "-o", "out.s3"});
}

}  // namespace

TEST(PicturePatchCommand, AllFramesOfEachNamedRowGoIntoOnePatch)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(picturePatch(folder, "001,003")));
    const std::string text = readText(folder.path("out.s3"));
    ASSERT_GE(text.size(), 2u);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
    const std::vector<std::string> lines = linesOf(text);
    // S0, 3 * 2048 / 16 = 384 lines of row 001, 1 line of row 003, S7.
    ASSERT_EQ(lines.size(), 387u);
    EXPECT_EQ(lines.front(), "S00600004844521B");
    EXPECT_EQ(lines.back(), "S705A002000058");
    for (std::size_t i = 1; i <= 385; ++i) EXPECT_EQ(lines[i].substr(0, 4), "S315") << "line " << i + 1;
    // 15 + 12 + (00 + 01 + ... + 0F = 78) = 9F -> 60.
    EXPECT_EQ(lines[1], "S31500120000000102030405060708090A0B0C0D0E0F60");
    // 0x120000 + 6144 - 16 = 0x1217F0.
    EXPECT_EQ(lines[384].substr(0, 12), "S315001217F0");
    // 15 + 01 + 16 * 11 (110) = 126 -> 26 -> D9.
    EXPECT_EQ(lines[385], "S3150000010011111111111111111111111111111111D9");
}

TEST(PicturePatchCommand, RowOfLengthZeroIsSkippedWithALineOnStderr)
{
    TempFolder folder;
    const RunResult result = picturePatch(folder, "001,002");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find("row 002"), std::string::npos) << result.err;
    const std::vector<std::string> lines = linesOf(readText(folder.path("out.s3")));
    ASSERT_EQ(lines.size(), 386u);
    EXPECT_EQ(lines[1].substr(0, 12), "S31500120000");
    EXPECT_EQ(lines[384].substr(0, 12), "S315001217F0");
    EXPECT_EQ(lines[385], "S705A002000058");
}
