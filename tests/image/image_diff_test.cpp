#include "image/file_io.hpp"
#include "image/image_diff.hpp"
#include "image/srecord_reader.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using namespace zevran::image;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Ranges = std::vector<DiffRange>;

Bytes text(const std::string& letters) { return Bytes(letters.begin(), letters.end()); }

// A copy of `bytes` with the byte at each address turned over.
Bytes flipped(Bytes bytes, std::initializer_list<std::size_t> addresses)
{
    for (std::size_t at : addresses) bytes[at] = static_cast<std::uint8_t>(~bytes[at]);
    return bytes;
}

}  // namespace

TEST(ImageDiff, EqualImagesHaveNoRegion)
{
    EXPECT_EQ(compareImages(text("ABCDEFGH"), text("ABCDEFGH")), Ranges{});
    EXPECT_EQ(compareImages(Bytes{}, Bytes{}), Ranges{});
}

TEST(ImageDiff, RegionsAreTheMaximalRunsOfDifferingBytes)
{
    //                                     0123456789
    EXPECT_EQ(compareImages(text("ABCDEFGHIJ"), text("ABCxyzGHIw")), (Ranges{{3, 5}, {9, 9}}));
}

TEST(ImageDiff, DifferenceAtAddressZeroIsFound)
{
    EXPECT_EQ(compareImages(text("ABCD"), text("xBCD")), (Ranges{{0, 0}}));
}

TEST(ImageDiff, RegionAtTheVeryEndOfEqualLengthImages)
{
    EXPECT_EQ(compareImages(text("ABCDEFGH"), text("ABCDEFGx")), (Ranges{{7, 7}}));
    EXPECT_EQ(compareImages(text("ABCDEFGHIJKLMNOPQRS"), text("ABCDEFGHIJKLMNOPxyz")), (Ranges{{16, 18}}));
}

TEST(ImageDiff, EveryByteDifferentIsOneRegion)
{
    EXPECT_EQ(compareImages(Bytes(100, 0x00), Bytes(100, 0xFF)), (Ranges{{0, 99}}));
}

TEST(ImageDiff, GapJoinsRunsSeparatedByAtMostGapEqualBytes)
{
    //                        0123456789
    const Bytes older = text("ABCDEFGHIJ");
    const Bytes newer = text("ABCxEFyHIJ");  // two equal bytes (4, 5) between the runs
    EXPECT_EQ(compareImages(older, newer, 0), (Ranges{{3, 3}, {6, 6}}));
    EXPECT_EQ(compareImages(older, newer, 1), (Ranges{{3, 3}, {6, 6}}));
    EXPECT_EQ(compareImages(older, newer, 2), (Ranges{{3, 6}}));
    EXPECT_EQ(compareImages(older, newer, 1000), (Ranges{{3, 6}}));
}

TEST(ImageDiff, GapJoinsAChainOfRuns)
{
    //                        0123456789ABCDEF
    const Bytes older = text("ABCDEFGHIJKLMNOP");
    const Bytes newer = text("xBxDxFGHIJKLxNOx");
    EXPECT_EQ(compareImages(older, newer, 0), (Ranges{{0, 0}, {2, 2}, {4, 4}, {12, 12}, {15, 15}}));
    EXPECT_EQ(compareImages(older, newer, 1), (Ranges{{0, 4}, {12, 12}, {15, 15}}));
    EXPECT_EQ(compareImages(older, newer, 2), (Ranges{{0, 4}, {12, 15}}));
    EXPECT_EQ(compareImages(older, newer, 7), (Ranges{{0, 15}}));
}

TEST(ImageDiff, LongerSecondImageGivesItsExtraBytesAsTheLastRegion)
{
    EXPECT_EQ(compareImages(text("ABCDEFGH"), text("ABCDEFGHxyz")), (Ranges{{8, 10}}));
    EXPECT_EQ(compareImages(text("ABCDEFGH"), text("AxCDEFGHxyz")), (Ranges{{1, 1}, {8, 10}}));
}

TEST(ImageDiff, ExtraBytesJoinTheLastRunByTheGapRule)
{
    //                        01234567
    const Bytes older = text("ABCDEFGH");
    EXPECT_EQ(compareImages(older, text("ABCDEFxHyz"), 0), (Ranges{{6, 6}, {8, 9}}));
    EXPECT_EQ(compareImages(older, text("ABCDEFxHyz"), 1), (Ranges{{6, 9}}));
    // A run that reaches the last common byte touches the extra bytes: one region.
    EXPECT_EQ(compareImages(older, text("ABCDEFGxyz"), 0), (Ranges{{7, 9}}));
}

