#include "srecord_reader.hpp"

#include "hex_text.hpp"

#include <algorithm>
#include <array>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zevran::image {

namespace {

// Digit values with a non-hex character as 0, as the tool's hex conversion always
// read them. A table, because a data line is 32 digits of random-looking hex and
// the range tests of a branch-per-digit lookup mispredict on them.
constexpr std::array<std::uint8_t, 256> kTolerantDigit = [] {
    std::array<std::uint8_t, 256> table{};
    for (int c = 0; c < 256; ++c) {
        const int digit = hexDigitOrMinusOne(static_cast<char>(c));
        table[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(digit < 0 ? 0 : digit);
    }
    return table;
}();

std::uint32_t tolerantDigit(char c) { return kTolerantDigit[static_cast<unsigned char>(c)]; }

// `count` bytes from the 2 * count hex characters at `digits`, each pair high digit
// first, a non-hex character as 0.
void tolerantBytes(const char* digits, std::size_t count, std::uint8_t* bytes)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    // Sixteen bytes at a time: a full data line in one step.
    const auto digitValues = [](__m128i c) {
        const __m128i isDecimal = _mm_and_si128(_mm_cmpgt_epi8(c, _mm_set1_epi8('0' - 1)),
                                                _mm_cmpgt_epi8(_mm_set1_epi8('9' + 1), c));
        // Setting bit 5 turns only 'A'..'F' into 'a'..'f'; bytes from 0x80 stay negative.
        const __m128i lower = _mm_or_si128(c, _mm_set1_epi8(0x20));
        const __m128i isLetter = _mm_and_si128(_mm_cmpgt_epi8(lower, _mm_set1_epi8('a' - 1)),
                                               _mm_cmpgt_epi8(_mm_set1_epi8('f' + 1), lower));
        return _mm_or_si128(_mm_and_si128(isDecimal, _mm_sub_epi8(c, _mm_set1_epi8('0'))),
                            _mm_and_si128(isLetter, _mm_sub_epi8(lower, _mm_set1_epi8('a' - 10))));
    };
    // In each 16-bit lane the first character (the high digit) is the low byte.
    const auto pairValues = [](__m128i d) {
        return _mm_or_si128(_mm_slli_epi16(_mm_and_si128(d, _mm_set1_epi16(0x00FF)), 4), _mm_srli_epi16(d, 8));
    };
    for (; i + 16 <= count; i += 16) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(digits + 2 * i));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(digits + 2 * i + 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + i),
                         _mm_packus_epi16(pairValues(digitValues(first)), pairValues(digitValues(second))));
    }
#endif
    for (; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(tolerantDigit(digits[2 * i]) << 4 | tolerantDigit(digits[2 * i + 1]));
}

// Hex value of up to `width` characters from `pos`, as many as the line holds.
std::uint32_t tolerantHex(std::string_view line, std::size_t pos, std::size_t width)
{
    std::uint32_t value = 0;
    for (std::size_t i = pos; i < std::min(line.size(), pos + width); ++i) value = value * 16 + tolerantDigit(line[i]);
    return value;
}

// Digit values with -1 for a non-hex character, for the strict reading.
constexpr std::array<std::int8_t, 256> kStrictDigit = [] {
    std::array<std::int8_t, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(hexDigitOrMinusOne(static_cast<char>(c)));
    return table;
}();

int strictByte(std::string_view line, std::size_t pos)
{
    const int high = kStrictDigit[static_cast<unsigned char>(line[pos])];
    const int low = kStrictDigit[static_cast<unsigned char>(line[pos + 1])];
    return (high | low) < 0 ? -1 : high * 16 + low;
}

std::string quoted(std::string_view text)
{
    std::string shown(text.substr(0, 16));
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7F) c = '?';
    return "\"" + shown + (text.size() > 16 ? "...\"" : "\"");
}

}  // namespace

