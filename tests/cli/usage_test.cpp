// zevran-cli's exit statuses for bad usage and its help text.
#include "cli_run.hpp"

using namespace zevran::test;

TEST(CliUsage, UnknownCommandExitsWithTwo)
{
    TempFolder folder;
    const RunResult result = runCli(folder, {"frobnicate"});
    EXPECT_TRUE(usageError(result));
    EXPECT_NE(result.err.find("frobnicate"), std::string::npos) << result.err;
}

TEST(CliUsage, UnknownOptionExitsWithTwo)
{
    TempFolder folder;
    writeFile(folder.path("in.s3"), "S00600004844521B\r\n");
    const RunResult result = runCli(folder, {"s3-to-bin", "in.s3", "--bogus"});
    EXPECT_TRUE(usageError(result));
    EXPECT_NE(result.err.find("--bogus"), std::string::npos) << result.err;
    EXPECT_FALSE(exists(folder.path("in.bin")));
}

TEST(CliUsage, OptionWithoutItsValueExitsWithTwo)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(runCli(folder, {"fill-s3", "--start", "0", "--end", "0F", "--fill", "FF", "-o"})));
}

TEST(CliUsage, NonHexAddressExitsWithTwo)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(runCli(folder, {"fill-s3", "--start", "0G", "--end", "0F", "--fill", "FF", "-o", "f.s3"})));
    EXPECT_FALSE(exists(folder.path("f.s3")));
}

TEST(CliUsage, NoCommandExitsWithTwo)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(runCli(folder, {})));
}

TEST(CliUsage, HelpExitsWithZeroAndListsTheFiveCommands)
{
    TempFolder folder;
    const RunResult result = runCli(folder, {"--help"});
    ASSERT_TRUE(succeeded(result));
    for (const char* command : {"\n  info ", "\n  s3-to-bin ", "\n  bin-to-s3 ", "\n  fill-s3 ", "\n  apply-patch "})
        EXPECT_NE(result.out.find(command), std::string::npos) << command;
}