TEST(ImageDiff, EmptyFirstImageMakesTheWholeSecondOneRegion)
{
    EXPECT_EQ(compareImages(Bytes{}, text("xyz")), (Ranges{{0, 2}}));
}

TEST(ImageDiff, ShorterSecondImageIsRefusedWithBothLengths)
{
    try {
        compareImages(text("ABCDEFGH"), text("ABCDEF"));
        FAIL() << "no ShorterImage thrown";
    } catch (const ShorterImage& error) {
        EXPECT_EQ(error.olderLength(), 8u);
        EXPECT_EQ(error.newerLength(), 6u);
        EXPECT_STREQ(error.what(),
                     "the second image holds 6 bytes, fewer than the 8 of the first; a patch cannot shorten an image");
    }
}

TEST(ImageDiff, DifferencesAcrossBlockAndWordBoundariesOfALargeImage)
{
    Bytes older(300000);
    for (std::size_t i = 0; i < older.size(); ++i) older[i] = static_cast<std::uint8_t>(i * 7 + (i >> 9));
    Bytes newer = flipped(older, {7, 8, 65535, 65536, 131071, 200001, 299999});
    for (std::size_t i = 150000; i < 150100; ++i) newer[i] = static_cast<std::uint8_t>(~older[i]);
    EXPECT_EQ(compareImages(older, newer),
              (Ranges{{7, 8}, {65535, 65536}, {131071, 131071}, {150000, 150099}, {200001, 200001}, {299999, 299999}}));
    // 18928 equal bytes lie between 131071 and 150000; every other distance is larger.
    EXPECT_EQ(compareImages(older, newer, 18927), compareImages(older, newer));
    EXPECT_EQ(compareImages(older, newer, 18928),
              (Ranges{{7, 8}, {65535, 65536}, {131071, 150099}, {200001, 200001}, {299999, 299999}}));
}

TEST(ImageDiff, EveryRunAgainstAByteByByteComparison)
{
    // Runs of every length from 1 to 70 at every offset of a 64-byte step, which the
    // vector comparison takes 16 and 64 bytes at a time, against a plain byte loop.
    for (std::size_t offset = 0; offset < 64; offset += 3) {
        for (std::size_t length = 1; length <= 70; length += 1 + length / 8) {
            Bytes older(512 + offset % 7);
            for (std::size_t i = 0; i < older.size(); ++i) older[i] = static_cast<std::uint8_t>(i * 13);
            Bytes newer = older;
            for (std::size_t i = offset + 64; i < offset + 64 + length; ++i) newer[i] ^= 0x5A;
            newer[offset + 64 + length + 1] ^= 0x01;
            newer.back() ^= 0xFF;
            Ranges expected;
            for (std::size_t i = 0; i < older.size(); ++i) {
                if (older[i] == newer[i]) continue;
                if (!expected.empty() && static_cast<std::size_t>(expected.back().last) + 1 == i)
                    expected.back().last = static_cast<std::int32_t>(i);
                else expected.push_back({static_cast<std::int32_t>(i), static_cast<std::int32_t>(i)});
            }
            EXPECT_EQ(compareImages(older, newer), expected) << offset << " " << length;
        }
    }
}

TEST(ImageDiff, ComparisonGivesUpPastTheGivenNumberOfRegions)
{
    //                        0123456789
    const Bytes older = text("ABCDEFGHIJ");
    const Bytes newer = text("xBxDxFGHIJyz");  // runs at 0, 2, 4, and the tail 10..11
    EXPECT_EQ(compareImagesUpTo(older, newer, 0, 4), (Ranges{{0, 0}, {2, 2}, {4, 4}, {10, 11}}));
    EXPECT_EQ(compareImagesUpTo(older, newer, 0, 3), std::nullopt);
    EXPECT_EQ(compareImagesUpTo(older, newer, 1, 2), (Ranges{{0, 4}, {10, 11}}));
    EXPECT_EQ(compareImagesUpTo(older, newer, 1, 1), std::nullopt);
    EXPECT_EQ(compareImagesUpTo(older, newer, 5, 1), (Ranges{{0, 11}}));
    EXPECT_EQ(compareImagesUpTo(older, older, 0, 0), Ranges{});
    EXPECT_THROW(compareImagesUpTo(newer, older, 0, 9), ShorterImage);
}

