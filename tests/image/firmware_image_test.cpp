#include "image/firmware_image.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

namespace {

ImageState imageOf(std::vector<std::uint8_t> bytes)
{
    ImageState state;
    setImage(state, "/tmp/phone.bin", std::move(bytes));
    return state;
}

}  // namespace

TEST(FindHexInImage, WalksEveryOccurrenceThenFailsOnceThenWraps)
{
    ImageState state = imageOf({0x00, 0xAB, 0xCD, 0x00, 0xAB, 0xCD, 0xAB, 0xCD, 0x11});
    ASSERT_TRUE(FindHexInImage(state, "ABCD"));
    EXPECT_EQ(state.SearchStart, 1);
    EXPECT_EQ(state.LastMatch, 1);
    ASSERT_TRUE(FindHexInImage(state, "ABCD"));
    EXPECT_EQ(state.SearchStart, 4);
    ASSERT_TRUE(FindHexInImage(state, "ABCD"));
    EXPECT_EQ(state.SearchStart, 6);
    EXPECT_FALSE(FindHexInImage(state, "ABCD"));
    EXPECT_EQ(state.LastMatch, 0);
    ASSERT_TRUE(FindHexInImage(state, "ABCD"));
    EXPECT_EQ(state.SearchStart, 1);
}

TEST(FindHexInImage, PatternAtIndexZeroIsNeverFound)
{
    ImageState state = imageOf({0x4D, 0x4D, 0x4D, 0x44, 0x00, 0x00});
    EXPECT_FALSE(FindHexInImage(state, "4D4D4D44"));
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(FindHexInImage, PatternEndingOnTheLastByteIsFound)
{
    ImageState state = imageOf({0x00, 0x00, 0x12, 0x34});
    ASSERT_TRUE(FindHexInImage(state, "1234"));
    EXPECT_EQ(state.SearchStart, 2);
}

TEST(FindHexInImage, OverlappingOccurrencesAreEachFound)
{
    ImageState state = imageOf({0x00, 0x4D, 0x4D, 0x4D, 0x4D, 0x44});
    ASSERT_TRUE(FindHexInImage(state, "4D4D"));
    EXPECT_EQ(state.SearchStart, 1);
    ASSERT_TRUE(FindHexInImage(state, "4D4D"));
    EXPECT_EQ(state.SearchStart, 2);
    ASSERT_TRUE(FindHexInImage(state, "4D4D"));
    EXPECT_EQ(state.SearchStart, 3);
    EXPECT_FALSE(FindHexInImage(state, "4D4D"));
}

TEST(FindHexInImage, LowerCaseHexMatches)
{
    ImageState state = imageOf({0x00, 0xAB});
    EXPECT_TRUE(FindHexInImage(state, "ab"));
}

TEST(FindHexInImage, NonHexPatternIsNotFoundAndResets)
{
    ImageState state = imageOf({0x00, 0xAB, 0xAB});
    ASSERT_TRUE(FindHexInImage(state, "AB"));
    EXPECT_FALSE(FindHexInImage(state, "AZ"));
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(FindHexInImage, OddTailDigitIsAByteWhenHalfRoundsUp)
{
    // Three digits make two pattern bytes (1.5 rounds to 2): 12 and 3.
    ImageState state = imageOf({0x00, 0x12, 0x03, 0x12, 0x30});
    ASSERT_TRUE(FindHexInImage(state, "123"));
    EXPECT_EQ(state.SearchStart, 1);
    EXPECT_FALSE(FindHexInImage(state, "123"));
}

TEST(FindHexInImage, OddTailDigitIsDroppedWhenHalfRoundsDown)
{
    // Five digits make two pattern bytes (2.5 rounds to 2): the 5 is ignored.
    ImageState state = imageOf({0x00, 0x12, 0x34, 0x99});
    ASSERT_TRUE(FindHexInImage(state, "12345"));
    EXPECT_EQ(state.SearchStart, 1);
}

TEST(FindHexInImage, EmptyPatternIsNotFound)
{
    ImageState state = imageOf({0x00, 0x01});
    EXPECT_FALSE(FindHexInImage(state, ""));
    EXPECT_FALSE(FindHexInImage(state, "1"));
}

TEST(FindHexInImage, EmptyImageFindsNothing)
{
    ImageState state;
    EXPECT_FALSE(FindHexInImage(state, "00"));
}

TEST(FindHexInImage, PatternLongerThanTheImageIsNotFound)
{
    ImageState state = imageOf({0x00, 0x01, 0x02});
    EXPECT_FALSE(FindHexInImage(state, "01020304"));
}

TEST(CopyToImage, CopiesInPlace)
{
    ImageState state = imageOf(std::vector<std::uint8_t>(6, 0));
    const std::vector<std::uint8_t> source{1, 2, 3};
    EXPECT_TRUE(CopyToImage(state, source, 2, 3));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{0, 0, 1, 2, 3, 0}));
    EXPECT_EQ(state.FirmwareLength, 6);
}

TEST(CopyToImage, StopsAtTheImageEndAndReportsFalse)
{
    ImageState state = imageOf(std::vector<std::uint8_t>(4, 0));
    const std::vector<std::uint8_t> source{7, 8, 9};
    EXPECT_FALSE(CopyToImage(state, source, 2, 3));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{0, 0, 7, 8}));
}

TEST(CopyToImage, CountOfZeroOrLessCopiesNothing)
{
    ImageState state = imageOf({5, 5});
    const std::vector<std::uint8_t> source{1};
    EXPECT_TRUE(CopyToImage(state, source, 0, 0));
    EXPECT_TRUE(CopyToImage(state, source, 0, -3));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{5, 5}));
}

TEST(CopyToImage, NegativeOffsetCopiesNothingAndReportsFalse)
{
    ImageState state = imageOf({5, 5});
    const std::vector<std::uint8_t> source{1};
    EXPECT_FALSE(CopyToImage(state, source, -1, 1));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{5, 5}));
}

TEST(CopyToImage, OffsetPastTheEndCopiesNothingAndReportsFalse)
{
    ImageState state = imageOf({5, 5});
    const std::vector<std::uint8_t> source{1};
    EXPECT_FALSE(CopyToImage(state, source, 2, 1));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{5, 5}));
}

TEST(CopyToImage, SourceShorterThanCountIsRefused)
{
    ImageState state = imageOf({5, 5, 5});
    const std::vector<std::uint8_t> source{1};
    EXPECT_THROW(CopyToImage(state, source, 0, 2), std::out_of_range);
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{5, 5, 5}));
}

TEST(ChunkSizeAt, BigEndianLengthPlusTagAndLength)
{
    ImageState state = imageOf({0x00, 'M', 'M', 'M', 'D', 0x00, 0x00, 0x01, 0x02, 0xEE});
    EXPECT_EQ(ChunkSizeAt(state, 1), 0x102 + 8);
}

TEST(ChunkSizeAt, LengthNearFourGibibytesStaysExact)
{
    ImageState state = imageOf({'M', 'M', 'M', 'D', 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(ChunkSizeAt(state, 0), std::int64_t{0xFFFFFFFF} + 8);
}

TEST(ChunkSizeAt, LengthFieldPastTheEndThrows)
{
    ImageState state = imageOf({'M', 'M', 'M', 'D', 0x00, 0x00, 0x01});
    EXPECT_THROW(ChunkSizeAt(state, 0), std::out_of_range);
    EXPECT_THROW(ChunkSizeAt(state, -1), std::out_of_range);
}
