// A user's picture into a frame's bytes: the exact inverse of the preview's decoding.
// Every image bit that the preview shows is set from the pixel where it shows it; bits
// it does not show (row padding, the unused nibble of an odd 4-bit row, display memory
// outside the picture) keep their values.
#pragma once

#include "image/patch_writer.hpp"
#include "pixel_decode.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::pictures {

// A picture as plain pixels, top row first.
struct PictureGrid {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> rgb;  // red, green, blue of each pixel; 3 * width * height bytes
    // Empty, or one colour index per pixel: a 4-bit indexed picture whose own colour
    // table is the 16-colour table of "16.dat" has its indices taken as they are.
    std::vector<std::uint8_t> indices;
};

// Where one frame lies and how its pixels are stored (a picture row's geometry).
struct FrameLayout {
    std::int64_t address = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    int depth = 0;
};

// A picture or frame that cannot be imported. what() says why in English; the
// reason and its values (the %1, %2, ... of a translated text) let the window say
// it in the user's language. The caller adds the row, frame and file.
enum class ImportRefusal {
    Depth,         // %1 the depth
    NegativeSize,  // %1 the frame's size "W*H"
    TooLarge,      // %1 the frame's size
    PictureSize,   // %1 the picture's size, %2 the frame's size
    PixelData,     // %1 the picture's size (pixel data of another size: a caller's slip)
    NoBytes,       // %1 the frame's size
    PastEnd,       // %1 first address, %2 last address, %3 the image's size in bytes
    Clash,         // %1 and %2 the two pixels "(x, y)", %3 the image byte's address
    NoSuchFrame,   // %1 the frame asked for (from 1), %2 the row's frame count
};
class PictureImportError : public std::runtime_error {
public:
    PictureImportError(ImportRefusal reason, std::vector<std::string> values);
    ImportRefusal reason() const { return m_reason; }
    const std::vector<std::string>& values() const { return m_values; }

private:
    ImportRefusal m_reason;
    std::vector<std::string> m_values;
};

// The first and last image byte (inclusive) that the preview shows of the frame;
// nullopt when it shows none. Throws PictureImportError for a depth that cannot be
// imported, negative dimensions, or a frame too large for a handset picture.
struct ShownBytes {
    std::int64_t first = 0;
    std::int64_t last = 0;
};
std::optional<ShownBytes> shownImageBytes(const FrameLayout& frame);

// The frame's bytes after the import: the region from the first to the last image
// byte the preview shows, bytes it does not show as the image holds them. Throws
// PictureImportError for a picture whose size is not the frame's, a frame that
// shows no byte or whose bytes run past the image, and two pixels that show the same
// image bit in different colours (4-bit pictures of odd width).
image::Region encodePictureFrame(const PictureGrid& picture, const FrameLayout& frame,
                                 std::span<const std::uint8_t> image, const ColourTable& colours);

// The region, and how many pixels of the picture no image bit can hold: a 4-bit row
// of odd width may keep no nibble for its last pixel, which the preview then shows in
// colour 0. Such a pixel of another colour is lost, and counted; the import goes on.
struct EncodedFrame {
    image::Region region;
    std::int64_t unstoredPixels = 0;
};
EncodedFrame encodePictureFrameCounted(const PictureGrid& picture, const FrameLayout& frame,
                                       std::span<const std::uint8_t> image, const ColourTable& colours);

// The colour rules, one pixel at a time: each channel keeps its high bits.
std::uint16_t depth16Word(std::uint8_t red, std::uint8_t green, std::uint8_t blue);   // R5 G6 B5
std::uint16_t depth12Value(std::uint8_t red, std::uint8_t green, std::uint8_t blue);  // R4 G4 B4
std::uint8_t depth8Byte(std::uint8_t red, std::uint8_t green, std::uint8_t blue);     // B3 G3 R2
bool monoWhite(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
// The index of the nearest colour of the table (squared distance; the lowest index wins a tie).
std::uint8_t nearestColourIndex(const ColourTable& colours, std::uint8_t red, std::uint8_t green, std::uint8_t blue);

}  // namespace zevran::pictures
