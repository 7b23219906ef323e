// The picture scan's work on one lane: the bytes read at one depth from one byte
// phase as a single line of pixels, the way the preview would draw them.
#pragma once

#include "picture_scan.hpp"
#include "picture_view.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace zevran::pictures {

struct ScanLane {
    int depth = 16;
    int phase = 0;  // byte offset of pixel 0 (of a pixel pair at depth 12) in the range

    // Pixels pair up in whole bytes at depths 4 and 12: a picture starts on an even pixel.
    int pixelStep() const { return depth == 4 || depth == 12 ? 2 : 1; }
    std::int64_t byteOf(std::int64_t pixel) const { return phase + pixel * depth / 8; }
    // The first pixel whose bytes start at or after `byte`.
    std::int64_t pixelAt(std::int64_t byte) const;
};

// The phases a picture of each depth can start at: every byte of a pixel (pair).
std::vector<ScanLane> scanLanes(const std::vector<int>& depths);

// Windows of this many pixels are sorted into rough, smooth and flat.
inline constexpr std::int64_t kScanWindow = 32;

// Finds the candidates of one lane whose regions start in the windows from
// `firstWindow` to before `endWindow`, reading past them as far as a region goes.
// `range` is the scanned bytes only: nothing outside it is read.
class LaneScanner {
public:
    LaneScanner(std::span<const std::uint8_t> range, ScanLane lane, const ColourTable& colours);
    void scan(std::int64_t firstWindow, std::int64_t endWindow, std::vector<PictureCandidate>& out);
    std::int64_t windowCount() const { return m_windows; }
    // The mean likeness of `rows` rows of `width` pixels from pixel `first` to the row
    // below each.
    double rowsLikeness(std::int64_t first, std::int32_t width, std::int64_t rows);

private:
    enum Kind : std::uint8_t { Unknown, Rough, Smooth, Flat };
    struct WidthGuess {
        std::int32_t width = 0;
        double vertical = 0;    // mean distance to the pixel a row on
        double reference = 0;   // the median distance over all widths tried
        double horizontal = 0;  // mean distance to the next pixel
    };

    struct RowRun {
        std::int64_t rows = 0;       // rows alike with the next
        double likeness = 0;         // the sum of their likeness
        std::int64_t plainRows = 0;  // of those, rows of one colour
        struct Crossing {
            std::int64_t rows;
            double likeness;
            std::int64_t plainRows;
        };
        std::vector<Crossing> crossings;  // the run as it stood before each unlike row walked over
    };
    struct Reading {
        std::int64_t start = 0;  // the picture's first pixel
        std::int32_t width = 0;
        RowRun run;
    };

    void load(std::int64_t first, std::int64_t end);
    const std::uint32_t* pixels(std::int64_t from, std::int64_t to);
    Kind kindOf(std::int64_t window);
    bool rough(std::int64_t window) { return kindOf(window) == Rough; }
    std::int64_t runEnd(std::int64_t window);
    Reading readPicture(std::int64_t at, const WidthGuess& guess, int alike, std::int64_t lowest);
    void cutAtOtherPictures(Reading& reading, int alike, std::int64_t lowest);
    static double scoreOf(const Reading& reading, const WidthGuess& guess);
    static bool likelyPicture(const Reading& reading, const WidthGuess& guess);
    void scanRegion(std::int64_t from, std::int64_t to, std::vector<PictureCandidate>& out);
    bool guessWidth(std::int64_t at, std::int64_t end, WidthGuess& guess);
    double meanDistance(std::int64_t at, std::int64_t lag, std::int64_t pairs, std::int64_t stride);
    double meanStepDistance(std::int64_t at, std::int64_t lag, std::int64_t pairs);
    double rowLikeness(std::int64_t rowStart, std::int32_t width, int alike, bool& plain);
    std::int64_t refineStart(std::int64_t start, std::int32_t width, int alike);
    std::int32_t wholeWidth(std::int64_t start, std::int64_t rows, std::int32_t width);
    std::uint32_t backgroundOf(std::int64_t rowStart, std::int32_t width);
    double shareAlike(std::int64_t upper, std::int64_t lower, std::int32_t width, int alike);
    bool otherWidthIn(std::int64_t at, std::int64_t end, std::int32_t width);
    std::int64_t growBack(std::int64_t at, std::int32_t width, int alike, std::int64_t floor);
    RowRun walkRows(std::int64_t start, std::int32_t width, int alike);
    std::int64_t lineEdges(std::int64_t byte, std::int64_t count);
    bool ownPhase(std::int64_t byte, std::int64_t pixelCount);

    std::span<const std::uint8_t> m_range;
    ScanLane m_lane;
    ColourTable m_colours;
    std::int64_t m_pixelCount = 0;  // pixels of the lane inside the range
    std::int64_t m_windows = 0;
    std::int64_t m_wholeEnd = 0;  // pixels before this one are drawn reading nothing past the range
    ViewRenderer m_renderer;
    ViewRenderer m_tail;                            // the lane's last pixels, drawn apart
    ViewRenderer m_probe;                           // the phase check's own lines
    std::vector<std::uint32_t> m_joined;            // a block and the lane's last pixels
    const std::uint32_t* m_line = nullptr;          // the pixels loaded
    std::int64_t m_loadedFrom = 0, m_loadedTo = 0;  // pixels in m_line
    std::int64_t m_kindsBase = 0;                   // the window of m_kinds[0]
    std::vector<std::uint8_t> m_kinds;              // by window, Unknown until read
    std::vector<std::int64_t> m_backCrossings;      // the last growBack's: the row after each unlike row
};

}  // namespace zevran::pictures
