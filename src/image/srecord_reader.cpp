#include "srecord_reader.hpp"

#include "hex_text.hpp"
#include "srecord_digits.hpp"

#include <algorithm>

namespace zevran::image {

namespace {

using digits::tolerantDigit;

// `count` bytes from the 2 * count hex characters at `digitText`, a non-hex character
// as 0. The converter hands lines of the common form to the block decoders
// (srecord_block.hpp), so this path is that of the rare ones.
void tolerantBytes(const char* digitText, std::size_t count, std::uint8_t* bytes)
{
    for (std::size_t i = 0; i < count; ++i) bytes[i] = digits::tolerantPair(digitText + 2 * i);
}

// Hex value of up to `width` characters from `pos`, as many as the line holds.
std::uint32_t tolerantHex(std::string_view line, std::size_t pos, std::size_t width)
{
    std::uint32_t value = 0;
    for (std::size_t i = pos; i < std::min(line.size(), pos + width); ++i) value = value * 16 + tolerantDigit(line[i]);
    return value;
}

int strictByte(std::string_view line, std::size_t pos) { return digits::strictPair(line.data() + pos); }

std::string quoted(std::string_view text)
{
    std::string shown(text.substr(0, 16));
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7F) c = '?';
    return "\"" + shown + (text.size() > 16 ? "...\"" : "\"");
}

}  // namespace

SRecordError::SRecordError(std::uint64_t line, Reason reason, std::vector<std::string> values)
    : WorkshopError(Reason::OnLine, {std::to_string(line)}, Failure{reason, std::move(values), nullptr}), m_line(line)
{
}

SRecordError::SRecordError(std::uint64_t line, const std::string& what) : SRecordError(line, Reason::Text, {what}) {}

void LineSplitter::keep(std::string_view piece)
{
    m_havePartial = true;
    if (m_partial.size() < kMaxKeptLine) m_partial.append(piece.substr(0, kMaxKeptLine - m_partial.size()));
}

void readDesignRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record)
{
    record.bytes.clear();
    record.isData = !(line.starts_with("S00") || line.starts_with("S70"));
    if (!record.isData) return;
    const std::uint32_t countField = tolerantHex(line, 2, 2);
    if (countField < 5)
        throw SRecordError(lineNumber, Reason::CountBelowFive,
                           {std::string(line.substr(std::min<std::size_t>(2, line.size()), 2)), quoted(line)});
    record.address = tolerantHex(line, 4, 8);
    const std::size_t count = countField - 5;
    const std::size_t dataEnd = 12 + 2 * count;
    if (line.size() >= dataEnd) {
        // Decoded on the stack and copied in, which spares the zero fill of a resize:
        // the count field is one byte, so at most 250 data bytes.
        std::uint8_t bytes[256];
        tolerantBytes(line.data() + 12, count, bytes);
        record.bytes.assign(bytes, bytes + count);
    } else {
        record.bytes.resize(count);
        for (std::size_t i = 0; i < count; ++i)
            record.bytes[i] = static_cast<std::uint8_t>(tolerantHex(line, 12 + 2 * i, 2));
    }
}

bool isForeignLine(std::string_view line)
{
    return !line.empty() && line[0] != 'S' && line.find_first_not_of(" \t") != std::string_view::npos;
}

void readStrictRecord(std::string_view line, std::uint64_t lineNumber, SRecordData& record)
{
    record.bytes.clear();
    record.isData = false;
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    if (line.empty()) return;
    if (line.size() < 4 || line[0] != 'S' || line[1] < '0' || line[1] > '9')
        throw SRecordError(lineNumber, Reason::NotAnSRecord, {quoted(line)});
    const int type = line[1] - '0';
    if (type == 4) throw SRecordError(lineNumber, Reason::S4NotMotorola);
    const int count = strictByte(line, 2);
    if (count < 0) throw SRecordError(lineNumber, Reason::CountNotHex, {std::string(line.substr(2, 2))});
    const std::size_t expectedLength = 4 + 2 * static_cast<std::size_t>(count);
    if (line.size() != expectedLength)
        throw SRecordError(
            lineNumber, Reason::CountLengthMismatch,
            {std::string(line.substr(2, 2)), std::to_string(expectedLength), std::to_string(line.size())});
    const int addressBytes = type == 2 || type == 8 ? 3 : type == 3 || type == 7 ? 4 : 2;
    if (count < addressBytes + 1)
        throw SRecordError(lineNumber, Reason::CountTooSmall, {std::string(line.substr(2, 2)), std::to_string(type)});
    unsigned sum = static_cast<unsigned>(count);
    std::uint32_t address = 0;
    record.bytes.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count - 1; ++i) {
        int value = strictByte(line, 4 + 2 * static_cast<std::size_t>(i));
        if (value < 0)
            throw SRecordError(
                lineNumber, Reason::DigitNotHex,
                {std::string(line.substr(4 + 2 * static_cast<std::size_t>(i), 2)), std::to_string(5 + 2 * i)});
        sum += static_cast<unsigned>(value);
        if (i < addressBytes) address = (address << 8) | static_cast<std::uint32_t>(value);
        else record.bytes.push_back(static_cast<std::uint8_t>(value));
    }
    const int checksum = strictByte(line, line.size() - 2);
    const unsigned expected = 255 - (sum & 0xFF);
    if (checksum < 0 || static_cast<unsigned>(checksum) != expected)
        throw SRecordError(lineNumber, Reason::ChecksumMismatch,
                           {std::string(line.substr(line.size() - 2)), HexPad(expected, 2)});
    record.address = address;
    record.isData = type >= 1 && type <= 3;
    if (!record.isData) record.bytes.clear();
}

}  // namespace zevran::image
