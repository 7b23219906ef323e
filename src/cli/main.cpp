// zevran-cli: every job of the workshop from the command line, over the same logic
// as the window. Exit status 0 on success, 1 when the job fails, 2 for bad usage.
#include "cli_args.hpp"
#include "command.hpp"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

using zevran::cli::Command;

std::vector<Command> allCommands()
{
    std::vector<Command> commands = zevran::cli::imageCommands();
    for (auto& command : zevran::cli::toneCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::stringCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::pictureCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::demoCommands()) commands.push_back(command);
    return commands;
}

void printHelp(std::ostream& out)
{
    out << "usage: zevran-cli [--home DIR] COMMAND ARGS...\n\ncommands:\n";
    for (const Command& command : allCommands())
        out << "  " << command.name << " " << command.usage << "\n      " << command.summary << "\n";
    out << "\n--home DIR names the program folder (default: ZEVRAN_HOME, else the executable's folder).\n";
}

std::string defaultHome(const char* argv0)
{
    if (const char* fromEnvironment = std::getenv("ZEVRAN_HOME"); fromEnvironment && *fromEnvironment)
        return fromEnvironment;
    std::error_code error;
    auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) self = std::filesystem::absolute(argv0, error);
    return self.parent_path().string();
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    zevran::cli::Context context{defaultHome(argv[0])};
    try {
        if (words.size() >= 2 && words[0] == "--home") {
            context.home = words[1];
            words.erase(words.begin(), words.begin() + 2);
        }
        if (words.empty() || words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
            printHelp(words.empty() ? std::cerr : std::cout);
            return words.empty() ? 2 : 0;
        }
        for (const Command& command : allCommands()) {
            if (command.name == words[0]) return command.run({words.begin() + 1, words.end()}, context);
        }
        throw zevran::cli::UsageError("unknown command \"" + words[0] + "\" (see zevran-cli --help)");
    } catch (const zevran::cli::UsageError& error) {
        std::cerr << "zevran-cli: " << error.what() << "\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "zevran-cli: " << error.what() << "\n";
        return 1;
    }
}
