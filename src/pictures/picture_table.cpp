#include "picture_table.hpp"

#include "image/hex_text.hpp"
#include "image/table_text.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>

namespace zevran::pictures {

using namespace zevran::image;

std::int32_t roundToInt32(double value, Reason tooLarge, std::string_view cell)
{
    const double rounded = std::nearbyint(value);  // half to even
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max()))
        throw PictureTableError(tooLarge, {std::string(cell)});
    return static_cast<std::int32_t>(rounded);
}

double leadingNumber(std::string_view text)
{
    std::size_t pos = 0;
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
    const std::size_t start = pos;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
    const std::size_t digitsStart = pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos;
    if (pos < text.size() && text[pos] == '.') {
        ++pos;
        while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos;
    }
    if (pos == digitsStart || (pos == digitsStart + 1 && text[digitsStart] == '.')) return 0;
    if (pos < text.size() && (text[pos] == 'E' || text[pos] == 'e')) {
        std::size_t exponent = pos + 1;
        if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
        if (exponent < text.size() && text[exponent] >= '0' && text[exponent] <= '9') {
            pos = exponent;
            while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos;
        }
    }
    const double value = std::strtod(std::string(text.substr(start, pos - start)).c_str(), nullptr);
    return std::isfinite(value) ? value : 0;
}

std::pair<std::string_view, std::string_view> splitDimensions(std::string_view cell)
{
    const auto star = cell.find('*');
    if (star == std::string_view::npos) return {cell, std::string_view()};
    return {cell.substr(0, star), cell.substr(star + 1)};
}

std::pair<std::int32_t, std::int32_t> pictureDimensions(std::string_view cell)
{
    const auto [width, height] = splitDimensions(cell);
    return {roundToInt32(leadingNumber(width), Reason::WidthTooLarge, width),
            roundToInt32(leadingNumber(height), Reason::HeightTooLarge, height)};
}

std::vector<PictureEntry> readPictureTable(std::string_view text, bool recomputeSize)
{
    std::vector<PictureEntry> rows;
    std::size_t lineNumber = 0;
    for (std::string_view line : splitTextLines(text)) {
        ++lineNumber;
        if (line.empty()) continue;
        const auto fields = splitAtSpaces(line);
        const std::string lineText = std::to_string(lineNumber);
        if (fields.size() < 11)
            throw PictureTableError(Reason::TableTooFewFields, {lineText, std::to_string(fields.size())});
        PictureEntry row{ZeroPad(std::to_string(rows.size() + 1), 3),
                         Del_TAb(fields[1]),
                         Del_TAb(fields[2]),
                         Del_TAb(fields[4]),
                         Del_TAb(fields[6]),
                         Del_TAb(fields[8]),
                         Del_TAb(fields[10])};
        if (recomputeSize) {
            // The cell is split at "*" into two parts; a cell without one has no second part.
            if (row.dimensions.find('*') == std::string::npos)
                throw PictureTableError(Reason::TableNoStar, {lineText, row.dimensions});
            const auto [width, height] = splitDimensions(row.dimensions);
            const double size = leadingNumber(width) * leadingNumber(height) * leadingNumber(row.depth) / 8;
            try {
                row.frameSize = std::to_string(roundToInt32(size, Reason::ComputedSizeTooLarge, row.dimensions));
            } catch (const PictureTableError& error) {
                throw PictureTableError(Reason::OnLine, {lineText}, error.failure());
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

namespace {

bool isHexText(std::string_view text)
{
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'X' || text[1] == 'x')) text.remove_prefix(2);
    if (text.empty()) return false;
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; });
}

// A cell read through leadingNumber names a number only when it starts with one.
bool startsWithNumber(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return false;
    std::size_t at = first;
    if (text[at] == '+' || text[at] == '-') ++at;
    if (at < text.size() && text[at] == '.') ++at;
    return at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0;
}

}  // namespace

std::vector<TableFieldWarning> pictureTableWarnings(std::string_view text)
{
    std::vector<TableFieldWarning> warnings;
    std::size_t lineNumber = 0;
    for (std::string_view line : splitTextLines(text)) {
        ++lineNumber;
        if (line.empty()) continue;
        const auto fields = splitAtSpaces(line);
        if (fields.size() < 11) continue;
        const std::string address = Del_TAb(fields[2]);
        const std::string frames = Del_TAb(fields[4]);
        const std::string size = Del_TAb(fields[6]);
        if (!isHexText(address)) warnings.push_back({lineNumber, TableFieldProblem::AddressNotHex, address});
        if (!startsWithNumber(frames)) warnings.push_back({lineNumber, TableFieldProblem::FramesNotANumber, frames});
        if (leadingNumber(size) < 1) warnings.push_back({lineNumber, TableFieldProblem::SizeBelowOne, size});
    }
    return warnings;
}

std::string pictureTableText(const std::vector<PictureEntry>& rows, const std::array<std::string, 4>& headers,
                             std::string_view offsetHex)
{
    const std::int64_t offset = HexToLong(offsetHex);
    std::string text;
    for (const PictureEntry& row : rows) {
        // Only the low six hex digits of an address survive a save: tables hold 24-bit addresses.
        const std::string_view address = row.address;
        const std::int64_t sum = HexToLong(address.substr(address.size() > 6 ? address.size() - 6 : 0)) + offset;
        if (sum > std::numeric_limits<std::int32_t>::max())
            throw HexOverflow(HexPad(static_cast<std::uint32_t>(sum), 8));
        text += row.number + " " + row.name + "\t 0X" + HexPad(static_cast<std::uint32_t>(sum), 8) + "\t ";
        text += headers[0] + ": " + row.frames + "\t ";
        text += headers[1] + ": " + row.frameSize + "\t ";
        text += headers[2] + ": " + row.dimensions + "\t ";
        text += headers[3] + ": " + row.depth + "\t\r\n";
    }
    return text;
}

}  // namespace zevran::pictures
