// zevran-cli tones and export-tones: SMAF ring tones found in an image the test
// writes, listed and exported byte for byte.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

Bytes bigEndian32(std::uint32_t value)
{
    return {static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
            static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
}

// A file chunk header only: the scan reads nothing past the length field.
Bytes toneHeader(std::uint32_t size) { return joined({text("MMMD"), bigEndian32(size - 8)}); }

// A whole tone of `size` bytes whose body holds no further signature.
Bytes plainTone(std::uint32_t size, std::uint8_t seed)
{
    Bytes tone = toneHeader(size);
    for (std::uint32_t i = 8; i < size; ++i) tone.push_back(static_cast<std::uint8_t>(seed + i * 3));
    return tone;
}

Bytes imageWith(std::size_t length, std::initializer_list<std::pair<std::size_t, Bytes>> parts)
{
    Bytes image(length, 0x00);
    for (const auto& [at, bytes] : parts)
        std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
    return image;
}

// A contents chunk with the title "Lark": 5 info bytes, then "ST:Lark," (13 bytes).
const Bytes kContents =
    joined({text("CNTI"), {0x00, 0x00, 0x00, 0x0D}, {0x00, 0x01, 0x01, 0x00, 0x00}, text("ST:Lark,")});

Bytes trackChunk()
{
    Bytes track = joined({text("MTR"), {0x01}, {0x00, 0x00, 0x00, 0x40}});
    for (int i = 0; i < 64; ++i) track.push_back(static_cast<std::uint8_t>(0x80 + i));
    return track;
}

// Body 95 = 21 (contents) + 72 (track) + 2 (CRC); the whole tone is 103 bytes. 5E 56 is
// the CRC-16 (poly 1021, init FFFF, xorout FFFF) of the 101 bytes from "MMMD" on,
// worked out apart from the workshop.
Bytes toneWithCrc() { return joined({text("MMMD"), {0x00, 0x00, 0x00, 0x5F}, kContents, trackChunk(), {0x5E, 0x56}}); }

// Body 93 = exactly its two chunks; the tone is 101 bytes.
Bytes toneWithoutCrc() { return joined({text("MMMD"), {0x00, 0x00, 0x00, 0x5D}, kContents, trackChunk()}); }

RunResult listTones(const TempFolder& folder, const Bytes& image, std::vector<std::string> options = {})
{
    writeFile(folder.path("image.bin"), image);
    std::vector<std::string> args = {"tones", "image.bin"};
    args.insert(args.end(), options.begin(), options.end());
    return runCli(folder, args);
}

}  // namespace

TEST(TonesCommand, EachToneGetsOneLineOfNumberStartEndAndSize)
{
    TempFolder folder;
    // 0x1234 + 256 - 1 = 0x1333; 0x1800 + 101 - 1 = 0x1864.
    const RunResult result =
        listTones(folder, imageWith(0x2000, {{0x1234, plainTone(256, 1)}, {0x1800, plainTone(101, 2)}}));
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "001 0x00001234 0x00001333 256\n"
                          "002 0x00001800 0x00001864 101\n");
}

TEST(TonesCommand, ImageWithoutTonesPrintsNothing)
{
    TempFolder folder;
    const RunResult result = listTones(folder, imageWith(0x400, {}));
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "");
}

TEST(TonesCommand, SignatureAtOffsetZeroIsNeverFound)
{
    TempFolder folder;
    const RunResult result = listTones(folder, imageWith(0x400, {{0, plainTone(256, 1)}, {0x200, plainTone(128, 2)}}));
    ASSERT_TRUE(succeeded(result));
    // 0x200 + 128 - 1 = 0x27F.
    EXPECT_EQ(result.out, "001 0x00000200 0x0000027F 128\n");
}

TEST(TonesCommand, ToneInsideAnotherTonesDataIsListedToo)
{
    TempFolder folder;
    Bytes outer = plainTone(256, 1);
    const Bytes inner = plainTone(120, 9);
    std::copy(inner.begin(), inner.end(), outer.begin() + 0x20);
    const RunResult result = listTones(folder, imageWith(0x400, {{0x20, outer}}));
    ASSERT_TRUE(succeeded(result));
    // Outer 0x20..0x11F, inner at 0x20 + 0x20 = 0x40 .. 0x40 + 119 = 0xB7.
    EXPECT_EQ(result.out, "001 0x00000020 0x0000011F 256\n"
                          "002 0x00000040 0x000000B7 120\n");
}

