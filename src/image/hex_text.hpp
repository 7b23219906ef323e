// Hex-text helpers shared by every subsystem. All hex text is upper-case,
// without a prefix, most significant digit first.
#pragma once

#include "failure.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zevran::image {

// A hex text whose value does not fit a signed 32-bit number.
class HexOverflow : public TypedError<std::overflow_error> {
public:
    explicit HexOverflow(std::string_view text);
};

// "0".."9", "A".."F", "a".."f" give 0..15; anything else (also "" or "AB") gives 0.
std::uint8_t HexDigitValue(std::string_view digit);

// The value of a hex text of any length; non-hex characters count as digit 0.
// Throws HexOverflow when the value exceeds 2147483647.
std::int32_t HexToLong(std::string_view text);

// Same value as HexToLong; kept apart because the converter names it.
std::int32_t HexTextToLong(std::string_view text);

// Upper-case hex of the number (a negative 32-bit value as its two's complement),
// left-padded with "0" to at least `width` characters and never cut.
std::string HexPad(std::uint32_t number, int width);

// The text left-padded with "0" to at least `width` characters.
std::string ZeroPad(std::string_view text, int width);

// A text of exactly two characters read as a hex byte; any other length gives 0.
std::uint8_t HexByteValue(std::string_view text);

// Sum of the four bytes of an address: its share of an S-record checksum.
int AddressByteSum(std::uint32_t address);

// Hex of n / 16 followed by hex of n % 16: two digits for 0..255, unguarded above.
std::string ByteToHex(std::uint32_t n);

// The hex text with which the handset stores a UTF-8 text: a character above
// U+00FF as its UTF-16 code unit(s), four digits each; any other as "A1"
// followed by its Latin-1 byte in unpadded hex (so U+0005 gives "A15").
std::string TextToHexCodes(std::string_view utf8Text);

// Text after the last "/" of a path; "" when there is none.
std::string FileNameOf(std::string_view path);

// Text before the last "/" of a path; "" when there is none.
std::string FolderOf(std::string_view path);

// The value of one hex digit character, or -1 for anything else.
constexpr int hexDigitOrMinusOne(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace zevran::image
