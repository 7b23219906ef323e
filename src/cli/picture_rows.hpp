// The picture table and row named on the command line, read as the picture tab reads them.
#pragma once

#include "pictures/picture_table.hpp"

#include <string>
#include <vector>

namespace zevran::cli {

// The rows of the table file at `path`; throws naming the path when it cannot be read.
std::vector<pictures::PictureEntry> openPictureTable(const std::string& path, bool recomputeSize);

// Row `number` (counting from 1); throws naming the table and the rows it holds.
const pictures::PictureEntry& pictureRow(const std::vector<pictures::PictureEntry>& rows, long number,
                                         const std::string& table);

}  // namespace zevran::cli
