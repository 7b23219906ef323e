#include "tone_check.hpp"

#include <algorithm>

namespace zevran::tones {

namespace {

std::uint32_t bigEndian32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) | (std::uint32_t{bytes[at + 2]} << 8) |
           bytes[at + 3];
}

// The text of the "ST:" tag in a contents chunk body: five info bytes, then tags
// such as "ST:Title," one after another.
std::string titleOf(std::span<const std::uint8_t> body)
{
    if (body.size() <= 5) return {};
    const std::string_view tags(reinterpret_cast<const char*>(body.data()) + 5, body.size() - 5);
    std::size_t pos = 0;
    while (pos + 3 <= tags.size()) {
        const std::size_t comma = std::min(tags.find(',', pos), tags.size());
        if (tags.substr(pos, 3) == "ST:") return std::string(tags.substr(pos + 3, comma - pos - 3));
        pos = comma + 1;
    }
    return {};
}

}  // namespace

std::uint16_t smafCrc(std::span<const std::uint8_t> bytes)
{
    std::uint16_t crc = 0xFFFF;
    for (std::uint8_t byte : bytes) {
        crc ^= static_cast<std::uint16_t>(byte << 8);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<std::uint16_t>(crc & 0x8000 ? (crc << 1) ^ 0x1021 : crc << 1);
    }
    return static_cast<std::uint16_t>(crc ^ 0xFFFF);
}

ToneCheck checkTone(std::span<const std::uint8_t> tone)
{
    ToneCheck check;
    if (tone.size() < 8) {
        check.crc = CrcState::Bad;
        return check;
    }
    const std::uint64_t end = std::uint64_t{8} + bigEndian32(tone, 4);
    if (end > tone.size()) {
        check.crc = CrcState::Bad;  // the tone is cut short
        return check;
    }
    std::uint64_t pos = 8;
    while (pos + 8 <= end) {
        const std::uint64_t chunkEnd = pos + 8 + bigEndian32(tone, static_cast<std::size_t>(pos) + 4);
        if (chunkEnd > end) break;
        if (pos == 8 && std::equal(tone.begin() + 8, tone.begin() + 12, "CNTI"))
            check.title = titleOf(tone.subspan(16, static_cast<std::size_t>(chunkEnd - 16)));
        pos = chunkEnd;
    }
    if (pos == end) {
        check.crc = CrcState::None;
    } else if (pos + 2 == end) {
        const auto stored = static_cast<std::uint16_t>(tone[pos] << 8 | tone[pos + 1]);
        check.crc = smafCrc(tone.first(static_cast<std::size_t>(pos))) == stored ? CrcState::Ok : CrcState::Bad;
    } else {
        check.crc = CrcState::Bad;
    }
    return check;
}

std::string_view crcStateName(CrcState state)
{
    switch (state) {
    case CrcState::Ok: return "ok";
    case CrcState::Bad: return "bad";
    case CrcState::None: return "none";
    }
    return "none";
}

}  // namespace zevran::tones
