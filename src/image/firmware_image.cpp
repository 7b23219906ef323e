#include "firmware_image.hpp"

#include "failure.hpp"

#include "byte_search.hpp"
#include "hex_text.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace zevran::image {

namespace {

// Pattern byte k is made of characters 2k-1 and 2k; the pattern has half as many
// bytes as the text has characters, rounded half to even, so an odd tail of one
// digit is a byte of its own only when that rounding counts it.
bool patternFromHex(std::string_view hexText, std::vector<std::uint8_t>& pattern)
{
    const std::size_t half = hexText.size() / 2;
    const bool roundUp = hexText.size() % 2 == 1 && half % 2 == 1;
    const std::size_t count = half + (roundUp ? 1 : 0);
    pattern.assign(count, 0);
    for (std::size_t k = 0; k < count; ++k) {
        std::string_view pair = hexText.substr(2 * k, 2);
        int value = 0;
        for (char c : pair) {
            int digit = hexDigitOrMinusOne(c);
            if (digit < 0) return false;
            value = value * 16 + digit;
        }
        pattern[k] = static_cast<std::uint8_t>(value);
    }
    return true;
}

}  // namespace

bool FindHexInImage(ImageState& state, std::string_view hexText)
{
    const bool valid = patternFromHex(hexText, state.SearchPattern);
    state.SearchStart = state.LastMatch + 1;
    std::size_t hit = kNotFound;
    if (valid && state.SearchStart >= 0) {
        std::span<const std::uint8_t> image(
            state.FirmwareImage.data(),
            std::min<std::size_t>(state.FirmwareImage.size(),
                                  static_cast<std::size_t>(std::max(state.FirmwareLength, 0))));
        hit = findBytes(image, state.SearchPattern, static_cast<std::size_t>(state.SearchStart));
    }
    if (hit == kNotFound) {
        state.LastMatch = 0;
        return false;
    }
    state.SearchStart = state.LastMatch = static_cast<std::int32_t>(hit);
    return true;
}

bool CopyToImage(ImageState& state, std::span<const std::uint8_t> source, std::int32_t offset, std::int32_t count)
{
    if (count <= 0) return true;
    if (static_cast<std::size_t>(count) > source.size())
        throw std::out_of_range("copy of " + std::to_string(count) + " bytes from a source of " +
                                std::to_string(source.size()));
    if (offset < 0) return false;
    const std::size_t imageSize = state.FirmwareImage.size();
    const std::size_t begin = static_cast<std::size_t>(offset);
    const std::size_t fits =
        begin >= imageSize ? 0 : std::min<std::size_t>(imageSize - begin, static_cast<std::size_t>(count));
    std::copy_n(source.begin(), fits,
                state.FirmwareImage.begin() + static_cast<std::ptrdiff_t>(std::min(begin, imageSize)));
    return fits == static_cast<std::size_t>(count);
}

std::int64_t ChunkSizeAt(const ImageState& state, std::int64_t offset)
{
    return ChunkSizeAt(state.FirmwareImage, offset);
}

std::int64_t ChunkSizeAt(std::span<const std::uint8_t> image, std::int64_t offset)
{
    if (offset < 0 || offset + 8 > static_cast<std::int64_t>(image.size()))
        throw std::out_of_range("chunk length at 0x" + HexPad(static_cast<std::uint32_t>(offset + 4), 8) +
                                " lies outside the image");
    const auto at = static_cast<std::size_t>(offset) + 4;
    const std::uint64_t body = (std::uint64_t{image[at]} << 24) | (std::uint64_t{image[at + 1]} << 16) |
                               (std::uint64_t{image[at + 2]} << 8) | std::uint64_t{image[at + 3]};
    return static_cast<std::int64_t>(body + 8);
}

void checkImageSize(const std::string& path, std::uintmax_t bytes)
{
    if (bytes > static_cast<std::uintmax_t>(std::numeric_limits<std::int32_t>::max()))
        throw TypedError<std::length_error>(Reason::TooLargeToHold, {path});
}

void setImage(ImageState& state, std::string path, std::vector<std::uint8_t> bytes)
{
    checkImageSize(path, bytes.size());
    state.FirmwarePath = std::move(path);
    state.FirmwareLength = static_cast<std::int32_t>(bytes.size());
    state.FirmwareImage = std::move(bytes);
}

}  // namespace zevran::image
