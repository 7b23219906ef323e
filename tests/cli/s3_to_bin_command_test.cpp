// zevran-cli s3-to-bin: S-record text to binary, in the handset tool's own tolerant
// reading and in the strict reading of any Motorola file (--any-records).
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

const std::string kHeader = "S00600004844521B\r\n";
const std::string kTrailer = "S705A002000058\r\n";

// 01 02 03 04 at 0x10 and 05 06 07 08 at 0x20.
// 09 + 10 + (1 + 2 + 3 + 4 = 0A) = 23 -> DC; 09 + 20 + (5 + 6 + 7 + 8 = 1A) = 43 -> BC.
const std::string kRecordAt10 = "S3090000001001020304DC";
const std::string kRecordAt20 = "S3090000002005060708BC";
const std::string kTwoRecords = kHeader + kRecordAt10 + "\r\n" + kRecordAt20 + "\r\n" + kTrailer;

const Bytes kTwoRecordsFilledFF = joined({repeated(16, 0xFF), {1, 2, 3, 4}, repeated(12, 0xFF), {5, 6, 7, 8}});

RunResult convert(const TempFolder& folder, const std::string& text, std::vector<std::string> options)
{
    writeFile(folder.path("in.s3"), text);
    std::vector<std::string> args = {"s3-to-bin", "in.s3", "-o", "out.bin"};
    args.insert(args.end(), options.begin(), options.end());
    return runCli(folder, args);
}

}  // namespace

// Input text, options and the exact bytes written.
struct Conversion {
    std::string name;
    std::string text;
    std::vector<std::string> options;
    Bytes bytes;
};

class S3ToBinConversion : public ::testing::TestWithParam<Conversion> {};

TEST_P(S3ToBinConversion, WritesExactlyTheseBytes)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(convert(folder, GetParam().text, GetParam().options)));
    EXPECT_EQ(readBytes(folder.path("out.bin")), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, S3ToBinConversion,
    ::testing::Values(
        Conversion{"FullAddressFillsGapsWithFF", kTwoRecords, {}, kTwoRecordsFilledFF},
        Conversion{"FullAddressFillsGapsWithTheChosenByte",
                   kTwoRecords,
                   {"--fill", "00"},
                   joined({repeated(16, 0x00), {1, 2, 3, 4}, repeated(12, 0x00), {5, 6, 7, 8}})},
        Conversion{
            "DataOnlyGivesTheRecordsBytesOneAfterAnother", kTwoRecords, {"--data-only"}, Bytes{1, 2, 3, 4, 5, 6, 7, 8}},
        // Only the first three characters decide: "S00" and "S70" lines carry no data.
        Conversion{"HeaderAndTrailerLinesOfAnyContentAreSkipped",
                   "S00Fnot read at all\r\n" + kRecordAt10 + "\r\nS70 anything\r\n",
                   {"--data-only"},
                   Bytes{1, 2, 3, 4}},
        // Count 07: address 00000030 and the two bytes AA BB; 07 + 30 + AA + BB = 19C -> 63.
        Conversion{"S5LineIsReadAsS3Data",
                   kHeader + kRecordAt20 + "\r\nS50700000030AABB63\r\n" + kTrailer,
                   {},
                   joined({repeated(32, 0xFF), {5, 6, 7, 8}, repeated(12, 0xFF), {0xAA, 0xBB}})},
        Conversion{"NonHexDigitInDataReadsAsZero",
                   kHeader + "S3090000000001ZZ0304EC\r\n" + kTrailer,
                   {"--data-only"},
                   Bytes{1, 0, 3, 4}},
        Conversion{
            "WrongChecksumStillConverts", kHeader + "S309000000000102030400\r\n" + kTrailer, {}, Bytes{1, 2, 3, 4}},
        Conversion{"LineShorterThanItsCountGivesZeroBytes",
                   kHeader + "S309000000000102\r\n" + kTrailer,
                   {},
                   Bytes{1, 2, 0, 0}},
        Conversion{"SingleLeftoverHexCharacterReadsAsThatDigit",
                   kHeader + "S309000000000102A\r\n" + kTrailer,
                   {},
                   Bytes{1, 2, 0x0A, 0}},
        Conversion{"RecordBelowTheLastOneIsFineInDataOnlyMode",
                   kHeader + kRecordAt10 + "\r\nS3090000000805060708D4\r\n" + kTrailer,
                   {"--data-only"},
                   Bytes{1, 2, 3, 4, 5, 6, 7, 8}},
        Conversion{"LineFeedOnlyLineEndsWork",
                   "S00600004844521B\n" + kRecordAt10 + "\n" + kRecordAt20 + "\nS705A002000058\n",
                   {},
                   kTwoRecordsFilledFF},
        Conversion{"CarriageReturnLineFeedLineEndsWork", kTwoRecords, {}, kTwoRecordsFilledFF},
        Conversion{"LoneCarriageReturnLineEndsWork",
                   "S00600004844521B\r" + kRecordAt10 + "\r" + kRecordAt20 + "\rS705A002000058\r",
                   {},
                   kTwoRecordsFilledFF},
        Conversion{
            "LastLineWithoutALineEndIsRead", kHeader + kRecordAt10 + "\r\n" + kRecordAt20, {}, kTwoRecordsFilledFF}),
    [](const auto& row) { return row.param.name; });

