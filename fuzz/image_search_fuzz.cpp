// The input as a firmware image. scanTones must list exactly what a plain byte-by-byte
// walk finds. Then findNextString is walked with a pattern taken from the input until
// it answers nullopt, and must give exactly the stored strings a plain walk finds.
// Input byte 0 picks handset codes (bit 0) and whether the pattern is the input's own
// bytes in hex (bit 1 clear, so it is sure to be found) or raw text taken as hex;
// byte 1 gives the pattern's length (0..15), taken from byte 2 on.
#include "image/hex_text.hpp"
#include "strings/string_search.hpp"
#include "tones/tone_scan.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

using namespace zevran;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "image_search_fuzz: %s\n", what);
    std::abort();
}

std::string hex8(std::uint32_t value)
{
    char text[9];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(value));
    return text;
}

std::vector<tones::ToneSlot> plainToneScan(const std::vector<std::uint8_t>& image,
                                           std::vector<std::int32_t>& signatures)
{
    std::vector<tones::ToneSlot> rows;
    // Offset 0 is never searched: a hit there reads as "no match".
    for (std::size_t i = 1; i + 4 <= image.size(); ++i) {
        if (image[i] != 'M' || image[i + 1] != 'M' || image[i + 2] != 'M' || image[i + 3] != 'D') continue;
        signatures.push_back(static_cast<std::int32_t>(i));
        if (i + 8 > image.size()) continue;
        const std::uint64_t length = std::uint64_t{image[i + 4]} << 24 | std::uint64_t{image[i + 5]} << 16 |
                                     std::uint64_t{image[i + 6]} << 8 | image[i + 7];
        const std::uint64_t size = length + 8;
        if (size < 101 || size > 99999) continue;
        char number[16];
        std::snprintf(number, sizeof number, "%03zu", rows.size() + 1);
        rows.push_back({number, "0x" + hex8(static_cast<std::uint32_t>(i)),
                        "0x" + hex8(static_cast<std::uint32_t>(i + size - 1)), std::to_string(size), ""});
    }
    return rows;
}

void checkToneScan(const std::vector<std::uint8_t>& bytes)
{
    image::ImageState state;
    image::setImage(state, "fuzz.bin", bytes);
    std::vector<std::int32_t> heard;
    const auto rows = tones::scanTones(state, [&](std::int32_t offset) { heard.push_back(offset); });
    std::vector<std::int32_t> signatures;
    const auto expected = plainToneScan(bytes, signatures);
    if (heard != signatures) fail("scanTones reported other signatures than a plain walk finds");
    if (rows.size() != expected.size()) fail("scanTones found another number of tones than a plain walk");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& a = rows[i];
        const auto& b = expected[i];
        if (a.number != b.number || a.start != b.start || a.end != b.end || a.size != b.size || a.note != b.note)
            fail("scanTones gave another row than a plain walk");
    }
    if (state.LastMatch != 0) fail("scanTones left a LastMatch behind");

    // Read in chunks, as zevran-cli tones reads a file, the rows are the same.
    for (std::size_t chunk : {std::size_t{8}, std::size_t{9} + bytes.size() % 23, std::size_t{4096}}) {
        std::istringstream in(std::string(bytes.begin(), bytes.end()));
        const tones::ToneStreamScan streamed = tones::scanToneStream(in, chunk);
        if (streamed.imageBytes != static_cast<std::int64_t>(bytes.size())) fail("scanToneStream miscounted the bytes");
        if (streamed.rows.size() != expected.size()) fail("scanToneStream found another number of tones");
        for (std::size_t i = 0; i < expected.size(); ++i)
            if (streamed.rows[i].start != expected[i].start || streamed.rows[i].size != expected[i].size ||
                streamed.rows[i].number != expected[i].number || streamed.rows[i].end != expected[i].end)
                fail("scanToneStream gave another row than the whole-image scan");
    }
}

