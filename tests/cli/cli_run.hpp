// Runs zevran-cli (or a peer tool) as a child process with stdout and stderr
// captured to files, so the tests see exactly what a user's shell would.
#pragma once

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace zevran::test {

using Bytes = std::vector<std::uint8_t>;

struct RunResult {
    int exitCode = -1;  // -1 when the child did not exit normally (killed by a signal)
    std::string out;
    std::string err;
};

// Single quotes keep every byte literal for /bin/sh; an embedded quote is closed,
// escaped and reopened.
inline std::string shellQuoted(const std::string& word)
{
    std::string quoted = "'";
    for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// Runs `program` with `args` inside `folder`, so relative names in args resolve there.
// The captures live in a folder of their own, away from the files the command writes.
inline RunResult runProgram(const TempFolder& folder, const std::string& program, const std::vector<std::string>& args)
{
    const std::filesystem::path captures = folder.root() / ".captures";
    std::filesystem::create_directories(captures);
    const std::string outPath = (captures / "stdout").string();
    const std::string errPath = (captures / "stderr").string();
    std::string command = "cd " + shellQuoted(folder.root().string()) + " && " + shellQuoted(program);
    for (const std::string& arg : args) command += " " + shellQuoted(arg);
    command += " >" + shellQuoted(outPath) + " 2>" + shellQuoted(errPath) + " </dev/null";
    const int status = std::system(command.c_str());
    RunResult result;
    if (status != -1 && WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    result.out = readText(outPath);
    result.err = readText(errPath);
    return result;
}

inline RunResult runCli(const TempFolder& folder, const std::vector<std::string>& args)
{
    return runProgram(folder, ZEVRAN_CLI, args);
}

inline ::testing::AssertionResult succeeded(const RunResult& result)
{
    if (result.exitCode == 0 && result.err.empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "exit " << result.exitCode << ", stderr: " << result.err;
}

// A failed job: exit 1, nothing on stdout, and exactly one line on stderr that
// holds every one of `mentions` (the place of the failure, the file's name).
inline ::testing::AssertionResult failedWith(const RunResult& result, std::initializer_list<std::string> mentions)
{
    auto failure = [&] {
        return ::testing::AssertionFailure()
               << "exit " << result.exitCode << ", stdout: \"" << result.out << "\", stderr: \"" << result.err << "\"";
    };
    if (result.exitCode != 1) return failure() << " (expected exit 1)";
    if (!result.out.empty()) return failure() << " (expected no stdout)";
    if (std::count(result.err.begin(), result.err.end(), '\n') != 1 || result.err.back() != '\n')
        return failure() << " (expected one line on stderr)";
    for (const std::string& mention : mentions)
        if (result.err.find(mention) == std::string::npos) return failure() << " (stderr lacks \"" << mention << "\")";
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult usageError(const RunResult& result)
{
    if (result.exitCode == 2 && result.out.empty() && !result.err.empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "exit " << result.exitCode << ", stderr: " << result.err
                                         << " (expected exit 2 with a message)";
}

inline Bytes repeated(std::size_t count, std::uint8_t value) { return Bytes(count, value); }

inline Bytes joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline bool exists(const std::string& path) { return std::filesystem::exists(path); }

}  // namespace zevran::test