TEST(ImageDiff, RegionsHoldTheSecondImagesBytes)
{
    const auto regions = diffRegions(text("ABCxyzGHIw"), Ranges{{3, 5}, {9, 9}});
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0].first, 3);
    EXPECT_EQ(regions[0].last, 5);
    EXPECT_EQ(regions[0].bytes, text("xyz"));
    EXPECT_EQ(regions[1].first, 9);
    EXPECT_EQ(regions[1].last, 9);
    EXPECT_EQ(regions[1].bytes, text("w"));
}

TEST(ImageDiff, RangeOutsideTheImageIsRefused)
{
    EXPECT_THROW(diffRegions(text("ABCD"), Ranges{{2, 4}}), std::out_of_range);
    EXPECT_THROW(diffRegions(text("ABCD"), Ranges{{-1, 1}}), std::out_of_range);
}

TEST(ImageDiff, RangeIsDescribedAsFirstLastAndDecimalSize)
{
    EXPECT_EQ(describeRange({0x1234, 0x123F}), "0x00001234 0x0000123F 12");
    EXPECT_EQ(describeRange({0, 0}), "0x00000000 0x00000000 1");
    EXPECT_EQ(describeRange({0x7FFFFFF0, 0x7FFFFFFF}), "0x7FFFFFF0 0x7FFFFFFF 16");
}

TEST(ImageDiff, PreviewShowsTheFirstBytesOfARangeInHex)
{
    const Bytes image = {0x00, 0x0F, 0xA0, 0xFF, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16};
    EXPECT_EQ(previewBytes(image, {1, 3}), "0F A0 FF");
    EXPECT_EQ(previewBytes(image, {0, 10}, 4), "00 0F A0 FF ...");
    EXPECT_EQ(previewBytes(image, {0, 3}, 4), "00 0F A0 FF");
    // A range reaching past the end shows the bytes there are; one wholly past it shows none.
    EXPECT_EQ(previewBytes(image, {9, 12}), "15 16");
    EXPECT_EQ(previewBytes(image, {11, 12}), "");
}

TEST(ImageDiff, PatchHoldsTheSecondImagesBytesOfEveryRegionInOrder)
{
    TempFolder folder;
    const std::string path = folder.path("change.s3");
    // x at 2: 06 + 02 + 78 = 80 -> 7F. y at 5: 06 + 05 + 79 = 84 -> 7B. K L at 0A: 07 + 0A + 4B + 4C = A8 -> 57.
    EXPECT_TRUE(writeDiffPatch(path, text("ABxDEyGHIJKL"), Ranges{{2, 2}, {5, 5}, {10, 11}}));
    EXPECT_EQ(readText(path), "S00600004844521B\r\n"
                              "S30600000002787F\r\n"
                              "S30600000005797B\r\n"
                              "S3070000000A4B4C57\r\n"
                              "S705A002000058\r\n");
}

TEST(ImageDiff, NoRegionWritesNoPatchFile)
{
    TempFolder folder;
    const std::string path = folder.path("change.s3");
    EXPECT_FALSE(writeDiffPatch(path, text("ABCD"), Ranges{}));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ImageDiff, BadRangeWritesNoPatchFileAtAll)
{
    TempFolder folder;
    const std::string path = folder.path("change.s3");
    EXPECT_THROW(writeDiffPatch(path, text("ABCD"), Ranges{{0, 0}, {3, 9}}), std::out_of_range);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ImageDiff, PatchLaidOverTheFirstImageGivesTheSecond)
{
    TempFolder folder;
    Bytes older(5000);
    for (std::size_t i = 0; i < older.size(); ++i) older[i] = static_cast<std::uint8_t>(i % 251);
    Bytes newer = flipped(older, {0, 1, 17, 18, 19, 40, 1000, 4095, 4999});
    newer.insert(newer.end(), {0x01, 0x02, 0x03});
    const std::string path = folder.path("change.s3");
    for (std::size_t gap : {0, 3, 100}) {
        ASSERT_TRUE(writeDiffPatch(path, newer, compareImages(older, newer, gap)));
        Bytes patched = older;
        patched.resize(newer.size());
        std::istringstream patch(readText(path));
        applySRecordPatch(patched, patch);
        EXPECT_EQ(patched, newer) << "gap " << gap;
    }
}

