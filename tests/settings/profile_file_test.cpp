#include "settings/profile_file.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zevran::app;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;

TEST(ProfileRead, SectionAndKeyMatchWithoutRegardToCase)
{
    const std::string text = "[File Path]\r\nS3 Save Path=/home/a/\r\n";
    EXPECT_EQ(readProfileValue(text, "file path", "s3 save path"), std::optional<std::string>("/home/a/"));
}

TEST(ProfileRead, ValueIsTheTextAfterTheFirstEqualsSignTrimmed)
{
    const std::string text = "[S]\nKey =  a=b c \t\n";
    EXPECT_EQ(readProfileValue(text, "S", "Key"), std::optional<std::string>("a=b c"));
}

TEST(ProfileRead, MissingSectionOrKeyIsNone)
{
    const std::string text = "[A]\nx=1\n";
    EXPECT_EQ(readProfileValue(text, "B", "x"), std::nullopt);
    EXPECT_EQ(readProfileValue(text, "A", "y"), std::nullopt);
}

TEST(ProfileRead, KeyOfAnotherSectionIsNotRead)
{
    const std::string text = "[A]\nx=1\n[B]\ny=2\n";
    EXPECT_EQ(readProfileValue(text, "B", "x"), std::nullopt);
    EXPECT_EQ(readProfileValue(text, "B", "y"), std::optional<std::string>("2"));
}

TEST(ProfileRead, CommentLinesAreSkipped)
{
    const std::string text = "[A]\n;x=1\nx=2\n";
    EXPECT_EQ(readProfileValue(text, "A", "x"), std::optional<std::string>("2"));
}

TEST(ProfileRead, ValueOfExactly255CharactersIsReadWhole)
{
    const std::string value(255, 'v');
    EXPECT_EQ(readProfileValue("[A]\nx=" + value + "\n", "A", "x"), std::optional<std::string>(value));
}

TEST(ProfileRead, LongerValueIsCutTo255)
{
    const std::string value(300, 'v');
    EXPECT_EQ(readProfileValue("[A]\nx=" + value + "\n", "A", "x"), std::optional<std::string>(value.substr(0, 255)));
}

TEST(ProfileRead, EmptyValueIsReadAsEmpty)
{
    EXPECT_EQ(readProfileValue("[A]\nx=\n", "A", "x"), std::optional<std::string>(""));
}

TEST(ProfileWrite, ChangesOnlyTheLineOfTheKey)
{
    const std::string text =
        "; settings\r\n[Language]\r\nLanguage = English.ini\r\n\r\n[File Path]\r\nS3 Save Path=/a/\r\n";
    EXPECT_EQ(writeProfileValue(text, "language", "LANGUAGE", "ChineseS.ini"),
              "; settings\r\n[Language]\r\nLanguage=ChineseS.ini\r\n\r\n[File Path]\r\nS3 Save Path=/a/\r\n");
}

TEST(ProfileWrite, NewKeyGoesAtTheEndOfItsSection)
{
    const std::string text = "[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n";
    EXPECT_EQ(writeProfileValue(text, "A", "z", "3"), "[A]\r\nx=1\r\nz=3\r\n\r\n[B]\r\ny=2\r\n");
}

TEST(ProfileWrite, NewSectionGoesAtTheEndOfTheFile)
{
    EXPECT_EQ(writeProfileValue("[A]\nx=1\n", "B", "y", "2"), "[A]\nx=1\n[B]\r\ny=2\r\n");
}

TEST(ProfileWrite, LastLineWithoutLineEndGetsOne)
{
    EXPECT_EQ(writeProfileValue("[A]\nx=1", "A", "y", "2"), "[A]\nx=1\r\ny=2\r\n");
    EXPECT_EQ(writeProfileValue("[A]\nx=1", "B", "y", "2"), "[A]\nx=1\r\n[B]\r\ny=2\r\n");
}

TEST(ProfileWrite, EmptyTextGetsItsFirstSection)
{
    EXPECT_EQ(writeProfileValue("", "File Path", "mmf File Path", ""), "[File Path]\r\nmmf File Path=\r\n");
}

TEST(ProfileWrite, WriteThenReadGivesTheValue)
{
    std::string text = "[A]\nx=1\n";
    text = writeProfileValue(text, "A", "x", "new value");
    EXPECT_EQ(readProfileValue(text, "A", "x"), std::optional<std::string>("new value"));
}

TEST(ProfileFile, MissingFileIsCreatedByAWrite)
{
    TempFolder folder;
    ProfileFile profile(folder.path("zevran.ini"));
    EXPECT_FALSE(profile.read("Language", "Language").has_value());
    EXPECT_TRUE(profile.WriteSetting("Language", "Language", "English.ini"));
    EXPECT_EQ(readText(folder.path("zevran.ini")), "[Language]\r\nLanguage=English.ini\r\n");
}

TEST(ReadSetting, MissingKeyGivesTheDefaultAndWritesItBack)
{
    TempFolder folder;
    ProfileFile profile(folder.path("zevran.ini"));
    EXPECT_EQ(profile.ReadSetting("File Path", "S3 Save Path", ""), "");
    EXPECT_EQ(readText(folder.path("zevran.ini")), "[File Path]\r\nS3 Save Path=\r\n");
}

TEST(ReadSetting, EmptyValueIsTreatedAsMissing)
{
    TempFolder folder;
    writeFile(folder.path("zevran.ini"), std::string("[A]\r\nx=\r\n"));
    ProfileFile profile(folder.path("zevran.ini"));
    EXPECT_EQ(profile.ReadSetting("A", "x", "fallback"), "fallback");
    EXPECT_EQ(readText(folder.path("zevran.ini")), "[A]\r\nx=fallback\r\n");
}

TEST(ReadSetting, PresentValueIsReturnedAndTheFileUntouched)
{
    TempFolder folder;
    writeFile(folder.path("zevran.ini"), std::string("[A]\r\nx = 5 \r\n"));
    ProfileFile profile(folder.path("zevran.ini"));
    EXPECT_EQ(profile.ReadSetting("A", "x", "0"), "5");
    EXPECT_EQ(readText(folder.path("zevran.ini")), "[A]\r\nx = 5 \r\n");
}

TEST(ProfileFile, UnwritableFileReportsFalseAndChangesNothing)
{
    TempFolder folder;
    writeFile(folder.path("plain"), std::string("x"));
    // Below a regular file nothing can be created, not even by root.
    ProfileFile profile(folder.path("plain/zevran.ini"));
    EXPECT_FALSE(profile.WriteSetting("A", "x", "1"));
    EXPECT_EQ(profile.ReadSetting("A", "x", "d"), "d");
    EXPECT_EQ(readText(folder.path("plain")), "x");
}
