// What the bytes at one address read as: whole numbers of 8, 16 and 32 bits, unsigned
// and signed, in both byte orders; and the pixel that each picture depth the preview
// decodes would show there, in the colours the preview gives it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace zevran::bytes {

struct NumberAt {
    int bits = 8;
    std::uint32_t littleEndian = 0;  // none when the image ends first
    std::uint32_t bigEndian = 0;
    bool present = false;

    std::int32_t signedLittle() const;
    std::int32_t signedBig() const;
};

// The numbers of 8, 16 and 32 bits that start at `address`.
std::array<NumberAt, 3> numbersAt(std::span<const std::uint8_t> image, std::size_t address);

struct PixelAt {
    int depth = 8;
    std::uint32_t stored = 0;  // the pixel's bits as stored (12 bits for depth 12)
    std::uint8_t red = 0, green = 0, blue = 0;
};

// The depths the preview decodes pixel by pixel from the cursor: 8, 12, 16 and 24.
inline constexpr std::array<int, 4> kPixelDepths{8, 12, 16, 24};

// The pixel of `depth` whose bytes start at `address` (the first of a depth-12 pair);
// none when the image ends before its last byte.
std::optional<PixelAt> pixelAt(std::span<const std::uint8_t> image, std::size_t address, int depth);

}  // namespace zevran::bytes
