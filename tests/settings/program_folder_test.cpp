#include "settings/program_folder.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

using namespace zevran::app;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

// A disk holding only the named folders.
std::function<bool(const std::string&)> foldersOnDisk(std::set<std::string> folders)
{
    return [folders = std::move(folders)](const std::string& path) { return folders.count(path) > 0; };
}

StartEnvironment installedUnderUsr()
{
    StartEnvironment start;
    start.executableFolder = "/usr/bin";
    start.relativeDataFolder = "../share/zevran";
    start.home = "/home/ann";
    return start;
}

}  // namespace

TEST(ProgramFolders, HomeOptionIsAPortableFolderHoldingEverything)
{
    StartEnvironment start = installedUnderUsr();
    start.homeOption = "/data/zw";
    const ProgramFolders folders = findProgramFolders(start, foldersOnDisk({"/usr/share/zevran/language"}));
    EXPECT_EQ(folders.layout, Layout::Portable);
    EXPECT_EQ(folders.dataFolder, "/data/zw");
    EXPECT_EQ(folders.settingsFile, "/data/zw/zevran.ini");
    EXPECT_EQ(folders.userLanguageFolder, "");
    EXPECT_EQ(folders.runtimeFolder, "/data/zw");
    EXPECT_EQ(folders.startFolder, "/data/zw");
}

TEST(ProgramFolders, HomeOptionWinsOverZevranHome)
{
    StartEnvironment start = installedUnderUsr();
    start.homeOption = "/data/a";
    start.zevranHome = "/data/b";
    EXPECT_EQ(findProgramFolders(start, foldersOnDisk({})).dataFolder, "/data/a");
}

TEST(ProgramFolders, ZevranHomeIsPortableWithoutTheOption)
{
    StartEnvironment start = installedUnderUsr();
    start.zevranHome = "/data/b/";
    const ProgramFolders folders = findProgramFolders(start, foldersOnDisk({"/usr/share/zevran/language"}));
    EXPECT_EQ(folders.layout, Layout::Portable);
    EXPECT_EQ(folders.settingsFile, "/data/b/zevran.ini");
}

TEST(ProgramFolders, DotsAndTrailingSlashesAreCleanedFromAFolder)
{
    StartEnvironment start;
    start.homeOption = "/data/zw/./x/../";
    EXPECT_EQ(findProgramFolders(start, foldersOnDisk({})).dataFolder, "/data/zw");
}

TEST(ProgramFolders, ExecutableBesideLanguageFolderIsPortable)
{
    StartEnvironment start = installedUnderUsr();
    start.executableFolder = "/opt/zw";
    const ProgramFolders folders =
        findProgramFolders(start, foldersOnDisk({"/opt/zw/language", "/opt/share/zevran/language"}));
    EXPECT_EQ(folders.layout, Layout::Portable);
    EXPECT_EQ(folders.dataFolder, "/opt/zw");
}

TEST(ProgramFolders, ExecutableUnderAPrefixWithSharedDataIsInstalled)
{
    const ProgramFolders folders =
        findProgramFolders(installedUnderUsr(), foldersOnDisk({"/usr/share/zevran/language"}));
    EXPECT_EQ(folders.layout, Layout::Installed);
    EXPECT_EQ(folders.dataFolder, "/usr/share/zevran");
    EXPECT_EQ(folders.settingsFile, "/home/ann/.config/zevran/zevran.ini");
    EXPECT_EQ(folders.userLanguageFolder, "/home/ann/.local/share/zevran/language");
    EXPECT_EQ(folders.runtimeFolder, "/home/ann/.cache/zevran");
    EXPECT_EQ(folders.startFolder, "/home/ann");
}

TEST(ProgramFolders, InstalledUsesAbsoluteXdgFolders)
{
    StartEnvironment start = installedUnderUsr();
    start.xdgConfigHome = "/cfg/";
    start.xdgDataHome = "/dat";
    start.xdgRuntimeDir = "/run/user/1000";
    start.xdgCacheHome = "/cache";
    const ProgramFolders folders = findProgramFolders(start, foldersOnDisk({"/usr/share/zevran/language"}));
    EXPECT_EQ(folders.settingsFile, "/cfg/zevran/zevran.ini");
    EXPECT_EQ(folders.userLanguageFolder, "/dat/zevran/language");
    EXPECT_EQ(folders.runtimeFolder, "/run/user/1000/zevran");
}

TEST(ProgramFolders, InstalledIgnoresRelativeXdgFolders)
{
    StartEnvironment start = installedUnderUsr();
    start.xdgConfigHome = "cfg";
    start.xdgDataHome = "dat";
    start.xdgRuntimeDir = "run";
    start.xdgCacheHome = "/cache";
    const ProgramFolders folders = findProgramFolders(start, foldersOnDisk({"/usr/share/zevran/language"}));
    EXPECT_EQ(folders.settingsFile, "/home/ann/.config/zevran/zevran.ini");
    EXPECT_EQ(folders.userLanguageFolder, "/home/ann/.local/share/zevran/language");
    EXPECT_EQ(folders.runtimeFolder, "/cache/zevran");
}

TEST(ProgramFolders, ExecutableWithNoDataAnywhereStaysPortableInItsFolder)
{
    const ProgramFolders folders = findProgramFolders(installedUnderUsr(), foldersOnDisk({}));
    EXPECT_EQ(folders.layout, Layout::Portable);
    EXPECT_EQ(folders.dataFolder, "/usr/bin");
}

struct LocaleRow {
    const char* locale;
    const char* file;
};

class LocaleLanguage : public testing::TestWithParam<LocaleRow> {};