// The pattern bytes of a hex text as the shared search reads them: byte k from
// characters 2k and 2k + 1, half as many bytes as characters rounded half to even;
// nullopt when a character read is not hex.
std::optional<std::vector<std::uint8_t>> patternBytes(std::string_view hexText)
{
    const std::size_t half = hexText.size() / 2;
    const std::size_t count = half + (hexText.size() % 2 == 1 && half % 2 == 1 ? 1 : 0);
    std::vector<std::uint8_t> bytes;
    for (std::size_t k = 0; k < count; ++k) {
        int value = 0;
        for (std::size_t i = 2 * k; i < std::min(2 * k + 2, hexText.size()); ++i) {
            const int digit = image::hexDigitOrMinusOne(hexText[i]);
            if (digit < 0) return std::nullopt;
            value = value * 16 + digit;
        }
        bytes.push_back(static_cast<std::uint8_t>(value));
    }
    return bytes;
}

struct PlainHit {
    std::size_t start;
    std::size_t zero;  // index of the terminating zero
    int passCount;     // hits of the pass up to and including this one
};

std::vector<PlainHit> plainStringWalk(const std::vector<std::uint8_t>& image, std::string_view hexText)
{
    std::vector<PlainHit> hits;
    const auto pattern = patternBytes(hexText);
    if (!pattern || pattern->empty()) return hits;
    int passCount = 0;
    for (std::size_t i = 1; i + pattern->size() <= image.size(); ++i) {
        if (!std::equal(pattern->begin(), pattern->end(), image.begin() + static_cast<std::ptrdiff_t>(i))) continue;
        ++passCount;
        const auto zero = std::find(image.begin() + static_cast<std::ptrdiff_t>(i), image.end(), 0);
        if (zero == image.end()) continue;
        hits.push_back({i, static_cast<std::size_t>(zero - image.begin()), passCount});
    }
    return hits;
}

void checkStringWalk(const std::vector<std::uint8_t>& bytes, std::string_view hexText, bool handsetCodes)
{
    image::ImageState state;
    image::setImage(state, "fuzz.bin", bytes);
    const auto expected = plainStringWalk(bytes, hexText);
    int passCount = -1;
    std::size_t steps = 0;
    for (;;) {
        if (++steps > bytes.size() + 2) fail("findNextString walk does not end");
        const auto hit = strings::findNextString(state, hexText, handsetCodes, passCount);
        if (!hit) break;
        if (steps > expected.size()) fail("findNextString found a string a plain walk does not");
        const PlainHit& want = expected[steps - 1];
        if (hit->foundStart != hex8(static_cast<std::uint32_t>(want.start)) ||
            hit->foundEnd != hex8(static_cast<std::uint32_t>(want.zero) - 1))
            fail("findNextString gave another string than a plain walk");
        if (passCount != want.passCount) fail("findNextString counted the pass's hits wrongly");
        const std::size_t length = want.zero - want.start;
        const std::size_t most =
            handsetCodes ? length / 2 + (length % 2 == 1 && (length / 2) % 2 == 1 ? 1 : 0) : length;
        if (hit->maxLength != static_cast<int>(most)) fail("findNextString gave another longest replacement");
    }
    if (steps - 1 != expected.size()) fail("findNextString missed a string a plain walk finds");
    if (state.LastMatch != 0) fail("findNextString left a LastMatch behind after its last hit");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(data, data + size);
    checkToneScan(bytes);

    if (size < 2) return 0;
    const bool handsetCodes = (data[0] & 1) != 0;
    const std::size_t length = std::min<std::size_t>(data[1] % 16, size - 2);
    const std::string_view source(reinterpret_cast<const char*>(data) + 2, length);
    std::string hexText;
    if ((data[0] & 2) != 0) {
        hexText = source;
    } else {
        for (unsigned char c : source) hexText += image::HexPad(c, 2);
    }
    checkStringWalk(bytes, hexText, handsetCodes);
    return 0;
}
