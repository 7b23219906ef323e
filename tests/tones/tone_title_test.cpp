// Tone titles in every code type a SMAF tone may name, decoded to UTF-8; the title
// found in the contents chunk, else in the optional-data chunk.
#include "tones/tone_check.hpp"
#include "tones/tone_title.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace zevran::tones;

namespace {

using Bytes = std::vector<std::uint8_t>;

void appendChunk(Bytes& out, std::string_view tag, const Bytes& body)
{
    out.insert(out.end(), tag.begin(), tag.end());
    const auto length = static_cast<std::uint32_t>(body.size());
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(length >> shift));
    out.insert(out.end(), body.begin(), body.end());
}

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

// A tone of a contents chunk (code type `codeType`, tags `tags`), one score track and,
// when `optional` is not empty, an optional-data chunk of that body.
Bytes toneWith(std::uint8_t codeType, const Bytes& tags, const Bytes& optional = {})
{
    Bytes contents{0x00, 0x01, codeType, 0x00, 0x00};
    contents.insert(contents.end(), tags.begin(), tags.end());
    Bytes body;
    appendChunk(body, "CNTI", contents);
    if (!optional.empty()) appendChunk(body, "OPDA", optional);
    appendChunk(body, "MTR\x01", Bytes{0x00, 0x00, 0x02, 0x00, 0x90, 0x3C});
    Bytes tone;
    appendChunk(tone, "MMMD", body);
    return tone;
}

// "ST:" + the stored bytes + ",".
Bytes titleTag(const Bytes& stored)
{
    Bytes tag = bytesOf("ST:");
    tag.insert(tag.end(), stored.begin(), stored.end());
    tag.push_back(',');
    return tag;
}

// An optional-data body: one "Dch" chunk holding items of tag, 16-bit size and bytes.
Bytes optionalData(const std::vector<std::pair<std::string, Bytes>>& items)
{
    Bytes data;
    for (const auto& [tag, bytes] : items) {
        data.insert(data.end(), tag.begin(), tag.end());
        data.push_back(static_cast<std::uint8_t>(bytes.size() >> 8));
        data.push_back(static_cast<std::uint8_t>(bytes.size()));
        data.insert(data.end(), bytes.begin(), bytes.end());
    }
    Bytes body;
    appendChunk(body, std::string_view("Dch\x01", 4), data);
    return body;
}

struct CodeTypeCase {
    const char* name;
    std::uint8_t codeType;
    Bytes stored;
    const char* utf8;
};

class ToneTitleCodeType : public ::testing::TestWithParam<CodeTypeCase> {};

}  // namespace

TEST_P(ToneTitleCodeType, TitleInTheContentsChunkDecodesToUtf8)
{
    const CodeTypeCase& c = GetParam();
    const ToneCheck check = checkTone(toneWith(c.codeType, titleTag(c.stored)));
    EXPECT_EQ(check.codeType, c.codeType);
    EXPECT_EQ(check.storedTitle, std::string(c.stored.begin(), c.stored.end()));
    EXPECT_EQ(check.title, c.utf8);
}

TEST_P(ToneTitleCodeType, TitleInTheOptionalDataChunkDecodesAlike)
{
    const CodeTypeCase& c = GetParam();
    const ToneCheck check = checkTone(toneWith(c.codeType, bytesOf("CR:x,"), optionalData({{"ST", c.stored}})));
    EXPECT_EQ(check.title, c.utf8);
}

