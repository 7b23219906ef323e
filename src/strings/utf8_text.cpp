#include "utf8_text.hpp"

namespace zevran::strings {

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

char32_t nextCodePoint(std::string_view text, std::size_t& pos)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    std::size_t length = 0;
    char32_t cp = 0;
    char32_t least = 0;
    if (lead < 0x80) {
        ++pos;
        return lead;
    } else if (lead >= 0xC2 && lead < 0xE0) {
        length = 2, cp = lead & 0x1F, least = 0x80;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        length = 3, cp = lead & 0x0F, least = 0x800;
    } else if (lead >= 0xF0 && lead < 0xF5) {
        length = 4, cp = lead & 0x07, least = 0x10000;
    } else {
        ++pos;
        return kReplacementCharacter;
    }
    if (pos + length > text.size()) {
        ++pos;
        return kReplacementCharacter;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[pos + i]);
        if ((next & 0xC0) != 0x80) {
            ++pos;
            return kReplacementCharacter;
        }
        cp = (cp << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not characters.
    if (cp < least || cp > 0x10FFFF || (cp >= 0xD800 && cp < 0xE000)) {
        ++pos;
        return kReplacementCharacter;
    }
    pos += length;
    return cp;
}

bool isValidUtf8(std::string_view text)
{
    for (std::size_t pos = 0; pos < text.size();) {
        const std::size_t before = pos;
        if (nextCodePoint(text, pos) == kReplacementCharacter && text.substr(before, 3) != "\xEF\xBF\xBD") return false;
    }
    return true;
}

}  // namespace zevran::strings