TEST_P(LocaleLanguage, ChineseLocalesStartInChineseSOthersInEnglish)
{
    EXPECT_EQ(localeLanguageFile(GetParam().locale), GetParam().file);
}

INSTANTIATE_TEST_SUITE_P(Rows, LocaleLanguage,
                         testing::Values(LocaleRow{"zh_CN.UTF-8", "ChineseS.ini"}, LocaleRow{"zh-TW", "ChineseS.ini"},
                                         LocaleRow{"zh", "ChineseS.ini"}, LocaleRow{"zh-Hans-CN", "ChineseS.ini"},
                                         LocaleRow{"en_US.UTF-8", "English.ini"}, LocaleRow{"de-DE", "English.ini"},
                                         LocaleRow{"C", "English.ini"}, LocaleRow{"", "English.ini"},
                                         LocaleRow{"zu_ZA", "English.ini"}, LocaleRow{"zha", "English.ini"}));

class LanguageFolders : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_temp.path("share/language"));
        std::filesystem::create_directories(m_temp.path("user/language"));
        m_folders.layout = Layout::Installed;
        m_folders.dataFolder = m_temp.path("share");
        m_folders.userLanguageFolder = m_temp.path("user/language");
    }
    TempFolder m_temp;
    ProgramFolders m_folders;
};

TEST_F(LanguageFolders, ListHoldsShippedAndUserFilesEachNameOnceInNameOrder)
{
    for (const char* name :
         {"share/language/English.ini", "share/language/ChineseS.ini", "share/language/notes.txt",
          "user/language/Klingon.INI", "user/language/English.ini", "user/language/.draft.ini", "user/language/a.ini"})
        writeFile(m_temp.path(name), "");
    std::filesystem::create_directories(m_temp.path("user/language/folder.ini"));
    EXPECT_EQ(languageFileNames(m_folders),
              (std::vector<std::string>{"ChineseS.ini", "English.ini", "Klingon.INI", "a.ini"}));
}

TEST_F(LanguageFolders, MissingUserFolderListsTheShippedFiles)
{
    writeFile(m_temp.path("share/language/English.ini"), "");
    m_folders.userLanguageFolder = m_temp.path("nowhere");
    EXPECT_EQ(languageFileNames(m_folders), (std::vector<std::string>{"English.ini"}));
}

TEST_F(LanguageFolders, UserFileWinsOverTheShippedFileOfItsName)
{
    writeFile(m_temp.path("share/language/English.ini"), "");
    writeFile(m_temp.path("user/language/English.ini"), "");
    const LanguageFile file = findLanguageFile(m_folders, "English.ini");
    EXPECT_EQ(file.path, m_temp.path("user/language/English.ini"));
    EXPECT_TRUE(file.writeBack);
}

TEST_F(LanguageFolders, InstalledShippedFileIsNeverWrittenBack)
{
    writeFile(m_temp.path("share/language/English.ini"), "");
    const LanguageFile file = findLanguageFile(m_folders, "English.ini");
    EXPECT_EQ(file.path, m_temp.path("share/language/English.ini"));
    EXPECT_FALSE(file.writeBack);
}

TEST_F(LanguageFolders, NameFoundNowhereIsMadeInTheUserFolder)
{
    const LanguageFile file = findLanguageFile(m_folders, "ChineseS");
    EXPECT_EQ(file.path, m_temp.path("user/language/ChineseS"));
    EXPECT_TRUE(file.writeBack);
}

TEST_F(LanguageFolders, PortableLanguageFileIsTheProgramFoldersAndWrittenBack)
{
    const ProgramFolders portable = portableFolders(m_temp.path("share"));
    writeFile(m_temp.path("share/language/English.ini"), "");
    const LanguageFile file = findLanguageFile(portable, "English.ini");
    EXPECT_EQ(file.path, m_temp.path("share/language/English.ini"));
    EXPECT_TRUE(file.writeBack);
    EXPECT_EQ(findLanguageFile(portable, "Missing").path, m_temp.path("share/language/Missing"));
}

TEST(UserFolders, FirstStartCreatesSettingsNamingTheLanguage)
{
    TempFolder temp;
    ProgramFolders folders;
    folders.layout = Layout::Installed;
    folders.settingsFile = temp.path("config/zevran/zevran.ini");
    folders.runtimeFolder = temp.path("run/zevran");
    EXPECT_TRUE(prepareUserFolders(folders, "ChineseS.ini"));
    EXPECT_EQ(readText(folders.settingsFile), "[Language]\r\nLanguage=ChineseS.ini\r\n");
    EXPECT_EQ(std::filesystem::status(folders.runtimeFolder).permissions() & std::filesystem::perms::all,
              std::filesystem::perms::owner_all);
}

TEST(UserFolders, LaterStartLeavesTheSettingsAlone)
{
    TempFolder temp;
    ProgramFolders folders;
    folders.layout = Layout::Installed;
    folders.settingsFile = temp.path("zevran.ini");
    folders.runtimeFolder = temp.path("run");
    writeFile(folders.settingsFile, "[Language]\nLanguage=English.ini\n");
    EXPECT_TRUE(prepareUserFolders(folders, "ChineseS.ini"));
    EXPECT_EQ(readText(folders.settingsFile), "[Language]\nLanguage=English.ini\n");
}

TEST(UserFolders, PortableFolderGetsNoSettingsMade)
{
    TempFolder temp;
    EXPECT_TRUE(prepareUserFolders(portableFolders(temp.root().string()), "ChineseS.ini"));
    EXPECT_FALSE(std::filesystem::exists(temp.path("zevran.ini")));
}
