#include "translation_import.hpp"

#include "character_tables.hpp"
#include "utf8_text.hpp"

#include "image/hex_text.hpp"

#include <algorithm>
#include <cstdio>

namespace zevran::strings {

namespace {

// The padding character's bytes: a space, as the edit list pads.
std::string_view spaceIn(StringCodes codes) { return codes == StringCodes::Handset ? "\xA1\x20" : " "; }

EntryResult judge(std::span<const std::uint8_t> image, const TranslationEntry& entry, std::string_view codePage)
{
    EntryResult result;
    result.entry = entry;
    if (entry.address >= image.size()) {
        result.outcome = ImportOutcome::OutsideImage;
        return result;
    }
    const EncodedText source = encodeInCodes(entry.source, entry.codes, codePage);
    const std::size_t end = entry.address + source.bytes.size();
    const bool stored = !source.unencodable && end < image.size() && image[end] == 0 &&
                        std::equal(source.bytes.begin(), source.bytes.end(), image.begin() + entry.address,
                                   [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    if (!stored) {
        result.outcome = ImportOutcome::StoredTextChanged;
        return result;
    }
    result.budget = static_cast<std::uint32_t>(source.bytes.size());
    const EncodedText target = encodeInCodes(entry.target, entry.codes, codePage);
    if (target.unencodable) {
        result.outcome = ImportOutcome::NotEncodable;
        result.character = *target.unencodable;
        return result;
    }
    if (target.bytes.size() > result.budget) {
        result.outcome = ImportOutcome::OverBudget;
        result.overBy = static_cast<std::uint32_t>(target.bytes.size() - result.budget);
        return result;
    }
    std::string padded = target.bytes;
    const std::string_view space = spaceIn(entry.codes);
    while (padded.size() < result.budget) padded += space;
    result.region.first = static_cast<std::int32_t>(entry.address);
    result.region.last = static_cast<std::int32_t>(entry.address + result.budget) - 1;
    result.region.bytes.assign(padded.begin(), padded.end());
    return result;
}

std::string codePointName(char32_t cp)
{
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(cp));
    return name;
}

}  // namespace

EncodedText encodeInCodes(std::string_view utf8Text, StringCodes codes, std::string_view codePage)
{
    EncodedText encoded;
    const CodePageTable* table = codes == StringCodes::Single ? &codePageTable(codePage) : nullptr;
    for (std::size_t pos = 0; pos < utf8Text.size();) {
        const std::size_t before = pos;
        const char32_t cp = nextCodePoint(utf8Text, pos);
        const bool broken = cp == kReplacementCharacter && utf8Text.substr(before, 3) != "\xEF\xBF\xBD";
        const auto bytes = broken || cp == 0 ? std::nullopt : table ? table->encode(cp) : encodeHandsetCharacter(cp);
        if (!bytes) {
            encoded.unencodable = cp;
            return encoded;
        }
        encoded.bytes += *bytes;
    }
    return encoded;
}

ImportResult importTranslations(std::span<const std::uint8_t> image, std::span<const TranslationEntry> entries,
                                std::string_view codePage)
{
    ImportResult result;
    for (const TranslationEntry& entry : entries) {
        if (entry.target.empty()) {
            ++result.untranslated;
            continue;
        }
        result.results.push_back(judge(image, entry, codePage));
        result.fitting += result.results.back().outcome == ImportOutcome::Fits;
    }
    return result;
}

std::vector<image::Region> fittingRegions(const ImportResult& result)
{
    std::vector<image::Region> regions;
    for (const EntryResult& r : result.results)
        if (r.outcome == ImportOutcome::Fits) regions.push_back(r.region);
    return regions;
}

StringEditRow editRowOf(const EntryResult& result, std::size_t rowsBefore, std::string_view codePage)
{
    const bool handset = result.entry.codes == StringCodes::Handset;
    // foundLength as the search shows it: characters in handset codes, bytes otherwise.
    const std::string length = handset ? std::to_string(result.budget / 2) : std::to_string(result.budget);
    StringEditRow row =
        *makeFittedEditRow(rowsBefore, image::HexPad(static_cast<std::uint32_t>(result.region.first), 8),
                           image::HexPad(static_cast<std::uint32_t>(result.region.last), 8), result.entry.target,
                           length, handset, codePage);
    row.handsetCodes = handset;
    return row;
}

std::string outcomeText(const EntryResult& result)
{
    switch (result.outcome) {
    case ImportOutcome::Fits: return "fits";
    case ImportOutcome::OverBudget:
        return "over budget by " + std::to_string(result.overBy) + (result.overBy == 1 ? " byte" : " bytes");
    case ImportOutcome::NotEncodable:
        return "character " + codePointName(result.character) + " not encodable in " +
               (result.entry.codes == StringCodes::Handset ? "handset codes" : "the code page");
    case ImportOutcome::StoredTextChanged: return "stored text changed";
    case ImportOutcome::OutsideImage: return "address outside the image";
    }
    return "";
}

std::string reportCsv(const ImportResult& result)
{
    std::string text = "address,encoding,source,translation,outcome\r\n";
    for (const EntryResult& r : result.results) {
        const std::string key = entryKey(r.entry.address, r.entry.codes);
        text += key.substr(0, 10) + "," + std::string(codesWord(r.entry.codes)) + "," + csvField(r.entry.source) + "," +
                csvField(r.entry.target) + "," + csvField(outcomeText(r)) + "\r\n";
    }
    return text;
}

}  // namespace zevran::strings
