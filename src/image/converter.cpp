#include "converter.hpp"

#include "file_io.hpp"
#include "hex_text.hpp"
#include "srecord.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace zevran::image {

namespace {

constexpr std::size_t kBlock = 1 << 20;
// The output buffer holds a block and the room a block decoder asks for beyond it.
constexpr std::size_t kOutCapacity = kBlock + kRecordRoom;

// A small input starts with a buffer of a few KiB, which grows as needed: a MiB set up
// for every small file cost more than its conversion. A large one gets the whole
// buffer at once, as growing it costs a large conversion a fifth of its time.
std::size_t firstOutCapacity(std::uint64_t inputBytes)
{
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(inputBytes, std::size_t{4} << 10, kOutCapacity));
}

// Pieces this large go to the stream as they are rather than through the output
// buffer, and gaps are filled in pieces of this size: a gap of gigabytes then costs
// calls, not copies, and a new fill byte costs 64 KiB of setting, not a MiB.
constexpr std::size_t kDirectWrite = 1 << 16;

const std::vector<std::uint8_t>& fillBlock(std::uint8_t fill)
{
    static thread_local std::vector<std::uint8_t> block;
    if (block.size() != kDirectWrite || block[0] != fill) block.assign(kDirectWrite, fill);
    return block;
}

}  // namespace

SRecordToBinary::SRecordToBinary(std::istream& in, std::ostream& out, S3ToBinOptions options)
    : m_in(&in), m_out(out), m_options(options),
      m_inBuffer(std::make_unique_for_overwrite<char[]>(std::max<std::size_t>(options.readBlock, 1))),
      m_outCapacity(firstOutCapacity(options.readBlock)),
      m_outBuffer(std::make_unique_for_overwrite<std::uint8_t[]>(m_outCapacity))
{
}

SRecordToBinary::SRecordToBinary(MappedFile& in, std::ostream& out, S3ToBinOptions options)
    : m_mapped(&in), m_out(out), m_options(options), m_outCapacity(firstOutCapacity(in.size())),
      m_outBuffer(std::make_unique_for_overwrite<std::uint8_t[]>(m_outCapacity))
{
}

SRecordToBinary::SRecordToBinary(std::ostream& out, S3ToBinOptions options)
    : m_out(out), m_options(options), m_outCapacity(kOutCapacity),
      m_outBuffer(std::make_unique_for_overwrite<std::uint8_t[]>(m_outCapacity))
{
}

void SRecordToBinary::flush()
{
    if (m_outSize == 0) return;
    m_out.write(reinterpret_cast<const char*>(m_outBuffer.get()), static_cast<std::streamsize>(m_outSize));
    m_outputWritten += m_outSize;
    m_outSize = 0;
    m_out.flush();
    if (!m_out) throw OutputWriteError(Reason::BinaryOutputNotWritten);
}

// Room for `count` more bytes: the buffer grows while it is below a block, and is
// handed to the stream once it is one.
void SRecordToBinary::makeRoom(std::size_t count)
{
    if (m_outSize + count <= m_outCapacity) return;
    if (m_outCapacity < kOutCapacity) {
        const std::size_t capacity = std::min(kOutCapacity, std::max(2 * m_outCapacity, m_outSize + count));
        auto bigger = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
        std::memcpy(bigger.get(), m_outBuffer.get(), m_outSize);
        m_outBuffer = std::move(bigger);
        m_outCapacity = capacity;
        if (m_outSize + count <= m_outCapacity) return;
    }
    flush();
}

void SRecordToBinary::writeOut(const std::uint8_t* bytes, std::size_t count)
{
    // A record without data hands over no bytes, and perhaps a null pointer.
    if (count == 0) return;
    if (count >= kDirectWrite) {
        flush();
        m_out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
        m_outputWritten += count;
        if (!m_out) throw OutputWriteError(Reason::BinaryOutputNotWritten);
        return;
    }
    makeRoom(count);
    std::memcpy(m_outBuffer.get() + m_outSize, bytes, count);
    m_outSize += count;
}

void SRecordToBinary::writeFill(std::uint64_t count)
{
    const auto& block = fillBlock(m_options.fill);
    while (count > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(count, block.size()));
        writeOut(block.data(), piece);
        count -= piece;
    }
}

