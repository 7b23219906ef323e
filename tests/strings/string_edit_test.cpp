#include "strings/string_edit.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;
using Bytes = std::vector<std::uint8_t>;

TEST(MakeEditRow, EmptyFieldIsRefused)
{
    EXPECT_FALSE(makeEditRow(0, "", "00000002", "A", "2"));
    EXPECT_FALSE(makeEditRow(0, "00000001", "", "A", "2"));
    EXPECT_FALSE(makeEditRow(0, "00000001", "00000002", "", "2"));
}

TEST(MakeEditRow, ReplacementIsPaddedToTheLength)
{
    auto row = makeEditRow(0, "00000001", "00000002", "A", "2");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->number, "01");
    EXPECT_EQ(row->start, "00000001");
    EXPECT_EQ(row->end, "00000002");
    EXPECT_EQ(row->text, "A ");
    EXPECT_EQ(row->length, "2");
}

TEST(MakeEditRow, NumberIsOneMoreThanTheRowsBefore)
{
    EXPECT_EQ(makeEditRow(9, "1", "2", "A", "2")->number, "10");
}

TEST(EditRowBytes, OkReplacedByAInSingleByteCodes)
{
    auto row = makeEditRow(0, "00000001", "00000002", "A", "2");
    EXPECT_EQ(editRowBytes(*row, false), (Bytes{0x41, 0x20}));
}

TEST(EditRowBytes, HiInHandsetCodesOverFourCharacters)
{
    auto row = makeEditRow(0, "00000010", "00000017", "Hi", "4");
    EXPECT_EQ(editRowBytes(*row, true), (Bytes{0xA1, 0x48, 0xA1, 0x69, 0xA1, 0x20, 0xA1, 0x20}));
}

TEST(EditRowBytes, ChineseReplacementInBothEncodings)
{
    auto row = makeEditRow(0, "00000010", "00000013", "\xE4\xB8\xAD", "2");
    EXPECT_EQ(editRowBytes(*row, false), (Bytes{0xD6, 0xD0, 0x20}));
    EXPECT_EQ(editRowBytes(*row, true), (Bytes{0x4E, 0x2D, 0xA1, 0x20}));
}

TEST(EditRowRegion, RowCoversTheOldStringExactly)
{
    auto row = makeEditRow(0, "00000010", "00000017", "Hi", "4");
    auto region = editRowRegion(*row, true);
    EXPECT_EQ(region.first, 0x10);
    EXPECT_EQ(region.last, 0x17);
    EXPECT_EQ(region.bytes.size(), 8u);
}
