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

TEST(ApplyPatchCommand, RecordPastTheImageEndFailsNamingTheLineAndWritesNothing)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(32));
    // CC DD at 0x1F: its second byte would land at 0x20, one past the end. 07 + 1F + CC + DD = 1CF -> 30.
    writeFile(folder.path("patch.s3"), "S00600004844521B\r\nS3070000001FCCDD30\r\nS705A002000058\r\n");
    const RunResult result = runCli(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "patched.bin"});
    EXPECT_TRUE(failedWith(result, {"patch.s3", "line 2", "patched.bin"}));
    EXPECT_FALSE(exists(folder.path("patched.bin")));
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"image.bin", "patch.s3"}));
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(32));
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
