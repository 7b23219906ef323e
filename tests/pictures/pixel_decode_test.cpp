#include "pictures/pixel_decode.hpp"

#include "image/file_io.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

using namespace zevran::pictures;
using Bytes = std::vector<std::uint8_t>;

namespace {

const ColourTable kNoColours{};

std::uint32_t field(const Bytes& bmp, std::size_t at, int bytes)
{
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = (value << 8) | bmp[at + static_cast<std::size_t>(i)];
    return value;
}

Bytes decode(const Bytes& image, std::int32_t width, std::int32_t height, int depth, std::int64_t address = 0)
{
    auto bmp = pictureFrameBmp(image, address, width, height, depth, kNoColours);
    return bmp ? *bmp : Bytes{};
}

}  // namespace

TEST(PixelDecode, Depth24OnePixelGivesTheWholeFile)
{
    const Bytes expected{
        'B', 'M', 58, 0, 0, 0, 0, 0, 0,    0,    54,   0, 0,    0,            // file header
        40,  0,   0,  0, 1, 0, 0, 0, 1,    0,    0,    0, 1,    0,    24, 0,  // size, width, height, planes, bits
        0,   0,   0,  0, 4, 0, 0, 0, 0xC4, 0x0E, 0,    0, 0xC4, 0x0E, 0,  0,
        0,   0,   0,  0, 0, 0, 0, 0, 0x11, 0x22, 0x33, 0};  // blue, green, red, one padding byte
    EXPECT_EQ(decode({0x11, 0x22, 0x33}, 1, 1, 24), expected);
}

TEST(PixelDecode, Depth24WidthThreeRowGetsThreePaddingBytes)
{
    Bytes image(9, 0xAA);
    Bytes bmp = decode(image, 3, 1, 24);
    ASSERT_EQ(bmp.size(), 54u + 12u);
    EXPECT_EQ(Bytes(bmp.begin() + 63, bmp.end()), (Bytes{0, 0, 0}));
    EXPECT_EQ(field(bmp, 34, 4), 12u);
}

TEST(PixelDecode, Depth16BlueWithMasksAndBitFields)
{
    Bytes bmp = decode({0x1F, 0x00}, 1, 1, 16);
    EXPECT_EQ(field(bmp, 10, 4), 70u);
    EXPECT_EQ(field(bmp, 30, 4), 3u);
    EXPECT_EQ(field(bmp, 28, 2), 16u);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.begin() + 70),
              (Bytes{0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Bytes(bmp.begin() + 70, bmp.end()), (Bytes{0x1F, 0x00, 0, 0}));
}

TEST(PixelDecode, Depth8ChannelsAndTheirRounding)
{
    Bytes bmp = decode({0xE0, 0x03, 0x24, 0x01}, 4, 1, 8);
    ASSERT_EQ(bmp.size(), 54u + 12u);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{255, 0, 0, 0, 0, 255, 36, 36, 0, 0, 0, 85}));
    EXPECT_EQ(field(bmp, 28, 2), 24u);
}

TEST(PixelDecode, Depth12NibblesRedGreenBlueFirstPixelFirst)
{
    // 0xF00 then 0x0F8: pure red, then green 15 with blue 8.
    Bytes bmp = decode({0xF0, 0x00, 0xF8}, 2, 1, 12);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{0, 0, 255, 136, 255, 0, 0, 0}));
}

TEST(PixelDecode, Depth4CopiesNibblesAndUsesTheColourTable)
{
    ColourTable colours{};
    colours[4] = 0x12;  // entry 1, blue
    auto bmp = pictureFrameBmp(Bytes{0x10, 0x32}, 0, 4, 1, 4, colours);
    ASSERT_TRUE(bmp);
    EXPECT_EQ(field(*bmp, 10, 4), 118u);
    EXPECT_EQ((*bmp)[58], 0x12);
    EXPECT_EQ(Bytes(bmp->begin() + 118, bmp->end()), (Bytes{0x10, 0x32, 0, 0}));
}

TEST(PixelDecode, Depth4OddWidthsCopyRoundedByteCounts)
{
    Bytes image{1, 2, 3, 4, 5, 6, 7, 8};
    // Width 5: 2.5 bytes a row, 0.5 x 5 - 1 = 1.5 rounds to 2, so three bytes are copied.
    Bytes bmp = decode(image, 5, 2, 4);
    // Each source index of row 1 is rounded on its own, half to even: 2.5, 3.5 and 4.5
    // give 2, 4 and 4. Row 1 is stored first.
    EXPECT_EQ(Bytes(bmp.begin() + 118, bmp.end()), (Bytes{3, 5, 5, 0, 1, 2, 3, 0}));
}

