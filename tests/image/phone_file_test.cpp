#include "image/phone_file.hpp"

#include "image/file_io.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;
using zevran::test::TempFolder;

namespace {

ImageState imageOf(const std::string& text)
{
    ImageState state;
    setImage(state, "/tmp/phone.bin", std::vector<std::uint8_t>(text.begin(), text.end()));
    return state;
}

}  // namespace

TEST(ClassifyPhoneFile, LastLetterNMakesABinFile)
{
    EXPECT_EQ(classifyPhoneFile("/x/PHONE.BIN"), "bin");
    EXPECT_EQ(classifyPhoneFile("/x/phone.bin"), "bin");
    EXPECT_EQ(classifyPhoneFile("/x/x.cfn"), "bin");
}

TEST(ClassifyPhoneFile, LastLetterFMakesAnAsfFile)
{
    EXPECT_EQ(classifyPhoneFile("/x/phone.AXF"), "asf");
    EXPECT_EQ(classifyPhoneFile("/x/phone.asf"), "asf");
    EXPECT_EQ(classifyPhoneFile("/x/x.elf"), "asf");
}

TEST(ClassifyPhoneFile, AnyOtherLastLetterIsOther)
{
    EXPECT_EQ(classifyPhoneFile("/x/phone.s3"), "other");
    EXPECT_EQ(classifyPhoneFile(""), "other");
}

TEST(FindVersionText, SeventeenBytesAfterTheVersionStringMarker)
{
    ImageState state = imageOf("..VersionString:\x01\x02\x03V1.23-RCxyz");
    EXPECT_EQ(findVersionText(state), std::optional<std::string>("V1.23-RC"));
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(FindVersionText, TwelveBytesBeforeTheRevisionMarker)
{
    ImageState state = imageOf("..AB12CD34....Rev S");
    EXPECT_EQ(findVersionText(state), std::optional<std::string>("AB12CD34"));
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(FindVersionText, VersionStringIsPreferredOverRevision)
{
    ImageState state = imageOf("..AB12CD34....Rev S..VersionString:...12345678");
    EXPECT_EQ(findVersionText(state), std::optional<std::string>("12345678"));
}

TEST(FindVersionText, NoMarkerGivesNone)
{
    ImageState state = imageOf("nothing to see here");
    EXPECT_EQ(findVersionText(state), std::nullopt);
}

TEST(FindVersionText, MarkerAtIndexZeroIsNotFound)
{
    ImageState state = imageOf("VersionString:...12345678");
    EXPECT_EQ(findVersionText(state), std::nullopt);
}

TEST(FindVersionText, VersionStringTooNearTheEndFails)
{
    // 24 bytes from the marker's start: one short of the 25 needed.
    ImageState state = imageOf(".VersionString:...1234567");
    EXPECT_THROW(findVersionText(state), VersionOutOfImage);
}

TEST(FindVersionText, VersionStringWithExactlyTwentyFiveBytesFits)
{
    ImageState state = imageOf(".VersionString:...12345678");
    EXPECT_EQ(findVersionText(state), std::optional<std::string>("12345678"));
}

TEST(FindVersionText, RevisionWithinTheFirstTwelveBytesFails)
{
    ImageState state = imageOf("12345678901Rev S");
    EXPECT_THROW(findVersionText(state), VersionOutOfImage);
}

TEST(FindVersionText, SearchesFromTheStartWhateverTheLastMatch)
{
    ImageState state = imageOf("..AB12CD34....Rev S");
    state.LastMatch = 10;
    EXPECT_EQ(findVersionText(state), std::optional<std::string>("AB12CD34"));
}

TEST(LoadPhoneFile, ReadsTheWholeFileAndClassifiesIt)
{
    TempFolder folder;
    const std::string path = folder.path("phone.asf");
    zevran::test::writeFile(path, std::string("\x00\x01\x02", 3));
    ImageState state;
    state.LastMatch = 5;
    loadPhoneFile(state, path);
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{0, 1, 2}));
    EXPECT_EQ(state.FirmwareLength, 3);
    EXPECT_EQ(state.FirmwarePath, path);
    EXPECT_EQ(state.FileKind, "asf");
    EXPECT_TRUE(state.ImageLoaded);
    EXPECT_EQ(state.LastMatch, 0);
}

TEST(LoadPhoneFile, UnknownKindStaysLoadedButNotReady)
{
    TempFolder folder;
    const std::string path = folder.path("patch.s3");
    zevran::test::writeFile(path, std::string("S3"));
    ImageState state;
    loadPhoneFile(state, path);
    EXPECT_EQ(state.FileKind, "other");
    EXPECT_FALSE(state.ImageLoaded);
    EXPECT_EQ(state.FirmwareLength, 2);
}

TEST(LoadPhoneFile, EmptyFileLeavesThePreviousImage)
{
    TempFolder folder;
    const std::string path = folder.path("empty.bin");
    zevran::test::writeFile(path, std::string());
    ImageState state;
    setImage(state, "/old.bin", {9, 9});
    EXPECT_THROW(loadPhoneFile(state, path), EmptyPhoneFile);
    EXPECT_EQ(state.FirmwareImage, (std::vector<std::uint8_t>{9, 9}));
}

TEST(LoadPhoneFile, MissingFileIsAFileErrorNamingIt)
{
    TempFolder folder;
    ImageState state;
    try {
        loadPhoneFile(state, folder.path("gone.bin"));
        FAIL() << "no error";
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("gone.bin"), std::string::npos);
    }
}

TEST(LoadPhoneFile, FolderIsAFileError)
{
    TempFolder folder;
    ImageState state;
    EXPECT_THROW(loadPhoneFile(state, folder.root().string()), FileError);
}
