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
    : m_in(in), m_out(out), m_options(options), m_inBuffer(std::make_unique_for_overwrite<char[]>(std::max<std::size_t>(options.readBlock, 1)))
{
}

void SRecordToBinary::flush()
{
    if (m_outBuffer.empty()) return;
    m_out.write(reinterpret_cast<const char*>(m_outBuffer.data()), static_cast<std::streamsize>(m_outBuffer.size()));
    m_outputWritten += m_outBuffer.size();
    m_outBuffer.clear();
    m_out.flush();
    if (!m_out) throw OutputWriteError("the binary output could not be written (disk full?)");
}

void SRecordToBinary::writeOut(const std::uint8_t* bytes, std::size_t count)
{
    if (m_outBuffer.size() + count > kBlock || count >= kDirectWrite) flush();
    if (count >= kDirectWrite) {
        m_out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
        m_outputWritten += count;
        if (!m_out) throw OutputWriteError("the binary output could not be written (disk full?)");
        return;
    }
    m_outBuffer.insert(m_outBuffer.end(), bytes, bytes + count);
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

void SRecordToBinary::takeLine(std::string_view line)
{
    ++m_lineNumber;
    if (m_options.anyRecords) readStrictRecord(line, m_lineNumber, m_record);
    else readDesignRecord(line, m_lineNumber, m_record);
    if (!m_record.isData) return;
    m_address = m_record.address;
    if (m_options.mode == S3ToBinMode::FullAddress) {
        if (m_record.address < m_expected)
            throw SRecordError(m_lineNumber, "record at 0x" + HexPad(m_record.address, 8) +
                                                 " lies below the address expected next, 0x" +
                                                 HexPad(static_cast<std::uint32_t>(m_expected), 8));
        writeFill(m_record.address - m_expected);
        m_expected = std::uint64_t{m_record.address} + m_record.bytes.size();
    }
    writeOut(m_record.bytes.data(), m_record.bytes.size());
}

bool SRecordToBinary::convertSome(std::size_t workBytes)
{
    try {
        std::size_t work = 0;
        while (work < workBytes && !m_inputDone) {
            const std::size_t want = std::min(std::max<std::size_t>(m_options.readBlock, 1), workBytes - work);
            m_in.read(m_inBuffer.get(), static_cast<std::streamsize>(want));
            const auto got = static_cast<std::size_t>(m_in.gcount());
            m_inputRead += got;
            work += got;
            m_lines.feed(std::string_view(m_inBuffer.get(), got), [this](std::string_view line) { takeLine(line); });
            if (got == 0 || !m_in) {
                if (m_in.bad()) throw FileError("the S-record input could not be read");
                m_lines.finish([this](std::string_view line) { takeLine(line); });
                m_inputDone = true;
            }
        }
        if (m_inputDone) flush();
    } catch (...) {
        // Keep what was converted before the failure; the first error is the one to report.
        try {
            flush();
        } catch (const FileError&) {
        }
        throw;
    }
    return !m_inputDone;
}

void SRecordToBinary::convertAll()
{
    while (convertSome(std::size_t{64} << 20)) {
    }
}

void binaryToSRecord(std::istream* binary, std::ostream& out, std::uint32_t start, std::uint32_t end,
                     std::uint8_t fill)
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
                if (binary->bad()) throw FileError("the binary input could not be read");
                fileLeft = false;
            }
        }
        std::fill(block.begin() + static_cast<std::ptrdiff_t>(got), block.begin() + static_cast<std::ptrdiff_t>(piece), fill);
        text.clear();
        appendSRecordLines(text, std::span<const std::uint8_t>(block.data(), piece), address);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        if (!out) throw OutputWriteError("the S-record output could not be written (disk full?)");
        address += static_cast<std::uint32_t>(piece);
        remaining -= piece;
    }
    out.write(S7Line.data(), static_cast<std::streamsize>(S7Line.size()));
    out.flush();
    if (!out) throw OutputWriteError("the S-record output could not be written (disk full?)");
}

std::uint32_t wholeFileLastAddress(const std::string& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw FileError(describeErrno(path, error.value()));
    if (size == 0) throw FileError(path + ": the file is empty, there is nothing to convert");
    if (size > 0x80000000u) throw FileError(path + ": the file reaches past the highest address 7FFFFFFF");
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
