#include "strings/string_search.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;
using zevran::image::ImageState;

namespace {

ImageState imageOf(const std::string& text)
{
    ImageState state;
    zevran::image::setImage(state, "/tmp/phone.bin", std::vector<std::uint8_t>(text.begin(), text.end()));
    return state;
}

}  // namespace

struct PatternCase {
    std::string name;
    std::string text;  // UTF-8
    bool handset;
    std::string pattern;
};

class SearchPattern : public ::testing::TestWithParam<PatternCase> {};

TEST_P(SearchPattern, IsTheHexOfTheStoredCodes)
{
    EXPECT_EQ(searchPattern(GetParam().text, GetParam().handset), GetParam().pattern);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SearchPattern,
    ::testing::Values(PatternCase{"SingleByteCodes", "OK", false, "4F4B"},
                      PatternCase{"HandsetCodes", "Hi", true, "A148A169"},
                      PatternCase{"ChineseInSingleByteCodesIsItsGbkCode", "\xE4\xB8\xAD", false, "D6D0"},
                      PatternCase{"ChineseInHandsetCodesIsItsCodeUnit", "\xE4\xB8\xAD", true, "4E2D"},
                      PatternCase{"ControlCodeBelow10IsOneDigit", "\x05", false, "5"}),
    [](const auto& row) { return row.param.name; });

TEST(FindNextString, ThreeOccurrencesAreWalkedThenMissedThenWrapped)
{
    ImageState state = imageOf(std::string("\0OK\0..OK\0..OK\0\0", 15));
    int count = 0;
    auto first = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->foundStart, "00000001");
    EXPECT_EQ(count, 1);
    auto second = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->foundStart, "00000006");
    EXPECT_EQ(count, 2);
    auto third = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->foundStart, "0000000B");
    EXPECT_EQ(count, 3);
    EXPECT_FALSE(findNextString(state, "4F4B", false, count));
    EXPECT_EQ(state.LastMatch, 0);
    auto again = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->foundStart, "00000001");
    EXPECT_EQ(count, 1);
}

TEST(FindNextString, StartingFromTheBeginningEveryTimeShowsTheFirst)
{
    ImageState state = imageOf(std::string("\0OK\0..OK\0", 9));
    int count = 0;
    for (int click = 0; click < 3; ++click) {
        state.LastMatch = 0;  // what the "from the beginning" box does before each search
        auto hit = findNextString(state, "4F4B", false, count);
        ASSERT_TRUE(hit);
        EXPECT_EQ(hit->foundStart, "00000001");
        EXPECT_EQ(count, 1);
    }
}

// The first hit of a search in a small image: where the stored string starts and ends
// (at the byte before its zero) and its length, in bytes or in handset characters.
struct FirstHitCase {
    std::string name;
    std::string image;
    std::string pattern;
    bool handset;
    std::string start, end, length;
    int maxLength;
};

class FindFirstString : public ::testing::TestWithParam<FirstHitCase> {};

TEST_P(FindFirstString, MeasuresTheStoredStringToItsZero)
{
    const FirstHitCase& hitCase = GetParam();
    ImageState state = imageOf(hitCase.image);
    int count = 0;
    const auto hit = findNextString(state, hitCase.pattern, hitCase.handset, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->foundStart, hitCase.start);
    EXPECT_EQ(hit->foundEnd, hitCase.end);
    EXPECT_EQ(hit->foundLength, hitCase.length);
    EXPECT_EQ(hit->maxLength, hitCase.maxLength);
    EXPECT_EQ(count, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Images, FindFirstString,
    ::testing::Values(FirstHitCase{"MatchFollowedByZeroIsMeasuredInBytes", std::string("\0OK\0", 4), "4F4B", false,
                                   "00000001", "00000002", "2", 2},
                      FirstHitCase{"StoredStringRunsOnToItsZero", std::string("\0OKAY\0", 6), "4F4B", false, "00000001",
                                   "00000004", "4", 4},
                      FirstHitCase{"HandsetCodesMeasureCharacters", std::string("\0\xA1H\xA1i\xA1 \xA1 \0", 10),
                                   "A148A169", true, "00000001", "00000008", "4", 4},
                      FirstHitCase{"OddByteCountShowsAHalfCharacter", std::string("\0\xA1H\xA1i!\0", 7), "A148", true,
                                   "00000001", "00000005", "2.5", 2},
                      // "OK.OK" is one stored string: the first hit runs on to the zero at 6.
                      FirstHitCase{"HitWithoutZeroIsSkippedForTheNextOne", std::string("\0OK.OK\0", 7), "4F4B", false,
                                   "00000001", "00000005", "5", 5}),
    [](const auto& row) { return row.param.name; });

TEST(FindNextString, HitRunningToTheEndIsCountedAndPassedOver)
{
    ImageState state = imageOf(std::string("\0OK\0.OK", 7));
    int count = 0;
    auto hit = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(findNextString(state, "4F4B", false, count));
    EXPECT_EQ(count, 2);
}

struct StoredTextCase {
    std::string name;
    std::vector<std::uint8_t> bytes;
    bool handset;
    std::string text;  // UTF-8
};

class StoredText : public ::testing::TestWithParam<StoredTextCase> {};

TEST_P(StoredText, DecodesTheStoredCodes)
{
    EXPECT_EQ(storedText(GetParam().bytes, GetParam().handset), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, StoredText,
    ::testing::Values(
        // "Hi", U+4E2D, U+1F600 from its surrogate pair; the odd last byte is left out.
        StoredTextCase{"HandsetCodesDecodeA1PairsAndCodeUnits",
                       {0xA1, 0x48, 0xA1, 0x69, 0x4E, 0x2D, 0xD8, 0x3D, 0xDE, 0x00, 0x21},
                       true,
                       "Hi\xE4\xB8\xAD\xF0\x9F\x98\x80"},
        StoredTextCase{"LoneSurrogateShowsAsReplacementCharacter",
                       {0xDC, 0x00, 0xA1, 0x41},
                       true,
                       "\xEF\xBF\xBD"
                       "A"},
        StoredTextCase{"SingleByteCodesDecodeInTheCodePage", {'O', 'K', 0xD6, 0xD0}, false, "OK\xE4\xB8\xAD"}),
    [](const auto& row) { return row.param.name; });
