// The picture list's rows: each picture table row as the table file or the finder gave
// it, and whether the user has checked it for the patch of rows.
#pragma once

#include "pictures/picture_table.hpp"
#include "window/row_table_model.hpp"

#include <vector>

namespace zevran::pictures {

struct PictureListRow {
    PictureEntry entry;
    bool checked = false;
};

using PictureListModel = window::RowTableModel<PictureListRow>;

// No., Name, Address, Frames, Frame size, Dimensions, Depth: every cell read-only, a
// check box in the first, the name's whole text under the pointer (names outgrow their
// column).
PictureListModel* makePictureListModel(QObject* parent);

// The rows as the logic sees them, in list order.
std::vector<PictureEntry> entriesOf(const std::vector<PictureListRow>& rows);

}  // namespace zevran::pictures
