// The picture list's cells as the tab's commands read them, and the row a message is
// about. Shared by the tab's files (list and preview, import, finder).
#pragma once

#include "pictures/picture_table.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QStringList>
#include <QTreeWidgetItem>
#include <exception>
#include <vector>

namespace zevran::pictures {

inline PictureEntry entryOf(const QTreeWidgetItem* item)
{
    if (!item) return {};  // no row chosen: every cell reads as empty, every number as 0
    auto cell = [item](int column) { return item->text(column).toStdString(); };
    return {cell(0), cell(1), cell(2), cell(3), cell(4), cell(5), cell(6)};
}

// "row 003: " before a reason, so a message names the row it is about.
inline QString onRow(const image::TabHost& host, const PictureEntry& row, const std::exception& error)
{
    using image::fromUtf8;
    return row.number.empty() ? host.failureText(error)
                              : host.text("RowError").arg(fromUtf8(row.number), host.failureText(error));
}

// One line a field of the table that can name no picture, in the window's language.
inline QString tableWarningText(const image::TabHost& host, const std::vector<TableFieldWarning>& warnings)
{
    QStringList lines;
    for (const TableFieldWarning& warning : warnings) {
        const char* key = warning.problem == TableFieldProblem::AddressNotHex      ? "TableAddressNotHex"
                          : warning.problem == TableFieldProblem::FramesNotANumber ? "TableFramesNotANumber"
                                                                                   : "TableSizeBelowOne";
        lines << host.text(key).arg(warning.line).arg(image::fromUtf8(warning.value));
    }
    return lines.join('\n');
}

}  // namespace zevran::pictures
