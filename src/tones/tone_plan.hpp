// The replacement plan: new tone files from disk paired with tone slots of the image,
// one pair a row. Pairing is by position: each file or slot fills the first row whose
// cell in its column is still empty, and the plan is kept sorted by its slot text.
#pragma once

#include "tone_scan.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::tones {

struct ReplacementRow {
    std::string number;  // "001", renumbered after every change
    std::string file;    // "ring.mmf 1000 字节", or "" before a file is paired
    std::string slot;    // "004 0x0001F2A0 - 0x0001F9DF 1856 ring1", or "" before a slot is paired
    bool checked = false;
};

enum class PlanColumn { File = 1, Slot = 2 };

// The unit word after a file's size in its plan cell, the same in every language
// unless a language file translates it.
inline constexpr std::string_view kPlanSizeUnit = "字节";

// The file cell of a tone file listed with its size text: name, space, size, space, unit.
std::string planFileText(std::string_view name, std::string_view sizeText, std::string_view unit = kPlanSizeUnit);
// A file cell written with the unit word `from`, now with `to`; any other cell as it is.
std::string withPlanUnit(std::string_view cell, std::string_view from, std::string_view to);
// The slot cell of a tone row: number, start " - " end, size and note, spaced singly;
// an empty note leaves a trailing space.
std::string planSlotText(const ToneSlot& slot);

// Index of the first row whose cell in `column` is empty; when there is none a row
// numbered (count + 1) is appended and its index returned.
std::size_t FindPlanRow(std::vector<ReplacementRow>& rows, PlanColumn column);
// Orders the rows by slot text, compared as text; rows without a slot come first.
void SortPlan(std::vector<ReplacementRow>& rows);
// Numbers the rows "001", "002", ... top to bottom.
void RenumberPlan(std::vector<ReplacementRow>& rows);

// Pairs each file text (or slot text) with the first row free in its column, then
// sorts and renumbers the plan, as adding from the file list or the tone list does.
void addPlanCells(std::vector<ReplacementRow>& rows, PlanColumn column, const std::vector<std::string>& cells);

// Removes the row at `index`, renumbering the rest.
void removePlanRow(std::vector<ReplacementRow>& rows, std::size_t index);
// Clears one cell of the row at `index`; a row left with neither cell goes altogether.
void removePlanCell(std::vector<ReplacementRow>& rows, std::size_t index, PlanColumn column);
// Clears the cell of `column` in every row.
void clearPlanColumn(std::vector<ReplacementRow>& rows, PlanColumn column);

// A row may be checked only while both its file and its slot are paired.
bool mayCheckPlanRow(const ReplacementRow& row);

}  // namespace zevran::tones
