// Finding a typed text in the image, as the handset stores it, and measuring the
// stored string up to its terminating zero byte.
#pragma once

#include "code_page.hpp"
#include "image/firmware_image.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace zevran::strings {

inline constexpr int kMessageNoFurtherOccurrence = 26;
inline constexpr int kMessageEmptySearchText = 27;

// The hex search pattern of a UTF-8 text: in handset codes (two bytes a character)
// or in single-byte codes, where each character's code is written unpadded, so a
// Chinese character gives its two code-page bytes, high byte first.
std::string searchPattern(std::string_view utf8Text, bool handsetCodes, std::string_view codePage = kDefaultCodePage);

// What one search shows.
struct StringHit {
    std::string Text10;  // start, eight hex digits
    std::string Text9;   // last byte before the terminating zero, eight hex digits
    std::string Text8;   // length: bytes, or characters (possibly "2.5") in handset codes
    int maxLength = 0;   // the longest replacement that fits
};

// One search step on the shared search position: walks on from LastMatch, counts
// every hit of the pass in `passCount` (reset when a pass starts from the image's
// beginning), and passes over a hit that runs to the image's end without a zero.
// nullopt when no further occurrence exists; LastMatch is then 0.
std::optional<StringHit> findNextString(image::ImageState& state, std::string_view hexPattern, bool handsetCodes,
                                        int& passCount);

}  // namespace zevran::strings
