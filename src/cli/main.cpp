// zevran-cli: every job of the workshop from the command line, over the same logic
// as the window. Exit status 0 on success, 1 when the job fails, 2 for bad usage.
#include "cli_args.hpp"
#include "command.hpp"

#include "settings/program_folder.hpp"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>

namespace {

using zevran::cli::Command;

std::vector<Command> allCommands()
{
    std::vector<Command> commands = zevran::cli::imageCommands();
    for (auto& command : zevran::cli::toneCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::stringCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::translateCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::pictureCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::finderCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::scanCommands()) commands.push_back(command);
#ifdef ZEVRAN_PICTURE_IMPORT
    for (auto& command : zevran::cli::importCommands()) commands.push_back(command);
#endif
    for (auto& command : zevran::cli::diffCommands()) commands.push_back(command);
    for (auto& command : zevran::cli::demoCommands()) commands.push_back(command);
    return commands;
}

void printHelp(std::ostream& out)
{
    out << "Usage: zevran-cli [--home DIR] COMMAND ARGS...\nEvery job of Zevran Handset Workshop from the command line.\n\nCommands:\n";
    for (const Command& command : allCommands())
        out << "  " << command.name << " " << command.usage << "\n      " << command.summary << "\n";
    out << "\nOptions:\n"
           "  --home DIR  the portable program folder (16.dat, zevran.ini); default: ZEVRAN_HOME, else\n"
           "              the executable's folder, or PREFIX/share/zevran and the user's\n"
           "              ~/.config/zevran/zevran.ini when installed\n"
           "  --help      this text\n"
           "  --version   the version\n";
}

// COMMAND --help (or -h) anywhere among a command's words asks for its own help.
bool asksForHelp(const std::vector<std::string>& words)
{
    return std::any_of(words.begin() + 1, words.end(),
                       [](const std::string& word) { return word == "--help" || word == "-h"; });
}

void printCommandHelp(std::ostream& out, const Command& command)
{
    out << "Usage: zevran-cli [--home DIR] " << command.name << " " << command.usage << "\n" << command.summary << "\n";
    out << "\nOptions:\n" << command.options << "  -h, --help      this text\n";
}

// Commands that write one file (or change an "asf" file in place): every file is written
// through a temporary and renamed at the end, so a failure, wherever it happens, has
// written nothing, and the message says so.
bool failureWroteNothing(const std::string& command)
{
    static const std::set<std::string> oneOutput = {"s3-to-bin",      "bin-to-s3", "fill-s3",       "apply-patch",
                                                    "patch-strings",  "picture",   "picture-patch", "render",
                                                    "import-picture", "diff"};
    return oneOutput.count(command) > 0;
}

std::string failureText(const std::string& command, const std::string& what)
{
    if (!failureWroteNothing(command) || what.find("nothing was written") != std::string::npos) return what;
    return what + "; nothing was written";
}

// --home, ZEVRAN_HOME, a portable folder or the installed layout, as the window finds them.
zevran::cli::Context contextFor(const std::string& homeOption, const char* argv0)
{
    const auto folders = zevran::app::findProgramFolders(
        zevran::app::environmentOfThisProcess(homeOption, ZEVRAN_RELATIVE_DATA_DIR, argv0),
        [](const std::string& path) {
            std::error_code error;
            return std::filesystem::is_directory(path, error);
        });
    return {folders.dataFolder, folders.settingsFile};
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    std::string commandName;
    try {
        std::string homeOption;
        if (words.size() >= 2 && words[0] == "--home") {
            homeOption = words[1];
            words.erase(words.begin(), words.begin() + 2);
        }
        const zevran::cli::Context context = contextFor(homeOption, argv[0]);
        if (!words.empty() && words[0] == "--version") {
            std::cout << "zevran-cli (Zevran Handset Workshop) " << ZEVRAN_VERSION << "\n";
            return 0;
        }
        if (words.empty() || words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
            printHelp(words.empty() ? std::cerr : std::cout);
            return words.empty() ? 2 : 0;
        }
        for (const Command& command : allCommands()) {
            if (command.name != words[0]) continue;
            commandName = command.name;
            if (asksForHelp(words)) {
                printCommandHelp(std::cout, command);
                return 0;
            }
            return command.run({words.begin() + 1, words.end()}, context);
        }
        throw zevran::cli::UsageError("unknown command \"" + words[0] + "\" (see zevran-cli --help)");
    } catch (const zevran::cli::UsageError& error) {
        std::cerr << "zevran-cli: " << error.what() << "\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "zevran-cli: " << failureText(commandName, error.what()) << "\n";
        return 1;
    }
}
