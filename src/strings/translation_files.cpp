#include "translation_files.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/temporary_output.hpp"

#include <algorithm>
#include <cctype>
#include <set>

namespace zevran::strings {

namespace {

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower;
}

bool endsWith(std::string_view text, std::string_view suffix)
{
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string placeOf(const TranslationFileFailure& failure)
{
    std::string place = failure.file;
    if (failure.line) place += ": line " + std::to_string(failure.line);
    if (failure.entry) place += ": entry " + std::to_string(failure.entry);
    return place;
}

}  // namespace

TranslationFileError::TranslationFileError(TranslationFileFailure failure)
    : std::runtime_error(describeFailure(failure)), m_failure(std::move(failure))
{
}

TranslationFileError fileError(TranslationFileFailure::Reason reason, std::string file, std::size_t line,
                               std::size_t entry, std::string detail)
{
    return TranslationFileError({reason, std::move(file), line, entry, std::move(detail)});
}

std::string describeFailure(const TranslationFileFailure& failure)
{
    using Reason = TranslationFileFailure::Reason;
    std::string place = placeOf(failure);
    switch (failure.reason) {
    case Reason::UnknownFormat: return place + ": the name ends in none of .po, .xlf, .xliff or .csv";
    case Reason::Unreadable: return place + ": cannot be read (" + failure.detail + ")";
    case Reason::Syntax: return place + ": " + failure.detail;
    case Reason::BadKey:
        return place + ": \"" + failure.detail + "\" is no entry key (\"0x\", eight hex digits, single or handset)";
    case Reason::MissingColumn: return place + ": the header has no column \"" + failure.detail + "\"";
    case Reason::NotUtf8: return place + ": the text is not UTF-8";
    case Reason::DuplicateKey: return place + ": the key \"" + failure.detail + "\" already has an earlier entry";
    }
    return place;
}

std::optional<TranslationFormat> formatOfPath(std::string_view path)
{
    const std::string lower = lowerCase(path);
    if (endsWith(lower, ".po")) return TranslationFormat::Po;
    if (endsWith(lower, ".xlf") || endsWith(lower, ".xliff")) return TranslationFormat::Xliff;
    if (endsWith(lower, ".csv")) return TranslationFormat::Csv;
    return std::nullopt;
}

std::string entryKey(std::uint32_t address, StringCodes codes)
{
    return "0x" + image::HexPad(address, 8) + " " + std::string(codesWord(codes));
}

std::optional<std::uint32_t> parseAddress(std::string_view text)
{
    if (text.size() != 10 || (text.substr(0, 2) != "0x" && text.substr(0, 2) != "0X")) return std::nullopt;
    std::uint32_t address = 0;
    for (char c : text.substr(2)) {
        const int digit = image::hexDigitOrMinusOne(c);
        if (digit < 0) return std::nullopt;
        address = address << 4 | static_cast<std::uint32_t>(digit);
    }
    return address;
}

std::optional<StringCodes> parseCodesWord(std::string_view word)
{
    if (word == "single") return StringCodes::Single;
    if (word == "handset") return StringCodes::Handset;
    return std::nullopt;
}

std::optional<std::pair<std::uint32_t, StringCodes>> parseEntryKey(std::string_view key)
{
    const auto space = key.find(' ');
    if (space == std::string_view::npos) return std::nullopt;
    const auto address = parseAddress(key.substr(0, space));
    const auto codes = parseCodesWord(key.substr(space + 1));
    if (!address || !codes) return std::nullopt;
    return std::make_pair(*address, *codes);
}

void writeTranslationFile(const std::string& path, std::span<const StoredString> strings, std::string_view imageName)
{
    const auto format = formatOfPath(path);
    if (!format) throw fileError(TranslationFileFailure::Reason::UnknownFormat, path);
    if (*format == TranslationFormat::Po) {
        writePoFile(path, strings, imageName);
        return;
    }
    image::TemporaryOutput output(path, image::kSavingMarker);
    output.stream() << (*format == TranslationFormat::Xliff ? xliffText(strings, imageName) : csvText(strings));
    output.commit();
}

namespace {

// Refuses a file in which two entries share a key: the later translation would be
// written over the earlier one without a word.
void requireUniqueKeys(const std::vector<TranslationEntry>& entries, const std::string& path)
{
    std::set<std::pair<std::uint32_t, StringCodes>> seen;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (!seen.emplace(entries[i].address, entries[i].codes).second)
            throw fileError(TranslationFileFailure::Reason::DuplicateKey, path, 0, i + 1,
                            entryKey(entries[i].address, entries[i].codes));
}

std::vector<TranslationEntry> readByFormat(const std::string& path)
{
    const auto format = formatOfPath(path);
    if (!format) throw fileError(TranslationFileFailure::Reason::UnknownFormat, path);
    if (*format == TranslationFormat::Po) return readPoFile(path);
    std::vector<std::uint8_t> bytes;
    try {
        image::requireRegularFile(path);
        bytes = image::readWholeFile(path);
    } catch (const image::FileError& error) {
        throw fileError(TranslationFileFailure::Reason::Unreadable, path, 0, 0, error.what());
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return *format == TranslationFormat::Xliff ? readXliff(text, path) : readCsv(text, path);
}

}  // namespace

std::vector<TranslationEntry> readTranslationFile(const std::string& path)
{
    std::vector<TranslationEntry> entries = readByFormat(path);
    requireUniqueKeys(entries, path);
    return entries;
}

}  // namespace zevran::strings
