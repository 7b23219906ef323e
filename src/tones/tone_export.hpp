// Exporting tones: each row's image bytes, start to end, as its own ".mmf" file.
#pragma once

#include "image/failure.hpp"
#include "image/phone_document.hpp"

#include "tone_scan.hpp"

#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::tones {

// A row that cannot be exported; the message names the row and the reason.
class ToneExportError : public image::WorkshopError {
public:
    using TypedError::TypedError;
};

// The picked path less its last four characters (its ".mmf", or whatever stands
// there), then "-", the row number and ".mmf": ring.mmf and row 007 give ring-007.mmf.
std::string toneExportPath(std::string_view pickedPath, std::string_view number);

// The image bytes from the row's start to its end offset, both included; none when
// the end lies before the start. Throws ToneExportError when they lie outside the
// image, as for a table made from another image.
std::span<const std::uint8_t> toneBytes(const image::ImageState& state, const ToneSlot& row);

// Writes the bytes from the file's first byte on without emptying it first, so a
// longer old file keeps its tail; a missing file is created. The file is replaced
// through a temporary beside it, so a failure leaves it as it was.
void writeOverFileStart(const std::string& path, std::span<const std::uint8_t> bytes);

// Exports the rows whose index `wanted` accepts from the document's image, in list
// order, telling `afterRow` the index of each row passed. Stops with ToneExportError
// before the file of a faulty row is opened, and with FileError (IsOpenPhoneFile)
// before a file that is the document's phone file; files written before stay.
void exportTones(const image::PhoneDocument& document, const std::vector<ToneSlot>& rows,
                 const std::function<bool(std::size_t)>& wanted, std::string_view pickedPath,
                 const std::function<void(std::size_t)>& afterRow = {});

}  // namespace zevran::tones
