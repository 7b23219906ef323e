// The picture finder's view: any stretch of the image drawn as pixels of a chosen
// depth and width, exactly as the preview would show a picture of those dimensions
// lying there. The pixels come from the same row assembly as the preview's BMP.
#pragma once

#include "pixel_decode.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace zevran::pictures {

// Pixels are 0xAARRGGBB. Every pixel drawn from the image is opaque (alpha FF); a
// pixel any of whose bytes lies outside the image is this one, which no data pixel
// can equal since its alpha is 0.
inline constexpr std::uint32_t kNoDataPixel = 0x00FF00FF;

// The mono display memory always shows as this picture, whatever width is asked for.
inline constexpr std::int32_t kMonoViewWidth = 64;
inline constexpr std::int32_t kMonoViewHeight = 96;

// A view larger than this many pixels is refused rather than allocated.
inline constexpr std::int64_t kLargestView = std::int64_t{1} << 24;

// What to draw: `rows` rows of `width` pixels of `depth` bits from `address`.
struct ViewGeometry {
    std::int64_t address = 0;
    int depth = 16;
    std::int32_t width = 128;
    std::int32_t rows = 160;
};

// Whether the preview draws this depth: 1, 4, 8, 12, 16 and 24.
bool viewDepthDrawable(int depth);

// Draws views into buffers it keeps, so redrawing allocates nothing once the size
// has been met.
class ViewRenderer {
public:
    // Draws the view. False, and an empty view, for a depth the preview refuses.
    // Throws std::length_error for a negative size or one above kLargestView.
    bool render(std::span<const std::uint8_t> image, const ViewGeometry& geometry, const ColourTable& colours);

    std::int32_t width() const { return m_width; }
    std::int32_t height() const { return m_height; }
    // Row by row from the top, width() pixels a row.
    const std::vector<std::uint32_t>& pixels() const { return m_pixels; }
    std::uint32_t pixel(std::int32_t x, std::int32_t y) const
    {
        return m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x)];
    }

private:
    void convertRows(const std::uint8_t* rows, std::int64_t stride, int depth, const ColourTable& colours);
    void markMissing(std::span<const std::uint8_t> image, const ViewGeometry& geometry, std::int64_t stride);

    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::vector<std::uint32_t> m_pixels;
    std::vector<std::uint8_t> m_rows;      // the assembled BMP rows, top row first
    std::vector<std::uint8_t> m_present;   // FF for each image byte near the view's edges
    std::vector<std::uint8_t> m_presence;  // those FF bytes assembled as the rows are
};

}  // namespace zevran::pictures
