// The import job both front ends run: the row refused before any file, the folder's
// pictures all found before any is read, and each stop naming its frame and file.
#include "pictures/picture_import_job.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <map>

using namespace zevran::pictures;
using zevran::test::TempFolder;
using zevran::test::writeFile;
using Bytes = std::vector<std::uint8_t>;

namespace {

// Depth 24, 1x1 pixel a frame of 3 bytes, `frames` frames from 0x00000002.
PictureEntry row24(const std::string& frames, const std::string& depth = "24")
{
    return {"007", "dot", "0X00000002", frames, "3", "1*1", depth};
}

PictureGrid pixel(std::uint8_t red, std::uint8_t green, std::uint8_t blue) { return {1, 1, {red, green, blue}, {}}; }

// A reader that knows the files by name and throws for any other.
PictureReader readerOf(const std::map<std::string, PictureGrid>& files)
{
    return [files](const std::string& file, const ColourTable&) {
        const auto found = files.find(file);
        if (found == files.end()) throw std::runtime_error(file + ": not a picture");
        return found->second;
    };
}

}  // namespace

TEST(PictureImportJob, EveryFramesPictureBecomesItsRegionWithTheChangedBytesCounted)
{
    const ImportableRow row = importableRow(row24("2"), "no-16.dat");
    const Bytes image{0xEE, 0xEE, 0x03, 0x02, 0x01, 0x00, 0x00, 0x00, 0xEE};
    const auto pictures = std::vector<FramePicture>{{0, "a.bmp"}, {1, "b.bmp"}};
    const RowImportResult result =
        importPictures(image, row, pictures, readerOf({{"a.bmp", pixel(1, 2, 3)}, {"b.bmp", pixel(4, 5, 6)}}));
    ASSERT_EQ(result.regions.size(), 2u);
    EXPECT_EQ(result.regions[0].first, 2);
    EXPECT_EQ(result.regions[0].bytes, (Bytes{0x03, 0x02, 0x01}));
    EXPECT_EQ(result.regions[1].first, 5);
    EXPECT_EQ(result.regions[1].bytes, (Bytes{0x06, 0x05, 0x04}));
    // The first frame already held its picture: only the second's three bytes change.
    EXPECT_EQ(result.changedBytes, 3);
    EXPECT_EQ(result.unstoredPixels, (std::vector<std::int64_t>{0, 0}));
}

TEST(PictureImportJob, ARowOfADepthNoPictureFitsIsRefusedWithTheEncodersReason)
{
    try {
        importableRow(row24("1", "7"), "no-16.dat");
        FAIL() << "a 7-bit row was importable";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::RowRefused);
        ASSERT_TRUE(error.refusal);
        EXPECT_EQ(error.refusal->reason(), ImportRefusal::Depth);
    }
}

TEST(PictureImportJob, APictureGoesOnlyIntoAFrameOfTheRow)
{
    const ImportableRow row = importableRow(row24("2"), "no-16.dat");
    EXPECT_EQ(onePicture(row, 1, "x.bmp").front().frame, 1);
    try {
        onePicture(row, 2, "x.bmp");
        FAIL() << "frame 3 of 2 took a picture";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::NoSuchFrame);
        ASSERT_TRUE(error.refusal);
        EXPECT_EQ(error.refusal->values(), (std::vector<std::string>{"3", "2"}));
    }
}

TEST(PictureImportJob, AFolderGivesEveryFrameOrNamesTheFirstMissing)
{
    TempFolder folder;
    const ImportableRow row = importableRow(row24("3"), "no-16.dat");
    writeFile(folder.path("dot-01.bmp"), "");
    writeFile(folder.path("dot-02.png"), "");
    try {
        folderPictures(row, folder.root().string());
        FAIL() << "a folder without frame 3 was taken";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::PictureMissing);
        EXPECT_EQ(error.frame, 2);
        EXPECT_EQ(error.file, folder.path("dot-03.bmp"));
    }
    writeFile(folder.path("dot-03.bmp"), "");
    const auto pictures = folderPictures(row, folder.root().string());
    ASSERT_EQ(pictures.size(), 3u);
    EXPECT_EQ(pictures[1].file, folder.path("dot-02.png"));
    EXPECT_EQ(pictures[2].frame, 2);
}

TEST(PictureImportJob, ARowWithoutFramesTakesNoFolder)
{
    const ImportableRow row = importableRow(row24("0"), "no-16.dat");
    try {
        folderPictures(row, "/nowhere");
        FAIL() << "a row of 0 frames took a folder";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::NoFrames);
        EXPECT_EQ(error.frames, 0);
    }
}

TEST(PictureImportJob, TheFirstPictureThatCannotBeReadOrDoesNotFitStopsTheImport)
{
    const ImportableRow row = importableRow(row24("2"), "no-16.dat");
    const Bytes image(9, 0);
    try {
        importPictures(image, row, {{0, "a.bmp"}, {1, "gone.bmp"}}, readerOf({{"a.bmp", pixel(1, 2, 3)}}));
        FAIL() << "an unreadable picture was imported";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::Unreadable);
        EXPECT_EQ(error.frame, 1);
        EXPECT_EQ(error.file, "gone.bmp");
        EXPECT_STREQ(error.what(), "gone.bmp: not a picture");
    }
    try {
        importPictures(image, row, {{0, "wide.bmp"}}, readerOf({{"wide.bmp", {2, 1, Bytes(6, 0), {}}}}));
        FAIL() << "a 2x1 picture went into a 1x1 frame";
    } catch (const RowImportError& error) {
        EXPECT_EQ(error.stop, ImportStop::Refused);
        ASSERT_TRUE(error.refusal);
        EXPECT_EQ(error.refusal->reason(), ImportRefusal::PictureSize);
    }
}

TEST(PictureImportJob, ChangedBytesCountEachAddressOnce)
{
    const Bytes image{0, 0, 0, 0};
    // Addresses 1 and 2 are counted from the first region only: 0 and 2 change, 3 does not.
    EXPECT_EQ(changedByteCount(image, {{1, 3, {1, 1, 0}}, {0, 2, {1, 0, 1}}}), 2);
    EXPECT_EQ(changedByteCount(image, {}), 0);
}
