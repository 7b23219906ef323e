// zevran-bench-scan: the picture scan's time on the 64 MiB bench image (the same bytes
// as bench-data/image.bin) and on an 8 MiB firmware-like image, medians of several
// runs on every core, and how many of the firmware-like image's planted pictures it
// finds and how many candidates cover none. One "key value" line per figure.
#include "synthetic_image.hpp"

#include "pictures/picture_scan.hpp"
#include "support/firmware_like.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

using namespace zevran;

double medianScanSeconds(const std::vector<std::uint8_t>& image, const pictures::ScanRequest& request, int runs,
                         pictures::ScanResult& result)
{
    std::vector<double> seconds;
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        result = pictures::scanPictures(image, request);
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds[seconds.size() / 2];
}

}  // namespace

int main()
{
    pictures::ScanRequest request;
    request.colours = test::classicColours();
    pictures::ScanResult result;

    const auto made = test::makeFirmwareLike(std::size_t{8} << 20, 2024, request.colours);
    std::printf("scan_8mib_s %.3f\n", medianScanSeconds(made.image, request, 5, result));
    const auto tally = test::tallyScan(made, result.candidates);
    std::printf("scan_pictures %zu\nscan_found %zu\nscan_found_percent %.1f\nscan_false %zu\nscan_false_per_mib %.2f\n",
                tally.pictures, tally.found,
                100.0 * static_cast<double>(tally.found) / static_cast<double>(tally.pictures), tally.falseCandidates,
                static_cast<double>(tally.falseCandidates) / 8);

    const auto& bench = bench::sharedSyntheticImage();
    std::printf("scan_64mib_s %.3f\n", medianScanSeconds(bench, request, 3, result));
    std::printf("scan_64mib_candidates %zu\n", result.candidates.size());
    return 0;
}
