// Checking a found tone: whether the CRC that ends its SMAF body matches, and the
// title its contents chunk carries. Neither touches the tone list's cells.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zevran::tones {

// CRC-16 with polynomial 0x1021, initial value 0xFFFF, not reflected, result XORed
// with 0xFFFF: the check of a SMAF file. "123456789" gives 0xD64E.
std::uint16_t smafCrc(std::span<const std::uint8_t> bytes);

enum class CrcState { Ok, Bad, None };

struct ToneCheck {
    CrcState crc = CrcState::None;
    std::string storedTitle;    // the title's bytes as stored; "" when absent
    std::uint8_t codeType = 0;  // the contents chunk's code type (see tone_title.hpp)
    std::string title;          // storedTitle decoded by codeType, as UTF-8
};

// Checks the bytes of one tone, from its "MMMD" signature on. A body whose chunks
// fill it exactly carries no CRC; one with two bytes left after its chunks ends in
// the CRC (big-endian) of everything before them; any other layout is damaged (Bad).
// The title is the contents chunk's "ST:" tag, else the "ST" item of a "Dch" data
// chunk inside the optional-data chunk "OPDA", where some tones keep it.
ToneCheck checkTone(std::span<const std::uint8_t> tone);

std::string_view crcStateName(CrcState state);

}  // namespace zevran::tones
