// zevran-cli info: the phone file's kind, length and version text.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

const std::string kVersionMarker = "VersionString:";
const std::string kRevisionMarker = "Rev S";
// Version bytes are printed as they are stored, control and high bytes included.
const std::string kRawVersion("\x01\xFE\x00 v\t\x7F\x80", 8);

RunResult infoOf(const TempFolder& folder, const std::string& name, const std::string& content)
{
    writeFile(folder.path(name), content);
    return runCli(folder, {"info", name});
}

struct KindRow {
    const char* label;
    const char* fileName;
    const char* kind;
};

void PrintTo(const KindRow& row, std::ostream* out) { *out << row.fileName; }

class InfoKind : public ::testing::TestWithParam<KindRow> {};

}  // namespace

TEST_P(InfoKind, KindComesFromTheLastLetterOfTheName)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, GetParam().fileName, "no marker in here");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, std::string("kind: ") + GetParam().kind + "\nlength: 17\nversion: (none)\n");
}

INSTANTIATE_TEST_SUITE_P(Names, InfoKind,
                         ::testing::Values(KindRow{"UpperCaseBin", "PHONE.BIN", "bin"},
                                           KindRow{"LowerCaseBin", "phone.bin", "bin"},
                                           KindRow{"UpperCaseAxf", "phone.AXF", "asf"},
                                           KindRow{"CfnEndsInN", "x.cfn", "bin"}, KindRow{"ElfEndsInF", "x.elf", "asf"},
                                           KindRow{"S3IsOther", "phone.s3", "other"}),
                         [](const ::testing::TestParamInfo<KindRow>& row) { return std::string(row.param.label); });

// What info prints for a phone file of the given name and bytes.
struct InfoCase {
    std::string name;
    std::string fileName;
    std::string content;
    std::string printed;
};

class InfoCommand : public ::testing::TestWithParam<InfoCase> {};

TEST_P(InfoCommand, PrintsKindLengthAndVersion)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, GetParam().fileName, GetParam().content);
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    Files, InfoCommand,
    ::testing::Values(
        // Marker at 2; 14 marker bytes and 3 more ("abc") come before the version.
        InfoCase{"VersionIsTheEightBytesSeventeenAfterTheVersionStringMarker", "phone.bin",
                 "xx" + kVersionMarker + "abcV1.23.45tail", "kind: bin\nlength: 31\nversion: V1.23.45\n"},
        // "Rev S" at 13: the version starts at 1, four more bytes lie between it and the marker.
        InfoCase{"VersionIsTheEightBytesTwelveBeforeTheRevSMarker", "phone.axf",
                 "xABCDEFGH1234" + kRevisionMarker + "...", "kind: asf\nlength: 21\nversion: ABCDEFGH\n"},
        InfoCase{"VersionStringMarkerWinsOverRevS", "phone.bin",
                 "xOLDVERSN1234" + kRevisionMarker + kVersionMarker + "---NEWVERSN",
                 "kind: bin\nlength: 43\nversion: NEWVERSN\n"},
        InfoCase{"NoMarkerGivesNone", "phone.bin", "Version String: Rev s", "kind: bin\nlength: 21\nversion: (none)\n"},
        InfoCase{"VersionStringMarkerAtIndexZeroIsNeverFound", "phone.bin", kVersionMarker + "abcV1.23.45",
                 "kind: bin\nlength: 25\nversion: (none)\n"},
        InfoCase{"RevSMarkerAtIndexZeroIsNeverFound", "phone.bin", kRevisionMarker + "0123456789ABCDEF",
                 "kind: bin\nlength: 21\nversion: (none)\n"},
        InfoCase{"VersionStringWithExactlyTwentyFiveBytesToTheEndIsRead", "phone.bin",
                 "x" + kVersionMarker + "abc12345678", "kind: bin\nlength: 26\nversion: 12345678\n"},
        InfoCase{"RevSAtIndexTwelveReadsTheFirstEightBytes", "phone.bin", "ABCDEFGH1234" + kRevisionMarker,
                 "kind: bin\nlength: 17\nversion: ABCDEFGH\n"},
        InfoCase{"VersionBytesAreCopiedAsTheyAre", "phone.bin",
                 std::string("\x00", 1) + kVersionMarker + std::string(3, '\0') + kRawVersion,
                 "kind: bin\nlength: 26\nversion: " + kRawVersion + "\n"}),
    [](const auto& row) { return row.param.name; });

TEST(InfoFailure, VersionStringWithFewerThanTwentyFiveBytesToTheEndFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "x" + kVersionMarker + "abc1234567");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "VersionString:"}));
}

TEST(InfoFailure, RevSWithinTheFirstTwelveBytesFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "ABCDEFGH123" + kRevisionMarker + "tail");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "Rev S"}));
}

TEST(InfoFailure, EmptyFileFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "empty"}));
}

TEST(InfoFailure, MissingFileFailsNamingThePath)
{
    TempFolder folder;
    const RunResult result = runCli(folder, {"info", "no-such-phone.bin"});
    EXPECT_TRUE(failedWith(result, {"no-such-phone.bin"}));
}
