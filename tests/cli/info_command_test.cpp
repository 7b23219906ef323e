// zevran-cli info: the phone file's kind, length and version text.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

const std::string kVersionMarker = "VersionString:";
const std::string kRevisionMarker = "Rev S";

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

TEST(InfoCommand, VersionIsTheEightBytesSeventeenAfterTheVersionStringMarker)
{
    TempFolder folder;
    // Marker at 2; 14 marker bytes and 3 more ("abc") come before the version.
    const RunResult result = infoOf(folder, "phone.bin", "xx" + kVersionMarker + "abcV1.23.45tail");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 31\nversion: V1.23.45\n");
}

TEST(InfoCommand, VersionIsTheEightBytesTwelveBeforeTheRevSMarker)
{
    TempFolder folder;
    // "Rev S" at 13: the version starts at 1, four more bytes lie between it and the marker.
    const RunResult result = infoOf(folder, "phone.axf", "xABCDEFGH1234" + kRevisionMarker + "...");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: asf\nlength: 21\nversion: ABCDEFGH\n");
}

TEST(InfoCommand, VersionStringMarkerWinsOverRevS)
{
    TempFolder folder;
    const RunResult result =
        infoOf(folder, "phone.bin", "xOLDVERSN1234" + kRevisionMarker + kVersionMarker + "---NEWVERSN");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 43\nversion: NEWVERSN\n");
}

TEST(InfoCommand, NoMarkerGivesNone)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "Version String: Rev s");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 21\nversion: (none)\n");
}

TEST(InfoCommand, VersionStringMarkerAtIndexZeroIsNeverFound)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", kVersionMarker + "abcV1.23.45");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 25\nversion: (none)\n");
}

TEST(InfoCommand, RevSMarkerAtIndexZeroIsNeverFound)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", kRevisionMarker + "0123456789ABCDEF");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 21\nversion: (none)\n");
}

TEST(InfoCommand, VersionStringWithExactlyTwentyFiveBytesToTheEndIsRead)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "x" + kVersionMarker + "abc12345678");
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 26\nversion: 12345678\n");
}

TEST(InfoCommand, VersionStringWithFewerThanTwentyFiveBytesToTheEndFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "x" + kVersionMarker + "abc1234567");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "VersionString:"}));
}

TEST(InfoCommand, RevSAtIndexTwelveReadsTheFirstEightBytes)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "ABCDEFGH1234" + kRevisionMarker);
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 17\nversion: ABCDEFGH\n");
}

TEST(InfoCommand, RevSWithinTheFirstTwelveBytesFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "ABCDEFGH123" + kRevisionMarker + "tail");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "Rev S"}));
}

TEST(InfoCommand, VersionBytesAreCopiedAsTheyAre)
{
    TempFolder folder;
    const std::string version("\x01\xFE\x00 v\t\x7F\x80", 8);
    const RunResult result =
        infoOf(folder, "phone.bin", std::string("\x00", 1) + kVersionMarker + std::string(3, '\0') + version);
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "kind: bin\nlength: 26\nversion: " + version + "\n");
}

TEST(InfoCommand, EmptyFileFails)
{
    TempFolder folder;
    const RunResult result = infoOf(folder, "phone.bin", "");
    EXPECT_TRUE(failedWith(result, {"phone.bin", "empty"}));
}

TEST(InfoCommand, MissingFileFailsNamingThePath)
{
    TempFolder folder;
    const RunResult result = runCli(folder, {"info", "no-such-phone.bin"});
    EXPECT_TRUE(failedWith(result, {"no-such-phone.bin"}));
}
