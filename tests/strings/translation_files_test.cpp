// The translators' files: PO through libgettextpo, XLIFF through pugixml, CSV as RFC
// 4180; each written with its keys and budgets, and read back with its translations.
#include "strings/translation_files.hpp"
#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;
using Reason = TranslationFileFailure::Reason;

namespace {

const std::vector<StoredString> kStrings = {
    {0x0001A2F0, StringCodes::Handset, 4, "OK"},
    {0x0001A300, StringCodes::Single, 8, "Settings"},
    {0x0001A310, StringCodes::Single, 8, "Settings"},
    {0x0001A320, StringCodes::Handset, 4, "设置"},
};

TranslationFileFailure failureOf(const std::function<void()>& read)
{
    try {
        read();
    } catch (const TranslationFileError& error) {
        return error.failure();
    }
    ADD_FAILURE() << "no TranslationFileError";
    return {};
}

}  // namespace

TEST(EntryKey, AddressAsEightUpperCaseDigitsThenTheEncoding)
{
    EXPECT_EQ(entryKey(0x1A2F0, StringCodes::Handset), "0x0001A2F0 handset");
    EXPECT_EQ(entryKey(0xABCDEF01, StringCodes::Single), "0xABCDEF01 single");
    EXPECT_EQ(parseEntryKey("0x0001A2F0 handset"), std::make_pair(std::uint32_t{0x1A2F0}, StringCodes::Handset));
    EXPECT_FALSE(parseEntryKey("0x1A2F0 handset"));
    EXPECT_FALSE(parseEntryKey("0x0001A2F0 double"));
    EXPECT_FALSE(parseEntryKey("0x0001A2G0 single"));
}

TEST(TranslationFormat, SuffixNamesTheFormat)
{
    EXPECT_EQ(formatOfPath("menu.po"), TranslationFormat::Po);
    EXPECT_EQ(formatOfPath("MENU.XLF"), TranslationFormat::Xliff);
    EXPECT_EQ(formatOfPath("menu.xliff"), TranslationFormat::Xliff);
    EXPECT_EQ(formatOfPath("menu.csv"), TranslationFormat::Csv);
    EXPECT_FALSE(formatOfPath("menu.txt"));
}

TEST(PoFile, EveryStringIsAnEntryKeyedByAddressWithItsBudget)
{
    TempFolder folder;
    writePoFile(folder.path("menu.po"), kStrings, "phone.bin");
    const std::string text = readText(folder.path("menu.po"));
    EXPECT_NE(text.find("Content-Type: text/plain; charset=UTF-8\\n"), std::string::npos);
    EXPECT_NE(text.find("#. budget 4 bytes\nmsgctxt \"0x0001A2F0 handset\"\nmsgid \"OK\"\nmsgstr \"\"\n"),
              std::string::npos);
    EXPECT_NE(text.find("msgctxt \"0x0001A300 single\"\nmsgid \"Settings\""), std::string::npos);
    EXPECT_NE(text.find("msgctxt \"0x0001A310 single\"\nmsgid \"Settings\""), std::string::npos);
    EXPECT_NE(text.find("msgctxt \"0x0001A320 handset\"\nmsgid \"设置\""), std::string::npos);
}

TEST(PoFile, WrittenFileReadsBackUntranslated)
{
    TempFolder folder;
    writePoFile(folder.path("menu.po"), kStrings, "phone.bin");
    const auto entries = readPoFile(folder.path("menu.po"));
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[0], (TranslationEntry{0x1A2F0, StringCodes::Handset, 4, "OK", ""}));
    EXPECT_EQ(entries[3], (TranslationEntry{0x1A320, StringCodes::Handset, 4, "设置", ""}));
}

TEST(PoFile, TranslationsAreReadAndFuzzyOnesLeftUntranslated)
{
    TempFolder folder;
    writeFile(folder.path("zh.po"),
              std::string("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
                          "msgctxt \"0x00000010 single\"\nmsgid \"Menu\"\nmsgstr \"菜单\"\n\n"
                          "#, fuzzy\nmsgctxt \"0x00000020 single\"\nmsgid \"Back\"\nmsgstr \"返回\"\n\n"
                          "msgctxt \"0x00000030 handset\"\nmsgid \"Tab\\there\"\nmsgstr \"\"\n"));
    const auto entries = readPoFile(folder.path("zh.po"));
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0], (TranslationEntry{0x10, StringCodes::Single, 0, "Menu", "菜单"}));
    EXPECT_EQ(entries[1].target, "");
    EXPECT_EQ(entries[2].source, "Tab\there");
}

TEST(PoFile, BrokenSyntaxNamesTheLine)
{
    TempFolder folder;
    writeFile(folder.path("bad.po"), std::string("msgctxt \"0x00000010 single\"\nmsgid \"Menu\"\nmsgstr \"a\" junk\n"));
    const auto failure = failureOf([&] { readPoFile(folder.path("bad.po")); });
    EXPECT_EQ(failure.reason, Reason::Syntax);
    EXPECT_EQ(failure.line, 3u);
}

TEST(PoFile, EntryWithoutAKeyIsNamedByNumber)
{
    TempFolder folder;
    writeFile(folder.path("nokey.po"), std::string("msgctxt \"0x00000010 single\"\nmsgid \"Menu\"\nmsgstr \"\"\n\n"
                                                   "msgid \"Back\"\nmsgstr \"\"\n"));
    const auto failure = failureOf([&] { readPoFile(folder.path("nokey.po")); });
    EXPECT_EQ(failure.reason, Reason::BadKey);
    EXPECT_EQ(failure.entry, 2u);
}

