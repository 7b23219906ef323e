#include "pictures/picture_finder.hpp"
#include "support/noise_bytes.hpp"

#include "demo_firmware.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_table.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <vector>

using namespace zevran::pictures;
using Bytes = std::vector<std::uint8_t>;

namespace {

using zevran::test::noise;

unsigned level(double value, unsigned top)
{
    return static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 1.0) * top));
}

// A smooth picture whose colours turn every way: waves across, down and round two
// centres, stored in the handset's layout of `depth` (8: blue 7-5, green 4-2, red
// 1-0; 12: 4-4-4 pairs in three bytes; 16: 5-6-5 low byte first; 24: blue, green, red).
Bytes smoothPicture(int width, int height, int depth)
{
    Bytes out;
    unsigned pending = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double r = 0.5 + 0.5 * std::sin(std::hypot(x - width * 0.3, y - 20.0) / 9);
            const double g = 0.5 + 0.5 * std::cos(std::hypot(x - width * 0.8, y - 70.0) / 13);
            const double b = 0.5 + 0.5 * std::sin(x / 15.0) * std::cos(y / 11.0);
            switch (depth) {
            case 24:
                out.insert(out.end(),
                           {std::uint8_t(level(b, 255)), std::uint8_t(level(g, 255)), std::uint8_t(level(r, 255))});
                break;
            case 16: {
                const unsigned v = level(r, 31) << 11 | level(g, 63) << 5 | level(b, 31);
                out.insert(out.end(), {std::uint8_t(v), std::uint8_t(v >> 8)});
                break;
            }
            case 12: {
                const unsigned v = level(r, 15) << 8 | level(g, 15) << 4 | level(b, 15);
                if ((y * width + x) % 2 == 0) {
                    pending = v;
                } else {
                    const unsigned pair = pending << 12 | v;
                    out.insert(out.end(), {std::uint8_t(pair >> 16), std::uint8_t(pair >> 8), std::uint8_t(pair)});
                }
                break;
            }
            case 8: out.push_back(std::uint8_t(level(b, 7) << 5 | level(g, 7) << 2 | level(r, 3))); break;
            }
        }
    return out;
}

ColourTable shippedColours()
{
    ColourTable table{};
    std::ifstream in(ZEVRAN_DATA_DIR "/16.dat", std::ios::binary);
    in.read(reinterpret_cast<char*>(table.data()), static_cast<std::streamsize>(table.size()));
    return table;
}

std::vector<std::int32_t> widthsOf(const std::vector<WidthScore>& scores)
{
    std::vector<std::int32_t> widths;
    widths.reserve(scores.size());
    for (const auto& score : scores) widths.push_back(score.width);
    return widths;
}

}  // namespace

TEST(WidthGuess, TrueWidthComesFirstForSmoothPicturesAmongRandomBytes)
{
    for (int depth : {8, 12, 16, 24})
        for (int width : {96, 120, 128, 176, 240}) {
            SCOPED_TRACE("depth " + std::to_string(depth) + ", width " + std::to_string(width));
            Bytes image = noise(5000, 1);
            const auto address = static_cast<std::int64_t>(image.size());
            const Bytes picture = smoothPicture(width, 100, depth);
            image.insert(image.end(), picture.begin(), picture.end());
            const Bytes after = noise(7000, 2);
            image.insert(image.end(), after.begin(), after.end());
            const auto scores = guessWidths(image, address, depth, kLeastGuessWidth, kMostGuessWidth, {});
            ASSERT_EQ(scores.size(), 313u);
            EXPECT_EQ(scores.front().width, width);
            EXPECT_LT(scores[0].score, scores[1].score);
        }
}

TEST(WidthGuess, TrueWidthComesFirstForEveryPictureOfTheDemoFirmware)
{
    const auto demo = zevran::cli::makeDemoFirmware();
    const auto rows = readPictureTable(demo.pictureTable, false);
    const ColourTable colours = shippedColours();
    int guessed = 0;
    for (const PictureEntry& row : rows) {
        const FrameGeometry geometry = frameGeometry(row);
        if (geometry.depth == 1) continue;  // the display memory has no width
        SCOPED_TRACE(row.name);
        const auto scores = guessWidths(demo.image, geometry.start, geometry.depth, 8, 320, colours);
        EXPECT_EQ(scores.front().width, geometry.width);
        ++guessed;
    }
    EXPECT_EQ(guessed, 6);
}

