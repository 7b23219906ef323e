#include "image/file_io.hpp"
#include "image/output_file.hpp"
#include "image/phone_document.hpp"
#include "image/phone_file.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zevran::image;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

using Bytes = std::vector<std::uint8_t>;

Region region(std::int32_t first, const std::string& letters)
{
    return {first, first + static_cast<std::int32_t>(letters.size()) - 1, Bytes(letters.begin(), letters.end())};
}

std::string imageText(const PhoneDocument& document)
{
    return std::string(document.bytes().begin(), document.bytes().end());
}

Reason reasonOf(const std::exception& error) { return failureOf(error).reason; }

// A document opened on the phone file `name` in `folder`, holding `bytes`.
PhoneDocument openedOn(const TempFolder& folder, const std::string& name, const std::string& bytes)
{
    writeFile(folder.path(name), bytes);
    PhoneDocument document;
    document.open(folder.path(name));
    return document;
}

}  // namespace

TEST(PhoneDocument, OpeningTakesBytesPathAndKindWithNothingUnsaved)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), "0123456789");
    PhoneDocument document;
    EXPECT_FALSE(document.loaded());
    document.open(folder.path("phone.bin"));
    EXPECT_EQ(imageText(document), "0123456789");
    EXPECT_EQ(document.path(), folder.path("phone.bin"));
    EXPECT_EQ(document.kind(), "bin");
    EXPECT_EQ(document.state().FirmwareLength, 10);
    EXPECT_TRUE(document.takesSRecordPatch());
    EXPECT_FALSE(document.takesInImagePatch());
    EXPECT_FALSE(document.modified());
    EXPECT_TRUE(document.mayReplaceWithoutAsking());
}

TEST(PhoneDocument, AFileOfNoKnownKindIsHeldButNotLoaded)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.s3", "S0");
    EXPECT_EQ(document.kind(), "other");
    EXPECT_FALSE(document.loaded());
    EXPECT_FALSE(document.takesSRecordPatch());
    EXPECT_FALSE(document.takesInImagePatch());
}

TEST(PhoneDocument, ChangesAskBeforeReplacingUntilUndoneSavedOrWritten)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.asf", "ABCDEFGH");
    EXPECT_TRUE(document.patch({region(2, "xy")}));
    EXPECT_EQ(imageText(document), "ABxyEFGH");
    EXPECT_FALSE(document.mayReplaceWithoutAsking());
    EXPECT_EQ(document.originals().changedRegions(document.bytes()).size(), 1u);
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(imageText(document), "ABCDEFGH");
    EXPECT_TRUE(document.mayReplaceWithoutAsking());
    EXPECT_TRUE(document.redo());
    EXPECT_FALSE(document.redo());
    document.save();
    EXPECT_EQ(readText(folder.path("phone.asf")), "ABxyEFGH");
    EXPECT_TRUE(document.mayReplaceWithoutAsking());
    EXPECT_TRUE(document.originals().changedRegions(document.bytes()).empty());
    // Undoing past the save differs from the file again.
    EXPECT_TRUE(document.undo());
    EXPECT_FALSE(document.mayReplaceWithoutAsking());
    document.patchWritten();
    EXPECT_TRUE(document.mayReplaceWithoutAsking());
}

TEST(PhoneDocument, ARegionPastTheEndIsCutAndSaidSo)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.asf", "ABCD");
    EXPECT_FALSE(document.patch({region(2, "wxyz")}));
    EXPECT_EQ(imageText(document), "ABwx");
}

TEST(PhoneDocument, OpeningAgainDropsTheHistory)
{
    TempFolder folder;
    writeFile(folder.path("a.asf"), "AAAA");
    writeFile(folder.path("b.bin"), "BBBBBB");
    PhoneDocument document;
    document.open(folder.path("a.asf"));
    document.patch({region(0, "x")});
    document.open(folder.path("b.bin"));
    EXPECT_EQ(imageText(document), "BBBBBB");
    EXPECT_FALSE(document.canUndo());
    EXPECT_FALSE(document.modified());
    EXPECT_EQ(document.kind(), "bin");
}

TEST(PhoneDocument, AnUnreadableFileLeavesTheDocumentAsItWas)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "a.asf", "AAAA");
    document.patch({region(0, "x")});
    EXPECT_THROW(document.open(folder.path("missing.bin")), FileError);
    EXPECT_EQ(document.path(), folder.path("a.asf"));
    EXPECT_EQ(imageText(document), "xAAA");
    EXPECT_TRUE(document.canUndo());
}

TEST(PhoneDocument, AnEmptyFileTakesThePathButNotTheBytesAndNoSaveLandsThere)
{
    TempFolder folder;
    writeFile(folder.path("a.asf"), "AAAA");
    writeFile(folder.path("empty.asf"), "");
    PhoneDocument document;
    document.open(folder.path("a.asf"));
    document.patch({region(0, "x")});
    try {
        document.open(folder.path("empty.asf"));
        FAIL() << "an empty file opened";
    } catch (const EmptyPhoneFile& error) {
        EXPECT_EQ(reasonOf(error), Reason::EmptyFile);
    }
    EXPECT_EQ(document.path(), folder.path("empty.asf"));
    EXPECT_EQ(imageText(document), "xAAA");
    try {
        document.save();
        FAIL() << "the old image was saved over the empty file";
    } catch (const FileError& error) {
        EXPECT_EQ(reasonOf(error), Reason::SizeOnDiskDiffers);
    }
    EXPECT_EQ(readText(folder.path("empty.asf")), "");
}

