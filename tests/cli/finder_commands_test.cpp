// zevran-cli render and guess-width: the bytes at an address drawn as a picture, and
// the widths that make them look like one.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

std::string tableLine(const std::string& address, int frameSize, const std::string& pixels, int depth)
{
    return "001 found\t 0X" + address + "\t Frames: 1\t Size: " + std::to_string(frameSize) + "\t Pixels: " + pixels +
           "\t Bits: " + std::to_string(depth) + "\t\r\n";
}

void writeHome(const TempFolder& folder)
{
    std::filesystem::create_directories(folder.path("home"));
    Bytes colours(64);
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint8_t>(0x40 + 3 * i);
    writeFile(folder.path("home/16.dat"), colours);
}

RunResult runAtHome(const TempFolder& folder, std::vector<std::string> args)
{
    writeHome(folder);
    args.insert(args.begin(), {"--home", folder.path("home")});
    return runCli(folder, args);
}

// Bytes 00 to FF over and over, 2000 of them.
Bytes counting()
{
    Bytes image(2000);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i);
    return image;
}

}  // namespace

TEST(RenderCommand, WritesTheBmpOfASixteenBitPictureAtTheAddress)
{
    TempFolder folder;
    Bytes image(0x20, 0xEE);
    for (int i = 0; i < 12; ++i) image[0x10 + i] = static_cast<std::uint8_t>(0xA0 + i);
    writeFile(folder.path("image.bin"), image);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"render", "image.bin", "--at", "0x10", "--depth", "16", "--width", "3",
                                             "--height", "2", "-o", "out.bmp"})));
    const Bytes expected = {
        0x42, 0x4D, 0x56, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46, 0x00, 0x00, 0x00, 0x28, 0x00,
        0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x10, 0x00, 0x03, 0x00,
        0x00, 0x00, 0x10, 0x00, 0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0xC4, 0x0E, 0x00, 0x00, 0x00, 0x00,
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x00, 0x00, 0xE0, 0x07, 0x00, 0x00, 0x1F, 0x00,
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB, 0x00, 0x00,  // the bottom row first
        0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0x00, 0x00,
    };
    EXPECT_EQ(readBytes(folder.path("out.bmp")), expected);
}

TEST(RenderCommand, EveryDepthGivesTheBmpThatPictureGivesForSuchARow)
{
    const struct {
        int depth;
        std::string pixels, width, height;
        int frameSize;
    } cases[] = {{1, "64*96", "64", "96", 768}, {4, "9*5", "9", "5", 23},     {8, "13*7", "13", "7", 91},
                 {12, "10*4", "10", "4", 60},   {16, "17*3", "17", "3", 102}, {24, "5*5", "5", "5", 75}};
    for (const auto& c : cases) {
        SCOPED_TRACE("depth " + std::to_string(c.depth));
        TempFolder folder;
        writeFile(folder.path("image.bin"), counting());
        writeFile(folder.path("table.txt"), tableLine("0000012D", c.frameSize, c.pixels, c.depth));
        ASSERT_TRUE(succeeded(runAtHome(folder, {"picture", "image.bin", "table.txt", "1", "-o", "picture.bmp"})));
        ASSERT_TRUE(
            succeeded(runAtHome(folder, {"render", "image.bin", "--at", "12D", "--depth", std::to_string(c.depth),
                                         "--width", c.width, "--height", c.height, "-o", "render.bmp"})));
        EXPECT_EQ(readBytes(folder.path("render.bmp")), readBytes(folder.path("picture.bmp")));
    }
}

TEST(RenderCommand, PastTheImageEndGivesTheSameBmpAsPicture)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    writeFile(folder.path("table.txt"), tableLine("000007C0", 384, "16*8", 24));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"picture", "image.bin", "table.txt", "1", "-o", "picture.bmp"})));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"render", "image.bin", "--at", "7C0", "--depth", "24", "--width", "16",
                                             "--height", "8", "-o", "render.bmp"})));
    EXPECT_EQ(readBytes(folder.path("render.bmp")), readBytes(folder.path("picture.bmp")));
}

TEST(RenderCommand, RefusedDepthFailsInEnglishAndWritesNothing)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    const RunResult result = runAtHome(folder, {"render", "image.bin", "--at", "10", "--depth", "2", "--width", "8",
                                                "--height", "8", "-o", "out.bmp"});
    EXPECT_TRUE(failedWith(result, {"image.bin", "0x00000010", "depth 2 cannot be drawn"}));
    EXPECT_FALSE(exists(folder.path("out.bmp")));
}

