// The columns of the ring-tone tab's three lists: how each cell reads from its row
// and, where the user may change it, how the change goes back into the row.
#pragma once

#include "tones/tone_plan.hpp"
#include "tones/tone_scan.hpp"
#include "window/row_table_model.hpp"
#include "window/widget_helpers.hpp"

#include <QString>
#include <string>
#include <vector>

namespace zevran::tones {

// A row of the tone-file list: a ".mmf" file of the listed folder and its size in
// bytes, as text (the plan reads the size back from the text).
struct ToneFileRow {
    QString name;
    QString size;
};

namespace columns {

inline QString cellText(const std::string& cell) { return window::fromUtf8(cell); }
inline QString cellText(const QString& cell) { return cell; }

// Built member by member: GCC 12 fails on a brace list that leaves a column's members
// to their defaults.
template <typename Row, typename Cell>
window::RowColumn<Row> textColumn(Cell Row::*cell, bool toolTip = false)
{
    window::RowColumn<Row> column;
    column.text = [cell](const Row& row) { return cellText(row.*cell); };
    column.toolTip = toolTip;
    return column;
}

// A cell the user (or the program for them) may type over; it shows whole in its tooltip.
template <typename Row>
window::RowColumn<Row> editableColumn(std::string Row::*cell)
{
    window::RowColumn<Row> column = textColumn(cell, true);
    column.edit = [cell](Row& row, const QString& text) { row.*cell = text.toStdString(); };
    return column;
}

}  // namespace columns

// No., Start, End, Size, and the note, typed over through the note editor.
inline std::vector<window::RowColumn<ToneSlot>> toneColumns()
{
    using namespace columns;
    return {textColumn(&ToneSlot::number), textColumn(&ToneSlot::start), textColumn(&ToneSlot::end),
            textColumn(&ToneSlot::size), editableColumn(&ToneSlot::note)};
}

// No. with the pair's check box, the new tone's file and the target slot.
inline std::vector<window::RowColumn<ReplacementRow>> planColumns()
{
    using namespace columns;
    window::RowColumn<ReplacementRow> number = textColumn(&ReplacementRow::number);
    number.checked = [](const ReplacementRow& row) { return row.checked; };
    // A row can be checked only once it pairs a file with a slot.
    number.setChecked = [](ReplacementRow& row, bool on) { row.checked = on && mayCheckPlanRow(row); };
    return {number, editableColumn(&ReplacementRow::file), editableColumn(&ReplacementRow::slot)};
}

// Name and Size.
inline std::vector<window::RowColumn<ToneFileRow>> fileColumns()
{
    using namespace columns;
    return {textColumn(&ToneFileRow::name), textColumn(&ToneFileRow::size)};
}

}  // namespace zevran::tones
