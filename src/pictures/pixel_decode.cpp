#include "pixel_decode.hpp"

#include "image/file_io.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

namespace zevran::pictures {

namespace {

constexpr std::size_t kHeaderSize = 54;

void putLittle(std::vector<std::uint8_t>& bmp, std::size_t at, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i) bmp[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
}

// A BMP of the given pixel data size with its header and colour table filled in.
std::vector<std::uint8_t> bmpShell(std::int32_t width, std::int32_t height, int bitsPerPixel, std::uint32_t compression,
                                   std::span<const std::uint8_t> colourTable, std::int64_t dataSize)
{
    if (dataSize < 0 || dataSize > kLargestPixelData)
        throw image::TypedError<std::length_error>(image::Reason::PictureTooLarge,
                                                   {std::to_string(width), std::to_string(height)});
    const std::size_t offset = kHeaderSize + colourTable.size();
    std::vector<std::uint8_t> bmp(offset + static_cast<std::size_t>(dataSize), 0);
    bmp[0] = 'B';
    bmp[1] = 'M';
    putLittle(bmp, 2, static_cast<std::uint32_t>(bmp.size()), 4);
    putLittle(bmp, 10, static_cast<std::uint32_t>(offset), 4);
    putLittle(bmp, 14, 40, 4);
    putLittle(bmp, 18, static_cast<std::uint32_t>(width), 4);
    putLittle(bmp, 22, static_cast<std::uint32_t>(height), 4);
    putLittle(bmp, 26, 1, 2);
    putLittle(bmp, 28, static_cast<std::uint32_t>(bitsPerPixel), 2);
    putLittle(bmp, 30, compression, 4);
    putLittle(bmp, 34, static_cast<std::uint32_t>(dataSize), 4);
    putLittle(bmp, 38, 3780, 4);  // 96 dots per inch
    putLittle(bmp, 42, 3780, 4);
    std::copy(colourTable.begin(), colourTable.end(), bmp.begin() + static_cast<std::ptrdiff_t>(kHeaderSize));
    return bmp;
}

// BMP rows are stored bottom-up: the rows were assembled top row first, so the first
// row assembled becomes the last one stored. Rows that do not fit the data are skipped.
void flipRows(std::vector<std::uint8_t>& bmp, std::size_t offset, std::int64_t stride, std::int32_t height)
{
    const auto data = std::span(bmp).subspan(offset);
    const std::vector<std::uint8_t> assembled(data.begin(), data.end());
    std::fill(data.begin(), data.end(), 0);
    const auto size = static_cast<std::int64_t>(data.size());
    if (stride <= 0) return;
    // Only rows that start inside the data and whose mirror row does too are visited:
    // a typed height may reach 2^31 rows for a picture of a few bytes.
    const std::int64_t fitting = (size + stride - 1) / stride;
    const std::int64_t lastRow = std::min<std::int64_t>(height, fitting);
    for (std::int64_t r = std::max<std::int64_t>(0, height - fitting); r < lastRow; ++r) {
        const std::int64_t from = r * stride;
        const std::int64_t to = (height - 1 - r) * stride;
        const std::int64_t count = std::min({stride, size - from, size - to});
        if (count <= 0) continue;
        std::copy_n(assembled.begin() + from, count, data.begin() + to);
    }
}

// The image byte at `index`, or zero outside the image.
std::uint8_t imageByte(std::span<const std::uint8_t> image, std::int64_t index)
{
    return index >= 0 && index < static_cast<std::int64_t>(image.size()) ? image[static_cast<std::size_t>(index)] : 0;
}

std::uint8_t scaled(double value) { return static_cast<std::uint8_t>(std::nearbyint(value)); }

void copyRows(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width, std::int32_t height,
              double bytesPerPixel, std::int64_t stride, std::uint8_t* data)
{
    // The picture import walks the same indices: both use the helpers of the header.
    const std::int64_t count = copiedBytesPerRow(width, bytesPerPixel, stride);
    const auto size = static_cast<std::int64_t>(image.size());
    for (std::int64_t r = 0; r < height; ++r) {
        // Whole bytes a pixel: the rounding changes nothing, and a row inside the
        // image is one plain copy.
        if (bytesPerPixel >= 1) {
            const std::int64_t from = static_cast<std::int64_t>(bytesPerPixel) * r * width + address;
            if (from >= 0 && from + count <= size) {
                std::copy_n(image.begin() + from, count, data + r * stride);
                continue;
            }
        }
        const double rowStart = copiedRowStart(bytesPerPixel, r, width);
        for (std::int64_t i = 0; i < count; ++i)
            data[r * stride + i] = imageByte(image, copiedByteIndex(rowStart, i, address));
    }
}

void convertDepth8(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width, std::int32_t height,
                   std::int64_t stride, std::uint8_t* data)
{
    // Bits 7-5 land in the BMP's blue byte and bits 1-0 in its red byte.
    static const auto kConverted = [] {
        std::array<std::array<std::uint8_t, 3>, 256> table{};
        for (unsigned b = 0; b < 256; ++b)
            table[b] = {scaled((b >> 5) * 255.0 / 7), scaled(((b >> 2) & 7) * 255.0 / 7), scaled((b & 3) * 255.0 / 3)};
        return table;
    }();
    for (std::int64_t r = 0; r < height; ++r) {
        std::uint8_t* out = data + r * stride;
        for (std::int64_t x = 0; x < width; ++x, out += 3)
            std::copy_n(kConverted[imageByte(image, address + r * width + x)].begin(), 3, out);
    }
}

void convertDepth12(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width, std::int32_t height,
                    std::int64_t stride, std::uint8_t* data)
{
    // Pixel pairs in three bytes: red, green, blue nibbles from the top, first pixel first.
    for (std::int64_t r = 0; r < height; ++r) {
        std::uint8_t* out = data + r * stride;
        for (std::int64_t x = 0; x < width; ++x) {
            const std::int64_t pixel = r * width + x;
            const std::int64_t at = address + pixel / 2 * 3;
            const unsigned bits = (unsigned{imageByte(image, at)} << 16) | (unsigned{imageByte(image, at + 1)} << 8) |
                                  imageByte(image, at + 2);
            const unsigned rgb = pixel % 2 == 0 ? bits >> 12 : bits & 0xFFF;
            *out++ = static_cast<std::uint8_t>((rgb & 0xF) * 17);  // v / 15 * 255
            *out++ = static_cast<std::uint8_t>(((rgb >> 4) & 0xF) * 17);
            *out++ = static_cast<std::uint8_t>((rgb >> 8) * 17);
        }
    }
}

void writeBmp(const std::string& path, const std::vector<std::uint8_t>& bmp)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bmp.data()), static_cast<std::streamsize>(bmp.size()));
    out.close();
    if (!out) throw image::FileError(image::Reason::PictureNotWritten, {path});
}

}  // namespace

