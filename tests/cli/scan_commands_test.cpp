// zevran-cli find-pictures: the pictures of an image in one pass.
#include "cli_run.hpp"
#include "support/firmware_like.hpp"
#include "support/noise_bytes.hpp"

using namespace zevran::test;

namespace {

// A 16-bit icon of 56*56 pixels at 0x6000 among noise, fill and code.
Bytes imageWithAPicture()
{
    Bytes image = noise(0x2000, 7);
    const Bytes code = thumbCode(0x2000, 8);
    image.insert(image.end(), code.begin(), code.end());
    image.resize(0x6000, 0xFF);
    const Bytes picture = drawPictureBytes(56, 56, 16, 0, 99, classicColours());
    image.insert(image.end(), picture.begin(), picture.end());
    const Bytes after = thumbCode(0x1800, 9);
    image.insert(image.end(), after.begin(), after.end());
    return image;
}

RunResult findIn(const TempFolder& folder, const Bytes& image, std::vector<std::string> options)
{
    writeFile(folder.path("image.bin"), image);
    options.insert(options.begin(), {"find-pictures", "image.bin"});
    return runCli(folder, options);
}

}  // namespace

TEST(FindPicturesCommand, PrintsOneLinePerCandidate)
{
    TempFolder folder;
    const RunResult result = findIn(folder, imageWithAPicture(), {});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out.substr(0, 21), "0x00006000 16 56 56 0");
    EXPECT_EQ(result.out.size(), 26u) << result.out;  // "0x00006000 16 56 56 0.xxx\n"
    EXPECT_EQ(result.err, "");
}

TEST(FindPicturesCommand, JsonHoldsTheSameCandidates)
{
    TempFolder folder;
    const RunResult result = findIn(folder, imageWithAPicture(), {"--json"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out.substr(0, 70),
              "[{\"address\": 24576, \"depth\": 16, \"width\": 56, \"height\": 56, \"score\": 0");
    EXPECT_EQ(result.out.substr(result.out.size() - 3), "}]\n");
}

TEST(FindPicturesCommand, NothingFoundIsNoFailure)
{
    TempFolder folder;
    const RunResult result = findIn(folder, noise(0x40000, 3), {});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "image.bin: no pictures found\n");
    const RunResult json = findIn(folder, noise(0x40000, 3), {"--json"});
    EXPECT_EQ(json.out, "[]\n");
}

TEST(FindPicturesCommand, DepthsAndRangeLimitTheScan)
{
    TempFolder folder;
    const Bytes image = imageWithAPicture();
    EXPECT_EQ(findIn(folder, image, {"--depth", "8", "--depth", "24"}).out, "");
    EXPECT_EQ(findIn(folder, image, {"--depth", "16"}).out.substr(0, 11), "0x00006000 ");
    EXPECT_EQ(findIn(folder, image, {"--to", "0x5FFF"}).out, "");
    EXPECT_EQ(findIn(folder, image, {"--from", "8000"}).out, "");
    EXPECT_EQ(findIn(folder, image, {"--from", "0x5000", "--to", "7C00"}).out.substr(0, 11), "0x00006000 ");
}

TEST(FindPicturesCommand, RefusedRangesAndDepthsSayWhy)
{
    TempFolder folder;
    const Bytes image = imageWithAPicture();
    const std::string size = std::to_string(image.size());
    EXPECT_TRUE(failedWith(findIn(folder, image, {"--from", "0x100000"}), {"--from 0x00100000", size}));
    EXPECT_TRUE(failedWith(findIn(folder, image, {"--to", "0x100000"}), {"--to 0x00100000", size}));
    EXPECT_TRUE(
        failedWith(findIn(folder, image, {"--from", "0x2000", "--to", "0x1000"}), {"--to 0x00001000", "before"}));
    EXPECT_TRUE(failedWith(findIn(folder, image, {"--depth", "2"}), {"depth 2"}));
    EXPECT_TRUE(usageError(findIn(folder, image, {"--from", "xyz"})));
    EXPECT_TRUE(usageError(findIn(folder, image, {"--depth"})));
}

TEST(FindPicturesCommand, TableMarksKnownCandidates)
{
    TempFolder folder;
    writeFile(folder.path("known.txt"),
              std::string("001 icon\t 0X00006100\t Frames: 1\t Size: 16\t Pixels: 2*4\t Bits: 16\t\r\n"));
    writeFile(folder.path("other.txt"),
              std::string("001 icon\t 0X00001000\t Frames: 1\t Size: 16\t Pixels: 2*4\t Bits: 16\t\r\n"));
    const Bytes image = imageWithAPicture();
    const RunResult known = findIn(folder, image, {"--table", "known.txt"});
    ASSERT_TRUE(succeeded(known));
    EXPECT_EQ(known.out.substr(known.out.size() - 7), " known\n");
    const RunResult other = findIn(folder, image, {"--table", "other.txt", "--json"});
    EXPECT_NE(other.out.find("\"known\": false}"), std::string::npos) << other.out;
}
