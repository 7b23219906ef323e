// The block decoders against the line readers: every kernel this processor runs must
// give, for every record form the two readings accept, the bytes that reading the
// same text line by line gives, in both converter modes and however the text is cut.
#include "image/converter.hpp"
#include "image/hex_text.hpp"
#include "image/srecord_block.hpp"
#include "image/srecord_reader.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

using namespace zevran::image;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view kLineEnds[] = {"\n", "\r", "\r\n"};

// One record with its checksum, without a line end; `type` is '1', '2' or '3'.
std::string record(char type, std::uint32_t address, const Bytes& data)
{
    const int addressBytes = type - '0' + 1;
    const auto count = static_cast<std::uint32_t>(addressBytes + data.size() + 1);
    std::string line = std::string("S") + type + HexPad(count, 2);
    unsigned sum = count;
    for (int i = addressBytes - 1; i >= 0; --i) {
        const auto byte = static_cast<std::uint8_t>(address >> (8 * i));
        line += HexPad(byte, 2);
        sum += byte;
    }
    for (std::uint8_t byte : data) {
        line += HexPad(byte, 2);
        sum += byte;
    }
    return line + HexPad(255 - (sum & 0xFF), 2);
}

Bytes randomBytes(std::mt19937& random, std::size_t count)
{
    Bytes bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// Lower-case digits are hex to both readings.
std::string withLowerCase(std::string line, std::mt19937& random)
{
    for (std::size_t i = 2; i < line.size(); ++i)
        if (line[i] >= 'A' && line[i] <= 'F' && random() % 3 == 0) line[i] = static_cast<char>(line[i] + 32);
    return line;
}

// Characters the handset reading takes as the digit 0, none of them a line end, put
// in from character `from` on (5 for the address too, 13 for the data only).
std::string withOddDigits(std::string line, std::mt19937& random, std::size_t from)
{
    static constexpr char kOdd[] = {'G', 'g', 'Z', ' ', ':', '@', '`', '/', '\t', '\x7F', '\x80', '\xFF', 'S'};
    for (std::size_t i = from - 1; i < line.size(); ++i)
        if (random() % 5 == 0) line[i] = kOdd[random() % sizeof kOdd];
    return line;
}

// Contiguous S3 records of every length from 0 to 250 data bytes, lines ended in
// turn by LF, CR and CR LF, framed by header and trailer lines; with odd digits from
// character `oddFrom` on when it is not 0.
std::string handsetText(std::size_t oddFrom = 0)
{
    std::mt19937 random(7);
    std::string text = "S00600004844521B\r\n";
    std::uint32_t address = 0;
    for (std::size_t count = 0; count <= 250; ++count) {
        for (std::string_view lineEnd : kLineEnds) {
            std::string line = withLowerCase(record('3', address, randomBytes(random, count)), random);
            text += (oddFrom != 0 ? withOddDigits(line, random, oddFrom) : line) + std::string(lineEnd);
            address += static_cast<std::uint32_t>(count);
        }
    }
    return text + "S705A002000058\r\n";
}

// S1, S2 and S3 records of every length their count allows, contiguous from 0x100,
// framed by an S0 header and an S5 count, S9 start and S7 start line.
std::string anyRecordsText()
{
    std::mt19937 random(11);
    std::string text = record('1', 0, {'H', 'D', 'R'}) + "\n";
    text[1] = '0';
    std::uint32_t address = 0x100;
    std::size_t lineEnd = 0;
    for (char type : {'1', '2', '3'}) {
        const std::size_t most = 255 - (type - '0' + 1) - 1;
        for (std::size_t count = 0; count <= most; ++count) {
            text += withLowerCase(record(type, address, randomBytes(random, count)), random);
            text += kLineEnds[lineEnd++ % 3];
            address += static_cast<std::uint32_t>(count);
        }
    }
    return text + "S5030300F9\r\nS9030000FC\r\nS70500000000FA\r\n";
}

// What reading every line through the line readers gives in the data-only mode.
Bytes readLineByLine(const std::string& text, bool anyRecords)
{
    LineSplitter splitter;
    SRecordData data;
    Bytes bytes;
    std::uint64_t lineNumber = 0;
    const auto take = [&](std::string_view line) {
        if (anyRecords) readStrictRecord(line, ++lineNumber, data);
        else readDesignRecord(line, ++lineNumber, data);
        if (data.isData) bytes.insert(bytes.end(), data.bytes.begin(), data.bytes.end());
    };
    splitter.feed(text, take);
    splitter.finish(take);
    return bytes;
}

struct Outcome {
    Bytes bytes;
    std::uint64_t lines = 0;
    std::string error;
};

Outcome convertWith(RecordKernel kernel, const std::string& text, S3ToBinMode mode, bool anyRecords,
                    std::size_t readBlock)
{
    S3ToBinOptions options;
    options.mode = mode;
    options.anyRecords = anyRecords;
    options.kernel = kernel;
    options.readBlock = readBlock;
    std::istringstream in(text);
    std::ostringstream out;
    SRecordToBinary converter(in, out, options);
    Outcome outcome;
    try {
        converter.convertAll();
    } catch (const SRecordError& error) {
        outcome.error = error.what();
    }
    const std::string bytes = out.str();
    outcome.bytes.assign(bytes.begin(), bytes.end());
    outcome.lines = converter.linesRead();
    return outcome;
}

// Every kernel, in both modes (or data only), with the text in one piece and cut into
// pieces whose edges fall inside lines, at line ends and between a CR and its LF.
void expectAllPathsAgree(const std::string& text, bool anyRecords, const Bytes& dataOnly, bool bothModes = true)
{
    for (S3ToBinMode mode : {S3ToBinMode::DataOnly, S3ToBinMode::FullAddress}) {
        if (mode == S3ToBinMode::FullAddress && !bothModes) continue;
        const Outcome reference = convertWith(RecordKernel::Portable, text, mode, anyRecords, 1 << 20);
        EXPECT_EQ(reference.error, "");
        if (mode == S3ToBinMode::DataOnly) {
            EXPECT_EQ(reference.bytes, dataOnly);
        }
        for (RecordKernel kernel : availableRecordKernels()) {
            for (std::size_t block : {std::size_t{1} << 20, std::size_t{4096}, std::size_t{61}, std::size_t{2}}) {
                const Outcome outcome = convertWith(kernel, text, mode, anyRecords, block);
                EXPECT_EQ(outcome.bytes, reference.bytes) << recordKernelName(kernel) << " block " << block;
                EXPECT_EQ(outcome.lines, reference.lines) << recordKernelName(kernel) << " block " << block;
                EXPECT_EQ(outcome.error, reference.error) << recordKernelName(kernel) << " block " << block;
            }
        }
    }
}

// How much of `text` one call of the kernel decodes, and the bytes it writes.
std::pair<std::size_t, Bytes> decodeOnce(RecordKernel kernel, std::string_view text, RecordReading reading)
{
    Bytes room(text.size() + kRecordRoom);
    RecordOutput out;
    out.end = room.data();
    out.limit = room.data() + room.size();
    const std::size_t taken = decodeRecordBlock(kernel, text, reading, out);
    room.resize(static_cast<std::size_t>(out.end - room.data()));
    return {taken, room};
}

}  // namespace

