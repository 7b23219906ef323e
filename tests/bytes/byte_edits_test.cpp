#include "image/byte_edits.hpp"
#include "image/patch_writer.hpp"
#include "image/undo_history.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace zevran::image {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Overwrites as the byte view does: the original bytes kept, one undo step, the bytes laid in.
void overwrite(ImageState& state, OriginalBytes& originals, UndoHistory& history, std::int64_t address, Bytes bytes)
{
    const auto region = overwriteRegion(state.FirmwareImage.size(), address, bytes);
    ASSERT_TRUE(region);
    originals.remember(state.FirmwareImage, {*region});
    history.record(stepForRegions(state.FirmwareImage, {*region}));
    patchImage(state, {*region});
}

TEST(ByteEdits, OverwriteKeepsTheImageLengthAndIsCutAtItsEnd)
{
    const auto region = overwriteRegion(8, 6, Bytes{1, 2, 3, 4});
    ASSERT_TRUE(region);
    EXPECT_EQ(region->first, 6);
    EXPECT_EQ(region->last, 7);
    EXPECT_EQ(region->bytes, (Bytes{1, 2}));
    EXPECT_FALSE(overwriteRegion(8, 8, Bytes{1}));
    EXPECT_FALSE(overwriteRegion(8, -1, Bytes{1}));
}

TEST(ByteEdits, EachOverwriteIsOneUndoStep)
{
    ImageState state;
    state.FirmwareImage = Bytes(16, 0x00);
    OriginalBytes originals;
    UndoHistory history;
    overwrite(state, originals, history, 2, {0xAB});
    overwrite(state, originals, history, 3, {0xCD, 0xEF});
    EXPECT_EQ(history.undoCount(), 2u);
    EXPECT_EQ(state.FirmwareImage[3], 0xCD);
    ASSERT_TRUE(history.undo(state.FirmwareImage));
    EXPECT_EQ(state.FirmwareImage, (Bytes{0, 0, 0xAB, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    ASSERT_TRUE(history.undo(state.FirmwareImage));
    EXPECT_EQ(state.FirmwareImage, Bytes(16, 0x00));
    ASSERT_TRUE(history.redo(state.FirmwareImage));
    EXPECT_EQ(state.FirmwareImage[2], 0xAB);
}

TEST(ByteEdits, ChangedBytesAreThoseThatDifferFromTheFileAsOpened)
{
    ImageState state;
    state.FirmwareImage = Bytes{0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17};
    OriginalBytes originals;
    UndoHistory history;
    overwrite(state, originals, history, 1, {0xAA, 0x12});  // the second byte is unchanged
    overwrite(state, originals, history, 5, {0xBB});
    overwrite(state, originals, history, 1, {0xCC});  // over an edited byte: the file's stays kept
    EXPECT_TRUE(originals.changedAt(state.FirmwareImage, 1));
    EXPECT_FALSE(originals.changedAt(state.FirmwareImage, 2));
    EXPECT_TRUE(originals.changedAt(state.FirmwareImage, 5));
    using Span = std::pair<std::size_t, std::size_t>;
    EXPECT_EQ(originals.changedSpans(state.FirmwareImage), (std::vector<Span>{{1, 2}, {5, 6}}));
    history.undo(state.FirmwareImage);
    history.undo(state.FirmwareImage);
    EXPECT_EQ(originals.changedSpans(state.FirmwareImage), (std::vector<Span>{{1, 2}}));
    history.undo(state.FirmwareImage);
    EXPECT_TRUE(originals.changedSpans(state.FirmwareImage).empty());
}

TEST(ByteEdits, KeptRunsThatTouchAreJoined)
{
    const Bytes image{1, 2, 3, 4, 5, 6, 7, 8};
    OriginalBytes originals;
    originals.remember(image, 0, 2);
    originals.remember(image, 4, 2);
    originals.remember(image, 2, 2);
    EXPECT_EQ(originals.keptBytes(), 6u);
    originals.remember(image, 6, 10);  // cut at the image's end
    EXPECT_EQ(originals.keptBytes(), 8u);
}

TEST(ByteEdits, PatchOfBinEditsAppliedOverTheFileGivesTheEditedImage)
{
    test::TempFolder folder;
    Bytes file(4096);
    for (std::size_t i = 0; i < file.size(); ++i) file[i] = static_cast<std::uint8_t>(i * 7);
    ImageState state;
    state.FirmwareImage = file;
    OriginalBytes originals;
    UndoHistory history;
    overwrite(state, originals, history, 0x10, {0xDE, 0xAD});
    overwrite(state, originals, history, 0x800, Bytes(40, 0x55));
    overwrite(state, originals, history, 0xFFF, {0x99});
    const std::vector<Region> regions = originals.changedRegions(state.FirmwareImage);
    ASSERT_EQ(regions.size(), 3u);
    EXPECT_EQ(regions[0].first, 0x10);
    EXPECT_EQ(regions[0].last, 0x11);
    EXPECT_EQ(regions[0].bytes, (Bytes{0xDE, 0xAD}));
    EXPECT_EQ(regions[2].first, 0xFFF);
    const std::string patch = folder.path("edits.s3");
    writeSRecordPatch(patch, regions);
    Bytes flashed = file;
    std::ifstream in(patch, std::ios::binary);
    applySRecordPatch(flashed, in);
    EXPECT_EQ(flashed, state.FirmwareImage);
}

}  // namespace
}  // namespace zevran::image
