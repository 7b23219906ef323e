// The input as an image and an S-record patch laid over it, as apply-patch does. The
// first byte gives the image's size (0..255 bytes), the rest is the patch text.
// SRecordError is the answer to a bad patch. On success the image keeps its size, and
// every byte a data record names holds that record's byte (the last record wins), all
// other bytes as they were; this is checked against the records read one by one.
#include "image/patch_writer.hpp"
#include "image/srecord_reader.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

using namespace zevran::image;

namespace {

void fail(const char* what)
{
    std::fprintf(stderr, "apply_patch_fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    std::vector<std::uint8_t> image(data[0]);
    for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<std::uint8_t>(i * 13 + 1);
    const std::vector<std::uint8_t> before = image;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::istringstream patch(text);
    bool refused = false;
    try {
        applySRecordPatch(image, patch);
    } catch (const SRecordError& error) {
        refused = true;
        if (error.line() == 0) fail("an error names no line");
    }
    if (image.size() != before.size()) fail("the image changed its size");
    if (refused) return 0;

    // The same records laid over a copy, one line at a time.
    std::vector<std::uint8_t> expected = before;
    LineSplitter lines;
    SRecordData record;
    std::uint64_t lineNumber = 0;
    auto layOver = [&](std::string_view line) {
        readStrictRecord(line, ++lineNumber, record);
        if (!record.isData) return;
        if (record.address + record.bytes.size() > expected.size()) fail("a record past the end was accepted");
        for (std::size_t i = 0; i < record.bytes.size(); ++i) expected[record.address + i] = record.bytes[i];
    };
    try {
        lines.feed(text, layOver);
        lines.finish(layOver);
    } catch (const SRecordError&) {
        fail("a patch accepted whole holds a record the reader refuses");
    }
    if (expected != image) fail("the image differs from the records laid over it");
    return 0;
}
