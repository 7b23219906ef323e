#include "pictures/picture_player.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zevran::pictures;
using Bytes = std::vector<std::uint8_t>;

namespace {

FrameGeometry geometry(std::int64_t start, std::int64_t frameSize, std::int64_t frames, std::int32_t width,
                       std::int32_t height, int depth)
{
    FrameGeometry g;
    g.start = start;
    g.frameSize = frameSize;
    g.frames = frames;
    g.width = width;
    g.height = height;
    g.depth = depth;
    return g;
}

}  // namespace

TEST(PlayerStep, NextAndPreviousKnowNoBoundOfThePicture)
{
    EXPECT_EQ(steppedFrame(2, 1), 3);
    EXPECT_EQ(steppedFrame(0, -1), -1);
    EXPECT_EQ(steppedFrame(-1, -1), -2);
}

TEST(PlayerStep, CounterStopsAtItsSixteenBits)
{
    EXPECT_EQ(steppedFrame(32766, 1), 32767);
    EXPECT_THROW(steppedFrame(32767, 1), PlayerOverflow);
    EXPECT_EQ(steppedFrame(-32767, -1), -32768);
    EXPECT_THROW(steppedFrame(-32768, -1), PlayerOverflow);
}

TEST(PlayerAddress, FrameLiesFrameSizesAfterTheStart)
{
    const FrameGeometry g = geometry(0x120000, 2048, 3, 32, 32, 16);
    EXPECT_EQ(shownFrameAddress(g, 0), 0x120000);
    EXPECT_EQ(shownFrameAddress(g, 2), 0x121000);
    EXPECT_EQ(shownFrameAddress(g, 3), 0x121800);
    EXPECT_EQ(shownFrameAddress(g, -1), 0x11F800);
}

TEST(PlayerAddress, AddressBeyondThirtyTwoBitsIsRefused)
{
    const FrameGeometry g = geometry(0x7FFFFF00, 0x100, 2, 8, 8, 24);
    EXPECT_EQ(shownFrameAddress(g, 0), 0x7FFFFF00);
    EXPECT_THROW(shownFrameAddress(g, 1), PlayerOverflow);
    const FrameGeometry low = geometry(0, 0x7FFFFFFF, 2, 8, 8, 24);
    EXPECT_EQ(shownFrameAddress(low, -1), -0x7FFFFFFF);
    EXPECT_THROW(shownFrameAddress(low, -2), PlayerOverflow);
}

TEST(PlayerText, AddressInUpperCaseHexWithoutWidth)
{
    EXPECT_EQ(frameAddressText(0x1A2B), "0x1A2B");
    EXPECT_EQ(frameAddressText(0), "0x0");
    EXPECT_EQ(frameAddressText(0x00120000), "0x120000");
    EXPECT_EQ(frameAddressText(-16), "0xFFFFFFF0");
}

TEST(PlayerText, OrdinalIsFramePlusOne)
{
    EXPECT_EQ(frameOrdinalText(0), "1");
    EXPECT_EQ(frameOrdinalText(4), "5");
    EXPECT_EQ(frameOrdinalText(-1), "0");
}

TEST(AnimationTick, SingleFrameWithoutRepeatShowsFrameZeroTwiceAndStops)
{
    const AnimationTick first = animationTick(0, 1, false);
    EXPECT_EQ(first.show, 0);
    EXPECT_EQ(first.next, 1);
    EXPECT_FALSE(first.stop);
    const AnimationTick second = animationTick(first.next, 1, false);
    EXPECT_EQ(second.show, 0);
    EXPECT_EQ(second.next, 0);
    EXPECT_TRUE(second.stop);
}

TEST(AnimationTick, RepeatShowsFrameZeroOnceALoop)
{
    std::vector<int> shown;
    FrameNumber current = 0;
    for (int tick = 0; tick < 8; ++tick) {
        const AnimationTick t = animationTick(current, 3, true);
        EXPECT_FALSE(t.stop);
        shown.push_back(t.show);
        current = t.next;
    }
    EXPECT_EQ(shown, (std::vector<int>{0, 1, 2, 0, 1, 2, 0, 1}));
}

