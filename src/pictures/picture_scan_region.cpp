// One region of alike pixels into pictures: the width at which pixels are likest,
// then the run of rows alike at that width, grown back to the picture's first pixel.
#include "picture_finder.hpp"
#include "picture_scan_lane.hpp"

#include <algorithm>
#include <array>

namespace zevran::pictures {

namespace {

// Pixel pairs compared per width, at most.
constexpr std::int64_t kSample = 512;
// The first look at every width takes every this many pairs; this many widths are then
// measured on all of them.
constexpr std::int64_t kCoarseStride = 8;
constexpr std::size_t kShortlist = 6;
// A width's rows must be at least this much likelier than the next width's either side.
constexpr double kLeastDip = 0.9;
constexpr double kStepWeight = 0.25;
// Runs of this many rows or more have their width checked over all of them, against
// widths up to this many pixel steps off.
constexpr std::int64_t kLeastRowsToRefine = 4;
constexpr std::int64_t kWidthDrift = 2;
constexpr double kHalfWidthMargin = 1.2;
// Below this median distance a stretch is too plain to show its width.
constexpr double kLeastReference = 16;
// Plain rows (one colour) at a picture's top or bottom counted at most; more are fill.
constexpr int kMostPlainRows = 64;
// Unlike rows, at most, between alike ones inside a picture: an outline across it, or
// where a curved shape starts.
constexpr std::int64_t kMostUnlikeRows = 3;
// Rows of one colour throughout, however many, are no picture without a few others.
constexpr std::int64_t kLeastShapedRows = 4;
// No picture is taller than this many rows: a longer run is fill or a pattern.
constexpr std::int64_t kMostRows = 4096;
// A region that shows no width is tried again this many pixels on.
constexpr std::int64_t kRetryStep = 8 * kScanWindow;
constexpr double kLeastScore = 0.5;
// The phase check reads at most this many pixels of a picture.
constexpr std::int64_t kProbePixels = 4096;
// Two pixels are alike within this distance (grain and shading stay below it; two
// random pixels seldom do).
constexpr int kAlikePixel = 64;
// A row is like the next when at least this part of its pixels is.
constexpr double kAlikeRow = 0.5;
// Rows with fewer edges than this are judged by their pixels alone.
constexpr std::int32_t kLeastEdges = 4;
// An edge is kept when the row below has it within this many pixels; curved edges
// move by more than that a row: this part of a row's edges may.
constexpr std::int32_t kEdgeDrift = 3;
constexpr double kEdgeAllowance = 0.25;

// Rows past an unlike row are another picture's when another width makes them at
// most this much as unlike as the width walked.
constexpr double kOtherWidthShare = 0.5;
// An edge across a picture leaves some columns as they were on either side of it; where
// one picture meets the next, no more than chance does.
constexpr double kLeastAcross = 0.05;
// Rows this alike at the width walked are that width's, whatever another may show.
constexpr double kAlikeAtAnyWidth = 4;

inline int distance(std::uint32_t a, std::uint32_t b)
{
    if (a == kNoDataPixel || b == kNoDataPixel) return 765;
    return colourDistance(a, b);
}

}  // namespace

// Mean distance of the pixel pairs (p, p + lag) for every `stride`th p of `pairs` from `at`.
double LaneScanner::meanDistance(std::int64_t at, std::int64_t lag, std::int64_t pairs, std::int64_t stride)
{
    const std::uint32_t* p = pixels(at, at + pairs + lag);
    std::int64_t total = 0, count = 0;
    for (std::int64_t i = 0; i < pairs; i += stride, ++count) total += distance(p[i], p[i + lag]);
    return count > 0 ? static_cast<double>(total) / static_cast<double>(count) : 765;
}

// Mean distance between the horizontal steps at p and at p + lag: shading steps the
// same everywhere, so only edges and shapes count, and they line up a row on.
double LaneScanner::meanStepDistance(std::int64_t at, std::int64_t lag, std::int64_t pairs)
{
    const std::uint32_t* p = pixels(at, at + pairs + lag + 1);
    const auto channel = [](std::uint32_t x, int shift) { return static_cast<int>((x >> shift) & 0xFF); };
    std::int64_t total = 0;
    for (std::int64_t i = 0; i < pairs; ++i)
        for (int shift : {0, 8, 16}) {
            const int a = channel(p[i + 1], shift) - channel(p[i], shift);
            const int b = channel(p[i + lag + 1], shift) - channel(p[i + lag], shift);
            total += a > b ? a - b : b - a;
        }
    return static_cast<double>(total) / static_cast<double>(pairs);
}

// The width whose rows are likest from `at` on, where a region of smooth windows
// ends at `end`. False for data that repeats every few pixels (tables of words, a
// picture read at a depth that splits its pixels), for stretches too plain to tell,
// and where no width stands out.
bool LaneScanner::guessWidth(std::int64_t at, std::int64_t end, WidthGuess& guess)
{
    const std::int64_t step = m_lane.pixelStep();
    const std::int64_t most = std::min<std::int64_t>(kScanMostWidth, (end - at) / 2) / step * step;
    if (most < kScanLeastWidth) return false;
    pixels(at, std::min(end, at + kSample + most) + 8);  // one decoding for all the widths
    const auto pairsFor = [&](std::int64_t lag) { return std::min(kSample, end - at - lag); };
    const auto sampled = [&](std::int64_t lag, std::int64_t stride) {
        return meanDistance(at, lag, pairsFor(lag), stride);
    };
    guess.horizontal = sampled(1, 1);
    double shortest = 765;
    for (std::int64_t lag = 2; lag < kScanLeastWidth; ++lag) shortest = std::min(shortest, sampled(lag, 2));
    if (guess.horizontal > kLeastReference && shortest < 0.5 * guess.horizontal) return false;
    // Every width on a sparse sample first; the likeliest few then on the whole sample.
    std::vector<std::pair<double, std::int64_t>> coarse;
    for (std::int64_t lag = kScanLeastWidth; lag <= most; lag += step)
        coarse.emplace_back(sampled(lag, kCoarseStride), lag);
    auto middle = coarse.begin() + static_cast<std::ptrdiff_t>(coarse.size() / 2);
    std::nth_element(coarse.begin(), middle, coarse.end());
    guess.reference = middle->first;
    const auto shortlist = std::min<std::size_t>(kShortlist, coarse.size());
    std::partial_sort(coarse.begin(), coarse.begin() + static_cast<std::ptrdiff_t>(shortlist), coarse.end());
    if (guess.reference < kLeastReference || coarse.front().first > 0.5 * guess.reference) return false;
    // Plain stretches are alike at every distance; the edges in them line up only a
    // row on, so each width is measured by both.
    const auto measured = [&](std::int64_t lag) {
        return sampled(lag, 1) + kStepWeight * meanStepDistance(at, lag, pairsFor(lag) - 1);
    };
    std::int64_t best = 0;
    double bestMeasure = 0;
    for (std::size_t i = 0; i < shortlist; ++i)
        if (const double m = measured(coarse[i].second);
            best == 0 || m < bestMeasure || (m == bestMeasure && coarse[i].second < best))
            best = coarse[i].second, bestMeasure = m;
    // Two to five rows on are alike too: the smallest width about as alike is the row.
    for (std::int64_t parts : {5, 4, 3, 2})
        if (best % (parts * step) == 0 && best / parts >= kScanLeastWidth &&
            measured(best / parts) <= 1.2 * bestMeasure + 2) {
            best /= parts;
            break;
        }
    // The pixel below is likelier than those beside it; smooth stretches with no
    // width of their own are alike at every short distance, growing with it.
    const double dip = measured(best);
    if (!(dip < kLeastDip * std::min(measured(best - step), measured(best + step)))) return false;
    guess.width = static_cast<std::int32_t>(best);
    guess.vertical = sampled(best, 1);
    return guess.vertical <= 0.4 * guess.reference && guess.horizontal <= 0.6 * guess.reference;
}

// How alike the row at `rowStart` is to the row below: the part of its pixels like
// the pixel below (within `alike`), or, where the row has edges, the part of its
// edges that the row below has too (within kEdgeDrift pixels), whichever is less. Plain parts
// are alike at any width; edges only at the picture's own. `plain` when every pixel
// of the row is one colour.
double LaneScanner::rowLikeness(std::int64_t rowStart, std::int32_t width, int alike, bool& plain)
{
    const std::uint32_t* p = pixels(rowStart, rowStart + 2 * std::int64_t{width} + kEdgeDrift + 1);
    std::int32_t count = 0, edges = 0, kept = 0;
    plain = p[0] != kNoDataPixel;
    for (std::int32_t x = 0; x < width; ++x) {
        count += distance(p[x], p[x + width]) <= alike;
        plain = plain && p[x] == p[0];
        if (x == 0 || distance(p[x - 1], p[x]) <= alike) continue;
        ++edges;
        for (std::int32_t below = x + width - kEdgeDrift; below <= x + width + kEdgeDrift; ++below)
            if (distance(p[x - 1], p[below - 1]) <= alike && distance(p[x], p[below]) <= alike) {
                ++kept;
                break;
            }
    }
    const double pixelsAlike = static_cast<double>(count) / width;
    return edges < kLeastEdges ? pixelsAlike
                               : std::min(pixelsAlike, kEdgeAllowance + static_cast<double>(kept) / edges);
}

double LaneScanner::rowsLikeness(std::int64_t first, std::int32_t width, std::int64_t rows)
{
    double total = 0;
    bool plain = false;
    for (std::int64_t row = 0; row < rows; ++row)
        total += std::min(1.0, rowLikeness(first + row * width, width, kAlikePixel, plain));
    return rows > 0 ? total / static_cast<double>(rows) : 0;
}

// The first pixel of the picture whose row-aligned start is `start`: pixels before it
// are taken while they are like the pixel below (two unlike in a row end it).
std::int64_t LaneScanner::refineStart(std::int64_t start, std::int32_t width, int alike)
{
    if (start < width) return start;
    const std::uint32_t* p = pixels(start - width, start + width) + width;
    std::int64_t first = start;
    int misses = 0;
    for (std::int64_t k = 1; k < width && misses < 2; ++k) {
        if (distance(p[-k], p[-k + width]) <= alike) first = start - k, misses = 0;
        else ++misses;
    }
    return first / m_lane.pixelStep() * m_lane.pixelStep();
}

// The colour a row starts and ends with, where both ends agree: the picture's
// background; kNoDataPixel, which no plain row has, where they differ.
std::uint32_t LaneScanner::backgroundOf(std::int64_t rowStart, std::int32_t width)
{
    const std::uint32_t* p = pixels(rowStart, rowStart + width);
    return p[0] == p[width - 1] ? p[0] : kNoDataPixel;
}

// Whether the pixels from `at` to before `end` (at most a sample's worth) are another
// picture's: at some other width their rows are clearly likelier than at `width`, or
// they repeat every few pixels. Pictures packed back to back are parted by a single
// unlike row, and a plain background is alike at any width, so rows alike past such a
// row need not be the same picture's.
bool LaneScanner::otherWidthIn(std::int64_t at, std::int64_t end, std::int32_t width)
{
    at = std::max<std::int64_t>(at, 0);
    end = std::min({end, m_pixelCount, at + kSample + kScanMostWidth});
    const std::int64_t most = std::min<std::int64_t>(kScanMostWidth, end - at - kScanLeastPixels);
    if (most < kScanLeastWidth || width > most) return false;
    pixels(at, end);  // one decoding for all the widths
    const auto pairsFor = [&](std::int64_t lag) { return std::min(kSample, end - at - lag); };
    // Another depth's pixels repeat every few pixels when read at this one.
    const double horizontal = meanDistance(at, 1, pairsFor(1), 1);
    for (std::int64_t lag = 2; lag < kScanLeastWidth && horizontal > kLeastReference; ++lag)
        if (meanDistance(at, lag, pairsFor(lag), 2) < 0.5 * horizontal) return true;
    const double own = meanDistance(at, width, pairsFor(width), 1);
    if (own <= kAlikeAtAnyWidth) return false;
    std::array<std::pair<double, std::int64_t>, 3> likeliest;
    likeliest.fill({765.0, 0});
    for (std::int64_t lag = kScanLeastWidth; lag <= most; lag += m_lane.pixelStep()) {
        if (lag == width) continue;
        const std::pair<double, std::int64_t> coarse{meanDistance(at, lag, pairsFor(lag), kCoarseStride), lag};
        if (coarse < likeliest.back()) {
            likeliest.back() = coarse;
            std::sort(likeliest.begin(), likeliest.end());
        }
    }
    return std::any_of(likeliest.begin(), likeliest.end(), [&](const auto& guess) {
        return guess.second != 0 && meanDistance(at, guess.second, pairsFor(guess.second), 1) < kOtherWidthShare * own;
    });
}

// The part of the pixels of the row at `upper` alike with the pixel in the same column
// of the row at `lower`.
double LaneScanner::shareAlike(std::int64_t upper, std::int64_t lower, std::int32_t width, int alike)
{
    const std::uint32_t* p = pixels(upper, lower + width);
    const std::int64_t lag = lower - upper;
    std::int32_t count = 0;
    for (std::int32_t x = 0; x < width; ++x) count += distance(p[x], p[x + lag]) <= alike;
    return static_cast<double>(count) / width;
}

// Whole rows back from `at` while each is like the row below (over up to
// kMostUnlikeRows unlike rows between alike ones, each kept in m_backCrossings), then
// pixel by pixel to the picture's first; never before `floor`. More than
// kMostPlainRows plain rows on top are fill.
std::int64_t LaneScanner::growBack(std::int64_t at, std::int32_t width, int alike, std::int64_t floor)
{
    std::int64_t start = at, plainRows = 0;
    bool plain = false;
    m_backCrossings.clear();
    for (std::int64_t rows = 0; start - width >= floor && rows < kMostRows; ++rows) {
        const double likeness = rowLikeness(start - width, width, alike, plain);
        if (likeness >= kAlikeRow) {
            start -= width;
            plainRows = plain ? plainRows + 1 : 0;
            continue;
        }
        // Over one to three unlike rows, to rows with some columns alike across them;
        // plain ones only in the picture's background colour (fill above a picture is
        // plain too).
        const std::uint32_t background = backgroundOf(start, width);
        const auto goesBack = [&](std::int64_t above) {
            return above >= floor && rowLikeness(above, width, alike, plain) >= kAlikeRow &&
                   shareAlike(above, start, width, alike) >= kLeastAcross &&
                   (!plain || *pixels(above, above + 1) == background);
        };
        std::int64_t above = start - 2 * std::int64_t{width};
        while (above >= start - kMostUnlikeRows * width - width && !goesBack(above)) above -= width;
        if (above < start - kMostUnlikeRows * width - width) break;
        m_backCrossings.push_back(start);
        start = above;
        plainRows = plain ? plainRows + 1 : 0;
    }
    if (plainRows > kMostPlainRows) return start + (plainRows - kMostPlainRows) * width;
    return std::max(floor, refineStart(start, width, alike));
}

// Rows on from `start` while each is like the next; up to kMostUnlikeRows unlike rows
// between alike ones are an edge across the picture (an outline has two, the top of a
// curved shape may have three), each kept in the run's crossings. More than
// kMostPlainRows plain rows at the end are fill: the run ends before them.
LaneScanner::RowRun LaneScanner::walkRows(std::int64_t start, std::int32_t width, int alike)
{
    RowRun run;
    std::int64_t plainRun = 0;
    bool plain = false;
    // The colour of the last row whose ends agree: a shape may reach the side at the
    // unlike row itself, and the rows below it are still the picture's background.
    std::uint32_t background = kNoDataPixel;
    for (std::int64_t row = start; row + 2 * std::int64_t{width} <= m_pixelCount && run.rows < kMostRows;
         row += width) {
        const double likeness = rowLikeness(row, width, alike, plain);
        // Past an unlike row the picture goes on where rows are alike again: plain ones
        // only in its background colour, not fill's or the next picture's.
        if (const std::uint32_t ends = backgroundOf(row, width); ends != kNoDataPixel) background = ends;
        const auto goesOn = [&](std::int64_t at) {
            bool nextPlain = false;
            if (rowLikeness(at, width, alike, nextPlain) < kAlikeRow ||
                shareAlike(row, at, width, alike) < kLeastAcross)
                return false;
            if (!nextPlain) return true;
            const std::uint32_t colour = *pixels(at, at + 1);
            const std::uint32_t* above = pixels(row, row + width);
            return colour == background || colour == above[0] || colour == above[width - 1];
        };
        if (likeness < kAlikeRow) {
            if (!goesOn(row + width) && !goesOn(row + 2 * std::int64_t{width}) &&
                !goesOn(row + kMostUnlikeRows * std::int64_t{width}))
                break;
            run.crossings.push_back({run.rows, run.likeness, run.plainRows});
        }
        ++run.rows;
        run.likeness += std::min(1.0, likeness);
        plainRun = plain ? plainRun + 1 : 0;
        run.plainRows += plain;
    }
    if (plainRun > kMostPlainRows) {
        run.rows -= plainRun - kMostPlainRows;
        run.plainRows -= plainRun - kMostPlainRows;
        run.likeness -= static_cast<double>(plainRun - kMostPlainRows);
    }
    return run;
}

// Edges (neighbouring pixels not alike) among at most kProbePixels pixels from `byte`.
std::int64_t LaneScanner::lineEdges(std::int64_t byte, std::int64_t count)
{
    count = std::min(count, kProbePixels) / 2 * 2;
    m_probe.render(m_range, {byte, m_lane.depth, static_cast<std::int32_t>(count), 1}, m_colours);
    const auto& p = m_probe.pixels();
    std::int64_t edges = 0;
    for (std::size_t i = 1; i < p.size(); ++i) edges += distance(p[i - 1], p[i]) > kAlikePixel;
    return edges;
}

// False when the same bytes read from another byte of their pixels have fewer edges:
// a plain picture looks alike read from any phase, but read from another one each
// edge splits into two, through a pixel made of both sides.
bool LaneScanner::ownPhase(std::int64_t byte, std::int64_t pixelCount)
{
    const int phases = m_lane.depth == 16 ? 2 : m_lane.depth == 12 || m_lane.depth == 24 ? 3 : 1;
    const std::int64_t own = lineEdges(byte, pixelCount);
    for (int shift = 1; shift < phases; ++shift)
        if (lineEdges(byte + shift, pixelCount) < own) return false;
    return true;
}

// The width, of `width` and its near neighbours, whose rows are likest over the whole
// run of `rows` rows from `start`: a sample of a few rows can prefer the pixel
// diagonally below in shaded pictures, where the whole picture does not.
std::int32_t LaneScanner::wholeWidth(std::int64_t start, std::int64_t rows, std::int32_t width)
{
    if (rows < kLeastRowsToRefine) return width;
    const std::int64_t step = m_lane.pixelStep();
    const std::int64_t pairs = rows * width - 2 * kWidthDrift * step;
    std::int32_t best = width;
    double bestDistance = meanDistance(start, width, pairs, 1);
    for (std::int64_t lag = width - kWidthDrift * step; lag <= width + kWidthDrift * step; lag += step) {
        if (lag == width || lag < kScanLeastWidth || lag > kScanMostWidth) continue;
        if (const double d = meanDistance(start, lag, pairs, 1); d < bestDistance)
            bestDistance = d, best = static_cast<std::int32_t>(lag);
    }
    // Two rows of a picture are alike too, and the sample the width was guessed on may
    // not tell: half the width, about as alike over all the rows, is the row.
    if (best % (2 * step) == 0 && best / 2 >= kScanLeastWidth &&
        meanDistance(start, best / 2, pairs, 1) <= kHalfWidthMargin * bestDistance + 2)
        best /= 2;
    return best;
}

// Cuts the reading at the first unlike row, walked over forth or back, past which
// another picture's rows lie; pictures packed back to back are parted by no more.
void LaneScanner::cutAtOtherPictures(Reading& reading, int alike, std::int64_t lowest)
{
    // Each unlike row is judged by the rows between it and the next one walked over:
    // past the next, they may be another picture's already.
    const std::int32_t width = reading.width;
    for (std::size_t i = 0; i < m_backCrossings.size(); ++i) {
        const std::int64_t crossing = m_backCrossings[i];
        const std::int64_t above = i + 1 < m_backCrossings.size() ? m_backCrossings[i + 1] : reading.start;
        const std::int64_t from = std::max(above, crossing - width - kSample - kScanMostWidth);
        if (crossing > reading.start && otherWidthIn(from, crossing - width, width)) {
            reading.start = std::max(lowest, refineStart(crossing, width, alike));
            reading.run = walkRows(reading.start, width, alike);
            break;
        }
    }
    const auto& crossings = reading.run.crossings;
    for (std::size_t i = 0; i < crossings.size() && crossings[i].rows < reading.run.rows; ++i) {
        const std::int64_t nextRow = i + 1 < crossings.size() ? crossings[i + 1].rows : reading.run.rows;
        if (otherWidthIn(reading.start + (crossings[i].rows + 1) * width, reading.start + (nextRow + 1) * width,
                         width)) {
            reading.run = {crossings[i].rows, crossings[i].likeness, crossings[i].plainRows, {}};
            break;
        }
    }
}

// Alike rows, and pixels likest a row on rather than at other distances.
double LaneScanner::scoreOf(const Reading& reading, const WidthGuess& guess)
{
    const RowRun& run = reading.run;
    const double rowsAlike = run.rows > 0 ? run.likeness / static_cast<double>(run.rows) : 0;
    return std::clamp(rowsAlike * (1 - (guess.vertical + 0.5 * guess.horizontal) / (1.5 * guess.reference)), 0.0, 1.0);
}

bool LaneScanner::likelyPicture(const Reading& reading, const WidthGuess& guess)
{
    const std::int64_t height = reading.run.rows + 1;
    return height >= kScanLeastHeight && reading.width * height >= kScanLeastPixels && height <= 0x7FFFFFFF &&
           reading.run.rows - reading.run.plainRows >= kLeastShapedRows && scoreOf(reading, guess) >= kLeastScore;
}

// The picture that the rows around `at` are part of, read at the guessed width or a
// near one that suits all its rows better.
LaneScanner::Reading LaneScanner::readPicture(std::int64_t at, const WidthGuess& guess, int alike, std::int64_t lowest)
{
    Reading reading{growBack(at, guess.width, alike, lowest), guess.width, {}};
    reading.run = walkRows(reading.start, guess.width, alike);
    // A walk that stops short of `at` went back over an unlike row into rows that are
    // not this picture's: it starts after the last such row the walk does not cross.
    const std::int64_t walked = reading.start + (reading.run.rows + 1) * guess.width;
    const auto after = std::find_if(m_backCrossings.rbegin(), m_backCrossings.rend(),
                                    [&](std::int64_t crossing) { return crossing >= walked; });
    if (walked <= at && after != m_backCrossings.rend()) {
        reading.start = std::max(lowest, refineStart(*after, guess.width, alike));
        reading.run = walkRows(reading.start, guess.width, alike);
    }
    if (!likelyPicture(reading, guess)) return reading;
    cutAtOtherPictures(reading, alike, lowest);
    if (const std::int32_t better = wholeWidth(reading.start, reading.run.rows, guess.width); better != guess.width) {
        reading.width = better;
        reading.start = growBack(at, better, alike, lowest);
        reading.run = walkRows(reading.start, better, alike);
        cutAtOtherPictures(reading, alike, lowest);
    }
    return reading;
}

void LaneScanner::scanRegion(std::int64_t from, std::int64_t to, std::vector<PictureCandidate>& out)
{
    std::int64_t floor = 0;  // where the last picture of this region ended
    for (std::int64_t at = from; to - at >= kScanLeastPixels / 2;) {
        WidthGuess guess;
        if (!guessWidth(at, to, guess)) {
            at += kRetryStep;
            continue;
        }
        const int alike = static_cast<int>(std::max<double>(kAlikePixel, 2 * guess.vertical));
        // Rows before the region are rough or plain: a few plain ones at most are looked at.
        const std::int64_t lowest = std::max(floor, from - (kMostPlainRows + 2) * std::int64_t{guess.width});
        const Reading reading = readPicture(at, guess, alike, lowest);
        const std::int64_t start = reading.start, width = reading.width, height = reading.run.rows + 1;
        if (likelyPicture(reading, guess) && ownPhase(m_lane.byteOf(start), width * height)) {
            out.push_back({m_lane.byteOf(start), m_lane.depth, reading.width, static_cast<std::int32_t>(height),
                           scoreOf(reading, guess), false});
            floor = start + width * height;
            at = std::max(floor, at + kScanWindow);
        } else {
            // The rows walked are no picture's: the next try starts after them.
            at = std::max(at + kRetryStep, start + reading.run.rows * width);
        }
    }
}

}  // namespace zevran::pictures
