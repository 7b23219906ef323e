#include "tone_scan.hpp"

#include "image/byte_search.hpp"
#include "image/hex_text.hpp"

namespace zevran::tones {

using namespace zevran::image;

std::vector<ToneSlot> scanTones(ImageState& state, const std::function<void(std::int32_t)>& onMatch)
{
    static constexpr std::uint8_t signature[] = {0x4D, 0x4D, 0x4D, 0x44};
    state.SearchPattern.assign(std::begin(signature), std::end(signature));
    const std::span<const std::uint8_t> image(state.FirmwareImage);
    std::vector<ToneSlot> rows;
    for (;;) {
        state.SearchStart = state.LastMatch + 1;
        const std::size_t hit = findBytes(image, signature, static_cast<std::size_t>(state.SearchStart));
        if (hit == kNotFound) {
            state.LastMatch = 0;
            return rows;
        }
        state.SearchStart = state.LastMatch = static_cast<std::int32_t>(hit);
        if (onMatch) onMatch(state.LastMatch);
        // A signature too near the end to hold its length field is no tone.
        if (hit + 8 > image.size()) continue;
        const std::int64_t size = ChunkSizeAt(state, static_cast<std::int64_t>(hit));
        if (size < kSmallestTone || size > kLargestTone) continue;
        const auto start = static_cast<std::uint32_t>(hit);
        rows.push_back({ZeroPad(std::to_string(rows.size() + 1), 3), "0x" + HexPad(start, 8),
                        "0x" + HexPad(start + static_cast<std::uint32_t>(size) - 1, 8), std::to_string(size), ""});
    }
}

}  // namespace zevran::tones
