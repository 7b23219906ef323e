#include "owner_rows.hpp"

#include "image/hex_text.hpp"
#include "pictures/picture_frames.hpp"

#include <algorithm>
#include <optional>

namespace zevran::bytes {

using image::ByteOwner;
using image::OwnerKind;

namespace {

// "0x0012A3F0", "0X0012A3F0" or "0012A3F0"; none when the number does not fit.
std::optional<std::int64_t> addressCell(std::string_view cell)
{
    if (cell.size() > 2 && cell[0] == '0' && (cell[1] == 'x' || cell[1] == 'X')) cell.remove_prefix(2);
    if (cell.empty()) return std::nullopt;
    try {
        return image::HexToLong(cell);
    } catch (const image::HexOverflow&) {
        return std::nullopt;
    }
}

std::optional<ByteOwner> inclusiveRange(OwnerKind kind, int row, std::string_view first, std::string_view last)
{
    const auto begin = addressCell(first);
    const auto end = addressCell(last);
    if (!begin || !end || *end < *begin) return std::nullopt;
    return ByteOwner{kind, row, 0, *begin, *end + 1};
}

}  // namespace

std::vector<ByteOwner> toneOwners(std::span<const tones::ToneSlot> rows)
{
    std::vector<ByteOwner> owners;
    for (std::size_t k = 0; k < rows.size(); ++k)
        if (auto owner = inclusiveRange(OwnerKind::Tone, static_cast<int>(k), rows[k].start, rows[k].end))
            owners.push_back(*owner);
    return owners;
}

std::vector<ByteOwner> pictureOwners(std::span<const pictures::PictureEntry> rows)
{
    std::vector<ByteOwner> owners;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        pictures::FrameGeometry geometry;
        try {
            geometry = pictures::frameGeometry(rows[k]);
        } catch (const std::exception&) {
            continue;  // a row the picture commands refuse too
        }
        if (geometry.frameSize <= 0) continue;
        const std::int64_t frames = std::min(geometry.frames, kMostOwnedFrames);
        for (std::int64_t frame = 0; frame < frames; ++frame) {
            const std::int64_t first = pictures::frameAddress(geometry, frame);
            owners.push_back({OwnerKind::PictureFrame, static_cast<int>(k), static_cast<int>(frame), first,
                              first + geometry.frameSize});
        }
    }
    return owners;
}

std::vector<ByteOwner> editRowOwners(std::span<const strings::StringEditRow> rows)
{
    std::vector<ByteOwner> owners;
    for (std::size_t k = 0; k < rows.size(); ++k)
        if (auto owner = inclusiveRange(OwnerKind::EditRow, static_cast<int>(k), rows[k].start, rows[k].end))
            owners.push_back(*owner);
    return owners;
}

}  // namespace zevran::bytes
