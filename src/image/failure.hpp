// Why a job failed, as a reason and the values it names (file, line, row, sizes), not
// as a sentence. The command line prints a failure in English (what()); the window
// looks its reason up as a language key and fills the values in, so that a failure
// reads in the window's language. A failure may wrap the one it was caused by (a row
// around a code-page failure), which fills the last placeholder of its text.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::image {

enum class Reason {
    Text,  // a sentence from outside the workshop's own reasons: %1
    // files
    SystemError,        // path, errno number: the system's own words
    IsFolder,           // path
    IsDevice,           // path
    IsDeviceOrPipe,     // path
    IsOpenPhoneFile,    // path
    DiskFull,           // path
    OverwritesInput,    // output, input
    PatchNotWritten,    // path
    PictureNotWritten,  // path
    NothingWrittenTo,   // output; the cause
    EmptyFile,          // path
    TooLargeToHold,     // path
    NotAsfFile,         // path
    SizeOnDiskDiffers,  // path, bytes on disk, bytes in memory
    PatchUnreadable,
    VersionPastEnd,  // marker, address
    // rows and lines around a failure
    OnRow,   // row number; the cause
    OnLine,  // line number; the cause
    // picture tables and pictures
    TableTooFewFields,     // line, fields found
    TableNoStar,           // line, dimensions
    WidthTooLarge,         // the cell
    HeightTooLarge,        // the cell
    FrameSizeTooLarge,     // the cell
    FrameCountTooLarge,    // the cell
    DepthTooLarge,         // the cell
    ComputedSizeTooLarge,  // the dimensions
    FramesAbove32767,      // row, frame count
    PictureEndPast32Bit,   // row
    NegativeFramesOrSize,  // row
    FramesPastImage,       // row, first, last, image bytes
    PictureTooLarge,       // width, height
    NegativeDimensions,
    FrameNumberOutOfRange,  // frame number
    FramePast32Bit,         // frame, address
    MonoHasNoWidth,
    NotAPictureDepth,      // depth
    WidthRangeWrong,       // least, most, widest
    NoWidthFits,           // least, most
    AddressOutside32Bits,  // address
    NameWithSpace,         // name
    NoFrames,
    PictureUnreadable,  // path, the reader's words
    // tones
    ToneCellNotOffset,  // row, "start" or "end", cell
    ToneEndPastImage,   // row, end, image bytes
    SlotOutsideImage,   // row, start, size, image bytes
    FileNotReadToEnd,
    // strings
    TextTooLongSingle,         // text, bytes used, bytes there, address
    TextTooLongHandset,        // text, bytes used, bytes there, address
    OddCountForHandset,        // address, bytes
    EditRowAt,                 // row, start, end; the cause
    TextLengthDiffersSingle,   // text, bytes used, bytes there
    TextLengthDiffersHandset,  // text, bytes used, bytes there
    StringPastImage,           // image bytes
    CodePageUnknown,           // code page
    NotInCodePage,             // character, code page
    // S-records
    CountBelowFive,  // count field, the line shown
    NotAnSRecord,    // the line shown
    S4NotMotorola,
    CountNotHex,          // count field
    CountLengthMismatch,  // count field, characters asked for, characters there
    CountTooSmall,        // count field, record type
    DigitNotHex,          // the two digits, character position
    ChecksumMismatch,     // checksum, the sum expected
    RecordGrowsTooFar,    // address, bytes
    RecordPastImageEnd,   // address, bytes, image bytes
    RecordBelowExpected,  // address, address expected
    // conversions
    OnFile,  // path; the cause
    BinaryOutputNotWritten,
    SRecordOutputNotWritten,
    SRecordInputNotRead,
    BinaryInputNotRead,
    NothingToConvert,    // path
    PastHighestAddress,  // path
    NotRegularFile,      // path
    HexTooLarge,         // hex text
};

struct Failure {
    Reason reason = Reason::Text;
    std::vector<std::string> values;
    std::shared_ptr<const Failure> cause;  // fills the last placeholder, when there is one
};

// The language key of a reason's text ("Fail" and the reason's name) and its English
// text, with %1, %2, ... for the values and the cause after them.
std::string_view failureKey(Reason reason);
std::string_view failureEnglish(Reason reason);
// Every reason, for the check that both shipped language files give each one.
std::vector<Reason> everyReason();

// The failure in English: the command line's words, and the window's where a language
// file lacks the key.
std::string englishText(const Failure& failure);

// What an exception of the workshop carries beside its English text.
class FailureCarrier {
public:
    explicit FailureCarrier(Failure failure) : m_failure(std::move(failure)) {}
    virtual ~FailureCarrier() = default;
    const Failure& failure() const { return m_failure; }

private:
    Failure m_failure;
};

// An exception of the standard kind `Base` (so that callers catching that kind still
// do) whose what() is the failure in English.
template <class Base>
class TypedError : public Base, public FailureCarrier {
public:
    explicit TypedError(Failure failure) : Base(englishText(failure)), FailureCarrier(std::move(failure)) {}
    TypedError(Reason reason, std::vector<std::string> values = {})
        : TypedError(Failure{reason, std::move(values), nullptr})
    {
    }
    // `reason` about `cause`: "row 003: " before the row's own failure.
    TypedError(Reason reason, std::vector<std::string> values, const Failure& cause)
        : TypedError(Failure{reason, std::move(values), std::make_shared<const Failure>(cause)})
    {
    }
    // A sentence from outside the workshop's reasons, shown as it is.
    explicit TypedError(const std::string& text) : TypedError(Failure{Reason::Text, {text}, nullptr}) {}
};

using WorkshopError = TypedError<std::runtime_error>;

// What `error` says as a failure: its own when it is a WorkshopError, else its text.
Failure failureOf(const std::exception& error);

// The system's word for an errno number ("No such file or directory"), English.
std::string systemErrorText(int errorNumber);
// The short name of an errno number ("ENOENT"), "" for one without a name here.
std::string_view errnoName(int errorNumber);

}  // namespace zevran::image
