// The picture finder's arithmetic: the width that makes a stretch of bytes look like
// a picture, the moves through the image, the byte under a pixel of the view, and the
// picture-list row of a picture found.
#pragma once

#include "image/failure.hpp"

#include "picture_table.hpp"
#include "picture_view.hpp"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::pictures {

// --- width guess ---

// How unlike two drawn pixels (0xAARRGGBB) look: |red| + |green| + |blue|, 0 to 765.
// The width guess and the picture scan both measure likeness by it.
inline int colourDistance(std::uint32_t a, std::uint32_t b)
{
    const auto channel = [](std::uint32_t x, std::uint32_t y, int shift) {
        const int d = static_cast<int>((x >> shift) & 0xFF) - static_cast<int>((y >> shift) & 0xFF);
        return d < 0 ? -d : d;
    };
    return channel(a, b, 16) + channel(a, b, 8) + channel(a, b, 0);
}

inline constexpr std::int32_t kLeastGuessWidth = 8;
inline constexpr std::int32_t kMostGuessWidth = 320;
// Above this the guess would read too much to answer at once; it is refused.
inline constexpr std::int32_t kWidestGuess = 2048;
// The guess compares the first 16 rows' worth of pixels of the widest width tried.
inline constexpr std::int32_t kGuessSampleRows = 16;

struct WidthScore {
    std::int32_t width = 0;
    double score = 0;  // mean colour distance of vertical neighbours: lower is more alike
};

// A guess that cannot be made: depth 1 (the display memory has no width), a depth the
// preview refuses, or limits out of order or above kWidestGuess.
class WidthGuessError : public image::TypedError<std::invalid_argument> {
public:
    using TypedError::TypedError;
};

// Every width from `least` to `most` that has neighbours to compare, best first (ties
// by the smaller width). The pixels from `address` on are drawn as the preview draws
// them (depth 4 through `colours`) and read as one line; a width w is scored by the
// mean of |red| + |green| + |blue| differences between the pixel at p and the one at
// p + w, the pixel straight below it when w is the picture's width. Pixels outside the
// image are left out. Throws WidthGuessError as above, and std::runtime_error when no
// width has two rows inside the image (the caller names the address).
std::vector<WidthScore> guessWidths(std::span<const std::uint8_t> image, std::int64_t address, int depth,
                                    std::int32_t least, std::int32_t most, const ColourTable& colours);

// --- moving through the image ---

enum class FinderMove { Byte, Pixel, Row, Frame, Page };

// Bytes one move forward spans for a view (its width, depth and visible rows) of
// pictures `pictureHeight` rows high. A pixel is the smallest whole step of the depth
// (a pixel pair of three bytes at depth 12, one byte at depths 1, 4 and 8); a row is
// width x depth / 8 rounded half to even; a frame the frame size of such a picture;
// a page the rows on show. The mono display memory moves one column (one row of its
// picture) a byte, and 768 bytes a frame or page. Never below 1.
std::int64_t moveBytes(FinderMove move, const ViewGeometry& view, std::int32_t pictureHeight);

// The address of the bytes that hold pixel (x, y) of the view (the first of a depth-12
// pair, the byte of a depth-4 pixel); -1 outside the view.
std::int64_t pixelAddress(const ViewGeometry& view, std::int32_t x, std::int32_t y);

// --- the row of a picture found ---

// width x height x depth / 8 in double, rounded half to even, as the table's
// recomputed sizes are.
std::int64_t foundFrameSize(std::int32_t width, std::int32_t height, int depth);

// A name a table line can carry: not empty, no space, tab or line break.
bool pictureNameAllowed(std::string_view name);

// The number after the last row's ("001" for an empty list), at least three digits.
std::string nextPictureNumber(const std::vector<PictureEntry>& rows);

struct FoundPicture {
    std::int64_t address = 0;
    std::int64_t frames = 1;
    std::int32_t width = 0;
    std::int32_t height = 0;
    int depth = 16;
};

// The picture-list row: the address as "0X" and eight hex digits, frames, frame size,
// "W*H" and depth in decimal. Throws std::invalid_argument for an address outside 32
// bits, a name pictureNameAllowed refuses, or a frame count below 1.
PictureEntry foundPictureEntry(const FoundPicture& picture, std::string number, std::string name);

}  // namespace zevran::pictures
