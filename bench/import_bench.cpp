// The picture import, frame by frame: the preview's BMP of a 128*160 frame read back
// through Qt's image readers and encoded into the image, as import-picture does for
// each frame. Reported as frames per second, beside the export's figure.
#include "synthetic_image.hpp"

#include "pictures/picture_encode.hpp"
#include "pictures/picture_file.hpp"
#include "pictures/pixel_decode.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>

namespace {

using namespace zevran;

pictures::ColourTable benchColours()
{
    pictures::ColourTable colours{};
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 0 : i * 4);
    return colours;
}

// Mono frames are the 64*96 display memory, as the export's figure takes them.
pictures::FrameLayout benchFrame(int depth, std::int64_t address)
{
    if (depth == 1) return {address, 64, 96, 1};
    return {address, 128, 160, depth};
}

// 100 different frames' BMPs on disk, read and imported in turn.
void BM_importFrames(benchmark::State& state)
{
    const int depth = static_cast<int>(state.range(0));
    const auto& bytes = bench::sharedSyntheticImage();
    const pictures::ColourTable colours = benchColours();
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "zevran-bench-import";
    std::filesystem::create_directories(folder);
    constexpr int kFiles = 100;
    constexpr int kFrames = 1000;
    const pictures::FrameLayout shape = benchFrame(depth, 0);
    const std::int64_t frameSize = std::int64_t{shape.width} * shape.height * depth / 8;
    std::vector<std::string> paths;
    for (int k = 0; k < kFiles; ++k) {
        const std::int64_t address = (k * frameSize) % static_cast<std::int64_t>(bytes.size() - frameSize);
        paths.push_back((folder / ("frame-" + std::to_string(k) + ".bmp")).string());
        if (depth == 1) pictures::DecodeMonoFrame(bytes, address, paths.back(), 64, 96);
        else pictures::DecodePictureFrame(bytes, address, paths.back(), shape.width, shape.height, depth, colours);
    }
    std::size_t changed = 0;
    for (auto _ : state) {
        for (int k = 0; k < kFrames; ++k) {
            const std::int64_t address =
                ((k % kFiles) * frameSize) % static_cast<std::int64_t>(bytes.size() - frameSize);
            const auto picture = pictures::readPictureFile(paths[static_cast<std::size_t>(k % kFiles)], colours);
            const auto region = pictures::encodePictureFrame(picture, benchFrame(depth, address), bytes, colours);
            if (!std::equal(region.bytes.begin(), region.bytes.end(), bytes.begin() + region.first)) ++changed;
            benchmark::DoNotOptimize(region.bytes.data());
        }
    }
    // Each BMP is the frame's own preview: importing it changes no byte.
    if (changed) state.SkipWithError("an imported frame differs from the image");
    state.counters["frames_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrames, benchmark::Counter::kIsRate);
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_importFrames)
    ->ArgName("depth")
    ->Arg(1)
    ->Arg(4)
    ->Arg(8)
    ->Arg(12)
    ->Arg(16)
    ->Arg(24)
    ->Unit(benchmark::kMillisecond);

}  // namespace
