// The picture scan over any bytes and any range: the first five input bytes choose the
// depths (a bit each for 4, 8, 12, 16, 24, and one for a depth never scanned) and the
// first and last address (also outside the image), the rest is the image. A refusal
// must name the value that is wrong; otherwise every candidate must lie in the range,
// at a depth asked for, with a width, height and score in bounds, in address order.
#include "pictures/picture_scan.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

using namespace zevran::pictures;

namespace {

[[noreturn]] void fail(const char* what, std::int64_t first, std::int64_t last)
{
    std::fprintf(stderr, "picture_scan_fuzz: %s (range %lld to %lld)\n", what, static_cast<long long>(first),
                 static_cast<long long>(last));
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // 1 KiB holds a picture of 16x16 pixels at every depth (768 bytes at 24 bits);
    // larger images only repeat what smaller ones show, and slow every input down.
    if (size < 5 || size > 5 + (std::size_t{1} << 10)) return 0;
    const std::span<const std::uint8_t> image(data + 5, size - 5);
    const auto imageSize = static_cast<std::int64_t>(image.size());
    ScanRequest request;
    request.depths.clear();
    for (std::size_t i = 0; i < kScanDepths.size(); ++i)
        if (data[0] >> i & 1) request.depths.push_back(kScanDepths[i]);
    if (data[0] & 0x20) request.depths.push_back(data[0] & 0x40 ? 1 : 32);
    // Addresses in steps of 64 bytes: ranges fall inside, at the ends and past the image.
    request.first = (static_cast<std::int64_t>(data[1] | data[2] << 8) - 16) * 64;
    request.last = data[3] == 0xFF ? -1 : (static_cast<std::int64_t>(data[3] | data[4] << 8) - 16) * 64 + 63;
    for (std::size_t i = 0; i < request.colours.size(); ++i) request.colours[i] = static_cast<std::uint8_t>(i * 37);

    const ScanResult result = scanPictures(image, request, nullptr, 1);
    const std::int64_t last = request.last < 0 ? imageSize - 1 : request.last;
    const bool badDepth = (data[0] & 0x20) != 0;
    const bool badRange =
        imageSize > 0 && (request.first < 0 || request.first >= imageSize || last >= imageSize || last < request.first);
    if (result.failure) {
        const ScanFailure f = *result.failure;
        if (f.reason == ScanRefusal::DepthNotScanned && (!badDepth || (f.value != 1 && f.value != 32)))
            fail("a depth refused that was asked for", request.first, last);
        if (f.reason == ScanRefusal::FirstOutsideImage &&
            (f.value != request.first || (f.value >= 0 && f.value < imageSize)))
            fail("a first address refused inside the image", request.first, last);
        if (f.reason == ScanRefusal::LastOutsideImage && (f.value != last || last < imageSize))
            fail("a last address refused inside the image", request.first, last);
        if (f.reason == ScanRefusal::RangeReversed && (f.value != last || last >= request.first))
            fail("a range refused in order", request.first, last);
        return 0;
    }
    if (badDepth || badRange) fail("a refused request scanned", request.first, last);
    std::int64_t previous = -1;
    for (const PictureCandidate& c : result.candidates) {
        if (c.address < request.first || c.address + candidateBytes(c) - 1 > last)
            fail("a candidate outside the range", request.first, last);
        if (c.address < previous) fail("candidates out of address order", request.first, last);
        bool asked = false;
        for (int depth : request.depths) asked = asked || depth == c.depth;
        if (!asked) fail("a candidate of a depth not asked for", request.first, last);
        if (c.width < kScanLeastWidth || c.width > kScanMostWidth || c.height < kScanLeastHeight ||
            std::int64_t{c.width} * c.height < kScanLeastPixels)
            fail("a candidate's size out of bounds", request.first, last);
        if (!(c.score >= 0 && c.score <= 1)) fail("a score outside 0 to 1", request.first, last);
        if (c.known || result.stopped) fail("known or stopped without a table or a stop", request.first, last);
        previous = c.address;
    }
    return 0;
}
