// Scans of the whole image for a tone signature: the hex search the window offers
// and the raw byte search beneath it.
#include "synthetic_image.hpp"

#include "image/byte_search.hpp"
#include "image/firmware_image.hpp"

#include <benchmark/benchmark.h>

namespace {

using namespace zevran::image;
using zevran::bench::kPlantedTones;
using zevran::bench::sharedSyntheticImage;

// Every occurrence, as a user pressing "find next" until the search wraps round.
void BM_FindHexInImage(benchmark::State& state)
{
    ImageState image;
    setImage(image, "synthetic.bin", sharedSyntheticImage());
    std::int64_t hits = 0;
    for (auto _ : state) {
        image.LastMatch = 0;
        hits = 0;
        while (FindHexInImage(image, "4D4D4D44")) ++hits;
        benchmark::DoNotOptimize(hits);
    }
    if (hits < static_cast<std::int64_t>(kPlantedTones)) state.SkipWithError("planted tones were not all found");
    state.counters["hits"] = static_cast<double>(hits);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * image.FirmwareLength);
}
BENCHMARK(BM_FindHexInImage)->Unit(benchmark::kMillisecond);

void BM_findBytes(benchmark::State& state)
{
    const auto& image = sharedSyntheticImage();
    const std::uint8_t needle[] = {'M', 'M', 'M', 'D'};
    std::int64_t hits = 0;
    for (auto _ : state) {
        hits = 0;
        std::size_t from = 0;
        for (std::size_t hit; (hit = findBytes(image, needle, from)) != kNotFound; from = hit + 1) ++hits;
        benchmark::DoNotOptimize(hits);
    }
    if (hits < static_cast<std::int64_t>(kPlantedTones)) state.SkipWithError("planted tones were not all found");
    state.counters["hits"] = static_cast<double>(hits);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * image.size()));
}
BENCHMARK(BM_findBytes)->Unit(benchmark::kMillisecond);

// A text search: a longer needle whose first and last bytes are common ASCII.
void BM_findBytesText(benchmark::State& state)
{
    const auto& image = sharedSyntheticImage();
    const std::string_view text = "Ring tone 299 - Melody";
    const std::span<const std::uint8_t> needle(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    std::size_t hit = 0;
    for (auto _ : state) {
        hit = findBytes(image, needle, 0);
        benchmark::DoNotOptimize(hit);
    }
    if (hit == kNotFound) state.SkipWithError("planted text was not found");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * hit));
}
BENCHMARK(BM_findBytesText)->Unit(benchmark::kMillisecond);

}  // namespace
