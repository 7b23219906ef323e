// The export job both front ends run: every frame of every row as the preview writes
// it, rows of a depth no picture is drawn of named, the phone file never written, and
// a failing row stopping the export with what was written before it.
#include "pictures/picture_export_job.hpp"
#include "pictures/picture_player.hpp"

#include "image/failure.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zevran::pictures;
using zevran::image::PhoneDocument;
using zevran::test::readBytes;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

// 16 bytes 00..0F as a "bin" phone file.
PhoneDocument countingImage(const TempFolder& folder)
{
    std::vector<std::uint8_t> bytes(16);
    for (std::size_t k = 0; k < bytes.size(); ++k) bytes[k] = static_cast<std::uint8_t>(k);
    writeFile(folder.path("phone.bin"), bytes);
    PhoneDocument document;
    document.open(folder.path("phone.bin"));
    return document;
}

}  // namespace

TEST(PictureExportJob, EveryFrameIsWrittenAsThePreviewWritesIt)
{
    TempFolder folder;
    const PhoneDocument document = countingImage(folder);
    // Two 24-bit frames of 1x1 pixel, 3 bytes apart from 0x02; one 8-bit frame.
    const std::vector<PictureEntry> rows{{"001", "dot", "0X00000002", "2", "3", "1*1", "24"},
                                         {"002", "grey", "0X00000000", "1", "2", "2*1", "8"}};
    std::vector<std::string> events;
    ExportListener listener;
    listener.rowStarted = [&](std::size_t row, std::int64_t frames) {
        events.push_back("row " + std::to_string(row) + " of " + std::to_string(frames));
    };
    listener.frameDone = [&](std::size_t row, std::int64_t frame, FrameExport) {
        events.push_back(std::to_string(row) + "." + std::to_string(frame));
    };
    listener.rowDone = [&](std::size_t row) { events.push_back("done " + std::to_string(row)); };
    const ExportTally tally = exportRows(document, rows, folder.root().string(), folder.path("16.dat"), listener);
    EXPECT_EQ(tally.written, 3);
    EXPECT_TRUE(tally.skippedRows.empty());
    EXPECT_EQ(events, (std::vector<std::string>{"row 0 of 2", "0.0", "0.1", "done 0", "row 1 of 1", "1.0", "done 1"}));
    const FrameGeometry dot = frameGeometry(rows[0]);
    ASSERT_TRUE(decodePreviewFrame(document.bytes(), dot, frameAddress(dot, 1), folder.path("expected.bmp"),
                                   folder.path("16.dat")));
    EXPECT_EQ(readBytes(folder.path("dot-02.bmp")), readBytes(folder.path("expected.bmp")));
    EXPECT_TRUE(std::filesystem::exists(folder.path("dot-01.bmp")));
    EXPECT_TRUE(std::filesystem::exists(folder.path("grey-01.bmp")));
}

TEST(PictureExportJob, ARowOfADepthNoPictureIsDrawnOfIsNamedAndWritesNothing)
{
    TempFolder folder;
    const PhoneDocument document = countingImage(folder);
    const std::vector<PictureEntry> rows{{"004", "odd", "0X00000000", "2", "2", "2*2", "2"}};
    std::vector<FrameExport> outcomes;
    ExportListener listener;
    listener.frameDone = [&](std::size_t, std::int64_t, FrameExport outcome) { outcomes.push_back(outcome); };
    const ExportTally tally = exportRows(document, rows, folder.root().string() + "/", folder.path("16.dat"), listener);
    EXPECT_EQ(tally.written, 0);
    EXPECT_EQ(tally.skippedRows, std::vector<std::string>{"004"});
    EXPECT_EQ(outcomes, (std::vector<FrameExport>{FrameExport::DepthNotDrawable, FrameExport::DepthNotDrawable}));
    EXPECT_FALSE(std::filesystem::exists(folder.path("odd-01.bmp")));
}

TEST(PictureExportJob, AFailingRowStopsTheExportWithWhatWasWritten)
{
    TempFolder folder;
    const PhoneDocument document = countingImage(folder);
    const std::vector<PictureEntry> rows{{"001", "dot", "0X00000002", "1", "3", "1*1", "24"},
                                         {"002", "no/such", "0X00000002", "1", "3", "1*1", "24"},
                                         {"003", "late", "0X00000002", "1", "3", "1*1", "24"}};
    try {
        exportRows(document, rows, folder.root().string(), folder.path("16.dat"));
        FAIL() << "a picture was written into a missing folder";
    } catch (const RowExportError& error) {
        EXPECT_EQ(error.row, 1u);
        EXPECT_EQ(error.tally.written, 1);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path("late-01.bmp")));
}

TEST(PictureExportJob, ThePhoneFileIsNeverAFramesPicture)
{
    TempFolder folder;
    const PhoneDocument document = countingImage(folder);
    std::filesystem::create_symlink(folder.path("phone.bin"), folder.path("dot-01.bmp"));
    const FrameGeometry geometry = frameGeometry({"001", "dot", "0X00000002", "1", "3", "1*1", "24"});
    try {
        exportFrame(document, geometry, 0, folder.path("dot-01.bmp"), folder.path("16.dat"));
        FAIL() << "the phone file was written as a picture";
    } catch (const zevran::image::WorkshopError& error) {
        EXPECT_EQ(error.failure().reason, zevran::image::Reason::IsOpenPhoneFile);
    }
    EXPECT_EQ(readBytes(folder.path("phone.bin")).size(), 16u);
}

TEST(PictureExportJob, ThePatchOfRowsLeavesEmptyRowsOutAndNamesThem)
{
    TempFolder folder;
    const PhoneDocument document = countingImage(folder);
    const std::vector<PictureEntry> rows{{"001", "dot", "0X00000002", "2", "3", "1*1", "24"},
                                         {"002", "none", "0X00000004", "0", "3", "1*1", "24"}};
    const RowsPatch patch = rowsPatch(document, rows);
    ASSERT_EQ(patch.regions.size(), 1u);
    EXPECT_EQ(patch.regions[0].first, 2);
    EXPECT_EQ(patch.regions[0].last, 7);
    EXPECT_EQ(patch.regions[0].bytes, (std::vector<std::uint8_t>{2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(patch.emptyRows, std::vector<std::size_t>{1});
}
