#include "image/converter.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/srecord.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace zevran::image;
using zevran::test::TempFolder;

namespace {

using Bytes = std::vector<std::uint8_t>;

const std::string kTwoRecords = "S00600004844521B\r\n"
                                "S3090000001001020304DC\r\n"
                                "S3090000002005060708BC\r\n"
                                "S705A002000058\r\n";

Bytes toBinary(const std::string& text, S3ToBinOptions options)
{
    std::istringstream in(text);
    std::ostringstream out;
    SRecordToBinary converter(in, out, options);
    converter.convertAll();
    std::string bytes = out.str();
    return Bytes(bytes.begin(), bytes.end());
}

S3ToBinOptions fullAddress(std::uint8_t fill = 0xFF) { return {S3ToBinMode::FullAddress, fill, false}; }
S3ToBinOptions dataOnly() { return {S3ToBinMode::DataOnly, 0xFF, false}; }

std::string toSRecord(const Bytes& binary, std::uint32_t start, std::uint32_t end, std::uint8_t fill)
{
    std::istringstream in(std::string(binary.begin(), binary.end()));
    std::ostringstream out;
    binaryToSRecord(&in, out, start, end, fill);
    return out.str();
}

// Counts what it is given without keeping it, and checks the fill as it passes.
class CountingBuffer : public std::streambuf {
public:
    std::uint64_t count = 0;
    std::uint64_t largestWrite = 0;
    std::string tail;

protected:
    std::streamsize xsputn(const char* data, std::streamsize n) override
    {
        count += static_cast<std::uint64_t>(n);
        largestWrite = std::max<std::uint64_t>(largestWrite, static_cast<std::uint64_t>(n));
        // The last four bytes written, whichever writes they came in.
        tail.append(data + std::max<std::streamsize>(0, n - 4), data + n);
        if (tail.size() > 4) tail.erase(0, tail.size() - 4);
        return n;
    }
    int overflow(int c) override
    {
        if (c != EOF) ++count;
        return c;
    }
};

}  // namespace

TEST(SRecordToBinary, TwoRecordsInFullAddressModeFillTheGaps)
{
    Bytes expected(0x24, 0xFF);
    expected[0x10] = 1, expected[0x11] = 2, expected[0x12] = 3, expected[0x13] = 4;
    expected[0x20] = 5, expected[0x21] = 6, expected[0x22] = 7, expected[0x23] = 8;
    EXPECT_EQ(toBinary(kTwoRecords, fullAddress()), expected);
}

TEST(SRecordToBinary, FillByteIsTheOneChosen)
{
    Bytes result = toBinary(kTwoRecords, fullAddress(0x00));
    ASSERT_EQ(result.size(), 0x24u);
    EXPECT_EQ(result[0], 0x00);
    EXPECT_EQ(result[0x14], 0x00);
}

