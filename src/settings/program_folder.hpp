// Where the workshop keeps its files. A portable folder holds everything beside the
// executable; an installed workshop reads its shipped data from PREFIX/share/zevran and
// keeps each user's settings, language files and temporary files in that user's XDG
// folders. Standard library only: the window and zevran-cli share it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::app {

enum class Layout { Portable, Installed };

struct ProgramFolders {
    Layout layout = Layout::Portable;
    std::string dataFolder;          // 16.dat, help/, the shipped language/ (read-only when installed)
    std::string settingsFile;        // zevran.ini
    std::string userLanguageFolder;  // the user's own language files; empty when portable
    std::string runtimeFolder;       // preview pictures, the lock and the socket of the one window
    std::string startFolder;         // what an empty remembered folder stands for
};

// What the start of a program sees: its options, environment and executable.
struct StartEnvironment {
    std::string homeOption;  // --home DIR
    std::string zevranHome;  // $ZEVRAN_HOME
    std::string executableFolder;
    std::string relativeDataFolder;  // from the executable's folder to PREFIX/share/zevran
    std::string home;                // $HOME
    std::string xdgConfigHome;
    std::string xdgDataHome;
    std::string xdgRuntimeDir;
    std::string xdgCacheHome;
};

// Everything in `folder`, as a portable workshop keeps it.
ProgramFolders portableFolders(const std::string& folder);

// --home, then ZEVRAN_HOME, then an executable beside language/ give a portable
// folder; an executable whose data lies at `relativeDataFolder` is installed; any
// other is portable in its own folder, as it always was. `isFolder` asks the disk.
ProgramFolders findProgramFolders(const StartEnvironment& start,
                                  const std::function<bool(const std::string&)>& isFolder);

// The environment of this process (HOME, the XDG variables, /proc/self/exe).
StartEnvironment environmentOfThisProcess(const std::string& homeOption, const std::string& relativeDataFolder,
                                          const char* argv0);

// The language file a fresh user starts with: "ChineseS.ini" for a Chinese locale
// ("zh", "zh_CN.UTF-8", "zh-TW"), otherwise "English.ini".
std::string localeLanguageFile(std::string_view localeName);

// The first start of a user of an installed workshop: creates the settings and runtime
// folders and a zevran.ini naming `languageFile`, so the window starts with captions.
// Does nothing when portable or when zevran.ini exists. False when it cannot be written.
bool prepareUserFolders(const ProgramFolders& folders, const std::string& languageFile);

// The "*.ini" names of the shipped language folder and the user's, each name once, in
// name order.
std::vector<std::string> languageFileNames(const ProgramFolders& folders);

struct LanguageFile {
    std::string path;
    bool writeBack = true;  // whether keys the file lacks are written into it
};

// The file a language name stands for: the user's file of that name wins over the
// shipped one. A shipped file of an installed workshop is never written; a name found
// nowhere is made in the user's folder (the language folder when portable), where the
// write-back creates it.
LanguageFile findLanguageFile(const ProgramFolders& folders, const std::string& name);

}  // namespace zevran::app
