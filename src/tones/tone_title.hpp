// A tone's title as text: SMAF stores it in the code its contents chunk names (byte 2
// of CNTI), and the workshop shows it as UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zevran::tones {

// The SMAF content code types the workshop reads; any other value reads as ASCII.
enum class ToneCodeType : std::uint8_t {
    ShiftJis = 0x00,
    Latin1 = 0x01,  // ISO-8859-1
    EucKr = 0x02,
    HzGb2312 = 0x03,
    Big5 = 0x04,
    Koi8R = 0x05,
    Ucs2 = 0x20,
    Utf8 = 0x23,
    Utf16 = 0x24,
};

// True for the code types whose characters take two bytes each (UCS-2, UTF-16).
bool isTwoByteCodeType(std::uint8_t codeType);

// The stored title bytes as UTF-8, decoded through iconv by `codeType`. A byte (or a
// two-byte unit of UCS-2 and UTF-16) that does not decode shows as U+FFFD, and so does
// a character cut short at the end: nothing is dropped without a mark.
std::string decodeToneTitle(std::string_view stored, std::uint8_t codeType);

}  // namespace zevran::tones
