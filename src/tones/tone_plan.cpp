#include "tone_plan.hpp"

#include "image/hex_text.hpp"

#include <algorithm>

namespace zevran::tones {

namespace {

std::string& cellOf(ReplacementRow& row, PlanColumn column) { return column == PlanColumn::File ? row.file : row.slot; }

PlanColumn otherColumn(PlanColumn column) { return column == PlanColumn::File ? PlanColumn::Slot : PlanColumn::File; }

std::string rowNumber(std::size_t number) { return image::ZeroPad(std::to_string(number), 3); }

}  // namespace

std::string planFileText(std::string_view name, std::string_view sizeText, std::string_view unit)
{
    return std::string(name) + " " + std::string(sizeText) + " " + std::string(unit);
}

std::string withPlanUnit(std::string_view cell, std::string_view from, std::string_view to)
{
    // Appended rather than `" " + std::string(from)`: GCC 12 at -O3 takes that insert for an
    // overlapping copy (-Wrestrict).
    std::string ending = " ";
    ending += from;
    if (from.empty() || cell.size() <= ending.size() || cell.substr(cell.size() - ending.size()) != ending)
        return std::string(cell);
    return std::string(cell.substr(0, cell.size() - from.size())) + std::string(to);
}

std::string planSlotText(const ToneSlot& slot)
{
    return slot.number + " " + slot.start + " - " + slot.end + " " + slot.size + " " + slot.note;
}

std::size_t FindPlanRow(std::vector<ReplacementRow>& rows, PlanColumn column)
{
    const auto free =
        std::find_if(rows.begin(), rows.end(), [&](ReplacementRow& row) { return cellOf(row, column).empty(); });
    if (free != rows.end()) return static_cast<std::size_t>(free - rows.begin());
    rows.push_back({rowNumber(rows.size() + 1), "", "", false});
    return rows.size() - 1;
}

void SortPlan(std::vector<ReplacementRow>& rows)
{
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ReplacementRow& a, const ReplacementRow& b) { return a.slot < b.slot; });
}

void RenumberPlan(std::vector<ReplacementRow>& rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].number = rowNumber(i + 1);
}

void addPlanCells(std::vector<ReplacementRow>& rows, PlanColumn column, const std::vector<std::string>& cells)
{
    for (const std::string& cell : cells) cellOf(rows[FindPlanRow(rows, column)], column) = cell;
    SortPlan(rows);
    RenumberPlan(rows);
}

void removePlanRow(std::vector<ReplacementRow>& rows, std::size_t index)
{
    if (index >= rows.size()) return;
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(index));
    RenumberPlan(rows);
}

void removePlanCell(std::vector<ReplacementRow>& rows, std::size_t index, PlanColumn column)
{
    if (index >= rows.size()) return;
    if (cellOf(rows[index], otherColumn(column)).empty()) {
        removePlanRow(rows, index);
        return;
    }
    cellOf(rows[index], column).clear();
    // An unpaired row cannot stay checked: the output would have nothing to write.
    rows[index].checked = false;
    RenumberPlan(rows);
}

void clearPlanColumn(std::vector<ReplacementRow>& rows, PlanColumn column)
{
    for (ReplacementRow& row : rows) {
        cellOf(row, column).clear();
        row.checked = false;
    }
    RenumberPlan(rows);
}

bool mayCheckPlanRow(const ReplacementRow& row) { return !row.file.empty() && !row.slot.empty(); }

}  // namespace zevran::tones
