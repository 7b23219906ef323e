// Finding every stored string: each encoding, terminators, U+xx00 characters, strings
// at the image's end, and a firmware-like image of tables among machine code and noise.
#include "firmware_like_image.hpp"
#include "strings/string_extract.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using namespace zevran::strings;
using zevran::test::FirmwareLikeMaker;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

std::vector<StoredString> extract(const Bytes& image, std::uint32_t minBytes = 4, CodesWanted codes = CodesWanted::Both)
{
    ExtractOptions options;
    options.minBytes = minBytes;
    options.codes = codes;
    return extractStrings(image, options).strings;
}

constexpr auto kSingle = StringCodes::Single;
constexpr auto kHandset = StringCodes::Handset;

}  // namespace

TEST(StringExtract, SingleByteTableIsListedWithAddressesBudgetsAndTexts)
{
    // "Menu" at 0x04, "Settings" at 0x09, "Back" at 0x14 (after alignment zeros).
    const Bytes image = bytesOf(std::string_view("\xFF\xFF\xFF\x00Menu\x00Settings\x00\x00\x00"
                                                 "Back\x00\xFF",
                                                 26));
    EXPECT_EQ(extract(image),
              (std::vector<StoredString>{
                  {0x04, kSingle, 4, "Menu"}, {0x09, kSingle, 8, "Settings"}, {0x14, kSingle, 4, "Back"}}));
}

TEST(StringExtract, GbkCharactersAreTwoBytesOfOneSingleByteString)
{
    // 设置 (C9 E8 D6 C3) and 短信 (B6 CC D0 C5) in GBK, end to end.
    const Bytes image = bytesOf(std::string_view("\x00\xC9\xE8\xD6\xC3\x00\xB6\xCC\xD0\xC5\x00", 11));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x01, kSingle, 4, "设置"}, {0x06, kSingle, 4, "短信"}}));
}

TEST(StringExtract, HandsetCodesOkIsFourBytesAndListed)
{
    // "OK" A1 4F A1 4B and "Hi" A1 48 A1 69, each ending at one zero byte.
    const Bytes image = bytesOf(std::string_view("\x00\xA1\x4F\xA1\x4B\x00\xA1\x48\xA1\x69\x00", 11));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x01, kHandset, 4, "OK"}, {0x06, kHandset, 4, "Hi"}}));
}

TEST(StringExtract, ZeroLowByteBelongsToItsCharacter)
{
    // 一二 is 4E 00 4E 8C: the zero after 4E is U+4E00's low byte, not a terminator.
    // 中文 (4E 2D 65 87) follows.
    const Bytes image = bytesOf(std::string_view("\x00\x4E\x00\x4E\x8C\x00\x4E\x2D\x65\x87\x00", 11));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x01, kHandset, 4, "一二"}, {0x06, kHandset, 4, "中文"}}));
}

TEST(StringExtract, HandsetStringEndsAtTheZeroAtAnEvenDistance)
{
    // 设置 (8B BE 7F 6E) then a zero at distance 4; the zero at distance 5 belongs to no unit.
    const Bytes image = bytesOf(std::string_view("\x00\x8B\xBE\x7F\x6E\x00\x00\xA1\x4F\xA1\x4B\x00", 12));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x01, kHandset, 4, "设置"}, {0x07, kHandset, 4, "OK"}}));
}

TEST(StringExtract, StringEndingOnTheImagesLastByteIsListed)
{
    const Bytes image = bytesOf(std::string_view("\x00Menu\x00"
                                                 "Exit\x00",
                                                 11));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x01, kSingle, 4, "Menu"}, {0x06, kSingle, 4, "Exit"}}));
}

TEST(StringExtract, HandsetStringWhoseTerminatorIsTheLastByteIsListed)
{
    // The terminator is one zero byte: no second byte of its unit is needed.
    const Bytes image = bytesOf(std::string_view("\x00\xA1\x4F\xA1\x4B\x00\xA1\x48\xA1\x69\x00", 11));
    EXPECT_EQ(extract(image).back(), (StoredString{0x06, kHandset, 4, "Hi"}));
}

