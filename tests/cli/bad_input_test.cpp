// zevran-cli answering bad places and bad tables: one line on stderr naming what and
// where, exit 1, no output file, and never a hang on a device that never ends.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

std::string pictureLine(const std::string& address, const std::string& frames, const std::string& size,
                        const std::string& pixels, const std::string& depth)
{
    return "001 pic\t 0X" + address + "\t Frames: " + frames + "\t Size: " + size + "\t Pixels: " + pixels +
           "\t Bits: " + depth + "\t\r\n";
}

RunResult pictureWith(const TempFolder& folder, const std::string& table, std::vector<std::string> tail)
{
    std::filesystem::create_directory(folder.path("home"));
    writeFile(folder.path("home/16.dat"), Bytes(64, 0x40));
    writeFile(folder.path("image.bin"), Bytes(0x1000, 0x5A));
    writeFile(folder.path("table.txt"), table);
    std::vector<std::string> args{"--home", folder.path("home")};
    args.insert(args.end(), tail.begin(), tail.end());
    return runCli(folder, args);
}

}  // namespace

TEST(BadPlaces, DeviceAsPhoneFileIsRefusedNotReadForever)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runCli(folder, {"info", "/dev/zero"}), {"/dev/zero", "device"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"tones", "/dev/zero"}), {"/dev/zero", "device"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"s3-to-bin", "/dev/zero", "-o", "out.bin"}), {"/dev/zero", "device"}));
    EXPECT_FALSE(exists(folder.path("out.bin")));
}

TEST(BadPlaces, MissingPhoneFileIsNamed)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runCli(folder, {"tones", "missing.bin"}), {"missing.bin", "No such file"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"tones", "missing.bin", "--details"}), {"missing.bin", "No such file"}));
}

TEST(BadPlaces, FullDiskIsReportedForEveryKindOfOutput)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), Bytes(0x100, 0x20));
    writeFile(folder.path("image.s3"), std::string("S3090000001001020304DC\r\n"));
    writeFile(folder.path("plan.txt"), std::string("00000010 00000013 abcd\n"));
    EXPECT_TRUE(failedWith(runCli(folder, {"s3-to-bin", "image.s3", "--data-only", "-o", "/dev/full"}), {"/dev/full"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"bin-to-s3", "image.bin", "-o", "/dev/full"}), {"/dev/full"}));
    EXPECT_TRUE(
        failedWith(runCli(folder, {"patch-strings", "image.bin", "plan.txt", "-o", "/dev/full"}), {"/dev/full"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"apply-patch", "image.bin", "image.s3", "-o", "/dev/full"}), {"/dev/full"}));
}

TEST(BadPlaces, OutputBelowAPlainFileIsNamed)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), Bytes(0x100, 0x20));
    writeFile(folder.path("plain"), std::string("a file"));
    const RunResult result = runCli(folder, {"bin-to-s3", "image.bin", "-o", "plain/out.s3"});
    EXPECT_TRUE(failedWith(result, {"plain/out.s3", "nothing was written"}));
    // The output is named as the user typed it, not by the temporary made for it.
    EXPECT_EQ(result.err.find(".saving-"), std::string::npos) << result.err;
    EXPECT_EQ(readText(folder.path("plain")), "a file");
}

TEST(BadPlaces, ToneExportWhereNoFileCanBeMadeNamesTheFile)
{
    TempFolder folder;
    Bytes image(0x400, 0x11);
    const Bytes head{'M', 'M', 'M', 'D', 0, 0, 0, 0x60};
    std::copy(head.begin(), head.end(), image.begin() + 0x40);
    writeFile(folder.path("image.bin"), image);
    // A folder under /proc takes no new file, whoever asks.
    EXPECT_TRUE(
        failedWith(runCli(folder, {"export-tones", "image.bin", "--to", "/proc/ring.mmf"}), {"/proc/ring-001.mmf"}));
}

TEST(BadTables, LettersWhereNumbersBelongGiveAnUndrawableDepth)
{
    TempFolder folder;
    const RunResult result = pictureWith(folder, pictureLine("000000QQ", "1", "y", "a*b", "zz"),
                                         {"picture", "image.bin", "table.txt", "1", "-o", "out.bmp"});
    EXPECT_TRUE(failedWith(result, {"row 001", "cannot be drawn"}));
    EXPECT_FALSE(exists(folder.path("out.bmp")));
    // Letters for the frame count read as 0 frames: there is no frame 1 to draw.
    const RunResult noFrames = pictureWith(folder, pictureLine("000000QQ", "x", "y", "a*b", "zz"),
                                           {"picture", "image.bin", "table.txt", "1", "-o", "out.bmp"});
    EXPECT_TRUE(failedWith(noFrames, {"row 001", "has 0 frames"}));
    EXPECT_FALSE(exists(folder.path("out.bmp")));
}

TEST(BadTables, DimensionsWhoseProductOverflowsAreRefused)
{
    TempFolder folder;
    const std::string table = pictureLine("00000010", "1", "12", "65536*65536", "16");
    EXPECT_TRUE(failedWith(pictureWith(folder, table, {"picture", "image.bin", "table.txt", "1", "-o", "out.bmp"}),
                           {"65536*65536"}));
    EXPECT_TRUE(failedWith(
        pictureWith(folder, table, {"picture", "image.bin", "table.txt", "1", "--recompute-size", "-o", "out.bmp"}),
        {"table.txt", "line 1", "65536*65536"}));
    EXPECT_FALSE(exists(folder.path("out.bmp")));
}

TEST(BadTables, FrameCountAbove32767IsRefusedForAPatch)
{
    TempFolder folder;
    const RunResult result = pictureWith(folder, pictureLine("00000010", "40000", "12", "3*2", "16"),
                                         {"picture-patch", "image.bin", "table.txt", "--rows", "001", "-o", "out.s3"});
    EXPECT_TRUE(failedWith(result, {"row 001", "40000", "32767"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
}

TEST(BadTables, AddressAbove7FFFFFFFIsRefused)
{
    TempFolder folder;
    const RunResult result = pictureWith(folder, pictureLine("FFFFFFFF", "1", "12", "3*2", "16"),
                                         {"picture", "image.bin", "table.txt", "1", "-o", "out.bmp"});
    EXPECT_TRUE(failedWith(result, {"FFFFFFFF", "7FFFFFFF"}));
}

TEST(BadTables, FramePastTheImageEndStillGivesAPictureWithZerosForTheMissingBytes)
{
    TempFolder folder;
    const RunResult result = pictureWith(folder, pictureLine("00000FFA", "1", "12", "3*2", "16"),
                                         {"picture", "image.bin", "table.txt", "1", "-o", "out.bmp"});
    ASSERT_TRUE(succeeded(result));
    const Bytes bmp = readBytes(folder.path("out.bmp"));
    ASSERT_EQ(bmp.size(), 86u);
    // Bottom row first: bytes 0xFFD.. lie past the end, so the whole bottom row is zero.
    EXPECT_EQ(Bytes(bmp.begin() + 70, bmp.begin() + 78), (Bytes{0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Bytes(bmp.begin() + 78, bmp.end()), (Bytes{0x5A, 0x5A, 0x5A, 0x5A, 0x5A, 0x5A, 0, 0}));
}
