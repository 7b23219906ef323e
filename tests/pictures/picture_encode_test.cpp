// The picture import's encoder: the colour rules with their bytes written out, where
// each depth puts a pixel, the bits it leaves alone, and every refusal.
#include "pictures/picture_encode.hpp"
#include "pictures/picture_import.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace zevran::pictures;
using Bytes = std::vector<std::uint8_t>;

namespace {

const ColourTable kNoColours{};

// A picture of the given size from red, green, blue triples, top row first.
PictureGrid grid(std::int32_t width, std::int32_t height, Bytes rgb)
{
    PictureGrid picture;
    picture.width = width;
    picture.height = height;
    picture.rgb = std::move(rgb);
    return picture;
}

// A picture of one colour.
PictureGrid filled(std::int32_t width, std::int32_t height, std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    Bytes rgb;
    for (std::int64_t i = 0; i < std::int64_t{width} * height; ++i) rgb.insert(rgb.end(), {red, green, blue});
    return grid(width, height, rgb);
}

FrameLayout layout(std::int64_t address, std::int32_t width, std::int32_t height, int depth)
{
    return {address, width, height, depth};
}

// The refusal's reason and values, or a failure when nothing is refused.
std::pair<ImportRefusal, std::vector<std::string>> refusal(const PictureGrid& picture, const FrameLayout& frame,
                                                           const Bytes& image, const ColourTable& colours = kNoColours)
{
    try {
        encodePictureFrame(picture, frame, image, colours);
    } catch (const PictureImportError& error) {
        return {error.reason(), error.values()};
    }
    ADD_FAILURE() << "the import was not refused";
    return {};
}

// Black, blue, green, red, grey at 0-4; the rest white, and 7 repeats green.
ColourTable testColours()
{
    ColourTable table{};
    const Bytes entries = {0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 128, 128, 128, 0};
    std::copy(entries.begin(), entries.end(), table.begin());
    for (std::size_t i = 20; i < 64; ++i) table[i] = i % 4 == 3 ? 0 : 255;
    table[28] = 0, table[29] = 255, table[30] = 0;
    return table;
}

}  // namespace

TEST(PictureEncode, Depth24StoresBlueGreenRedAsGiven)
{
    const Bytes image(8, 0xEE);
    const auto region =
        encodePictureFrame(grid(2, 1, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66}), layout(1, 2, 1, 24), image, kNoColours);
    EXPECT_EQ(region.first, 1);
    EXPECT_EQ(region.last, 6);
    EXPECT_EQ(region.bytes, (Bytes{0x33, 0x22, 0x11, 0x66, 0x55, 0x44}));
}

TEST(PictureEncode, Depth16KeepsHighBits)
{
    // R 0x87 -> 16, G 0x46 -> 17, B 0x2B -> 5: 0x8225; low bits of green and blue drop: 0xF800.
    const auto region = encodePictureFrame(grid(2, 1, {0x87, 0x46, 0x2B, 0xFF, 0x03, 0x07}), layout(0, 2, 1, 16),
                                           Bytes(4, 0), kNoColours);
    EXPECT_EQ(region.bytes, (Bytes{0x25, 0x82, 0x00, 0xF8}));
    EXPECT_EQ(depth16Word(0x00, 0x00, 0xFF), 0x001F);
    EXPECT_EQ(depth16Word(0x00, 0xFF, 0x00), 0x07E0);
}

TEST(PictureEncode, Depth12PacksTwoPixelsInThreeBytesFirstPixelHigh)
{
    const auto region = encodePictureFrame(grid(2, 1, {0x12, 0x34, 0x56, 0xAB, 0xCD, 0xEF}), layout(0, 2, 1, 12),
                                           Bytes(3, 0), kNoColours);
    EXPECT_EQ(region.bytes, (Bytes{0x13, 0x5A, 0xCE}));
}

