// Pictures read through Qt's image readers, and the round trip: the BMP that the
// preview writes for a frame, imported again, changes no byte of the image.
#include "pictures/picture_encode.hpp"
#include "pictures/picture_file.hpp"
#include "pictures/picture_player.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <QImage>

#include <filesystem>

using namespace zevran::pictures;
using zevran::test::TempFolder;
using Bytes = std::vector<std::uint8_t>;

namespace {

// Bytes that look like pixel data: a fixed-seed generator, so every run sees the same.
Bytes noise(std::size_t size, std::uint32_t seed)
{
    Bytes bytes(size);
    for (auto& byte : bytes) {
        seed = seed * 1103515245u + 12345u;
        byte = static_cast<std::uint8_t>(seed >> 16);
    }
    return bytes;
}

ColourTable shippedColours() { return readColourTable(ZEVRAN_DATA_DIR "/16.dat"); }

// Writes the frame's preview BMP, reads it back and imports it: the region must hold
// the image's own bytes.
::testing::AssertionResult roundTrips(const Bytes& image, const FrameLayout& frame, const ColourTable& colours,
                                      bool throughPng = false)
{
    TempFolder folder;
    const std::string bmp = folder.path("frame.bmp");
    FrameGeometry geometry;
    geometry.width = frame.width, geometry.height = frame.height, geometry.depth = frame.depth;
    const std::string table = folder.path("16.dat");
    zevran::test::writeFile(table, Bytes(colours.begin(), colours.end()));
    if (!decodePreviewFrame(image, geometry, frame.address, bmp, table))
        return ::testing::AssertionFailure() << "the preview wrote no BMP";
    std::string file = bmp;
    if (throughPng) {
        // A picture that lost its colour table: 24-bit colours only.
        file = folder.path("frame.png");
        QImage(QString::fromStdString(bmp)).convertToFormat(QImage::Format_RGB888).save(QString::fromStdString(file));
    }
    const PictureGrid picture = readPictureFile(file, colours);
    const auto region = encodePictureFrame(picture, frame, image, colours);
    const Bytes before(image.begin() + region.first, image.begin() + region.last + 1);
    if (region.bytes != before) {
        std::size_t at = 0;
        while (region.bytes[at] == before[at]) ++at;
        return ::testing::AssertionFailure() << "byte 0x" << std::hex << region.first + static_cast<std::int64_t>(at)
                                             << " changed from " << int{before[at]} << " to " << int{region.bytes[at]};
    }
    return ::testing::AssertionSuccess();
}

struct Size {
    std::int32_t width;
    std::int32_t height;
};
const Size kEvenSizes[] = {{6, 4}, {128, 160}, {2, 2}};
const Size kOddSizes[] = {{5, 3}, {7, 5}, {1, 1}, {3, 7}, {9, 2}, {127, 159}};

void checkDepth(int depth, const ColourTable& colours, bool throughPng = false)
{
    const Bytes image = noise(0x20000, static_cast<std::uint32_t>(depth));
    for (std::int64_t address : {0x100, 0x101}) {
        for (const Size& size : kEvenSizes)
            EXPECT_TRUE(roundTrips(image, {address, size.width, size.height, depth}, colours, throughPng))
                << "depth " << depth << ", " << size.width << "*" << size.height << " at " << address;
        for (const Size& size : kOddSizes)
            EXPECT_TRUE(roundTrips(image, {address, size.width, size.height, depth}, colours, throughPng))
                << "depth " << depth << ", " << size.width << "*" << size.height << " at " << address;
    }
}

// A BMP file: the 14-byte file header, the 40-byte info header, the colour table (or
// the three masks of bit fields) and the pixel rows as given.
Bytes bmpFile(std::int32_t width, std::int32_t height, int bits, std::uint32_t compression, const Bytes& table,
              const Bytes& pixels)
{
    Bytes file;
    auto put = [&](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    const auto offset = static_cast<std::uint32_t>(14 + 40 + table.size());
    file.push_back('B'), file.push_back('M');
    put(offset + static_cast<std::uint32_t>(pixels.size()), 4), put(0, 4), put(offset, 4);
    put(40, 4), put(static_cast<std::uint32_t>(width), 4), put(static_cast<std::uint32_t>(height), 4), put(1, 2);
    put(static_cast<std::uint32_t>(bits), 2), put(compression, 4), put(static_cast<std::uint32_t>(pixels.size()), 4);
    put(2835, 4), put(2835, 4);
    put(bits <= 8 ? static_cast<std::uint32_t>(table.size() / 4) : 0, 4), put(0, 4);  // colours used, important
    file.insert(file.end(), table.begin(), table.end());
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

PictureGrid readBytesAsPicture(const Bytes& file, const ColourTable& colours = ColourTable{})
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("picture.bmp"), file);
    return readPictureFile(folder.path("picture.bmp"), colours);
}

}  // namespace

