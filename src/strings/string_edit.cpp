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

std::optional<StringEditRow> makeFittedEditRow(std::size_t rowsBefore, std::string_view foundStart,
                                               std::string_view foundEnd, std::string_view replacementText,
                                               std::string_view foundLength, bool handsetCodes,
                                               std::string_view codePage)
{
    if (foundStart.empty() || replacementText.empty() || foundEnd.empty()) return std::nullopt;
    const std::int64_t bytes = rangeBytes(HexToLong(foundStart), HexToLong(foundEnd));
    StringEditRow row{ZeroPad(std::to_string(rowsBefore + 1), 2), std::string(foundStart), std::string(foundEnd),
                      std::string(replacementText), std::string(foundLength)};
    const auto used = static_cast<std::int64_t>(editRowBytes(row, handsetCodes, codePage).size());
    if (used > bytes)
        throw EditRowError(
            handsetCodes ? Reason::TextTooLongHandset : Reason::TextTooLongSingle,
            {std::string(replacementText), std::to_string(used), std::to_string(bytes), std::string(foundStart)});
    const std::int64_t spaceBytes = handsetCodes ? 2 : 1;
    if ((bytes - used) % spaceBytes != 0)
        throw EditRowError(Reason::OddCountForHandset, {std::string(foundStart), std::to_string(bytes)});
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
