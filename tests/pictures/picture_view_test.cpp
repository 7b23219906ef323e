#include "pictures/picture_view.hpp"
#include "support/noise_bytes.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using namespace zevran::pictures;
using Bytes = std::vector<std::uint8_t>;
using Pixels = std::vector<std::uint32_t>;

namespace {

using zevran::test::noise;

std::uint32_t little(const Bytes& bmp, std::size_t at, int bytes)
{
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | bmp[at + static_cast<std::size_t>(i)];
    return value;
}

// A BMP file read back the way a BMP viewer shows it, top row first, as 0xFFRRGGBB:
// 1 and 4 bits through the colour table, 16 bits as 5-6-5 shifted up to 8 bits
// (the preview's reader does not repeat the top bits into the low ones), 24 bits in
// blue, green, red order.
Pixels shownBmp(const Bytes& bmp)
{
    const std::uint32_t offset = little(bmp, 10, 4);
    const auto width = static_cast<std::int32_t>(little(bmp, 18, 4));
    const auto height = static_cast<std::int32_t>(little(bmp, 22, 4));
    const int bits = static_cast<int>(little(bmp, 28, 2));
    const std::size_t stride = (static_cast<std::size_t>(width) * bits + 31) / 32 * 4;
    auto tableColour = [&](unsigned index) {
        const std::size_t at = 54 + 4 * index;
        return 0xFF000000u | unsigned{bmp[at + 2]} << 16 | unsigned{bmp[at + 1]} << 8 | bmp[at];
    };
    Pixels pixels;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::size_t row = offset + static_cast<std::size_t>(height - 1 - y) * stride;
        for (std::int32_t x = 0; x < width; ++x) {
            const auto ux = static_cast<std::size_t>(x);
            switch (bits) {
            case 1: pixels.push_back(tableColour((bmp[row + ux / 8] >> (7 - ux % 8)) & 1)); break;
            case 4: pixels.push_back(tableColour(ux % 2 ? bmp[row + ux / 2] & 0xF : bmp[row + ux / 2] >> 4)); break;
            case 16: {
                const unsigned v = little(bmp, row + 2 * ux, 2);
                pixels.push_back(0xFF000000u | (v >> 11) << 19 | ((v >> 5) & 0x3F) << 10 | (v & 0x1F) << 3);
                break;
            }
            default:
                pixels.push_back(0xFF000000u | unsigned{bmp[row + 3 * ux + 2]} << 16 |
                                 unsigned{bmp[row + 3 * ux + 1]} << 8 | bmp[row + 3 * ux]);
            }
        }
    }
    return pixels;
}

ColourTable sixteenColours()
{
    ColourTable table{};
    for (std::size_t i = 0; i < 16; ++i) {
        table[4 * i] = static_cast<std::uint8_t>(i * 16);         // blue
        table[4 * i + 1] = static_cast<std::uint8_t>(255 - i);    // green
        table[4 * i + 2] = static_cast<std::uint8_t>(i * 3 + 1);  // red
    }
    return table;
}

Pixels rendered(const Bytes& image, std::int64_t address, int depth, std::int32_t width, std::int32_t rows,
                const ColourTable& colours = {})
{
    ViewRenderer renderer;
    EXPECT_TRUE(renderer.render(image, {address, depth, width, rows}, colours));
    return renderer.pixels();
}

}  // namespace

TEST(PictureView, EveryDepthShowsWhatThePreviewBmpShows)
{
    const Bytes image = noise(200000, 7);
    const ColourTable colours = sixteenColours();
    for (int depth : {4, 8, 12, 16, 24})
        for (std::int32_t width : {1, 2, 5, 7, 64, 96, 128, 131}) {
            for (std::int64_t address : {0, 1, 2, 3, 1001}) {
                SCOPED_TRACE("depth " + std::to_string(depth) + ", width " + std::to_string(width) + ", at " +
                             std::to_string(address));
                const auto bmp = pictureFrameBmp(image, address, width, 37, depth, colours);
                ASSERT_TRUE(bmp);
                ViewRenderer renderer;
                ASSERT_TRUE(renderer.render(image, {address, depth, width, 37}, colours));
                EXPECT_EQ(renderer.width(), width);
                EXPECT_EQ(renderer.height(), 37);
                EXPECT_EQ(renderer.pixels(), shownBmp(*bmp));
            }
        }
}

