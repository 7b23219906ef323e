// zevran-cli apply-patch: a copy of an image with an S-record patch laid over it.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

Bytes counting(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

// AA BB at 0x04: 07 + 04 + AA + BB = 170 -> 8F. CC DD at 0x1E: 07 + 1E + CC + DD = 1CE -> 31.
const std::string kPatch = "S00600004844521B\r\n"
                           "S30700000004AABB8F\r\n"
                           "S3070000001ECCDD31\r\n"
                           "S705A002000058\r\n";

std::vector<std::string> namesIn(const TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.root()))
        if (entry.path().filename() != ".captures") names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

TEST(ApplyPatchCommand, RecordsAreLaidOverTheImageAtTheirAddresses)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    writeFile(folder.path("patch.s3"), kPatch);
    ASSERT_TRUE(succeeded(runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"})));
    Bytes expected = counting(32);
    expected[0x04] = 0xAA, expected[0x05] = 0xBB, expected[0x1E] = 0xCC, expected[0x1F] = 0xDD;
    EXPECT_EQ(readBytes(folder.path("patched.bin")), expected);
}

TEST(ApplyPatchCommand, ImageIsLeftUnchanged)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    writeFile(folder.path("patch.s3"), kPatch);
    ASSERT_TRUE(succeeded(runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"})));
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(32));
}

TEST(ApplyPatchCommand, RecordPastTheImageEndGrowsTheOutputAndSaysHowFar)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    // CC DD at 0x1F: its second byte lands at 0x20, one past the end. 07 + 1F + CC + DD = 1CF -> 30.
    // EE at 0x24 leaves a gap of 0x21..0x23, read as erased flash: 06 + 24 + EE = 118 -> E7.
    writeFile(folder.path("patch.s3"),
              "S00600004844521B\r\nS3070000001FCCDD30\r\nS30600000024EEE7\r\nS705A002000058\r\n");
    const RunResult result = runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "zevran-cli: patch.s3 reaches past the end of image.bin: patched.bin grew from 32 to 37 bytes\n");
    Bytes expected = counting(32);
    expected[0x1F] = 0xCC;
    expected.insert(expected.end(), {0xDD, 0xFF, 0xFF, 0xFF, 0xEE});
    EXPECT_EQ(readBytes(folder.path("patched.bin")), expected);
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(32));
}

TEST(ApplyPatchCommand, FailureKeepsAnExistingOutputAndLeavesNoTemporary)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    writeFile(folder.path("patched.bin"), std::string("older output"));
    // The second record's checksum is wrong (31 is right).
    writeFile(folder.path("patch.s3"), "S00600004844521B\r\nS30700000004AABB8F\r\nS3070000001ECCDD32\r\n");
    const RunResult result = runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"});
    EXPECT_TRUE(failedWith(result, {"patch.s3", "line 3", "nothing was written to patched.bin"}));
    EXPECT_EQ(readText(folder.path("patched.bin")), "older output");
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"image.bin", "patch.s3", "patched.bin"}));
}

TEST(ApplyPatchCommand, PatchIsReadStrictlySoABadChecksumFails)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    writeFile(folder.path("patch.s3"), "S00600004844521B\r\nS30700000004AABB8F\r\nS3070000001ECCDD32\r\n");
    const RunResult result = runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"});
    EXPECT_TRUE(failedWith(result, {"patch.s3", "line 3", "checksum"}));
    EXPECT_FALSE(exists(folder.path("patched.bin")));
}

TEST(ApplyPatchCommand, MissingImageFailsNamingThePath)
{
    TempFolder folder;
    writeFile(folder.path("patch.s3"), kPatch);
    const RunResult result = runCli(folder, {"apply-patch", "absent.bin", "patch.s3", "-o", "patched.bin"});
    EXPECT_TRUE(failedWith(result, {"absent.bin"}));
    EXPECT_FALSE(exists(folder.path("patched.bin")));
}

TEST(ApplyPatchCommand, MissingOutputIsAUsageError)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    writeFile(folder.path("patch.s3"), kPatch);
    EXPECT_TRUE(usageError(runCli(folder, {"apply-patch", "image.bin", "patch.s3"})));
}
