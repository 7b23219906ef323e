// Helpers for the hand-editable table files (tone tables, picture tables).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zevran::image {

// Trims leading and trailing spaces, then removes every TAB anywhere in the text.
std::string Del_TAb(std::string_view field);

// Splits text into lines at CR LF, a lone CR or a lone LF, since tables written on
// Linux end their lines with LF alone. No empty line follows a final line end.
std::vector<std::string_view> splitTextLines(std::string_view text);

// Splits a line at every single space: a run of n spaces gives n - 1 empty fields.
std::vector<std::string_view> splitAtSpaces(std::string_view line);

}  // namespace zevran::image