INSTANTIATE_TEST_SUITE_P(
    EveryCodeType, ToneTitleCodeType,
    ::testing::Values(CodeTypeCase{"ShiftJis", 0x00, {0x83, 0x65, 0x83, 0x58, 0x83, 0x67}, "テスト"},
                      CodeTypeCase{"Latin1", 0x01, {'C', 'a', 'f', 0xE9}, "Café"},
                      CodeTypeCase{"EucKr", 0x02, {0xC7, 0xD1, 0xB1, 0xB9}, "한국"},
                      // GB 2312 D6D0 CEC4 ("中文") less their high bits between ~{ and ~}; ~~ is a tilde.
                      CodeTypeCase{
                          "HzGb2312", 0x03, {'a', '~', '~', '~', '{', 'V', 'P', 'N', 'D', '~', '}', 'b'}, "a~中文b"},
                      CodeTypeCase{"Big5", 0x04, {0xA4, 0xA4, 0xA4, 0xE5}, "中文"},
                      CodeTypeCase{"Koi8R", 0x05, {0xED, 0xC9, 0xD2}, "Мир"},
                      // 4E2C holds a 2C byte at an odd place: it is part of the character, not the tag's end.
                      CodeTypeCase{"Ucs2", 0x20, {0x00, 'A', 0x4E, 0x2D, 0x4E, 0x2C}, "A中丬"},
                      CodeTypeCase{"Utf8", 0x23, {0xE4, 0xB8, 0xAD, '!'}, "中!"},
                      CodeTypeCase{"Utf16BigEndian", 0x24, {0x4E, 0x2D, 0x00, 'z'}, "中z"},
                      CodeTypeCase{"Utf16WithLittleEndianMark", 0x24, {0xFF, 0xFE, 0x2D, 0x4E}, "中"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ToneTitle, UndecodableBytesShowAsReplacementCharacters)
{
    EXPECT_EQ(decodeToneTitle("A\xA0"
                              "B",
                              0x00),
              "A\xEF\xBF\xBD"
              "B");  // Shift-JIS has no A0
    EXPECT_EQ(decodeToneTitle("A\xFF\xFE"
                              "B",
                              0x23),
              "A\xEF\xBF\xBD\xEF\xBF\xBD"
              "B");                                                // two bad UTF-8 bytes
    EXPECT_EQ(decodeToneTitle("AB\x83", 0x00), "AB\xEF\xBF\xBD");  // a character cut short
    EXPECT_EQ(decodeToneTitle(std::string("\xD8\x00\x00"
                                          "A",
                                          4),
                              0x20),
              "\xEF\xBF\xBD"
              "A");                                             // a lone surrogate
    EXPECT_EQ(decodeToneTitle("a~{V", 0x03), "a\xEF\xBF\xBD");  // half a GB 2312 pair
    EXPECT_EQ(decodeToneTitle("a~x", 0x03), "a~x");             // a tilde HZ does not use stays
}

TEST(ToneTitle, UnknownCodeTypeKeepsAsciiAndMarksTheRest)
{
    EXPECT_EQ(decodeToneTitle("Hi\xC3\xA9", 0x7F), "Hi\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ToneTitle, ContentsTitleComesBeforeTheOptionalDataOne)
{
    const ToneCheck check =
        checkTone(toneWith(0x01, titleTag(bytesOf("Front")), optionalData({{"ST", bytesOf("Back")}})));
    EXPECT_EQ(check.title, "Front");
}

TEST(ToneTitle, OptionalDataTitleIsFoundAmongOtherItems)
{
    const ToneCheck check =
        checkTone(toneWith(0x01, {}, optionalData({{"AN", bytesOf("someone")}, {"ST", bytesOf("Harbour")}})));
    EXPECT_EQ(check.title, "Harbour");
}

TEST(ToneTitle, OptionalDataItemRunningPastItsChunkGivesNoTitle)
{
    Bytes optional = optionalData({{"ST", bytesOf("Harbour")}});
    optional[8 + 3] = 0x40;  // the item's size now reaches past the chunk
    EXPECT_EQ(checkTone(toneWith(0x01, {}, optional)).title, "");
}

TEST(ToneTitle, Utf8TitleWithBytesThatStartNoCharacterIsMarkedNotPassedThrough)
{
    // FB starts no UTF-8 character, 8C continues none, ED A0 80 would be a surrogate.
    EXPECT_EQ(decodeToneTitle("A\xFB\x8C"
                              "B\xED\xA0\x80",
                              0x23),
              "A\xEF\xBF\xBD\xEF\xBF\xBD"
              "B\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(decodeToneTitle("\xE6\xB5\x8B", 0x23), "\xE6\xB5\x8B");
}