TEST(PhoneDocument, AVersionMarkerAtTheEndLeavesAFileOfNoKind)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.bin", "........VersionString:ab");
    EXPECT_THROW(document.readVersion(), VersionOutOfImage);
    EXPECT_EQ(document.kind(), "other");
    EXPECT_FALSE(document.takesSRecordPatch());
}

TEST(PhoneDocument, ReadsTheVersionBytes)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.bin", "head VersionString:...V1.2.3-4 tail");
    EXPECT_EQ(document.readVersion(), std::optional<std::string>("V1.2.3-4"));
    EXPECT_EQ(document.state().LastMatch, 0);
}

TEST(PhoneDocument, KnowsItsPhoneFileUnderAnotherNameOrLink)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), "0123");
    writeFile(folder.path("other.bin"), "0123");
    std::filesystem::create_symlink(folder.path("phone.bin"), folder.path("link.s3"));
    PhoneDocument document;
    EXPECT_FALSE(document.isPhoneFile(folder.path("phone.bin")));
    document.open(folder.path("phone.bin"));
    EXPECT_TRUE(document.isPhoneFile(folder.path("phone.bin")));
    EXPECT_TRUE(document.isPhoneFile(folder.path("link.s3")));
    EXPECT_TRUE(document.isPhoneFile(folder.root().string() + "/./phone.bin"));
    EXPECT_FALSE(document.isPhoneFile(folder.path("other.bin")));
    EXPECT_FALSE(document.isPhoneFile(folder.path("new.s3")));
}

TEST(PhoneDocument, RefusesItsPhoneFileAsAnOutputSayingWhy)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), "phone");
    std::filesystem::create_directory(folder.path("sub"));
    PhoneDocument document;
    EXPECT_NO_THROW(document.refuseAsOutput(folder.path("phone.bin")));
    document.open(folder.path("phone.bin"));
    try {
        document.refuseAsOutput(folder.path("sub/../phone.bin"));
        FAIL() << "the phone file was taken as an output";
    } catch (const FileError& error) {
        EXPECT_EQ(std::string(error.what()),
                  folder.path("sub/../phone.bin") +
                      ": is the phone file open in the workshop; it is changed only by saving its image");
    }
    EXPECT_NO_THROW(document.refuseAsOutput(folder.path("other.s3")));
}

TEST(EditOutput, APatchIsNeverWrittenOverThePhoneFile)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), "0123");
    std::filesystem::create_symlink(folder.path("phone.bin"), folder.path("link.s3"));
    PhoneDocument document;
    document.open(folder.path("phone.bin"));
    for (const char* name : {"phone.bin", "link.s3"}) {
        try {
            writeEditsAsPatch(document, folder.path(name), {region(0, "x")});
            FAIL() << name << " was written";
        } catch (const FileError& error) {
            EXPECT_EQ(reasonOf(error), Reason::IsOpenPhoneFile);
        }
    }
    EXPECT_EQ(readText(folder.path("phone.bin")), "0123");
}

TEST(EditOutput, APatchHoldsTheRegionsAndNoRegionsWriteNothing)
{
    TempFolder folder;
    PhoneDocument document = openedOn(folder, "phone.bin", "0123");
    writeEditsAsPatch(document, folder.path("patch.s3"), {region(1, "AB")});
    EXPECT_EQ(readText(folder.path("patch.s3")), "S00600004844521B\r\nS30700000001414274\r\nS705A002000058\r\n");
    writeEditsAsPatch(document, folder.path("none.s3"), {});
    EXPECT_FALSE(std::filesystem::exists(folder.path("none.s3")));
}

TEST(EditOutput, AFailedWriteKeepsTheOldOutputAndNamesIt)
{
    TempFolder folder;
    writeFile(folder.path("out.s3"), "old patch");
    try {
        writeThroughTemporary(folder.path("out.s3"), [](const std::string& path) {
            writeFile(path, "half");
            throw FileError(Reason::DiskFull, {path});
        });
        FAIL() << "the failure was swallowed";
    } catch (const OutputNotWritten& error) {
        const Failure& failure = error.failure();
        EXPECT_EQ(failure.reason, Reason::NothingWrittenTo);
        EXPECT_EQ(failure.values, std::vector<std::string>{folder.path("out.s3")});
        ASSERT_TRUE(failure.cause);
        EXPECT_EQ(failure.cause->reason, Reason::DiskFull);
        EXPECT_EQ(failure.cause->values, std::vector<std::string>{folder.path("out.s3")});
        EXPECT_EQ(std::string(error.what()).find(folder.path("out.s3") + ": "), 0u);
        EXPECT_NE(std::string(error.what()).find("; nothing was written to " + folder.path("out.s3")),
                  std::string::npos);
    }
    EXPECT_EQ(readText(folder.path("out.s3")), "old patch");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.root()), {}), 1);
}