TEST(PictureView, DepthOneShowsTheDisplayMemoryAsThe64By96PictureOfItsBmp)
{
    const Bytes image = noise(5000, 11);
    for (std::int32_t width : {8, 64, 128}) {
        ViewRenderer renderer;
        ASSERT_TRUE(renderer.render(image, {1234, 1, width, 17}, {}));
        EXPECT_EQ(renderer.width(), 64);
        EXPECT_EQ(renderer.height(), 96);
        EXPECT_EQ(renderer.pixels(), shownBmp(monoFrameBmp(image, 1234, 64, 96)));
    }
}

TEST(PictureView, DepthOnePixelsAreThePageBitsOfEachColumn)
{
    Bytes image(768, 0x00);
    image[7 * 96 + 0] = 0x80;  // page 7, column 0: the first byte of picture row 0
    image[0 * 96 + 5] = 0x01;  // page 0, column 5: the last byte of picture row 5
    const Pixels pixels = rendered(image, 0, 1, 64, 96);
    ASSERT_EQ(pixels.size(), 64u * 96u);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const bool lit = i == 0 || i == 5 * 64 + 63;
        EXPECT_EQ(pixels[i], lit ? 0xFFFFFFFFu : 0xFF000000u) << "pixel " << i;
    }
}

TEST(PictureView, ConvertedColoursOfEachDepth)
{
    // Depth 8: E0 blue, 03 red, 24 blue and green 36, 01 red 85.
    EXPECT_EQ(rendered({0xE0, 0x03, 0x24, 0x01}, 0, 8, 4, 1), (Pixels{0xFF0000FF, 0xFFFF0000, 0xFF002424, 0xFF550000}));
    // Depth 12: F00 then 0F8 in three bytes.
    EXPECT_EQ(rendered({0xF0, 0x00, 0xF8}, 0, 12, 2, 1), (Pixels{0xFFFF0000, 0xFF00FF88}));
    // Depth 16: 001F blue, F800 red, 07E0 green, 0841 the lowest step of each.
    EXPECT_EQ(rendered({0x1F, 0x00, 0x00, 0xF8, 0xE0, 0x07, 0x41, 0x08}, 0, 16, 4, 1),
              (Pixels{0xFF0000F8, 0xFFF80000, 0xFF00FC00, 0xFF080808}));
    // Depth 24: blue, green, red bytes.
    EXPECT_EQ(rendered({0x11, 0x22, 0x33}, 0, 24, 1, 1), (Pixels{0xFF332211}));
    // Depth 4: high nibble first, through the colour table.
    EXPECT_EQ(rendered({0x1F}, 0, 4, 2, 1, sixteenColours()), (Pixels{0xFF04FE10, 0xFF2EF0F0}));
}

TEST(PictureView, BytesPastTheImageEndShowAsNoData)
{
    // Ten bytes at 16 bits from 4: pixels at 4, 6 and 8; the fourth needs bytes 10-11.
    const Bytes image{0, 0, 0, 0, 0x1F, 0x00, 0x1F, 0x00, 0x1F, 0x00};
    EXPECT_EQ(rendered(image, 4, 16, 4, 2), (Pixels{0xFF0000F8, 0xFF0000F8, 0xFF0000F8, kNoDataPixel, kNoDataPixel,
                                                    kNoDataPixel, kNoDataPixel, kNoDataPixel}));
}

TEST(PictureView, BytesBeforeTheImageShowAsNoData)
{
    EXPECT_EQ(rendered({0xE0, 0x03}, -2, 8, 4, 1), (Pixels{kNoDataPixel, kNoDataPixel, 0xFF0000FF, 0xFFFF0000}));
}

TEST(PictureView, Depth12PairHalfInsideKeepsItsFirstPixel)
{
    // Bytes 2 and 3 exist, byte 4 does not: the first pixel is F, 0, 0 from byte 2 and
    // the top of byte 3; the second needs byte 4.
    EXPECT_EQ(rendered({0, 0, 0xF0, 0x0F}, 2, 12, 2, 1), (Pixels{0xFFFF0000, kNoDataPixel}));
}

TEST(PictureView, Depth24PixelWithTwoOfItsThreeBytesIsNoData)
{
    EXPECT_EQ(rendered({1, 2, 3, 4, 5}, 0, 24, 2, 1), (Pixels{0xFF030201, kNoDataPixel}));
}