// Lines of the common form go through the block decoder; it stops at any other line,
// which the line splitter hands to takeLine, and at a line whose end is still to come.
void SRecordToBinary::takeText(std::string_view text)
{
    const auto take = [this](std::string_view line) { takeLine(line); };
    std::size_t pos = m_lines.idle() ? 0 : m_lines.feedFirstLine(text, take);
    while (pos < text.size()) {
        pos += decodeCommonLines(text.substr(pos));
        if (pos == text.size()) break;
        if (m_outCapacity - m_outSize < kRecordRoom) {
            makeRoom(kRecordRoom);
            continue;
        }
        pos += m_lines.feedFirstLine(text.substr(pos), take);
    }
}

std::size_t SRecordToBinary::decodeCommonLines(std::string_view text)
{
    RecordOutput out;
    out.end = m_outBuffer.get() + m_outSize;
    out.limit = m_outBuffer.get() + m_outCapacity;
    out.fullAddress = m_options.mode == S3ToBinMode::FullAddress;
    out.expected = m_expected;
    out.lines = m_lineNumber;
    out.lastAddress = m_address;
    const RecordReading reading = m_options.anyRecords ? RecordReading::AnyRecords : RecordReading::Handset;
    const std::size_t taken = decodeRecordBlock(m_options.kernel, text, reading, out);
    m_outSize = static_cast<std::size_t>(out.end - m_outBuffer.get());
    m_expected = out.expected;
    m_lineNumber = out.lines;
    m_address = out.lastAddress;
    return taken;
}

void SRecordToBinary::takeLine(std::string_view line)
{
    ++m_lineNumber;
    if (m_options.anyRecords && isForeignLine(line)) {
        ++m_skippedLines;
        return;
    }
    if (m_options.anyRecords) readStrictRecord(line, m_lineNumber, m_record);
    else readDesignRecord(line, m_lineNumber, m_record);
    if (!m_record.isData) return;
    m_address = m_record.address;
    if (m_options.mode == S3ToBinMode::FullAddress) {
        if (m_record.address < m_expected)
            throw SRecordError(m_lineNumber, Reason::RecordBelowExpected,
                               {HexPad(m_record.address, 8), HexPad(static_cast<std::uint32_t>(m_expected), 8)});
        writeFill(m_record.address - m_expected);
        m_expected = std::uint64_t{m_record.address} + m_record.bytes.size();
    }
    writeOut(m_record.bytes.data(), m_record.bytes.size());
}

// Keeps what was converted before a failure; the first error is the one to report.
template <typename Job>
void SRecordToBinary::keepingOutputOnError(Job&& job)
{
    try {
        job();
    } catch (...) {
        try {
            flush();
        } catch (const FileError&) {
        }
        throw;
    }
}

void SRecordToBinary::feedText(std::string_view text)
{
    keepingOutputOnError([&] {
        m_inputRead += text.size();
        takeText(text);
    });
}

void SRecordToBinary::endText()
{
    keepingOutputOnError([&] {
        m_lines.finish([this](std::string_view line) { takeLine(line); });
        m_inputDone = true;
        flush();
    });
}

bool SRecordToBinary::convertSome(std::size_t workBytes)
{
    if (m_mapped != nullptr) return convertSomeMapped(workBytes);
    if (m_in == nullptr) throw std::logic_error("a converter without an input is fed with feedText");
    std::size_t work = 0;
    while (work < workBytes && !m_inputDone) {
        const std::size_t want = std::min(std::max<std::size_t>(m_options.readBlock, 1), workBytes - work);
        m_in->read(m_inBuffer.get(), static_cast<std::streamsize>(want));
        const auto got = static_cast<std::size_t>(m_in->gcount());
        work += got;
        feedText(std::string_view(m_inBuffer.get(), got));
        if (got == 0 || !*m_in) {
            if (m_in->bad()) keepingOutputOnError([] { throw FileError(Reason::SRecordInputNotRead); });
            endText();
        }
    }
    return !m_inputDone;
}

bool SRecordToBinary::convertSomeMapped(std::size_t workBytes)
{
    // Large enough that a window's setting up is lost in its reading, small enough to
    // stay a few MiB of memory.
    constexpr std::size_t kWindow = std::size_t{4} << 20;
    std::size_t work = 0;
    while (work < workBytes && !m_inputDone) {
        const auto window = m_mapped->window(m_inputRead, std::min(kWindow, workBytes - work));
        if (window.empty()) {
            endText();
            break;
        }
        work += window.size();
        feedText(std::string_view(reinterpret_cast<const char*>(window.data()), window.size()));
    }
    return !m_inputDone;
}