TEST(ImageDiffFiles, FilesGiveTheRegionsOfTheirBytesAcrossWindowEdges)
{
    TempFolder folder;
    // Past two windows of 4 MiB, with runs ending at, starting at and spanning both edges.
    constexpr std::size_t kWindow = std::size_t{4} << 20;
    Bytes older(2 * kWindow + 5000);
    for (std::size_t i = 0; i < older.size(); ++i) older[i] = static_cast<std::uint8_t>(i * 7 % 253);
    Bytes newer = flipped(older, {0, 5, kWindow - 2, kWindow - 1, kWindow + 3, 2 * kWindow - 1, 2 * kWindow,
                                  2 * kWindow + 1, 2 * kWindow + 4999});
    newer.insert(newer.end(), {0xAA, 0xBB});
    writeFile(folder.path("old.bin"), older);
    writeFile(folder.path("new.bin"), newer);
    for (std::size_t gap : {0, 3, 16}) {
        const Ranges ranges = compareImageFiles(folder.path("old.bin"), folder.path("new.bin"), gap);
        EXPECT_EQ(ranges, compareImages(older, newer, gap)) << "gap " << gap;
    }
    EXPECT_EQ(compareImageFiles(folder.path("old.bin"), folder.path("new.bin")),
              (Ranges{{0, 0},
                      {5, 5},
                      {kWindow - 2, kWindow - 1},
                      {kWindow + 3, kWindow + 3},
                      {2 * kWindow - 1, 2 * kWindow + 1},
                      {2 * kWindow + 4999, 2 * kWindow + 5001}}));
}

TEST(ImageDiffFiles, EqualAndEmptyFilesHaveNoRegion)
{
    TempFolder folder;
    writeFile(folder.path("a.bin"), text("ABCD"));
    writeFile(folder.path("b.bin"), text("ABCD"));
    writeFile(folder.path("empty.bin"), Bytes{});
    EXPECT_EQ(compareImageFiles(folder.path("a.bin"), folder.path("b.bin")), Ranges{});
    EXPECT_EQ(compareImageFiles(folder.path("empty.bin"), folder.path("empty.bin")), Ranges{});
    EXPECT_EQ(compareImageFiles(folder.path("empty.bin"), folder.path("a.bin")), (Ranges{{0, 3}}));
}

TEST(ImageDiffFiles, ShorterSecondFileIsRefusedWithBothLengths)
{
    TempFolder folder;
    writeFile(folder.path("a.bin"), text("ABCDEFGHIJ"));
    writeFile(folder.path("b.bin"), text("ABCDEFG"));
    try {
        compareImageFiles(folder.path("a.bin"), folder.path("b.bin"));
        FAIL() << "no ShorterImage";
    } catch (const ShorterImage& error) {
        EXPECT_EQ(error.olderLength(), 10u);
        EXPECT_EQ(error.newerLength(), 7u);
    }
}

TEST(ImageDiffFiles, MissingFileOrFolderIsAFileErrorNamingIt)
{
    TempFolder folder;
    writeFile(folder.path("a.bin"), text("ABCD"));
    EXPECT_THROW(compareImageFiles(folder.path("a.bin"), folder.path("absent.bin")), FileError);
    try {
        compareImageFiles(folder.path("a.bin"), folder.path(""));
        FAIL() << "no FileError";
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("is a folder, not a file"), std::string::npos);
    }
}

TEST(ImageDiffFiles, PatchFromTheFileIsThePatchFromMemory)
{
    TempFolder folder;
    // A range of more than a MiB is written in pieces, which must give the same lines.
    Bytes older((std::size_t{3} << 20) + 77);
    for (std::size_t i = 0; i < older.size(); ++i) older[i] = static_cast<std::uint8_t>(i % 251);
    Bytes newer = older;
    for (std::size_t i = 100; i < (std::size_t{5} << 19) + 3; ++i) newer[i] = static_cast<std::uint8_t>(~newer[i]);
    newer = flipped(newer, {0, older.size() - 1});
    writeFile(folder.path("new.bin"), newer);
    const Ranges ranges = compareImages(older, newer, 0);
    ASSERT_EQ(ranges.size(), 3u);
    ASSERT_TRUE(writeDiffPatch(folder.path("memory.s3"), newer, ranges));
    ASSERT_TRUE(writeDiffPatchFromFile(folder.path("file.s3"), folder.path("new.bin"), ranges));
    EXPECT_EQ(readText(folder.path("file.s3")), readText(folder.path("memory.s3")));
    EXPECT_FALSE(writeDiffPatchFromFile(folder.path("none.s3"), folder.path("new.bin"), Ranges{}));
    EXPECT_FALSE(std::filesystem::exists(folder.path("none.s3")));
    EXPECT_THROW(writeDiffPatchFromFile(folder.path("bad.s3"), folder.path("new.bin"), Ranges{{0, 0}, {5, 1 << 30}}),
                 std::out_of_range);
    EXPECT_FALSE(std::filesystem::exists(folder.path("bad.s3")));
}
