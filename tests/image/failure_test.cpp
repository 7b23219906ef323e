// Failures as reasons and values: the English words the command line prints, the
// failure a row wraps, and the shipped language files that give every reason's text.
#include "image/failure.hpp"
#include "image/file_io.hpp"
#include "image/srecord_reader.hpp"

#include "settings/profile_file.hpp"

#include <gtest/gtest.h>

#include <cerrno>

using namespace zevran::image;

TEST(Failure, EnglishFillsTheValuesInOrder)
{
    const WorkshopError error(Reason::SizeOnDiskDiffers, {"/p/a.asf", "0", "4"});
    EXPECT_STREQ(error.what(),
                 "/p/a.asf: holds 0 bytes, not the 4 of the image in memory; it is not the file the image "
                 "was read from and stays as it is");
    EXPECT_EQ(error.failure().reason, Reason::SizeOnDiskDiffers);
    EXPECT_EQ(error.failure().values, (std::vector<std::string>{"/p/a.asf", "0", "4"}));
}

TEST(Failure, AValueHoldingAPlaceholderStaysAsItIs)
{
    EXPECT_STREQ(WorkshopError(Reason::OverwritesInput, {"%2.s3", "in"}).what(),
                 "%2.s3: the output would overwrite the input in");
}

TEST(Failure, RowWrapsTheFailureItLedTo)
{
    const Failure cause{Reason::NotInCodePage, {"\xE2\x82\xAC", "ISO-8859-1"}, nullptr};
    const WorkshopError error(Reason::EditRowAt, {"03", "0x10", "0x13"}, cause);
    EXPECT_STREQ(error.what(), "row 03 at 0x10..0x13: \"\xE2\x82\xAC\" has no code in the code page ISO-8859-1");
    ASSERT_TRUE(error.failure().cause);
    EXPECT_EQ(error.failure().cause->reason, Reason::NotInCodePage);
}

TEST(Failure, SystemErrorNamesThePathAndTheSystemsWords)
{
    const FileError error = fileSystemError("/x/y.bin", ENOENT);
    EXPECT_EQ(std::string(error.what()), "/x/y.bin: " + systemErrorText(ENOENT));
    EXPECT_EQ(error.failure().values, (std::vector<std::string>{"/x/y.bin", std::to_string(ENOENT)}));
    EXPECT_EQ(errnoName(ENOENT), "ENOENT");
    EXPECT_EQ(errnoName(-1), "");
}

TEST(Failure, StandardKindsAreKeptForTheirCallers)
{
    EXPECT_THROW(throw TypedError<std::out_of_range>(Reason::NoFrames), std::out_of_range);
    try {
        throw TypedError<std::length_error>(Reason::PictureTooLarge, {"9", "9"});
    } catch (const std::exception& error) {
        EXPECT_EQ(failureOf(error).reason, Reason::PictureTooLarge);
    }
    EXPECT_EQ(failureOf(std::runtime_error("outside")).values, std::vector<std::string>{"outside"});
}

// The shipped English file gives each reason in the words the command line prints,
// and the Chinese file gives each reason too.
TEST(Failure, BothShippedLanguagesGiveEveryReason)
{
    const zevran::app::ProfileFile english(ZEVRAN_DATA_DIR "/language/English.ini");
    const zevran::app::ProfileFile chinese(ZEVRAN_DATA_DIR "/language/ChineseS.ini");
    for (const Reason reason : everyReason()) {
        if (reason == Reason::Text) continue;
        const std::string key(failureKey(reason));
        EXPECT_EQ(english.read("Zevran", key).value_or("(missing)"), failureEnglish(reason)) << key;
        const std::string translated = chinese.read("Zevran", key).value_or("");
        EXPECT_FALSE(translated.empty()) << key;
        EXPECT_NE(translated, failureEnglish(reason)) << key;
    }
}

TEST(Failure, SRecordLineFailureNamesTheLineAndItsReason)
{
    zevran::image::SRecordData record;
    try {
        zevran::image::readStrictRecord("S30700000020DEAD00", 4, record);
        FAIL() << "no error";
    } catch (const std::exception& error) {
        const Failure failure = failureOf(error);
        EXPECT_EQ(failure.reason, Reason::OnLine);
        EXPECT_EQ(failure.values, std::vector<std::string>{"4"});
        ASSERT_TRUE(failure.cause);
        EXPECT_EQ(failure.cause->reason, Reason::ChecksumMismatch);
        EXPECT_EQ(failure.cause->values, (std::vector<std::string>{"00", "4D"}));
        EXPECT_STREQ(error.what(), "line 4: checksum 00 does not match 4D");
    }
}