TEST(SRecordToBinary, TwoRecordsInDataOnlyModeGiveEightBytes)
{
    EXPECT_EQ(toBinary(kTwoRecords, dataOnly()), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(SRecordToBinary, ContiguousRecordsFromZeroGiveTheSameBytesInBothModes)
{
    const std::string text = "S3090000000001020304EC\r\nS3090000000405060708D8\r\n";
    const Bytes expected{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(toBinary(text, fullAddress()), expected);
    EXPECT_EQ(toBinary(text, dataOnly()), expected);
}

TEST(SRecordToBinary, RecordBelowTheExpectedAddressStopsKeepingEarlierOutput)
{
    const std::string text = "S3090000000001020304EC\r\nS30600000002995E\r\n";
    std::istringstream in(text);
    std::ostringstream out;
    SRecordToBinary converter(in, out, fullAddress());
    try {
        converter.convertAll();
        FAIL() << "no error";
    } catch (const SRecordError& error) {
        EXPECT_EQ(error.line(), 2u);
        EXPECT_EQ(std::string(error.what()),
                  "line 2: record at 0x00000002 lies below the address expected next, 0x00000004");
    }
    EXPECT_EQ(out.str(), std::string("\x01\x02\x03\x04", 4));
}

TEST(SRecordToBinary, RecordBelowTheExpectedAddressIsFineInDataOnlyMode)
{
    const std::string text = "S3090000000001020304EC\r\nS30600000002995E\r\n";
    EXPECT_EQ(toBinary(text, dataOnly()), (Bytes{1, 2, 3, 4, 0x99}));
}

TEST(SRecordToBinary, CountBelowFiveStopsAtItsLineKeepingEarlierOutput)
{
    const std::string text = "S30600000000AA4F\r\nS30600000001BB3D\r\nS304000000\r\nS30600000003CC2A\r\n";
    std::istringstream in(text);
    std::ostringstream out;
    SRecordToBinary converter(in, out, dataOnly());
    EXPECT_THROW(converter.convertAll(), SRecordError);
    EXPECT_EQ(out.str(), "\xAA\xBB");
    EXPECT_EQ(converter.linesRead(), 3u);
}

TEST(SRecordToBinary, LfAndLoneCrLineEndsConvertToo)
{
    EXPECT_EQ(toBinary("S30600000000AA4F\nS30600000001BB3D\n", dataOnly()), (Bytes{0xAA, 0xBB}));
    EXPECT_EQ(toBinary("S30600000000AA4F\rS30600000001BB3D", dataOnly()), (Bytes{0xAA, 0xBB}));
}

TEST(SRecordToBinary, EmptyInputGivesEmptyOutput) { EXPECT_TRUE(toBinary("", fullAddress()).empty()); }

TEST(SRecordToBinary, HighAddressStreamsItsFillInLargeBlocks)
{
    // One 2-byte record at the handset's flash base makes a 2.5 GiB image of fill.
    std::istringstream in("S307A0020000010253\r\n");
    CountingBuffer counter;
    std::ostream out(&counter);
    SRecordToBinary converter(in, out, fullAddress());
    converter.convertAll();
    EXPECT_EQ(counter.count, 0xA0020000ull + 2);
    EXPECT_EQ(counter.tail, std::string("\xFF\xFF\x01\x02", 4));
    EXPECT_LE(counter.largestWrite, 1u << 20);
}

TEST(SRecordToBinary, SlicedConversionGivesTheSameBytesAsWhole)
{
    std::string text;
    for (std::uint32_t address = 0; address < 4096; address += 16)
        text += "S315" + HexPad(address, 8) + "000102030405060708090A0B0C0D0E0F00\n";
    std::istringstream in(text);
    std::ostringstream out;
    SRecordToBinary converter(in, out, dataOnly());
    int slices = 0;
    while (converter.convertSome(100)) ++slices;
    EXPECT_GT(slices, 10);
    EXPECT_EQ(converter.linesRead(), 256u);
    EXPECT_EQ(out.str().size(), 4096u);
    EXPECT_EQ(out.str(), std::string(reinterpret_cast<const char*>(toBinary(text, dataOnly()).data()), 4096));
}

TEST(SRecordToBinary, ProgressShowsTheLastRecordsAddress)
{
    std::istringstream in(kTwoRecords);
    std::ostringstream out;
    SRecordToBinary converter(in, out, dataOnly());
    converter.convertAll();
    EXPECT_EQ(converter.currentAddress(), 0x20u);
    EXPECT_EQ(converter.linesRead(), 4u);
    EXPECT_EQ(converter.inputBytesRead(), kTwoRecords.size());
}

TEST(SRecordToBinary, AnyRecordsReadsS1AndS2AtTheirAddresses)
{
    const std::string text = "S00F000068656C6C6F202020202000003C\n"
                             "S1050002AABB93\n"
                             "S2070000051122338D\n"
                             "S5030002FA\n"
                             "S9030000FC\n";
    S3ToBinOptions options{S3ToBinMode::FullAddress, 0x00, true};
    EXPECT_EQ(toBinary(text, options), (Bytes{0, 0, 0xAA, 0xBB, 0, 0x11, 0x22, 0x33}));
}

TEST(SRecordToBinary, AnyRecordsRefusesAWrongChecksum)
{
    S3ToBinOptions options{S3ToBinMode::DataOnly, 0xFF, true};
    EXPECT_THROW(toBinary("S1050002AABB00\n", options), SRecordError);
}

TEST(SRecordToBinary, AnyRecordsSkipsAndCountsLinesNotStartingWithS)
{
    // 09 + 10 + 0A = 23 -> DC; a comment before, between and after the records, a blank line.
    const std::string text = "# made by a tool\nS3090000001001020304DC\n; note\r\n\r\n s3 indented\r"
                             "S3090000001405060708C8\n//end";
    for (std::size_t readBlock : {std::size_t{1} << 20, std::size_t{5}}) {
        S3ToBinOptions options{S3ToBinMode::DataOnly, 0xFF, true};
        options.readBlock = readBlock;
        std::istringstream in(text);
        std::ostringstream out;
        SRecordToBinary converter(in, out, options);
        converter.convertAll();
        EXPECT_EQ(out.str(), std::string("\x01\x02\x03\x04\x05\x06\x07\x08"));
        EXPECT_EQ(converter.skippedLines(), 4u);
        EXPECT_EQ(converter.linesRead(), 7u);
    }
}

TEST(SRecordToBinary, HandsetReadingSkipsNothingAndReadsACommentAsARecord)
{
    std::istringstream in("; -- made by a tool\n");
    std::ostringstream out;
    SRecordToBinary converter(in, out, dataOnly());
    // Its count field "--" reads as 0, below 5.
    EXPECT_THROW(converter.convertAll(), SRecordError);
    EXPECT_EQ(converter.skippedLines(), 0u);
}

TEST(SRecordToBinary, TextFedInPiecesGivesTheBytesOfTheStream)
{
    const std::string text = kTwoRecords + "S3090000002405060708B8\r";
    std::ostringstream out;
    SRecordToBinary converter(out, fullAddress(0x00));
    for (std::size_t at = 0; at < text.size(); at += 7) converter.feedText(std::string_view(text).substr(at, 7));
    converter.endText();
    const std::string bytes = out.str();
    Bytes expected(16, 0);
    expected.insert(expected.end(), {1, 2, 3, 4});
    expected.insert(expected.end(), 12, 0);
    expected.insert(expected.end(), {5, 6, 7, 8, 5, 6, 7, 8});
    EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), expected);
    EXPECT_EQ(converter.linesRead(), 5u);
    EXPECT_EQ(converter.inputBytesRead(), text.size());
}

TEST(SRecordToBinary, MappedFileReadInSlicesAcrossWindowsGivesTheBytesOfTheStream)
{
    TempFolder folder;
    // Over two windows of 4 MiB of text, the last line without a line end, a CR LF
    // at some window edge.
    Bytes binary((std::size_t{3} << 20) + 9);
    for (std::size_t i = 0; i < binary.size(); ++i) binary[i] = static_cast<std::uint8_t>(i * 31 + (i >> 12));
    std::string text = std::string(S0Line) + sRecordRegionText(binary, 0x40);
    text.resize(text.size() - 2);
    const std::string path = folder.path("in.s3");
    zevran::test::writeFile(path, text);
    for (S3ToBinOptions options : {fullAddress(0x00), dataOnly(), S3ToBinOptions{S3ToBinMode::DataOnly, 0, true}}) {
        const Bytes streamed = toBinary(text, options);
        ASSERT_EQ(streamed.size(), binary.size() + (options.mode == S3ToBinMode::FullAddress ? 0x40 : 0));
        for (std::size_t slice : {std::size_t{64} << 20, std::size_t{100003}}) {
            MappedFile mapped(path);
            std::ostringstream out;
            SRecordToBinary converter(mapped, out, options);
            while (converter.convertSome(slice)) {}
            const std::string bytes = out.str();
            EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), streamed) << slice;
            EXPECT_EQ(converter.inputBytesRead(), text.size());
            EXPECT_EQ(converter.linesRead(), (binary.size() + 15) / 16 + 1);
        }
    }
}

