#include "srecord.hpp"

#include "file_io.hpp"
#include "hex_text.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zevran::image {

namespace {

// The two hex digits of every byte value, so a byte costs one lookup.
constexpr std::array<std::array<char, 2>, 256> kHexPairs = [] {
    constexpr char digits[] = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs{};
    for (unsigned value = 0; value < 256; ++value) pairs[value] = {digits[value >> 4], digits[value & 0xF]};
    return pairs;
}();

char* putByte(char* at, unsigned value)
{
    std::memcpy(at, kHexPairs[value & 0xFF].data(), 2);
    return at + 2;
}

// One S3 line of 1 to 16 bytes. The count covers address, data and checksum; the
// checksum is the one's complement of the low byte of count + address bytes + data.
char* putLine(char* at, const std::uint8_t* data, unsigned length, std::uint32_t address)
{
    const unsigned count = length + 5;
    unsigned sum = count + static_cast<unsigned>(AddressByteSum(address));
    *at++ = 'S';
    *at++ = '3';
    at = putByte(at, count);
    for (int shift = 24; shift >= 0; shift -= 8) at = putByte(at, (address >> shift) & 0xFF);
#if defined(__SSE2__)
    // A full line, nearly every line of a file, in one step: 16 bytes to 32 digits.
    if (length == 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
        const __m128i low = _mm_set1_epi8(0x0F);
        const __m128i highNibbles = _mm_and_si128(_mm_srli_epi16(bytes, 4), low);
        const __m128i lowNibbles = _mm_and_si128(bytes, low);
        // '0' + n, and 7 more for n above 9 so that 10 lands on 'A'.
        const auto digits = [](__m128i nibbles) {
            const __m128i letters = _mm_and_si128(_mm_cmpgt_epi8(nibbles, _mm_set1_epi8(9)), _mm_set1_epi8(7));
            return _mm_add_epi8(_mm_add_epi8(nibbles, _mm_set1_epi8('0')), letters);
        };
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), digits(_mm_unpacklo_epi8(highNibbles, lowNibbles)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at + 16), digits(_mm_unpackhi_epi8(highNibbles, lowNibbles)));
        at += 32;
        const __m128i halves = _mm_sad_epu8(bytes, _mm_setzero_si128());
        sum += static_cast<unsigned>(_mm_cvtsi128_si32(halves) + _mm_cvtsi128_si32(_mm_srli_si128(halves, 8)));
    } else
#endif
    {
        for (unsigned i = 0; i < length; ++i) {
            sum += data[i];
            at = putByte(at, data[i]);
        }
    }
    at = putByte(at, 255 - (sum & 0xFF));
    *at++ = '\r';
    *at++ = '\n';
    return at;
}

constexpr std::size_t kFullLineLength = 2 + 2 + 8 + 32 + 2 + 2;

}  // namespace

void appendSRecordLines(std::string& out, std::span<const std::uint8_t> data, std::uint32_t first)
{
    if (data.empty()) return;
    const std::size_t lines = (data.size() + 15) / 16;
    const std::size_t oldSize = out.size();
    out.resize(oldSize + lines * kFullLineLength);
    char* at = out.data() + oldSize;
    std::size_t offset = 0;
    while (offset < data.size()) {
        const auto length = static_cast<unsigned>(std::min<std::size_t>(16, data.size() - offset));
        at = putLine(at, data.data() + offset, length, first + static_cast<std::uint32_t>(offset));
        offset += length;
    }
    out.resize(static_cast<std::size_t>(at - out.data()));
}

std::string sRecordRegionText(std::span<const std::uint8_t> data, std::uint32_t first)
{
    std::string text;
    appendSRecordLines(text, data, first);
    return text;
}

bool WriteSRecordRegion(PatchFile& file, std::span<const std::uint8_t> data, std::int32_t first, std::int32_t last,
                        const std::string& path, bool openFile, bool closeFile)
{
    const std::int64_t length = std::int64_t{last} - first + 1;
    if (length < 1)
        throw std::invalid_argument("region 0x" + HexPad(static_cast<std::uint32_t>(first), 8) + "-0x" +
                                    HexPad(static_cast<std::uint32_t>(last), 8) + " ends before it starts");
    if (static_cast<std::uint64_t>(length) > data.size())
        throw std::invalid_argument("region 0x" + HexPad(static_cast<std::uint32_t>(first), 8) + " needs " +
                                    std::to_string(length) + " bytes but has " + std::to_string(data.size()));
    if (openFile) {
        if (file.stream.is_open()) file.stream.close();
        file.path = path;
        errno = 0;
        file.stream.open(path, std::ios::binary | std::ios::out | std::ios::trunc);
        if (!file.stream) throw fileSystemError(path, errno ? errno : EIO);
        file.stream.write(S0Line.data(), static_cast<std::streamsize>(S0Line.size()));
    }
    if (!file.stream.is_open())
        throw std::logic_error("no patch file is open for region 0x" + HexPad(static_cast<std::uint32_t>(first), 8));
    std::string text =
        sRecordRegionText(data.first(static_cast<std::size_t>(length)), static_cast<std::uint32_t>(first));
    file.stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (closeFile) {
        file.stream.write(S7Line.data(), static_cast<std::streamsize>(S7Line.size()));
        file.stream.close();
    }
    if (file.stream.fail()) {
        file.stream.close();
        throw FileError(Reason::PatchNotWritten, {file.path});
    }
    return closeFile;
}

}  // namespace zevran::image
