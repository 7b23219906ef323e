// S-record files exchanged with independent tools: srec_cat (srecord) and objcopy
// (binutils) read what zevran-cli writes, and zevran-cli reads what they write.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

const std::string kSrecCat = SREC_CAT;
const std::string kObjcopy = OBJCOPY;

// Bytes of every value in no simple order (xorshift32), so a misplaced line shows.
Bytes variedBytes(std::size_t count)
{
    Bytes bytes(count);
    std::uint32_t state = 0x2545F491u;
    for (auto& byte : bytes) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

// Above 64 KiB, so srec_cat's default output needs S2 records after its S1 ones.
constexpr std::size_t kPastS1Range = 0x10000 + 3000;

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(SRecordPeers, SrecCatReadsOurS3FileBackIntoTheSameBytes)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(5000);
    writeFile(folder.path("data.bin"), data);
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "data.bin"})));
    const RunResult peer = runProgram(folder, kSrecCat, {"data.s3", "-motorola", "-o", "back.bin", "-binary"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, SrecCatRejectsOurFileOnceAChecksumIsSpoiled)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    writeFile(folder.path("data.bin"), variedBytes(5000));
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "data.bin"})));
    const RunResult good = runProgram(folder, kSrecCat, {"data.s3", "-motorola", "-o", "good.bin", "-binary"});
    ASSERT_EQ(good.exitCode, 0) << good.err;
    // The second data line's last checksum digit, changed: proof that the acceptance
    // above came from srec_cat checking our checksums, not from it ignoring them.
    std::string text = readText(folder.path("data.s3"));
    const std::size_t secondLineEnd = text.find("\r\n", text.find("\r\n", text.find("\r\n") + 2) + 2);
    ASSERT_NE(secondLineEnd, std::string::npos);
    char& digit = text[secondLineEnd - 1];
    digit = digit == '0' ? '1' : '0';
    writeFile(folder.path("spoiled.s3"), text);
    const RunResult bad = runProgram(folder, kSrecCat, {"spoiled.s3", "-motorola", "-o", "bad.bin", "-binary"});
    EXPECT_NE(bad.exitCode, 0);
    EXPECT_TRUE(contains(bad.err, "checksum")) << bad.err;
}

// A peer's S-record file of the same bytes, and how zevran-cli reads it back.
struct PeerOutput {
    const char* label;
    const std::string* tool;
    std::size_t bytes;
    std::vector<std::string> peerArgs;  // from in.bin to the file named by `file`
    std::string file;
    std::vector<std::string> marks;     // parts the peer's file must hold, proving its form
    std::vector<std::string> absent;    // parts it must not
    std::vector<std::string> readArgs;  // s3-to-bin's options besides the file and -o
};

void PrintTo(const PeerOutput& output, std::ostream* out) { *out << output.label; }

class PeerOutputConvertsBack : public ::testing::TestWithParam<PeerOutput> {};

