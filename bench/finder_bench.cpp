// The picture finder's redraw: a 512 x 1024-pixel view of the image drawn at each
// depth, moved on by one row between redraws as the user steps through the image;
// and one width guess over the default widths.
#include "synthetic_image.hpp"

#include "pictures/picture_finder.hpp"
#include "pictures/picture_view.hpp"

#include <benchmark/benchmark.h>

namespace {

using namespace zevran;

void BM_finderRedraw(benchmark::State& state)
{
    const int depth = static_cast<int>(state.range(0));
    const auto& bytes = bench::sharedSyntheticImage();
    const pictures::ColourTable colours{};
    pictures::ViewRenderer renderer;
    pictures::ViewGeometry view{0x100000, depth, 512, 1024};
    const std::int64_t row = pictures::moveBytes(pictures::FinderMove::Row, view, 1024);
    for (auto _ : state) {
        renderer.render(bytes, view, colours);
        benchmark::DoNotOptimize(renderer.pixels().data());
        view.address += row;
    }
}
BENCHMARK(BM_finderRedraw)
    ->ArgName("depth")
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->Arg(12)
    ->Arg(16)
    ->Arg(24)
    ->Unit(benchmark::kMillisecond);

void BM_guessWidth(benchmark::State& state)
{
    const auto& bytes = bench::sharedSyntheticImage();
    for (auto _ : state) {
        auto scores =
            pictures::guessWidths(bytes, 0x200000, 16, pictures::kLeastGuessWidth, pictures::kMostGuessWidth, {});
        benchmark::DoNotOptimize(scores.data());
    }
}
BENCHMARK(BM_guessWidth)->Unit(benchmark::kMillisecond);

}  // namespace
