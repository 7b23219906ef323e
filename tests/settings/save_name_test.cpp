// The extension a save dialog adds from the chosen filter when the name has none.
#include "settings/save_name.hpp"

#include <gtest/gtest.h>

using zevran::app::filterExtension;
using zevran::app::withFilterExtension;

TEST(SaveName, BareNameGetsTheFirstExtensionOfTheFilter)
{
    EXPECT_EQ(withFilterExtension("tonepatch", "*.s3;*.sre;*.srec;*.mot"), "tonepatch.s3");
    EXPECT_EQ(withFilterExtension("/home/u/out/tonepatch", "*.s3;*.sre"), "/home/u/out/tonepatch.s3");
}

TEST(SaveName, QtStylePatternsGiveTheSameExtension)
{
    EXPECT_EQ(withFilterExtension("/tmp/pics", "*.txt"), "/tmp/pics.txt");
    EXPECT_EQ(withFilterExtension("/tmp/patch", "*.s3 *.sre"), "/tmp/patch.s3");
}

TEST(SaveName, NameWithAnExtensionIsKept)
{
    EXPECT_EQ(withFilterExtension("x.bin", "*.s3;*.sre"), "x.bin");
    EXPECT_EQ(withFilterExtension("/tmp/dir.v2/x.bin", "*.s3"), "/tmp/dir.v2/x.bin");
    EXPECT_EQ(withFilterExtension("name.", "*.s3"), "name.");
}

TEST(SaveName, FilterOfEveryFileAddsNothing)
{
    EXPECT_EQ(withFilterExtension("tonepatch", "*.*"), "tonepatch");
    EXPECT_EQ(withFilterExtension("tonepatch", "*"), "tonepatch");
    EXPECT_EQ(withFilterExtension("tonepatch", ""), "tonepatch");
}

TEST(SaveName, DotInAFolderDoesNotCountAsTheFilesExtension)
{
    EXPECT_EQ(withFilterExtension("/tmp/dir.v2/tonepatch", "*.s3"), "/tmp/dir.v2/tonepatch.s3");
    EXPECT_EQ(withFilterExtension("C:\\dir.v2\\tonepatch", "*.s3"), "C:\\dir.v2\\tonepatch.s3");
}

TEST(SaveName, HiddenFileNameGetsTheExtension)
{
    EXPECT_EQ(withFilterExtension("/tmp/.patch", "*.s3"), "/tmp/.patch.s3");
}

TEST(SaveName, CancelledDialogAndFolderStayEmptyOrUnchanged)
{
    EXPECT_EQ(withFilterExtension("", "*.s3"), "");
    EXPECT_EQ(withFilterExtension("/tmp/out/", "*.s3"), "/tmp/out/");
}

TEST(SaveName, PatternsWithoutAPlainExtensionGiveNone)
{
    EXPECT_EQ(filterExtension("*.s3;*.sre"), "s3");
    EXPECT_EQ(filterExtension("  *.mmf"), "mmf");
    EXPECT_EQ(filterExtension("*.s?"), "");
    EXPECT_EQ(filterExtension("name.*"), "");
    EXPECT_EQ(filterExtension("*.tar.gz"), "");
    EXPECT_EQ(filterExtension("*."), "");
}
