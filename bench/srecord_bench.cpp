// S-record writing and reading in memory, without the disk: bytes per second are
// binary bytes for the writers and S-record text bytes for the reader.
#include "synthetic_image.hpp"

#include "image/converter.hpp"
#include "image/srecord.hpp"

#include <benchmark/benchmark.h>

#include <sstream>

namespace {

using namespace zevran::image;
using zevran::bench::sharedSyntheticImage;

constexpr std::size_t kRegionBytes = std::size_t{16} << 20;

std::span<const std::uint8_t> region() { return {sharedSyntheticImage().data(), kRegionBytes}; }

// Takes everything and keeps nothing.
class NullBuffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
    int overflow(int c) override { return traits_type::not_eof(c); }
};

const std::string& regionSRecordFile()
{
    static const std::string text = std::string(S0Line) + sRecordRegionText(region(), 0) + std::string(S7Line);
    return text;
}

void BM_appendSRecordLines(benchmark::State& state)
{
    std::string text;
    text.reserve(kRegionBytes * 3);
    for (auto _ : state) {
        text.clear();
        appendSRecordLines(text, region(), 0);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kRegionBytes));
}
BENCHMARK(BM_appendSRecordLines)->Unit(benchmark::kMillisecond);

void BM_sRecordRegionText(benchmark::State& state)
{
    for (auto _ : state) {
        std::string text = sRecordRegionText(region(), 0);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kRegionBytes));
}
BENCHMARK(BM_sRecordRegionText)->Unit(benchmark::kMillisecond);

void BM_binaryToSRecord(benchmark::State& state)
{
    std::istringstream in(std::string(region().begin(), region().end()));
    NullBuffer nothing;
    std::ostream out(&nothing);
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        binaryToSRecord(&in, out, 0, static_cast<std::uint32_t>(kRegionBytes - 1), 0xFF);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kRegionBytes));
}
BENCHMARK(BM_binaryToSRecord)->Unit(benchmark::kMillisecond);

// Argument: 0 data only, 1 full address, 2 strict reading (any records) with full address.
void BM_SRecordToBinary(benchmark::State& state)
{
    const std::string& text = regionSRecordFile();
    S3ToBinOptions options;
    options.mode = state.range(0) == 0 ? S3ToBinMode::DataOnly : S3ToBinMode::FullAddress;
    options.anyRecords = state.range(0) == 2;
    std::istringstream in(text);
    NullBuffer nothing;
    std::ostream out(&nothing);
    std::uint64_t written = 0;
    for (auto _ : state) {
        in.clear();
        in.seekg(0);
        SRecordToBinary converter(in, out, options);
        converter.convertAll();
        written = converter.outputBytesWritten();
    }
    if (written != kRegionBytes) state.SkipWithError("the conversion lost bytes");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.counters["binary"] = benchmark::Counter(static_cast<double>(state.iterations() * written),
                                                  benchmark::Counter::kIsRate, benchmark::Counter::kIs1024);
}
BENCHMARK(BM_SRecordToBinary)->ArgName("mode")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

// The same conversions of text held in memory, handed over in windows of 4 MiB as
// zevran-cli hands over a mapped file: the reading itself, without a stream's copy.
void BM_SRecordToBinaryInMemory(benchmark::State& state)
{
    const std::string& text = regionSRecordFile();
    S3ToBinOptions options;
    options.mode = state.range(0) == 0 ? S3ToBinMode::DataOnly : S3ToBinMode::FullAddress;
    options.anyRecords = state.range(0) == 2;
    NullBuffer nothing;
    std::ostream out(&nothing);
    std::uint64_t written = 0;
    constexpr std::size_t kWindow = std::size_t{4} << 20;
    for (auto _ : state) {
        SRecordToBinary converter(out, options);
        for (std::size_t at = 0; at < text.size(); at += kWindow)
            converter.feedText(std::string_view(text).substr(at, kWindow));
        converter.endText();
        written = converter.outputBytesWritten();
    }
    if (written != kRegionBytes) state.SkipWithError("the conversion lost bytes");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.SetLabel(recordKernelName(options.kernel));
}
BENCHMARK(BM_SRecordToBinaryInMemory)->ArgName("mode")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
