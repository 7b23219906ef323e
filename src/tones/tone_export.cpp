#include "tone_export.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"

#include <algorithm>
#include <sys/stat.h>

namespace zevran::tones {

using namespace zevran::image;

namespace {

// Removes the last n characters of UTF-8 text, never a part of one.
std::string_view dropLastCharacters(std::string_view text, int n)
{
    while (n-- > 0 && !text.empty()) {
        std::size_t cut = text.size() - 1;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
        text = text.substr(0, cut);
    }
    return text;
}

std::int64_t offsetOf(const std::string& cell, const ToneSlot& row, const char* what)
{
    try {
        return HexToLong(cell);
    } catch (const HexOverflow&) {
        throw ToneExportError(Reason::ToneCellNotOffset, {row.number, what, cell});
    }
}

std::string sizeText(std::size_t bytes)
{
    return bytes >= (1u << 20) && bytes % (1u << 20) == 0 ? std::to_string(bytes >> 20) + " MiB"
                                                          : std::to_string(bytes) + " bytes";
}

}  // namespace

std::string toneExportPath(std::string_view pickedPath, std::string_view number)
{
    return std::string(dropLastCharacters(pickedPath, 4)) + "-" + std::string(number) + ".mmf";
}

std::span<const std::uint8_t> toneBytes(const ImageState& state, const ToneSlot& row)
{
    const std::int64_t start = offsetOf(row.start, row, "start");
    const std::int64_t end = offsetOf(row.end, row, "end");
    if (end < start) return {};
    const auto length = static_cast<std::int64_t>(state.FirmwareImage.size());
    if (end >= length)
        throw ToneExportError(Reason::ToneEndPastImage, {row.number, HexPad(static_cast<std::uint32_t>(end), 8),
                                                         sizeText(state.FirmwareImage.size())});
    return std::span<const std::uint8_t>(state.FirmwareImage)
        .subspan(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start + 1));
}

void writeOverFileStart(const std::string& path, std::span<const std::uint8_t> bytes)
{
    // The old file's tail is kept as the export always kept it, but the whole file goes
    // through a temporary beside it: a failed write leaves the old file as it was.
    std::vector<std::uint8_t> whole;
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) whole = readWholeFile(path);
    if (whole.size() < bytes.size()) whole.resize(bytes.size());
    std::copy(bytes.begin(), bytes.end(), whole.begin());
    saveFileSafely(path, whole);
}

void exportTones(const PhoneDocument& document, const std::vector<ToneSlot>& rows,
                 const std::function<bool(std::size_t)>& wanted, std::string_view pickedPath,
                 const std::function<void(std::size_t)>& afterRow)
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (wanted(i)) {
            const std::string path = toneExportPath(pickedPath, rows[i].number);
            // A picked name can make a tone's file name that of the phone file itself.
            document.refuseAsOutput(path);
            writeOverFileStart(path, toneBytes(document.state(), rows[i]));
        }
        if (afterRow) afterRow(i);
    }
}

}  // namespace zevran::tones
