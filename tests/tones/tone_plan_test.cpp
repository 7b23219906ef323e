#include "tones/tone_plan.hpp"

#include <gtest/gtest.h>

using namespace zevran::tones;

namespace {

ToneSlot slot(const char* number, const char* start, const char* end, const char* size, const char* note = "")
{
    return {number, start, end, size, note};
}

std::vector<std::string> column(const std::vector<ReplacementRow>& rows, std::string ReplacementRow::*cell)
{
    std::vector<std::string> cells;
    cells.reserve(rows.size());
    for (const ReplacementRow& row : rows) cells.push_back(row.*cell);
    return cells;
}

using Cells = std::vector<std::string>;

}  // namespace

TEST(PlanCells, FileTextIsNameSizeAndTheWordForBytes)
{
    EXPECT_EQ(planFileText("my ring.mmf", "1000"), "my ring.mmf 1000 \xE5\xAD\x97\xE8\x8A\x82");
}

TEST(PlanCells, UnitWordIsReplacedOnlyAtTheEndOfAFileCell)
{
    EXPECT_EQ(withPlanUnit("ring.mmf 1000 字节", "字节", "bytes"), "ring.mmf 1000 bytes");
    EXPECT_EQ(withPlanUnit("ring.mmf 1000 bytes", "字节", "bytes"), "ring.mmf 1000 bytes");
    EXPECT_EQ(withPlanUnit("", "字节", "bytes"), "");
    EXPECT_EQ(withPlanUnit("字节", "字节", "bytes"), "字节");
    EXPECT_EQ(withPlanUnit("a字节 1 x", "字节", "bytes"), "a字节 1 x");
}

TEST(PlanCells, SlotTextSpacesTheRowCells)
{
    EXPECT_EQ(planSlotText(slot("004", "0x0001F2A0", "0x0001F9DF", "1856", "ring1")),
              "004 0x0001F2A0 - 0x0001F9DF 1856 ring1");
}

TEST(PlanCells, SlotWithEmptyNoteKeepsATrailingSpace)
{
    EXPECT_EQ(planSlotText(slot("001", "0x00000010", "0x00000074", "101")), "001 0x00000010 - 0x00000074 101 ");
}

TEST(FindPlanRow, ReturnsFirstRowWithTheCellEmpty)
{
    std::vector<ReplacementRow> rows{{"001", "a", "s1", false}, {"002", "", "s2", false}, {"003", "", "", false}};
    EXPECT_EQ(FindPlanRow(rows, PlanColumn::File), 1u);
    EXPECT_EQ(FindPlanRow(rows, PlanColumn::Slot), 2u);
    EXPECT_EQ(rows.size(), 3u);
}

TEST(FindPlanRow, AppendsANumberedRowWhenEveryCellIsFilled)
{
    std::vector<ReplacementRow> rows{{"001", "a", "s1", false}};
    EXPECT_EQ(FindPlanRow(rows, PlanColumn::File), 1u);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].number, "002");
    EXPECT_EQ(rows[1].file, "");
    EXPECT_EQ(rows[1].slot, "");
}

TEST(PlanAdd, ThreeFilesThenTwoSlotsPairInOrderAndTheUnpairedFileSortsFirst)
{
    std::vector<ReplacementRow> rows;
    addPlanCells(rows, PlanColumn::File, {"a.mmf 10 字节", "b.mmf 20 字节", "c.mmf 30 字节"});
    EXPECT_EQ(column(rows, &ReplacementRow::number), (Cells{"001", "002", "003"}));
    addPlanCells(rows, PlanColumn::Slot, {"001 0x00000010 - 0x00000074 101 ", "002 0x00000100 - 0x00000164 101 "});
    EXPECT_EQ(column(rows, &ReplacementRow::number), (Cells{"001", "002", "003"}));
    EXPECT_EQ(column(rows, &ReplacementRow::file), (Cells{"c.mmf 30 字节", "a.mmf 10 字节", "b.mmf 20 字节"}));
    EXPECT_EQ(column(rows, &ReplacementRow::slot),
              (Cells{"", "001 0x00000010 - 0x00000074 101 ", "002 0x00000100 - 0x00000164 101 "}));
}

TEST(PlanAdd, SlotsSortAsTextWhateverOrderTheyCameIn)
{
    std::vector<ReplacementRow> rows;
    addPlanCells(rows, PlanColumn::Slot, {"010 x", "002 y", "1000 z"});
    EXPECT_EQ(column(rows, &ReplacementRow::slot), (Cells{"002 y", "010 x", "1000 z"}));
    EXPECT_EQ(column(rows, &ReplacementRow::number), (Cells{"001", "002", "003"}));
}

TEST(PlanAdd, TheSameSlotTwiceFillsTwoRows)
{
    std::vector<ReplacementRow> rows;
    addPlanCells(rows, PlanColumn::Slot, {"001 s", "001 s"});
    EXPECT_EQ(column(rows, &ReplacementRow::slot), (Cells{"001 s", "001 s"}));
}

TEST(PlanRemove, RemovingARowRenumbersTheRest)
{
    std::vector<ReplacementRow> rows{{"001", "a", "1", false}, {"002", "b", "2", false}, {"003", "c", "3", false}};
    removePlanRow(rows, 1);
    EXPECT_EQ(column(rows, &ReplacementRow::file), (Cells{"a", "c"}));
    EXPECT_EQ(column(rows, &ReplacementRow::number), (Cells{"001", "002"}));
}

TEST(PlanRemove, RemovingTheFileOfARowWithoutSlotRemovesTheRow)
{
    std::vector<ReplacementRow> rows{{"001", "a", "", false}, {"002", "b", "2", true}};
    removePlanCell(rows, 0, PlanColumn::File);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].number, "001");
    EXPECT_EQ(rows[0].file, "b");
}

TEST(PlanRemove, RemovingTheFileOfARowWithSlotKeepsTheRowUnchecked)
{
    std::vector<ReplacementRow> rows{{"001", "b", "2", true}};
    removePlanCell(rows, 0, PlanColumn::File);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].file, "");
    EXPECT_EQ(rows[0].slot, "2");
    EXPECT_FALSE(rows[0].checked);
}

TEST(PlanRemove, RemovingTheSlotOfARowWithoutFileRemovesTheRow)
{
    std::vector<ReplacementRow> rows{{"001", "", "1", false}, {"002", "b", "2", false}};
    removePlanCell(rows, 0, PlanColumn::Slot);
    EXPECT_EQ(column(rows, &ReplacementRow::slot), (Cells{"2"}));
    removePlanCell(rows, 0, PlanColumn::Slot);
    EXPECT_EQ(column(rows, &ReplacementRow::slot), (Cells{""}));
    EXPECT_EQ(column(rows, &ReplacementRow::file), (Cells{"b"}));
}

TEST(PlanRemove, ClearingAColumnKeepsEveryRow)
{
    std::vector<ReplacementRow> rows{{"001", "a", "1", true}, {"002", "b", "", false}};
    clearPlanColumn(rows, PlanColumn::File);
    EXPECT_EQ(column(rows, &ReplacementRow::file), (Cells{"", ""}));
    EXPECT_EQ(column(rows, &ReplacementRow::slot), (Cells{"1", ""}));
    EXPECT_FALSE(rows[0].checked);
}

TEST(PlanCheck, OnlyAPairedRowMayBeChecked)
{
    EXPECT_TRUE(mayCheckPlanRow({"001", "a", "1", false}));
    EXPECT_FALSE(mayCheckPlanRow({"001", "a", "", false}));
    EXPECT_FALSE(mayCheckPlanRow({"001", "", "1", false}));
}
