#include "tones/tone_patch.hpp"

#include "image/file_io.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

using namespace zevran::tones;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

ReplacementRow checkedRow(std::string file, std::string slot)
{
    return {"001", std::move(file), std::move(slot), true};
}

std::vector<std::uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

TEST(PlanFields, SlotTextGivesStartAndSize)
{
    const auto fields = planSlotFields("004 0x0001F2A0 - 0x0001F9DF 1856 ring1");
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->start, 0x1F2A0);
    EXPECT_EQ(fields->size, 1856);
}

TEST(PlanFields, SlotTextWithTooFewFieldsGivesNone)
{
    EXPECT_FALSE(planSlotFields("004 0x0001F2A0 - 0x0001F9DF"));
    EXPECT_FALSE(planSlotFields(""));
}

TEST(PlanFields, FileNameMayHoldSpaces)
{
    const PlanFileFields fields = planFileFields("my new ring.mmf 1000 字节");
    EXPECT_EQ(fields.name, "my new ring.mmf");
    EXPECT_EQ(fields.size, 1000);
}

TEST(PlanFields, FileTextWithoutTwoSpacesHasSizeZero)
{
    EXPECT_EQ(planFileFields("ring.mmf 字节").size, 0);
    EXPECT_EQ(planFileFields("ring.mmf 字节").name, "ring.mmf");
    EXPECT_EQ(planFileFields("ring.mmf").size, 0);
}

TEST(TonePatchRegion, ShortToneIsZeroFilledToTheSlotSize)
{
    TempFolder folder;
    writeFile(folder.path("new.mmf"), std::string(1000, 'T'));
    const PlanRowPatch patch = tonePatchRegion(
        checkedRow("new.mmf 1000 字节", "004 0x0001F2A0 - 0x0001F9DF 1856 ring1"), folder.root().string(), 0x40000);
    ASSERT_EQ(patch.result, PlanRowResult::Region);
    EXPECT_EQ(patch.region.first, 0x1F2A0);
    EXPECT_EQ(patch.region.last, 0x1F9DF);
    std::vector<std::uint8_t> expected(1856, 0);
    std::fill_n(expected.begin(), 1000, 'T');
    EXPECT_EQ(patch.region.bytes, expected);
}

TEST(TonePatchRegion, ToneOfExactlyTheSlotSizeFillsIt)
{
    TempFolder folder;
    writeFile(folder.path("new.mmf"), "MMMD0123");
    const PlanRowPatch patch = tonePatchRegion(checkedRow("new.mmf 8 字节", "001 0x00000010 - 0x00000017 8 "),
                                               folder.root().string() + "/", 64);
    ASSERT_EQ(patch.result, PlanRowResult::Region);
    EXPECT_EQ(patch.region.bytes, bytesOf("MMMD0123"));
}

TEST(TonePatchRegion, ToneLargerThanItsSlotIsRefused)
{
    TempFolder folder;
    writeFile(folder.path("new.mmf"), std::string(9, 'T'));
    EXPECT_EQ(
        tonePatchRegion(checkedRow("new.mmf 9 字节", "001 0x00000010 - 0x00000017 8 "), folder.root().string(), 64)
            .result,
        PlanRowResult::TooLarge);
}

TEST(TonePatchRegion, FileGrownSinceItWasListedIsRefusedRatherThanCut)
{
    TempFolder folder;
    writeFile(folder.path("new.mmf"), std::string(9, 'T'));
    EXPECT_EQ(
        tonePatchRegion(checkedRow("new.mmf 4 字节", "001 0x00000010 - 0x00000017 8 "), folder.root().string(), 64)
            .result,
        PlanRowResult::TooLarge);
}

TEST(TonePatchRegion, SlotOfSizeZeroIsReportedAndNotRead)
{
    EXPECT_EQ(
        tonePatchRegion(checkedRow("missing.mmf 0 字节", "001 0x00000010 - 0x0000000F 0 "), "/nonexistent", 64).result,
        PlanRowResult::EmptySlot);
}

TEST(TonePatchRegion, SlotOfSizeZeroOrLessRefusesAnyToneThatHasBytes)
{
    EXPECT_EQ(
        tonePatchRegion(checkedRow("new.mmf 4 字节", "001 0x00000010 - 0x0000000F 0 "), "/nonexistent", 64).result,
        PlanRowResult::TooLarge);
    EXPECT_EQ(
        tonePatchRegion(checkedRow("new.mmf 0 字节", "001 0x00000010 - 0x0000000F -5 "), "/nonexistent", 64).result,
        PlanRowResult::TooLarge);
}

TEST(TonePatchRegion, UncheckedOrUnpairedRowsAreSkipped)
{
    ReplacementRow unchecked = checkedRow("new.mmf 8 字节", "001 0x00000010 - 0x00000017 8 ");
    unchecked.checked = false;
    EXPECT_EQ(tonePatchRegion(unchecked, "/nonexistent", 64).result, PlanRowResult::Skipped);
    EXPECT_EQ(tonePatchRegion(checkedRow("", "001 0x00000010 - 0x00000017 8 "), "/nonexistent", 64).result,
              PlanRowResult::Skipped);
    EXPECT_EQ(tonePatchRegion(checkedRow("new.mmf 8 字节", "001 0x10"), "/nonexistent", 64).result,
              PlanRowResult::Skipped);
}

TEST(TonePatchRegion, SlotOutsideTheImageIsRefusedNamingTheRow)
{
    try {
        tonePatchRegion(checkedRow("new.mmf 8 字节", "001 0x00000040 - 0x00000047 8 "), "/nonexistent", 64);
        FAIL() << "a slot past the image was accepted";
    } catch (const TonePlanError& error) {
        EXPECT_STREQ(error.what(), "row 001: the slot at 0x00000040 of 8 bytes lies outside the image (64 bytes)");
    }
    EXPECT_THROW(tonePatchRegion(checkedRow("n 8 字节", "001 0xFFFFFFFF - 0x0 8 "), "/nonexistent", 64), TonePlanError);
    EXPECT_THROW(tonePatchRegion(checkedRow("n 8 字节", "001 0x10 - 0x0 99999999999999 "), "/nonexistent", 64),
                 TonePlanError);
}

TEST(TonePatchRegion, MissingToneFileNamesThePath)
{
    TempFolder folder;
    try {
        tonePatchRegion(checkedRow("gone.mmf 8 字节", "001 0x00000010 - 0x00000017 8 "), folder.root().string(), 64);
        FAIL() << "a missing file was read";
    } catch (const zevran::image::FileError& error) {
        EXPECT_NE(std::string(error.what()).find(folder.path("gone.mmf")), std::string::npos) << error.what();
    }
}
