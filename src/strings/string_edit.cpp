#include "string_edit.hpp"

#include "image/hex_text.hpp"
#include "string_search.hpp"

#include <cmath>

namespace zevran::strings {

using namespace zevran::image;

namespace {

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
    StringEditRow row{ZeroPad(std::to_string(rowsBefore + 1), 2), std::string(Text10), std::string(Text9),
                      std::string(Text7), std::string(Text8)};
    const auto used = static_cast<std::int64_t>(editRowBytes(row, handsetCodes, codePage).size());
    if (used > bytes)
        throw EditRowError(handsetCodes ? Reason::TextTooLongHandset : Reason::TextTooLongSingle,
                           {std::string(Text7), std::to_string(used), std::to_string(bytes), std::string(Text10)});
    const std::int64_t spaceBytes = handsetCodes ? 2 : 1;
    if ((bytes - used) % spaceBytes != 0)
        throw EditRowError(Reason::OddCountForHandset, {std::string(Text10), std::to_string(bytes)});
    row.text.append(static_cast<std::size_t>((bytes - used) / spaceBytes), ' ');
    return row;
}

std::vector<Region> editListRegions(std::span<const StringEditRow> rows, bool handsetCodes, std::int64_t imageLength,
                                    std::string_view codePage)
{
    std::vector<Region> regions;
    for (const StringEditRow& row : rows) {
        // A failure here names the row it is about.
        auto onRow = [&row](const Failure& cause) {
            return EditRowError(Reason::EditRowAt, {row.number, row.start, row.end}, cause);
        };
        const bool rowHandsetCodes = row.handsetCodes.value_or(handsetCodes);
        Region region;
        try {
            region = editRowRegion(row, rowHandsetCodes, codePage);
        } catch (const std::exception& error) {
            throw onRow(failureOf(error));
        }
        const std::int64_t bytes = rangeBytes(region.first, region.last);
        if (static_cast<std::int64_t>(region.bytes.size()) != bytes)
            throw onRow({rowHandsetCodes ? Reason::TextLengthDiffersHandset : Reason::TextLengthDiffersSingle,
                         {row.text, std::to_string(region.bytes.size()), std::to_string(bytes)},
                         nullptr});
        if (region.last >= imageLength) throw onRow({Reason::StringPastImage, {std::to_string(imageLength)}, nullptr});
        regions.push_back(std::move(region));
    }
    return regions;
}

}  // namespace zevran::strings
