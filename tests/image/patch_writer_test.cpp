#include "image/patch_writer.hpp"

#include "image/file_io.hpp"
#include "image/srecord_reader.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using namespace zevran::image;
using zevran::test::readBytes;
using zevran::test::readText;
using zevran::test::TempFolder;

TEST(WriteSRecordPatch, TwoRegionsGiveOneFileInTheirOrder)
{
    TempFolder folder;
    const std::string path = folder.path("out.s3");
    writeSRecordPatch(path, {{0x1000, 0x1000, {0xAB}}, {0x20, 0x21, {0xDE, 0xAD}}});
    EXPECT_EQ(readText(path), "S00600004844521B\r\n"
                              "S30600001000AB3E\r\n"
                              "S30700000020DEAD4D\r\n"
                              "S705A002000058\r\n");
}

TEST(WriteSRecordPatch, NoRegionsWriteNoFile)
{
    TempFolder folder;
    const std::string path = folder.path("out.s3");
    writeSRecordPatch(path, {});
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PatchImage, LaterRegionsOverwriteEarlierOnes)
{
    ImageState state;
    setImage(state, "/x.asf", std::vector<std::uint8_t>(6, 0));
    EXPECT_TRUE(patchImage(state, {{1, 3, {1, 1, 1}}, {2, 2, {2}}}));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{0, 1, 2, 1, 0, 0}));
}

TEST(PatchImage, RegionPastTheEndKeepsWhatFitsAndReportsFalse)
{
    ImageState state;
    setImage(state, "/x.asf", std::vector<std::uint8_t>(4, 0));
    EXPECT_FALSE(patchImage(state, {{3, 4, {7, 8}}}));
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{0, 0, 0, 7}));
}

TEST(Saveaxf, PhoneFileEqualsTheImageAfterASave)
{
    TempFolder folder;
    const std::string path = folder.path("phone.asf");
    zevran::test::writeFile(path, std::vector<std::uint8_t>{1, 2, 3, 4});
    ImageState state;
    setImage(state, path, readBytes(path));
    patchImage(state, {{1, 2, {9, 9}}});
    Saveaxf(state);
    EXPECT_EQ(readBytes(path), (std::vector<std::uint8_t>{1, 9, 9, 4}));
    // Nothing but the phone file is left in its folder.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.root()), {}), 1);
}

TEST(Saveaxf, FolderWhereNoTemporaryFileCanBeMadeLeavesThePhoneFileAlone)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("plain"), std::string("x"));
    ImageState state;
    setImage(state, folder.path("plain/phone.asf"), {1, 2});
    EXPECT_THROW(Saveaxf(state), FileError);
    EXPECT_EQ(readText(folder.path("plain")), "x");
}

TEST(Saveaxf, FailedRenameRemovesTheTemporaryFile)
{
    TempFolder folder;
    // A folder in the phone file's place cannot be replaced by a file.
    std::filesystem::create_directory(folder.path("phone.asf"));
    std::filesystem::create_directory(folder.path("phone.asf/inside"));
    ImageState state;
    setImage(state, folder.path("phone.asf"), {1, 2});
    EXPECT_THROW(Saveaxf(state), FileError);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.root()), {}), 1);
    EXPECT_TRUE(std::filesystem::is_directory(folder.path("phone.asf/inside")));
}

TEST(Saveaxf, FileOfAnotherLengthIsNotTheOneTheImageCameFromAndStays)
{
    TempFolder folder;
    const std::string path = folder.path("phone.asf");
    zevran::test::writeFile(path, std::vector<std::uint8_t>{1, 2, 3, 4});
    ImageState state;
    setImage(state, path, readBytes(path));
    zevran::test::writeFile(path, std::vector<std::uint8_t>{7, 7});
    try {
        Saveaxf(state);
        FAIL() << "an image was saved over a file of another length";
    } catch (const FileError& error) {
        EXPECT_EQ(std::string(error.what()),
                  path + ": holds 2 bytes, not the 4 of the image in memory; it is not the file "
                         "the image was read from and stays as it is");
    }
    EXPECT_EQ(readBytes(path), (std::vector<std::uint8_t>{7, 7}));
}

namespace {

using Image = std::vector<std::uint8_t>;

}  // namespace

TEST(ApplySRecordPatch, RecordPastTheEndIsRefusedUnlessTheImageMayGrow)
{
    // 02 02 at 0x06 in a 4-byte image: 07 + 06 + 02 + 02 = 11 -> EE.
    const std::string record = "S307000000060202EE\r\n";
    Image refused{1, 2, 3, 4};
    std::istringstream first(record);
    EXPECT_THROW(zevran::image::applySRecordPatch(refused, first), zevran::image::SRecordError);
    EXPECT_EQ(refused, (Image{1, 2, 3, 4}));
    Image grown{1, 2, 3, 4};
    std::istringstream second(record);
    zevran::image::applySRecordPatch(grown, second, zevran::image::PatchGrowth::GrowWithFF);
    EXPECT_EQ(grown, (Image{1, 2, 3, 4, 0xFF, 0xFF, 2, 2}));
}

TEST(ApplySRecordPatch, NoRecordGrowsAnImageTo2GiB)
{
    // One byte at 7FFFFFFF would make the image 2 GiB: 06 + 7F + FF + FF + FF + 00 = 382 -> 7D.
    Image image{1};
    std::istringstream patch("S3067FFFFFFF007D\r\n");
    EXPECT_THROW(zevran::image::applySRecordPatch(image, patch, zevran::image::PatchGrowth::GrowWithFF),
                 zevran::image::SRecordError);
    EXPECT_EQ(image, (Image{1}));
}
