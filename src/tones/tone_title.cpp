#include "tone_title.hpp"

#include "strings/utf8_text.hpp"

#include <algorithm>
#include <cerrno>
#include <iconv.h>

namespace zevran::tones {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD in UTF-8

// iconv's name for each code type; glibc has no HZ, which is rewritten as EUC-CN first.
const char* iconvName(std::uint8_t codeType)
{
    switch (static_cast<ToneCodeType>(codeType)) {
    case ToneCodeType::ShiftJis: return "SHIFT_JIS";
    case ToneCodeType::Latin1: return "ISO-8859-1";
    case ToneCodeType::EucKr: return "EUC-KR";
    case ToneCodeType::HzGb2312: return "EUC-CN";
    case ToneCodeType::Big5: return "BIG5";
    case ToneCodeType::Koi8R: return "KOI8-R";
    case ToneCodeType::Ucs2: return "UCS-2BE";
    case ToneCodeType::Utf8: return "UTF-8";
    case ToneCodeType::Utf16: return "UTF-16BE";
    }
    return "ASCII";
}

// HZ (RFC 1843) is 7-bit: "~{" starts GB 2312 pairs, "~}" ends them, "~~" is "~" and
// "~" before a line end joins lines. Each pair with its high bits set is EUC-CN. A
// sequence HZ does not allow becomes the byte FF, which no EUC-CN decoder accepts.
std::string hzAsEucCn(std::string_view hz)
{
    std::string out;
    bool pairs = false;
    for (std::size_t i = 0; i < hz.size(); ++i) {
        const auto byte = static_cast<unsigned char>(hz[i]);
        const bool tilde = byte == '~' && i + 1 < hz.size();
        if (tilde && !pairs && hz[i + 1] == '~') {
            out += '~';
            ++i;
        } else if (tilde && !pairs && hz[i + 1] == '\n') {
            ++i;
        } else if (tilde && hz[i + 1] == (pairs ? '}' : '{')) {
            pairs = !pairs;
            ++i;
        } else if (!pairs) {
            out += byte < 0x80 ? static_cast<char>(byte) : '\xFF';
        } else if (i + 1 < hz.size() && byte >= 0x21 && byte <= 0x7E && static_cast<unsigned char>(hz[i + 1]) >= 0x21 &&
                   static_cast<unsigned char>(hz[i + 1]) <= 0x7E) {
            out += static_cast<char>(byte | 0x80);
            out += static_cast<char>(static_cast<unsigned char>(hz[++i]) | 0x80);
        } else {
            out += '\xFF';
        }
    }
    return out;
}

class Iconv {
public:
    explicit Iconv(const char* from) : m_handle(::iconv_open("UTF-8", from)) {}
    ~Iconv()
    {
        if (valid()) ::iconv_close(m_handle);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open fails with (iconv_t)-1.
    bool valid() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
    iconv_t handle() const { return m_handle; }

private:
    iconv_t m_handle;
};

// Decodes `in` as far as it goes, marking each unit that does not decode with U+FFFD.
std::string decodeMarking(std::string_view in, const char* from, std::size_t unit)
{
    Iconv converter(from);
    std::string out;
    if (!converter.valid()) {
        for (std::size_t i = 0; i < in.size(); i += unit) out += kReplacement;
        return out;
    }
    char* input = const_cast<char*>(in.data());
    std::size_t inputLeft = in.size();
    char buffer[256];
    while (inputLeft > 0) {
        char* output = buffer;
        std::size_t outputLeft = sizeof buffer;
        const std::size_t result = ::iconv(converter.handle(), &input, &inputLeft, &output, &outputLeft);
        const int error = errno;
        out.append(buffer, static_cast<std::size_t>(output - buffer));
        if (result != static_cast<std::size_t>(-1) || error == E2BIG) continue;
        out += kReplacement;
        if (error == EINVAL) break;  // a character cut short by the title's end
        const std::size_t skip = std::min(unit, inputLeft);
        input += skip;
        inputLeft -= skip;
        ::iconv(converter.handle(), nullptr, nullptr, nullptr, nullptr);
    }
    return out;
}

}  // namespace

bool isTwoByteCodeType(std::uint8_t codeType)
{
    return codeType == static_cast<std::uint8_t>(ToneCodeType::Ucs2) ||
           codeType == static_cast<std::uint8_t>(ToneCodeType::Utf16);
}

std::string decodeToneTitle(std::string_view stored, std::uint8_t codeType)
{
    // iconv passes UTF-8 to UTF-8 through unchecked: each byte that starts no
    // well-formed character is marked here instead.
    if (codeType == static_cast<std::uint8_t>(ToneCodeType::Utf8)) {
        std::string out;
        for (std::size_t pos = 0; pos < stored.size();) strings::appendUtf8(out, strings::nextCodePoint(stored, pos));
        return out;
    }
    const std::size_t unit = isTwoByteCodeType(codeType) ? 2 : 1;
    if (codeType == static_cast<std::uint8_t>(ToneCodeType::HzGb2312))
        return decodeMarking(hzAsEucCn(stored), iconvName(codeType), unit);
    // UTF-16 is big-endian unless a byte-order mark says otherwise; the mark is no text.
    if (codeType == static_cast<std::uint8_t>(ToneCodeType::Utf16) && stored.size() >= 2) {
        if (stored.starts_with("\xFF\xFE")) return decodeMarking(stored.substr(2), "UTF-16LE", unit);
        if (stored.starts_with("\xFE\xFF")) return decodeMarking(stored.substr(2), "UTF-16BE", unit);
    }
    return decodeMarking(stored, iconvName(codeType), unit);
}

}  // namespace zevran::tones
