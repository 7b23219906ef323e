#include "tone_patch.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/table_text.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>

namespace zevran::tones {

using namespace zevran::image;

namespace {

// The leading decimal number of a cell, sign included; anything after it is ignored
// and a cell without digits counts 0. Values beyond any image are capped, not wrapped.
std::int64_t decimalCell(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && text[at] == ' ') ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    constexpr std::int64_t kCap = std::numeric_limits<std::int32_t>::max() * 4LL;
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        value = std::min(kCap, value * 10 + (text[at] - '0'));
    return negative ? -value : value;
}

// Slot offsets too large for the handset's 32-bit addresses lie outside every image.
std::int64_t hexCell(std::string_view text)
{
    try {
        return HexToLong(text);
    } catch (const HexOverflow&) {
        return std::numeric_limits<std::int64_t>::max() / 4;
    }
}

std::string joinFolder(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.empty() && path.back() != '/') path += '/';
    return path + std::string(name);
}

std::int64_t fileSize(std::ifstream& in)
{
    in.seekg(0, std::ios::end);
    const auto size = static_cast<std::int64_t>(in.tellg());
    in.seekg(0);
    return size;
}

}  // namespace

std::optional<PlanSlotFields> planSlotFields(std::string_view slotText)
{
    const std::vector<std::string_view> fields = splitAtSpaces(slotText);
    if (fields.size() < 5) return std::nullopt;
    return PlanSlotFields{hexCell(fields[1]), decimalCell(fields[4])};
}

PlanFileFields planFileFields(std::string_view fileText)
{
    const std::size_t last = fileText.rfind(' ');
    if (last == std::string_view::npos || last == 0) return {std::string(fileText), 0};
    const std::size_t secondLast = fileText.rfind(' ', last - 1);
    if (secondLast == std::string_view::npos) return {std::string(fileText.substr(0, last)), 0};
    return {std::string(fileText.substr(0, secondLast)),
            decimalCell(fileText.substr(secondLast + 1, last - secondLast - 1))};
}

PlanRowPatch tonePatchRegion(const ReplacementRow& row, std::string_view folder, std::int64_t imageLength)
{
    PlanRowPatch patch;
    if (!row.checked || !mayCheckPlanRow(row)) return patch;
    const std::optional<PlanSlotFields> slot = planSlotFields(row.slot);
    if (!slot) return patch;
    const PlanFileFields file = planFileFields(row.file);
    // Sizes are compared first, as listed: a slot of 0 (or less) refuses any tone but an empty one.
    if (file.size > slot->size) {
        patch.result = PlanRowResult::TooLarge;
        return patch;
    }
    if (slot->size <= 0) {
        patch.result = PlanRowResult::EmptySlot;
        return patch;
    }
    // A plan made from a tone table of another image may name slots this image lacks.
    if (slot->start < 0 || slot->start + slot->size > imageLength)
        throw TonePlanError(Reason::SlotOutsideImage, {row.number, HexPad(static_cast<std::uint32_t>(slot->start), 8),
                                                       std::to_string(slot->size), std::to_string(imageLength)});
    const std::string path = joinFolder(folder, file.name);
    std::ifstream in = openInputFile(path);
    // The size shown may be older than the file: a longer file would be cut short.
    if (fileSize(in) > slot->size) {
        patch.result = PlanRowResult::TooLarge;
        return patch;
    }
    patch.region.first = static_cast<std::int32_t>(slot->start);
    patch.region.last = static_cast<std::int32_t>(slot->start + slot->size - 1);
    patch.region.bytes.assign(static_cast<std::size_t>(slot->size), 0);
    in.read(reinterpret_cast<char*>(patch.region.bytes.data()), static_cast<std::streamsize>(slot->size));
    if (in.bad()) throw fileSystemError(path, errno);
    patch.result = PlanRowResult::Region;
    return patch;
}

}  // namespace zevran::tones
