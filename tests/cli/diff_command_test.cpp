// zevran-cli diff: the regions where NEW differs from OLD, and the patch that turns
// OLD into NEW, checked by laying it over OLD with apply-patch.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

Bytes text(const std::string& letters) { return Bytes(letters.begin(), letters.end()); }

// 64 KiB and more of varied bytes, so the comparison runs over several blocks.
Bytes varied(std::size_t count)
{
    Bytes bytes(count);
    std::uint32_t state = 12345;
    for (auto& byte : bytes) {
        state = state * 1103515245u + 12345u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

// Writes OLD and NEW, runs diff with -o, lays the patch over OLD with apply-patch and
// returns the result.
Bytes patchedBack(const TempFolder& folder, const Bytes& older, const Bytes& newer,
                  const std::vector<std::string>& extra = {})
{
    writeFile(folder.path("old.bin"), older);
    writeFile(folder.path("new.bin"), newer);
    std::vector<std::string> args{"diff", "old.bin", "new.bin", "-o", "change.s3"};
    args.insert(args.end(), extra.begin(), extra.end());
    EXPECT_TRUE(succeeded(runCli(folder, args)));
    EXPECT_TRUE(succeeded(runCli(folder, {"apply-patch", "old.bin", "change.s3", "-o", "patched.bin"})));
    return readBytes(folder.path("patched.bin"));
}

}  // namespace

TEST(DiffCommand, PrintsOneLinePerRegion)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGHIJ"));
    writeFile(folder.path("new.bin"), text("ABxDEyGHIJKL"));
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "0x00000002 0x00000002 1\n"
                          "0x00000005 0x00000005 1\n"
                          "0x0000000A 0x0000000B 2\n");
}

TEST(DiffCommand, GapJoinsRunsWithTheEqualBytesBetween)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGHIJ"));
    writeFile(folder.path("new.bin"), text("ABxDEyGHIJKL"));
    EXPECT_EQ(runCli(folder, {"diff", "old.bin", "new.bin", "--gap", "1"}).out,
              "0x00000002 0x00000002 1\n0x00000005 0x00000005 1\n0x0000000A 0x0000000B 2\n");
    EXPECT_EQ(runCli(folder, {"diff", "--gap", "2", "old.bin", "new.bin"}).out,
              "0x00000002 0x00000005 4\n0x0000000A 0x0000000B 2\n");
    EXPECT_EQ(runCli(folder, {"diff", "old.bin", "new.bin", "--gap", "4"}).out, "0x00000002 0x0000000B 10\n");
}

TEST(DiffCommand, EqualFilesPrintNothing)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGH"));
    writeFile(folder.path("new.bin"), text("ABCDEFGH"));
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin"});
    EXPECT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "");
}

TEST(DiffCommand, PatchHoldsTheNewBytesOfEveryRegion)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGHIJ"));
    writeFile(folder.path("new.bin"), text("ABxDEyGHIJKL"));
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin", "-o", "change.s3"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "0x00000002 0x00000002 1\n0x00000005 0x00000005 1\n0x0000000A 0x0000000B 2\n");
    // x at 2: 06 + 02 + 78 = 80 -> 7F. y at 5: 06 + 05 + 79 = 84 -> 7B. K L at 0A: 07 + 0A + 4B + 4C = A8 -> 57.
    EXPECT_EQ(readText(folder.path("change.s3")), "S00600004844521B\r\n"
                                                  "S30600000002787F\r\n"
                                                  "S30600000005797B\r\n"
                                                  "S3070000000A4B4C57\r\n"
                                                  "S705A002000058\r\n");
}

TEST(DiffCommand, EqualFilesWriteNoPatchAndSaySo)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGH"));
    writeFile(folder.path("new.bin"), text("ABCDEFGH"));
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin", "-o", "change.s3"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "zevran-cli: old.bin and new.bin are equal; no patch written to change.s3\n");
    EXPECT_FALSE(exists(folder.path("change.s3")));
}

TEST(DiffCommand, ShorterNewFileFailsNamingBothLengths)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCDEFGHIJ"));
    writeFile(folder.path("new.bin"), text("ABCDEFG"));
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin", "-o", "change.s3"});
    EXPECT_TRUE(failedWith(result, {"new.bin", "old.bin", "7 bytes", "10"}));
    EXPECT_EQ(
        result.err,
        "zevran-cli: new.bin: holds 7 bytes, fewer than the 10 of old.bin; a patch cannot shorten an image; nothing was written\n");
    EXPECT_FALSE(exists(folder.path("change.s3")));
}

