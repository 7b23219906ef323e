#include "image/srecord.hpp"

#include "image/file_io.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <numeric>

using namespace zevran::image;
using zevran::test::readText;
using zevran::test::TempFolder;

namespace {

std::vector<std::uint8_t> countingBytes(std::size_t n, std::uint8_t from = 0)
{
    std::vector<std::uint8_t> bytes(n);
    std::iota(bytes.begin(), bytes.end(), from);
    return bytes;
}

}  // namespace

TEST(SRecordWrite, OneByteRegionGivesOneSixByteLine)
{
    const std::vector<std::uint8_t> data{0xAB};
    // 06 + 00 + 00 + 10 + 00 + AB = C1, and FF - C1 = 3E.
    EXPECT_EQ(sRecordRegionText(data, 0x1000), "S30600001000AB3E\r\n");
}

TEST(SRecordWrite, SixteenByteRegionGivesExactlyOneFullLine)
{
    EXPECT_EQ(sRecordRegionText(countingBytes(16), 0), "S31500000000000102030405060708090A0B0C0D0E0F72\r\n");
}

TEST(SRecordWrite, SeventeenByteRegionGivesAFullLineAndACountSixLine)
{
    EXPECT_EQ(sRecordRegionText(countingBytes(17), 0), "S31500000000000102030405060708090A0B0C0D0E0F72\r\n"
                                                       "S3060000001010D9\r\n");
}

TEST(SRecordWrite, AddressesAboveTheSignedRangeAreWrittenInFull)
{
    const std::vector<std::uint8_t> data{1, 2};
    EXPECT_EQ(sRecordRegionText(data, 0xA0020000), "S307A0020000010253\r\n");
}

TEST(SRecordWrite, RegionFedInPiecesOfSixteenGivesTheSameLines)
{
    const auto data = countingBytes(16 * 5 + 3, 0x40);
    std::string whole = sRecordRegionText(data, 0x2000);
    std::string pieces;
    appendSRecordLines(pieces, std::span(data).first(32), 0x2000);
    appendSRecordLines(pieces, std::span(data).subspan(32), 0x2020);
    EXPECT_EQ(pieces, whole);
}

TEST(SRecordWrite, FixedHeaderAndTrailer)
{
    EXPECT_EQ(S0Line, "S00600004844521B\r\n");
    EXPECT_EQ(S7Line, "S705A002000058\r\n");
    EXPECT_EQ(S3Prefix, "S315");
}

TEST(WriteSRecordRegion, OneRegionBothOpensAndClosesTheFile)
{
    TempFolder folder;
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB};
    const std::string path = folder.path("patch.s3");
    EXPECT_TRUE(WriteSRecordRegion(file, data, 0x1000, 0x1000, path, true, true));
    EXPECT_EQ(readText(path), "S00600004844521B\r\nS30600001000AB3E\r\nS705A002000058\r\n");
}

TEST(WriteSRecordRegion, TwoRegionsShareOneHeaderAndOneTrailer)
{
    TempFolder folder;
    PatchFile file;
    const std::string path = folder.path("patch.s3");
    const std::vector<std::uint8_t> first{0xAB};
    const std::vector<std::uint8_t> second{0xDE, 0xAD};
    EXPECT_FALSE(WriteSRecordRegion(file, first, 0x1000, 0x1000, path, true, false));
    EXPECT_TRUE(WriteSRecordRegion(file, second, 0x20, 0x21, path, false, true));
    EXPECT_EQ(readText(path), "S00600004844521B\r\n"
                              "S30600001000AB3E\r\n"
                              "S30700000020DEAD4D\r\n"
                              "S705A002000058\r\n");
}

TEST(WriteSRecordRegion, AnOlderLongerFileIsTruncated)
{
    TempFolder folder;
    const std::string path = folder.path("patch.s3");
    zevran::test::writeFile(path, std::string(500, 'x'));
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB};
    WriteSRecordRegion(file, data, 0x1000, 0x1000, path, true, true);
    EXPECT_EQ(readText(path), "S00600004844521B\r\nS30600001000AB3E\r\nS705A002000058\r\n");
}

TEST(WriteSRecordRegion, OnlyTheRegionsBytesAreWrittenFromALongerArray)
{
    TempFolder folder;
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB, 0xCD, 0xEF};
    const std::string path = folder.path("patch.s3");
    WriteSRecordRegion(file, data, 0x1000, 0x1000, path, true, true);
    EXPECT_EQ(readText(path), "S00600004844521B\r\nS30600001000AB3E\r\nS705A002000058\r\n");
}

TEST(WriteSRecordRegion, DataShorterThanTheRegionIsRefused)
{
    TempFolder folder;
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB};
    EXPECT_THROW(WriteSRecordRegion(file, data, 0x1000, 0x1001, folder.path("p.s3"), true, true),
                 std::invalid_argument);
}

TEST(WriteSRecordRegion, RegionEndingBeforeItStartsIsRefused)
{
    TempFolder folder;
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB};
    EXPECT_THROW(WriteSRecordRegion(file, data, 0x1000, 0x0FFF, folder.path("p.s3"), true, true),
                 std::invalid_argument);
}

TEST(WriteSRecordRegion, UncreatableFileIsAFileError)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("plain"), std::string("x"));
    PatchFile file;
    const std::vector<std::uint8_t> data{0xAB};
    // A path below a regular file cannot be created, not even by root.
    EXPECT_THROW(WriteSRecordRegion(file, data, 0, 0, folder.path("plain/p.s3"), true, true), FileError);
}

TEST(WriteSRecordRegion, FullDiskIsAFileError)
{
    PatchFile file;
    const std::vector<std::uint8_t> data(64, 0x11);
    EXPECT_THROW(WriteSRecordRegion(file, data, 0, 63, "/dev/full", true, true), FileError);
}
