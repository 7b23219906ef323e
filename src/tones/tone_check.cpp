#include "tone_check.hpp"

#include "tone_title.hpp"

#include <algorithm>
#include <optional>

namespace zevran::tones {

namespace {

std::uint32_t bigEndian32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
           (std::uint32_t{bytes[at + 2]} << 8) | bytes[at + 3];
}

std::uint16_t bigEndian16(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

// Where a tag's data ends: at its comma. Characters of two bytes may hold a 2C byte
// of their own, so there only a 2C at an even distance from the data's start ends it.
std::size_t tagDataEnd(std::string_view tags, std::size_t data, bool twoByte)
{
    std::size_t comma = tags.find(',', data);
    while (twoByte && comma != std::string_view::npos && (comma - data) % 2 != 0) comma = tags.find(',', comma + 1);
    return std::min(comma, tags.size());
}

// The bytes of the "ST:" tag in a contents chunk body: five info bytes (the third
// is the code type), then tags such as "ST:Title," one after another.
std::optional<std::string> contentsTitle(std::span<const std::uint8_t> body)
{
    if (body.size() <= 5) return std::nullopt;
    const bool twoByte = isTwoByteCodeType(body[2]);
    const std::string_view tags(reinterpret_cast<const char*>(body.data()) + 5, body.size() - 5);
    std::size_t pos = 0;
    while (pos + 3 <= tags.size()) {
        const std::size_t end = tagDataEnd(tags, pos + 3, twoByte);
        if (tags.substr(pos, 3) == "ST:") return std::string(tags.substr(pos + 3, end - pos - 3));
        pos = end + 1;
    }
    return std::nullopt;
}

// The "ST" item of the optional-data chunk's body: data chunks "Dch" + one byte, each
// holding items of a two-letter tag, a big-endian 16-bit size and that many bytes.
std::optional<std::string> optionalDataTitle(std::span<const std::uint8_t> body)
{
    std::size_t chunk = 0;
    while (chunk + 8 <= body.size()) {
        const std::uint64_t chunkEnd = std::uint64_t{chunk} + 8 + bigEndian32(body, chunk + 4);
        if (chunkEnd > body.size()) return std::nullopt;
        if (std::equal(body.begin() + static_cast<std::ptrdiff_t>(chunk),
                       body.begin() + static_cast<std::ptrdiff_t>(chunk) + 3, "Dch")) {
            std::size_t item = chunk + 8;
            while (item + 4 <= chunkEnd) {
                const std::size_t itemEnd = item + 4 + bigEndian16(body, item + 2);
                if (itemEnd > chunkEnd) break;
                if (body[item] == 'S' && body[item + 1] == 'T')
                    return std::string(reinterpret_cast<const char*>(body.data()) + item + 4, itemEnd - item - 4);
                item = itemEnd;
            }
        }
        chunk = static_cast<std::size_t>(chunkEnd);
    }
    return std::nullopt;
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
    std::optional<std::string> contents;
    std::optional<std::string> optionalData;
    std::uint64_t pos = 8;
    while (pos + 8 <= end) {
        const std::uint64_t chunkEnd = pos + 8 + bigEndian32(tone, static_cast<std::size_t>(pos) + 4);
        if (chunkEnd > end) break;
        const auto body = tone.subspan(static_cast<std::size_t>(pos) + 8, static_cast<std::size_t>(chunkEnd - pos - 8));
        const auto tag = tone.begin() + static_cast<std::ptrdiff_t>(pos);
        if (pos == 8 && std::equal(tag, tag + 4, "CNTI")) {
            contents = contentsTitle(body);
            if (body.size() > 2) check.codeType = body[2];
        } else if (std::equal(tag, tag + 4, "OPDA") && !optionalData) {
            optionalData = optionalDataTitle(body);
        }
        pos = chunkEnd;
    }
    check.storedTitle = contents ? *contents : optionalData.value_or("");
    check.title = decodeToneTitle(check.storedTitle, check.codeType);
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
