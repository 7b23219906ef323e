#include "tones/tone_check.hpp"

#include <gtest/gtest.h>

#include <string>

using namespace zevran::tones;
using Bytes = std::vector<std::uint8_t>;

namespace {

void appendChunk(Bytes& out, std::string_view id, const Bytes& body)
{
    out.insert(out.end(), id.begin(), id.end());
    const auto length = static_cast<std::uint32_t>(body.size());
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(length >> shift));
    out.insert(out.end(), body.begin(), body.end());
}

Bytes text(std::string_view s) { return Bytes(s.begin(), s.end()); }

// A small SMAF tone: contents chunk with a title, one score track, and optionally the CRC.
Bytes smafTone(bool withCrc, std::string_view tags = "ST:Spring,")
{
    Bytes body;
    Bytes contents{0x00, 0x01, 0x01, 0x00, 0x00};
    contents.insert(contents.end(), tags.begin(), tags.end());
    appendChunk(body, "CNTI", contents);
    appendChunk(body, "MTR\x01", Bytes{0x00, 0x00, 0x02, 0x00, 0x90, 0x3C});
    if (withCrc) body.insert(body.end(), {0, 0});
    Bytes tone;
    appendChunk(tone, "MMMD", body);
    if (withCrc) {
        const std::uint16_t crc = smafCrc(std::span(tone).first(tone.size() - 2));
        tone[tone.size() - 2] = static_cast<std::uint8_t>(crc >> 8);
        tone[tone.size() - 1] = static_cast<std::uint8_t>(crc);
    }
    return tone;
}

}  // namespace

TEST(SmafCrc, CheckValue) { EXPECT_EQ(smafCrc(text("123456789")), 0xD64E); }

TEST(CheckTone, MatchingCrcIsOk)
{
    ToneCheck check = checkTone(smafTone(true));
    EXPECT_EQ(check.crc, CrcState::Ok);
    EXPECT_EQ(check.title, "Spring");
}

TEST(CheckTone, ChangedByteMakesTheCrcBad)
{
    Bytes tone = smafTone(true);
    tone[30] ^= 0x01;
    EXPECT_EQ(checkTone(tone).crc, CrcState::Bad);
}

TEST(CheckTone, BodyFilledByItsChunksHasNoCrc) { EXPECT_EQ(checkTone(smafTone(false)).crc, CrcState::None); }

TEST(CheckTone, ToneCutShortIsBad)
{
    Bytes tone = smafTone(true);
    tone.resize(tone.size() - 5);
    EXPECT_EQ(checkTone(tone).crc, CrcState::Bad);
}

TEST(CheckTone, TitleAmongOtherTags)
{
    EXPECT_EQ(checkTone(smafTone(false, "CR:Zevran,ST:Rain Song,AN:x,")).title, "Rain Song");
    EXPECT_EQ(checkTone(smafTone(false, "CR:Zevran,")).title, "");
}
