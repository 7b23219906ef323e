// Finding every string the image stores, in the single-byte code page and in the
// handset's two-byte codes, with its address and its byte budget.
#pragma once

#include "code_page.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::strings {

enum class StringCodes : std::uint8_t { Single, Handset };

// "single" or "handset": the word translation files use.
std::string_view codesWord(StringCodes codes);

// A string as the image stores it. `bytes` is its budget: the stored length up to its
// terminating zero, which is not counted.
struct StoredString {
    std::uint32_t address = 0;
    StringCodes codes = StringCodes::Single;
    std::uint32_t bytes = 0;
    std::string text;  // UTF-8

    bool operator==(const StoredString&) const = default;
};

enum class CodesWanted : std::uint8_t { Single, Handset, Both };

struct ExtractOptions {
    std::string codePage = std::string(kDefaultCodePage);
    CodesWanted codes = CodesWanted::Both;
    std::uint32_t minBytes = 4;
    // Told the bytes looked at so far of `total`; returning false stops the job.
    std::function<bool(std::size_t done, std::size_t total)> progress;
};

struct ExtractResult {
    std::vector<StoredString> strings;  // in address order
    bool stopped = false;               // the progress callback asked to stop; `strings` is empty
};

// Every stored string of at least `minBytes` bytes. A run of characters ending in a
// zero is taken for a string when its characters are mostly common ones and it sits
// beside another string (string tables keep them end to end, apart by a few zero
// bytes), or when it is long and made of common characters only. Where the two
// encodings read the same bytes, the reading with more common characters wins.
// Throws CodePageError for a code page iconv does not know.
ExtractResult extractStrings(std::span<const std::uint8_t> image, const ExtractOptions& options);

// The UTF-8 text of stored bytes in the given encoding; a byte or unit that is no
// character of it reads as U+FFFD.
std::string decodeStored(std::span<const std::uint8_t> bytes, StringCodes codes, std::string_view codePage);

}  // namespace zevran::strings
