#include "string_edit.hpp"

#include "image/hex_text.hpp"
#include "string_search.hpp"

#include <cmath>

namespace zevran::strings {

using namespace zevran::image;

namespace {

const char* encodingName(bool handsetCodes) { return handsetCodes ? "handset codes" : "single-byte codes"; }

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Bytes from first to last inclusive; 0 when the end lies before the start.
std::int64_t rangeBytes(std::int64_t first, std::int64_t last) { return last < first ? 0 : last - first + 1; }

}  // namespace

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

std::optional<StringEditRow> makeFittedEditRow(std::size_t rowsBefore, std::string_view Text10, std::string_view Text9,
                                               std::string_view Text7, std::string_view Text8, bool handsetCodes,
                                               std::string_view codePage)
{
    if (Text10.empty() || Text7.empty() || Text9.empty()) return std::nullopt;
    const std::int64_t bytes = rangeBytes(HexToLong(Text10), HexToLong(Text9));
    const std::string where = "the string at " + std::string(Text10);
    StringEditRow row{ZeroPad(std::to_string(rowsBefore + 1), 2), std::string(Text10), std::string(Text9),
                      std::string(Text7), std::string(Text8)};
    const auto used = static_cast<std::int64_t>(editRowBytes(row, handsetCodes, codePage).size());
    if (used > bytes)
        throw EditRowError(quoted(Text7) + " takes " + std::to_string(used) + " bytes in " + encodingName(handsetCodes) +
                           ", more than the " + std::to_string(bytes) + " of " + where);
    const std::int64_t spaceBytes = handsetCodes ? 2 : 1;
    if ((bytes - used) % spaceBytes != 0)
        throw EditRowError(where + " holds " + std::to_string(bytes) +
                           " bytes, an odd count that handset codes (two bytes a character) cannot fill exactly");
    row.text.append(static_cast<std::size_t>((bytes - used) / spaceBytes), ' ');
    return row;
}

std::vector<Region> editListRegions(std::span<const StringEditRow> rows, bool handsetCodes, std::int64_t imageLength,
                                    std::string_view codePage)
{
    std::vector<Region> regions;
    for (const StringEditRow& row : rows) {
        const std::string where = "row " + row.number + " at " + row.start + ".." + row.end + ": ";
        const bool rowHandsetCodes = row.handsetCodes.value_or(handsetCodes);
        Region region;
        try {
            region = editRowRegion(row, rowHandsetCodes, codePage);
        } catch (const std::exception& error) {
            throw EditRowError(where + error.what());
        }
        const std::int64_t bytes = rangeBytes(region.first, region.last);
        if (static_cast<std::int64_t>(region.bytes.size()) != bytes)
            throw EditRowError(where + quoted(row.text) + " takes " + std::to_string(region.bytes.size()) +
                               " bytes in " + encodingName(rowHandsetCodes) + " but the string holds " +
                               std::to_string(bytes) + "; write the list in the codes it was searched in");
        if (region.last >= imageLength)
            throw EditRowError(where + "the string lies past the end of the image (" + std::to_string(imageLength) +
                               " bytes); was it found in another phone file?");
        regions.push_back(std::move(region));
    }
    return regions;
}

}  // namespace zevran::strings