TEST(SRecordToBinary, EmptyMappedFileGivesEmptyOutput)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("empty.s3"), std::string());
    MappedFile mapped(folder.path("empty.s3"));
    std::ostringstream out;
    SRecordToBinary converter(mapped, out, fullAddress());
    converter.convertAll();
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(converter.linesRead(), 0u);
}

TEST(SRecordToBinary, FullDiskIsAFileError)
{
    std::istringstream in("S30600000000AA4F\r\n");
    std::ofstream out("/dev/full", std::ios::binary);
    SRecordToBinary converter(in, out, dataOnly());
    EXPECT_THROW(converter.convertAll(), FileError);
}

TEST(BinaryToSRecord, SeventeenByteFileGivesAFullLineAndACountSixLine)
{
    Bytes file(17);
    for (std::size_t i = 0; i < file.size(); ++i) file[i] = static_cast<std::uint8_t>(i);
    EXPECT_EQ(toSRecord(file, 0, 16, 0xFF), "S00600004844521B\r\n"
                                            "S31500000000000102030405060708090A0B0C0D0E0F72\r\n"
                                            "S3060000001010D9\r\n"
                                            "S705A002000058\r\n");
}

TEST(BinaryToSRecord, FillOnlyRangeOfSixteenBytes)
{
    std::ostringstream out;
    binaryToSRecord(nullptr, out, 0, 0x0F, 0xFF);
    EXPECT_EQ(out.str(), "S00600004844521B\r\n"
                         "S31500000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFA\r\n"
                         "S705A002000058\r\n");
}