TEST(WidthGuess, RanksEveryWidthBestFirstWithTiesBySmallerWidth)
{
    // All bytes alike: every width scores 0, so the order is the widths' own.
    const auto scores = guessWidths(Bytes(4000, 0x42), 0, 8, 10, 14, {});
    EXPECT_EQ(widthsOf(scores), (std::vector<std::int32_t>{10, 11, 12, 13, 14}));
    for (const auto& score : scores) EXPECT_EQ(score.score, 0.0);
}

TEST(WidthGuess, ScoreIsTheMeanColourDistanceOfPixelsOneWidthApart)
{
    // Depth 8 bytes 00 and E0 (black and blue 255) alternating: width 2 compares alike
    // pixels (0), width 3 unlike ones (255 each).
    Bytes image;
    for (int i = 0; i < 200; ++i) image.push_back(i % 2 ? 0xE0 : 0x00);
    const auto scores = guessWidths(image, 0, 8, 2, 3, {});
    ASSERT_EQ(scores.size(), 2u);
    EXPECT_EQ(scores[0].width, 2);
    EXPECT_EQ(scores[0].score, 0.0);
    EXPECT_EQ(scores[1].width, 3);
    EXPECT_EQ(scores[1].score, 255.0);
}

TEST(WidthGuess, PixelsPastTheImageAreLeftOut)
{
    // Ten pixels at depth 8 from address 0: width 9 has one pair, width 10 none.
    const auto scores = guessWidths(Bytes(10, 0x10), 0, 8, 9, 10, {});
    EXPECT_EQ(widthsOf(scores), (std::vector<std::int32_t>{9}));
    EXPECT_THROW(guessWidths(Bytes(10, 0x10), 5, 8, 9, 10, {}), std::runtime_error);
}

TEST(WidthGuess, DepthOneRefusedDepthAndBadLimitsAreRefused)
{
    const Bytes image(1000, 0);
    EXPECT_THROW(guessWidths(image, 0, 1, 8, 320, {}), WidthGuessError);
    EXPECT_THROW(guessWidths(image, 0, 2, 8, 320, {}), WidthGuessError);
    EXPECT_THROW(guessWidths(image, 0, 16, 0, 320, {}), WidthGuessError);
    EXPECT_THROW(guessWidths(image, 0, 16, 30, 20, {}), WidthGuessError);
    EXPECT_THROW(guessWidths(image, 0, 16, 8, kWidestGuess + 1, {}), WidthGuessError);
}

TEST(FinderMoves, StepsOfEachDepth)
{
    const ViewGeometry view16{0x1000, 16, 128, 200};
    EXPECT_EQ(moveBytes(FinderMove::Byte, view16, 160), 1);
    EXPECT_EQ(moveBytes(FinderMove::Pixel, view16, 160), 2);
    EXPECT_EQ(moveBytes(FinderMove::Row, view16, 160), 256);
    EXPECT_EQ(moveBytes(FinderMove::Frame, view16, 160), 40960);
    EXPECT_EQ(moveBytes(FinderMove::Page, view16, 160), 51200);
    const ViewGeometry view12{0, 12, 80, 10};
    EXPECT_EQ(moveBytes(FinderMove::Pixel, view12, 80), 3);
    EXPECT_EQ(moveBytes(FinderMove::Row, view12, 80), 120);
    EXPECT_EQ(moveBytes(FinderMove::Frame, view12, 80), 9600);
    const ViewGeometry view4{0, 4, 5, 10};
    EXPECT_EQ(moveBytes(FinderMove::Pixel, view4, 3), 1);
    EXPECT_EQ(moveBytes(FinderMove::Row, view4, 3), 2);    // 2.5 to even
    EXPECT_EQ(moveBytes(FinderMove::Frame, view4, 3), 8);  // 7.5 to even
    const ViewGeometry view24{0, 24, 3, 4};
    EXPECT_EQ(moveBytes(FinderMove::Pixel, view24, 2), 3);
    EXPECT_EQ(moveBytes(FinderMove::Page, view24, 2), 36);
}

