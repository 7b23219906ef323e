// UTF-8 in and out, one code point at a time, for the texts the string tables hold.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zevran::strings {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

void appendUtf8(std::string& out, char32_t codePoint);

// The code point at `pos`, and `pos` moved past it. A byte that starts no valid
// sequence reads as U+FFFD and moves `pos` by one, so every input ends.
char32_t nextCodePoint(std::string_view text, std::size_t& pos);

// True when the text holds only well-formed UTF-8.
bool isValidUtf8(std::string_view text);

}  // namespace zevran::strings
