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

// A search walked to its end: the offset of every hit in turn, then no more.
struct WalkCase {
    std::string name;
    std::vector<std::uint8_t> image;
    std::string pattern;
    std::vector<std::int32_t> hits;
};

class FindHexWalk : public ::testing::TestWithParam<WalkCase> {};

TEST_P(FindHexWalk, FindsEachHitInTurnThenNoMore)
{
    ImageState state = imageOf(GetParam().image);
    for (std::int32_t hit : GetParam().hits) {
        ASSERT_TRUE(FindHexInImage(state, GetParam().pattern)) << "hit at " << hit;
        EXPECT_EQ(state.SearchStart, hit);
    }
    EXPECT_FALSE(FindHexInImage(state, GetParam().pattern));
    EXPECT_EQ(state.LastMatch, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, FindHexWalk,
    ::testing::Values(
        WalkCase{"PatternAtIndexZeroIsNeverFound", {0x4D, 0x4D, 0x4D, 0x44, 0x00, 0x00}, "4D4D4D44", {}},
        WalkCase{"PatternEndingOnTheLastByteIsFound", {0x00, 0x00, 0x12, 0x34}, "1234", {2}},
        WalkCase{"OverlappingOccurrencesAreEachFound", {0x00, 0x4D, 0x4D, 0x4D, 0x4D, 0x44}, "4D4D", {1, 2, 3}},
        WalkCase{"LowerCaseHexMatches", {0x00, 0xAB}, "ab", {1}},
        // Three digits make two pattern bytes (1.5 rounds to 2): 12 and 3.
        WalkCase{"OddTailDigitIsAByteWhenHalfRoundsUp", {0x00, 0x12, 0x03, 0x12, 0x30}, "123", {1}},
        // Five digits make two pattern bytes (2.5 rounds to 2): the 5 is ignored.
        WalkCase{"OddTailDigitIsDroppedWhenHalfRoundsDown", {0x00, 0x12, 0x34, 0x99}, "12345", {1}},
        WalkCase{"EmptyPatternIsNotFound", {0x00, 0x01}, "", {}},
        WalkCase{"SingleDigitPatternIsNotFound", {0x00, 0x01}, "1", {}},
        WalkCase{"PatternLongerThanTheImageIsNotFound", {0x00, 0x01, 0x02}, "01020304", {}}),
    [](const auto& row) { return row.param.name; });

TEST(FindHexInImage, NonHexPatternIsNotFoundAndResets)
{
    ImageState state = imageOf({0x00, 0xAB, 0xAB});
    ASSERT_TRUE(FindHexInImage(state, "AB"));
    EXPECT_FALSE(FindHexInImage(state, "AZ"));
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(FindHexInImage, EmptyImageFindsNothing)
{
    ImageState state;
    EXPECT_FALSE(FindHexInImage(state, "00"));
}

// A copy into the image: what it reports and the image after it.
struct CopyCase {
    std::string name;
    std::vector<std::uint8_t> image;
    std::vector<std::uint8_t> source;
    std::int32_t offset, count;
    bool whole;
    std::vector<std::uint8_t> after;
};

class CopyToImageCase : public ::testing::TestWithParam<CopyCase> {};

TEST_P(CopyToImageCase, CopiesWhatFitsAndSaysWhetherAllDid)
{
    ImageState state = imageOf(GetParam().image);
    EXPECT_EQ(CopyToImage(state, GetParam().source, GetParam().offset, GetParam().count), GetParam().whole);
    EXPECT_EQ(state.FirmwareImage, GetParam().after);
    EXPECT_EQ(state.FirmwareLength, static_cast<std::int32_t>(GetParam().image.size()));
}

INSTANTIATE_TEST_SUITE_P(
    Copies, CopyToImageCase,
    ::testing::Values(CopyCase{"CopiesInPlace", {0, 0, 0, 0, 0, 0}, {1, 2, 3}, 2, 3, true, {0, 0, 1, 2, 3, 0}},
                      CopyCase{"StopsAtTheImageEndAndReportsFalse", {0, 0, 0, 0}, {7, 8, 9}, 2, 3, false, {0, 0, 7, 8}},
                      CopyCase{"CountOfZeroCopiesNothing", {5, 5}, {1}, 0, 0, true, {5, 5}},
                      CopyCase{"NegativeCountCopiesNothing", {5, 5}, {1}, 0, -3, true, {5, 5}},
                      CopyCase{"NegativeOffsetCopiesNothingAndReportsFalse", {5, 5}, {1}, -1, 1, false, {5, 5}},
                      CopyCase{"OffsetPastTheEndCopiesNothingAndReportsFalse", {5, 5}, {1}, 2, 1, false, {5, 5}}),
    [](const auto& row) { return row.param.name; });

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