TEST(AnimationTick, WithoutRepeatStopsAfterTheLastFrame)
{
    std::vector<int> shown;
    FrameNumber current = 0;
    bool stopped = false;
    while (!stopped) {
        const AnimationTick t = animationTick(current, 3, false);
        shown.push_back(t.show);
        current = t.next;
        stopped = t.stop;
    }
    EXPECT_EQ(shown, (std::vector<int>{0, 1, 2, 0}));
    EXPECT_EQ(current, 0);
}

TEST(AnimationTick, NoFramesStopsAtOnceShowingFrameZero)
{
    const AnimationTick t = animationTick(0, 0, false);
    EXPECT_EQ(t.show, 0);
    EXPECT_TRUE(t.stop);
}

TEST(AnimationTick, CounterPastItsRangeIsRefused) { EXPECT_THROW(animationTick(32767, 40000, false), PlayerOverflow); }

TEST(PreviewFile, ChosenRowAndTickHaveTheirOwnNames)
{
    EXPECT_EQ(previewFilePath("/opt/zevran"), "/opt/zevran/temp.bmp");
    EXPECT_EQ(animationFilePath("/opt/zevran", 0), "/opt/zevran/temp0.bmp");
    EXPECT_EQ(animationFilePath("/opt/zevran", 12), "/opt/zevran/temp12.bmp");
}

TEST(PreviewDecode, MonoDepthGoesThroughTheDisplayMemory)
{
    zevran::test::TempFolder folder;
    Bytes image(768, 0);
    image[7 * 96 + 0] = 0x81;  // bottom page of column 0: the first byte of the data
    const std::string path = folder.path("temp.bmp");
    ASSERT_TRUE(decodePreviewFrame(image, geometry(0, 768, 1, 64, 96, 1), 0, path, folder.path("16.dat")));
    const Bytes bmp = zevran::test::readBytes(path);
    ASSERT_EQ(bmp.size(), 62u + 768u);
    EXPECT_EQ(bmp[28], 1);
    // Column 0 becomes the picture's top row, stored last.
    EXPECT_EQ(bmp[62 + 95 * 8], 0x81);
    EXPECT_FALSE(std::filesystem::exists(folder.path("16.dat")));
}

TEST(PreviewDecode, DepthFourReadsTheColourTable)
{
    zevran::test::TempFolder folder;
    Bytes colours(64, 0);
    colours[4] = 0x11;  // entry 1: blue 0x11
    zevran::test::writeFile(folder.path("16.dat"), colours);
    const std::string path = folder.path("temp.bmp");
    ASSERT_TRUE(decodePreviewFrame(Bytes{0x12}, geometry(0, 1, 1, 2, 1, 4), 0, path, folder.path("16.dat")));
    const Bytes bmp = zevran::test::readBytes(path);
    ASSERT_EQ(bmp.size(), 118u + 4u);
    EXPECT_EQ(bmp[54 + 4], 0x11);
    EXPECT_EQ((Bytes(bmp.begin() + 118, bmp.end())), (Bytes{0x12, 0, 0, 0}));
}

TEST(PreviewDecode, OtherDepthsLeaveTheColourTableAlone)
{
    zevran::test::TempFolder folder;
    ASSERT_TRUE(decodePreviewFrame(Bytes{1, 2, 3}, geometry(0, 3, 1, 1, 1, 24), 0, folder.path("t.bmp"),
                                   folder.path("16.dat")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("16.dat")));
}

TEST(PreviewDecode, RefusedDepthWritesNoFile)
{
    zevran::test::TempFolder folder;
    EXPECT_FALSE(
        decodePreviewFrame(Bytes{1, 2}, geometry(0, 2, 1, 1, 1, 2), 0, folder.path("t.bmp"), folder.path("16.dat")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("t.bmp")));
}

TEST(ColoursForDepth, MissingTableIsCreatedEmptyForDepthFour)
{
    zevran::test::TempFolder folder;
    EXPECT_EQ(coloursForDepth(4, folder.path("16.dat")), ColourTable{});
    EXPECT_TRUE(std::filesystem::exists(folder.path("16.dat")));
    EXPECT_EQ(std::filesystem::file_size(folder.path("16.dat")), 0u);
}
