#include "picture_scan_lane.hpp"

#include "picture_finder.hpp"

#include <algorithm>
#include <cmath>

namespace zevran::pictures {

namespace {

// Mean colour distance of neighbouring pixels (0 to 765) at most this for a smooth
// window: random bytes average about 255 at every depth.
constexpr double kSmoothLimit = 80;
// A region must hold this many windows before it is looked at.
constexpr std::int64_t kLeastRunWindows = 4;
// Windows decoded at once while sorting them.
constexpr std::int64_t kSortBlock = 128;

inline int distance(std::uint32_t a, std::uint32_t b)
{
    // A pixel outside the scanned bytes is unlike everything.
    if (a == kNoDataPixel || b == kNoDataPixel) return 765;
    return colourDistance(a, b);
}

}  // namespace

std::int64_t ScanLane::pixelAt(std::int64_t byte) const
{
    const std::int64_t offset = std::max<std::int64_t>(0, byte - phase);
    std::int64_t pixel = (offset * 8 + depth - 1) / depth;
    if (pixel % pixelStep()) ++pixel;
    return pixel;
}

std::vector<ScanLane> scanLanes(const std::vector<int>& depths)
{
    std::vector<ScanLane> lanes;
    for (int depth : depths) {
        // A pixel of 16 bits starts at either byte of a word; pairs of 12-bit pixels
        // and 24-bit pixels at any of their three bytes.
        const int phases = depth == 16 ? 2 : depth == 12 || depth == 24 ? 3 : 1;
        for (int phase = 0; phase < phases; ++phase) lanes.push_back({depth, phase});
    }
    return lanes;
}

LaneScanner::LaneScanner(std::span<const std::uint8_t> range, ScanLane lane, const ColourTable& colours)
    : m_range(range), m_lane(lane), m_colours(colours)
{
    const auto bytes = static_cast<std::int64_t>(range.size()) - lane.phase;
    m_pixelCount = bytes <= 0 ? 0 : bytes * 8 / lane.depth / lane.pixelStep() * lane.pixelStep();
    m_windows = (m_pixelCount + kScanWindow - 1) / kScanWindow;
    // Drawing a line reads up to 3 bytes past its pixels' own.
    const auto readable = static_cast<std::int64_t>(range.size()) - lane.phase - 3;
    m_wholeEnd = readable <= 0 ? 0 : readable * 8 / lane.depth / lane.pixelStep() * lane.pixelStep();
}

// Pixels from `first` to before `end` (whole pixel steps) into the line. The drawing
// marks pixels that read past the range by drawing the line a second time from a
// stand-in; the lane's last pixels are drawn apart, so that the block before them is
// drawn once.
void LaneScanner::load(std::int64_t first, std::int64_t end)
{
    const auto draw = [&](ViewRenderer& renderer, std::int64_t from, std::int64_t to) {
        renderer.render(m_range, {m_lane.byteOf(from), m_lane.depth, static_cast<std::int32_t>(to - from), 1},
                        m_colours);
        return renderer.pixels().data();
    };
    if (first < 0 || end <= m_wholeEnd || first >= m_wholeEnd) {
        m_line = draw(m_renderer, first, end);
        return;
    }
    const std::uint32_t* whole = draw(m_renderer, first, m_wholeEnd);
    m_joined.assign(whole, whole + (m_wholeEnd - first));
    const std::uint32_t* tail = draw(m_tail, m_wholeEnd, end);
    m_joined.insert(m_joined.end(), tail, tail + (end - m_wholeEnd));
    m_line = m_joined.data();
}

// The pixels from `from` to `to`, drawn through the preview's row assembly; valid
// until the next call. Pixels outside the lane read as kNoDataPixel.
const std::uint32_t* LaneScanner::pixels(std::int64_t from, std::int64_t to)
{
    if (from < m_loadedFrom || to > m_loadedTo) {
        const std::int64_t step = m_lane.pixelStep();
        // Growing a picture back row by row asks for pixels a little before the last
        // ones each time: then the block ends where asked and holds the rows before.
        const bool back = from < m_loadedFrom && to <= m_loadedTo;
        const std::int64_t first =
            back ? std::min(from, std::max(to - kSortBlock * kScanWindow, std::min<std::int64_t>(from, 0))) : from;
        m_loadedFrom = first >= 0 ? first / step * step : -((-first + step - 1) / step * step);
        // A block at a time, but no further past the lane's end than asked.
        m_loadedTo = std::max(to, std::min(m_loadedFrom + kSortBlock * kScanWindow, m_pixelCount));
        m_loadedTo += (m_loadedTo - m_loadedFrom) % step;
        load(m_loadedFrom, m_loadedTo);
    }
    return m_line + (from - m_loadedFrom);
}

LaneScanner::Kind LaneScanner::kindOf(std::int64_t window)
{
    if (window < 0 || window >= m_windows) return Rough;
    if (window < m_kindsBase) {
        m_kindsBase = window;
        m_kinds.clear();
    }
    const auto slot = [this](std::int64_t w) -> std::uint8_t& {
        const auto index = static_cast<std::size_t>(w - m_kindsBase);
        if (index >= m_kinds.size()) m_kinds.resize(index + kSortBlock, Unknown);
        return m_kinds[index];
    };
    if (slot(window) != Unknown) return static_cast<Kind>(slot(window));
    // Sort a block of windows at once: they are decoded together.
    const std::int64_t end = std::min(window + kSortBlock, m_windows);
    const std::uint32_t* line = pixels(window * kScanWindow, end * kScanWindow);
    for (std::int64_t w = window; w < end; ++w) {
        const std::uint32_t* p = line + (w - window) * kScanWindow;
        // Most windows are rough, and tell so within a few pixels.
        constexpr int kLimit = static_cast<int>(kSmoothLimit * (kScanWindow - 1));
        int total = 0;
        bool flat = p[0] != kNoDataPixel;
        for (std::int64_t i = 1; i < kScanWindow && total <= kLimit; ++i) {
            total += distance(p[i - 1], p[i]);
            flat = flat && p[i] == p[0];
        }
        slot(w) = flat ? Flat : total <= kLimit ? Smooth : Rough;
    }
    return static_cast<Kind>(slot(window));
}

// A run of windows goes on over one rough window between two others; it ends at two
// rough windows in a row.
std::int64_t LaneScanner::runEnd(std::int64_t window)
{
    std::int64_t end = window;
    while (end < m_windows) {
        if (!rough(end)) ++end;
        else if (end + 1 < m_windows && !rough(end + 1)) end += 2;
        else break;
    }
    return end;
}

void LaneScanner::scan(std::int64_t firstWindow, std::int64_t endWindow, std::vector<PictureCandidate>& out)
{
    m_kindsBase = std::max<std::int64_t>(0, firstWindow - 2);
    m_kinds.clear();
    endWindow = std::min(endWindow, m_windows);
    std::int64_t window = firstWindow;
    // A run that began before the first window belongs to the scan before this one.
    if (window > 0 && (!rough(window - 1) || (window > 1 && !rough(window - 2) && !rough(window))))
        window = runEnd(window);
    while (window < endWindow) {
        if (rough(window)) {
            ++window;
            continue;
        }
        const std::int64_t end = runEnd(window);
        // Flat windows at either end are fill or a picture's plain border; the border
        // is found again row by row.
        std::int64_t first = window, last = end - 1;
        while (first <= last && kindOf(first) != Smooth) ++first;
        while (last >= first && kindOf(last) != Smooth) --last;
        if (end - window >= kLeastRunWindows && first <= last)
            scanRegion(first * kScanWindow, (last + 1) * kScanWindow, out);
        window = end;
    }
}

}  // namespace zevran::pictures