TEST(DiffCommand, ApplyingThePatchToOldGivesNewByteForByte)
{
    TempFolder folder;
    const Bytes older = varied(200000);
    Bytes newer = older;
    for (std::size_t at : {0u, 15u, 16u, 17u, 4095u, 65535u, 65536u, 100000u, 199999u}) newer[at] ^= 0x5A;
    for (std::size_t at = 120000; at < 120333; ++at) newer[at] = static_cast<std::uint8_t>(~newer[at]);
    EXPECT_EQ(patchedBack(folder, older, newer), newer);
    EXPECT_EQ(patchedBack(folder, older, newer, {"--gap", "64"}), newer);
}

TEST(DiffCommand, ApplyingThePatchGivesALongerNewFileWhole)
{
    TempFolder folder;
    const Bytes older = varied(70000);
    Bytes newer = joined({older, text("the tail the new image adds")});
    newer[69999] ^= 0xFF;
    newer[12] ^= 0x01;
    writeFile(folder.path("old.bin"), older);
    writeFile(folder.path("new.bin"), newer);
    const RunResult result = runCli(folder, {"diff", "old.bin", "new.bin", "-o", "change.s3"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "0x0000000C 0x0000000C 1\n0x0001116F 0x0001118A 28\n");
    const RunResult applied = runCli(folder, {"apply-patch", "old.bin", "change.s3", "-o", "patched.bin"});
    EXPECT_EQ(applied.exitCode, 0);
    EXPECT_EQ(applied.err,
              "zevran-cli: change.s3 reaches past the end of old.bin: patched.bin grew from 70000 to 70027 bytes\n");
    EXPECT_EQ(readBytes(folder.path("patched.bin")), newer);
}

TEST(DiffCommand, ApplyingThePatchGivesNewAtEveryLongerLength)
{
    const Bytes older = varied(100);
    // Tails of every length around a record's 16 bytes, of FF (which a grown image
    // starts as) and of other bytes alike.
    for (std::size_t extra : {1u, 2u, 15u, 16u, 17u, 31u, 32u, 33u, 1000u}) {
        for (std::uint8_t tail : {std::uint8_t{0xFF}, std::uint8_t{0x00}}) {
            SCOPED_TRACE("extra " + std::to_string(extra) + ", tail " + std::to_string(tail));
            TempFolder folder;
            Bytes newer = joined({older, repeated(extra, tail)});
            newer[50] ^= 0x01;
            writeFile(folder.path("old.bin"), older);
            writeFile(folder.path("new.bin"), newer);
            ASSERT_TRUE(succeeded(runCli(folder, {"diff", "old.bin", "new.bin", "-o", "change.s3"})));
            const RunResult applied = runCli(folder, {"apply-patch", "old.bin", "change.s3", "-o", "patched.bin"});
            EXPECT_EQ(applied.exitCode, 0);
            EXPECT_EQ(applied.err,
                      "zevran-cli: change.s3 reaches past the end of old.bin: patched.bin grew from 100 to " +
                          std::to_string(100 + extra) + " bytes\n");
            EXPECT_EQ(readBytes(folder.path("patched.bin")), newer);
        }
    }
}

TEST(DiffCommand, RegionAtTheVeryEndIsPatched)
{
    TempFolder folder;
    const Bytes older = varied(1000);
    Bytes newer = older;
    newer[999] ^= 0x80;
    EXPECT_EQ(patchedBack(folder, older, newer), newer);
    EXPECT_EQ(runCli(folder, {"diff", "old.bin", "new.bin"}).out, "0x000003E7 0x000003E7 1\n");
}

TEST(DiffCommand, MissingFileFailsNamingIt)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCD"));
    EXPECT_TRUE(failedWith(runCli(folder, {"diff", "old.bin", "absent.bin"}), {"absent.bin"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"diff", "absent.bin", "old.bin"}), {"absent.bin"}));
}

TEST(DiffCommand, PatchIsNeverWrittenOverEitherInput)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCD"));
    writeFile(folder.path("new.bin"), text("ABxD"));
    EXPECT_TRUE(failedWith(runCli(folder, {"diff", "old.bin", "new.bin", "-o", "old.bin"}), {"old.bin"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"diff", "old.bin", "new.bin", "-o", "./new.bin"}), {"new.bin"}));
    EXPECT_EQ(readBytes(folder.path("old.bin")), text("ABCD"));
    EXPECT_EQ(readBytes(folder.path("new.bin")), text("ABxD"));
}

TEST(DiffCommand, BadUsageExitsWithTwo)
{
    TempFolder folder;
    writeFile(folder.path("old.bin"), text("ABCD"));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin"})));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin", "old.bin", "old.bin"})));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin", "old.bin", "--gap", "x"})));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin", "old.bin", "--gap", "-1"})));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin", "old.bin", "--gap"})));
    EXPECT_TRUE(usageError(runCli(folder, {"diff", "old.bin", "old.bin", "--fill", "FF"})));
}
