#include "strings/code_page.hpp"

#include <gtest/gtest.h>

using namespace zevran::strings;

TEST(CodePage, AsciiIsOneByteEach) { EXPECT_EQ(encodeText("OK"), "OK"); }

TEST(CodePage, ChineseCharacterIsTwoGbkBytesHighFirst)
{
    // U+4E2D is D6 D0 in GBK.
    EXPECT_EQ(encodeText("\xE4\xB8\xAD"), "\xD6\xD0");
    EXPECT_EQ(encodeCharacters("a\xE4\xB8\xAD"), (std::vector<std::string>{"a", "\xD6\xD0"}));
}

TEST(CodePage, DecodeGivesUtf8Back) { EXPECT_EQ(decodeText("\xD6\xD0OK"), "\xE4\xB8\xADOK"); }

TEST(CodePage, UndecodableByteBecomesReplacementCharacter) { EXPECT_EQ(decodeText("A\xFF"), "A\xEF\xBF\xBD"); }

TEST(CodePage, CharacterOutsideTheCodePageIsRefused) { EXPECT_THROW(encodeText("\xF0\x9F\x98\x80"), CodePageError); }

TEST(CodePage, UnknownCodePageIsRefused) { EXPECT_THROW(encodeText("a", "NO-SUCH-PAGE"), CodePageError); }

TEST(CodePage, OtherCodePagesAreUsedAsNamed) { EXPECT_EQ(encodeText("\xC3\xA9", "ISO-8859-1"), "\xE9"); }
