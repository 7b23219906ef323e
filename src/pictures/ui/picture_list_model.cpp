#include "picture_list_model.hpp"

#include "window/widget_helpers.hpp"

#include <string>

namespace zevran::pictures {

namespace {

using Column = window::RowColumn<PictureListRow>;

Column cell(std::string PictureEntry::*field)
{
    return {[field](const PictureListRow& row) { return window::fromUtf8(row.entry.*field); }};
}

}  // namespace

PictureListModel* makePictureListModel(QObject* parent)
{
    Column number = cell(&PictureEntry::number);
    number.checked = [](const PictureListRow& row) { return row.checked; };
    number.setChecked = [](PictureListRow& row, bool checked) { row.checked = checked; };
    Column name = cell(&PictureEntry::name);
    name.toolTip = true;
    return new PictureListModel({number, name, cell(&PictureEntry::address), cell(&PictureEntry::frames),
                                 cell(&PictureEntry::frameSize), cell(&PictureEntry::dimensions),
                                 cell(&PictureEntry::depth)},
                                parent);
}

std::vector<PictureEntry> entriesOf(const std::vector<PictureListRow>& rows)
{
    std::vector<PictureEntry> entries;
    entries.reserve(rows.size());
    for (const PictureListRow& row : rows) entries.push_back(row.entry);
    return entries;
}

}  // namespace zevran::pictures
