#include "code_page.hpp"

#include <cerrno>
#include <iconv.h>
#include <memory>

namespace zevran::strings {

namespace {

class Converter {
public:
    Converter(std::string_view to, std::string_view from)
        : m_handle(::iconv_open(std::string(to).c_str(), std::string(from).c_str()))
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open fails with (iconv_t)-1.
        if (m_handle == reinterpret_cast<iconv_t>(-1))
            throw CodePageError(image::Reason::CodePageUnknown, {std::string(from == "UTF-8" ? to : from)});
    }
    ~Converter() { ::iconv_close(m_handle); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // Converts all of `input`; returns false at the first sequence that cannot be converted.
    bool convert(std::string_view input, std::string& output, std::size_t& consumed)
    {
        ::iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(input.data());
        std::size_t inLeft = input.size();
        char buffer[256];
        while (inLeft > 0) {
            char* out = buffer;
            std::size_t outLeft = sizeof buffer;
            const std::size_t result = ::iconv(m_handle, &in, &inLeft, &out, &outLeft);
            output.append(buffer, static_cast<std::size_t>(out - buffer));
            if (result == static_cast<std::size_t>(-1) && errno != E2BIG) {
                consumed = input.size() - inLeft;
                return false;
            }
        }
        consumed = input.size();
        return true;
    }

private:
    iconv_t m_handle;
};

std::size_t sequenceLength(unsigned char lead) { return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1; }

}  // namespace

std::size_t characterCount(std::string_view utf8Text)
{
    std::size_t count = 0;
    for (unsigned char c : utf8Text)
        if ((c & 0xC0) != 0x80) ++count;
    return count;
}

std::vector<std::string> encodeCharacters(std::string_view utf8Text, std::string_view codePage)
{
    Converter converter(codePage, "UTF-8");
    std::vector<std::string> characters;
    for (std::size_t pos = 0; pos < utf8Text.size();) {
        const std::size_t length =
            std::min(sequenceLength(static_cast<unsigned char>(utf8Text[pos])), utf8Text.size() - pos);
        const std::string_view character = utf8Text.substr(pos, length);
        std::string bytes;
        std::size_t consumed = 0;
        if (!converter.convert(character, bytes, consumed))
            throw CodePageError(image::Reason::NotInCodePage, {std::string(character), std::string(codePage)});
        characters.push_back(std::move(bytes));
        pos += length;
    }
    return characters;
}

std::string encodeText(std::string_view utf8Text, std::string_view codePage)
{
    std::string bytes;
    for (const std::string& character : encodeCharacters(utf8Text, codePage)) bytes += character;
    return bytes;
}

std::string decodeText(std::string_view bytes, std::string_view codePage)
{
    Converter converter("UTF-8", codePage);
    std::string text;
    while (!bytes.empty()) {
        std::size_t consumed = 0;
        if (converter.convert(bytes, text, consumed)) break;
        text += "\xEF\xBF\xBD";
        bytes.remove_prefix(consumed + 1);
    }
    return text;
}

}  // namespace zevran::strings
