#include "image/undo_history.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes text(const std::string& letters) { return Bytes(letters.begin(), letters.end()); }

Region region(std::int32_t first, const std::string& letters)
{
    return {first, first + static_cast<std::int32_t>(letters.size()) - 1, text(letters)};
}

// Records the step of the regions and lays them over the image, as an output does.
void change(UndoHistory& history, Bytes& image, const std::vector<Region>& regions)
{
    history.record(stepForRegions(image, regions));
    ImageState state;
    state.FirmwareImage = std::move(image);
    patchImage(state, regions);
    image = std::move(state.FirmwareImage);
}

}  // namespace

TEST(UndoStep, HoldsTheBytesBeforeAndAfterOfEachChangedStretch)
{
    const UndoStep step = stepForRegions(text("ABCDEFGH"), {region(1, "xy"), region(5, "zz")});
    ASSERT_EQ(step.changes.size(), 2u);
    EXPECT_EQ(step.changes[0].first, 1);
    EXPECT_EQ(step.changes[0].before, text("BC"));
    EXPECT_EQ(step.changes[0].after, text("xy"));
    EXPECT_EQ(step.changes[1].first, 5);
    EXPECT_EQ(step.changes[1].before, text("FG"));
    EXPECT_EQ(step.changes[1].after, text("zz"));
    EXPECT_EQ(step.byteCount(), 8u);
}

TEST(UndoStep, UnchangedBytesAtTheEndsOfARegionAreLeftOut)
{
    const UndoStep step = stepForRegions(text("ABCDEFGH"), {region(1, "BCxEF")});
    ASSERT_EQ(step.changes.size(), 1u);
    EXPECT_EQ(step.changes[0].first, 3);
    EXPECT_EQ(step.changes[0].before, text("D"));
    EXPECT_EQ(step.changes[0].after, text("x"));
}

TEST(UndoStep, RegionThatChangesNothingGivesAnEmptyStep)
{
    EXPECT_TRUE(stepForRegions(text("ABCDEFGH"), {region(2, "CDE")}).changes.empty());
}

TEST(UndoStep, RegionIsCutAtTheImagesEnd)
{
    const UndoStep step = stepForRegions(text("ABCD"), {region(2, "xyz"), region(9, "q")});
    ASSERT_EQ(step.changes.size(), 1u);
    EXPECT_EQ(step.changes[0].first, 2);
    EXPECT_EQ(step.changes[0].before, text("CD"));
    EXPECT_EQ(step.changes[0].after, text("xy"));
}

TEST(UndoHistory, UndoAndRedoPutBackTheBytes)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "xy")});
    change(history, image, {region(6, "zz")});
    EXPECT_EQ(image, text("xyCDEFzz"));
    ASSERT_TRUE(history.undo(image));
    EXPECT_EQ(image, text("xyCDEFGH"));
    ASSERT_TRUE(history.undo(image));
    EXPECT_EQ(image, text("ABCDEFGH"));
    EXPECT_FALSE(history.undo(image));
    ASSERT_TRUE(history.redo(image));
    EXPECT_EQ(image, text("xyCDEFGH"));
    ASSERT_TRUE(history.redo(image));
    EXPECT_EQ(image, text("xyCDEFzz"));
    EXPECT_FALSE(history.redo(image));
}

TEST(UndoHistory, OverlappingRegionsOfOneStepAreUndoneToTheFirstBytes)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(1, "xxxx"), region(3, "yyy"), region(2, "C")});
    EXPECT_EQ(image, text("AxCyyyGH"));
    ASSERT_TRUE(history.undo(image));
    EXPECT_EQ(image, text("ABCDEFGH"));
    ASSERT_TRUE(history.redo(image));
    EXPECT_EQ(image, text("AxCyyyGH"));
}

TEST(UndoHistory, EmptyStepIsNotRecorded)
{
    UndoHistory history;
    EXPECT_FALSE(history.record(UndoStep{}));
    EXPECT_FALSE(history.canUndo());
    EXPECT_TRUE(history.isClean());
}

TEST(UndoHistory, UndoingBackToTheOpenedStateIsClean)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    EXPECT_TRUE(history.isClean());
    change(history, image, {region(0, "x")});
    EXPECT_FALSE(history.isClean());
    change(history, image, {region(1, "y")});
    history.undo(image);
    EXPECT_FALSE(history.isClean());
    history.undo(image);
    EXPECT_TRUE(history.isClean());
    history.redo(image);
    EXPECT_FALSE(history.isClean());
}

TEST(UndoHistory, SaveMovesTheCleanMarker)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "x")});
    history.markClean();
    EXPECT_TRUE(history.isClean());
    EXPECT_TRUE(history.canUndo());
    history.undo(image);
    EXPECT_FALSE(history.isClean());  // the file holds the x now
    history.redo(image);
    EXPECT_TRUE(history.isClean());
    change(history, image, {region(1, "y")});
    EXPECT_FALSE(history.isClean());
    history.undo(image);
    EXPECT_TRUE(history.isClean());
}

TEST(UndoHistory, NewStepAfterUndoDropsTheRedoStepsAndAnyCleanStateAmongThem)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "x")});
    history.markClean();
    history.undo(image);
    change(history, image, {region(1, "y")});
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(image, text("AyCDEFGH"));
    EXPECT_FALSE(history.isClean());
    history.undo(image);
    EXPECT_EQ(image, text("ABCDEFGH"));
    EXPECT_FALSE(history.isClean());  // the saved x can no longer be reached
}

TEST(UndoHistory, ResetForAFreshImageForgetsEverythingAndIsClean)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "x")});
    history.reset();
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    EXPECT_TRUE(history.isClean());
    EXPECT_EQ(history.byteCount(), 0u);
}

TEST(UndoHistory, OldestStepsGoWhenTheByteLimitIsPassed)
{
    UndoHistory history(10);  // room for two steps of four bytes
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "aa")});
    change(history, image, {region(2, "cc")});
    change(history, image, {region(4, "ee")});
    EXPECT_EQ(history.undoCount(), 2u);
    EXPECT_EQ(history.byteCount(), 8u);
    history.undo(image);
    history.undo(image);
    EXPECT_FALSE(history.undo(image));
    EXPECT_EQ(image, text("aaCDEFGH"));
    EXPECT_FALSE(history.isClean());  // the opened state went with the first step
}

TEST(UndoHistory, NewestStepStaysEvenWhenLargerThanTheLimit)
{
    UndoHistory history(4);
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(0, "abcdef")});
    EXPECT_EQ(history.undoCount(), 1u);
    ASSERT_TRUE(history.undo(image));
    EXPECT_EQ(image, text("ABCDEFGH"));
    EXPECT_TRUE(history.isClean());
}

TEST(UndoHistory, StepThatNoLongerFitsTheImageChangesNothing)
{
    UndoHistory history;
    Bytes image = text("ABCDEFGH");
    change(history, image, {region(6, "yz")});
    Bytes shorter = text("ABCD");
    EXPECT_FALSE(history.undo(shorter));
    EXPECT_EQ(shorter, text("ABCD"));
    EXPECT_TRUE(history.canUndo());
}