TEST_P(PeerOutputConvertsBack, IntoTheSameBytes)
{
    const PeerOutput& output = GetParam();
    ASSERT_FALSE(output.tool->empty()) << "a peer tool is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(output.bytes);
    writeFile(folder.path("in.bin"), data);
    const RunResult peer = runProgram(folder, *output.tool, output.peerArgs);
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    const std::string text = readText(folder.path(output.file));
    for (const std::string& mark : output.marks)
        EXPECT_TRUE(contains(text, mark)) << mark << " in " << text.substr(0, 60);
    for (const std::string& part : output.absent) EXPECT_FALSE(contains(text, part)) << part;
    std::vector<std::string> read{"s3-to-bin", output.file};
    read.insert(read.end(), output.readArgs.begin(), output.readArgs.end());
    read.insert(read.end(), {"-o", "back.bin"});
    ASSERT_TRUE(succeeded(runCli(folder, read)));
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

INSTANTIATE_TEST_SUITE_P(SRecordPeers, PeerOutputConvertsBack,
                         ::testing::Values(
                             // S3 lines without a count record, "\n" ends and an empty header.
                             PeerOutput{"SrecCatS3WithoutCountRecord",
                                        &kSrecCat,
                                        5000,
                                        {"in.bin", "-binary", "-o", "peer.s3", "-motorola", "-address-length=4",
                                         "-disable=data-count", "-header", ""},
                                        "peer.s3",
                                        {"S0030000FC\nS3"},
                                        {"\r", "\nS5"},
                                        {"--data-only"}},
                             // objcopy puts the output's name in its S0 record; a short name keeps the count
                             // below 10, so the line starts "S00" and is skipped as a header.
                             PeerOutput{"ObjcopyS3",
                                        &kObjcopy,
                                        5000,
                                        {"-I", "binary", "-O", "srec", "--srec-forceS3", "in.bin", "x.s3"},
                                        "x.s3",
                                        {"S00", "\nS3"},
                                        {},
                                        {"--data-only"}},
                             // A header with text, S1 then S2 records past 64 KiB, and a count record.
                             PeerOutput{"SrecCatDefault",
                                        &kSrecCat,
                                        kPastS1Range,
                                        {"in.bin", "-binary", "-o", "peer.srec", "-motorola"},
                                        "peer.srec",
                                        {"\nS1", "\nS2", "\nS5"},
                                        {"S00"},
                                        {"--any-records", "--data-only"}},
                             // 0x23 = 2 address bytes + 32 data bytes + checksum.
                             PeerOutput{"SrecCat32ByteLines",
                                        &kSrecCat,
                                        kPastS1Range,
                                        {"in.bin", "-binary", "-o", "peer.srec", "-motorola", "-obs=32"},
                                        "peer.srec",
                                        {"\nS123"},
                                        {},
                                        {"--any-records", "--data-only"}}),
                         [](const ::testing::TestParamInfo<PeerOutput>& row) { return std::string(row.param.label); });

TEST(SRecordPeers, AnyRecordsFullAddressFillsBelowSrecCatOffsetData)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastS1Range);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer =
        runProgram(folder, kSrecCat, {"data.bin", "-binary", "-offset", "0x100", "-o", "peer.srec", "-motorola"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    ASSERT_TRUE(
        succeeded(runCli(folder, {"s3-to-bin", "peer.srec", "--any-records", "--fill", "5A", "-o", "back.bin"})));
    EXPECT_EQ(readBytes(folder.path("back.bin")), joined({repeated(0x100, 0x5A), data}));
}

// Past 1 MiB the converters work block by block; lines then straddle the blocks.
constexpr std::size_t kPastOneBlock = (1u << 20) + 4099;

TEST(SRecordPeers, SrecCatReadsOurS3FileLongerThanOneBlock)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastOneBlock);
    writeFile(folder.path("data.bin"), data);
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "data.bin"})));
    const RunResult peer = runProgram(folder, kSrecCat, {"data.s3", "-motorola", "-o", "back.bin", "-binary"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, SrecCatS3FileLongerThanOneBlockConvertsBack)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastOneBlock);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer = runProgram(folder, kSrecCat,
                                      {"data.bin", "-binary", "-o", "peer.s3", "-motorola", "-address-length=4",
                                       "-disable=data-count", "-header", ""});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.s3", "-o", "full.bin"})));
    EXPECT_EQ(readBytes(folder.path("full.bin")), data);
    ASSERT_TRUE(
        succeeded(runCli(folder, {"s3-to-bin", "peer.s3", "--any-records", "--data-only", "-o", "strict.bin"})));
    EXPECT_EQ(readBytes(folder.path("strict.bin")), data);
}

TEST(SRecordRoundTrip, OurS3FileConvertsBackInEveryReading)
{
    TempFolder folder;
    const Bytes data = variedBytes(5000);
    writeFile(folder.path("data.bin"), data);
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "data.bin"})));
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "data.s3", "-o", "full.bin"})));
    EXPECT_EQ(readBytes(folder.path("full.bin")), data);
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "data.s3", "--data-only", "-o", "data-only.bin"})));
    EXPECT_EQ(readBytes(folder.path("data-only.bin")), data);
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "data.s3", "--any-records", "-o", "strict.bin"})));
    EXPECT_EQ(readBytes(folder.path("strict.bin")), data);
}
