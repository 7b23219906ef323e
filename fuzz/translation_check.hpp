// What every translation-file reader's entries must give when imported into a fixed
// image: one outcome per translated entry, the rest counted, and every fitting region
// exactly its stored string's bytes, inside the image, padded with spaces.
#pragma once

#include "strings/translation_import.hpp"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace zevran::fuzz {

inline void failTranslation(const char* target, const char* what)
{
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::abort();
}

// "Menu" in single-byte codes at 0x01, "OK" in handset codes at 0x06, then 0x20 zeros.
inline const std::vector<std::uint8_t>& translationImage()
{
    static const std::vector<std::uint8_t> image = [] {
        std::vector<std::uint8_t> bytes = {0x00, 'M', 'e', 'n', 'u', 0x00, 0xA1, 0x4F, 0xA1, 0x4B, 0x00};
        bytes.resize(0x30, 0x00);
        return bytes;
    }();
    return image;
}

inline void checkImport(const char* target, const std::vector<strings::TranslationEntry>& entries)
{
    const auto& image = translationImage();
    const strings::ImportResult result = strings::importTranslations(image, entries, "GBK");
    if (result.results.size() + result.untranslated != entries.size()) failTranslation(target, "an entry was dropped");
    std::size_t fitting = 0;
    for (const strings::EntryResult& r : result.results) {
        if (r.entry.target.empty()) failTranslation(target, "an untranslated entry got an outcome");
        if (r.outcome != strings::ImportOutcome::Fits) continue;
        ++fitting;
        const auto& region = r.region;
        if (region.first < 0 || region.last < region.first || static_cast<std::size_t>(region.last) >= image.size())
            failTranslation(target, "a fitting region lies outside the image");
        if (region.bytes.size() != r.budget ||
            region.bytes.size() != static_cast<std::size_t>(std::int64_t{region.last} - region.first + 1))
            failTranslation(target, "a fitting region does not fill its stored string");
        if (image[static_cast<std::size_t>(region.last) + 1] != 0)
            failTranslation(target, "a region reaches the terminator");
    }
    if (fitting != result.fitting) failTranslation(target, "the fitting count is wrong");
}

}  // namespace zevran::fuzz
