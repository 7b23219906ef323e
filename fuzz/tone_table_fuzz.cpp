// The input as a tone table file. Every row read is exported against a fixed 4 KiB
// image holding three tones, the last running past the image's end: the bytes must
// be exactly start to end, or a ToneExportError. Rows whose cells hold no space, TAB
// or line end must come back unchanged through toneTableText and readToneTable. Each
// row is also the slot of a replacement-plan pair whose patch region must cover the
// whole slot inside the image, or be refused.
#include "image/hex_text.hpp"
#include "tones/tone_export.hpp"
#include "tones/tone_patch.hpp"
#include "tones/tone_table.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using namespace zevran;
using namespace zevran::tones;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "tone_table_fuzz: %s\n", what);
    std::abort();
}

void fail(const char* what, const ToneSlot& row)
{
    std::fprintf(stderr, "tone_table_fuzz: %s (row \"%s\" start \"%s\" end \"%s\")\n", what, row.number.c_str(),
                 row.start.c_str(), row.end.c_str());
    std::abort();
}

void plantTone(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t bodyLength)
{
    const std::uint8_t head[8] = {'M',
                                  'M',
                                  'M',
                                  'D',
                                  static_cast<std::uint8_t>(bodyLength >> 24),
                                  static_cast<std::uint8_t>(bodyLength >> 16),
                                  static_cast<std::uint8_t>(bodyLength >> 8),
                                  static_cast<std::uint8_t>(bodyLength)};
    for (std::size_t i = 0; i < 8; ++i) bytes[at + i] = head[i];
}

const image::ImageState& fixedImage()
{
    static const image::ImageState state = [] {
        // Filler below 0x40, so no stray "M" makes a signature.
        std::vector<std::uint8_t> bytes(4096);
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>((i * 7 + 3) & 0x3F);
        plantTone(bytes, 0x0123, 0x0200);
        plantTone(bytes, 0x0800, 100);
        plantTone(bytes, 0x0F00, 0x0400);
        image::ImageState made;
        image::setImage(made, "fixed.bin", std::move(bytes));
        return made;
    }();
    return state;
}

// The offset a cell names, as the table has always read it: non-hex characters count
// as 0; nullopt above 7FFFFFFF.
std::optional<std::int64_t> offsetOf(std::string_view cell)
{
    std::int64_t value = 0;
    for (char c : cell) {
        const int digit = image::hexDigitOrMinusOne(c);
        value = value * 16 + (digit < 0 ? 0 : digit);
        if (value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
    }
    return value;
}

void checkExport(const ToneSlot& row)
{
    const image::ImageState& state = fixedImage();
    const auto start = offsetOf(row.start);
    const auto end = offsetOf(row.end);
    const bool refused =
        !start || !end || (*end >= *start && *end >= static_cast<std::int64_t>(state.FirmwareImage.size()));
    try {
        const auto bytes = toneBytes(state, row);
        if (refused) fail("toneBytes gave bytes for a row outside the image", row);
        if (*end < *start) {
            if (!bytes.empty()) fail("toneBytes gave bytes for an end before the start", row);
        } else if (bytes.data() != state.FirmwareImage.data() + *start ||
                   static_cast<std::int64_t>(bytes.size()) != *end - *start + 1) {
            fail("toneBytes gave other bytes than start to end", row);
        }
    } catch (const ToneExportError&) {
        if (!refused) fail("toneBytes refused a row inside the image", row);
    } catch (const image::HexOverflow&) {
        if (!refused) fail("toneBytes refused a row inside the image", row);
    }
}

// A new tone of 150 bytes on disk, made once, that every row read is paired with.
const std::string& newToneFolder()
{
    static const std::string folder = [] {
        char pattern[] = "/tmp/tone-table-fuzz-XXXXXX";
        if (!::mkdtemp(pattern)) fail("no temporary folder for the new tone");
        std::FILE* file = std::fopen((std::string(pattern) + "/new.mmf").c_str(), "wb");
        if (!file) fail("cannot write the new tone");
        for (int i = 0; i < 150; ++i) std::fputc('N', file);
        std::fclose(file);
        return std::string(pattern);
    }();
    return folder;
}

// The row paired with the new tone in the replacement plan, and its patch region:
// whole slot, in the image, the tone first and zeros after; or one of the answers.
void checkPatchRegion(const ToneSlot& slot)
{
    const image::ImageState& state = fixedImage();
    const ReplacementRow row{"001", planFileText("new.mmf", "150"), planSlotText(slot), true};
    PlanRowPatch patch;
    try {
        patch = tonePatchRegion(row, newToneFolder(), static_cast<std::int64_t>(state.FirmwareImage.size()));
    } catch (const TonePlanError&) {
        return;
    }
    if (patch.result != PlanRowResult::Region) return;
    const image::Region& region = patch.region;
    if (region.first < 0 || region.last < region.first ||
        static_cast<std::size_t>(region.last) >= state.FirmwareImage.size())
        fail("a patch region lies outside the image", slot);
    if (region.bytes.size() != static_cast<std::size_t>(std::int64_t{region.last} - region.first + 1))
        fail("a region's bytes differ from its range", slot);
    if (region.bytes.size() < 150) fail("a tone was let into a smaller slot", slot);
    for (std::size_t i = 0; i < region.bytes.size(); ++i)
        if (region.bytes[i] != (i < 150 ? 'N' : 0)) fail("a region is not the tone followed by zeros", slot);
}

bool plainCell(std::string_view cell) { return cell.find_first_of(" \t\r\n") == std::string_view::npos; }

bool plainRow(const ToneSlot& row)
{
    return plainCell(row.number) && plainCell(row.start) && plainCell(row.end) && plainCell(row.size) &&
           plainCell(row.note);
}

bool sameRow(const ToneSlot& a, const ToneSlot& b)
{
    return a.number == b.number && a.start == b.start && a.end == b.end && a.size == b.size && a.note == b.note;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const ToneTableRead read = readToneTable(text);
    std::vector<ToneSlot> plain;
    for (const ToneSlot& row : read.rows) {
        checkExport(row);
        checkPatchRegion(row);
        if (plainRow(row)) plain.push_back(row);
    }

    const ToneTableRead back = readToneTable(toneTableText(plain, "Size"));
    if (back.stoppedAtLine) fail("a written table stops early when read back");
    if (back.rows.size() != plain.size()) fail("a written table reads back another number of rows");
    for (std::size_t i = 0; i < plain.size(); ++i)
        if (!sameRow(back.rows[i], plain[i])) fail("a written row reads back changed", plain[i]);
    return 0;
}