void SRecordToBinary::convertAll()
{
    while (convertSome(std::size_t{64} << 20)) {}
}

void binaryToSRecord(std::istream* binary, std::ostream& out, std::uint32_t start, std::uint32_t end, std::uint8_t fill)
{
    out.write(S0Line.data(), static_cast<std::streamsize>(S0Line.size()));
    std::uint64_t remaining = std::uint64_t{end} - start + 1;
    // A small region gets a small block: a few bytes need not cost four MiB.
    const auto blockSize = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, kBlock));
    std::vector<std::uint8_t> block(blockSize);
    std::string text;
    text.reserve(blockSize * 3);
    std::uint32_t address = start;
    bool fileLeft = binary != nullptr;
    while (remaining > 0) {
        // Pieces are whole multiples of 16 bytes until the last, so the lines come out
        // as for one region written at once.
        const std::size_t piece = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, blockSize));
        std::size_t got = 0;
        while (fileLeft && got < piece) {
            binary->read(reinterpret_cast<char*>(block.data() + got), static_cast<std::streamsize>(piece - got));
            const auto n = static_cast<std::size_t>(binary->gcount());
            got += n;
            if (n == 0 || !*binary) {
                if (binary->bad()) throw FileError(Reason::BinaryInputNotRead);
                fileLeft = false;
            }
        }
        std::fill(block.begin() + static_cast<std::ptrdiff_t>(got), block.begin() + static_cast<std::ptrdiff_t>(piece),
                  fill);
        text.clear();
        appendSRecordLines(text, std::span<const std::uint8_t>(block.data(), piece), address);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        if (!out) throw OutputWriteError(Reason::SRecordOutputNotWritten);
        address += static_cast<std::uint32_t>(piece);
        remaining -= piece;
    }
    out.write(S7Line.data(), static_cast<std::streamsize>(S7Line.size()));
    out.flush();
    if (!out) throw OutputWriteError(Reason::SRecordOutputNotWritten);
}

std::uint32_t wholeFileLastAddress(const std::string& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw fileSystemError(path, error.value());
    if (size == 0) throw FileError(Reason::NothingToConvert, {path});
    if (size > 0x80000000u) throw FileError(Reason::PastHighestAddress, {path});
    return static_cast<std::uint32_t>(size - 1);
}

std::uint8_t fillByteFromText(const std::string& text)
{
    const std::int32_t value = HexTextToLong(text);
    if (value > 0xFF) throw std::out_of_range("fill value " + text + " does not fit a byte (00 to FF)");
    return static_cast<std::uint8_t>(value);
}

BinToS3Check checkBinToS3Fields(const BinToS3Fields& fields)
{
    BinToS3Check check;
    check.fill = fillByteFromText(fields.fillText);
    if (fields.mode != BinToS3Mode::WholeFile) {
        // The start box is checked before the end box, as the fields stand on screen.
        if (fields.startText.empty()) return {kMessageStartMissing};
        if (fields.endText.empty()) return {kMessageEndMissing};
        const std::int32_t start = HexToLong(fields.startText);
        const std::int32_t end = HexToLong(fields.endText);
        if (end <= start) return {kMessageRangeNotAscending};
        check.start = static_cast<std::uint32_t>(start);
        check.end = static_cast<std::uint32_t>(end);
    }
    if (fields.mode != BinToS3Mode::FillOnly && FileNameOf(fields.inputPath).empty()) return {kMessageNoInputFile};
    return check;
}

std::string convertedOutputPath(const std::string& inputPath, const std::string& extension)
{
    const std::string name = inputPath.find('/') == std::string::npos ? inputPath : FileNameOf(inputPath);
    const auto dot = name.rfind('.');
    const std::string stem = dot == std::string::npos ? name : name.substr(0, dot);
    const std::string folder = FolderOf(inputPath);
    const bool hasFolder = inputPath.find('/') != std::string::npos;
    return (hasFolder ? folder + "/" : std::string()) + stem + extension;
}

}  // namespace zevran::image
