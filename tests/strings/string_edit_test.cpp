#include "strings/string_edit.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;
using Bytes = std::vector<std::uint8_t>;

TEST(EditRowBytes, OkReplacedByAInSingleByteCodes)
{
    const auto row = std::optional<StringEditRow>({"01", "00000001", "00000002", "A ", "2"});
    EXPECT_EQ(editRowBytes(*row, false), (Bytes{0x41, 0x20}));
}

TEST(EditRowBytes, HiInHandsetCodesOverFourCharacters)
{
    const auto row = std::optional<StringEditRow>({"01", "00000010", "00000017", "Hi  ", "4"});
    EXPECT_EQ(editRowBytes(*row, true), (Bytes{0xA1, 0x48, 0xA1, 0x69, 0xA1, 0x20, 0xA1, 0x20}));
}

TEST(EditRowBytes, ChineseReplacementInBothEncodings)
{
    const auto row = std::optional<StringEditRow>({"01", "00000010", "00000013", "\xE4\xB8\xAD ", "2"});
    EXPECT_EQ(editRowBytes(*row, false), (Bytes{0xD6, 0xD0, 0x20}));
    EXPECT_EQ(editRowBytes(*row, true), (Bytes{0x4E, 0x2D, 0xA1, 0x20}));
}

TEST(EditRowRegion, RowCoversTheOldStringExactly)
{
    const auto row = std::optional<StringEditRow>({"01", "00000010", "00000017", "Hi  ", "4"});
    auto region = editRowRegion(*row, true);
    EXPECT_EQ(region.first, 0x10);
    EXPECT_EQ(region.last, 0x17);
    EXPECT_EQ(region.bytes.size(), 8u);
}

TEST(MakeFittedEditRow, EmptyFieldIsRefused)
{
    EXPECT_FALSE(makeFittedEditRow(0, "", "00000002", "A", "2", false));
    EXPECT_FALSE(makeFittedEditRow(0, "00000001", "", "A", "2", false));
    EXPECT_FALSE(makeFittedEditRow(0, "00000001", "00000002", "", "2", false));
}

TEST(MakeFittedEditRow, OkReplacedByAIsPaddedWithOneSpace)
{
    auto row = makeFittedEditRow(0, "00000001", "00000002", "A", "2", false);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->number, "01");
    EXPECT_EQ(row->start, "00000001");
    EXPECT_EQ(row->end, "00000002");
    EXPECT_EQ(row->text, "A ");
    EXPECT_EQ(row->length, "2");
}

TEST(MakeFittedEditRow, HandsetCodesArePaddedInCharacters)
{
    auto row = makeFittedEditRow(4, "00000010", "00000017", "Hi", "4", true);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->number, "05");
    EXPECT_EQ(row->text, "Hi  ");
    EXPECT_EQ(editRowBytes(*row, true), (Bytes{0xA1, 0x48, 0xA1, 0x69, 0xA1, 0x20, 0xA1, 0x20}));
}

TEST(MakeFittedEditRow, ChineseInSingleByteCodesIsPaddedInBytes)
{
    // 文 is CE C4 in GBK: two bytes, so two spaces fill a four-byte string.
    auto row = makeFittedEditRow(0, "00000060", "00000063", "\xE6\x96\x87", "4", false);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->text, "\xE6\x96\x87  ");
    EXPECT_EQ(row->length, "4");
    EXPECT_EQ(editRowBytes(*row, false), (Bytes{0xCE, 0xC4, 0x20, 0x20}));
}

TEST(MakeFittedEditRow, ReplacementLongerInBytesThanTheStringIsRefused)
{
    // Three characters fit a four-character box, but take six bytes in GBK.
    try {
        makeFittedEditRow(0, "00000010", "00000013", "\xE4\xB8\xAD\xE6\x96\x87\xE4\xB8\xAD", "4", false);
        FAIL() << "no error";
    } catch (const EditRowError& error) {
        EXPECT_STREQ(error.what(), "\"\xE4\xB8\xAD\xE6\x96\x87\xE4\xB8\xAD\" takes 6 bytes in single-byte codes, more "
                                   "than the 4 of the string at 00000010");
    }
}