TEST(PictureEncode, Depth12OddPixelCountKeepsTheUnshownLowTwelveBits)
{
    // One pixel shows byte 0 and the high nibble of byte 1; byte 2 is not shown.
    const auto region =
        encodePictureFrame(filled(1, 1, 0xFF, 0xFF, 0xFF), layout(0, 1, 1, 12), Bytes{0x00, 0x77, 0x99}, kNoColours);
    EXPECT_EQ(region.first, 0);
    EXPECT_EQ(region.last, 1);
    EXPECT_EQ(region.bytes, (Bytes{0xFF, 0xF7}));
}

TEST(PictureEncode, Depth8PutsBlueInTheTopBitsAndRedInTheBottomTwo)
{
    // B 0xE0 -> 7, G 0xA0 -> 5, R 0xC0 -> 3: 111 101 11; then B 1, G 4, R 1: 001 100 01.
    const auto region = encodePictureFrame(grid(2, 1, {0xC0, 0xA0, 0xE0, 0x7F, 0x9F, 0x3F}), layout(0, 2, 1, 8),
                                           Bytes(2, 0), kNoColours);
    EXPECT_EQ(region.bytes, (Bytes{0xF7, 0x31}));
}

TEST(PictureEncode, Depth8InvertsThePreviewsWidening)
{
    // The preview widens 3-bit fields to 0, 36, 73, ... 255 and 2-bit ones to 0, 85, 170, 255.
    EXPECT_EQ(depth8Byte(0, 0, 36), 0x20);
    EXPECT_EQ(depth8Byte(0, 219, 0), 0x18);
    EXPECT_EQ(depth8Byte(85, 0, 0), 0x01);
    EXPECT_EQ(depth8Byte(170, 0, 0), 0x02);
    EXPECT_EQ(depth8Byte(255, 255, 255), 0xFF);
}

TEST(PictureEncode, Depth4TakesTheNearestColourOfTheTable)
{
    // Dark red -> red (3), near-white grey -> white (5), a 200 grey -> white at
    // 3*55^2 against grey's 3*72^2, a 200 green -> green (2, not its twin 7).
    const auto region = encodePictureFrame(grid(4, 1, {200, 30, 30, 240, 240, 240, 200, 200, 200, 0, 200, 0}),
                                           layout(0, 4, 1, 4), Bytes(2, 0), testColours());
    EXPECT_EQ(region.bytes, (Bytes{0x35, 0x52}));
}

TEST(PictureEncode, Depth4TieGoesToTheLowestIndex)
{
    const ColourTable colours = testColours();
    // Green matches entries 2 and 7 alike: 2 wins.
    EXPECT_EQ(nearestColourIndex(colours, 0, 255, 0), 2);
    // 64 red lies as far from black (entries 0 and 2-15) as from 128 red (entry 1).
    ColourTable twoReds{};
    twoReds[6] = 128;  // entry 1: red 128
    EXPECT_EQ(nearestColourIndex(twoReds, 64, 0, 0), 0);
    EXPECT_EQ(nearestColourIndex(twoReds, 65, 0, 0), 1);
}

TEST(PictureEncode, Depth4IndexedPictureKeepsItsIndices)
{
    // A table of 16 blacks: only the indices can tell the pixels apart.
    PictureGrid picture = filled(2, 1, 0, 0, 0);
    picture.indices = {3, 12};
    const auto region = encodePictureFrame(picture, layout(0, 2, 1, 4), Bytes{0x00}, kNoColours);
    EXPECT_EQ(region.bytes, (Bytes{0x3C}));
}

TEST(PictureEncode, Depth4OddWidthKeepsTheUnusedNibble)
{
    PictureGrid picture = filled(1, 1, 0, 0, 0);
    picture.indices = {5};
    const auto region = encodePictureFrame(picture, layout(0, 1, 1, 4), Bytes{0xAB}, kNoColours);
    EXPECT_EQ(region.bytes, (Bytes{0x5B}));
}