TEST(FinderMoves, MonoDisplayMemoryMovesAColumnARowAndAScreenAFrame)
{
    const ViewGeometry mono{0, 1, 64, 96};
    EXPECT_EQ(moveBytes(FinderMove::Pixel, mono, 96), 1);
    EXPECT_EQ(moveBytes(FinderMove::Row, mono, 96), 1);
    EXPECT_EQ(moveBytes(FinderMove::Frame, mono, 96), 768);
    EXPECT_EQ(moveBytes(FinderMove::Page, mono, 96), 768);
}

TEST(FinderMoves, NoMoveIsBelowOneByte)
{
    const ViewGeometry tiny{0, 4, 1, 0};
    EXPECT_EQ(moveBytes(FinderMove::Row, tiny, 0), 1);
    EXPECT_EQ(moveBytes(FinderMove::Frame, tiny, 0), 1);
    EXPECT_EQ(moveBytes(FinderMove::Page, tiny, 0), 1);
}

TEST(PixelAddress, BytesHoldingAPixelAtEachDepth)
{
    EXPECT_EQ(pixelAddress({0x100, 16, 10, 5}, 3, 2), 0x100 + (2 * 10 + 3) * 2);
    EXPECT_EQ(pixelAddress({0x100, 24, 10, 5}, 3, 2), 0x100 + (2 * 10 + 3) * 3);
    EXPECT_EQ(pixelAddress({0x100, 8, 10, 5}, 3, 2), 0x100 + 23);
    EXPECT_EQ(pixelAddress({0x100, 12, 10, 5}, 3, 2), 0x100 + 11 * 3);  // pixel 23 is in pair 11
    EXPECT_EQ(pixelAddress({0x100, 4, 10, 5}, 3, 2), 0x100 + 11);
    EXPECT_EQ(pixelAddress({0x100, 4, 5, 5}, 0, 1), 0x100 + 2);  // row 1 starts at 2.5, to even
    EXPECT_EQ(pixelAddress({0x101, 4, 5, 5}, 0, 1), 0x101 + 3);  // 259.5 to even is 260
}

TEST(PixelAddress, MonoPixelIsItsColumnByteOfItsPage)
{
    EXPECT_EQ(pixelAddress({0x200, 1, 64, 96}, 0, 0), 0x200 + 7 * 96);
    EXPECT_EQ(pixelAddress({0x200, 1, 64, 96}, 63, 5), 0x200 + 5);
    EXPECT_EQ(pixelAddress({0x200, 1, 64, 96}, 20, 95), 0x200 + 5 * 96 + 95);
    EXPECT_EQ(pixelAddress({0x200, 1, 8, 2}, 63, 95), 0x200 + 95);  // the mono picture ignores the size
}

TEST(PixelAddress, OutsideTheViewIsMinusOne)
{
    EXPECT_EQ(pixelAddress({0, 16, 10, 5}, 10, 0), -1);
    EXPECT_EQ(pixelAddress({0, 16, 10, 5}, 0, 5), -1);
    EXPECT_EQ(pixelAddress({0, 16, 10, 5}, -1, 0), -1);
    EXPECT_EQ(pixelAddress({0, 1, 10, 5}, 64, 0), -1);
}

TEST(FoundPicture, RowCarriesAddressFramesSizeDimensionsAndDepth)
{
    const PictureEntry row = foundPictureEntry({0x0D1200, 8, 64, 64, 16}, "004", "ball");
    EXPECT_EQ(row.number, "004");
    EXPECT_EQ(row.name, "ball");
    EXPECT_EQ(row.address, "0X000D1200");
    EXPECT_EQ(row.frames, "8");
    EXPECT_EQ(row.frameSize, "8192");
    EXPECT_EQ(row.dimensions, "64*64");
    EXPECT_EQ(row.depth, "16");
}

