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

TEST(SearchPattern, SingleByteCodes) { EXPECT_EQ(searchPattern("OK", false), "4F4B"); }
TEST(SearchPattern, HandsetCodes) { EXPECT_EQ(searchPattern("Hi", true), "A148A169"); }
TEST(SearchPattern, ChineseInSingleByteCodesIsItsGbkCode) { EXPECT_EQ(searchPattern("\xE4\xB8\xAD", false), "D6D0"); }
TEST(SearchPattern, ChineseInHandsetCodesIsItsCodeUnit) { EXPECT_EQ(searchPattern("\xE4\xB8\xAD", true), "4E2D"); }
TEST(SearchPattern, ControlCodeBelow10IsOneDigit) { EXPECT_EQ(searchPattern("\x05", false), "5"); }

TEST(FindNextString, ThreeOccurrencesAreWalkedThenMissedThenWrapped)
{
    ImageState state = imageOf(std::string("\0OK\0..OK\0..OK\0\0", 15));
    int count = 0;
    auto first = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Text10, "00000001");
    EXPECT_EQ(count, 1);
    auto second = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->Text10, "00000006");
    EXPECT_EQ(count, 2);
    auto third = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->Text10, "0000000B");
    EXPECT_EQ(count, 3);
    EXPECT_FALSE(findNextString(state, "4F4B", false, count));
    EXPECT_EQ(state.LastMatch, 0);
    auto again = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->Text10, "00000001");
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
        EXPECT_EQ(hit->Text10, "00000001");
        EXPECT_EQ(count, 1);
    }
}

TEST(FindNextString, MatchFollowedByZeroIsMeasuredInBytes)
{
    ImageState state = imageOf(std::string("\0OK\0", 4));
    int count = 0;
    auto hit = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->Text10, "00000001");
    EXPECT_EQ(hit->Text9, "00000002");
    EXPECT_EQ(hit->Text8, "2");
    EXPECT_EQ(hit->maxLength, 2);
}

TEST(FindNextString, StoredStringRunsOnToItsZero)
{
    ImageState state = imageOf(std::string("\0OKAY\0", 6));
    int count = 0;
    auto hit = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->Text9, "00000004");
    EXPECT_EQ(hit->Text8, "4");
}

TEST(FindNextString, HandsetCodesMeasureCharacters)
{
    ImageState state = imageOf(std::string("\0\xA1H\xA1i\xA1 \xA1 \0", 10));
    int count = 0;
    auto hit = findNextString(state, "A148A169", true, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->Text8, "4");
    EXPECT_EQ(hit->maxLength, 4);
}

TEST(FindNextString, OddByteCountShowsAHalfCharacter)
{
    ImageState state = imageOf(std::string("\0\xA1H\xA1i!\0", 7));
    int count = 0;
    auto hit = findNextString(state, "A148", true, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->Text8, "2.5");
    EXPECT_EQ(hit->maxLength, 2);
}

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

TEST(FindNextString, HitWithoutZeroIsSkippedForTheNextOne)
{
    ImageState state = imageOf(std::string("\0OK.OK\0", 7));
    // "OK.OK" is one stored string; searching "4F4B2E" finds only the first, whose zero is at 6.
    int count = 0;
    auto hit = findNextString(state, "4F4B", false, count);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->Text9, "00000005");
}

TEST(StoredText, HandsetCodesDecodeA1PairsAndCodeUnits)
{
    const std::vector<std::uint8_t> bytes{0xA1, 0x48, 0xA1, 0x69, 0x4E, 0x2D, 0xD8, 0x3D, 0xDE, 0x00, 0x21};
    // "Hi", U+4E2D, U+1F600 from its surrogate pair; the odd last byte is left out.
    EXPECT_EQ(storedText(bytes, true), "Hi\xE4\xB8\xAD\xF0\x9F\x98\x80");
}

TEST(StoredText, LoneSurrogateShowsAsReplacementCharacter)
{
    const std::vector<std::uint8_t> bytes{0xDC, 0x00, 0xA1, 0x41};
    EXPECT_EQ(storedText(bytes, true), "\xEF\xBF\xBD"
                                       "A");
}

TEST(StoredText, SingleByteCodesDecodeInTheCodePage)
{
    const std::vector<std::uint8_t> bytes{'O', 'K', 0xD6, 0xD0};
    EXPECT_EQ(storedText(bytes, false), "OK\xE4\xB8\xAD");
}