TEST(PictureEncode, Depth4WidthFiveSharesNibblesBetweenRowsAndSkipsAByte)
{
    // Row 0 takes bytes 0, 1, 2; row 1 starts at 2.5 and takes bytes 2, 4, 4 (half-way
    // rounds to even): pixel (0, 1) shows what (4, 0) shows, (4, 1) what (2, 1) shows,
    // and byte 3 is shown nowhere.
    PictureGrid picture = filled(5, 2, 0, 0, 0);
    picture.indices = {1, 2, 3, 4, 5,  //
                       5, 6, 7, 8, 7};
    const auto region = encodePictureFrame(picture, layout(0, 5, 2, 4), Bytes{0, 0, 0, 0x99, 0, 0xEE}, kNoColours);
    EXPECT_EQ(region.first, 0);
    EXPECT_EQ(region.last, 4);
    EXPECT_EQ(region.bytes, (Bytes{0x12, 0x34, 0x56, 0x99, 0x78}));
}

TEST(PictureEncode, Depth4PixelsShowingOneNibbleInTwoColoursAreRefused)
{
    PictureGrid picture = filled(5, 2, 0, 0, 0);
    picture.indices = {1, 2, 3, 4, 5,  //
                       9, 6, 7, 8, 7};
    const auto [reason, values] = refusal(picture, layout(0, 5, 2, 4), Bytes(6, 0));
    EXPECT_EQ(reason, ImportRefusal::Clash);
    EXPECT_EQ(values, (std::vector<std::string>{"(4, 0)", "(0, 1)", "0x00000002"}));
}

TEST(PictureEncode, Depth4WidthSevenLeavesTheLastPixelOfEachRowUnshown)
{
    // Three bytes a row: the seventh pixel lies in the BMP's padding.
    const auto range = shownImageBytes(layout(0, 7, 2, 4));
    ASSERT_TRUE(range);
    EXPECT_EQ(range->first, 0);
    EXPECT_EQ(range->last, 6);  // row 1 starts at 3.5: bytes 4, 4, 6
    PictureGrid picture = filled(7, 1, 0, 0, 0);
    picture.indices = {1, 2, 3, 4, 5, 6, 15};
    EXPECT_EQ(encodePictureFrame(picture, layout(0, 7, 1, 4), Bytes(4, 0xAA), kNoColours).bytes,
              (Bytes{0x12, 0x34, 0x56}));
}

TEST(PictureEncode, Depth4WidthSevenCountsTheLastPixelsItCannotStore)
{
    // The seventh pixel has no nibble; the preview shows it in colour 0. A pixel of
    // colour 15 there is lost and counted, one of colour 0 is not.
    PictureGrid picture = filled(7, 1, 0, 0, 0);
    picture.indices = {1, 2, 3, 4, 5, 6, 15};
    const EncodedFrame lost = encodePictureFrameCounted(picture, layout(0, 7, 1, 4), Bytes(4, 0xAA), kNoColours);
    EXPECT_EQ(lost.region.bytes, (Bytes{0x12, 0x34, 0x56}));
    EXPECT_EQ(lost.unstoredPixels, 1);
    picture.indices.back() = 0;
    EXPECT_EQ(encodePictureFrameCounted(picture, layout(0, 7, 1, 4), Bytes(4, 0xAA), kNoColours).unstoredPixels, 0);
    // By colour: white is not the table's colour 0 (black), black is.
    const ColourTable colours = testColours();
    PictureGrid white = filled(3, 2, 255, 255, 255);
    EXPECT_EQ(encodePictureFrameCounted(white, layout(0, 3, 2, 4), Bytes(4, 0), colours).unstoredPixels, 2);
    EXPECT_EQ(encodePictureFrameCounted(filled(3, 2, 0, 0, 0), layout(0, 3, 2, 4), Bytes(4, 0), colours).unstoredPixels,
              0);
}

TEST(PictureEncode, EveryOtherDepthAndWidthStoresEveryPixel)
{
    EXPECT_EQ(encodePictureFrameCounted(filled(5, 1, 255, 255, 255), layout(0, 5, 1, 4), Bytes(4, 0), testColours())
                  .unstoredPixels,
              0);
    EXPECT_EQ(
        encodePictureFrameCounted(filled(3, 2, 9, 9, 9), layout(0, 3, 2, 24), Bytes(32, 0), kNoColours).unstoredPixels,
        0);
}