bool assembleFrameRows(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width,
                       std::int32_t height, int depth, std::int64_t stride, std::uint8_t* data)
{
    switch (depth) {
    case 4: copyRows(image, address, width, height, 0.5, stride, data); return true;
    case 16: copyRows(image, address, width, height, 2, stride, data); return true;
    case 24: copyRows(image, address, width, height, 3, stride, data); return true;
    case 8: convertDepth8(image, address, width, height, stride, data); return true;
    case 12: convertDepth12(image, address, width, height, stride, data); return true;
    default: return false;
    }
}

void assembleMonoColumns(std::span<const std::uint8_t> image, std::int64_t address, std::uint8_t* data)
{
    // The display memory is 96 columns by 8 pages of 8 pixel rows; each column's page
    // bytes, bottom page first, make one BMP row of a 64 x 96 picture.
    for (std::int64_t column = 0; column < 96; ++column)
        for (std::int64_t page = 7; page >= 0; --page) *data++ = imageByte(image, address + page * 96 + column);
}

int bmpBitsPerPixel(int depth)
{
    switch (depth) {
    case 1:
    case 4:
    case 16:
    case 24: return depth;
    case 8:
    case 12: return 24;
    default: return 0;
    }
}

std::optional<std::vector<std::uint8_t>> pictureFrameBmp(std::span<const std::uint8_t> image, std::int64_t address,
                                                         std::int32_t width, std::int32_t height, int depth,
                                                         const ColourTable& colours)
{
    static constexpr std::uint8_t masks[16] = {0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0, 0, 0, 0, 0};
    std::span<const std::uint8_t> table;
    std::uint32_t compression = 0;
    switch (depth) {
    case 4: table = colours; break;
    case 16: table = masks, compression = 3; break;
    case 24:
    case 8:
    case 12: break;
    default: return std::nullopt;
    }
    const int bitsPerPixel = bmpBitsPerPixel(depth);
    if (width < 0 || height < 0) throw image::TypedError<std::length_error>(image::Reason::NegativeDimensions);
    const std::int64_t stride = bmpStride(width, bitsPerPixel);
    auto bmp = bmpShell(width, height, bitsPerPixel, compression, table, stride * height);
    const std::size_t offset = kHeaderSize + table.size();
    // A width or height of 0 leaves no pixel data, however many rows the other names.
    if (bmp.size() == offset) return bmp;
    assembleFrameRows(image, address, width, height, depth, stride, bmp.data() + offset);
    flipRows(bmp, offset, stride, height);
    return bmp;
}

std::vector<std::uint8_t> monoFrameBmp(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width,
                                       std::int32_t height)
{
    static constexpr std::uint8_t blackWhite[8] = {0, 0, 0, 0, 255, 255, 255, 0};
    const auto dataSize = static_cast<std::int64_t>(std::nearbyint(static_cast<double>(width) * height / 8));
    auto bmp = bmpShell(width, height, 1, 0, blackWhite, std::max<std::int64_t>(dataSize, 0));
    const std::size_t offset = kHeaderSize + sizeof blackWhite;
    std::array<std::uint8_t, kMonoMemoryBytes> columns{};
    assembleMonoColumns(image, address, columns.data());
    // Dimensions whose product is below 6144 pixels hold only the first columns.
    std::copy_n(columns.begin(), std::min(columns.size(), bmp.size() - offset),
                bmp.begin() + static_cast<std::ptrdiff_t>(offset));
    if (width >= 0) flipRows(bmp, offset, bmpStride(width, 1), height);
    return bmp;
}

ColourTable readColourTable(const std::string& path)
{
    ColourTable table{};
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::ofstream created(path, std::ios::binary | std::ios::app);
        return table;
    }
    in.read(reinterpret_cast<char*>(table.data()), static_cast<std::streamsize>(table.size()));
    return table;
}

bool DecodePictureFrame(std::span<const std::uint8_t> image, std::int64_t address, const std::string& path,
                        std::int32_t width, std::int32_t height, int depth, const ColourTable& colours)
{
    auto bmp = pictureFrameBmp(image, address, width, height, depth, colours);
    if (!bmp) return false;
    writeBmp(path, *bmp);
    return true;
}

bool DecodeMonoFrame(std::span<const std::uint8_t> image, std::int64_t address, const std::string& path,
                     std::int32_t width, std::int32_t height)
{
    writeBmp(path, monoFrameBmp(image, address, width, height));
    return true;
}

}  // namespace zevran::pictures