namespace {

struct ToneSizeCase {
    const char* name;
    std::uint32_t size;
    std::string expected;
};

void PrintTo(const ToneSizeCase& sizeCase, std::ostream* out) { *out << sizeCase.size << "-byte tone"; }

}  // namespace

class ToneSizeLimit : public ::testing::TestWithParam<ToneSizeCase> {};

TEST_P(ToneSizeLimit, OnlySizesFrom101To99999AreTones)
{
    TempFolder folder;
    // Only the header is written: a declared size is taken at its word.
    const RunResult result = listTones(folder, imageWith(0x200, {{0x10, toneHeader(GetParam().size)}}));
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, GetParam().expected);
}

// 0x10 + 101 - 1 = 0x74; 0x10 + 99999 - 1 = 0x186AE.
INSTANTIATE_TEST_SUITE_P(TonesCommand, ToneSizeLimit,
                         ::testing::Values(ToneSizeCase{"Size100Rejected", 100, ""},
                                           ToneSizeCase{"Size101Accepted", 101, "001 0x00000010 0x00000074 101\n"},
                                           ToneSizeCase{"Size99999Accepted", 99999,
                                                        "001 0x00000010 0x000186AE 99999\n"},
                                           ToneSizeCase{"Size100000Rejected", 100000, ""}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TonesDetails, WellFormedToneShowsCrcOkAndItsTitle)
{
    TempFolder folder;
    // 0x10 + 103 - 1 = 0x76.
    const RunResult result = listTones(folder, imageWith(0x100, {{0x10, toneWithCrc()}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "001 0x00000010 0x00000076 103 crc=ok title=Lark\n");
}

namespace {

// A tone without CRC of a contents chunk of code type `codeType` and tags `tags`, an
// optional-data chunk `optional` (when not empty) and the track.
Bytes toneWithContents(std::uint8_t codeType, const Bytes& tags, const Bytes& optional = {})
{
    const Bytes info = joined({{0x00, 0x01, codeType, 0x00, 0x00}, tags});
    Bytes body = joined({text("CNTI"), bigEndian32(static_cast<std::uint32_t>(info.size())), info});
    if (!optional.empty())
        body = joined({body, text("OPDA"), bigEndian32(static_cast<std::uint32_t>(optional.size())), optional});
    body = joined({body, trackChunk()});
    return joined({text("MMMD"), bigEndian32(static_cast<std::uint32_t>(body.size())), body});
}

}  // namespace

TEST(TonesDetails, TitleIsPrintedInUtf8WhateverItsCodeType)
{
    TempFolder folder;
    // EUC-KR C7D1 B1B9 is "한국"; KOI8-R ED C9 D2 is "Мир"; Shift-JIS with a byte A0 it lacks.
    // A tag of notes after each keeps every tone above the scan's least size.
    const Bytes korean = toneWithContents(0x02, joined({text("ST:"), {0xC7, 0xD1, 0xB1, 0xB9}, text(",AN:notes,")}));
    const Bytes russian = toneWithContents(0x05, joined({text("ST:"), {0xED, 0xC9, 0xD2}, text(",AN:notes,")}));
    const Bytes damaged = toneWithContents(0x00, joined({text("ST:A"), {0xA0}, text("B,AN:notes,")}));
    const RunResult result =
        listTones(folder, imageWith(0x400, {{0x10, korean}, {0x100, russian}, {0x200, damaged}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    const std::string lines[3] = {"title=한국\n", "title=Мир\n",
                                  "title=A\xEF\xBF\xBD"
                                  "B\n"};
    for (const std::string& line : lines)
        EXPECT_NE(result.out.find(line), std::string::npos) << line << " in\n" << result.out;
}

TEST(TonesDetails, TitleKeptInTheOptionalDataChunkIsFound)
{
    TempFolder folder;
    // OPDA holds one chunk "Dch" + 23 (UTF-8) of 9 bytes: item "ST", size 5, "Heron".
    const Bytes optional = joined({text("Dch"), {0x23}, bigEndian32(9), text("ST"), {0x00, 0x05}, text("Heron")});
    const RunResult result =
        listTones(folder, imageWith(0x200, {{0x10, toneWithContents(0x23, text("CR:x,"), optional)}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_NE(result.out.find(" crc=none title=Heron\n"), std::string::npos) << result.out;
}

TEST(TonesDetails, ChangedByteShowsCrcBad)
{
    TempFolder folder;
    Bytes tone = toneWithCrc();
    tone[60] ^= 0x01;  // a track data byte: the layout stays whole, only the CRC disagrees
    const RunResult result = listTones(folder, imageWith(0x100, {{0x10, tone}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "001 0x00000010 0x00000076 103 crc=bad title=Lark\n");
}

TEST(TonesDetails, BodyOfExactlyItsChunksShowsCrcNone)
{
    TempFolder folder;
    // 0x10 + 101 - 1 = 0x74.
    const RunResult result = listTones(folder, imageWith(0x100, {{0x10, toneWithoutCrc()}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "001 0x00000010 0x00000074 101 crc=none title=Lark\n");
}

TEST(TonesDetails, ToneRunningPastTheImageEndShowsCrcBadAndTheOthersStillList)
{
    TempFolder folder;
    // The first tone declares 99999 bytes in a 512-byte image; 0x100 + 101 - 1 = 0x164.
    const RunResult result =
        listTones(folder, imageWith(0x200, {{0x10, toneHeader(99999)}, {0x100, toneWithoutCrc()}}), {"--details"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "001 0x00000010 0x000186AE 99999 crc=bad title=\n"
                          "002 0x00000100 0x00000164 101 crc=none title=Lark\n");
}

namespace {

// Two tones: 101 bytes at 0x10 and 130 bytes at 0x100.
const Bytes kFirstTone = plainTone(101, 0x11);
const Bytes kSecondTone = plainTone(130, 0x22);
const Bytes kTwoTones = imageWith(0x200, {{0x10, kFirstTone}, {0x100, kSecondTone}});

RunResult exportTones(const TempFolder& folder, std::vector<std::string> options)
{
    writeFile(folder.path("image.bin"), kTwoTones);
    std::filesystem::create_directory(folder.path("out"));
    std::vector<std::string> args = {"export-tones", "image.bin"};
    args.insert(args.end(), options.begin(), options.end());
    return runCli(folder, args);
}

}  // namespace

TEST(ExportTonesCommand, EveryRowIsWrittenWithoutRows)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(exportTones(folder, {"--to", "out/ring.mmf"})));
    EXPECT_EQ(readBytes(folder.path("out/ring-001.mmf")), kFirstTone);
    EXPECT_EQ(readBytes(folder.path("out/ring-002.mmf")), kSecondTone);
    EXPECT_FALSE(exists(folder.path("out/ring-003.mmf")));
}

TEST(ExportTonesCommand, LastFourCharactersOfThePathGiveWayWhateverTheyAre)
{
    TempFolder folder;
    ASSERT_TRUE(succeeded(exportTones(folder, {"--to", "out/tune.bin", "--rows", "1"})));
    EXPECT_EQ(readBytes(folder.path("out/tune-001.mmf")), kFirstTone);
    EXPECT_FALSE(exists(folder.path("out/tune.bin")));
}

TEST(ExportTonesCommand, RowsTwoAndZeroZeroTwoBothNameRowTwo)
{
    for (const std::string rows : {"2", "002"}) {
        SCOPED_TRACE("--rows " + rows);
        TempFolder folder;
        ASSERT_TRUE(succeeded(exportTones(folder, {"--to", "out/ring.mmf", "--rows", rows})));
        EXPECT_EQ(readBytes(folder.path("out/ring-002.mmf")), kSecondTone);
        EXPECT_FALSE(exists(folder.path("out/ring-001.mmf")));
    }
}

TEST(ExportTonesCommand, LongerExistingFileKeepsItsTail)
{
    TempFolder folder;
    std::filesystem::create_directory(folder.path("out"));
    writeFile(folder.path("out/ring-001.mmf"), repeated(300, 0xEE));
    ASSERT_TRUE(succeeded(exportTones(folder, {"--to", "out/ring.mmf", "--rows", "001"})));
    EXPECT_EQ(readBytes(folder.path("out/ring-001.mmf")), joined({kFirstTone, repeated(199, 0xEE)}));
}

TEST(ExportTonesCommand, RowNotFoundFailsAndWritesNothing)
{
    TempFolder folder;
    EXPECT_TRUE(failedWith(exportTones(folder, {"--to", "out/ring.mmf", "--rows", "001,003"}), {"row 3"}));
    EXPECT_FALSE(exists(folder.path("out/ring-001.mmf")));
    EXPECT_FALSE(exists(folder.path("out/ring-003.mmf")));
}
