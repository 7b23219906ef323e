// Finding a typed text in the image, as the handset stores it, and measuring the
// stored string up to its terminating zero byte.
#pragma once

#include "code_page.hpp"
#include "image/firmware_image.hpp"

#include <cstdint>
#include <optional>
#include <span>
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
    std::string foundStart;   // start, eight hex digits
    std::string foundEnd;     // last byte before the terminating zero, eight hex digits
    std::string foundLength;  // length: bytes, or characters (possibly "2.5") in handset codes
    int maxLength = 0;        // the longest replacement that fits
    std::size_t start = 0;    // the stored string's bytes: [start, end)
    std::size_t end = 0;
};

// One search step on the shared search position: walks on from LastMatch, counts
// every hit of the pass in `passCount` (reset when a pass starts from the image's
// beginning), and passes over a hit that runs to the image's end without a zero.
// nullopt when no further occurrence exists; LastMatch is then 0.
std::optional<StringHit> findNextString(image::ImageState& state, std::string_view hexPattern, bool handsetCodes,
                                        int& passCount);

// The stored string's text in UTF-8, decoded in the encoding it was found in: pairs of
// handset codes (A1 xx for a character up to FF, else UTF-16 high byte first; an odd
// last byte is left out) or the single-byte code page.
std::string storedText(std::span<const std::uint8_t> bytes, bool handsetCodes,
                       std::string_view codePage = kDefaultCodePage);

}  // namespace zevran::strings
