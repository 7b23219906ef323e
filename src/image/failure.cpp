#include "failure.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zevran::image {

namespace {

struct ReasonText {
    Reason reason;
    std::string_view key;
    std::string_view english;
};

// The English words of every reason; the shipped English.ini gives the same texts.
constexpr ReasonText kReasons[] = {
    {Reason::Text, "FailText", "%1"},
    {Reason::SystemError, "FailSystemError", "%1: %2"},
    {Reason::IsFolder, "FailIsFolder", "%1: is a folder, not a file"},
    {Reason::IsDevice, "FailIsDevice", "%1: is a device, not a file"},
    {Reason::IsDeviceOrPipe, "FailIsDeviceOrPipe", "%1: is a device or pipe, not a file"},
    {Reason::IsOpenPhoneFile, "FailIsOpenPhoneFile",
     "%1: is the phone file open in the workshop; it is changed only by saving its image"},
    {Reason::DiskFull, "FailDiskFull", "%1: could not be written (disk full?)"},
    {Reason::OverwritesInput, "FailOverwritesInput", "%1: the output would overwrite the input %2"},
    {Reason::PatchNotWritten, "FailPatchNotWritten", "%1: the patch file could not be written (disk full or removed?)"},
    {Reason::PictureNotWritten, "FailPictureNotWritten", "%1: the picture could not be written"},
    {Reason::NothingWrittenTo, "FailNothingWrittenTo", "%2; nothing was written to %1"},
    {Reason::EmptyFile, "FailEmptyFile", "%1: the file is empty"},
    {Reason::TooLargeToHold, "FailTooLargeToHold", "%1: a phone file of 2 GiB or more cannot be held"},
    {Reason::NotAsfFile, "FailNotAsfFile", "%1: is not an \"asf\" phone file, so it is never written"},
    {Reason::SizeOnDiskDiffers, "FailSizeOnDiskDiffers",
     "%1: holds %2 bytes, not the %3 of the image in memory; it is not the file the image was read from and stays as it is"},
    {Reason::PatchUnreadable, "FailPatchUnreadable", "the patch could not be read to its end"},
    {Reason::VersionPastEnd, "FailVersionPastEnd",
     "the %1 marker at 0x%2 leaves no room for the 8 version bytes inside the image"},
    {Reason::OnRow, "FailOnRow", "row %1: %2"},
    {Reason::OnLine, "FailOnLine", "line %1: %2"},
    {Reason::TableTooFewFields, "FailTableTooFewFields", "line %1: only %2 of 11 space-separated fields"},
    {Reason::TableNoStar, "FailTableNoStar", "line %1: the dimensions \"%2\" have no \"*\""},
    {Reason::WidthTooLarge, "FailWidthTooLarge", "the width %1 does not fit a 32-bit number"},
    {Reason::HeightTooLarge, "FailHeightTooLarge", "the height %1 does not fit a 32-bit number"},
    {Reason::FrameSizeTooLarge, "FailFrameSizeTooLarge", "the frame size %1 does not fit a 32-bit number"},
    {Reason::FrameCountTooLarge, "FailFrameCountTooLarge", "the frame count %1 does not fit a 32-bit number"},
    {Reason::DepthTooLarge, "FailDepthTooLarge", "the depth %1 does not fit a 32-bit number"},
    {Reason::ComputedSizeTooLarge, "FailComputedSizeTooLarge", "the frame size of %1 does not fit a 32-bit number"},
    {Reason::FramesAbove32767, "FailFramesAbove32767", "a frame count of %1 is above 32767"},
    {Reason::PictureEndPast32Bit, "FailPictureEndPast32Bit", "the picture's end lies beyond any 32-bit address"},
    {Reason::NegativeFramesOrSize, "FailNegativeFramesOrSize", "the frame count or size is negative"},
    {Reason::FramesPastImage, "FailFramesPastImage", "0x%1-0x%2 lies past the image (%3 bytes)"},
    {Reason::PictureTooLarge, "FailPictureTooLarge", "a picture of %1*%2 pixels is too large for a handset picture"},
    {Reason::NegativeDimensions, "FailNegativeDimensions", "a picture cannot have negative dimensions"},
    {Reason::FrameNumberOutOfRange, "FailFrameNumberOutOfRange",
     "frame number %1 is outside the player's count of -32768 to 32767"},
    {Reason::FramePast32Bit, "FailFramePast32Bit", "frame %1 would lie at %2, beyond any 32-bit address"},
    {Reason::MonoHasNoWidth, "FailMonoHasNoWidth", "depth 1 is the mono display memory, which has no width to guess"},
    {Reason::NotAPictureDepth, "FailNotAPictureDepth", "depth %1 is not a picture depth"},
    {Reason::WidthRangeWrong, "FailWidthRangeWrong", "the widths %1 to %2 are not between 1 and %3 in order"},
    {Reason::NoWidthFits, "FailNoWidthFits", "no width from %1 to %2 has two rows of pixels inside the image"},
    {Reason::AddressOutside32Bits, "FailAddressOutside32Bits", "address %1 is outside 32 bits"},
    {Reason::NameWithSpace, "FailNameWithSpace", "the name \"%1\" is empty or holds a space"},
    {Reason::NoFrames, "FailNoFrames", "a picture has at least one frame"},
    {Reason::PictureUnreadable, "FailPictureUnreadable", "%1: not a picture that can be read (%2)"},
    {Reason::ToneCellNotOffset, "FailToneCellNotOffset", "row %1: %2 %3 is not an offset in the image"},
    {Reason::ToneEndPastImage, "FailToneEndPastImage", "row %1: end 0x%2 lies past the image (%3)"},
    {Reason::SlotOutsideImage, "FailSlotOutsideImage",
     "row %1: the slot at 0x%2 of %3 bytes lies outside the image (%4 bytes)"},
    {Reason::FileNotReadToEnd, "FailFileNotReadToEnd", "the file could not be read to its end"},
    {Reason::TextTooLongSingle, "FailTextTooLongSingle",
     "\"%1\" takes %2 bytes in single-byte codes, more than the %3 of the string at %4"},
    {Reason::TextTooLongHandset, "FailTextTooLongHandset",
     "\"%1\" takes %2 bytes in handset codes, more than the %3 of the string at %4"},
    {Reason::OddCountForHandset, "FailOddCountForHandset",
     "the string at %1 holds %2 bytes, an odd count that handset codes (two bytes a character) cannot fill exactly"},
    {Reason::EditRowAt, "FailEditRowAt", "row %1 at %2..%3: %4"},
    {Reason::TextLengthDiffersSingle, "FailTextLengthDiffersSingle",
     "\"%1\" takes %2 bytes in single-byte codes but the string holds %3; write the list in the codes it was searched in"},
    {Reason::TextLengthDiffersHandset, "FailTextLengthDiffersHandset",
     "\"%1\" takes %2 bytes in handset codes but the string holds %3; write the list in the codes it was searched in"},
    {Reason::StringPastImage, "FailStringPastImage",
     "the string lies past the end of the image (%1 bytes); was it found in another phone file?"},
    {Reason::CodePageUnknown, "FailCodePageUnknown", "the code page %1 is not known"},
    {Reason::NotInCodePage, "FailNotInCodePage", "\"%1\" has no code in the code page %2"},
    {Reason::CountBelowFive, "FailCountBelowFive", "count field \"%1\" is below 5 in %2"},
    {Reason::NotAnSRecord, "FailNotAnSRecord", "%1 is not an S-record"},
    {Reason::S4NotMotorola, "FailS4NotMotorola", "S4 is not a Motorola record type"},
    {Reason::CountNotHex, "FailCountNotHex", "count %1 is not hex"},
    {Reason::CountLengthMismatch, "FailCountLengthMismatch", "count %1 asks for %2 characters, the line has %3"},
    {Reason::CountTooSmall, "FailCountTooSmall", "count %1 is too small for S%2"},
    {Reason::DigitNotHex, "FailDigitNotHex", "\"%1\" at character %2 is not hex"},
    {Reason::ChecksumMismatch, "FailChecksumMismatch", "checksum %1 does not match %2"},
    {Reason::RecordGrowsTooFar, "FailRecordGrowsTooFar",
     "the record at 0x%1 of %2 bytes would grow the image to 2 GiB or more"},
    {Reason::RecordPastImageEnd, "FailRecordPastImageEnd",
     "the record at 0x%1 of %2 bytes reaches past the image's end (%3 bytes)"},
    {Reason::RecordBelowExpected, "FailRecordBelowExpected",
     "record at 0x%1 lies below the address expected next, 0x%2"},
    {Reason::OnFile, "FailOnFile", "%1: %2"},
    {Reason::BinaryOutputNotWritten, "FailBinaryOutputNotWritten",
     "the binary output could not be written (disk full?)"},
    {Reason::SRecordOutputNotWritten, "FailSRecordOutputNotWritten",
     "the S-record output could not be written (disk full?)"},
    {Reason::SRecordInputNotRead, "FailSRecordInputNotRead", "the S-record input could not be read"},
    {Reason::BinaryInputNotRead, "FailBinaryInputNotRead", "the binary input could not be read"},
    {Reason::NothingToConvert, "FailNothingToConvert", "%1: the file is empty, there is nothing to convert"},
    {Reason::PastHighestAddress, "FailPastHighestAddress", "%1: the file reaches past the highest address 7FFFFFFF"},
    {Reason::NotRegularFile, "FailNotRegularFile", "%1: is not a regular file"},
    {Reason::HexTooLarge, "FailHexTooLarge", "hex value %1 is above 7FFFFFFF"},
};

struct ErrnoName {
    int number;
    std::string_view name;
};

constexpr ErrnoName kErrnoNames[] = {
    {ENOENT, "ENOENT"}, {EACCES, "EACCES"}, {EPERM, "EPERM"},     {EROFS, "EROFS"},
    {ENOSPC, "ENOSPC"}, {EISDIR, "EISDIR"}, {ENOTDIR, "ENOTDIR"}, {EEXIST, "EEXIST"},
    {EIO, "EIO"},       {EBUSY, "EBUSY"},   {ETXTBSY, "ETXTBSY"}, {ENAMETOOLONG, "ENAMETOOLONG"},
    {ELOOP, "ELOOP"},   {EXDEV, "EXDEV"},   {EDQUOT, "EDQUOT"},   {EFBIG, "EFBIG"},
    {EINVAL, "EINVAL"}, {EMFILE, "EMFILE"},
};

const ReasonText& textOf(Reason reason)
{
    for (const ReasonText& text : kReasons)
        if (text.reason == reason) return text;
    return kReasons[0];
}

// %1 .. %9 of `pattern` replaced by the values, each once, left to right.
std::string fill(std::string_view pattern, const std::vector<std::string>& values)
{
    std::string out;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (pattern[i] == '%' && next >= '1' && next <= '9') {
            const auto index = static_cast<std::size_t>(next - '1');
            if (index < values.size()) out += values[index];
            ++i;
            continue;
        }
        out += pattern[i];
    }
    return out;
}

}  // namespace

std::string_view failureKey(Reason reason) { return textOf(reason).key; }

std::string_view failureEnglish(Reason reason) { return textOf(reason).english; }

std::vector<Reason> everyReason()
{
    std::vector<Reason> reasons;
    for (const ReasonText& text : kReasons) reasons.push_back(text.reason);
    return reasons;
}

std::string systemErrorText(int errorNumber) { return std::strerror(errorNumber); }

std::string_view errnoName(int errorNumber)
{
    for (const ErrnoName& name : kErrnoNames)
        if (name.number == errorNumber) return name.name;
    return {};
}

std::string englishText(const Failure& failure)
{
    std::vector<std::string> values = failure.values;
    // The system's words stand for its error number.
    if (failure.reason == Reason::SystemError && values.size() == 2)
        values[1] = systemErrorText(std::atoi(values[1].c_str()));
    if (failure.cause) values.push_back(englishText(*failure.cause));
    return fill(failureEnglish(failure.reason), values);
}

Failure failureOf(const std::exception& error)
{
    if (const auto* own = dynamic_cast<const FailureCarrier*>(&error)) return own->failure();
    return Failure{Reason::Text, {error.what()}, nullptr};
}

}  // namespace zevran::image
