// Hex digit tables shared by the line reader and the block decoders, so that every
// path reads a character the same way.
#pragma once

#include "hex_text.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zevran::image::digits {

// Digit values with a non-hex character as 0, as the handset tool's hex conversion
// always read them. A table, because a data line is 32 digits of random-looking hex
// and the range tests of a branch-per-digit lookup mispredict on them.
inline constexpr std::array<std::uint8_t, 256> kTolerant = [] {
    std::array<std::uint8_t, 256> table{};
    for (int c = 0; c < 256; ++c) {
        const int digit = hexDigitOrMinusOne(static_cast<char>(c));
        table[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(digit < 0 ? 0 : digit);
    }
    return table;
}();

// Digit values with -1 for a non-hex character, for the strict reading.
inline constexpr std::array<std::int8_t, 256> kStrict = [] {
    std::array<std::int8_t, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(hexDigitOrMinusOne(static_cast<char>(c)));
    return table;
}();

inline std::uint32_t tolerantDigit(char c) { return kTolerant[static_cast<unsigned char>(c)]; }

// The byte of the two characters at `at`, high digit first, a non-hex one as 0.
inline std::uint8_t tolerantPair(const char* at)
{
    return static_cast<std::uint8_t>(tolerantDigit(at[0]) << 4 | tolerantDigit(at[1]));
}

// The byte of the two characters at `at`, or -1 when either is not a hex digit.
inline int strictPair(const char* at)
{
    // The table's signed bytes are digit values and -1, numbers rather than characters.
    // NOLINTBEGIN(bugprone-signed-char-misuse)
    const int high = kStrict[static_cast<unsigned char>(at[0])];
    const int low = kStrict[static_cast<unsigned char>(at[1])];
    // NOLINTEND(bugprone-signed-char-misuse)
    return (high | low) < 0 ? -1 : high * 16 + low;
}

}  // namespace zevran::image::digits
