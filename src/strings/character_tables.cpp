#include "character_tables.hpp"

#include "code_page.hpp"

#include <cerrno>
#include <iconv.h>
#include <map>
#include <memory>
#include <mutex>

namespace zevran::strings {

namespace {

// Converts one short byte sequence to a single code point through iconv; 0 when the
// bytes are not exactly one character. `incomplete` tells a sequence that needs more bytes.
class CharacterReader {
public:
    explicit CharacterReader(std::string_view codePage)
        : m_handle(::iconv_open("UTF-32BE", std::string(codePage).c_str()))
    {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open fails with (iconv_t)-1.
        if (m_handle == reinterpret_cast<iconv_t>(-1))
            throw CodePageError("the code page " + std::string(codePage) + " is not known");
    }
    ~CharacterReader() { ::iconv_close(m_handle); }
    CharacterReader(const CharacterReader&) = delete;
    CharacterReader& operator=(const CharacterReader&) = delete;

    char32_t read(const unsigned char* bytes, std::size_t count, bool& incomplete)
    {
        ::iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        char input[2] = {static_cast<char>(bytes[0]), count > 1 ? static_cast<char>(bytes[1]) : '\0'};
        char* in = input;
        std::size_t inLeft = count;
        unsigned char output[16];
        char* out = reinterpret_cast<char*>(output);
        std::size_t outLeft = sizeof output;
        const std::size_t result = ::iconv(m_handle, &in, &inLeft, &out, &outLeft);
        incomplete = result == static_cast<std::size_t>(-1) && errno == EINVAL;
        if (result == static_cast<std::size_t>(-1) || inLeft != 0 || sizeof output - outLeft != 4) return 0;
        return static_cast<char32_t>(output[0] << 24 | output[1] << 16 | output[2] << 8 | output[3]);
    }

private:
    iconv_t m_handle;
};

bool isPrivateUse(char32_t cp) { return cp >= 0xE000 && cp < 0xF900; }

// The 3755 characters of GB2312 level 1 (rows B0..D7): the common ones of Chinese menus.
const std::vector<bool>& commonChinese()
{
    static const std::vector<bool> common = [] {
        std::vector<bool> table(0x10000, false);
        CharacterReader reader("GB2312");
        bool incomplete = false;
        for (unsigned lead = 0xB0; lead <= 0xD7; ++lead)
            for (unsigned trail = 0xA1; trail <= 0xFE; ++trail) {
                const unsigned char bytes[2] = {static_cast<unsigned char>(lead), static_cast<unsigned char>(trail)};
                if (const char32_t cp = reader.read(bytes, 2, incomplete); cp && cp < 0x10000) table[cp] = true;
            }
        return table;
    }();
    return common;
}

bool isCommonPunctuation(char32_t cp)
{
    static constexpr std::u32string_view kPunctuation = U" .,:;!?'\"-()/%&+";
    return kPunctuation.find(cp) != std::u32string_view::npos;
}

// Scripts a handset menu is written in; other units are not taken as text when finding.
bool isHandsetScript(char32_t cp)
{
    return (cp >= 0x0100 && cp < 0x0530) || (cp >= 0x0590 && cp < 0x0700) || (cp >= 0x0E00 && cp < 0x0E80) ||
           (cp >= 0x1E00 && cp < 0x1F00) || (cp >= 0x2000 && cp < 0x27C0) || (cp >= 0x3000 && cp < 0x3100) ||
           (cp >= 0x4E00 && cp < 0xA000) || (cp >= 0xAC00 && cp < 0xD7A4) || (cp >= 0xFF00 && cp < 0xFFF0);
}

void fillClasses(CodePageTable& table)
{
    for (int b = 0; b < 256; ++b)
        table.singleClass[b] = table.single[b] ? classOf(table.single[b]) : CharacterClass::NotText;
    table.pairClass.assign(0x10000, CharacterClass::NotText);
    for (std::size_t i = 0; i < table.pair.size(); ++i)
        if (table.pair[i]) table.pairClass[i] = classOf(table.pair[i]);
}

std::unique_ptr<CodePageTable> buildTable(std::string_view codePage)
{
    auto table = std::make_unique<CodePageTable>();
    table->name = std::string(codePage);
    table->pair.assign(0x10000, 0);
    CharacterReader reader(codePage);
    bool incomplete = false;
    for (unsigned b = 1; b < 256; ++b) {
        const auto byte = static_cast<unsigned char>(b);
        table->single[b] = reader.read(&byte, 1, incomplete);
        table->lead[b] = !table->single[b] && incomplete;
        if (table->single[b]) table->codes.emplace(table->single[b], static_cast<std::uint16_t>(b));
    }
    for (unsigned lead = 1; lead < 256; ++lead) {
        if (!table->lead[lead]) continue;
        for (unsigned trail = 1; trail < 256; ++trail) {
            const unsigned char bytes[2] = {static_cast<unsigned char>(lead), static_cast<unsigned char>(trail)};
            const char32_t cp = reader.read(bytes, 2, incomplete);
            if (!cp) continue;
            table->pair[lead << 8 | trail] = cp;
            table->codes.emplace(cp, static_cast<std::uint16_t>(lead << 8 | trail));
        }
    }
    fillClasses(*table);
    return table;
}

}  // namespace

CharacterClass classOf(char32_t cp)
{
    if (cp == '\t' || cp == '\n') return CharacterClass::Rare;
    if (cp < 0x20 || (cp >= 0x7F && cp < 0xA0) || isPrivateUse(cp) || cp >= 0xFFF0 || (cp >= 0xD800 && cp < 0xE000))
        return CharacterClass::NotText;
    if ((cp >= '0' && cp <= '9') || (cp >= 'A' && cp <= 'Z') || (cp >= 'a' && cp <= 'z') || isCommonPunctuation(cp))
        return CharacterClass::Common;
    if (cp >= 0xC0 && cp <= 0xFF && cp != 0xD7 && cp != 0xF7) return CharacterClass::Common;  // Latin-1 letters
    if (cp < 0x10000 && commonChinese()[cp]) return CharacterClass::Common;
    if ((cp >= 0x3001 && cp <= 0x3011) || (cp >= 0xFF01 && cp <= 0xFF1F))
        return CharacterClass::Common;  // 、。「」，：？
    return CharacterClass::Rare;
}

std::optional<std::string> CodePageTable::encode(char32_t cp) const
{
    const auto found = codes.find(cp);
    if (found == codes.end()) return std::nullopt;
    if (found->second < 0x100) return std::string(1, static_cast<char>(found->second));
    return std::string{static_cast<char>(found->second >> 8), static_cast<char>(found->second & 0xFF)};
}

const CodePageTable& codePageTable(std::string_view codePage)
{
    static std::mutex guard;
    static std::map<std::string, std::unique_ptr<CodePageTable>, std::less<>> tables;
    std::lock_guard lock(guard);
    auto found = tables.find(codePage);
    if (found == tables.end()) found = tables.emplace(std::string(codePage), buildTable(codePage)).first;
    return *found->second;
}

char32_t handsetUnitCharacter(std::uint16_t unit)
{
    const unsigned high = unit >> 8;
    const unsigned low = unit & 0xFF;
    if (high == 0xA1) return (low >= 0x20 && low < 0x7F) || low >= 0xA0 ? low : 0;
    return isHandsetScript(unit) ? unit : 0;
}

const std::vector<CharacterClass>& handsetUnitClasses()
{
    static const std::vector<CharacterClass> classes = [] {
        std::vector<CharacterClass> table(0x10000, CharacterClass::NotText);
        for (unsigned unit = 0x100; unit < 0x10000; ++unit)
            if (const char32_t cp = handsetUnitCharacter(static_cast<std::uint16_t>(unit))) table[unit] = classOf(cp);
        return table;
    }();
    return classes;
}

std::optional<std::string> encodeHandsetCharacter(char32_t cp)
{
    if (cp < 0x20 || (cp >= 0x7F && cp < 0xA0) || (cp >= 0xA100 && cp < 0xA200) || (cp >= 0xD800 && cp < 0xE000) ||
        cp > 0x10FFFF)
        return std::nullopt;
    if (cp <= 0xFF) return std::string{'\xA1', static_cast<char>(cp)};
    const auto unitBytes = [](char32_t unit) {
        return std::string{static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    };
    if (cp < 0x10000) return unitBytes(cp);
    const char32_t offset = cp - 0x10000;
    return unitBytes(0xD800 + (offset >> 10)) + unitBytes(0xDC00 + (offset & 0x3FF));
}

}  // namespace zevran::strings
