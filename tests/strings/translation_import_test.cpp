// Translations back in: each outcome, padding with spaces in both encodings, and a
// round trip that changes no byte.
#include "firmware_like_image.hpp"
#include "strings/translation_import.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;

namespace {

using Bytes = std::vector<std::uint8_t>;

// "Menu" in single-byte codes at 0x01; "OK" in handset codes (A1 4F A1 4B) at 0x06;
// 设置 in handset codes (8B BE 7F 6E) at 0x0B.
const Bytes kImage = {0x00, 'M', 'e', 'n', 'u', 0x00, 0xA1, 0x4F, 0xA1, 0x4B, 0x00, 0x8B, 0xBE, 0x7F, 0x6E, 0x00};

EntryResult importOne(const TranslationEntry& entry, const Bytes& image = kImage)
{
    const ImportResult result = importTranslations(image, std::vector{entry}, "GBK");
    EXPECT_EQ(result.results.size(), 1u);
    return result.results.at(0);
}

}  // namespace

TEST(TranslationImport, ShorterSingleByteTranslationIsPaddedWithSpaces)
{
    const EntryResult r = importOne({0x01, StringCodes::Single, 4, "Menu", "Go"});
    EXPECT_EQ(r.outcome, ImportOutcome::Fits);
    EXPECT_EQ(r.budget, 4u);
    EXPECT_EQ(r.region.first, 0x01);
    EXPECT_EQ(r.region.last, 0x04);
    EXPECT_EQ(r.region.bytes, (Bytes{'G', 'o', ' ', ' '}));
    EXPECT_EQ(outcomeText(r), "fits");
}

TEST(TranslationImport, GbkTranslationTakesTwoBytesACharacter)
{
    const EntryResult r = importOne({0x01, StringCodes::Single, 4, "Menu", "菜单"});
    EXPECT_EQ(r.outcome, ImportOutcome::Fits);
    EXPECT_EQ(r.region.bytes, (Bytes{0xB2, 0xCB, 0xB5, 0xA5}));
}

TEST(TranslationImport, HandsetTranslationIsPaddedWithA120)
{
    const EntryResult r = importOne({0x06, StringCodes::Handset, 4, "OK", "Y"});
    EXPECT_EQ(r.outcome, ImportOutcome::Fits);
    EXPECT_EQ(r.region.bytes, (Bytes{0xA1, 0x59, 0xA1, 0x20}));
    const EntryResult chinese = importOne({0x06, StringCodes::Handset, 4, "OK", "是"});
    EXPECT_EQ(chinese.region.bytes, (Bytes{0x66, 0x2F, 0xA1, 0x20}));
}

TEST(TranslationImport, LongerTranslationIsOverBudgetByItsExtraBytes)
{
    const EntryResult r = importOne({0x01, StringCodes::Single, 4, "Menu", "Menus"});
    EXPECT_EQ(r.outcome, ImportOutcome::OverBudget);
    EXPECT_EQ(r.overBy, 1u);
    EXPECT_EQ(outcomeText(r), "over budget by 1 byte");
    const EntryResult handset = importOne({0x0B, StringCodes::Handset, 4, "设置", "Set up"});
    EXPECT_EQ(handset.overBy, 8u);
    EXPECT_EQ(outcomeText(handset), "over budget by 8 bytes");
}

TEST(TranslationImport, CharacterWithoutACodeIsNamed)
{
    const EntryResult single = importOne({0x01, StringCodes::Single, 4, "Menu", "M\xF0\x9F\x98\x80"});
    EXPECT_EQ(single.outcome, ImportOutcome::NotEncodable);
    EXPECT_EQ(single.character, U'\U0001F600');
    EXPECT_EQ(outcomeText(single), "character U+1F600 not encodable in the code page");
    // U+A123 would be stored as A1 23, which the handset reads as "#".
    const EntryResult handset = importOne({0x06, StringCodes::Handset, 4, "OK", "\xEA\x84\xA3"});
    EXPECT_EQ(handset.outcome, ImportOutcome::NotEncodable);
    EXPECT_EQ(outcomeText(handset), "character U+A123 not encodable in handset codes");
    const EntryResult control = importOne({0x06, StringCodes::Handset, 4, "OK", "a\tb"});
    EXPECT_EQ(outcomeText(control), "character U+0009 not encodable in handset codes");
}

