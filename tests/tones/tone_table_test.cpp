#include "tones/tone_table.hpp"

#include <gtest/gtest.h>

using namespace zevran::tones;

TEST(ToneTableWrite, LineHasItsFixedSpacesTabAndCrLf)
{
    const std::vector<ToneSlot> rows{{"001", "0x0001F2A0", "0x0001F9DF", "1856", "ring1"}};
    EXPECT_EQ(toneTableText(rows, "Size"), " 001 : 0x0001F2A0 - 0x0001F9DF  Size: 1856 \tring1\r\n");
}

TEST(ToneTableWrite, EmptyNoteEndsWithSpaceTabCrLf)
{
    const std::vector<ToneSlot> rows{{"002", "0x00000010", "0x00000080", "113", ""}};
    EXPECT_EQ(toneTableText(rows, "Size"), " 002 : 0x00000010 - 0x00000080  Size: 113 \t\r\n");
}

TEST(ToneTableRead, ReadsTheFiveCellsBack)
{
    auto read = readToneTable(" 001 : 0x0001F2A0 - 0x0001F9DF  Size: 1856 \tring1\r\n");
    ASSERT_EQ(read.rows.size(), 1u);
    const ToneSlot& row = read.rows[0];
    EXPECT_EQ(row.number, "001");
    EXPECT_EQ(row.start, "0x0001F2A0");
    EXPECT_EQ(row.end, "0x0001F9DF");
    EXPECT_EQ(row.size, "1856");
    EXPECT_EQ(row.note, "ring1");
    EXPECT_FALSE(read.stoppedAtLine.has_value());
}

TEST(ToneTableRead, NoteIsReadOnlyUpToItsFirstSpace)
{
    auto read = readToneTable(" 001 : 0x00000001 - 0x00000070  Size: 112 \tmy ring tone\r\n");
    ASSERT_EQ(read.rows.size(), 1u);
    EXPECT_EQ(read.rows[0].note, "my");
}

TEST(ToneTableRead, CaptionWithASpaceShiftsTheSize)
{
    auto read = readToneTable(" 001 : 0x00000001 - 0x00000070  Tone size: 112 \tx\r\n");
    ASSERT_EQ(read.rows.size(), 1u);
    EXPECT_EQ(read.rows[0].size, "size:");
}

TEST(ToneTableRead, BlankLinesAreSkipped)
{
    auto read = readToneTable("\r\n 001 : 0x1 - 0x70  S: 112 \ta\r\n\r\n 002 : 0x71 - 0xE0  S: 112 \tb\n");
    ASSERT_EQ(read.rows.size(), 2u);
    EXPECT_EQ(read.rows[1].number, "002");
    EXPECT_EQ(read.rows[1].note, "b");
}

TEST(ToneTableRead, ShortLineStopsReadingAndKeepsEarlierRows)
{
    auto read = readToneTable(" 001 : 0x1 - 0x70  S: 112 \ta\r\nnot a row\r\n 002 : 0x71 - 0xE0  S: 112 \tb\r\n");
    ASSERT_EQ(read.rows.size(), 1u);
    EXPECT_EQ(read.stoppedAtLine, std::optional<std::size_t>(2));
}

TEST(ToneTableRead, EmptyNoteReadsAsEmpty)
{
    auto read = readToneTable(" 002 : 0x00000010 - 0x00000080  Size: 113 \t\r\n");
    ASSERT_EQ(read.rows.size(), 1u);
    EXPECT_EQ(read.rows[0].note, "");
}

TEST(ToneTable, SavedReopenedAndSavedAgainGivesTheSameBytes)
{
    const std::vector<ToneSlot> rows{{"001", "0x0001F2A0", "0x0001F9DF", "1856", "ring1"},
                                     {"002", "0x00020000", "0x000200FF", "256", ""}};
    const std::string saved = toneTableText(rows, "Size");
    EXPECT_EQ(toneTableText(readToneTable(saved).rows, "Size"), saved);
}
