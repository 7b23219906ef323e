#include "image/file_io.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using namespace zevran::image;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

const std::vector<std::uint8_t> kBytes{'n', 'e', 'w'};

std::string whatOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const FileError& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(SaveFileSafely, FullDiskIsReportedAndTheDeviceStaysADevice)
{
    EXPECT_EQ(whatOf([] { saveFileSafely("/dev/full", kBytes); }), "/dev/full: No space left on device");
    struct stat info {};
    ASSERT_EQ(::stat("/dev/full", &info), 0);
    EXPECT_TRUE(S_ISCHR(info.st_mode));
}

TEST(SaveFileSafely, FolderIsRefused)
{
    TempFolder folder;
    EXPECT_EQ(whatOf([&] { saveFileSafely(folder.root().string(), kBytes); }),
              folder.root().string() + ": is a folder, not a file");
}

TEST(SaveFileSafely, PathBelowARegularFileIsReportedAndNothingIsMade)
{
    TempFolder folder;
    writeFile(folder.path("plain"), "keep");
    const std::string message = whatOf([&] { saveFileSafely(folder.path("plain") + "/phone.asf", kBytes); });
    EXPECT_NE(message.find(folder.path("plain")), std::string::npos) << message;
    EXPECT_NE(message.find("Not a directory"), std::string::npos) << message;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.root()), {}), 1);
}

TEST(SaveFileSafely, LinkKeepsPointingAtTheSavedFile)
{
    TempFolder folder;
    writeFile(folder.path("real.asf"), "old bytes");
    std::filesystem::create_symlink(folder.path("real.asf"), folder.path("link.asf"));
    saveFileSafely(folder.path("link.asf"), kBytes);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.asf")));
    EXPECT_EQ(zevran::test::readBytes(folder.path("real.asf")), kBytes);
}

TEST(SaveFileSafely, ReplacedFileKeepsItsPermissions)
{
    TempFolder folder;
    writeFile(folder.path("phone.asf"), "old");
    ::chmod(folder.path("phone.asf").c_str(), 0640);
    saveFileSafely(folder.path("phone.asf"), kBytes);
    struct stat info {};
    ASSERT_EQ(::stat(folder.path("phone.asf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(zevran::test::readBytes(folder.path("phone.asf")), kBytes);
}

TEST(ReadWholeFile, FolderAndMissingFileNameThePath)
{
    TempFolder folder;
    EXPECT_EQ(whatOf([&] { readWholeFile(folder.root().string()); }),
              folder.root().string() + ": is a folder, not a file");
    EXPECT_EQ(whatOf([&] { readWholeFile(folder.path("none.bin")); }),
              folder.path("none.bin") + ": No such file or directory");
}

TEST(ReadWholeFile, EndlessDeviceIsRefusedRatherThanReadForever)
{
    EXPECT_EQ(whatOf([] { readWholeFile("/dev/zero"); }), "/dev/zero: is a device, not a file");
    EXPECT_EQ(whatOf([] { readWholeFile("/dev/full"); }), "/dev/full: is a device, not a file");
}

TEST(ReadWholeFile, FileThatCannotBeReadNamesThePath)
{
    // Read from its start, a process's memory file refuses whoever asks, root included.
    EXPECT_EQ(whatOf([] { readWholeFile("/proc/self/mem"); }).rfind("/proc/self/mem: ", 0), 0u);
}

TEST(ReadWholeFile, NamedPipeWithoutWriterReadsEmptyInsteadOfWaiting)
{
    TempFolder folder;
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(readWholeFile(folder.path("pipe")).empty());
    EXPECT_EQ(whatOf([&] { requireRegularFile(folder.path("pipe")); }),
              folder.path("pipe") + ": is a device or pipe, not a file");
}

TEST(SaveFileSafely, ReadOnlyFileIsNotReplaced)
{
    if (::geteuid() == 0) GTEST_SKIP() << "permission bits do not stop root";
    TempFolder folder;
    writeFile(folder.path("phone.asf"), "old");
    ::chmod(folder.path("phone.asf").c_str(), 0444);
    EXPECT_EQ(whatOf([&] { saveFileSafely(folder.path("phone.asf"), kBytes); }),
              folder.path("phone.asf") + ": Permission denied");
    EXPECT_EQ(zevran::test::readText(folder.path("phone.asf")), "old");
}