TEST(RenderCommand, MissingOptionsAndBadAddressesAreUsageErrors)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    EXPECT_TRUE(usageError(
        runAtHome(folder, {"render", "image.bin", "--depth", "16", "--width", "8", "--height", "8", "-o", "out.bmp"})));
    EXPECT_TRUE(usageError(
        runAtHome(folder, {"render", "image.bin", "--at", "10", "--depth", "16", "--width", "8", "--height", "8"})));
    EXPECT_TRUE(usageError(runAtHome(folder, {"render", "image.bin", "--at", "1G", "--depth", "16", "--width", "8",
                                              "--height", "8", "-o", "out.bmp"})));
    EXPECT_TRUE(usageError(runAtHome(folder, {"render", "image.bin", "--at", "123456789", "--depth", "16", "--width",
                                              "8", "--height", "8", "-o", "out.bmp"})));
    EXPECT_TRUE(usageError(runAtHome(folder, {"render", "image.bin", "--at", "10", "--depth", "16", "--width", "-8",
                                              "--height", "8", "-o", "out.bmp"})));
    EXPECT_FALSE(exists(folder.path("out.bmp")));
}

TEST(RenderCommand, MissingFileFailsNamingIt)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runAtHome(folder, {"render", "none.bin", "--at", "0", "--depth", "16", "--width", "8",
                                              "--height", "8", "-o", "out.bmp"}),
                           {"none.bin"}));
}

TEST(GuessWidthCommand, PrintsFiveWidthsBestFirstWithTheirScores)
{
    // Depth 8: every sixth byte E0 (blue 255), the others 00. Width 6 puts alike
    // pixels under each other; 4 and 7 tie at 85 and the smaller comes first.
    TempFolder folder;
    Bytes image(200, 0x00);
    for (std::size_t i = 0; i < image.size(); i += 6) image[i] = 0xE0;
    writeFile(folder.path("image.bin"), image);
    const RunResult result =
        runAtHome(folder, {"guess-width", "image.bin", "--at", "0", "--depth", "8", "--min", "2", "--max", "7"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "6 0.000\n4 85.000\n7 85.000\n2 85.773\n5 85.794\n");
}

TEST(GuessWidthCommand, FewerWidthsThanFivePrintsThemAll)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), Bytes(100, 0x42));
    const RunResult result =
        runAtHome(folder, {"guess-width", "image.bin", "--at", "0x0", "--depth", "16", "--min", "9", "--max", "10"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "9 0.000\n10 0.000\n");
}

TEST(GuessWidthCommand, DepthOneIsRefusedForTheDisplayMemoryHasNoWidth)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    EXPECT_TRUE(failedWith(runAtHome(folder, {"guess-width", "image.bin", "--at", "20", "--depth", "1"}),
                           {"image.bin", "0x00000020", "depth 1"}));
}

TEST(GuessWidthCommand, RefusedDepthAndNoRowsInsideTheImageFail)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    EXPECT_TRUE(failedWith(runAtHome(folder, {"guess-width", "image.bin", "--at", "20", "--depth", "32"}),
                           {"image.bin", "depth 32"}));
    EXPECT_TRUE(failedWith(runAtHome(folder, {"guess-width", "image.bin", "--at", "7D0", "--depth", "16"}),
                           {"image.bin", "0x000007D0", "no width"}));
}

TEST(GuessWidthCommand, LimitsOutOfOrderOrTooWideAreUsageErrors)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting());
    EXPECT_TRUE(
        usageError(runAtHome(folder, {"guess-width", "image.bin", "--at", "0", "--depth", "16", "--min", "0"})));
    EXPECT_TRUE(usageError(
        runAtHome(folder, {"guess-width", "image.bin", "--at", "0", "--depth", "16", "--min", "40", "--max", "30"})));
    EXPECT_TRUE(
        usageError(runAtHome(folder, {"guess-width", "image.bin", "--at", "0", "--depth", "16", "--max", "2049"})));
    EXPECT_TRUE(usageError(runAtHome(folder, {"guess-width", "image.bin", "--depth", "16"})));
}

TEST(GuessWidthCommand, FindsTheWidthOfEachDemoPicture)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(runCli(folder, {"make-demo", "."})));
    const struct {
        std::string at, depth, width;
    } pictures[] = {{"D0000", "24", "128"}, {"DF000", "16", "128"}, {"E9000", "4", "96"},
                    {"EA200", "8", "96"},   {"EC600", "12", "80"},  {"EEF00", "16", "64"}};
    for (const auto& picture : pictures) {
        SCOPED_TRACE(picture.at);
        // The shipped colour table, as the program folder holds it.
        const RunResult result = runCli(folder, {"--home", ZEVRAN_DATA_DIR, "guess-width", "demo.bin", "--at",
                                                 picture.at, "--depth", picture.depth});
        ASSERT_TRUE(succeeded(result));
        EXPECT_EQ(result.out.substr(0, result.out.find(' ')), picture.width);
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 5);
    }
}
