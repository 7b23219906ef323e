#include "picture_scan.hpp"

#include "image/hex_text.hpp"
#include "picture_finder.hpp"
#include "picture_frames.hpp"
#include "picture_scan_lane.hpp"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <thread>

namespace zevran::pictures {

namespace {

// The range is scanned in pieces of this many bytes, each lane of a piece one task.
constexpr std::int64_t kPieceBytes = std::int64_t{1} << 20;
// A candidate that shares more than this part of its bytes with a likelier one is
// the same picture read another way.
constexpr double kMostShared = 0.25;
// Two candidates this many rows apart or less, alike in depth and width, are one picture.
constexpr std::int64_t kMostEdgeRows = 4;

std::optional<ScanFailure> refusal(std::int64_t size, const ScanRequest& request, std::int64_t last)
{
    for (int depth : request.depths)
        if (std::find(kScanDepths.begin(), kScanDepths.end(), depth) == kScanDepths.end())
            return ScanFailure{ScanRefusal::DepthNotScanned, depth};
    if (request.first < 0 || request.first >= size) return ScanFailure{ScanRefusal::FirstOutsideImage, request.first};
    if (last >= size) return ScanFailure{ScanRefusal::LastOutsideImage, last};
    if (last < request.first) return ScanFailure{ScanRefusal::RangeReversed, last};
    return std::nullopt;
}

std::int64_t overlap(const PictureCandidate& a, const PictureCandidate& b)
{
    const std::int64_t from = std::max(a.address, b.address);
    const std::int64_t to = std::min(a.address + candidateBytes(a), b.address + candidateBytes(b));
    return std::max<std::int64_t>(0, to - from);
}

// Whether the two share more than kMostShared of either's bytes.
bool sharesMuch(const PictureCandidate& a, const PictureCandidate& b)
{
    const auto shared = static_cast<double>(overlap(a, b));
    return shared > kMostShared * static_cast<double>(candidateBytes(a)) ||
           shared > kMostShared * static_cast<double>(candidateBytes(b));
}

// Finer pixels read coarser still look like a picture (plain parts stay plain, edges
// blur), coarser ones read finer do not: of two readings whose rows are the same
// bytes (or two to four of the finer one's rows, to within a coarse pixel), the finer
// depth is the picture's.
bool coarserReading(const PictureCandidate& candidate, const std::vector<PictureCandidate>& found)
{
    return std::any_of(found.begin(), found.end(), [&](const PictureCandidate& other) {
        const std::int64_t rowBits = std::int64_t{candidate.width} * candidate.depth;
        const std::int64_t otherRowBits = std::int64_t{other.width} * other.depth;
        // Rows a coarse pixel off whole rows of the finer reading: a coarse pixel cannot
        // fall on the finer rows' bytes, and the reading is sheared, but still plain.
        const std::int64_t rows = (rowBits + otherRowBits / 2) / otherRowBits;
        return other.depth < candidate.depth && rows >= 1 && rows <= 4 &&
               std::abs(rowBits - rows * otherRowBits) < candidate.depth && sharesMuch(candidate, other);
    });
}

// The rows of `candidate` that do not reach into `other`, a likelier picture: rows
// are cut from its end when the other starts later, from its start when it starts
// earlier, and around it when it lies inside. False when too little is left.
bool trimAgainst(PictureCandidate& candidate, const PictureCandidate& other)
{
    if (overlap(candidate, other) == 0) return true;
    const std::int64_t rowBytes = std::max<std::int64_t>(1, foundFrameSize(candidate.width, 1, candidate.depth));
    const std::int64_t end = candidate.address + candidateBytes(candidate);
    const std::int64_t otherEnd = other.address + candidateBytes(other);
    std::int64_t first = 0, rows = candidate.height;  // the rows kept
    if (other.address > candidate.address && otherEnd >= end) {
        rows = (other.address - candidate.address) / rowBytes;
    } else if (other.address <= candidate.address && otherEnd < end) {
        first = (otherEnd - candidate.address + rowBytes - 1) / rowBytes;
        rows -= first;
    } else if (static_cast<double>(overlap(candidate, other)) <=
               kMostShared * static_cast<double>(candidateBytes(candidate))) {
        return true;
    } else {
        // The other lies inside: the larger part beside it stays (a picture that ran on
        // into the next of a block keeps its own rows).
        const std::int64_t head = (other.address - candidate.address) / rowBytes;
        const std::int64_t tailFirst = (otherEnd - candidate.address + rowBytes - 1) / rowBytes;
        if (head >= candidate.height - tailFirst) rows = head;
        else first = tailFirst, rows -= tailFirst;
    }
    if (rows < kScanLeastHeight || rows * candidate.width < kScanLeastPixels) return false;
    candidate.address += first * rowBytes;
    candidate.height = static_cast<std::int32_t>(rows);
    return true;
}

// Candidates in address order with those joined that continue one another: the same
// depth and width, the second starting at most kMostEdgeRows rows after the first's
// end. A picture whose rows were parted by a few unlike ones (a
// straight edge across it, an outline) is one picture.
std::vector<PictureCandidate> joinedAcrossEdges(const std::vector<PictureCandidate>& sorted)
{
    std::vector<PictureCandidate> joined;
    for (const PictureCandidate& next : sorted) {
        if (!joined.empty()) {
            PictureCandidate& last = joined.back();
            const std::int64_t rowBytes = std::max<std::int64_t>(1, foundFrameSize(last.width, 1, last.depth));
            const std::int64_t gap = next.address - (last.address + candidateBytes(last));
            if (next.depth == last.depth && next.width == last.width && gap >= -rowBytes &&
                gap <= kMostEdgeRows * rowBytes) {
                // The first part's rows set the place of the whole: the second part may
                // have started part way along one. Only whole rows within both parts'
                // bytes are kept: a rounded-up row could reach past the scanned range.
                const std::int64_t rows = (next.address + candidateBytes(next) - last.address) / rowBytes;
                last.score = (last.score * last.height + next.score * next.height) /
                             static_cast<double>(last.height + next.height);
                last.height = static_cast<std::int32_t>(std::min<std::int64_t>(rows, 0x7FFFFFFF));
                continue;
            }
        }
        joined.push_back(next);
    }
    return joined;
}

// The scanned bytes, for a second look at candidates that share some.
struct ScannedBytes {
    std::span<const std::uint8_t> range;
    std::int64_t first = 0;  // the image address of range[0]
    const ColourTable& colours;
};

// How alike the candidate's rows that start in the bytes from `from` to before `to` are
// to the rows below them, read as the candidate reads them.
double likenessWithin(const ScannedBytes& bytes, const PictureCandidate& c, std::int64_t from, std::int64_t to)
{
    const std::int64_t rowBytes = std::max<std::int64_t>(1, foundFrameSize(c.width, 1, c.depth));
    const std::int64_t firstRow = std::max<std::int64_t>(0, (from - c.address) / rowBytes);
    const std::int64_t endRow = std::min<std::int64_t>(c.height, (to - c.address + rowBytes - 1) / rowBytes);
    if (endRow <= firstRow) return 0;
    const int group = c.depth == 16 ? 2 : c.depth == 12 || c.depth == 24 ? 3 : 1;
    const ScanLane lane{c.depth, static_cast<int>((c.address - bytes.first) % group)};
    LaneScanner scanner(bytes.range, lane, bytes.colours);
    return scanner.rowsLikeness(lane.pixelAt(c.address - bytes.first) + firstRow * c.width, c.width, endRow - firstRow);
}

// A picture that ran on into the next one shares the next one's first rows with it:
// they are that one's when its own reading finds them likelier. Then `earlier` is cut
// back to the rows before `later`; false when too little of it is left.
bool yieldsHead(PictureCandidate& earlier, const PictureCandidate& later, const ScannedBytes& bytes)
{
    const std::int64_t earlierEnd = earlier.address + candidateBytes(earlier);
    if (!(earlier.address < later.address && later.address < earlierEnd &&
          earlierEnd < later.address + candidateBytes(later)))
        return true;
    if (likenessWithin(bytes, later, later.address, earlierEnd) <=
        likenessWithin(bytes, earlier, later.address, earlierEnd))
        return true;
    const std::int64_t rowBytes = std::max<std::int64_t>(1, foundFrameSize(earlier.width, 1, earlier.depth));
    const std::int64_t rows = (later.address - earlier.address) / rowBytes;
    if (rows < kScanLeastHeight || rows * earlier.width < kScanLeastPixels) return false;
    earlier.height = static_cast<std::int32_t>(rows);
    return true;
}

// The likeliest reading of each stretch: candidates by score, each cut back to the
// rows that no likelier one holds. Returned in address order.
std::vector<PictureCandidate> keepLikeliest(std::vector<PictureCandidate> found, const ScannedBytes& bytes)
{
    const std::vector<PictureCandidate> all = found;
    std::erase_if(found, [&](const PictureCandidate& candidate) { return coarserReading(candidate, all); });
    std::stable_sort(found.begin(), found.end(),
                     [](const PictureCandidate& a, const PictureCandidate& b) { return a.score > b.score; });
    std::vector<PictureCandidate> kept;
    for (PictureCandidate candidate : found) {
        // Likelier ones that ran on into this one's first rows give them up first.
        std::erase_if(kept, [&](PictureCandidate& other) { return !yieldsHead(other, candidate, bytes); });
        // Cutting against one may move it onto another: each is tried until none moves it.
        bool fits = true;
        for (bool moved = true; fits && moved;) {
            moved = false;
            for (const PictureCandidate& other : kept) {
                const PictureCandidate before = candidate;
                if (!(fits = trimAgainst(candidate, other))) break;
                moved = moved || before.address != candidate.address || before.height != candidate.height;
            }
        }
        if (fits) kept.push_back(candidate);
    }
    std::sort(kept.begin(), kept.end(), [](const PictureCandidate& a, const PictureCandidate& b) {
        return a.address != b.address ? a.address < b.address : a.depth < b.depth;
    });
    return joinedAcrossEdges(kept);
}

}  // namespace

std::int64_t candidateBytes(const PictureCandidate& candidate)
{
    return foundFrameSize(candidate.width, candidate.height, candidate.depth);
}

ScanResult scanPictures(std::span<const std::uint8_t> image, const ScanRequest& request, ScanControl* control,
                        unsigned threads)
{
    ScanResult result;
    const auto size = static_cast<std::int64_t>(image.size());
    const std::int64_t last = request.last < 0 ? size - 1 : request.last;
    if (size == 0 && request.first == 0 && request.last < 0) return result;
    if ((result.failure = refusal(size, request, last))) return result;

    const auto range =
        image.subspan(static_cast<std::size_t>(request.first), static_cast<std::size_t>(last - request.first + 1));
    const std::vector<ScanLane> lanes = scanLanes(request.depths);
    const auto rangeBytes = static_cast<std::int64_t>(range.size());
    const std::int64_t pieces = (rangeBytes + kPieceBytes - 1) / kPieceBytes;
    const auto tasks = pieces * static_cast<std::int64_t>(lanes.size());
    ScanControl ownControl;
    ScanControl& shared = control ? *control : ownControl;
    shared.total = std::max<std::int64_t>(1, rangeBytes * static_cast<std::int64_t>(lanes.size()));
    shared.done = 0;

    std::atomic<std::int64_t> nextTask{0};
    std::vector<std::vector<PictureCandidate>> found(static_cast<std::size_t>(tasks));
    const auto work = [&] {
        for (std::int64_t task; !shared.stop && (task = nextTask++) < tasks;) {
            const ScanLane lane = lanes[static_cast<std::size_t>(task % static_cast<std::int64_t>(lanes.size()))];
            const std::int64_t from = task / static_cast<std::int64_t>(lanes.size()) * kPieceBytes;
            const std::int64_t to = std::min(rangeBytes, from + kPieceBytes);
            const auto windowAt = [&](std::int64_t byte) {
                return (lane.pixelAt(byte) + kScanWindow - 1) / kScanWindow;
            };
            LaneScanner scanner(range, lane, request.colours);
            scanner.scan(windowAt(from), to == rangeBytes ? scanner.windowCount() : windowAt(to),
                         found[static_cast<std::size_t>(task)]);
            shared.done += to - from;
        }
    };
    if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
    threads = static_cast<unsigned>(std::min<std::int64_t>(threads, std::max<std::int64_t>(1, tasks)));
    std::vector<std::thread> helpers;
    for (unsigned i = 1; i < threads; ++i) helpers.emplace_back(work);
    work();
    for (auto& helper : helpers) helper.join();

    std::vector<PictureCandidate> all;
    for (auto& part : found)
        for (PictureCandidate candidate : part) {
            candidate.address += request.first;
            all.push_back(candidate);
        }
    result.candidates = keepLikeliest(std::move(all), {range, request.first, request.colours});
    result.stopped = shared.stop;
    return result;
}

void markKnownCandidates(std::vector<PictureCandidate>& candidates, const std::vector<PictureEntry>& rows)
{
    std::vector<std::pair<std::int64_t, std::int64_t>> spans;  // first byte, byte after
    for (const PictureEntry& row : rows) {
        try {
            const FrameGeometry geometry = frameGeometry(row);
            const std::int64_t bytes =
                std::max<std::int64_t>(1, geometry.frameSize) * std::max<std::int64_t>(1, geometry.frames);
            spans.emplace_back(geometry.start, geometry.start + bytes);
        } catch (const std::exception&) {
            // A row whose cells are not numbers lies nowhere.
        }
    }
    for (PictureCandidate& candidate : candidates) {
        const std::int64_t end = candidate.address + candidateBytes(candidate);
        candidate.known = std::any_of(spans.begin(), spans.end(), [&](const auto& span) {
            return span.first < end && candidate.address < span.second;
        });
    }
}

PictureEntry candidateEntry(const PictureCandidate& candidate, std::string number, std::string name)
{
    return foundPictureEntry({candidate.address, 1, candidate.width, candidate.height, candidate.depth},
                             std::move(number), std::move(name));
}

std::vector<std::string> candidateNames(const std::vector<PictureCandidate>& candidates,
                                        const std::vector<PictureEntry>& rows)
{
    std::set<std::string> taken;
    for (const PictureEntry& row : rows) taken.insert(row.name);
    std::vector<std::string> names;
    for (const PictureCandidate& candidate : candidates) {
        const std::string base = "pic_" + image::HexPad(static_cast<std::uint32_t>(candidate.address), 8);
        std::string name = base;
        for (int n = 2; taken.count(name); ++n) name = base + "_" + std::to_string(n);
        taken.insert(name);
        names.push_back(name);
    }
    return names;
}

}  // namespace zevran::pictures
