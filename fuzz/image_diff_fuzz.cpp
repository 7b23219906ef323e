// Two images compared, as zevran-cli diff and the compare dialog do. The first byte
// gives the gap (0..15), the second the length of the first image; the rest of the
// input holds the first image, then the second. A shorter second image must be
// refused. Otherwise the regions must be in order, apart by more than the gap, start
// and end on differing bytes, cover every differing byte, and laid over the first
// image give the second; the undo step of that patch must give the first back.
#include "image/image_diff.hpp"
#include "image/undo_history.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace zevran::image;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "image_diff_fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    const std::size_t gap = data[0] & 0x0F;
    const std::size_t olderLength = std::min<std::size_t>(data[1], size - 2);
    const std::vector<std::uint8_t> older(data + 2, data + 2 + olderLength);
    const std::vector<std::uint8_t> newer(data + 2 + olderLength, data + size);
    std::vector<DiffRange> ranges;
    try {
        ranges = compareImages(older, newer, gap);
    } catch (const ShorterImage&) {
        if (newer.size() >= older.size()) fail("a second image at least as long was refused");
        return 0;
    }
    if (newer.size() < older.size()) fail("a shorter second image was compared");

    auto differs = [&](std::int64_t at) {
        return static_cast<std::size_t>(at) >= older.size() || older[at] != newer[at];
    };
    std::vector<bool> covered(newer.size(), false);
    for (std::size_t k = 0; k < ranges.size(); ++k) {
        const DiffRange& range = ranges[k];
        if (range.first < 0 || range.last < range.first || static_cast<std::size_t>(range.last) >= newer.size())
            fail("a region lies outside the second image");
        if (k > 0 && std::int64_t{range.first} - ranges[k - 1].last - 1 <= static_cast<std::int64_t>(gap))
            fail("two regions are no further apart than the gap");
        if (!differs(range.first) || !differs(range.last)) fail("a region starts or ends on an equal byte");
        for (std::int64_t at = range.first; at <= range.last; ++at) covered[at] = true;
    }
    for (std::size_t at = 0; at < newer.size(); ++at)
        if (differs(static_cast<std::int64_t>(at)) && !covered[at]) fail("a differing byte lies in no region");

    ImageState state;
    state.FirmwareImage = older;
    state.FirmwareImage.resize(newer.size(), 0);
    const std::vector<std::uint8_t> grown = state.FirmwareImage;
    const std::vector<Region> regions = diffRegions(newer, ranges);
    const UndoStep step = stepForRegions(state.FirmwareImage, regions);
    if (!patchImage(state, regions)) fail("a region reached past the image");
    if (state.FirmwareImage != newer) fail("the patched first image is not the second");
    UndoHistory history;
    history.record(step);
    history.undo(state.FirmwareImage);
    if (state.FirmwareImage != grown) fail("undoing the patch did not give the first image back");
    if (!history.isClean()) fail("undoing every step is not the clean state");
    return 0;
}