TEST(S3ToBinCommand, ContiguousRecordsFromZeroGiveTheSameBytesInBothModes)
{
    // 09 + 00 + 0A = 13 -> EC; 09 + 04 + 1A = 27 -> D8.
    const std::string text = kHeader + "S3090000000001020304EC\r\nS3090000000405060708D8\r\n" + kTrailer;
    const Bytes expected{1, 2, 3, 4, 5, 6, 7, 8};
    TempFolder full;
    ASSERT_TRUE(succeeded(convert(full, text, {})));
    EXPECT_EQ(readBytes(full.path("out.bin")), expected);
    TempFolder dataOnly;
    ASSERT_TRUE(succeeded(convert(dataOnly, text, {"--data-only"})));
    EXPECT_EQ(readBytes(dataOnly.path("out.bin")), expected);
}

TEST(S3ToBinCommand, DefaultOutputIsTheInputNameWithBinExtension)
{
    TempFolder folder;
    std::filesystem::create_directory(folder.path("sub"));
    writeFile(folder.path("sub/two.s3"), kTwoRecords);
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "sub/two.s3"})));
    EXPECT_EQ(readBytes(folder.path("sub/two.bin")), kTwoRecordsFilledFF);
    EXPECT_FALSE(exists(folder.path("two.bin")));
}

TEST(S3ToBinCommand, RecordCountS5LineFailsAsACountBelowFive)
{
    TempFolder folder;
    const std::string text = kHeader + kRecordAt10 + "\r\n" + kRecordAt20 + "\r\nS5030002FA\r\n" + kTrailer;
    EXPECT_TRUE(failedWith(convert(folder, text, {}), {"in.s3", "line 4", "nothing was written to out.bin"}));
    EXPECT_FALSE(exists(folder.path("out.bin")));
}

TEST(S3ToBinCommand, CountBelowFiveFailsNamingTheLineAndWritesNothing)
{
    TempFolder folder;
    const std::string text = kHeader + kRecordAt10 + "\r\nS304000000FB\r\n" + kRecordAt20 + "\r\n" + kTrailer;
    EXPECT_TRUE(failedWith(convert(folder, text, {}), {"in.s3", "line 3", "nothing was written to out.bin"}));
    EXPECT_FALSE(exists(folder.path("out.bin")));
}

TEST(S3ToBinCommand, RecordBelowTheExpectedAddressFailsNamingTheLineAndKeepsAnOldOutput)
{
    TempFolder folder;
    writeFile(folder.path("out.bin"), std::string("older"));
    // 09 + 08 + 0A = 1B -> E4.
    const std::string text = kHeader + kRecordAt10 + "\r\nS3090000000801020304E4\r\n" + kTrailer;
    EXPECT_TRUE(failedWith(convert(folder, text, {}), {"in.s3", "line 3", "nothing was written to out.bin"}));
    EXPECT_EQ(readText(folder.path("out.bin")), "older");
}

