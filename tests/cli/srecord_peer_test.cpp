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

TEST(SRecordPeers, SrecCatS3OutputWithoutCountRecordConvertsBack)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(5000);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer = runProgram(folder, kSrecCat,
                                      {"data.bin", "-binary", "-o", "peer.s3", "-motorola", "-address-length=4",
                                       "-disable=data-count", "-header", ""});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    const std::string text = readText(folder.path("peer.s3"));
    ASSERT_TRUE(text.starts_with("S0030000FC\nS3")) << text.substr(0, 40);
    ASSERT_FALSE(contains(text, "\r"));
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.s3", "--data-only", "-o", "back.bin"})));
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, ObjcopyS3OutputConvertsBack)
{
    ASSERT_FALSE(kObjcopy.empty()) << "objcopy is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(5000);
    writeFile(folder.path("in.bin"), data);
    // objcopy puts the output's name in its S0 record; a short name keeps the count
    // below 10, so the line starts "S00" and is skipped as a header.
    const RunResult peer =
        runProgram(folder, kObjcopy, {"-I", "binary", "-O", "srec", "--srec-forceS3", "in.bin", "x.s3"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    const std::string text = readText(folder.path("x.s3"));
    ASSERT_TRUE(text.starts_with("S00")) << text.substr(0, 40);
    ASSERT_TRUE(contains(text, "\nS3"));
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "x.s3", "--data-only", "-o", "back.bin"})));
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, AnyRecordsReadsSrecCatDefaultOutput)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastS1Range);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer = runProgram(folder, kSrecCat, {"data.bin", "-binary", "-o", "peer.srec", "-motorola"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    const std::string text = readText(folder.path("peer.srec"));
    ASSERT_TRUE(text.starts_with("S0") && !text.starts_with("S00")) << "expected a header with text";
    ASSERT_TRUE(contains(text, "\nS1") && contains(text, "\nS2") && contains(text, "\nS5"));
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.srec", "--any-records", "--data-only", "-o", "back.bin"})));
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, AnyRecordsReadsSrecCatOutputWith32ByteLines)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastS1Range);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer =
        runProgram(folder, kSrecCat, {"data.bin", "-binary", "-o", "peer.srec", "-motorola", "-obs=32"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    // 0x23 = 2 address bytes + 32 data bytes + checksum.
    ASSERT_TRUE(contains(readText(folder.path("peer.srec")), "\nS123"));
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.srec", "--any-records", "--data-only", "-o", "back.bin"})));
    EXPECT_EQ(readBytes(folder.path("back.bin")), data);
}

TEST(SRecordPeers, AnyRecordsFullAddressFillsBelowSrecCatOffsetData)
{
    ASSERT_FALSE(kSrecCat.empty()) << "srec_cat is not installed (make deps)";
    TempFolder folder;
    const Bytes data = variedBytes(kPastS1Range);
    writeFile(folder.path("data.bin"), data);
    const RunResult peer =
        runProgram(folder, kSrecCat, {"data.bin", "-binary", "-offset", "0x100", "-o", "peer.srec", "-motorola"});
    ASSERT_EQ(peer.exitCode, 0) << peer.err;
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.srec", "--any-records", "--fill", "5A", "-o", "back.bin"})));
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
    ASSERT_TRUE(succeeded(runCli(folder, {"s3-to-bin", "peer.s3", "--any-records", "--data-only", "-o", "strict.bin"})));
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
