// The row a message is about, and the table's warnings, in the window's language.
// Shared by the tab's files (list and preview, import, finder).
#pragma once

#include "pictures/picture_table.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QStringList>
#include <exception>
#include <vector>

namespace zevran::pictures {

// "row 003: " before a reason, so a message names the row it is about.
inline QString onRow(const window::TabHost& host, const PictureEntry& row, const std::exception& error)
{
    using window::fromUtf8;
    return row.number.empty() ? host.failureText(error)
                              : host.text("RowError").arg(fromUtf8(row.number), host.failureText(error));
}

// One line a field of the table that can name no picture, in the window's language.
inline QString tableWarningText(const window::TabHost& host, const std::vector<TableFieldWarning>& warnings)
{
    QStringList lines;
    for (const TableFieldWarning& warning : warnings) {
        const char* key = warning.problem == TableFieldProblem::AddressNotHex      ? "TableAddressNotHex"
                          : warning.problem == TableFieldProblem::FramesNotANumber ? "TableFramesNotANumber"
                                                                                   : "TableSizeBelowOne";
        lines << host.text(key).arg(warning.line).arg(window::fromUtf8(warning.value));
    }
    return lines.join('\n');
}

}  // namespace zevran::pictures
