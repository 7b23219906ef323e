// The picture scan: every raw picture of depth 4, 8, 12, 16 or 24 in the image (or a
// range of it) in one pass, each as the preview would draw it: address, depth, width,
// height and how likely it is a picture.
//
// A picture's pixels are like their neighbours to the side and like the pixel below,
// one row (width pixels) further on; code, compressed data and text are like neither,
// and fill is like everything. So the image is read at every depth (and every byte
// phase a pixel can start at) as one long line of pixels, drawn as the preview draws
// them; stretches whose neighbouring pixels are alike, and not all one colour, become
// regions; in each, the width is the distance at which pixels are likest (the finder's
// measure), and the picture is the run of rows that are alike at that width.
#pragma once

#include "picture_table.hpp"
#include "pixel_decode.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zevran::pictures {

inline constexpr std::array<int, 5> kScanDepths = {4, 8, 12, 16, 24};
inline constexpr std::int32_t kScanLeastWidth = 16;
inline constexpr std::int32_t kScanMostWidth = 320;
inline constexpr std::int32_t kScanLeastHeight = 8;
// Smaller stretches than this many pixels are too short to tell from chance.
inline constexpr std::int64_t kScanLeastPixels = 256;

struct ScanRequest {
    std::int64_t first = 0;
    std::int64_t last = -1;  // inclusive; below 0, the image's last byte
    std::vector<int> depths{kScanDepths.begin(), kScanDepths.end()};
    ColourTable colours{};  // the 16 colours depth 4 is drawn with ("16.dat")
};

struct PictureCandidate {
    std::int64_t address = 0;
    int depth = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    double score = 0;    // from 0 to 1, higher is likelier a picture
    bool known = false;  // overlaps a row of the picture table
};

// Image bytes the candidate's one frame spans (width x height x depth / 8).
std::int64_t candidateBytes(const PictureCandidate& candidate);

enum class ScanRefusal {
    FirstOutsideImage,  // value: the first address
    LastOutsideImage,   // value: the last address
    RangeReversed,      // value: the last address, below the first
    DepthNotScanned,    // value: the depth (only 4, 8, 12, 16 and 24 are scanned)
};
struct ScanFailure {
    ScanRefusal reason;
    std::int64_t value = 0;
};

// Shared with a caller on another thread: how far the scan has come, and a request to
// stop. `total` is set when the scan starts, `done` grows towards it.
struct ScanControl {
    std::atomic<bool> stop{false};
    std::atomic<std::int64_t> done{0};
    std::atomic<std::int64_t> total{1};
};

struct ScanResult {
    std::vector<PictureCandidate> candidates;  // in address order, none overlapping another much
    std::optional<ScanFailure> failure;
    bool stopped = false;  // the control asked to stop: the candidates are those found so far
};

// Scans on `threads` threads (0: as many as the machine has cores). The image must
// stay unchanged until it returns.
ScanResult scanPictures(std::span<const std::uint8_t> image, const ScanRequest& request, ScanControl* control = nullptr,
                        unsigned threads = 0);

// Marks each candidate that shares a byte with some row's frames (rows that cannot be
// read as numbers are passed over).
void markKnownCandidates(std::vector<PictureCandidate>& candidates, const std::vector<PictureEntry>& rows);

// The candidate as a picture-list row under `name` (see foundPictureEntry).
PictureEntry candidateEntry(const PictureCandidate& candidate, std::string number, std::string name);

// A name for each candidate that no row and no other candidate has: "pic_" and the
// address in hex, with "_2", "_3", ... where that is taken.
std::vector<std::string> candidateNames(const std::vector<PictureCandidate>& candidates,
                                        const std::vector<PictureEntry>& rows);

}  // namespace zevran::pictures