TEST(XliffFile, OneTransUnitAStringWithResnameAndByteWidth)
{
    const std::string text = xliffText(kStrings, "phone.bin");
    EXPECT_NE(text.find("<xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\">"), std::string::npos);
    EXPECT_NE(text.find("<trans-unit id=\"1\" resname=\"0x0001A2F0 handset\" maxwidth=\"4\" size-unit=\"byte\" "
                        "xml:space=\"preserve\">\n        <source>OK</source>"),
              std::string::npos);
    const auto entries = readXliff(text, "menu.xlf");
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[1], (TranslationEntry{0x1A300, StringCodes::Single, 8, "Settings", ""}));
}

TEST(XliffFile, TargetsAreReadInsideGroupsAndSpacesKept)
{
    const std::string text =
        "<?xml version=\"1.0\"?><xliff version=\"1.2\" xmlns=\"urn:oasis:names:tc:xliff:document:1.2\"><file original=\"x\" "
        "source-language=\"en\" datatype=\"plaintext\"><body><group><trans-unit id=\"a\" resname=\"0x00000010 single\">"
        "<source>Menu</source><target>  &amp; </target></trans-unit></group></body></file></xliff>";
    const auto entries = readXliff(text, "zh.xlf");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0], (TranslationEntry{0x10, StringCodes::Single, 0, "Menu", "  & "}));
}

TEST(XliffFile, BrokenXmlNamesTheLine)
{
    const auto failure = failureOf([] { readXliff("<xliff>\n<file>\n</xliff>", "bad.xlf"); });
    EXPECT_EQ(failure.reason, Reason::Syntax);
    EXPECT_EQ(failure.line, 3u);
}

TEST(CsvFile, HeaderRowThenOneRecordAStringWithCrLf)
{
    const std::vector<StoredString> strings = {{0x10, StringCodes::Single, 9, "Yes, \"no\""},
                                               {0x20, StringCodes::Handset, 4, "OK"}};
    EXPECT_EQ(csvText(strings), "address,encoding,budget,source,target\r\n"
                                "0x00000010,single,9,\"Yes, \"\"no\"\"\",\r\n"
                                "0x00000020,handset,4,OK,\r\n");
}

TEST(CsvFile, QuotedFieldsWithCommasQuotesAndLineBreaksAreRead)
{
    const auto entries = readCsv("target,source,address,encoding\n\"a,\"\"b\"\"\nc\",src,0x00000010,single\n"
                                 ",untranslated,0x00000020,handset\n",
                                 "zh.csv");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0], (TranslationEntry{0x10, StringCodes::Single, 0, "src", "a,\"b\"\nc"}));
    EXPECT_EQ(entries[1].target, "");
}

TEST(CsvFile, MissingColumnAndBadAddressAreNamed)
{
    auto failure = failureOf([] { readCsv("address,encoding,source\r\n", "a.csv"); });
    EXPECT_EQ(failure.reason, Reason::MissingColumn);
    EXPECT_EQ(failure.detail, "target");
    failure = failureOf([] { readCsv("address,encoding,source,target\r\n0x10,single,a,b\r\n", "a.csv"); });
    EXPECT_EQ(failure.reason, Reason::BadKey);
    EXPECT_EQ(failure.line, 2u);
}

TEST(CsvFile, UnclosedQuoteAndNonUtf8AreRefused)
{
    EXPECT_EQ(failureOf([] { readCsv("address,encoding,source,target\n\"open", "a.csv"); }).reason, Reason::Syntax);
    EXPECT_EQ(failureOf([] { readCsv("address,encoding,source,target\n0x00000010,single,\xFF,b", "a.csv"); }).reason,
              Reason::NotUtf8);
}

TEST(TranslationFile, EachSuffixRoundTripsTheStrings)
{
    TempFolder folder;
    for (const std::string name : {"menu.po", "menu.xlf", "menu.csv"}) {
        writeTranslationFile(folder.path(name), kStrings, "phone.bin");
        const auto entries = readTranslationFile(folder.path(name));
        ASSERT_EQ(entries.size(), kStrings.size()) << name;
        for (std::size_t i = 0; i < entries.size(); ++i)
            EXPECT_EQ(entries[i], (TranslationEntry{kStrings[i].address, kStrings[i].codes, kStrings[i].bytes,
                                                    kStrings[i].text, ""}))
                << name;
    }
    EXPECT_EQ(failureOf([&] { writeTranslationFile(folder.path("menu.txt"), kStrings, "x"); }).reason,
              Reason::UnknownFormat);
}

TEST(TranslationFile, KeySharedByTwoEntriesIsRefusedAtTheSecond)
{
    TempFolder folder;
    writeFile(folder.path("twice.csv"), std::string("address,encoding,source,target\r\n"
                                                    "0x00000010,single,Menu,A\r\n"
                                                    "0x00000010,handset,Menu,B\r\n"
                                                    "0x00000010,single,Menu,C\r\n"));
    const auto failure = failureOf([&] { readTranslationFile(folder.path("twice.csv")); });
    EXPECT_EQ(failure.reason, Reason::DuplicateKey);
    EXPECT_EQ(failure.entry, 3u);
    EXPECT_EQ(failure.detail, "0x00000010 single");
    EXPECT_EQ(describeFailure(failure),
              folder.path("twice.csv") + ": entry 3: the key \"0x00000010 single\" already has an earlier entry");
}
