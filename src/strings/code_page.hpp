// The handset's single-byte code page (GBK by default): a character outside ASCII may
// take two bytes, high byte first, as the handset stores it. Converted with iconv.
#pragma once

#include "image/failure.hpp"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::strings {

inline constexpr std::string_view kDefaultCodePage = "GBK";

// A text that the code page cannot hold, or a code page iconv does not know.
class CodePageError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

// The code-page bytes of each character of a UTF-8 text, one entry per character.
std::vector<std::string> encodeCharacters(std::string_view utf8Text, std::string_view codePage = kDefaultCodePage);

// The code-page bytes of a whole UTF-8 text.
std::string encodeText(std::string_view utf8Text, std::string_view codePage = kDefaultCodePage);

// UTF-8 of code-page bytes; bytes that do not decode become U+FFFD.
std::string decodeText(std::string_view bytes, std::string_view codePage = kDefaultCodePage);

// Number of characters of a UTF-8 text.
std::size_t characterCount(std::string_view utf8Text);

}  // namespace zevran::strings
