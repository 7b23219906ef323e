// Opening a phone file: its kind comes from the last letter of its name, its
// version text from a marker inside it.
#pragma once

#include "failure.hpp"

#include "firmware_image.hpp"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::image {

// "bin" for a name ending in N or n (x.bin, x.cfn), "asf" for one ending in F or f
// (x.asf, x.axf, x.elf), "other" for anything else (x.s3).
std::string classifyPhoneFile(std::string_view path);

// A version marker found too near an end of the image to hold its 8 version bytes.
class VersionOutOfImage : public TypedError<std::out_of_range> {
public:
    using TypedError::TypedError;
};

// The 8 version bytes: those 17 bytes after a "VersionString:" marker, else those
// 12 bytes before an "Rev S" marker; nullopt when neither is found. Searches from
// the image's start each time and leaves LastMatch at 0 for the searches that follow.
// Throws VersionOutOfImage when the bytes would lie outside the image.
std::optional<std::string> findVersionText(ImageState& state);

// The bytes of a phone file. One of 2 GiB or more cannot be held as an image and is
// refused (std::length_error) before any of it is read; FileError as readWholeFile.
std::vector<std::uint8_t> readPhoneFile(const std::string& path);

// Reads a phone file into the image and classifies it: FileKind and ImageLoaded
// set, the search position reset. Throws FileError when it cannot be read; an empty
// file throws EmptyPhoneFile and leaves the image as it was.
class EmptyPhoneFile : public WorkshopError {
public:
    using TypedError::TypedError;
};
void loadPhoneFile(ImageState& state, const std::string& path);

}  // namespace zevran::image
