// The input as one tone's bytes from its "MMMD" on: the check must read only inside
// them, and the title it finds must decode to valid UTF-8 in whatever code type the
// contents chunk names. The first byte also picks a code type for a direct decode of
// the rest, so every decoder (HZ's rewrite included) sees arbitrary bytes.
#include "tones/tone_check.hpp"
#include "tones/tone_title.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace zevran::tones;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "tone_check_fuzz: %s\n", what);
    std::abort();
}

// True when `text` is well-formed UTF-8 (no overlong forms, surrogates or values past 10FFFF).
bool isUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80                   ? 1
                                   : lead >= 0xC2 && lead < 0xE0 ? 2
                                   : lead >= 0xE0 && lead < 0xF0 ? 3
                                   : lead >= 0xF0 && lead < 0xF5 ? 4
                                                                 : 0;
        if (length == 0 || i + length > text.size()) return false;
        std::uint32_t value = length == 1 ? lead : lead & (0x7F >> length);
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) return false;
            value = value << 6 | (next & 0x3F);
        }
        if ((length == 3 && value < 0x800) || (length == 4 && (value < 0x10000 || value > 0x10FFFF)) ||
            (value >= 0xD800 && value <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

// Bytes that are no text: a UTF-16 byte-order mark alone, HZ's shifts and joined lines.
bool mayBeNoText(std::string_view stored, std::uint8_t codeType)
{
    if (codeType == static_cast<std::uint8_t>(ToneCodeType::HzGb2312)) return true;
    return codeType == static_cast<std::uint8_t>(ToneCodeType::Utf16) && (stored == "\xFF\xFE" || stored == "\xFE\xFF");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ToneCheck check = checkTone(std::span(data, size));
    if (!isUtf8(check.title)) fail("a tone's title is not UTF-8");
    if (check.storedTitle.empty() != check.title.empty() && !mayBeNoText(check.storedTitle, check.codeType))
        fail("a stored title decoded to nothing, or nothing to a title");
    if (size > 0) {
        const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
        const std::string decoded = decodeToneTitle(rest, data[0]);
        if (!isUtf8(decoded)) fail("a decoded title is not UTF-8");
        if (!rest.empty() && decoded.empty() && !mayBeNoText(rest, data[0])) fail("bytes decoded to nothing");
    }
    return 0;
}
