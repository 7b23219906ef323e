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

TEST(PictureRoundTrip, Depth24) { checkDepth(24, ColourTable{}); }

TEST(PictureRoundTrip, Depth16) { checkDepth(16, ColourTable{}); }

TEST(PictureRoundTrip, Depth12) { checkDepth(12, ColourTable{}); }

TEST(PictureRoundTrip, Depth8) { checkDepth(8, ColourTable{}); }

TEST(PictureRoundTrip, Depth4WithTheShippedTable) { checkDepth(4, shippedColours()); }

TEST(PictureRoundTrip, Depth4WithATableOfOneColourGoesByIndex) { checkDepth(4, ColourTable{}); }

TEST(PictureRoundTrip, Depth4PngWithoutColourTableGoesByNearestColour) { checkDepth(4, shippedColours(), true); }

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

namespace {

std::uint32_t crc32Of(const Bytes& bytes, std::size_t from)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = from; i < bytes.size(); ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? (crc >> 1) ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

void putBigEndian(Bytes& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void appendPngChunk(Bytes& png, const char* type, const Bytes& data)
{
    putBigEndian(png, static_cast<std::uint32_t>(data.size()));
    const std::size_t typeAt = png.size();
    png.insert(png.end(), type, type + 4);
    png.insert(png.end(), data.begin(), data.end());
    putBigEndian(png, crc32Of(png, typeAt));
}

// A PNG file written byte by byte: IHDR of the given colour type and bit depth, the
// chunks `extra` (PLTE, tRNS) and one IDAT of `rows` (each with its filter byte 0)
// in a stored (uncompressed) deflate block.
Bytes pngFile(std::uint32_t width, std::uint32_t height, std::uint8_t bitDepth, std::uint8_t colourType,
              const std::vector<std::pair<const char*, Bytes>>& extra, const Bytes& rows)
{
    Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes header;
    putBigEndian(header, width), putBigEndian(header, height);
    header.insert(header.end(), {bitDepth, colourType, 0, 0, 0});
    appendPngChunk(png, "IHDR", header);
    for (const auto& [type, data] : extra) appendPngChunk(png, type, data);
    Bytes deflated{0x78, 0x01, 0x01};
    const auto length = static_cast<std::uint16_t>(rows.size());
    deflated.insert(deflated.end(), {static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8),
                                     static_cast<std::uint8_t>(~length), static_cast<std::uint8_t>(~length >> 8)});
    deflated.insert(deflated.end(), rows.begin(), rows.end());
    std::uint32_t a = 1, b = 0;  // Adler-32 of the rows
    for (std::uint8_t byte : rows) a = (a + byte) % 65521, b = (b + a) % 65521;
    putBigEndian(deflated, b << 16 | a);
    appendPngChunk(png, "IDAT", deflated);
    appendPngChunk(png, "IEND", {});
    return png;
}

PictureGrid readPng(const Bytes& file)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("picture.png"), file);
    return readPictureFile(folder.path("picture.png"), ColourTable{});
}

}  // namespace

// A fully transparent pixel keeps the colour stored for it, whatever the PNG's kind:
// the import reads colours without premultiplying alpha, then drops alpha.
TEST(PictureFile, TransparentPixelsOfEightBitRgbaKeepTheirColour)
{
    // Two pixels: (200, 100, 50) at alpha 0 and (10, 20, 30) at alpha 255.
    EXPECT_EQ(readPng(pngFile(2, 1, 8, 6, {}, {0, 200, 100, 50, 0, 10, 20, 30, 255})).rgb,
              (Bytes{200, 100, 50, 10, 20, 30}));
}

TEST(PictureFile, TransparentPixelsOfSixteenBitRgbaKeepTheirColour)
{
    // 16-bit samples C8C8 6464 3232 are 8-bit C8 64 32 exactly; alpha 0000.
    EXPECT_EQ(readPng(pngFile(1, 1, 16, 6, {}, {0, 0xC8, 0xC8, 0x64, 0x64, 0x32, 0x32, 0x00, 0x00})).rgb,
              (Bytes{0xC8, 0x64, 0x32}));
}

TEST(PictureFile, TransparentPixelsOfGreyWithAlphaKeepTheirGrey)
{
    EXPECT_EQ(readPng(pngFile(2, 1, 8, 4, {}, {0, 0x80, 0x00, 0x40, 0xFF})).rgb,
              (Bytes{0x80, 0x80, 0x80, 0x40, 0x40, 0x40}));
}

TEST(PictureFile, TransparentEntriesOfAPaletteKeepTheirColour)
{
    // Palette entry 0 (90, 80, 70) is fully transparent through tRNS, entry 1 opaque.
    const PictureGrid picture =
        readPng(pngFile(2, 1, 8, 3, {{"PLTE", {90, 80, 70, 1, 2, 3}}, {"tRNS", {0x00, 0xFF}}}, {0, 0, 1}));
    EXPECT_EQ(picture.rgb, (Bytes{90, 80, 70, 1, 2, 3}));
}

TEST(PictureFile, TransparentColourKeyOfRgbKeepsItsColour)
{
    // tRNS names (9, 8, 7) as the transparent colour of an RGB picture.
    const PictureGrid picture = readPng(pngFile(2, 1, 8, 2, {{"tRNS", {0, 9, 0, 8, 0, 7}}}, {0, 9, 8, 7, 4, 5, 6}));
    EXPECT_EQ(picture.rgb, (Bytes{9, 8, 7, 4, 5, 6}));
}

TEST(PictureFile, TransparentPixelsOfABmpWithAnAlphaMaskKeepTheirColour)
{
    // A version 4 header (108 bytes) with bit fields for red, green, blue and alpha:
    // two pixels, B G R A = 1E 14 0A 00 (transparent) and 03 02 01 FF.
    Bytes file;
    auto put = [&](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    const Bytes pixels{0x1E, 0x14, 0x0A, 0x00, 0x03, 0x02, 0x01, 0xFF};
    file.push_back('B'), file.push_back('M');
    put(14 + 108 + 8, 4), put(0, 4), put(14 + 108, 4);
    put(108, 4), put(2, 4), put(1, 4), put(1, 2), put(32, 2), put(3, 4), put(8, 4), put(2835, 4), put(2835, 4);
    put(0, 4), put(0, 4);
    put(0x00FF0000, 4), put(0x0000FF00, 4), put(0x000000FF, 4), put(0xFF000000, 4);
    put(0x73524742, 4);                      // "sRGB"
    for (int i = 0; i < 12; ++i) put(0, 4);  // end points and gammas
    file.insert(file.end(), pixels.begin(), pixels.end());
    EXPECT_EQ(readBytesAsPicture(file).rgb, (Bytes{0x0A, 0x14, 0x1E, 0x01, 0x02, 0x03}));
}
