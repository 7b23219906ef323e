// The list of planned string replacements and the bytes each one writes. A
// replacement always fills exactly the space of the string it replaces.
#pragma once

#include "image/failure.hpp"

#include "code_page.hpp"
#include "image/patch_writer.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::strings {

// One row of the edit list; every cell as the list shows it.
struct StringEditRow {
    std::string number;  // "01", "02", ...: one more than the rows before it
    std::string start;   // eight hex digits
    std::string end;     // eight hex digits
    std::string text;    // the replacement, padded with spaces to `length` characters
    std::string length;  // bytes, or characters in handset codes
    // The row's own encoding (a translation imported for a string of that encoding);
    // unset, the row is written in the encoding the list is written in.
    std::optional<bool> handsetCodes = std::nullopt;
    // Whether the list writes the row: a new replacement is meant to be written.
    bool checked = true;
};

inline constexpr int kMessageEmptyEditFields = 25;

// The bytes a row writes: its text in handset codes (A1 20 for a space) or in
// single-byte codes.
std::vector<std::uint8_t> editRowBytes(const StringEditRow& row, bool handsetCodes,
                                       std::string_view codePage = kDefaultCodePage);

// The region of a row, first and last address from its start and end cells.
image::Region editRowRegion(const StringEditRow& row, bool handsetCodes, std::string_view codePage = kDefaultCodePage);

// What keeps a replacement from filling its string exactly; the text names the
// string (or the row) and the byte counts.
class EditRowError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

// The row that adding a replacement makes for the string found between foundStart and
// foundEnd in the search's encoding: nullopt (message 25) when the start, end or
// replacement is empty. The spaces are counted in bytes, one a space in single-byte
// codes and two (A1 20) in handset codes, so the padded replacement fills the string
// exactly also where a character takes two bytes of the code page. Throws
// EditRowError when the replacement is longer than the string, or when handset
// codes, two bytes a character, cannot fill an odd byte count.
std::optional<StringEditRow> makeFittedEditRow(std::size_t rowsBefore, std::string_view foundStart,
                                               std::string_view foundEnd, std::string_view replacementText,
                                               std::string_view foundLength, bool handsetCodes,
                                               std::string_view codePage = kDefaultCodePage);

// The regions of the rows to write, in the order given, in the chosen encoding (or a
// row's own).
// Checked before anything is written, so a bad row leaves no half-written output:
// throws EditRowError naming the row when its bytes do not fill its range exactly
// (the list was searched in the other encoding) or its range lies outside an image
// of `imageLength` bytes (the row was found in another phone file).
std::vector<image::Region> editListRegions(std::span<const StringEditRow> rows, bool handsetCodes,
                                           std::int64_t imageLength, std::string_view codePage = kDefaultCodePage);

}  // namespace zevran::strings