TEST(FoundPicture, FrameSizeRoundsHalfToEvenAsARecomputedTable)
{
    EXPECT_EQ(foundFrameSize(5, 3, 4), 8);  // 7.5
    EXPECT_EQ(foundFrameSize(3, 3, 1), 1);  // 1.125
    EXPECT_EQ(foundFrameSize(5, 1, 1), 1);  // 0.625
    EXPECT_EQ(foundFrameSize(3, 1, 4), 2);  // 1.5
    EXPECT_EQ(foundFrameSize(64, 96, 1), 768);
    EXPECT_EQ(foundFrameSize(80, 80, 12), 9600);
}

TEST(FoundPicture, NamesWithoutSpacesOnly)
{
    EXPECT_TRUE(pictureNameAllowed("logo_2"));
    EXPECT_TRUE(pictureNameAllowed("标志"));
    EXPECT_FALSE(pictureNameAllowed(""));
    EXPECT_FALSE(pictureNameAllowed("boot logo"));
    EXPECT_FALSE(pictureNameAllowed("logo\t"));
    EXPECT_FALSE(pictureNameAllowed("a\nb"));
    EXPECT_THROW(foundPictureEntry({0, 1, 8, 8, 16}, "001", "a b"), std::invalid_argument);
    EXPECT_THROW(foundPictureEntry({-1, 1, 8, 8, 16}, "001", "a"), std::invalid_argument);
    EXPECT_THROW(foundPictureEntry({0x100000000, 1, 8, 8, 16}, "001", "a"), std::invalid_argument);
    EXPECT_THROW(foundPictureEntry({0, 0, 8, 8, 16}, "001", "a"), std::invalid_argument);
}

TEST(FoundPicture, NumberFollowsTheLastRow)
{
    EXPECT_EQ(nextPictureNumber({}), "001");
    std::vector<PictureEntry> rows(2);
    rows[0].number = "001";
    rows[1].number = "009";
    EXPECT_EQ(nextPictureNumber(rows), "010");
    rows[1].number = "999";
    EXPECT_EQ(nextPictureNumber(rows), "1000");
    rows[1].number = "x";
    EXPECT_EQ(nextPictureNumber(rows), "003");
}

TEST(FoundPicture, DemoPicturesFoundAndSavedPreviewAsTheirOwnTable)
{
    // From no table: each picture found at its address with the guessed width (the
    // mono screen as 64*96), added as a row, the rows saved and read back; each row
    // then previews to the very BMP its own table row gives.
    const auto demo = zevran::cli::makeDemoFirmware();
    const auto own = readPictureTable(demo.pictureTable, false);
    const ColourTable colours = shippedColours();
    std::vector<PictureEntry> found;
    for (const PictureEntry& row : own) {
        const FrameGeometry geometry = frameGeometry(row);
        const std::int32_t width =
            geometry.depth == 1
                ? 64
                : guessWidths(demo.image, geometry.start, geometry.depth, 8, 320, colours).front().width;
        const std::int32_t height = geometry.depth == 1 ? 96 : geometry.height;
        found.push_back(foundPictureEntry({geometry.start, geometry.frames, width, height, geometry.depth},
                                          nextPictureNumber(found), row.name));
    }
    const auto saved = readPictureTable(pictureTableText(found, {"Frames", "Size", "Pixels", "Bits"}, ""), false);
    ASSERT_EQ(saved.size(), own.size());
    for (std::size_t i = 0; i < own.size(); ++i) {
        SCOPED_TRACE(own[i].name);
        const FrameGeometry want = frameGeometry(own[i]);
        const FrameGeometry got = frameGeometry(saved[i]);
        EXPECT_EQ(got.frameSize, want.frameSize);
        for (std::int64_t k = 0; k < want.frames; ++k) {
            if (want.depth == 1) {
                EXPECT_EQ(monoFrameBmp(demo.image, frameAddress(got, k), got.width, got.height),
                          monoFrameBmp(demo.image, frameAddress(want, k), want.width, want.height));
            } else {
                EXPECT_EQ(
                    pictureFrameBmp(demo.image, frameAddress(got, k), got.width, got.height, got.depth, colours),
                    pictureFrameBmp(demo.image, frameAddress(want, k), want.width, want.height, want.depth, colours));
            }
        }
    }
}
