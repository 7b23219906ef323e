// One frame of the handset's pixel data to a Windows BMP file. Depths 4, 16 and 24
// are copied as stored; 8 and 12 become 24-bit pixels; depth 1 is the fixed 96 x 64
// display memory of the handset's mono screen.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::pictures {

// The fixed message, and its title, for a depth the decoder cannot convert.
inline constexpr std::string_view kWrongFormatText = "错误的bmp文件格式";
inline constexpr std::string_view kWrongFormatTitle = "错误";

using ColourTable = std::array<std::uint8_t, 64>;  // 16 entries of blue, green, red, 0

// Dimensions come from hand-typed tables. A handset picture is at most 128 x 160 at
// 24 bits (60 KiB); past 4 MiB of BMP pixel data a frame is a typing error and is
// refused, not allocated.
inline constexpr std::int64_t kLargestPixelData = std::int64_t{1} << 22;

// Bytes of one BMP row: whole 32-bit words.
inline std::int64_t bmpStride(std::int32_t width, int bitsPerPixel)
{
    return (std::int64_t{width} * bitsPerPixel + 31) / 32 * 4;
}

// The copied depths (4, 16, 24) take 0.5, 2 or 3 bytes a pixel. Each BMP row copies
// round(bytes a pixel x width - 1) + 1 bytes (at most the stride), byte i of row r from
// the image byte at round(bytes a pixel x r x width + i + address): products in double,
// half-to-even rounding, so an odd width at depth 4 copies width 5 -> 3 bytes and
// width 7 -> 3 bytes a row, as the tables always assumed.
inline std::int64_t copiedBytesPerRow(std::int32_t width, double bytesPerPixel, std::int64_t stride)
{
    const auto lastIndex = static_cast<std::int64_t>(std::nearbyint(bytesPerPixel * width - 1));
    return std::min(lastIndex + 1, stride);
}
inline double copiedRowStart(double bytesPerPixel, std::int64_t row, std::int32_t width)
{
    return bytesPerPixel * static_cast<double>(row) * width;
}
inline std::int64_t copiedByteIndex(double rowStart, std::int64_t i, std::int64_t address)
{
    return static_cast<std::int64_t>(std::nearbyint(rowStart + static_cast<double>(i) + static_cast<double>(address)));
}

// The BMP bytes of one frame at `address` for depths 4, 8, 12, 16 and 24; nullopt for
// any other depth. Bytes of the frame that lie outside the image read as zero.
std::optional<std::vector<std::uint8_t>> pictureFrameBmp(std::span<const std::uint8_t> image, std::int64_t address,
                                                         std::int32_t width, std::int32_t height, int depth,
                                                         const ColourTable& colours);

// The BMP bytes of a mono frame: always the 768 bytes of the 96-column, 8-page display
// memory at `address`, whatever the dimensions say; they only size the header.
std::vector<std::uint8_t> monoFrameBmp(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width,
                                       std::int32_t height);

// The pixel data of one frame as its BMP holds it, but top row first: `height` rows
// of `stride` bytes into `data`, which the caller has zeroed (bytes after a row's
// pixels stay as they are). Depths 4, 8, 12, 16 and 24; false for any other. The BMP
// writer and the picture finder's view both draw through it.
bool assembleFrameRows(std::span<const std::uint8_t> image, std::int64_t address, std::int32_t width,
                       std::int32_t height, int depth, std::int64_t stride, std::uint8_t* data);

// The mono display memory in the order of its BMP rows: column by column, each
// column's 8 page bytes from the bottom page up (768 bytes into `data`).
inline constexpr std::size_t kMonoMemoryBytes = 768;
void assembleMonoColumns(std::span<const std::uint8_t> image, std::int64_t address, std::uint8_t* data);

// Bits per pixel of the BMP a depth becomes (24 for 8 and 12); 0 for a refused depth.
int bmpBitsPerPixel(int depth);

// The colour table for depth 4: the first 64 bytes of the file, zero where it is
// shorter. A missing file is created empty, so every such pixel shows black.
ColourTable readColourTable(const std::string& path);

// Writes the frame's BMP to `path` in one write; false, and no file, for a depth
// that cannot be converted. Throws image::FileError when the file cannot be written.
bool DecodePictureFrame(std::span<const std::uint8_t> image, std::int64_t address, const std::string& path,
                        std::int32_t width, std::int32_t height, int depth, const ColourTable& colours);
bool DecodeMonoFrame(std::span<const std::uint8_t> image, std::int64_t address, const std::string& path,
                     std::int32_t width, std::int32_t height);

}  // namespace zevran::pictures
