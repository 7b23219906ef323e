// The translators' files: every stored string out as a gettext PO, XLIFF 1.2 or CSV
// file, and the translations read back. An entry's key is its address and encoding,
// "0x0001A2F0 handset", so the same text at two addresses is two entries.
#pragma once

#include "string_extract.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zevran::strings {

struct TranslationEntry {
    std::uint32_t address = 0;
    StringCodes codes = StringCodes::Single;
    std::uint32_t budget = 0;  // as the file says; the import measures the image itself
    std::string source;
    std::string target;  // "" while untranslated

    bool operator==(const TranslationEntry&) const = default;
};

enum class TranslationFormat : std::uint8_t { Po, Xliff, Csv };

// The format a file name's suffix names (.po, .xlf or .xliff, .csv; any case).
std::optional<TranslationFormat> formatOfPath(std::string_view path);

// "0x" and eight upper-case hex digits, a space, and "single" or "handset".
std::string entryKey(std::uint32_t address, StringCodes codes);
std::optional<std::pair<std::uint32_t, StringCodes>> parseEntryKey(std::string_view key);
// "0x0001A2F0" alone, as the CSV address column holds it.
std::optional<std::uint32_t> parseAddress(std::string_view text);
std::optional<StringCodes> parseCodesWord(std::string_view word);

// Why a translation file cannot be read, and where: `line` (1-based, 0 where the
// reader cannot tell) or `entry` (the 1-based entry of a PO or XLIFF file).
struct TranslationFileFailure {
    enum class Reason : std::uint8_t {
        UnknownFormat,  // the suffix names none of the three formats
        Unreadable,     // the file cannot be opened or read
        Syntax,         // the format's own grammar is broken; `detail` is the reader's word
        BadKey,         // an entry's key is not "0x........ single|handset"; `detail` is the key
        MissingColumn,  // a CSV header lacks a column; `detail` names it
        NotUtf8,        // text that is not UTF-8
        DuplicateKey,   // a second entry for one key, whose translation would hide the first's
    };
    Reason reason = Reason::Syntax;
    std::string file;
    std::size_t line = 0;
    std::size_t entry = 0;
    std::string detail;
};

class TranslationFileError : public std::runtime_error {
public:
    explicit TranslationFileError(TranslationFileFailure failure);
    const TranslationFileFailure& failure() const { return m_failure; }

private:
    TranslationFileFailure m_failure;
};

// The error of a failure with its place and detail.
TranslationFileError fileError(TranslationFileFailure::Reason reason, std::string file, std::size_t line = 0,
                               std::size_t entry = 0, std::string detail = {});

// One English line naming the failure and its place, for the command line.
std::string describeFailure(const TranslationFileFailure& failure);

// Writes the strings, untranslated, in the format of `path`'s suffix, through a
// temporary file beside it. `imageName` names the phone file in the file's header.
// Throws TranslationFileError (UnknownFormat) or image::FileError.
void writeTranslationFile(const std::string& path, std::span<const StoredString> strings, std::string_view imageName);

// Every entry of a translation file, translated or not, in file order. Throws
// TranslationFileError, also for a key that two entries share.
std::vector<TranslationEntry> readTranslationFile(const std::string& path);

// The formats one by one. PO is read and written through libgettextpo, XLIFF through
// pugixml; CSV is RFC 4180 with a header row address,encoding,budget,source,target.
void writePoFile(const std::string& path, std::span<const StoredString> strings, std::string_view imageName);
std::vector<TranslationEntry> readPoFile(const std::string& path);
std::string xliffText(std::span<const StoredString> strings, std::string_view imageName);
std::vector<TranslationEntry> readXliff(std::string_view text, const std::string& fileName);
std::string csvText(std::span<const StoredString> strings);
std::vector<TranslationEntry> readCsv(std::string_view text, const std::string& fileName);

// A CSV field quoted where RFC 4180 asks for it (a comma, a quote, CR or LF).
std::string csvField(std::string_view text);

}  // namespace zevran::strings