TEST(PictureRoundTrip, Depth24)
{
    checkDepth(24, ColourTable{});
}

TEST(PictureRoundTrip, Depth16)
{
    checkDepth(16, ColourTable{});
}

TEST(PictureRoundTrip, Depth12)
{
    checkDepth(12, ColourTable{});
}

TEST(PictureRoundTrip, Depth8)
{
    checkDepth(8, ColourTable{});
}

TEST(PictureRoundTrip, Depth4WithTheShippedTable)
{
    checkDepth(4, shippedColours());
}

TEST(PictureRoundTrip, Depth4WithATableOfOneColourGoesByIndex)
{
    checkDepth(4, ColourTable{});
}

TEST(PictureRoundTrip, Depth4PngWithoutColourTableGoesByNearestColour)
{
    checkDepth(4, shippedColours(), true);
}

TEST(PictureRoundTrip, Depth1AtEverySizeWhoseFrameShowsBytes)
{
    const Bytes image = noise(0x1000, 1);
    const Size sizes[] = {{64, 96}, {96, 64}, {128, 48}, {32, 8}, {33, 64}, {63, 97}, {100, 70}, {40, 40}};
    for (std::int64_t address : {0x100, 0x101})
        for (const Size& size : sizes)
            EXPECT_TRUE(roundTrips(image, {address, size.width, size.height, 1}, ColourTable{}))
                << size.width << "*" << size.height << " at " << address;
}

TEST(PictureFile, TopDown24BitBmp)
{
    // Height -2: the first row stored is the top one. Rows of 2 pixels, 6 bytes + 2 padding.
    const Bytes pixels = {0x03, 0x02, 0x01, 0x06, 0x05, 0x04, 0, 0, 0x0C, 0x0B, 0x0A, 0x0F, 0x0E, 0x0D, 0, 0};
    const PictureGrid picture = readBytesAsPicture(bmpFile(2, -2, 24, 0, {}, pixels));
    EXPECT_EQ(picture.width, 2);
    EXPECT_EQ(picture.height, 2);
    EXPECT_EQ(picture.rgb, (Bytes{1, 2, 3, 4, 5, 6, 10, 11, 12, 13, 14, 15}));
    EXPECT_TRUE(picture.indices.empty());
}

TEST(PictureFile, ThirtyTwoBitBmpWithBitFields)
{
    // Masks red 0x00FF0000, green 0x0000FF00, blue 0x000000FF; the fourth byte ignored.
    const Bytes masks = {0x00, 0x00, 0xFF, 0x00, 0x00, 0xFF, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00};
    const Bytes pixels = {0x30, 0x20, 0x10, 0x77};
    const PictureGrid picture = readBytesAsPicture(bmpFile(1, 1, 32, 3, masks, pixels));
    EXPECT_EQ(picture.rgb, (Bytes{0x10, 0x20, 0x30}));
}

TEST(PictureFile, EightBitPaletteBmp)
{
    const Bytes table = {0x00, 0x00, 0x00, 0, 0x33, 0x22, 0x11, 0};  // black, then R 11 G 22 B 33
    const Bytes pixels = {1, 0, 0, 0};
    const PictureGrid picture = readBytesAsPicture(bmpFile(2, 1, 8, 0, table, pixels));
    EXPECT_EQ(picture.rgb, (Bytes{0x11, 0x22, 0x33, 0, 0, 0}));
    EXPECT_TRUE(picture.indices.empty());
}

