#include "picture_view.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

namespace zevran::pictures {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;

std::uint32_t argb(unsigned red, unsigned green, unsigned blue) { return kOpaque | red << 16 | green << 8 | blue; }

// The 16 colours of depth 4 as the BMP's colour table gives them: blue, green, red, 0.
std::array<std::uint32_t, 16> paletteOf(const ColourTable& colours)
{
    std::array<std::uint32_t, 16> palette{};
    for (std::size_t i = 0; i < palette.size(); ++i)
        palette[i] = argb(colours[4 * i + 2], colours[4 * i + 1], colours[4 * i]);
    return palette;
}

// Bytes of a depth-4 row that the row assembly fills: half-to-even rounding makes an
// odd width read one byte short (width 7 reads 3 bytes), so its last pixel is never
// read and shows colour 0, as in the preview.
std::int64_t depth4BytesRead(std::int32_t width, std::int64_t stride)
{
    return std::min(static_cast<std::int64_t>(std::nearbyint(0.5 * width - 1)) + 1, stride);
}

}  // namespace

bool viewDepthDrawable(int depth) { return depth == 1 || bmpBitsPerPixel(depth) != 0; }

bool ViewRenderer::render(std::span<const std::uint8_t> image, const ViewGeometry& geometry, const ColourTable& colours)
{
    m_width = m_height = 0;
    m_pixels.clear();
    if (!viewDepthDrawable(geometry.depth)) return false;
    std::int64_t stride = 0;
    if (geometry.depth == 1) {
        m_width = kMonoViewWidth;
        m_height = kMonoViewHeight;
        stride = kMonoViewWidth / 8;
        m_rows.assign(kMonoMemoryBytes, 0);
        assembleMonoColumns(image, geometry.address, m_rows.data());
    } else {
        if (geometry.width < 0 || geometry.rows < 0 || std::int64_t{geometry.width} * geometry.rows > kLargestView)
            throw std::length_error("a view of " + std::to_string(geometry.width) + " by " +
                                    std::to_string(geometry.rows) + " pixels is too large to draw");
        m_width = geometry.width;
        m_height = geometry.rows;
        stride = bmpStride(m_width, bmpBitsPerPixel(geometry.depth));
        m_rows.assign(static_cast<std::size_t>(stride * m_height), 0);
        assembleFrameRows(image, geometry.address, m_width, m_height, geometry.depth, stride, m_rows.data());
    }
    m_pixels.resize(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
    convertRows(m_rows.data(), stride, geometry.depth, colours);
    markMissing(image, geometry, stride);
    return true;
}

// The assembled BMP rows to 0xAARRGGBB, channel for channel as a BMP reader shows
// them: 5- and 6-bit channels of depth 16 shifted up to 8 bits, the colour table for
// depth 4, black and white for depth 1.
void ViewRenderer::convertRows(const std::uint8_t* rows, std::int64_t stride, int depth, const ColourTable& colours)
{
    std::uint32_t* out = m_pixels.data();
    const auto palette = depth == 4 ? paletteOf(colours) : std::array<std::uint32_t, 16>{};
    for (std::int32_t y = 0; y < m_height; ++y) {
        const std::uint8_t* row = rows + y * stride;
        switch (depth) {
        case 1:
            for (std::int32_t x = 0; x < m_width; ++x)
                *out++ = (row[x >> 3] >> (7 - (x & 7))) & 1 ? 0xFFFFFFFF : kOpaque;
            break;
        case 4:
            for (std::int32_t x = 0; x < m_width; ++x) *out++ = palette[x & 1 ? row[x >> 1] & 0xF : row[x >> 1] >> 4];
            break;
        case 16:
            for (std::int32_t x = 0; x < m_width; ++x, row += 2) {
                const unsigned v = row[0] | unsigned{row[1]} << 8;
                *out++ = argb((v >> 11) << 3, ((v >> 5) & 0x3F) << 2, (v & 0x1F) << 3);
            }
            break;
        default:  // 24 bits in blue, green, red order (depths 8, 12 and 24)
            for (std::int32_t x = 0; x < m_width; ++x, row += 3) *out++ = argb(row[2], row[1], row[0]);
            break;
        }
    }
}

// Pixels whose bytes lie outside the image become kNoDataPixel. Which bytes a pixel
// reads is the row assembly's own business (half-to-even rounding included), so it
// is asked: bytes of FF standing for the image near the view are assembled as the
// pixels were, and a pixel that came out with a zero byte read some byte that is not
// there. Views inside the image skip all of this.
void ViewRenderer::markMissing(std::span<const std::uint8_t> image, const ViewGeometry& geometry, std::int64_t stride)
{
    const int depth = geometry.depth;
    const std::int64_t size = static_cast<std::int64_t>(image.size());
    // Every byte the assembly reads lies in [low, high).
    const std::int64_t low = geometry.address;
    const std::int64_t high = depth == 1 ? low + static_cast<std::int64_t>(kMonoMemoryBytes)
                                         : low + (std::int64_t{m_width} * m_height * depth + 7) / 8 + 3;
    if (low >= 0 && high <= size) return;
    // The stand-in starts at an even offset: rounding half to even then meets the
    // same halves at the same places.
    const std::int64_t base = low <= 0 ? 0 : low & ~std::int64_t{1};
    const std::int64_t end = std::min(size, high);
    if (end <= base) {
        std::fill(m_pixels.begin(), m_pixels.end(), kNoDataPixel);
        return;
    }
    m_present.assign(static_cast<std::size_t>(end - base), 0xFF);
    m_presence.assign(m_rows.size(), 0);
    if (depth == 1) assembleMonoColumns(m_present, geometry.address - base, m_presence.data());
    else assembleFrameRows(m_present, geometry.address - base, m_width, m_height, depth, stride, m_presence.data());
    const std::int64_t depth4Bytes = depth == 4 ? depth4BytesRead(m_width, stride) : 0;
    for (std::int32_t y = 0; y < m_height; ++y) {
        const std::uint8_t* row = m_presence.data() + y * stride;
        std::uint32_t* out = m_pixels.data() + static_cast<std::ptrdiff_t>(y) * m_width;
        for (std::int32_t x = 0; x < m_width; ++x) {
            const std::ptrdiff_t column = x;
            bool there = true;
            switch (depth) {
            case 1: there = (row[x >> 3] >> (7 - (x & 7))) & 1; break;
            case 4: there = (x >> 1) >= depth4Bytes || (x & 1 ? row[x >> 1] & 0xF : row[x >> 1] >> 4) != 0; break;
            case 16: there = row[2 * column] != 0 && row[2 * column + 1] != 0; break;
            default: there = row[3 * column] != 0 && row[3 * column + 1] != 0 && row[3 * column + 2] != 0; break;
            }
            if (!there) out[x] = kNoDataPixel;
        }
    }
}

}  // namespace zevran::pictures
