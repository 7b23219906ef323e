#include "byte_text.hpp"

#include "image/byte_search.hpp"
#include "image/hex_text.hpp"
#include "strings/code_page.hpp"

#include <algorithm>

namespace zevran::bytes {

namespace {

// The first UTF-16 unit of a UTF-8 text of one character; 0 for U+FFFD or none.
char16_t firstUnit(std::string_view utf8)
{
    if (utf8.empty()) return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(utf8[i])); };
    unsigned code = 0;
    if (byte(0) < 0x80) code = byte(0);
    else if ((byte(0) & 0xE0) == 0xC0 && utf8.size() >= 2) code = (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
    else if ((byte(0) & 0xF0) == 0xE0 && utf8.size() >= 3)
        code = (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    else return 0;
    return code == 0xFFFD || code > 0xFFFF ? 0 : static_cast<char16_t>(code);
}

bool printable(char16_t unit) { return unit >= 0x20 && unit != 0x7F && !(unit >= 0x80 && unit < 0xA0); }

}  // namespace

std::array<char16_t, 256> singleByteCharacters(std::string_view codePage)
{
    std::array<char16_t, 256> table{};
    for (unsigned byte = 0x20; byte < 0x7F; ++byte) table[byte] = static_cast<char16_t>(byte);
    for (unsigned byte = 0x80; byte < 0x100; ++byte) {
        const char one = static_cast<char>(byte);
        try {
            const char16_t unit = firstUnit(strings::decodeText(std::string_view(&one, 1), codePage));
            table[byte] = printable(unit) ? unit : 0;
        } catch (const std::exception&) {
            table[byte] = 0;  // a code page iconv does not know shows its ASCII only
        }
    }
    return table;
}

CodePageText::CodePageText(std::string codePage)
    : m_codePage(std::move(codePage)), m_single(singleByteCharacters(m_codePage))
{
}

CodePageText::Character CodePageText::at(std::span<const std::uint8_t> bytes, std::size_t i) const
{
    const std::uint8_t lead = bytes[i];
    if (m_single[lead] || lead < 0x81 || i + 1 >= bytes.size()) return {m_single[lead], 1};
    const auto key = static_cast<std::uint16_t>(lead << 8 | bytes[i + 1]);
    auto known = m_pairs.find(key);
    if (known == m_pairs.end()) {
        char16_t unit = 0;
        try {
            const char pair[] = {static_cast<char>(lead), static_cast<char>(bytes[i + 1])};
            const std::string text = strings::decodeText(std::string_view(pair, 2), m_codePage);
            // One character of three UTF-8 bytes, not two replaced bytes or two narrow ones.
            if (text.size() == 3) unit = firstUnit(text);
        } catch (const std::exception&) {
        }
        known = m_pairs.emplace(key, printable(unit) ? unit : 0).first;
    }
    if (!known->second) return {0, 1};
    return {known->second, 2};
}

char16_t handsetCharacter(std::uint8_t high, std::uint8_t low)
{
    // A narrow character is stored as A1 and its Latin-1 byte, as TextToHexCodes writes it.
    if (high == 0xA1) return printable(low) ? static_cast<char16_t>(low) : 0;
    const auto unit = static_cast<char16_t>(high << 8 | low);
    if (unit < 0x100 || (unit >= 0xD800 && unit < 0xE000)) return 0;
    return unit;
}

std::optional<std::vector<std::uint8_t>> patternBytes(std::string_view typed, PatternKind kind,
                                                      std::string_view codePage)
{
    std::string hex;
    if (kind == PatternKind::Hex) {
        std::copy_if(typed.begin(), typed.end(), std::back_inserter(hex), [](char c) { return c != ' '; });
    } else if (!typed.empty()) {
        try {
            if (kind == PatternKind::SingleByte) {
                const std::string bytes = strings::encodeText(typed, codePage);
                return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
            }
            hex = image::TextToHexCodes(typed);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    if (hex.empty() || hex.size() % 2 != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = image::hexDigitOrMinusOne(hex[i]);
        const int low = image::hexDigitOrMinusOne(hex[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    return bytes;
}

std::optional<FoundBytes> findPattern(std::span<const std::uint8_t> image, std::span<const std::uint8_t> pattern,
                                      std::size_t from, bool forward)
{
    std::size_t hit = forward ? image::findBytes(image, pattern, from) : image::findBytesBefore(image, pattern, from);
    if (hit != image::kNotFound) return FoundBytes{hit, false};
    hit = forward ? image::findBytes(image, pattern, 0) : image::findBytesBefore(image, pattern, image.size());
    if (hit == image::kNotFound) return std::nullopt;
    return FoundBytes{hit, true};
}

std::optional<std::size_t> parseAddress(std::string_view typed, std::size_t imageSize)
{
    while (!typed.empty() && typed.front() == ' ') typed.remove_prefix(1);
    while (!typed.empty() && typed.back() == ' ') typed.remove_suffix(1);
    if (typed.size() > 2 && typed[0] == '0' && (typed[1] == 'x' || typed[1] == 'X')) typed.remove_prefix(2);
    if (typed.empty() || typed.size() > 16) return std::nullopt;
    std::size_t address = 0;
    for (char c : typed) {
        const int digit = image::hexDigitOrMinusOne(c);
        if (digit < 0) return std::nullopt;
        address = address << 4 | static_cast<std::size_t>(digit);
    }
    if (address >= imageSize) return std::nullopt;
    return address;
}

}  // namespace zevran::bytes