TEST(PixelDecode, RowsAreStoredBottomUp)
{
    Bytes bmp = decode({1, 2, 3, 4, 5, 6}, 1, 2, 24);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{4, 5, 6, 0, 1, 2, 3, 0}));
}

TEST(PixelDecode, FramePastTheImageEndReadsZeros)
{
    Bytes bmp = decode({9, 9, 9, 9}, 2, 1, 24, 2);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{9, 9, 0, 0, 0, 0, 0, 0}));
}

TEST(PixelDecode, UnsupportedDepthsAreRefused)
{
    for (int depth : {0, 1, 2, 32}) EXPECT_FALSE(pictureFrameBmp(Bytes{0}, 0, 1, 1, depth, kNoColours)) << depth;
}

TEST(PixelDecode, AbsurdDimensionsAreRefusedNotAllocated)
{
    EXPECT_THROW(decode({0}, 100000, 100000, 24), std::length_error);
}

// Found by picture_table_fuzz: a row "0*2147483647" walked every one of its 2^31 empty
// rows, seconds a frame; the suite's time-out catches that walk coming back.
TEST(PixelDecode, ZeroWidthWithTheTallestHeightGivesTheHeaderAtOnce)
{
    for (int depth : {4, 8, 12, 16, 24}) {
        Bytes bmp = decode({1, 2, 3}, 0, std::numeric_limits<std::int32_t>::max(), depth);
        EXPECT_EQ(field(bmp, 2, 4), bmp.size()) << depth;
        EXPECT_EQ(field(bmp, 34, 4), 0u) << depth;
    }
}

TEST(MonoDecode, ZeroWidthWithTheTallestHeightGivesTheHeaderAtOnce)
{
    Bytes bmp = monoFrameBmp(Bytes(768, 0xFF), 0, 0, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(bmp.size(), 62u);
}

TEST(MonoDecode, ReadsTheDisplayMemoryColumnByColumnBottomPageFirst)
{
    Bytes image(1 + 768);
    for (std::size_t page = 0; page < 8; ++page)
        for (std::size_t column = 0; column < 96; ++column)
            image[1 + page * 96 + column] = static_cast<std::uint8_t>(page * 16 + column % 16);
    Bytes bmp = monoFrameBmp(image, 1, 64, 96);
    ASSERT_EQ(bmp.size(), 62u + 768u);
    EXPECT_EQ(field(bmp, 10, 4), 62u);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.begin() + 62), (Bytes{0, 0, 0, 0, 255, 255, 255, 0}));
    // Column 0 is the top row, stored last: its pages 7 down to 0.
    EXPECT_EQ(Bytes(bmp.end() - 8, bmp.end()), (Bytes{0x70, 0x60, 0x50, 0x40, 0x30, 0x20, 0x10, 0x00}));
    // Column 95 is the bottom row, stored first.
    EXPECT_EQ(Bytes(bmp.begin() + 62, bmp.begin() + 70), (Bytes{0x7F, 0x6F, 0x5F, 0x4F, 0x3F, 0x2F, 0x1F, 0x0F}));
}

TEST(MonoDecode, SmallEntryStillReadsButKeepsOnlyItsDataSize)
{
    Bytes image(768, 0xFF);
    Bytes bmp = monoFrameBmp(image, 0, 8, 8);
    EXPECT_EQ(field(bmp, 34, 4), 8u);
    EXPECT_EQ(bmp.size(), 70u);
}

TEST(DecodePictureFrame, UnsupportedDepthWritesNoFile)
{
    zevran::test::TempFolder folder;
    EXPECT_FALSE(DecodePictureFrame(Bytes{0}, 0, folder.path("x.bmp"), 1, 1, 2, kNoColours));
    EXPECT_FALSE(std::filesystem::exists(folder.path("x.bmp")));
}

TEST(DecodePictureFrame, WritesTheBmpBytes)
{
    zevran::test::TempFolder folder;
    EXPECT_TRUE(DecodePictureFrame(Bytes{1, 2, 3}, 0, folder.path("x.bmp"), 1, 1, 24, kNoColours));
    EXPECT_EQ(zevran::test::readBytes(folder.path("x.bmp")), decode({1, 2, 3}, 1, 1, 24));
}

TEST(ReadColourTable, MissingFileIsCreatedEmptyAndReadsBlack)
{
    zevran::test::TempFolder folder;
    EXPECT_EQ(readColourTable(folder.path("16.dat")), ColourTable{});
    EXPECT_TRUE(std::filesystem::exists(folder.path("16.dat")));
}
