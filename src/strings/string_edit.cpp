#include "string_edit.hpp"

#include "image/hex_text.hpp"
#include "string_search.hpp"

#include <cmath>

namespace zevran::strings {

using namespace zevran::image;

namespace {

// "2.5" and the like: the length box may show a half character.
double lengthValue(std::string_view text)
{
    try {
        return std::stod(std::string(text));
    } catch (const std::exception&) {
        return 0;
    }
}

}  // namespace

std::optional<StringEditRow> makeEditRow(std::size_t rowsBefore, std::string_view Text10, std::string_view Text9,
                                         std::string_view Text7, std::string_view Text8)
{
    if (Text10.empty() || Text7.empty() || Text9.empty()) return std::nullopt;
    const double missing = lengthValue(Text8) - static_cast<double>(characterCount(Text7));
    const long spaces = std::lrint(missing);  // half-way rounds to even
    StringEditRow row;
    row.number = ZeroPad(std::to_string(rowsBefore + 1), 2);
    row.start = std::string(Text10);
    row.end = std::string(Text9);
    row.text = std::string(Text7) + std::string(static_cast<std::size_t>(std::max(spaces, 0L)), ' ');
    row.length = std::string(Text8);
    return row;
}

std::vector<std::uint8_t> editRowBytes(const StringEditRow& row, bool handsetCodes, std::string_view codePage)
{
    const std::string hex = searchPattern(row.text, handsetCodes, codePage);
    std::vector<std::uint8_t> bytes(hex.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = HexByteValue(std::string_view(hex).substr(2 * i, 2));
    return bytes;
}

Region editRowRegion(const StringEditRow& row, bool handsetCodes, std::string_view codePage)
{
    return {HexToLong(row.start), HexToLong(row.end), editRowBytes(row, handsetCodes, codePage)};
}

}  // namespace zevran::strings