TEST(SRecordBlock, PortableAndSse2AreAlwaysThereOnX86)
{
    const auto kernels = availableRecordKernels();
    EXPECT_EQ(kernels.front(), RecordKernel::Portable);
#if defined(__x86_64__)
    EXPECT_NE(std::find(kernels.begin(), kernels.end(), RecordKernel::Sse2), kernels.end());
#endif
    EXPECT_EQ(fastestRecordKernel(), kernels.back());
}

TEST(SRecordBlock, HandsetReadingOfEveryLengthAndLineEndAgreesWithTheLineReader)
{
    const std::string text = handsetText();
    expectAllPathsAgree(text, false, readLineByLine(text, false));
}

TEST(SRecordBlock, OddDigitsReadAsZeroAlikeOnEveryPath)
{
    // In the data the addresses stay contiguous, so both modes run to the end; in the
    // address too only the data-only mode does.
    const std::string inData = handsetText(13);
    expectAllPathsAgree(inData, false, readLineByLine(inData, false));
    const std::string inAddress = handsetText(5);
    expectAllPathsAgree(inAddress, false, readLineByLine(inAddress, false), false);
}

TEST(SRecordBlock, AnyRecordsReadingOfS1S2S3AgreesWithTheLineReader)
{
    const std::string text = anyRecordsText();
    expectAllPathsAgree(text, true, readLineByLine(text, true));
}

TEST(SRecordBlock, EveryKernelTakesEveryCommonLineItself)
{
    // Between the header and trailer lines, which go to the line reader, the kernels
    // decode the whole text in one call.
    for (bool anyRecords : {false, true}) {
        std::string text = anyRecords ? anyRecordsText() : handsetText();
        text = text.substr(text.find('\n') + 1);
        text = text.substr(0, text.find(anyRecords ? "S503" : "S705"));
        // A CR at the very end might yet be followed by an LF, so the kernel would leave it.
        if (text.back() == '\r') text += '\n';
        const RecordReading reading = anyRecords ? RecordReading::AnyRecords : RecordReading::Handset;
        const Bytes expected = readLineByLine(text, anyRecords);
        for (RecordKernel kernel : availableRecordKernels()) {
            const auto [taken, bytes] = decodeOnce(kernel, text, reading);
            EXPECT_EQ(taken, text.size()) << recordKernelName(kernel);
            EXPECT_EQ(bytes, expected) << recordKernelName(kernel);
        }
    }
}

