// The bytes as text, and text as the bytes to look for: in the handset's single-byte
// code page, or in its two-byte codes (A1 and the Latin-1 byte for a narrow
// character, the UTF-16 unit high byte first for a wide one), as the string search
// stores and finds text.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zevran::bytes {

enum class TextEncoding { SingleByte, HandsetCodes };
enum class PatternKind { Hex, SingleByte, HandsetCodes };

// The character each byte shows as in the code page, as a UTF-16 unit: printable ASCII
// and the code page's own single-byte characters; 0 where the byte is no character
// of its own (a control code, or the lead byte of a two-byte character).
std::array<char16_t, 256> singleByteCharacters(std::string_view codePage);

// The characters of the code page as the text column shows them: one byte each, or
// the lead and trail byte of a two-byte character (GBK stores Chinese so). Pairs are
// decoded the first time they are met and kept, so a repaint asks iconv for few.
class CodePageText {
public:
    explicit CodePageText(std::string codePage = "GBK");

    struct Character {
        char16_t unit = 0;  // 0: no character, shown as a dot
        int bytes = 1;      // 1, or 2 for a two-byte character
    };
    // The character that starts at bytes[i]; a pair is only read whole from `bytes`.
    Character at(std::span<const std::uint8_t> bytes, std::size_t i) const;
    const std::string& codePage() const { return m_codePage; }

private:
    std::string m_codePage;
    std::array<char16_t, 256> m_single{};
    mutable std::unordered_map<std::uint16_t, char16_t> m_pairs;
};

// The character a pair of handset-code bytes shows as; 0 when it is none (a control
// code, a unit below U+0100 not stored so, or an unpaired surrogate).
char16_t handsetCharacter(std::uint8_t high, std::uint8_t low);

// The bytes of what the user typed: hex digits (spaces allowed, an even count), or a
// UTF-8 text in either encoding. None for bad hex, an empty text or a text the code
// page cannot hold.
std::optional<std::vector<std::uint8_t>> patternBytes(std::string_view typed, PatternKind kind,
                                                      std::string_view codePage);

// The first occurrence at or after `from` (forward) or the last that starts before it,
// going round the image's end; none when the image holds it nowhere.
struct FoundBytes {
    std::size_t address = 0;
    bool wrapped = false;  // went round the image's end (or start) to find it
};
std::optional<FoundBytes> findPattern(std::span<const std::uint8_t> image, std::span<const std::uint8_t> pattern,
                                      std::size_t from, bool forward);

// An address typed for "go to": hex with or without "0x"; none when it is not one or
// lies outside an image of `imageSize` bytes.
std::optional<std::size_t> parseAddress(std::string_view typed, std::size_t imageSize);

}  // namespace zevran::bytes
