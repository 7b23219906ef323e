#include "pictures/picture_table.hpp"

#include "image/hex_text.hpp"

#include <gtest/gtest.h>

using namespace zevran::pictures;

namespace {

const std::array<std::string, 4> kHeaders{"Frames", "Size", "Pixels", "Bits"};

std::string line(std::string_view number, std::string_view name, std::string_view address, std::string_view frames,
                 std::string_view size, std::string_view dimensions, std::string_view depth)
{
    return std::string(number) + " " + std::string(name) + "\t " + std::string(address) +
           "\t Frames: " + std::string(frames) + "\t Size: " + std::string(size) +
           "\t Pixels: " + std::string(dimensions) + "\t Bits: " + std::string(depth) + "\t\r\n";
}

}  // namespace

TEST(PictureTableWrite, LineHasItsTabsSpacesLabelsAndCrLf)
{
    const std::vector<PictureEntry> rows{{"001", "logo", "0X00123456", "1", "40960", "128*160", "16"}};
    EXPECT_EQ(pictureTableText(rows, kHeaders, ""),
              "001 logo\t 0X00123456\t Frames: 1\t Size: 40960\t Pixels: 128*160\t Bits: 16\t\r\n");
}

TEST(PictureTableWrite, OffsetRelocatesEveryAddress)
{
    const std::vector<PictureEntry> rows{{"001", "a", "0X00123456", "1", "8", "8*8", "1"},
                                         {"002", "b", "0X01234567", "1", "8", "8*8", "1"}};
    const std::string text = pictureTableText(rows, kHeaders, "100");
    EXPECT_NE(text.find("a\t 0X00123556\t"), std::string::npos) << text;
    EXPECT_NE(text.find("b\t 0X00234667\t"), std::string::npos) << text;
}

TEST(PictureTableWrite, OnlyTheLowSixDigitsSurvive)
{
    const std::vector<PictureEntry> rows{{"001", "b", "0X01234567", "1", "8", "8*8", "1"}};
    EXPECT_NE(pictureTableText(rows, kHeaders, "").find("\t 0X00234567\t"), std::string::npos);
}

TEST(PictureTableWrite, AddressSumAboveTheSignedRangeOverflows)
{
    const std::vector<PictureEntry> rows{{"001", "b", "0X00FFFFFF", "1", "8", "8*8", "1"}};
    EXPECT_THROW(pictureTableText(rows, kHeaders, "7FFFFFFF"), zevran::image::HexOverflow);
}

TEST(PictureTableRead, ReadsTheSixCellsAndRenumbers)
{
    auto rows = readPictureTable("\r\n" + line("017", "logo", "0X00123456", "3", "40960", "128*160", "16"), false);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].number, "001");
    EXPECT_EQ(rows[0].name, "logo");
    EXPECT_EQ(rows[0].address, "0X00123456");
    EXPECT_EQ(rows[0].frames, "3");
    EXPECT_EQ(rows[0].frameSize, "40960");
    EXPECT_EQ(rows[0].dimensions, "128*160");
    EXPECT_EQ(rows[0].depth, "16");
}

TEST(PictureTableRead, BlankLinesDoNotTakeRowNumbers)
{
    auto rows = readPictureTable(
        line("1", "a", "0X1", "1", "8", "8*8", "1") + "\n\n" + line("9", "b", "0X2", "1", "8", "8*8", "1"), false);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].number, "002");
    EXPECT_EQ(rows[1].name, "b");
}

TEST(PictureTableRead, RecomputedSizesRoundHalfToEven)
{
    auto rows = readPictureTable(
        line("1", "a", "0X1", "1", "5", "128*160", "16") + line("2", "b", "0X1", "1", "5", "12*12", "1") +
            line("3", "c", "0X1", "1", "5", "10*5", "1") + line("4", "d", "0X1", "1", "5", "3*1", "4"),
        true);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].frameSize, "40960");
    EXPECT_EQ(rows[1].frameSize, "18");
    EXPECT_EQ(rows[2].frameSize, "6");
    EXPECT_EQ(rows[3].frameSize, "2");  // 1.5 rounds to 2
}

TEST(PictureTableRead, SizeIsKeptAsReadWithoutRecomputing)
{
    auto rows = readPictureTable(line("1", "a", "0X1", "1", "5", "128*160", "16"), false);
    EXPECT_EQ(rows[0].frameSize, "5");
}

TEST(PictureTableRead, NameWithASpaceShiftsTheFields)
{
    auto rows = readPictureTable("001 my logo\t 0X1\t F: 1\t S: 8\t P: 8*8\t B: 1\t\r\n", false);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].name, "my");
    EXPECT_EQ(rows[0].address, "logo");
    EXPECT_EQ(rows[0].frames, "F:");
}

