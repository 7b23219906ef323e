#include "image/hex_text.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

TEST(HexDigitValue, DigitsAndLettersOfBothCases)
{
    EXPECT_EQ(HexDigitValue("0"), 0);
    EXPECT_EQ(HexDigitValue("9"), 9);
    EXPECT_EQ(HexDigitValue("A"), 10);
    EXPECT_EQ(HexDigitValue("f"), 15);
}

TEST(HexDigitValue, AnythingElseCountsAsZero)
{
    EXPECT_EQ(HexDigitValue("G"), 0);
    EXPECT_EQ(HexDigitValue(""), 0);
    EXPECT_EQ(HexDigitValue("AB"), 0);
}

TEST(HexToLong, EmptyTextGivesZero) { EXPECT_EQ(HexToLong(""), 0); }
TEST(HexToLong, LowerCaseFfGives255) { EXPECT_EQ(HexToLong("ff"), 255); }
TEST(HexToLong, LargestSignedValueIsAccepted) { EXPECT_EQ(HexToLong("7FFFFFFF"), 2147483647); }
TEST(HexToLong, ValueAboveSignedRangeOverflows) { EXPECT_THROW(HexToLong("80000000"), HexOverflow); }
TEST(HexToLong, NonHexDigitCountsAsZero) { EXPECT_EQ(HexToLong("1G"), 16); }
TEST(HexToLong, LeadingZerosBeyondEightDigitsAreHarmless) { EXPECT_EQ(HexToLong("000000000000FF"), 255); }
TEST(HexToLong, NineSignificantDigitsOverflow) { EXPECT_THROW(HexToLong("100000000"), HexOverflow); }

TEST(HexTextToLong, GivesTheSameValuesAsHexToLong)
{
    EXPECT_EQ(HexTextToLong(""), 0);
    EXPECT_EQ(HexTextToLong("ff"), 255);
    EXPECT_EQ(HexTextToLong("7FFFFFFF"), 2147483647);
    EXPECT_THROW(HexTextToLong("80000000"), HexOverflow);
}

TEST(HexPad, ByteAtWidthTwo) { EXPECT_EQ(HexPad(255, 2), "FF"); }
TEST(HexPad, NeverCutsALongerText) { EXPECT_EQ(HexPad(4096, 2), "1000"); }
TEST(HexPad, PadsToEightDigits) { EXPECT_EQ(HexPad(10, 8), "0000000A"); }
TEST(HexPad, NegativeNumberGivesItsTwosComplement) { EXPECT_EQ(HexPad(static_cast<std::uint32_t>(-1), 2), "FFFFFFFF"); }
TEST(HexPad, ZeroAtWidthZeroIsOneDigit) { EXPECT_EQ(HexPad(0, 0), "0"); }

TEST(ZeroPad, PadsButNeverCuts)
{
    EXPECT_EQ(ZeroPad("7", 3), "007");
    EXPECT_EQ(ZeroPad("1234", 3), "1234");
}

TEST(HexByteValue, TwoCharacters) { EXPECT_EQ(HexByteValue("3e"), 0x3E); }
TEST(HexByteValue, OneCharacterGivesZero) { EXPECT_EQ(HexByteValue("F"), 0); }
TEST(HexByteValue, ThreeCharactersGiveZero) { EXPECT_EQ(HexByteValue("FFF"), 0); }

TEST(AddressByteSum, HandsetEntryPoint) { EXPECT_EQ(AddressByteSum(0xA0020000), 0xA2); }
TEST(AddressByteSum, AllBytesFull) { EXPECT_EQ(AddressByteSum(0xFFFFFFFF), 1020); }

TEST(ByteToHex, TwoDigitsForAByte)
{
    EXPECT_EQ(ByteToHex(0x0F), "0F");
    EXPECT_EQ(ByteToHex(0xFF), "FF");
    EXPECT_EQ(ByteToHex(21), "15");
}
TEST(ByteToHex, LargerValuesAreNotGuarded) { EXPECT_EQ(ByteToHex(256), "100"); }

TEST(TextToHexCodes, AsciiLetterGetsA1Prefix) { EXPECT_EQ(TextToHexCodes("A"), "A141"); }
TEST(TextToHexCodes, SpaceGetsA1Prefix) { EXPECT_EQ(TextToHexCodes("Hi "), "A148A169A120"); }
TEST(TextToHexCodes, ChineseCharacterIsItsCodeUnit) { EXPECT_EQ(TextToHexCodes("\xE4\xB8\xAD"), "4E2D"); }
TEST(TextToHexCodes, ControlCharacterKeepsOneDigit) { EXPECT_EQ(TextToHexCodes("\x05"), "A15"); }
TEST(TextToHexCodes, LatinOneCharacterIsItsByte) { EXPECT_EQ(TextToHexCodes("\xC3\xA9"), "A1E9"); }
TEST(TextToHexCodes, CharacterOutsideTheBasicPlaneGivesTwoCodeUnits)
{
    EXPECT_EQ(TextToHexCodes("\xF0\x9F\x98\x80"), "D83DDE00");
}

TEST(FileNameOf, TextAfterTheLastSlash) { EXPECT_EQ(FileNameOf("/a/b.bin"), "b.bin"); }
TEST(FolderOf, TextBeforeTheLastSlash) { EXPECT_EQ(FolderOf("/a/b.bin"), "/a"); }
TEST(FileNameOf, BareNameGivesEmptyText) { EXPECT_EQ(FileNameOf("b.bin"), ""); }
TEST(FolderOf, BareNameGivesEmptyText) { EXPECT_EQ(FolderOf("b.bin"), ""); }
TEST(FolderOf, FileInRootGivesEmptyFolder) { EXPECT_EQ(FolderOf("/b.bin"), ""); }
