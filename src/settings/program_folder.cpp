#include "program_folder.hpp"

#include "profile_file.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>

namespace zevran::app {

namespace fs = std::filesystem;

namespace {

// An absolute folder without "." or ".." parts and without a trailing "/" (but "/").
std::string cleanFolder(const std::string& folder)
{
    std::error_code error;
    fs::path path = fs::absolute(folder, error);
    if (error) path = folder;
    std::string text = path.lexically_normal().string();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text;
}

// An XDG variable counts only when it holds an absolute path; otherwise its default
// below the home folder applies.
std::string xdgFolder(const std::string& value, const std::string& home, const char* fallback)
{
    if (!value.empty() && value.front() == '/') return cleanFolder(value);
    return cleanFolder(home + "/" + fallback);
}

std::string environmentValue(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool hasIniSuffix(const std::string& name)
{
    if (name.size() < 4) return false;
    std::string suffix = name.substr(name.size() - 4);
    std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](unsigned char c) { return std::tolower(c); });
    return suffix == ".ini";
}

void addIniNames(const std::string& folder, std::set<std::string>& names)
{
    if (folder.empty()) return;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        std::error_code statError;
        if (name.empty() || name.front() == '.' || !hasIniSuffix(name) || !fs::is_regular_file(it->path(), statError))
            continue;
        names.insert(name);
    }
}

bool isFile(const std::string& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

}  // namespace

ProgramFolders portableFolders(const std::string& folder)
{
    const std::string clean = cleanFolder(folder);
    ProgramFolders folders;
    folders.layout = Layout::Portable;
    folders.dataFolder = clean;
    folders.settingsFile = clean + "/zevran.ini";
    folders.runtimeFolder = clean;
    folders.startFolder = clean;
    return folders;
}

ProgramFolders findProgramFolders(const StartEnvironment& start,
                                  const std::function<bool(const std::string&)>& isFolder)
{
    if (!start.homeOption.empty()) return portableFolders(start.homeOption);
    if (!start.zevranHome.empty()) return portableFolders(start.zevranHome);
    const std::string executable = cleanFolder(start.executableFolder);
    if (isFolder(executable + "/language") || start.relativeDataFolder.empty()) return portableFolders(executable);
    const std::string data = cleanFolder(executable + "/" + start.relativeDataFolder);
    if (!isFolder(data + "/language")) return portableFolders(executable);

    const std::string home = start.home.empty() ? std::string("/") : cleanFolder(start.home);
    ProgramFolders folders;
    folders.layout = Layout::Installed;
    folders.dataFolder = data;
    folders.settingsFile = xdgFolder(start.xdgConfigHome, home, ".config") + "/zevran/zevran.ini";
    folders.userLanguageFolder = xdgFolder(start.xdgDataHome, home, ".local/share") + "/zevran/language";
    // The runtime folder is the user's own and emptied at log-out; the cache folder stands in without one.
    folders.runtimeFolder = !start.xdgRuntimeDir.empty() && start.xdgRuntimeDir.front() == '/'
                                ? cleanFolder(start.xdgRuntimeDir) + "/zevran"
                                : xdgFolder(start.xdgCacheHome, home, ".cache") + "/zevran";
    folders.startFolder = home;
    return folders;
}

StartEnvironment environmentOfThisProcess(const std::string& homeOption, const std::string& relativeDataFolder,
                                          const char* argv0)
{
    StartEnvironment start;
    start.homeOption = homeOption;
    start.zevranHome = environmentValue("ZEVRAN_HOME");
    std::error_code error;
    fs::path self = fs::read_symlink("/proc/self/exe", error);
    if (error) self = fs::absolute(argv0 ? argv0 : "", error);
    start.executableFolder = self.parent_path().string();
    start.relativeDataFolder = relativeDataFolder;
    start.home = environmentValue("HOME");
    start.xdgConfigHome = environmentValue("XDG_CONFIG_HOME");
    start.xdgDataHome = environmentValue("XDG_DATA_HOME");
    start.xdgRuntimeDir = environmentValue("XDG_RUNTIME_DIR");
    start.xdgCacheHome = environmentValue("XDG_CACHE_HOME");
    return start;
}

std::string localeLanguageFile(std::string_view localeName)
{
    const bool chinese =
        localeName.size() >= 2 && (localeName[0] == 'z' || localeName[0] == 'Z') &&
        (localeName[1] == 'h' || localeName[1] == 'H') &&
        (localeName.size() == 2 || localeName[2] == '_' || localeName[2] == '-' || localeName[2] == '.');
    return chinese ? "ChineseS.ini" : "English.ini";
}

bool prepareUserFolders(const ProgramFolders& folders, const std::string& languageFile)
{
    if (folders.layout != Layout::Installed) return true;
    std::error_code error;
    fs::create_directories(folders.runtimeFolder, error);
    // The runtime folder holds the window's socket: no other user may enter it.
    fs::permissions(folders.runtimeFolder, fs::perms::owner_all, fs::perm_options::replace, error);
    if (isFile(folders.settingsFile)) return true;
    fs::create_directories(fs::path(folders.settingsFile).parent_path(), error);
    return ProfileFile(folders.settingsFile).WriteSetting("Language", "Language", languageFile);
}

std::vector<std::string> languageFileNames(const ProgramFolders& folders)
{
    std::set<std::string> names;
    addIniNames(folders.dataFolder + "/language", names);
    addIniNames(folders.userLanguageFolder, names);
    return {names.begin(), names.end()};
}

LanguageFile findLanguageFile(const ProgramFolders& folders, const std::string& name)
{
    if (!folders.userLanguageFolder.empty()) {
        const std::string own = folders.userLanguageFolder + "/" + name;
        if (isFile(own)) return {own, true};
    }
    const std::string shipped = folders.dataFolder + "/language/" + name;
    if (folders.layout == Layout::Portable) return {shipped, true};
    if (isFile(shipped)) return {shipped, false};
    return {folders.userLanguageFolder + "/" + name, true};
}

}  // namespace zevran::app
