#include "tones/tone_export.hpp"

#include "image/file_io.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zevran::tones;
using zevran::image::FileError;
using zevran::image::ImageState;
using zevran::image::PhoneDocument;
using zevran::image::Reason;
using zevran::test::readBytes;
using zevran::test::TempFolder;

namespace {

ImageState countingImage(std::size_t size)
{
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i);
    ImageState state;
    zevran::image::setImage(state, "/tmp/phone.bin", std::move(bytes));
    return state;
}

// The counting image as an open document whose phone file is not on disk.
PhoneDocument countingDocument(std::size_t size)
{
    PhoneDocument document;
    document.state() = countingImage(size);
    return document;
}

// The reason of the FileError `work` throws; Reason::Text when it throws none.
template <typename Work>
Reason fileErrorReason(Work work)
{
    try {
        work();
    } catch (const FileError& error) {
        return error.failure().reason;
    }
    return Reason::Text;
}

}  // namespace

TEST(ToneExportPath, PickedNameLosesItsExtension)
{
    EXPECT_EQ(toneExportPath("/tones/ring.mmf", "007"), "/tones/ring-007.mmf");
}

TEST(ToneExportPath, NameWithoutExtensionLosesFourCharactersAllTheSame)
{
    EXPECT_EQ(toneExportPath("/tones/ringtone", "001"), "/tones/ring-001.mmf");
}

TEST(ToneExportPath, MultiByteCharactersAreRemovedWhole)
{
    EXPECT_EQ(toneExportPath("/t/\xE9\x93\x83\xE5\xA3\xB0.mmf", "001"), "/t/\xE9\x93\x83\xE5\xA3\xB0-001.mmf");
    EXPECT_EQ(toneExportPath("/t/a\xE9\x93\x83\xE5\xA3\xB0xy", "001"), "/t/a-001.mmf");
}

TEST(ToneBytes, StartToEndInclusive)
{
    ImageState state = countingImage(64);
    auto bytes = toneBytes(state, {"001", "0x00000010", "0x00000013", "4", ""});
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), (std::vector<std::uint8_t>{16, 17, 18, 19}));
}

TEST(ToneBytes, EndBeforeStartGivesNothing)
{
    ImageState state = countingImage(64);
    EXPECT_TRUE(toneBytes(state, {"001", "0x00000010", "0x0000000F", "0", ""}).empty());
}

TEST(ToneBytes, EndPastTheImageIsRefusedNamingTheRow)
{
    ImageState state = countingImage(2 << 20);
    try {
        toneBytes(state, {"004", "0x00000010", "0x00A00000", "1", ""});
        FAIL() << "no error";
    } catch (const ToneExportError& error) {
        EXPECT_STREQ(error.what(), "row 004: end 0x00A00000 lies past the image (2 MiB)");
    }
}

TEST(ExportTones, WritesEachWantedRowAndStopsBeforeAFaultyOne)
{
    TempFolder folder;
    const PhoneDocument document = countingDocument(256);
    const std::vector<ToneSlot> rows{{"001", "0x00000001", "0x00000003", "3", ""},
                                     {"002", "0x00000004", "0x00000004", "1", ""},
                                     {"003", "0x00000010", "0x00001000", "1", ""},
                                     {"004", "0x00000020", "0x00000021", "2", ""}};
    std::vector<std::size_t> passed;
    EXPECT_THROW(exportTones(
                     document, rows, [](std::size_t i) { return i != 1; }, folder.path("ring.mmf"),
                     [&](std::size_t i) { passed.push_back(i); }),
                 ToneExportError);
    EXPECT_EQ(readBytes(folder.path("ring-001.mmf")), (std::vector<std::uint8_t>{1, 2, 3}));
    EXPECT_FALSE(std::filesystem::exists(folder.path("ring-002.mmf")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("ring-003.mmf")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("ring-004.mmf")));
    EXPECT_EQ(passed, (std::vector<std::size_t>{0, 1}));
}

TEST(ExportTones, LongerOldFileKeepsItsTail)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("ring-001.mmf"), std::string("abcdefgh"));
    exportTones(
        countingDocument(16), {{"001", "0x00000001", "0x00000002", "2", ""}}, [](std::size_t) { return true; },
        folder.path("ring.mmf"));
    EXPECT_EQ(readBytes(folder.path("ring-001.mmf")), (std::vector<std::uint8_t>{1, 2, 'c', 'd', 'e', 'f', 'g', 'h'}));
}

TEST(ExportTones, EmptyRowLeavesAnOldFileAsItWas)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("ring-001.mmf"), std::string("abc"));
    exportTones(
        countingDocument(16), {{"001", "0x00000005", "0x00000002", "0", ""}}, [](std::size_t) { return true; },
        folder.path("ring.mmf"));
    EXPECT_EQ(zevran::test::readText(folder.path("ring-001.mmf")), "abc");
}

TEST(WriteOverFileStart, UnwritablePlaceIsAFileError)
{
    TempFolder folder;
    zevran::test::writeFile(folder.path("plain"), std::string("x"));
    const std::vector<std::uint8_t> bytes{1};
    EXPECT_THROW(writeOverFileStart(folder.path("plain/t.mmf"), bytes), zevran::image::FileError);
    EXPECT_THROW(writeOverFileStart("/dev/full", bytes), zevran::image::FileError);
}

TEST(ExportTones, RefusesAToneFileThatIsThePhoneFileAndKeepsTheFilesBefore)
{
    TempFolder folder;
    std::vector<std::uint8_t> phone(64, 0xEE);
    zevran::test::writeFile(folder.path("t-002.mmf"), phone);
    PhoneDocument document;
    document.open(folder.path("t-002.mmf"));
    const std::vector<ToneSlot> rows{{"001", "0x00000001", "0x00000002", "2", ""},
                                     {"002", "0x00000003", "0x00000004", "2", ""}};
    EXPECT_EQ(fileErrorReason([&] {
                  exportTones(
                      document, rows, [](std::size_t) { return true; }, folder.path("t.mmf"));
              }),
              Reason::IsOpenPhoneFile);
    EXPECT_EQ(readBytes(folder.path("t-001.mmf")), (std::vector<std::uint8_t>{0xEE, 0xEE}));
    EXPECT_EQ(readBytes(folder.path("t-002.mmf")), phone);
}

TEST(ExportTones, RefusesThePhoneFileUnderAnotherName)
{
    TempFolder folder;
    std::vector<std::uint8_t> phone(64, 0x11);
    zevran::test::writeFile(folder.path("phone.bin"), phone);
    std::filesystem::create_hard_link(folder.path("phone.bin"), folder.path("ring-001.mmf"));
    PhoneDocument document;
    document.open(folder.path("phone.bin"));
    EXPECT_EQ(fileErrorReason([&] {
                  exportTones(
                      document, {{"001", "0x00000000", "0x00000001", "2", ""}}, [](std::size_t) { return true; },
                      folder.path("ring.mmf"));
              }),
              Reason::IsOpenPhoneFile);
    EXPECT_EQ(readBytes(folder.path("phone.bin")), phone);
}