TEST(SRecordBlock, KernelsLeaveUncommonLinesToTheLineReader)
{
    const std::string common = "S3090000001001020304DC\n";
    for (RecordKernel kernel : availableRecordKernels()) {
        for (std::string_view uncommon :
             {"S00600004844521B\n", "S705A002000058\n", "S3040000\n", "S3090000001001\n", "\n", "S303000000FC\n"}) {
            const auto [taken, bytes] =
                decodeOnce(kernel, common + std::string(uncommon) + common, RecordReading::Handset);
            EXPECT_EQ(taken, common.size()) << recordKernelName(kernel) << " " << uncommon;
            EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4})) << recordKernelName(kernel);
        }
        // The checksum of the second line is wrong, and the third has no line end yet.
        for (std::string_view uncommon : {"S3090000001001020304DD\n", "S3090000001001020304DC",
                                          "S3090000001001020304DC\r", "# comment\n", "S3090000001001020304DC \n"}) {
            const auto [taken, bytes] = decodeOnce(kernel, common + std::string(uncommon), RecordReading::AnyRecords);
            EXPECT_EQ(taken, common.size()) << recordKernelName(kernel) << " " << uncommon;
        }
    }
}

TEST(SRecordBlock, FullAddressTakesARecordOnlyWhereTheLastEnded)
{
    const std::string text = "S3090000001001020304DC\nS3090000001405060708C2\nS30900000020090A0B0CB4\n";
    for (RecordKernel kernel : availableRecordKernels()) {
        Bytes room(kRecordRoom + 64);
        RecordOutput out;
        out.end = room.data();
        out.limit = room.data() + room.size();
        out.fullAddress = true;
        out.expected = 0x10;
        EXPECT_EQ(decodeRecordBlock(kernel, text, RecordReading::Handset, out), 46u) << recordKernelName(kernel);
        EXPECT_EQ(out.expected, 0x18u);
        EXPECT_EQ(out.lines, 2u);
        EXPECT_EQ(out.lastAddress, 0x14u);
        EXPECT_EQ(Bytes(room.data(), out.end), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    }
}

TEST(SRecordBlock, KernelStopsWhileTheOutputHasNoRoomForARecord)
{
    const std::string text = "S3090000001001020304DC\n";
    for (RecordKernel kernel : availableRecordKernels()) {
        Bytes room(kRecordRoom - 1);
        RecordOutput out;
        out.end = room.data();
        out.limit = room.data() + room.size();
        EXPECT_EQ(decodeRecordBlock(kernel, text, RecordReading::Handset, out), 0u) << recordKernelName(kernel);
    }
}

TEST(SRecordBlock, ErrorsNameTheSameLineOnEveryPath)
{
    // A count below 5 in the handset reading, a bad checksum in the other.
    std::string text = handsetText();
    text.insert(text.find("S315"), "S304000000\r\n");
    std::string strictText = anyRecordsText();
    const std::size_t at = strictText.find("S2");
    strictText[at + 10] = strictText[at + 10] == '0' ? '1' : '0';
    for (bool anyRecords : {false, true}) {
        const std::string& input = anyRecords ? strictText : text;
        const Outcome reference =
            convertWith(RecordKernel::Portable, input, S3ToBinMode::DataOnly, anyRecords, 1 << 20);
        EXPECT_NE(reference.error, "");
        for (RecordKernel kernel : availableRecordKernels()) {
            const Outcome outcome = convertWith(kernel, input, S3ToBinMode::DataOnly, anyRecords, 4096);
            EXPECT_EQ(outcome.error, reference.error) << recordKernelName(kernel);
            EXPECT_EQ(outcome.bytes, reference.bytes) << recordKernelName(kernel);
        }
    }
}

TEST(SRecordBlock, StrictS3LinesOfSixteenBytesAreCheckedLikeAnyOther)
{
    // The vector kernels decode these lines whole; every digit and the checksum count.
    std::mt19937 random(3);
    std::string lines;
    for (std::uint32_t address = 0; address < 16 * 8; address += 16)
        lines += withLowerCase(record('3', 0x1000 + address, randomBytes(random, 16)), random) + "\n";
    const std::string fourth = lines.substr(std::size_t{3} * 47, 46);
    for (std::size_t at : {std::size_t{0}, std::size_t{4}, std::size_t{11}, std::size_t{12}, std::size_t{43},
                           std::size_t{44}, std::size_t{45}}) {
        for (char odd : {'G', ' ', '\x80', '0'}) {
            std::string text = lines;
            if (at == 0) {
                text += "S3150000";  // a line cut short at the end of the text
            } else {
                text[std::size_t{3} * 47 + at] = odd;
            }
            const Outcome reference = convertWith(RecordKernel::Portable, text, S3ToBinMode::DataOnly, true, 1 << 20);
            // Only a '0' put over a '0' leaves the line as it was.
            const bool unchanged = at != 0 && fourth[at] == odd;
            EXPECT_EQ(reference.error.empty(), unchanged) << at << " " << odd << " " << reference.error;
            for (RecordKernel kernel : availableRecordKernels()) {
                const Outcome outcome = convertWith(kernel, text, S3ToBinMode::DataOnly, true, 1 << 20);
                EXPECT_EQ(outcome.error, reference.error) << recordKernelName(kernel) << " " << at;
                EXPECT_EQ(outcome.bytes, reference.bytes) << recordKernelName(kernel) << " " << at;
            }
        }
    }
}
