#include "string_search.hpp"
#include "utf8_text.hpp"

#include "image/hex_text.hpp"

#include <cstring>

namespace zevran::strings {

using namespace zevran::image;

std::string searchPattern(std::string_view utf8Text, bool handsetCodes, std::string_view codePage)
{
    if (handsetCodes) return TextToHexCodes(utf8Text);
    std::string hex;
    for (const std::string& character : encodeCharacters(utf8Text, codePage)) {
        std::uint32_t code = 0;
        for (unsigned char byte : character) code = (code << 8) | byte;
        hex += HexPad(code, 0);
    }
    return hex;
}

std::optional<StringHit> findNextString(ImageState& state, std::string_view hexPattern, bool handsetCodes,
                                        int& passCount)
{
    const auto& image = state.FirmwareImage;
    for (;;) {
        if (state.LastMatch == 0) passCount = 0;
        if (!FindHexInImage(state, hexPattern)) return std::nullopt;
        ++passCount;
        const auto start = static_cast<std::size_t>(state.SearchStart);
        const void* zero = std::memchr(image.data() + start, 0, image.size() - start);
        if (!zero) continue;  // no terminating zero before the image's end: not a stored string
        const auto end = static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - image.data());
        const std::size_t bytes = end - start;
        StringHit hit;
        hit.start = start;
        hit.end = end;
        hit.foundStart = HexPad(static_cast<std::uint32_t>(start), 8);
        hit.foundEnd = HexPad(static_cast<std::uint32_t>(end) - 1, 8);
        if (handsetCodes) {
            // Two bytes a character; an odd count shows as a half character.
            hit.foundLength = std::to_string(bytes / 2) + (bytes % 2 ? ".5" : "");
            // Half-way rounds to even, as the text box's limit was always set.
            hit.maxLength = static_cast<int>(bytes / 2 + ((bytes % 2) && ((bytes / 2) % 2) ? 1 : 0));
        } else {
            hit.foundLength = std::to_string(bytes);
            hit.maxLength = static_cast<int>(bytes);
        }
        return hit;
    }
}


std::string storedText(std::span<const std::uint8_t> bytes, bool handsetCodes, std::string_view codePage)
{
    if (!handsetCodes)
        return decodeText(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), codePage);
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const char32_t unit = static_cast<char32_t>(bytes[i] << 8 | bytes[i + 1]);
        if (bytes[i] == 0xA1) {
            appendUtf8(text, bytes[i + 1]);
        } else if (unit >= 0xD800 && unit < 0xDC00 && i + 3 < bytes.size() && bytes[i + 2] >= 0xDC &&
                   bytes[i + 2] < 0xE0) {
            const char32_t low = static_cast<char32_t>(bytes[i + 2] << 8 | bytes[i + 3]);
            appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            i += 2;
        } else if (unit >= 0xD800 && unit < 0xE000) {
            appendUtf8(text, 0xFFFD);  // a half of a pair on its own
        } else {
            appendUtf8(text, unit);
        }
    }
    return text;
}

}  // namespace zevran::strings
