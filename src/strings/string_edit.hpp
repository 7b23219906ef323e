// The list of planned string replacements and the bytes each one writes. A
// replacement always fills exactly the space of the string it replaces.
#pragma once

#include "code_page.hpp"
#include "image/patch_writer.hpp"

#include <optional>
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
};

inline constexpr int kMessageEmptyEditFields = 25;

// The row that adding a replacement makes, or nullopt (message 25) when the start,
// end or replacement is empty.
std::optional<StringEditRow> makeEditRow(std::size_t rowsBefore, std::string_view Text10, std::string_view Text9,
                                         std::string_view Text7, std::string_view Text8);

// The bytes a row writes: its text in handset codes (A1 20 for a space) or in
// single-byte codes.
std::vector<std::uint8_t> editRowBytes(const StringEditRow& row, bool handsetCodes,
                                       std::string_view codePage = kDefaultCodePage);

// The region of a row, first and last address from its start and end cells.
image::Region editRowRegion(const StringEditRow& row, bool handsetCodes, std::string_view codePage = kDefaultCodePage);

}  // namespace zevran::strings
