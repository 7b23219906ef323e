// One subcommand of zevran-cli. Each subsystem adds its own in its own file.
#pragma once

#include <string>
#include <vector>

namespace zevran::cli {

struct Context {
    std::string home;          // the shipped data (16.dat): the program folder, or PREFIX/share/zevran
    std::string settingsFile;  // zevran.ini: in the program folder, or the user's config folder
};

struct Command {
    std::string name;
    std::string usage;    // arguments after the name
    std::string summary;  // one line for --help
    std::string options;  // for COMMAND --help: one "  OPTION  what it does" line each, or ""
    int (*run)(const std::vector<std::string>& words, const Context& context);
};

std::vector<Command> imageCommands();
std::vector<Command> toneCommands();
std::vector<Command> stringCommands();
std::vector<Command> translateCommands();
std::vector<Command> pictureCommands();
std::vector<Command> finderCommands();
std::vector<Command> scanCommands();
std::vector<Command> importCommands();  // where Qt's image readers are built in
std::vector<Command> demoCommands();
std::vector<Command> diffCommands();

}  // namespace zevran::cli