TEST(PictureEncode, MonoWhiteFromLuminance)
{
    EXPECT_TRUE(monoWhite(128, 128, 128));   // 128000
    EXPECT_FALSE(monoWhite(127, 128, 128));  // 127701
    EXPECT_TRUE(monoWhite(0, 255, 0));       // 149685
    EXPECT_FALSE(monoWhite(255, 0, 255));    // 105315
}

TEST(PictureEncode, MonoFollowsTheDisplayMemoryLayout)
{
    // 64*96: picture row y is display column y, pixel x lies in page 7 - x / 8, bit 7 - x % 8.
    PictureGrid picture = filled(64, 96, 0, 0, 0);
    auto white = [&](int x, int y) {
        const auto at = 3 * (static_cast<std::size_t>(y) * 64 + static_cast<std::size_t>(x));
        picture.rgb[at] = picture.rgb[at + 1] = picture.rgb[at + 2] = 255;
    };
    white(0, 0);
    white(63, 95);
    white(9, 2);
    const auto region = encodePictureFrame(picture, layout(0x100, 64, 96, 1), Bytes(0x400, 0x5A), kNoColours);
    EXPECT_EQ(region.first, 0x100);
    EXPECT_EQ(region.last, 0x3FF);
    Bytes expected(768, 0x00);
    expected[7 * 96 + 0] = 0x80;
    expected[0 * 96 + 95] = 0x01;
    expected[6 * 96 + 2] = 0x40;
    EXPECT_EQ(region.bytes, expected);
}

TEST(PictureEncode, MonoSmallPictureKeepsTheDisplayMemoryItDoesNotShow)
{
    // 32*8: 32 BMP bytes, the first four columns of every page.
    const auto region =
        encodePictureFrame(filled(32, 8, 255, 255, 255), layout(0, 32, 8, 1), Bytes(768, 0x00), kNoColours);
    EXPECT_EQ(region.first, 0);
    EXPECT_EQ(region.last, 7 * 96 + 3);
    Bytes expected(7 * 96 + 4, 0x00);
    for (int page = 0; page < 8; ++page)
        for (int column = 0; column < 4; ++column)
            expected[static_cast<std::size_t>(page) * 96 + static_cast<std::size_t>(column)] = 0xFF;
    EXPECT_EQ(region.bytes, expected);
}

TEST(PictureEncode, ShownBytesOfEachDepth)
{
    auto range = [](const FrameLayout& frame) {
        const auto shown = shownImageBytes(frame);
        return shown ? std::pair{shown->first, shown->last} : std::pair<std::int64_t, std::int64_t>{-1, -1};
    };
    EXPECT_EQ(range(layout(0x10, 3, 2, 24)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x21}));
    EXPECT_EQ(range(layout(0x10, 3, 2, 16)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x1B}));
    EXPECT_EQ(range(layout(0x10, 3, 1, 12)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x14}));
    EXPECT_EQ(range(layout(0x10, 3, 2, 8)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x15}));
    EXPECT_EQ(range(layout(0x10, 4, 2, 4)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x13}));
    EXPECT_EQ(range(layout(0x10, 64, 96, 1)), (std::pair<std::int64_t, std::int64_t>{0x10, 0x30F}));
    EXPECT_EQ(range(layout(0x10, 0, 5, 24)), (std::pair<std::int64_t, std::int64_t>{-1, -1}));
    // 8*8 mono: the 8 BMP bytes are rows whose mirrors lie outside the data.
    EXPECT_EQ(range(layout(0x10, 8, 8, 1)), (std::pair<std::int64_t, std::int64_t>{-1, -1}));
}

TEST(PictureEncode, PictureOfAnotherSizeIsRefusedNamingBoth)
{
    const auto [reason, values] = refusal(filled(3, 2, 0, 0, 0), layout(0, 2, 3, 24), Bytes(64, 0));
    EXPECT_EQ(reason, ImportRefusal::PictureSize);
    EXPECT_EQ(values, (std::vector<std::string>{"3*2", "2*3"}));
    try {
        encodePictureFrame(filled(3, 2, 0, 0, 0), layout(0, 2, 3, 24), Bytes(64, 0), kNoColours);
    } catch (const PictureImportError& error) {
        EXPECT_STREQ(error.what(), "the picture is 3*2 pixels, the row's frames are 2*3");
    }
}

