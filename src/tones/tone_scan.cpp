#include "tone_scan.hpp"

#include "image/byte_search.hpp"
#include "image/hex_text.hpp"

#include <algorithm>
#include <cstring>

namespace zevran::tones {

using namespace zevran::image;

namespace {

constexpr std::uint8_t kSignature[] = {0x4D, 0x4D, 0x4D, 0x44};
// The signature and the four-byte length after it.
constexpr std::size_t kHeaderBytes = 8;

}  // namespace

std::size_t scanToneSignatures(std::span<const std::uint8_t> bytes, std::int64_t offset, std::size_t from,
                               std::size_t end, std::vector<ToneSlot>& rows,
                               const std::function<void(std::int64_t)>& onMatch)
{
    std::size_t lastHit = kNotFound;
    for (std::size_t hit = findBytes(bytes, kSignature, from); hit != kNotFound && hit < end;
         hit = findBytes(bytes, kSignature, hit + 1)) {
        lastHit = hit;
        if (onMatch) onMatch(offset + static_cast<std::int64_t>(hit));
        // A signature too near the end to hold its length field is no tone.
        if (hit + kHeaderBytes > bytes.size()) continue;
        const std::int64_t size = ChunkSizeAt(bytes, static_cast<std::int64_t>(hit));
        if (size < kSmallestTone || size > kLargestTone) continue;
        const auto start = static_cast<std::uint32_t>(offset + static_cast<std::int64_t>(hit));
        rows.push_back({ZeroPad(std::to_string(rows.size() + 1), 3), "0x" + HexPad(start, 8),
                        "0x" + HexPad(start + static_cast<std::uint32_t>(size) - 1, 8), std::to_string(size), ""});
    }
    return lastHit;
}

std::vector<ToneSlot> scanTones(ImageState& state, const std::function<void(std::int32_t)>& onMatch)
{
    state.SearchPattern.assign(std::begin(kSignature), std::end(kSignature));
    const std::span<const std::uint8_t> image(state.FirmwareImage);
    std::vector<ToneSlot> rows;
    const auto from = static_cast<std::size_t>(state.LastMatch) + 1;
    const std::size_t lastHit = scanToneSignatures(image, 0, from, image.size(), rows, [&](std::int64_t at) {
        if (onMatch) onMatch(static_cast<std::int32_t>(at));
    });
    // The search that found nothing more began one byte after the last match.
    state.SearchStart = static_cast<std::int32_t>(lastHit == kNotFound ? from : lastHit + 1);
    state.LastMatch = 0;
    return rows;
}

ToneStreamScan scanToneStream(std::istream& in, std::size_t chunkBytes)
{
    chunkBytes = std::max(chunkBytes, kHeaderBytes);
    std::vector<std::uint8_t> buffer(chunkBytes + kHeaderBytes - 1);
    ToneStreamScan scan;
    std::size_t carried = 0;  // bytes kept from the chunk before, at the buffer's front
    std::size_t from = 1;     // a fresh scan starts one byte in
    for (;;) {
        in.read(reinterpret_cast<char*>(buffer.data() + carried), static_cast<std::streamsize>(chunkBytes));
        const auto got = static_cast<std::size_t>(in.gcount());
        const std::size_t held = carried + got;
        const bool last = got < chunkBytes;
        // A signature in the last seven bytes waits for the next chunk, which brings its length.
        const std::size_t end = last ? held : held - (kHeaderBytes - 1);
        scanToneSignatures(std::span(buffer.data(), held), scan.imageBytes, from, end, scan.rows);
        scan.imageBytes += static_cast<std::int64_t>(end);
        if (last) break;
        carried = held - end;
        std::memmove(buffer.data(), buffer.data() + end, carried);
        from = 0;
    }
    if (in.bad()) throw image::TypedError<std::ios_base::failure>(image::Reason::FileNotReadToEnd);
    return scan;
}

}  // namespace zevran::tones
