// The input as S-record text, through SRecordToBinary in one of its two modes and
// two readings, and each line through both record readers. SRecordError and
// FileError are answers; a crash, a sanitizer report, any other exception or a hang
// is a bug. Converting in small slices must give the same bytes, the same count and
// the same error as converting all at once, and every block decoder (vector or
// plain) must decode the whole input as the portable one does.
#include "counting_sink.hpp"

#include "image/converter.hpp"
#include "image/file_io.hpp"
#include "image/srecord_block.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

using namespace zevran::image;

namespace {

// Full-address output of a few records can span gigabytes of fill; an input is
// followed up to 64 MiB of output, far past every buffer edge of the converter.
constexpr std::uint64_t kOutputCap = std::uint64_t{64} << 20;

struct Outcome {
    std::string error;  // empty when the conversion ran to the end
    std::uint64_t count = 0;
    std::string bytes;  // kept for data-only runs, whose output stays near the input size
    std::uint64_t lines = 0;
};

void fail(const char* what)
{
    std::fprintf(stderr, "srecord_fuzz: %s\n", what);
    std::abort();
}

// `slice` 0 converts all at once, otherwise about that many input bytes a call.
Outcome convert(const std::string& text, S3ToBinOptions options, std::size_t slice)
{
    std::istringstream in(text);
    zevran::fuzz::CountingSink sink(options.mode == S3ToBinMode::DataOnly, kOutputCap);
    std::ostream out(&sink);
    SRecordToBinary converter(in, out, options);
    Outcome outcome;
    try {
        if (slice == 0) {
            converter.convertAll();
        } else {
            // Every call reads at least one byte until the input ends, so more calls
            // than this means the converter stopped making progress.
            const std::size_t maxCalls = text.size() / slice + 3;
            std::size_t calls = 0;
            while (converter.convertSome(slice))
                if (++calls > maxCalls) fail("convertSome keeps returning true without reading");
        }
    } catch (const SRecordError& e) {
        outcome.error = e.what();
        if (e.line() == 0 || e.line() > converter.linesRead()) fail("error names a line that was not read");
    } catch (const FileError& e) {
        outcome.error = e.what();
    }
    if (sink.capped()) {
        // Where the cap falls depends on how the output was buffered, so a capped run
        // is compared by its outcome alone.
        if (outcome.error.empty()) fail("a refused write went unreported");
        outcome.error = "output cap reached";
        outcome.count = kOutputCap;
        return outcome;
    }
    // The converter flushes on success and on error alike.
    if (converter.outputBytesWritten() != sink.count()) fail("outputBytesWritten differs from the bytes written");
    if (outcome.error.empty() && converter.inputBytesRead() != text.size()) fail("input not read to the end");
    outcome.count = sink.count();
    outcome.bytes = sink.kept();
    outcome.lines = converter.linesRead();
    return outcome;
}

void sameOutcome(const Outcome& whole, const Outcome& sliced)
{
    if (whole.error != sliced.error) fail("sliced conversion gave another error");
    if (whole.count != sliced.count) fail("sliced conversion wrote another number of bytes");
    if (whole.bytes != sliced.bytes) fail("sliced conversion wrote other bytes");
    if (whole.error.empty() && whole.lines != sliced.lines) fail("sliced conversion read another number of lines");
}

// The converter reads from its own 1 MiB buffer, where ASan cannot see a reader
// running past the end of a line. Here every line sits alone in a block of exactly
// its size, so the first byte read beyond it is reported.
void readLinesAlone(std::string_view text)
{
    std::uint64_t lineNumber = 0;
    SRecordData record;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        const std::size_t length = std::min(end, LineSplitter::kMaxKeptLine);
        std::unique_ptr<char[]> alone(new char[length]);
        std::copy_n(text.data(), length, alone.get());
        const std::string_view line(alone.get(), length);
        ++lineNumber;
        try {
            readDesignRecord(line, lineNumber, record);
        } catch (const SRecordError&) {
        }
        try {
            readStrictRecord(line, lineNumber, record);
        } catch (const SRecordError&) {
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

// Every block decoder on the whole input at once, where lines sit next to each other
// and the vector loads run up to the text's very end: all must take the same lines
// and write the same bytes as the portable one.
void kernelsAgree(std::string_view text)
{
    for (RecordReading reading : {RecordReading::Handset, RecordReading::AnyRecords}) {
        std::string reference;
        std::size_t referenceTaken = 0;
        for (RecordKernel kernel : availableRecordKernels()) {
            std::unique_ptr<std::uint8_t[]> room(new std::uint8_t[text.size() + kRecordRoom]);
            RecordOutput out;
            out.end = room.get();
            out.limit = room.get() + text.size() + kRecordRoom;
            out.fullAddress = (text.size() & 1) != 0;
            const std::size_t taken = decodeRecordBlock(kernel, text, reading, out);
            const std::string bytes(reinterpret_cast<const char*>(room.get()),
                                    static_cast<std::size_t>(out.end - room.get()));
            if (kernel == RecordKernel::Portable) {
                reference = bytes;
                referenceTaken = taken;
            } else if (taken != referenceTaken || bytes != reference) {
                fail("block decoders disagree");
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    // Each conversion allocates and clears its 1 MiB read buffer, which under ASan
    // costs far more than reading a small input, so one input runs one mode and one
    // reading. The last byte picks them and the slice size, the first byte is the
    // fill: both stay part of the text, so the seeds remain plain S-record files.
    const std::uint8_t last = size > 0 ? data[size - 1] : 0;
    S3ToBinOptions options;
    options.anyRecords = (last & 1) != 0;
    options.mode = (last & 2) != 0 ? S3ToBinMode::DataOnly : S3ToBinMode::FullAddress;
    options.fill = size > 0 ? data[0] : 0xFF;
    // A read block a little smaller than a long line: line ends fall on both sides of
    // its edges, and no input pays for a MiB it never fills.
    options.readBlock = 61;
    const std::size_t slice = 1 + (last >> 2);

    sameOutcome(convert(text, options, 0), convert(text, options, slice));
    readLinesAlone(text);
    kernelsAgree(text);
    return 0;
}