TEST(PictureEncode, DepthsTheDecoderCannotShowAreRefused)
{
    for (int depth : {0, 2, 32}) {
        const auto [reason, values] = refusal(filled(1, 1, 0, 0, 0), layout(0, 1, 1, depth), Bytes(8, 0));
        EXPECT_EQ(reason, ImportRefusal::Depth);
        EXPECT_EQ(values, (std::vector<std::string>{std::to_string(depth)}));
    }
}

TEST(PictureEncode, FrameRunningPastTheImageIsRefused)
{
    const Bytes image(10, 0);
    auto [reason, values] = refusal(filled(1, 1, 0, 0, 0), layout(8, 1, 1, 24), image);
    EXPECT_EQ(reason, ImportRefusal::PastEnd);
    EXPECT_EQ(values, (std::vector<std::string>{"0x00000008", "0x0000000A", "10"}));
    std::tie(reason, values) = refusal(filled(1, 1, 0, 0, 0), layout(-1, 1, 1, 8), image);
    EXPECT_EQ(reason, ImportRefusal::PastEnd);
    EXPECT_EQ(values, (std::vector<std::string>{"0xFFFFFFFF", "0xFFFFFFFF", "10"}));
}

TEST(PictureEncode, EmptyNegativeAndHugeFramesAreRefused)
{
    EXPECT_EQ(refusal(grid(0, 0, {}), layout(0, 0, 0, 24), Bytes(8, 0)).first, ImportRefusal::NoBytes);
    EXPECT_EQ(refusal(grid(0, 0, {}), layout(0, -1, 2, 24), Bytes(8, 0)).first, ImportRefusal::NegativeSize);
    EXPECT_EQ(refusal(grid(0, 0, {}), layout(0, 4096, 4096, 24), Bytes(8, 0)).first, ImportRefusal::TooLarge);
    EXPECT_EQ(refusal(grid(2, 2, Bytes(3)), layout(0, 2, 2, 24), Bytes(16, 0)).first, ImportRefusal::PixelData);
}

TEST(RowImport, FramesSharingBytesComposeInTheOrderImported)
{
    // Depth 12, one pixel a frame, frames one byte apart: frame k shows byte k and the
    // high nibble of byte k + 1.
    const Bytes image{0xAA, 0xBB, 0xCC};
    FrameGeometry geometry;
    geometry.start = 0, geometry.frameSize = 1, geometry.frames = 2, geometry.width = 1, geometry.height = 1;
    geometry.depth = 12;
    RowImport import(image, geometry, kNoColours);
    import.importFrame(1, filled(1, 1, 0x40, 0x50, 0x60));  // 0x456 -> bytes 1, 2: 45 6C
    import.importFrame(0, filled(1, 1, 0x10, 0x20, 0x30));  // 0x123 -> bytes 0, 1: 12, 3 over the 5 left there
    const auto regions = import.regions();
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(regions[0].first, 1);
    EXPECT_EQ(regions[0].bytes, (Bytes{0x35, 0x6C}));
    EXPECT_EQ(regions[1].first, 0);
    EXPECT_EQ(regions[1].bytes, (Bytes{0x12, 0x35}));
    EXPECT_EQ(image, (Bytes{0xAA, 0xBB, 0xCC}));
}

TEST(RowImport, RefusedFrameLeavesTheImportAsItWas)
{
    const Bytes image(16, 0);
    FrameGeometry geometry;
    geometry.frameSize = 3, geometry.frames = 8, geometry.width = 1, geometry.height = 1, geometry.depth = 24;
    RowImport import(image, geometry, kNoColours);
    import.importFrame(0, filled(1, 1, 1, 2, 3));
    EXPECT_THROW(import.importFrame(5, filled(1, 1, 1, 2, 3)), PictureImportError);  // bytes 15-17
    ASSERT_EQ(import.regions().size(), 1u);
    EXPECT_EQ(import.regions()[0].bytes, (Bytes{3, 2, 1}));
}