TEST(PictureFile, SixteenBitBmpWidensByShifting)
{
    // 0xFFFF in 5-6-5 reads as F8 FC F8: the channels' high bits, zeros below.
    const Bytes masks = {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0};
    const PictureGrid picture = readBytesAsPicture(bmpFile(1, 1, 16, 3, masks, {0xFF, 0xFF, 0, 0}));
    EXPECT_EQ(picture.rgb, (Bytes{0xF8, 0xFC, 0xF8}));
}

TEST(PictureFile, FourBitBmpWithTheColourTableGivesIndices)
{
    const ColourTable colours = shippedColours();
    const Bytes table(colours.begin(), colours.end());
    const PictureGrid picture = readBytesAsPicture(bmpFile(3, 1, 4, 0, table, {0x9C, 0x30, 0, 0}), colours);
    EXPECT_EQ(picture.indices, (Bytes{9, 12, 3}));
    // Entry 9 is blue 255, 12 red 255, 3 (B 80, G 80, R 0) teal.
    EXPECT_EQ(picture.rgb, (Bytes{0, 0, 0xFF, 0xFF, 0, 0, 0, 0x80, 0x80}));
}

TEST(PictureFile, FourBitBmpWithAnotherTableGivesColoursOnly)
{
    const ColourTable colours = shippedColours();
    Bytes table(colours.begin(), colours.end());
    table[0] = 1;  // entry 0 differs
    const PictureGrid picture = readBytesAsPicture(bmpFile(1, 1, 4, 0, table, {0x00, 0, 0, 0}), colours);
    EXPECT_TRUE(picture.indices.empty());
    EXPECT_EQ(picture.rgb, (Bytes{0, 0, 1}));
}

TEST(PictureFile, OneBitBmp)
{
    const Bytes table = {0, 0, 0, 0, 255, 255, 255, 0};
    const PictureGrid picture = readBytesAsPicture(bmpFile(3, 1, 1, 0, table, {0xA0, 0, 0, 0}));
    EXPECT_EQ(picture.rgb, (Bytes{255, 255, 255, 0, 0, 0, 255, 255, 255}));
}

TEST(PictureFile, PngAlphaIsIgnored)
{
    TempFolder folder;
    QImage made(2, 1, QImage::Format_ARGB32);
    made.setPixel(0, 0, qRgba(10, 20, 30, 0));
    made.setPixel(1, 0, qRgba(40, 50, 60, 128));
    ASSERT_TRUE(made.save(QString::fromStdString(folder.path("a.png"))));
    EXPECT_EQ(readPictureFile(folder.path("a.png"), ColourTable{}).rgb, (Bytes{10, 20, 30, 40, 50, 60}));
}

TEST(PictureFile, PngUnderABmpNameIsReadByItsContent)
{
    TempFolder folder;
    QImage made(1, 1, QImage::Format_RGB32);
    made.setPixel(0, 0, qRgb(7, 8, 9));
    ASSERT_TRUE(made.save(QString::fromStdString(folder.path("a.bmp")), "PNG"));
    ASSERT_TRUE(made.save(QString::fromStdString(folder.path("noname")), "PNG"));
    EXPECT_EQ(readPictureFile(folder.path("a.bmp"), ColourTable{}).rgb, (Bytes{7, 8, 9}));
    EXPECT_EQ(readPictureFile(folder.path("noname"), ColourTable{}).rgb, (Bytes{7, 8, 9}));
}

TEST(PictureFile, MissingFolderAndTextAreRefusedNamingThePath)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("notes.bmp"), std::string("not a picture"));
    for (const std::string& path : {folder.path("none.png"), folder.root().string(), folder.path("notes.bmp")}) {
        try {
            readPictureFile(path, ColourTable{});
            ADD_FAILURE() << path << " was read";
        } catch (const PictureFileError& error) {
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
        }
    }
}