TEST(S3ToBinCommand, FillTogetherWithDataOnlyIsAUsageError)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(convert(folder, kTwoRecords, {"--fill", "00", "--data-only"})));
}

TEST(S3ToBinCommand, MissingInputFailsNamingThePath)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runCli(folder, {"s3-to-bin", "absent.s3"}), {"absent.s3"}));
    EXPECT_FALSE(exists(folder.path("absent.bin")));
}

// 01 02 03 04 at 0x10 as S1 (2 address bytes): 07 + 00 + 10 + 0A = 21 -> DE.
// 05 06 07 08 at 0x20 as S2 (3 address bytes): 08 + 20 + 1A = 42 -> BD.
// 09 0A 0B 0C at 0x30 as S3 (4 address bytes): 09 + 30 + 2A = 63 -> 9C.
TEST(S3ToBinCommand, InputFromAPipeIsReadAsAStream)
{
    // A regular file is mapped; a pipe cannot be, and is read as it comes.
    TempFolder folder;
    writeFile(folder.path("in.s3"), kTwoRecords);
    const RunResult result = runProgram(
        folder, "/bin/sh", {"-c", "cat in.s3 | " + shellQuoted(ZEVRAN_CLI) + " s3-to-bin /dev/stdin -o out.bin"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(readBytes(folder.path("out.bin")), kTwoRecordsFilledFF);
}

TEST(S3ToBinAnyRecords, S1S2AndS3RecordsArePlacedAtTheirAddresses)
{
    TempFolder folder;
    const std::string text =
        "S0030000FC\nS107001001020304DE\nS20800002005060708BD\nS30900000030090A0B0C9C\nS9030000FC\n";
    ASSERT_TRUE(succeeded(convert(folder, text, {"--any-records"})));
    EXPECT_EQ(
        readBytes(folder.path("out.bin")),
        joined(
            {repeated(16, 0xFF), {1, 2, 3, 4}, repeated(12, 0xFF), {5, 6, 7, 8}, repeated(12, 0xFF), {9, 10, 11, 12}}));
}

TEST(S3ToBinAnyRecords, HeaderCountAndTrailerRecordsCarryNoData)
{
    TempFolder folder;
    // 07 + 00 + 0A = 11 -> EE; S5 count 1: 03 + 01 = 04 -> FB.
    const std::string text = "S0030000FC\r\nS107000001020304EE\r\nS5030001FB\r\nS70500000000FA\r\n"
                             "S804000000FB\r\nS9030000FC\r\n";
    ASSERT_TRUE(succeeded(convert(folder, text, {"--any-records"})));
    EXPECT_EQ(readBytes(folder.path("out.bin")), (Bytes{1, 2, 3, 4}));
}

TEST(S3ToBinAnyRecords, LinesNotStartingWithSAreSkippedAndCounted)
{
    TempFolder folder;
    const std::string text = "# written by a tool\n" + kRecordAt10 + "\n; between\n" + kRecordAt20 + "\n";
    const RunResult result = convert(folder, text, {"--any-records", "--data-only"});
    ASSERT_EQ(result.exitCode, 0);
    EXPECT_EQ(readBytes(folder.path("out.bin")), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(result.err, "zevran-cli: in.s3: skipped 2 lines that do not start with \"S\"\n");
}

TEST(S3ToBinAnyRecords, OneSkippedLineIsSaidInTheSingular)
{
    TempFolder folder;
    const RunResult result = convert(folder, kRecordAt10 + "\n* end\n", {"--any-records", "--data-only"});
    ASSERT_EQ(result.exitCode, 0);
    EXPECT_EQ(readBytes(folder.path("out.bin")), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(result.err, "zevran-cli: in.s3: skipped 1 line that does not start with \"S\"\n");
}

TEST(S3ToBinAnyRecords, BadChecksumFailsNamingTheLine)
{
    TempFolder folder;
    const std::string text = "S0030000FC\nS107001001020304DF\nS9030000FC\n";
    EXPECT_TRUE(failedWith(convert(folder, text, {"--any-records"}), {"in.s3", "line 2", "checksum"}));
}
