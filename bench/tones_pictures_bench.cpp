// The tone scan over the whole image, and pictures decoded and exported frame by frame.
#include "synthetic_image.hpp"

#include "image/firmware_image.hpp"
#include "pictures/pixel_decode.hpp"
#include "tones/tone_scan.hpp"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

namespace {

using namespace zevran;

void BM_scanTones(benchmark::State& state)
{
    image::ImageState image;
    image::setImage(image, "synthetic.bin", bench::sharedSyntheticImage());
    std::size_t rows = 0;
    for (auto _ : state) {
        rows = tones::scanTones(image).size();
        benchmark::DoNotOptimize(rows);
    }
    if (rows < bench::kPlantedTones) state.SkipWithError("planted tones were not all found");
    state.counters["tones"] = static_cast<double>(rows);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * image.FirmwareLength);
}
BENCHMARK(BM_scanTones)->Unit(benchmark::kMillisecond);

// A table of 1000 frames of 128*160 at one depth: each frame decoded and written to
// its own BMP file, as the export does. Reported as frames per second.
void BM_exportFrames(benchmark::State& state)
{
    const int depth = static_cast<int>(state.range(0));
    const auto& bytes = bench::sharedSyntheticImage();
    const pictures::ColourTable colours{};
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "zevran-bench-frames";
    std::filesystem::create_directories(folder);
    constexpr int kFrames = 1000;
    constexpr std::int32_t kWidth = 128, kHeight = 160;
    const std::int64_t frameSize = std::int64_t{kWidth} * kHeight * depth / 8;
    for (auto _ : state) {
        for (int k = 0; k < kFrames; ++k) {
            const std::string path = (folder / ("frame-" + std::to_string(k % 100) + ".bmp")).string();
            const std::int64_t address = (k * frameSize) % static_cast<std::int64_t>(bytes.size() - frameSize);
            if (depth == 1) pictures::DecodeMonoFrame(bytes, address, path, 64, 96);
            else pictures::DecodePictureFrame(bytes, address, path, kWidth, kHeight, depth, colours);
        }
    }
    state.counters["frames_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrames, benchmark::Counter::kIsRate);
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_exportFrames)
    ->ArgName("depth")
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->Arg(12)
    ->Arg(16)
    ->Arg(24)
    ->Unit(benchmark::kMillisecond);

}  // namespace
