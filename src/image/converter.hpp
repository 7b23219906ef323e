// Whole-file conversion between S-record text and raw binary, in both directions.
// Both stream: memory stays a few MiB whatever the size of input or output.
#pragma once

#include "file_io.hpp"
#include "mapped_file.hpp"

#include "srecord_block.hpp"
#include "srecord_reader.hpp"

#include <cstdint>
#include <memory>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace zevran::image {

enum class S3ToBinMode {
    FullAddress,  // an image of the address space from 0, gaps filled
    DataOnly,     // the records' data one after another, addresses ignored
};

// The output stream refused bytes; the converter knows no file name, so whoever
// opened the output names it (see withOutputName).
class OutputWriteError : public FileError {
public:
    using FileError::FileError;
};

// Runs a conversion, naming `output` in an OutputWriteError it raises.
template <typename Job>
void withOutputName(const std::string& output, Job&& job)
{
    try {
        job();
    } catch (const OutputWriteError& error) {
        throw FileError(Reason::OnFile, {output}, error.failure());
    }
}

struct S3ToBinOptions {
    S3ToBinMode mode = S3ToBinMode::FullAddress;
    std::uint8_t fill = 0xFF;
    bool anyRecords = false;  // strict reading of S1/S2/S3 files with checksums
    // The block decoder of the common lines; every kernel gives the same bytes.
    RecordKernel kernel = fastestRecordKernel();
    // Input bytes read at a time. Big blocks suit big files; a small block lets a
    // fuzzer or a test put line ends on every side of a block's edge.
    std::size_t readBlock = std::size_t{1} << 20;
};

// S-record text to binary, a slice at a time so a window can stay responsive.
// Errors throw SRecordError (naming the line) or FileError; whatever was converted
// before the error has been handed to the output stream by then.
class SRecordToBinary {
public:
    SRecordToBinary(std::istream& in, std::ostream& out, S3ToBinOptions options);
    // Reads a mapped file in place, a window of a few MiB at a time (readBlock plays no
    // part): no copy, and only the window in hand is resident.
    SRecordToBinary(MappedFile& in, std::ostream& out, S3ToBinOptions options);
    // Without an input, for text the caller holds: it is handed over with feedText and
    // ended with endText.
    SRecordToBinary(std::ostream& out, S3ToBinOptions options);

    // Converts until about `workBytes` more input bytes have been read, and returns
    // true while there is more to do. The output is flushed when the input ends.
    bool convertSome(std::size_t workBytes);
    void convertAll();

    // The next piece of the text, read in place: a line may run on into the next piece.
    void feedText(std::string_view text);
    // Ends the text (a last line without a line end counts) and flushes the output.
    void endText();

    std::uint64_t linesRead() const { return m_lineNumber; }
    std::uint32_t currentAddress() const { return m_address; }
    std::uint64_t inputBytesRead() const { return m_inputRead; }
    std::uint64_t outputBytesWritten() const { return m_outputWritten + m_outSize; }
    // Lines the strict reading passed over because they are no S-records (isForeignLine).
    std::uint64_t skippedLines() const { return m_skippedLines; }

    // Hands buffered output to the stream, as a stop request or an error needs.
    void flush();

private:
    bool convertSomeMapped(std::size_t workBytes);
    void takeText(std::string_view text);
    std::size_t decodeCommonLines(std::string_view text);
    void takeLine(std::string_view line);
    template <typename Job>
    void keepingOutputOnError(Job&& job);
    void makeRoom(std::size_t count);
    void writeOut(const std::uint8_t* bytes, std::size_t count);
    void writeFill(std::uint64_t count);

    std::istream* m_in = nullptr;
    MappedFile* m_mapped = nullptr;
    std::ostream& m_out;
    S3ToBinOptions m_options;
    LineSplitter m_lines;
    SRecordData m_record;
    // Left uninitialised: only what a read fills is ever looked at, and clearing a
    // MiB for every conversion of a small file cost more than the conversion.
    std::unique_ptr<char[]> m_inBuffer;
    // Filled to about a MiB; the block decoders write into it directly.
    std::size_t m_outCapacity = 0;
    std::unique_ptr<std::uint8_t[]> m_outBuffer;
    std::size_t m_outSize = 0;
    std::uint64_t m_expected = 0;  // the address the next record should start at
    std::uint64_t m_lineNumber = 0;
    std::uint64_t m_inputRead = 0;
    std::uint64_t m_outputWritten = 0;
    std::uint64_t m_skippedLines = 0;
    std::uint32_t m_address = 0;
    bool m_inputDone = false;
};

// Writes one S-record file: S0, the region start..end (inclusive) made of the bytes
// of `binary` while they last and the fill byte after them, then S7. With no
// binary the region is fill bytes only. Streams in blocks of 1 MiB.
void binaryToSRecord(std::istream* binary, std::ostream& out, std::uint32_t start, std::uint32_t end,
                     std::uint8_t fill);

// The last address of a whole binary file placed from address 0. Throws FileError for
// an empty file or one that reaches past 7FFFFFFF.
std::uint32_t wholeFileLastAddress(const std::string& path);

enum class BinToS3Mode {
    WholeFile,    // the file at addresses 0 .. length - 1
    FileAtRange,  // the file placed at start .. end, cut or filled
    FillOnly,     // start .. end of fill bytes, no input file
};

// What the binary-to-S-record fields hold, as the user typed them.
struct BinToS3Fields {
    BinToS3Mode mode = BinToS3Mode::WholeFile;
    std::string startText;  // hex
    std::string endText;    // hex, inclusive
    std::string fillText;   // hex
    std::string inputPath;
};

struct BinToS3Check {
    int message = 0;  // 0 when the fields are usable, else the message code to show
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint8_t fill = 0;
};

inline constexpr int kMessageStartMissing = 28;
inline constexpr int kMessageEndMissing = 29;
inline constexpr int kMessageRangeNotAscending = 30;
inline constexpr int kMessageNoInputFile = 31;

// Checks the fields in the converter's order: fill, start, end, range, input name.
// Throws HexOverflow for a number above 7FFFFFFF and std::out_of_range for a fill
// value above FF. For WholeFile the end is left for the caller, who knows the length.
BinToS3Check checkBinToS3Fields(const BinToS3Fields& fields);

// A fill byte typed as hex: "" gives 0, a value above FF throws std::out_of_range.
std::uint8_t fillByteFromText(const std::string& text);

// Where a conversion writes: beside the input, its name without the extension,
// then `extension` (".bin" or ".s3").
std::string convertedOutputPath(const std::string& inputPath, const std::string& extension);

}  // namespace zevran::image