TEST(StringExtract, RunToTheImagesEndWithoutAZeroIsNoString)
{
    const Bytes image = bytesOf(std::string_view("\x00Menu\x00"
                                                 "Exit\x00Unterminated",
                                                 23));
    EXPECT_EQ(extract(image).size(), 2u);
}

TEST(StringExtract, StringsUnderFourBytesNeedALowerMinimum)
{
    const Bytes image = bytesOf(std::string_view("\x00OK\x00Menu\x00Yes\x00", 13));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x04, kSingle, 4, "Menu"}}));
    EXPECT_EQ(extract(image, 2), (std::vector<StoredString>{
                                     {0x01, kSingle, 2, "OK"}, {0x04, kSingle, 4, "Menu"}, {0x09, kSingle, 3, "Yes"}}));
}

TEST(StringExtract, CodesChoiceListsOneEncoding)
{
    const Bytes image = bytesOf(std::string_view("\x00Menu\x00\xA1\x4F\xA1\x4B\x00", 11));
    EXPECT_EQ(extract(image, 4, CodesWanted::Single), (std::vector<StoredString>{{0x01, kSingle, 4, "Menu"}}));
    EXPECT_EQ(extract(image, 4, CodesWanted::Handset), (std::vector<StoredString>{{0x06, kHandset, 4, "OK"}}));
}

TEST(StringExtract, LoneShortRunAmongNoiseIsNotListed)
{
    // "Qz7k" between bytes that are no text: nothing stands beside it.
    const Bytes image = bytesOf(std::string_view("\xFF\x8F\x13Qz7k\x00\x91\x07\xFE", 11));
    EXPECT_TRUE(extract(image).empty());
}

TEST(StringExtract, LongCommonTextOnItsOwnIsListed)
{
    const Bytes image = bytesOf(std::string_view("\xFF\x8F\x13Version 1.11 build\x00\x91\x07", 24));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x03, kSingle, 18, "Version 1.11 build"}}));
}

TEST(StringExtract, LongTextAfterBytesThatReadAsCharactersStartsAtItsFirstLetter)
{
    // 8F 52 reads as one GBK character, taking the "R"; "D" before "Ring" is a stray byte.
    const Bytes image = bytesOf(std::string_view("\x13\x8FRing tone 12 - Melody\x00\x91\x07\xFF"
                                                 "DRing tone 3 - Melody\x00\x05",
                                                 50));
    EXPECT_EQ(extract(image), (std::vector<StoredString>{{0x02, kSingle, 21, "Ring tone 12 - Melody"},
                                                         {0x1C, kSingle, 20, "Ring tone 3 - Melody"}}));
}

TEST(StringExtract, StopFromProgressListsNothing)
{
    const Bytes image(3 << 20, 0x41);
    ExtractOptions options;
    int calls = 0;
    options.progress = [&calls](std::size_t, std::size_t) { return ++calls < 2; };
    const ExtractResult result = extractStrings(image, options);
    EXPECT_TRUE(result.stopped);
    EXPECT_TRUE(result.strings.empty());
    EXPECT_EQ(calls, 2);
}

TEST(StringExtract, FirmwareLikeImageGivesNearlyEveryStringAndLittleElse)
{
    const auto made = FirmwareLikeMaker(20261124).make(4 << 20);
    std::set<std::tuple<std::uint32_t, StringCodes, std::string>> truth;
    for (const StoredString& s : made.stored)
        if (s.bytes >= 4) truth.emplace(s.address, s.codes, s.text);
    ASSERT_GT(truth.size(), 3000u);
    const auto listed = extractStrings(made.bytes, {}).strings;
    std::size_t real = 0;
    for (const StoredString& s : listed) real += truth.count({s.address, s.codes, s.text});
    const double recall = static_cast<double>(real) / static_cast<double>(truth.size());
    const double precision = static_cast<double>(real) / static_cast<double>(listed.size());
    EXPECT_GE(recall, 0.99) << real << " of " << truth.size() << " stored strings listed";
    EXPECT_GE(precision, 0.95) << real << " of " << listed.size() << " listed are stored strings";
}
