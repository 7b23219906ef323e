#include "hex_text.hpp"

#include <limits>

namespace zevran::image {

namespace {

constexpr char kUpperDigits[] = "0123456789ABCDEF";

std::int32_t hexValueOrThrow(std::string_view text)
{
    // Left to right is the same sum as the right-to-left powers of 16: every term
    // is non-negative, so the total only exceeds the limit when the value does.
    std::uint64_t total = 0;
    for (char c : text) {
        int digit = hexDigitOrMinusOne(c);
        total = total * 16 + static_cast<std::uint64_t>(digit < 0 ? 0 : digit);
        if (total > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) throw HexOverflow(text);
    }
    return static_cast<std::int32_t>(total);
}

// Decodes one UTF-8 sequence at `pos`; a malformed byte stands for itself (as Latin-1).
char32_t nextCodePoint(std::string_view text, std::size_t& pos)
{
    auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char lead = byte(pos);
    int extra = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 && lead < 0xE0 ? 1 : 0;
    if (extra == 0 || pos + static_cast<std::size_t>(extra) >= text.size()) {
        ++pos;
        return lead;
    }
    char32_t cp = lead & (0x3F >> extra);
    for (int i = 1; i <= extra; ++i) {
        unsigned char cont = byte(pos + i);
        if ((cont & 0xC0) != 0x80) {
            ++pos;
            return lead;
        }
        cp = (cp << 6) | (cont & 0x3F);
    }
    pos += static_cast<std::size_t>(extra) + 1;
    return cp;
}

}  // namespace

HexOverflow::HexOverflow(std::string_view text) : TypedError(Reason::HexTooLarge, {std::string(text)}) {}

std::uint8_t HexDigitValue(std::string_view digit)
{
    if (digit.size() != 1) return 0;
    int value = hexDigitOrMinusOne(digit[0]);
    return static_cast<std::uint8_t>(value < 0 ? 0 : value);
}

std::int32_t HexToLong(std::string_view text) { return hexValueOrThrow(text); }

std::int32_t HexTextToLong(std::string_view text) { return hexValueOrThrow(text); }

std::string HexPad(std::uint32_t number, int width)
{
    char digits[8];
    int count = 0;
    do {
        digits[7 - count++] = kUpperDigits[number & 0xF];
        number >>= 4;
    } while (number != 0);
    std::string text;
    if (width > count) text.assign(static_cast<std::size_t>(width - count), '0');
    text.append(digits + 8 - count, digits + 8);
    return text;
}

std::string ZeroPad(std::string_view text, int width)
{
    std::string padded;
    if (width > static_cast<int>(text.size())) padded.assign(static_cast<std::size_t>(width) - text.size(), '0');
    padded.append(text);
    return padded;
}

std::uint8_t HexByteValue(std::string_view text)
{
    if (text.size() != 2) return 0;
    return static_cast<std::uint8_t>(HexDigitValue(text.substr(0, 1)) * 16 + HexDigitValue(text.substr(1, 1)));
}

int AddressByteSum(std::uint32_t address)
{
    return static_cast<int>((address >> 24) + ((address >> 16) & 0xFF) + ((address >> 8) & 0xFF) + (address & 0xFF));
}

std::string ByteToHex(std::uint32_t n) { return HexPad(n / 16, 0) + HexPad(n % 16, 0); }

std::string TextToHexCodes(std::string_view utf8Text)
{
    std::string hex;
    hex.reserve(utf8Text.size() * 4);
    for (std::size_t pos = 0; pos < utf8Text.size();) {
        char32_t cp = nextCodePoint(utf8Text, pos);
        if (cp > 0xFFFF) {
            char32_t v = cp - 0x10000;
            hex += HexPad(0xD800 + (v >> 10), 4);
            hex += HexPad(0xDC00 + (v & 0x3FF), 4);
        } else if (cp > 0xFF) {
            hex += HexPad(cp, 4);
        } else {
            hex += "A1";
            hex += HexPad(cp, 0);
        }
    }
    return hex;
}

std::string FileNameOf(std::string_view path)
{
    auto slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string() : std::string(path.substr(slash + 1));
}

std::string FolderOf(std::string_view path)
{
    auto slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash));
}

}  // namespace zevran::image