TEST(BinaryToSRecord, RangeLongerThanTheFileIsFilled)
{
    EXPECT_EQ(toSRecord({0x11, 0x22}, 0x100, 0x103, 0x00), "S00600004844521B\r\n"
                                                           "S3090000010011220000C2\r\n"
                                                           "S705A002000058\r\n");
}

TEST(BinaryToSRecord, RangeShorterThanTheFileTakesItsFirstBytes)
{
    EXPECT_EQ(toSRecord({0x11, 0x22, 0x33, 0x44}, 0x100, 0x102, 0x00), "S00600004844521B\r\n"
                                                                       "S3080000010011223390\r\n"
                                                                       "S705A002000058\r\n");
}

TEST(BinaryToSRecord, RangeOverAMebibyteBoundaryMatchesOneRegion)
{
    Bytes file((1 << 20) + 40);
    for (std::size_t i = 0; i < file.size(); ++i) file[i] = static_cast<std::uint8_t>(i * 7);
    std::string expected = "S00600004844521B\r\n";
    appendSRecordLines(expected, file, 0x30);
    expected += "S705A002000058\r\n";
    EXPECT_EQ(toSRecord(file, 0x30, 0x30 + static_cast<std::uint32_t>(file.size()) - 1, 0xFF), expected);
}

TEST(CheckBinToS3Fields, MissingStartIsMessage28)
{
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::FileAtRange, "", "FF", "FF", "/a/b.bin"}).message, 28);
}

TEST(CheckBinToS3Fields, MissingEndIsMessage29)
{
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::FillOnly, "10", "", "FF", ""}).message, 29);
}

TEST(CheckBinToS3Fields, OneByteOrDescendingRangeIsMessage30)
{
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::FillOnly, "10", "10", "FF", ""}).message, 30);
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::FillOnly, "10", "0F", "FF", ""}).message, 30);
}

TEST(CheckBinToS3Fields, MissingInputNameIsMessage31)
{
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::WholeFile, "", "", "FF", ""}).message, 31);
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::FileAtRange, "0", "F", "FF", "/a/"}).message, 31);
}

TEST(CheckBinToS3Fields, FillOnlyNeedsNoInputFile)
{
    BinToS3Check check = checkBinToS3Fields({BinToS3Mode::FillOnly, "0", "0F", "AB", ""});
    EXPECT_EQ(check.message, 0);
    EXPECT_EQ(check.start, 0u);
    EXPECT_EQ(check.end, 0x0Fu);
    EXPECT_EQ(check.fill, 0xAB);
}

TEST(CheckBinToS3Fields, WholeFileIgnoresTheRangeFields)
{
    EXPECT_EQ(checkBinToS3Fields({BinToS3Mode::WholeFile, "", "", "", "/a/b.bin"}).message, 0);
}

TEST(CheckBinToS3Fields, AddressAboveTheSignedRangeOverflows)
{
    EXPECT_THROW(checkBinToS3Fields({BinToS3Mode::FillOnly, "0", "A0020000", "FF", ""}), HexOverflow);
}

TEST(FillByteFromText, EmptyIsZeroAndAboveFfIsRefused)
{
    EXPECT_EQ(fillByteFromText(""), 0);
    EXPECT_EQ(fillByteFromText("ff"), 0xFF);
    EXPECT_THROW(fillByteFromText("100"), std::out_of_range);
}

TEST(ConvertedOutputPath, BesideTheInputWithoutItsExtension)
{
    EXPECT_EQ(convertedOutputPath("/data/phone.v2.s3", ".bin"), "/data/phone.v2.bin");
    EXPECT_EQ(convertedOutputPath("/data/image", ".s3"), "/data/image.s3");
    EXPECT_EQ(convertedOutputPath("image.bin", ".s3"), "image.s3");
}