TEST(PictureView, Depth4OddWidthLastPixelIsNeverReadAndShowsColourZero)
{
    // Width 7 reads three bytes a row; the seventh pixel is the table's first colour,
    // however near the end of the image the row lies.
    const ColourTable colours = sixteenColours();
    const Pixels pixels = rendered({0x12, 0x34, 0x56}, 0, 4, 7, 1, colours);
    ASSERT_EQ(pixels.size(), 7u);
    EXPECT_EQ(pixels[5], rendered({0x06}, 0, 4, 2, 1, colours)[1]);
    EXPECT_EQ(pixels[6], rendered({0x00}, 0, 4, 2, 1, colours)[0]);
}

TEST(PictureView, ViewsPartlyOutsideMatchThePreviewWhereBytesExist)
{
    const Bytes image = noise(3001, 3);
    const ColourTable colours = sixteenColours();
    for (int depth : {4, 8, 12, 16, 24})
        for (std::int32_t width : {5, 7, 32, 33})
            for (std::int64_t address : {-41, -1, 2980, 2981, 2995}) {
                SCOPED_TRACE("depth " + std::to_string(depth) + ", width " + std::to_string(width) + ", at " +
                             std::to_string(address));
                const Pixels view = rendered(image, address, depth, width, 20, colours);
                const Pixels shown = shownBmp(*pictureFrameBmp(image, address, width, 20, depth, colours));
                ASSERT_EQ(view.size(), shown.size());
                std::size_t missing = 0;
                for (std::size_t i = 0; i < view.size(); ++i) {
                    if (view[i] == kNoDataPixel) ++missing;
                    else EXPECT_EQ(view[i], shown[i]) << "pixel " << i;
                }
                EXPECT_GT(missing, 0u);
                EXPECT_LT(missing, view.size());
            }
}

TEST(PictureView, DepthOneNearTheEndMarksTheColumnsThatAreNotThere)
{
    // 760 bytes: page 7 lacks its last 8 columns, 88 to 95, which are picture rows
    // 88 to 95, pixels 0 to 7 (page 7 is the first byte of each row).
    const Bytes image = noise(760, 5);
    const Pixels pixels = rendered(image, 0, 1, 64, 96);
    const Pixels shown = shownBmp(monoFrameBmp(image, 0, 64, 96));
    for (std::int32_t y = 0; y < 96; ++y)
        for (std::int32_t x = 0; x < 64; ++x) {
            const auto i = static_cast<std::size_t>(y) * 64 + static_cast<std::size_t>(x);
            if (y >= 88 && x < 8) EXPECT_EQ(pixels[i], kNoDataPixel) << x << "," << y;
            else EXPECT_EQ(pixels[i], shown[i]) << x << "," << y;
        }
}

TEST(PictureView, ViewWhollyOutsideTheImageIsAllNoData)
{
    EXPECT_EQ(rendered({1, 2, 3}, 3, 16, 2, 2), Pixels(4, kNoDataPixel));
    EXPECT_EQ(rendered({1, 2, 3}, -100, 24, 3, 1), Pixels(3, kNoDataPixel));
}

TEST(PictureView, RefusedDepthDrawsNothing)
{
    ViewRenderer renderer;
    EXPECT_FALSE(renderer.render(Bytes(100, 1), {0, 2, 4, 4}, {}));
    EXPECT_EQ(renderer.width(), 0);
    EXPECT_TRUE(renderer.pixels().empty());
    EXPECT_FALSE(viewDepthDrawable(32));
    EXPECT_TRUE(viewDepthDrawable(12));
}

TEST(PictureView, OversizedOrNegativeViewIsRefused)
{
    ViewRenderer renderer;
    EXPECT_THROW(renderer.render(Bytes(10), {0, 16, 100000, 100000}, {}), std::length_error);
    EXPECT_THROW(renderer.render(Bytes(10), {0, 16, -1, 4}, {}), std::length_error);
}

TEST(PictureView, RedrawAfterALargerViewGivesOnlyTheNewPixels)
{
    const Bytes image = noise(4000, 9);
    ViewRenderer renderer;
    renderer.render(image, {0, 24, 40, 30}, {});
    renderer.render(image, {10, 8, 3, 2}, {});
    EXPECT_EQ(renderer.pixels(), shownBmp(*pictureFrameBmp(image, 10, 3, 2, 8, {})));
}
