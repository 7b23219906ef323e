// Picture tables: the pictures a user knows to lie in the image, one line each, with
// address, frame count, frame size, dimensions and depth.
#pragma once

#include "image/failure.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::pictures {

// One row of the picture list; every cell as the list shows it.
struct PictureEntry {
    std::string number;      // "001", "002", ...
    std::string name;        // free text without spaces
    std::string address;     // "0X00123456": the first frame's offset in the image
    std::string frames;      // decimal frame count
    std::string frameSize;   // decimal bytes per frame
    std::string dimensions;  // "128*160"
    std::string depth;       // decimal bits per pixel
};

// A table file that cannot be loaded; the whole list is dropped (message 38).
class PictureTableError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

inline constexpr int kMessageBadPictureTable = 38;

// The leading number of a text, as the table cells have always been read: blanks
// skipped, an optional sign, digits with an optional fraction and exponent; text
// that does not start with a number counts as 0.
double leadingNumber(std::string_view text);

// A cell's number as a 32-bit integer, rounded half to even, as every number of a
// picture row is taken; PictureTableError `tooLarge` naming the cell when it does not fit.
std::int32_t roundToInt32(double value, image::Reason tooLarge, std::string_view cell);

// The two parts of a dimensions cell at its first "*"; the second is empty without one.
std::pair<std::string_view, std::string_view> splitDimensions(std::string_view cell);

// Width and height of a "W*H" cell, each through leadingNumber rounded half to even.
// Throws PictureTableError when one does not fit a 32-bit integer.
std::pair<std::int32_t, std::int32_t> pictureDimensions(std::string_view cell);

// Reads every non-empty line: fields 1, 2, 4, 6, 8 and 10 of its single-space split,
// each through Del_TAb, rows renumbered from 001. With `recomputeSize`, each frame
// size becomes width x height x depth / 8, rounded half to even. Throws
// PictureTableError for a line of fewer than 11 fields or a size that overflows.
std::vector<PictureEntry> readPictureTable(std::string_view text, bool recomputeSize);

// A field of a table line that the list would take leniently (a non-hex digit as 0)
// but that can name no picture: said at load, line by line.
enum class TableFieldProblem {
    AddressNotHex,     // value: the address field
    FramesNotANumber,  // value: the frame count field
    SizeBelowOne,      // value: the frame size field
};
struct TableFieldWarning {
    std::size_t line;  // from 1, as the file counts its lines
    TableFieldProblem problem;
    std::string value;
};

// Every such field of the table's text, in line order; blank lines count as lines.
std::vector<TableFieldWarning> pictureTableWarnings(std::string_view text);

// The table file of the rows: the headers of the frame, size, dimension and depth
// columns as labels; each address saved as its low six hex digits plus the offset in
// `offsetHex` ("" counts as 0). Throws image::HexOverflow when a sum overflows.
std::string pictureTableText(const std::vector<PictureEntry>& rows, const std::array<std::string, 4>& headers,
                             std::string_view offsetHex);

}  // namespace zevran::pictures