TEST(TranslationImport, SourceNoLongerStoredAtTheAddressIsStoredTextChanged)
{
    EXPECT_EQ(importOne({0x01, StringCodes::Single, 4, "Menus", "Go"}).outcome, ImportOutcome::StoredTextChanged);
    EXPECT_EQ(importOne({0x01, StringCodes::Single, 3, "Men", "Go"}).outcome, ImportOutcome::StoredTextChanged);
    EXPECT_EQ(importOne({0x01, StringCodes::Handset, 4, "Menu", "Go"}).outcome, ImportOutcome::StoredTextChanged);
    const EntryResult r = importOne({0x02, StringCodes::Single, 4, "Menu", "Go"});
    EXPECT_EQ(outcomeText(r), "stored text changed");
}

TEST(TranslationImport, AddressPastTheImageIsOutside)
{
    const EntryResult r = importOne({0x10, StringCodes::Single, 4, "Menu", "Go"});
    EXPECT_EQ(r.outcome, ImportOutcome::OutsideImage);
    EXPECT_EQ(outcomeText(r), "address outside the image");
}

TEST(TranslationImport, UntranslatedEntriesAreOnlyCounted)
{
    const std::vector<TranslationEntry> entries = {{0x01, StringCodes::Single, 4, "Menu", ""},
                                                   {0x06, StringCodes::Handset, 4, "OK", "No"},
                                                   {0x0B, StringCodes::Handset, 4, "设置", ""}};
    const ImportResult result = importTranslations(kImage, entries, "GBK");
    EXPECT_EQ(result.untranslated, 2u);
    EXPECT_EQ(result.fitting, 1u);
    ASSERT_EQ(result.results.size(), 1u);
    EXPECT_TRUE(result.allFit());
    EXPECT_EQ(fittingRegions(result).size(), 1u);
}

TEST(TranslationImport, ReportHasOneRowAnOutcome)
{
    const std::vector<TranslationEntry> entries = {{0x01, StringCodes::Single, 4, "Menu", "Go, go"},
                                                   {0x06, StringCodes::Handset, 4, "OK", "No"}};
    const ImportResult result = importTranslations(kImage, entries, "GBK");
    EXPECT_FALSE(result.allFit());
    EXPECT_EQ(reportCsv(result), "address,encoding,source,translation,outcome\r\n"
                                 "0x00000001,single,Menu,\"Go, go\",over budget by 2 bytes\r\n"
                                 "0x00000006,handset,OK,No,fits\r\n");
}

TEST(TranslationImport, EditRowOfAFittingEntryWritesTheSameBytes)
{
    for (const TranslationEntry& entry : {TranslationEntry{0x01, StringCodes::Single, 4, "Menu", "菜"},
                                          TranslationEntry{0x0B, StringCodes::Handset, 4, "设置", "A"}}) {
        const EntryResult r = importOne(entry);
        const StringEditRow row = editRowOf(r, 3, "GBK");
        EXPECT_EQ(row.number, "04");
        EXPECT_EQ(editRowRegion(row, entry.codes == StringCodes::Handset, "GBK").bytes, r.region.bytes);
    }
    const StringEditRow handset = editRowOf(importOne({0x0B, StringCodes::Handset, 4, "设置", "A"}), 0, "GBK");
    EXPECT_EQ(handset.start, "0000000B");
    EXPECT_EQ(handset.end, "0000000E");
    EXPECT_EQ(handset.text, "A ");
    EXPECT_EQ(handset.length, "2");
}

TEST(TranslationImport, RoundTripWithEveryTranslationEqualToItsSourceChangesNoByte)
{
    const auto made = zevran::test::FirmwareLikeMaker(7).make(1 << 20);
    const auto strings = extractStrings(made.bytes, {}).strings;
    ASSERT_GT(strings.size(), 500u);
    std::vector<TranslationEntry> entries;
    entries.reserve(strings.size());
    for (const StoredString& s : strings) entries.push_back({s.address, s.codes, s.bytes, s.text, s.text});
    const ImportResult result = importTranslations(made.bytes, entries, "GBK");
    EXPECT_TRUE(result.allFit());
    std::vector<std::uint8_t> patched = made.bytes;
    for (const auto& region : fittingRegions(result))
        std::copy(region.bytes.begin(), region.bytes.end(), patched.begin() + region.first);
    EXPECT_EQ(patched, made.bytes);
}