TEST(RowImport, OnlyTheRowsFramesTakeAPicture)
{
    const Bytes image(16, 0);
    FrameGeometry geometry;
    geometry.frameSize = 3, geometry.frames = 2, geometry.width = 1, geometry.height = 1, geometry.depth = 24;
    RowImport import(image, geometry, kNoColours);
    for (std::int64_t frame : {2, -1}) {
        try {
            import.importFrame(frame, filled(1, 1, 1, 2, 3));
            ADD_FAILURE() << "frame index " << frame << " was imported";
        } catch (const PictureImportError& error) {
            EXPECT_EQ(error.reason(), ImportRefusal::NoSuchFrame);
            EXPECT_EQ(error.values(), (std::vector<std::string>{std::to_string(frame + 1), "2"}));
        }
    }
    EXPECT_TRUE(import.regions().empty());
}

TEST(RowImport, PixelsNoBitCanHoldAreCountedOverTheFrames)
{
    // Two 3*1 frames at depth 4, two bytes apart: the third pixel of each has no nibble.
    const Bytes image(8, 0);
    FrameGeometry geometry;
    geometry.frameSize = 2, geometry.frames = 2, geometry.width = 3, geometry.height = 1, geometry.depth = 4;
    RowImport import(image, geometry, kNoColours);
    PictureGrid picture = filled(3, 1, 0, 0, 0);
    picture.indices = {1, 2, 3};
    EXPECT_EQ(import.importFrame(0, picture), 1);
    EXPECT_EQ(import.importFrame(1, picture), 1);
    EXPECT_EQ(import.unstoredPixels(), 2);
}

TEST(RowImport, ExportFolderPictureIsTheBmpElseThePng)
{
    zevran::test::TempFolder folder;
    const std::string dir = folder.root().string() + "/";
    zevran::test::writeFile(dir + "logo-01.bmp", std::string("b"));
    zevran::test::writeFile(dir + "logo-01.png", std::string("p"));
    zevran::test::writeFile(dir + "logo-02.png", std::string("p"));
    EXPECT_EQ(exportedFramePicture(dir, " logo ", 0), dir + "logo-01.bmp");
    EXPECT_EQ(exportedFramePicture(dir, "logo", 1), dir + "logo-02.png");
    EXPECT_EQ(exportedFramePicture(dir, "logo", 2), std::nullopt);
}

TEST(PictureEncode, ShownBytesMatchTheDecodersIndicesForSmallGeometries)
{
    // The decoder copies byte i of row r from round-half-even(bytes a pixel * r * width
    // + i + address), for i up to round(bytes a pixel * width - 1) and below the stride;
    // at depth 4 only bytes holding a pixel of the row are shown.
    for (int depth : {4, 16, 24}) {
        const double bytesPerPixel = depth / 8.0;
        for (std::int32_t width = 1; width <= 9; ++width)
            for (std::int32_t height = 1; height <= 4; ++height)
                for (std::int64_t address = 0; address <= 3; ++address) {
                    const std::int64_t stride = (std::int64_t{width} * depth + 31) / 32 * 4;
                    const std::int64_t count =
                        std::min<std::int64_t>(std::llround(std::nearbyint(bytesPerPixel * width - 1)) + 1, stride);
                    std::int64_t first = INT64_MAX, last = INT64_MIN;
                    for (std::int64_t r = 0; r < height; ++r)
                        for (std::int64_t i = 0; i < count; ++i) {
                            if (depth == 4 && 2 * i >= width) continue;
                            const auto index = static_cast<std::int64_t>(
                                std::nearbyint(bytesPerPixel * static_cast<double>(r) * width + static_cast<double>(i) +
                                               static_cast<double>(address)));
                            first = std::min(first, index), last = std::max(last, index);
                        }
                    const auto shown = shownImageBytes(layout(address, width, height, depth));
                    ASSERT_TRUE(shown);
                    EXPECT_EQ(shown->first, first) << depth << " " << width << "*" << height << " at " << address;
                    EXPECT_EQ(shown->last, last) << depth << " " << width << "*" << height << " at " << address;
                }
    }
}
