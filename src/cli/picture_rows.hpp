// The picture table and row named on the command line, read as the picture tab reads them.
#pragma once

#include "cli_args.hpp"

#include "pictures/picture_table.hpp"

#include <cstdint>

#include <string>
#include <vector>

namespace zevran::cli {

// The rows of the table file at `path`; throws naming the path when it cannot be read.
std::vector<pictures::PictureEntry> openPictureTable(const std::string& path, bool recomputeSize);

// Row `number` (counting from 1); throws naming the table and the rows it holds.
const pictures::PictureEntry& pictureRow(const std::vector<pictures::PictureEntry>& rows, long number,
                                         const std::string& table);

// The frame --frame names, counting from 1 as the player shows frames (1 without
// --frame). 0 is a usage error saying so.
std::int64_t frameNumberArgument(const Arguments& args);

// The index (from 0) of frame `number` of a row of `frames` frames; a frame past the
// last is refused, naming the row and its frame count.
std::int64_t frameIndexOfRow(std::int64_t number, const pictures::PictureEntry& row, std::int64_t frames);

// "row 001 (name)", the way every picture message names a row.
std::string placeOf(const pictures::PictureEntry& row);

}  // namespace zevran::cli