TEST(PictureTableRead, ShortLineFailsTheWholeTable)
{
    EXPECT_THROW(readPictureTable(line("1", "a", "0X1", "1", "8", "8*8", "1") + "001 short line\r\n", false),
                 PictureTableError);
}

TEST(PictureTableRead, FrameSizeThatOverflowsFails)
{
    EXPECT_THROW(readPictureTable(line("1", "a", "0X1", "1", "8", "99999*99999", "24"), true), PictureTableError);
}

TEST(PictureTable, SavedAndLoadedAgainReproducesEveryColumn)
{
    const std::vector<PictureEntry> rows{{"001", "logo", "0X00123456", "3", "40960", "128*160", "16"},
                                         {"002", "icon", "0X00000010", "1", "18", "12*12", "1"}};
    const std::string saved = pictureTableText(rows, kHeaders, "");
    auto loaded = readPictureTable(saved, false);
    ASSERT_EQ(loaded.size(), 2u);
    EXPECT_EQ(pictureTableText(loaded, kHeaders, ""), saved);
}

TEST(LeadingNumber, ReadsTheNumberAtTheStart)
{
    EXPECT_EQ(leadingNumber("128*160"), 128);
    EXPECT_EQ(leadingNumber("  -2.5e1x"), -25);
    EXPECT_EQ(leadingNumber("abc"), 0);
    EXPECT_EQ(leadingNumber(""), 0);
    EXPECT_EQ(leadingNumber("."), 0);
}

TEST(PictureTableRead, RecomputingRefusesDimensionsWithoutAStar)
{
    const std::string table = line("1", "a", "0X1", "1", "8", "8*8", "1") + line("2", "b", "0X2", "1", "8", "64", "1");
    EXPECT_EQ(readPictureTable(table, false).size(), 2u);
    try {
        readPictureTable(table, true);
        FAIL() << "no error";
    } catch (const PictureTableError& error) {
        EXPECT_STREQ(error.what(), "line 2: the dimensions \"64\" have no \"*\"");
    }
}

TEST(PictureDimensions, SplitAtTheFirstStar)
{
    EXPECT_EQ(splitDimensions("96*64*2"), (std::pair<std::string_view, std::string_view>{"96", "64*2"}));
    EXPECT_EQ(splitDimensions("96"), (std::pair<std::string_view, std::string_view>{"96", ""}));
}

TEST(PictureTableWarnings, NameTheLineAndTheFieldThatCanNameNoPicture)
{
    const std::string table = line("1", "good", "0X00000100", "3", "12", "2*2", "24") + "\r\n" +
                              line("2", "hexless", "0X0001G0", "1", "8", "2*2", "16") +
                              line("3", "count", "0X200", "many", "8", "2*2", "16") +
                              line("4", "empty", "0X300", "1", "0", "2*2", "16") +
                              line("5", "all", "zz", "x1", "-3", "2*2", "16");
    const auto warnings = pictureTableWarnings(table);
    ASSERT_EQ(warnings.size(), 6u);
    EXPECT_EQ(warnings[0].line, 3u);
    EXPECT_EQ(warnings[0].problem, TableFieldProblem::AddressNotHex);
    EXPECT_EQ(warnings[0].value, "0X0001G0");
    EXPECT_EQ(warnings[1].line, 4u);
    EXPECT_EQ(warnings[1].problem, TableFieldProblem::FramesNotANumber);
    EXPECT_EQ(warnings[1].value, "many");
    EXPECT_EQ(warnings[2].line, 5u);
    EXPECT_EQ(warnings[2].problem, TableFieldProblem::SizeBelowOne);
    EXPECT_EQ(warnings[2].value, "0");
    EXPECT_EQ(warnings[3].problem, TableFieldProblem::AddressNotHex);
    EXPECT_EQ(warnings[4].problem, TableFieldProblem::FramesNotANumber);
    EXPECT_EQ(warnings[5].problem, TableFieldProblem::SizeBelowOne);
    EXPECT_EQ(warnings[5].line, 6u);
    // The rows load as they always did.
    EXPECT_EQ(readPictureTable(table, false).size(), 5u);
}

TEST(PictureTableWarnings, LenientButMeaningfulFieldsPass)
{
    const std::string table =
        line("1", "a", "0x1aF", "0", "1", "2*2", "24") + line("2", "b", "00FF", "+2.0", "7.5", "2*2", "8");
    EXPECT_TRUE(pictureTableWarnings(table).empty());
}
