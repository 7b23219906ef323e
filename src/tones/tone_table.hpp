// Tone table files: the tone list with the user's notes, one line per tone, so that
// neither a long scan nor the notes are lost.
#pragma once

#include "tone_scan.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::tones {

// " 001 : 0x0001F2A0 - 0x0001F9DF  Size: 1856 \tring1\r\n" for each row, where "Size"
// is the caption the list's size column shows in the current language.
std::string toneTableText(const std::vector<ToneSlot>& rows, std::string_view sizeCaption);

struct ToneTableRead {
    std::vector<ToneSlot> rows;
    // The 1-based number of a line with fewer than ten space-separated fields, where
    // reading stopped; the rows before it are kept.
    std::optional<std::size_t> stoppedAtLine;
};

// Reads fields 1, 3, 5, 8 and 9 of every non-empty line, split at single spaces.
// Nothing is checked: the cells are kept as text. A note is read up to its first space.
ToneTableRead readToneTable(std::string_view text);

}  // namespace zevran::tones
