// zevran-cli's exit statuses for bad usage and its help text.
#include "cli_run.hpp"

#include <sstream>

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

namespace {

// The command names of zevran-cli --help: the lines "  NAME USAGE".
std::vector<std::string> commandNames(const std::string& help)
{
    std::vector<std::string> names;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);)
        if (line.size() > 2 && line.rfind("  ", 0) == 0 && line[2] >= 'a' && line[2] <= 'z')
            names.push_back(line.substr(2, line.find(' ', 2) - 2));
    return names;
}

}  // namespace

TEST(CliUsage, EveryCommandAnswersHelpWithItsUsageAndOptions)
{
    TempFolder folder;
    const RunResult overall = runCli(folder, {"--help"});
    const std::vector<std::string> names = commandNames(overall.out);
    ASSERT_GE(names.size(), 16u) << overall.out;
    for (const std::string& name : names) {
        for (const char* ask : {"--help", "-h"}) {
            SCOPED_TRACE(name + " " + ask);
            const RunResult result = runCli(folder, {name, ask});
            ASSERT_TRUE(succeeded(result));
            EXPECT_EQ(result.out.rfind("Usage: zevran-cli [--home DIR] " + name + " ", 0), 0u) << result.out;
            EXPECT_NE(result.out.find("\nOptions:\n"), std::string::npos) << result.out;
            // Every option the usage names is explained on a line of its own.
            const std::string usage = result.out.substr(0, result.out.find('\n'));
            std::istringstream words(usage);
            for (std::string word; words >> word;) {
                word.erase(std::remove_if(word.begin(), word.end(),
                                          [](char c) { return c == '[' || c == ']' || c == '(' || c == ')'; }),
                           word.end());
                if (word.size() < 2 || word[0] != '-' || word == "--home") continue;
                EXPECT_NE(result.out.find("\n  " + word + " "), std::string::npos) << word << " in\n" << result.out;
            }
        }
    }
}

TEST(CliUsage, HelpAfterTheArgumentsStillAnswersAndRunsNothing)
{
    TempFolder folder;
    const RunResult result = runCli(folder, {"s3-to-bin", "missing.s3", "-o", "out.bin", "--help"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_NE(result.out.find("--data-only"), std::string::npos) << result.out;
    EXPECT_FALSE(exists(folder.path("out.bin")));
}

TEST(CliLinks, NoQtLibraryIsLoaded)
{
    // Only zevran-picture-reader, which import-picture runs, loads Qt's image readers.
    TempFolder folder;
    const RunResult result = runProgram(folder, "ldd", {ZEVRAN_CLI});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    ASSERT_NE(result.out.find("libc.so"), std::string::npos) << result.out;
    EXPECT_EQ(result.out.find("libQt"), std::string::npos) << result.out;
}
