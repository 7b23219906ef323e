// The converter's fast lane: whole blocks of S-record text decoded line after line,
// with vector instructions where the processor has them. It takes only the lines of
// the common form (a data record that fits where the output stands) and stops at any
// other, which the converter then reads through readDesignRecord / readStrictRecord:
// both readings therefore give the same bytes whichever way a line went.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zevran::image {

// The two ways of reading S-record text (see srecord_reader.hpp).
enum class RecordReading {
    Handset,     // every line but "S00"/"S70" is S3, digits tolerant, checksums unread
    AnyRecords,  // S1/S2/S3 with their address widths, every digit hex, checksums checked
};

// The decoders, one per instruction set; all give the same results.
enum class RecordKernel {
    Portable,  // plain C++, for every processor
    Sse2,      // x86-64: 16 characters a step
    Avx2,      // x86-64 processors that have AVX2: 32 characters a step
};

// Where decoded data goes and what the decoder must respect.
struct RecordOutput {
    std::uint8_t* end = nullptr;          // the next data byte is written here
    const std::uint8_t* limit = nullptr;  // decoding stops while fewer than kRecordRoom bytes are left
    bool fullAddress = false;             // a record is taken only at `expected`
    std::uint64_t expected = 0;           // the address the next record must start at
    std::uint64_t lines = 0;              // lines read so far, counted on
    std::uint32_t lastAddress = 0;        // the address of the last record taken
};

// Room a decoder needs at `end` for one record: 250 data bytes and the spill of a
// vector store past them.
inline constexpr std::size_t kRecordRoom = 320;

// Decodes complete lines from the start of `text` (which begins a line) and returns
// how many characters it took: whole lines with their line ends (CR LF, CR or LF).
// It stops before a line that is not a data record of the common form, one that does
// not start at `expected` in full-address mode, one whose end it cannot see (no line
// end yet, or a CR as the last character, whose LF may come with the next block), and
// when the output has less than kRecordRoom bytes of room.
std::size_t decodeRecordBlock(RecordKernel kernel, std::string_view text, RecordReading reading, RecordOutput& out);

// The kernels this processor can run, and the fastest of them.
std::vector<RecordKernel> availableRecordKernels();
RecordKernel fastestRecordKernel();

const char* recordKernelName(RecordKernel kernel);

}  // namespace zevran::image
