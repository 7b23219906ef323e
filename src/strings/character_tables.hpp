// Lookup tables for reading and writing the handset's text quickly: every character
// of a one- or two-byte code page with its bytes, and how plausible a character is in
// a menu text. Built once per code page (through iconv) and kept for the whole run.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zevran::strings {

// How a character counts towards a string being real text. Letters, digits, the usual
// punctuation and the 3755 most common Chinese characters (GB2312 level 1) are
// `Common`; other printable characters are `Rare`; controls, private-use and
// unassigned characters are `NotText`.
enum class CharacterClass : std::uint8_t { NotText, Rare, Common };

CharacterClass classOf(char32_t codePoint);

// One code page's characters of one or two bytes (a two-byte character is stored high
// byte first). Code pages of three- or four-byte sequences are read for their one- and
// two-byte characters only.
struct CodePageTable {
    std::string name;
    std::array<char32_t, 256> single{};  // the character of one byte; 0 where none
    std::array<bool, 256> lead{};        // the byte starts a two-byte character
    std::vector<char32_t> pair;          // [lead << 8 | trail]: the character, 0 where none
    std::array<CharacterClass, 256> singleClass{};
    std::vector<CharacterClass> pairClass;
    std::unordered_map<char32_t, std::uint16_t> codes;  // character -> bytes, one or two (high byte first)

    // The bytes of one character, or nullopt when the code page has none for it.
    std::optional<std::string> encode(char32_t codePoint) const;
};

// The table of `codePage`, built on first use. Throws CodePageError for a code page
// iconv does not know.
const CodePageTable& codePageTable(std::string_view codePage);

// The handset's two-byte codes: A1 followed by a byte for U+0020..U+00FF, otherwise
// the UTF-16 unit, high byte first. A unit whose high byte is zero ends a string.
// The character of a unit as text finding accepts it (0 where it does not).
char32_t handsetUnitCharacter(std::uint16_t unit);
// The class of each unit as text finding sees it, indexed by the unit.
const std::vector<CharacterClass>& handsetUnitClasses();

// The handset bytes of one character: two, or four for a character past U+FFFF; nullopt
// for a control character, U+0000, and U+A100..U+A1FF (which the handset would read as
// A1 followed by a Latin-1 byte).
std::optional<std::string> encodeHandsetCharacter(char32_t codePoint);

}  // namespace zevran::strings