TEST(MakeFittedEditRow, OddByteCountInHandsetCodesIsRefused)
{
    try {
        makeFittedEditRow(0, "00000050", "00000054", "A", "2.5", true);
        FAIL() << "no error";
    } catch (const EditRowError& error) {
        EXPECT_STREQ(error.what(), "the string at 00000050 holds 5 bytes, an odd count that handset codes (two bytes a "
                                   "character) cannot fill exactly");
    }
}

TEST(MakeFittedEditRow, ReplacementOfExactlyTheStringsLengthGetsNoSpaces)
{
    EXPECT_EQ(makeFittedEditRow(0, "00000010", "00000013", "Cats", "4", false)->text, "Cats");
}

namespace {

StringEditRow row(std::string number, std::string start, std::string end, std::string text, std::string length)
{
    return {std::move(number), std::move(start), std::move(end), std::move(text), std::move(length)};
}

}  // namespace

TEST(EditListRegions, RowsBecomeRegionsInListOrder)
{
    const std::vector<StringEditRow> rows{row("02", "00000020", "00000021", "A ", "2"),
                                          row("01", "00000010", "00000013", "Cat ", "4")};
    const auto regions = editListRegions(rows, false, 0x40);
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0].first, 0x20);
    EXPECT_EQ(regions[0].last, 0x21);
    EXPECT_EQ(regions[0].bytes, (Bytes{0x41, 0x20}));
    EXPECT_EQ(regions[1].first, 0x10);
    EXPECT_EQ(regions[1].bytes, (Bytes{0x43, 0x61, 0x74, 0x20}));
}

TEST(EditListRegions, NoRowsGiveNoRegions) { EXPECT_TRUE(editListRegions({}, true, 0x40).empty()); }

TEST(EditListRegions, RowWrittenInTheOtherEncodingIsNamed)
{
    const std::vector<StringEditRow> rows{row("01", "00000010", "00000013", "Cat ", "4")};
    try {
        editListRegions(rows, true, 0x40);
        FAIL() << "no error";
    } catch (const EditRowError& error) {
        EXPECT_STREQ(error.what(),
                     "row 01 at 00000010..00000013: \"Cat \" takes 8 bytes in handset codes but the string "
                     "holds 4; write the list in the codes it was searched in");
    }
}

TEST(EditListRegions, RowPastTheImagesEndIsNamed)
{
    const std::vector<StringEditRow> rows{row("01", "00000010", "00000011", "A ", "2"),
                                          row("02", "0000003F", "00000040", "B ", "2")};
    try {
        editListRegions(rows, false, 0x40);
        FAIL() << "no error";
    } catch (const EditRowError& error) {
        EXPECT_STREQ(error.what(),
                     "row 02 at 0000003F..00000040: the string lies past the end of the image (64 bytes); "
                     "was it found in another phone file?");
    }
}

TEST(EditListRegions, RowEndingOnTheImagesLastByteIsWritten)
{
    const std::vector<StringEditRow> rows{row("01", "0000003E", "0000003F", "B ", "2")};
    EXPECT_EQ(editListRegions(rows, false, 0x40).size(), 1u);
}

TEST(EditListRegions, CharacterOutsideTheCodePageIsNamedWithItsRow)
{
    // U+20AC has a handset code (20AC) but no single-byte code in GB2312.
    const std::vector<StringEditRow> rows{row("03", "00000010", "00000011", "\xE2\x82\xAC", "1")};
    EXPECT_EQ(editListRegions(rows, true, 0x40)[0].bytes, (Bytes{0x20, 0xAC}));
    try {
        editListRegions(rows, false, 0x40, "GB2312");
        FAIL() << "no error";
    } catch (const EditRowError& error) {
        EXPECT_EQ(std::string(error.what()).rfind("row 03 at 00000010..00000011: ", 0), 0u) << error.what();
    }
}

TEST(EditListRegions, RowWithItsOwnEncodingIsWrittenInIt)
{
    // An imported translation keeps its string's encoding whatever the list is written in.
    StringEditRow handset = row("01", "00000010", "00000013", "OK", "2");
    handset.handsetCodes = true;
    const std::vector<StringEditRow> rows{handset, row("02", "00000020", "00000021", "OK", "2")};
    const auto regions = editListRegions(rows, false, 0x40);
    EXPECT_EQ(regions[0].bytes, (Bytes{0xA1, 0x4F, 0xA1, 0x4B}));
    EXPECT_EQ(regions[1].bytes, (Bytes{0x4F, 0x4B}));
}
