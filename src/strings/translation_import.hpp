// Translations back into the image: each translated entry checked against the bytes
// the image stores and against its budget, and the ones that fit turned into regions
// padded with spaces, as the edit list pads its replacements.
#pragma once

#include "string_edit.hpp"
#include "translation_files.hpp"

#include "image/patch_writer.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::strings {

enum class ImportOutcome : std::uint8_t {
    Fits,               // written, padded with spaces to the budget
    OverBudget,         // `overBy` bytes too many
    NotEncodable,       // `character` has no code in the entry's encoding
    StoredTextChanged,  // the image no longer holds the source at the address
    OutsideImage,       // the address lies past the image's end
};

struct EntryResult {
    TranslationEntry entry;
    ImportOutcome outcome = ImportOutcome::Fits;
    std::uint32_t budget = 0;  // the stored string's bytes, measured in the image
    std::uint32_t overBy = 0;  // OverBudget
    char32_t character = 0;    // NotEncodable
    image::Region region;      // Fits: the padded bytes over the stored string
};

struct ImportResult {
    std::vector<EntryResult> results;  // one per translated entry, in file order
    std::size_t untranslated = 0;
    std::size_t fitting = 0;

    bool allFit() const { return fitting == results.size(); }
};

// Checks every translated entry: address inside the image, the source stored there
// (its bytes in the entry's encoding, then a zero), every character encodable, the
// bytes within the budget. An entry whose target is empty is counted as untranslated.
// Throws CodePageError for a code page iconv does not know.
ImportResult importTranslations(std::span<const std::uint8_t> image, std::span<const TranslationEntry> entries,
                                std::string_view codePage);

// The regions of the fitting entries, in file order.
std::vector<image::Region> fittingRegions(const ImportResult& result);

// The edit-list row that writes a fitting entry's region, in the entry's own encoding:
// start, end, the translation padded with spaces, the length as the search shows it.
// Made by the list's own padding, so it writes the same bytes.
StringEditRow editRowOf(const EntryResult& result, std::size_t rowsBefore, std::string_view codePage);

// "fits", "over budget by 3 bytes", "character U+00E9 not encodable in handset codes",
// "stored text changed", "address outside the image": the report's English words.
std::string outcomeText(const EntryResult& result);

// The report as CSV: address, encoding, source, translation, outcome; one row per
// translated entry.
std::string reportCsv(const ImportResult& result);

// Where a handset code or code-page character is missing: the text's bytes in the
// encoding, or the first character that has none.
struct EncodedText {
    std::string bytes;
    std::optional<char32_t> unencodable;  // empty when every character was encoded
};
EncodedText encodeInCodes(std::string_view utf8Text, StringCodes codes, std::string_view codePage);

}  // namespace zevran::strings
