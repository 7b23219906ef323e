#include "settings/recent_files.hpp"

#include "settings/profile_file.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;
using Paths = std::vector<std::string>;

TEST(RecentFiles, NewestIsFirst)
{
    RecentFiles files;
    files.add("/phones/a.bin");
    files.add("/phones/b.asf");
    EXPECT_EQ(files.paths(), (Paths{"/phones/b.asf", "/phones/a.bin"}));
}

TEST(RecentFiles, OpeningAListedFileMovesItToTheFrontOnce)
{
    RecentFiles files(Paths{"/p/c.bin", "/p/b.bin", "/p/a.bin"});
    files.add("/p/a.bin");
    EXPECT_EQ(files.paths(), (Paths{"/p/a.bin", "/p/c.bin", "/p/b.bin"}));
    files.add("/p/./c.bin");
    EXPECT_EQ(files.paths(), (Paths{"/p/./c.bin", "/p/a.bin", "/p/b.bin"}));
}

TEST(RecentFiles, NinthFilePushesOutTheOldest)
{
    RecentFiles files;
    for (char name = '1'; name <= '9'; ++name) files.add(std::string("/p/") + name + ".bin");
    EXPECT_EQ(files.paths(),
              (Paths{"/p/9.bin", "/p/8.bin", "/p/7.bin", "/p/6.bin", "/p/5.bin", "/p/4.bin", "/p/3.bin", "/p/2.bin"}));
}

TEST(RecentFiles, StoredListDropsEmptyNamesRepeatsAndAllPastEight)
{
    RecentFiles files(Paths{"/p/1.bin", "", "/p/2.bin", "/p/x/../1.bin", "/p/3.bin", "/p/4.bin", "/p/5.bin", "/p/6.bin",
                            "/p/7.bin", "/p/8.bin", "/p/9.bin"});
    EXPECT_EQ(files.paths(),
              (Paths{"/p/1.bin", "/p/2.bin", "/p/3.bin", "/p/4.bin", "/p/5.bin", "/p/6.bin", "/p/7.bin", "/p/8.bin"}));
}

TEST(RecentFiles, RemoveAndClear)
{
    RecentFiles files(Paths{"/p/a.bin", "/p/b.bin"});
    EXPECT_TRUE(files.remove("/p/a.bin"));
    EXPECT_FALSE(files.remove("/p/a.bin"));
    EXPECT_EQ(files.paths(), (Paths{"/p/b.bin"}));
    files.clear();
    EXPECT_TRUE(files.empty());
}

TEST(RecentFiles, ListIsWrittenAsEightKeysOfItsOwnSection)
{
    const std::string text =
        writeRecentFiles("[Language]\r\nLanguage=English.ini\r\n", RecentFiles(Paths{"/p/new.bin", "/p/old.asf"}));
    EXPECT_EQ(text, "[Language]\r\nLanguage=English.ini\r\n"
                    "[Recent Files]\r\nFile1=/p/new.bin\r\nFile2=/p/old.asf\r\nFile3=\r\nFile4=\r\n"
                    "File5=\r\nFile6=\r\nFile7=\r\nFile8=\r\n");
}

TEST(RecentFiles, RewritingKeepsEveryOtherLine)
{
    const std::string before = "[Recent Files]\r\nFile1=/p/a.bin\r\nFile2=\r\nFile3=\r\nFile4=\r\nFile5=\r\n"
                               "File6=\r\nFile7=\r\nFile8=\r\n[Window]\r\nTab=2\r\n";
    RecentFiles files = readRecentFiles(before);
    files.add("/p/b.bin");
    EXPECT_EQ(writeRecentFiles(before, files),
              "[Recent Files]\r\nFile1=/p/b.bin\r\nFile2=/p/a.bin\r\nFile3=\r\n"
              "File4=\r\nFile5=\r\nFile6=\r\nFile7=\r\nFile8=\r\n[Window]\r\nTab=2\r\n");
}

TEST(RecentFiles, ReadingSkipsEmptyKeysAndAMissingSectionIsAnEmptyList)
{
    EXPECT_TRUE(readRecentFiles("[Language]\r\nLanguage=English.ini\r\n").empty());
    EXPECT_EQ(
        readRecentFiles("[recent files]\r\nFile1=\r\nFile3=/p/c.bin\r\nfile2=/p/b.bin\r\nFile9=/p/z.bin\r\n").paths(),
        (Paths{"/p/b.bin", "/p/c.bin"}));
}

TEST(RecentFiles, PathThatCannotBeKeptAsAValueIsLeftOut)
{
    const std::string longPath = "/" + std::string(255, 'a');
    EXPECT_FALSE(RecentFiles::storable(longPath));
    EXPECT_TRUE(RecentFiles::storable(longPath.substr(1)));
    EXPECT_FALSE(RecentFiles::storable(" /p/a.bin"));
    EXPECT_FALSE(RecentFiles::storable("/p/a\nb.bin"));
    EXPECT_EQ(readRecentFiles(writeRecentFiles("", RecentFiles(Paths{longPath, "/p/b.bin"}))).paths(),
              (Paths{"/p/b.bin"}));
}

TEST(RecentFiles, SettingsFileRoundTripKeepsItsOtherSettings)
{
    zevran::test::TempFolder folder;
    const std::string path = folder.path("zevran.ini");
    zevran::test::writeFile(path, std::string("[Language]\r\nLanguage=ChineseS.ini\r\n"));
    const zevran::app::ProfileFile profile(path);
    EXPECT_TRUE(readRecentFiles(profile).empty());
    ASSERT_TRUE(writeRecentFiles(profile, RecentFiles(Paths{"/p/\xE6\x89\x8B\xE6\x9C\xBA.bin", "/p/a.asf"})));
    EXPECT_EQ(readRecentFiles(profile).paths(), (Paths{"/p/\xE6\x89\x8B\xE6\x9C\xBA.bin", "/p/a.asf"}));
    EXPECT_EQ(profile.read("Language", "Language"), "ChineseS.ini");
}

TEST(RecentFiles, MissingSettingsFileIsCreated)
{
    zevran::test::TempFolder folder;
    const zevran::app::ProfileFile profile(folder.path("zevran.ini"));
    ASSERT_TRUE(writeRecentFiles(profile, RecentFiles(Paths{"/p/a.bin"})));
    EXPECT_EQ(readRecentFiles(profile).paths(), (Paths{"/p/a.bin"}));
}
