// zevran-cli bin-to-s3 and fill-s3: binary (or fill bytes) to S3 record text.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

const std::string kHeader = "S00600004844521B\r\n";
const std::string kTrailer = "S705A002000058\r\n";

Bytes counting(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

// The 17 bytes 00..10: a full line of 16 and a last line of one byte.
// Line 1: 15 + 0 + (0 + 1 + ... + F = 78) = 8D, checksum FF - 8D = 72.
// Line 2: 06 + 10 (address) + 10 (data) = 26, checksum D9.
const std::string kSeventeenBytesAsS3 = kHeader +
                                        "S31500000000000102030405060708090A0B0C0D0E0F72\r\n"
                                        "S3060000001010D9\r\n" +
                                        kTrailer;

}  // namespace

TEST(BinToS3Command, SeventeenByteFileGivesAFullLineAndAOneByteLine)
{
    TempFolder folder;
    writeFile(folder.path("data.bin"), counting(17));
    const RunResult result = runCli(folder, {"bin-to-s3", "data.bin", "-o", "data.srec"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(readText(folder.path("data.srec")), kSeventeenBytesAsS3);
}

TEST(BinToS3Command, DefaultOutputIsTheInputNameWithS3Extension)
{
    TempFolder folder;
    std::filesystem::create_directory(folder.path("sub"));
    writeFile(folder.path("sub/data.part.bin"), counting(17));
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "sub/data.part.bin"})));
    EXPECT_EQ(readText(folder.path("sub/data.part.s3")), kSeventeenBytesAsS3);
    EXPECT_FALSE(exists(folder.path("data.part.s3")));
}

TEST(BinToS3Command, OutputOptionNamesTheFileWritten)
{
    TempFolder folder;
    std::filesystem::create_directory(folder.path("out"));
    writeFile(folder.path("data.bin"), counting(17));
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "data.bin", "-o", "out/named.txt"})));
    EXPECT_EQ(readText(folder.path("out/named.txt")), kSeventeenBytesAsS3);
    EXPECT_FALSE(exists(folder.path("data.s3")));
}

TEST(BinToS3Command, RangeLongerThanTheFileIsFilledWithFF)
{
    TempFolder folder;
    writeFile(folder.path("four.bin"), Bytes{1, 2, 3, 4});
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "four.bin", "--start", "20", "--end", "33"})));
    // 15 + 20 + (1 + 2 + 3 + 4) + 12 * FF = C33, checksum FF - 33 = CC.
    // 09 + 30 + 4 * FF = 435, checksum FF - 35 = CA.
    EXPECT_EQ(readText(folder.path("four.s3")), kHeader +
                                                    "S3150000002001020304FFFFFFFFFFFFFFFFFFFFFFFFCC\r\n"
                                                    "S30900000030FFFFFFFFCA\r\n" +
                                                    kTrailer);
}

TEST(BinToS3Command, RangeLongerThanTheFileIsFilledWithTheChosenByte)
{
    TempFolder folder;
    writeFile(folder.path("four.bin"), Bytes{1, 2, 3, 4});
    ASSERT_TRUE(
        succeeded(runCli(folder, {"bin-to-s3", "four.bin", "--start", "0x20", "--end", "0x33", "--fill", "00"})));
    // 15 + 20 + 0A = 3F, checksum C0; 09 + 30 = 39, checksum C6.
    EXPECT_EQ(readText(folder.path("four.s3")), kHeader +
                                                    "S3150000002001020304000000000000000000000000C0\r\n"
                                                    "S3090000003000000000C6\r\n" +
                                                    kTrailer);
}

TEST(BinToS3Command, RangeShorterThanTheFileCutsIt)
{
    TempFolder folder;
    writeFile(folder.path("long.bin"), counting(32));
    ASSERT_TRUE(succeeded(runCli(folder, {"bin-to-s3", "long.bin", "--start", "1000", "--end", "1007"})));
    // 0D + 10 (address) + (0 + 1 + ... + 7 = 1C) = 39, checksum C6.
    EXPECT_EQ(readText(folder.path("long.s3")), kHeader + "S30D000010000001020304050607C6\r\n" + kTrailer);
}

TEST(BinToS3Command, EndNotAboveStartFails)
{
    TempFolder folder;
    writeFile(folder.path("four.bin"), Bytes{1, 2, 3, 4});
    EXPECT_TRUE(failedWith(runCli(folder, {"bin-to-s3", "four.bin", "--start", "20", "--end", "20"}), {"end"}));
    EXPECT_TRUE(failedWith(runCli(folder, {"bin-to-s3", "four.bin", "--start", "20", "--end", "1F"}), {"end"}));
    EXPECT_FALSE(exists(folder.path("four.s3")));
}

TEST(BinToS3Command, StartWithoutEndIsAUsageError)
{
    TempFolder folder;
    writeFile(folder.path("four.bin"), Bytes{1, 2, 3, 4});
    EXPECT_TRUE(usageError(runCli(folder, {"bin-to-s3", "four.bin", "--start", "20"})));
    EXPECT_FALSE(exists(folder.path("four.s3")));
}

TEST(BinToS3Command, StartAboveTheHighestAddressFails)
{
    TempFolder folder;
    writeFile(folder.path("four.bin"), Bytes{1, 2, 3, 4});
    const RunResult result = runCli(folder, {"bin-to-s3", "four.bin", "--start", "80000000", "--end", "80000010"});
    EXPECT_TRUE(failedWith(result, {"--start", "80000000", "7FFFFFFF"}));
    EXPECT_FALSE(exists(folder.path("four.s3")));
}

TEST(BinToS3Command, EmptyFileWithoutARangeFails)
{
    TempFolder folder;
    writeFile(folder.path("empty.bin"), "");
    EXPECT_TRUE(failedWith(runCli(folder, {"bin-to-s3", "empty.bin"}), {"empty.bin", "empty"}));
    EXPECT_FALSE(exists(folder.path("empty.s3")));
}

TEST(BinToS3Command, MissingInputFailsNamingThePath)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runCli(folder, {"bin-to-s3", "absent.bin"}), {"absent.bin"}));
    EXPECT_FALSE(exists(folder.path("absent.s3")));
}

TEST(FillS3Command, SixteenFFBytesGiveOneFullLine)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(runCli(folder, {"fill-s3", "--start", "0", "--end", "0F", "--fill", "FF", "-o", "fill.s3"})));
    // 15 (count) + 0 (address) + 16 * FF = 15 + FF0 = 1005, low byte 05, checksum FF - 05 = FA.
    EXPECT_EQ(readText(folder.path("fill.s3")),
              kHeader + "S31500000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFA\r\n" + kTrailer);
}

TEST(FillS3Command, SeventeenZeroBytesGiveAFullLineAndAOneByteLine)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(runCli(folder, {"fill-s3", "--start", "0", "--end", "10", "--fill", "0", "-o", "fill.s3"})));
    // 15 -> EA; 06 + 10 = 16 -> E9.
    EXPECT_EQ(readText(folder.path("fill.s3")),
              kHeader + "S3150000000000000000000000000000000000000000EA\r\n" + "S3060000001000E9\r\n" + kTrailer);
}

TEST(FillS3Command, EndNotAboveStartFails)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(runCli(folder, {"fill-s3", "--start", "10", "--end", "10", "--fill", "FF", "-o", "fill.s3"}),
                           {"end"}));
    EXPECT_FALSE(exists(folder.path("fill.s3")));
}

TEST(FillS3Command, MissingOutputIsAUsageError)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(runCli(folder, {"fill-s3", "--start", "0", "--end", "0F", "--fill", "FF"})));
}
