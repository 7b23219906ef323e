// Arbitrary bytes through binaryToSRecord and back through SRecordToBinary must come
// out unchanged. The first four input bytes give the start address, the rest is the
// binary; the start is kept low enough that the region ends by 7FFFFFFF, as the
// converter's fields allow.
#include "counting_sink.hpp"

#include "image/converter.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <sstream>
#include <string>

using namespace zevran::image;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "srecord_roundtrip_fuzz: %s\n", what);
    std::abort();
}

struct ReadBack {
    std::uint64_t count = 0;
    std::string bytes;  // data-only runs only
};

ReadBack readBack(const std::string& text, S3ToBinOptions options)
{
    options.readBlock = 4096;
    std::istringstream in(text);
    zevran::fuzz::CountingSink sink(options.mode == S3ToBinMode::DataOnly);
    std::ostream out(&sink);
    SRecordToBinary converter(in, out, options);
    converter.convertAll();  // any exception here is a bug: the text is our own
    return {sink.count(), sink.kept()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kAddressBytes = 4;
    if (size <= kAddressBytes) return -1;  // an empty region has no S-record form
    const std::string binary(reinterpret_cast<const char*>(data) + kAddressBytes, size - kAddressBytes);

    constexpr std::uint32_t kHighest = 0x7FFFFFFF;
    const std::uint32_t raw = (std::uint32_t{data[0]} << 24 | std::uint32_t{data[1]} << 16 |
                               std::uint32_t{data[2]} << 8 | std::uint32_t{data[3]}) &
                              kHighest;
    const auto limit = static_cast<std::uint32_t>(kHighest - binary.size());
    const std::uint32_t start = raw <= limit ? raw : raw % (limit + 1);
    const auto end = static_cast<std::uint32_t>(start + binary.size() - 1);

    std::istringstream in(binary);
    std::ostringstream text;
    binaryToSRecord(&in, text, start, end, 0xA5);

    if (readBack(text.str(), {S3ToBinMode::DataOnly, 0xFF, true}).bytes != binary)
        fail("strict data-only reading differs from the input");
    // Two more readings of the same text, one per input as every conversion costs a
    // fresh 1 MiB buffer: a well-formed S3 file reads the same in the handset tool's
    // own way, and full-address output is the gap below the start, then the bytes.
    if (binary.size() % 2 == 0) {
        if (readBack(text.str(), {S3ToBinMode::DataOnly, 0xFF, false}).bytes != binary)
            fail("handset data-only reading differs from the input");
    } else if (readBack(text.str(), {S3ToBinMode::FullAddress, 0xFF, true}).count !=
               std::uint64_t{start} + binary.size()) {
        fail("full-address output has the wrong length");
    }
    return 0;
}
