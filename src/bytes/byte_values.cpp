#include "byte_values.hpp"

#include <cmath>

namespace zevran::bytes {

namespace {

std::int32_t signExtend(std::uint32_t value, int bits)
{
    if (bits == 32) return static_cast<std::int32_t>(value);
    const std::uint32_t sign = 1u << (bits - 1);
    return static_cast<std::int32_t>(value ^ sign) - static_cast<std::int32_t>(sign);
}

// A channel of `levels` steps scaled to 0..255, half to even as the decoder rounds.
std::uint8_t scaled(unsigned value, unsigned levels)
{
    return static_cast<std::uint8_t>(std::nearbyint(static_cast<double>(value) * 255.0 / levels));
}

}  // namespace

std::int32_t NumberAt::signedLittle() const { return signExtend(littleEndian, bits); }
std::int32_t NumberAt::signedBig() const { return signExtend(bigEndian, bits); }

std::array<NumberAt, 3> numbersAt(std::span<const std::uint8_t> image, std::size_t address)
{
    std::array<NumberAt, 3> numbers{NumberAt{8}, NumberAt{16}, NumberAt{32}};
    for (NumberAt& number : numbers) {
        const auto count = static_cast<std::size_t>(number.bits / 8);
        if (address >= image.size() || image.size() - address < count) continue;
        number.present = true;
        for (std::size_t i = 0; i < count; ++i) {
            number.bigEndian = number.bigEndian << 8 | image[address + i];
            number.littleEndian |= std::uint32_t{image[address + i]} << (8 * i);
        }
    }
    return numbers;
}

std::optional<PixelAt> pixelAt(std::span<const std::uint8_t> image, std::size_t address, int depth)
{
    const std::size_t count = depth == 8 ? 1 : depth == 16 ? 2 : 3;
    if (address >= image.size() || image.size() - address < count) return std::nullopt;
    const std::uint8_t* at = image.data() + address;
    PixelAt pixel{depth};
    switch (depth) {
    case 8:
        // Bits 7-5 show as blue, 4-2 as green, 1-0 as red.
        pixel.stored = at[0];
        pixel.blue = scaled(at[0] >> 5, 7);
        pixel.green = scaled((at[0] >> 2) & 7, 7);
        pixel.red = scaled(at[0] & 3, 3);
        break;
    case 12:
        // The first pixel of a pair: red, green, blue from the most significant nibble.
        pixel.stored = (unsigned{at[0]} << 4) | (at[1] >> 4);
        pixel.red = scaled(pixel.stored >> 8, 15);
        pixel.green = scaled((pixel.stored >> 4) & 15, 15);
        pixel.blue = scaled(pixel.stored & 15, 15);
        break;
    case 16:
        // Little-endian 5-6-5 words, red in the top bits.
        pixel.stored = unsigned{at[0]} | unsigned{at[1]} << 8;
        pixel.red = scaled(pixel.stored >> 11, 31);
        pixel.green = scaled((pixel.stored >> 5) & 63, 63);
        pixel.blue = scaled(pixel.stored & 31, 31);
        break;
    case 24:
        // Blue, green, red, as a BMP stores them.
        pixel.stored = unsigned{at[0]} << 16 | unsigned{at[1]} << 8 | at[2];
        pixel.blue = at[0];
        pixel.green = at[1];
        pixel.red = at[2];
        break;
    default: return std::nullopt;
    }
    return pixel;
}

}  // namespace zevran::bytes