SRecordError::SRecordError(std::uint64_t line, const std::string& what)
    : std::runtime_error("line " + std::to_string(line) + ": " + what), m_line(line)
{
}

void LineSplitter::keep(std::string_view piece)
{
    m_havePartial = true;
    if (m_partial.size() < kMaxKeptLine)
        m_partial.append(piece.substr(0, kMaxKeptLine - m_partial.size()));
}

void readDesignRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record)
{
    record.bytes.clear();
    record.isData = !(line.starts_with("S00") || line.starts_with("S70"));
    if (!record.isData) return;
    const std::uint32_t countField = tolerantHex(line, 2, 2);
    if (countField < 5)
        throw SRecordError(lineNumber, "count field \"" + std::string(line.substr(std::min<std::size_t>(2, line.size()), 2)) +
                                           "\" is below 5 in " + quoted(line));
    record.address = tolerantHex(line, 4, 8);
    const std::size_t count = countField - 5;
    const std::size_t dataEnd = 12 + 2 * count;
    if (line.size() >= dataEnd) {
        // Decoded on the stack and copied in, which spares the zero fill of a resize:
        // the count field is one byte, so at most 250 data bytes.
        std::uint8_t bytes[256];
        tolerantBytes(line.data() + 12, count, bytes);
        record.bytes.assign(bytes, bytes + count);
    } else {
        record.bytes.resize(count);
        for (std::size_t i = 0; i < count; ++i) record.bytes[i] = static_cast<std::uint8_t>(tolerantHex(line, 12 + 2 * i, 2));
    }
}

void readStrictRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record)
{
    record.bytes.clear();
    record.isData = false;
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    if (line.empty()) return;
    if (line.size() < 4 || line[0] != 'S' || line[1] < '0' || line[1] > '9')
        throw SRecordError(lineNumber, quoted(line) + " is not an S-record");
    const int type = line[1] - '0';
    if (type == 4) throw SRecordError(lineNumber, "S4 is not a Motorola record type");
    const int count = strictByte(line, 2);
    if (count < 0) throw SRecordError(lineNumber, "count " + std::string(line.substr(2, 2)) + " is not hex");
    const std::size_t expectedLength = 4 + 2 * static_cast<std::size_t>(count);
    if (line.size() != expectedLength)
        throw SRecordError(lineNumber, "count " + std::string(line.substr(2, 2)) + " asks for " +
                                           std::to_string(expectedLength) + " characters, the line has " +
                                           std::to_string(line.size()));
    const int addressBytes = type == 2 || type == 8 ? 3 : type == 3 || type == 7 ? 4 : 2;
    if (count < addressBytes + 1)
        throw SRecordError(lineNumber, "count " + std::string(line.substr(2, 2)) + " is too small for S" +
                                           std::to_string(type));
    unsigned sum = static_cast<unsigned>(count);
    std::uint32_t address = 0;
    record.bytes.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count - 1; ++i) {
        int value = strictByte(line, 4 + 2 * static_cast<std::size_t>(i));
        if (value < 0)
            throw SRecordError(lineNumber, "\"" + std::string(line.substr(4 + 2 * static_cast<std::size_t>(i), 2)) +
                                               "\" at character " + std::to_string(5 + 2 * i) + " is not hex");
        sum += static_cast<unsigned>(value);
        if (i < addressBytes) address = (address << 8) | static_cast<std::uint32_t>(value);
        else record.bytes.push_back(static_cast<std::uint8_t>(value));
    }
    const int checksum = strictByte(line, line.size() - 2);
    const unsigned expected = 255 - (sum & 0xFF);
    if (checksum < 0 || static_cast<unsigned>(checksum) != expected)
        throw SRecordError(lineNumber, "checksum " + std::string(line.substr(line.size() - 2)) + " does not match " +
                                           HexPad(expected, 2));
    record.address = address;
    record.isData = type >= 1 && type <= 3;
    if (!record.isData) record.bytes.clear();
}

}  // namespace zevran::image
