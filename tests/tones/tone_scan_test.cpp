#include "tones/tone_scan.hpp"

#include "image/hex_text.hpp"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

using namespace zevran::tones;
using zevran::image::ImageState;

namespace {

// Plants "MMMD" and a big-endian body length at `at`.
void plantSignature(std::vector<std::uint8_t>& image, std::size_t at, std::uint32_t bodyLength)
{
    const std::uint8_t bytes[] = {'M',
                                  'M',
                                  'M',
                                  'D',
                                  static_cast<std::uint8_t>(bodyLength >> 24),
                                  static_cast<std::uint8_t>(bodyLength >> 16),
                                  static_cast<std::uint8_t>(bodyLength >> 8),
                                  static_cast<std::uint8_t>(bodyLength)};
    std::copy(std::begin(bytes), std::end(bytes), image.begin() + static_cast<std::ptrdiff_t>(at));
}

ImageState imageOf(std::vector<std::uint8_t> bytes)
{
    ImageState state;
    zevran::image::setImage(state, "/tmp/phone.bin", std::move(bytes));
    return state;
}

}  // namespace

struct Signature {
    std::size_t at;
    std::uint32_t bodyLength;  // the size a header declares is this plus its own 8 bytes
};

// An image of zeros with signatures planted in order, and the rows its scan gives as
// "number start end size".
struct ScanCase {
    std::string name;
    std::size_t imageBytes;
    std::vector<Signature> signatures;
    std::vector<std::string> rows;
};

class ToneScanRows : public ::testing::TestWithParam<ScanCase> {};

TEST_P(ToneScanRows, ListEveryAcceptedToneWithAnEmptyNote)
{
    std::vector<std::uint8_t> image(GetParam().imageBytes, 0);
    for (const Signature& signature : GetParam().signatures) plantSignature(image, signature.at, signature.bodyLength);
    ImageState state = imageOf(image);
    const std::vector<ToneSlot> rows = scanTones(state);
    std::vector<std::string> lines;
    for (const ToneSlot& row : rows) {
        lines.push_back(row.number + " " + row.start + " " + row.end + " " + row.size);
        EXPECT_EQ(row.note, "");
    }
    EXPECT_EQ(lines, GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(
    Images, ToneScanRows,
    ::testing::Values(
        ScanCase{"ToneAt0x1234OfSize256GivesItsRow", 0x2000, {{0x1234, 0x100 - 8}}, {"001 0x00001234 0x00001333 256"}},
        ScanCase{"SignatureAtOffsetZeroIsNeverFound", 400, {{0, 200}}, {}},
        // Declared sizes 100 (too small), 101, 99999 and 100000 (too large).
        ScanCase{"DeclaredSizeMustLieFrom101To99999",
                 600000,
                 {{1000, 92}, {2000, 93}, {3000, 99991}, {200000, 99992}},
                 {"001 0x000007D0 0x00000834 101", "002 0x00000BB8 0x00019256 99999"}},
        ScanCase{"SignatureInsideAnAcceptedToneIsExaminedToo",
                 4000,
                 {{100, 1000}, {300, 200}},
                 {"001 0x00000064 0x00000453 1008", "002 0x0000012C 0x000001FB 208"}},
        // The copy at 11 overwrites the first's last three bytes, leaving "MMMMD": the
        // four bytes at 10 no longer form a signature, so only the copy at 11 is judged.
        ScanCase{"SignaturesOneByteApartAreJudgedEachOnItsOwn",
                 2000,
                 {{10, 0}, {11, 150}},
                 {"001 0x0000000B 0x000000A8 158"}},
        ScanCase{"HugeDeclaredLengthIsRejectedWithoutOverflow", 100, {{5, 0xFFFFFFFF}}, {}}),
    [](const auto& row) { return row.param.name; });

TEST(ToneScan, SignatureWhoseLengthFieldPassesTheEndIsNoTone)
{
    std::vector<std::uint8_t> image(20, 0);
    image[14] = 'M', image[15] = 'M', image[16] = 'M', image[17] = 'D', image[18] = 0, image[19] = 0;
    ImageState state = imageOf(image);
    std::vector<std::int32_t> matches;
    EXPECT_TRUE(scanTones(state, [&](std::int32_t at) { matches.push_back(at); }).empty());
    EXPECT_EQ(matches, (std::vector<std::int32_t>{14}));
}

TEST(ToneScan, ThousandthToneIsNumbered1000)
{
    std::vector<std::uint8_t> image(1 + 1000 * 120, 0);
    for (std::size_t i = 0; i < 1000; ++i) plantSignature(image, 1 + i * 120, 112);
    ImageState state = imageOf(image);
    auto rows = scanTones(state);
    ASSERT_EQ(rows.size(), 1000u);
    EXPECT_EQ(rows[998].number, "999");
    EXPECT_EQ(rows[999].number, "1000");
}

TEST(ToneScan, ScanningTwiceGivesTheSameListAndLeavesNoLastMatch)
{
    std::vector<std::uint8_t> image(3000, 0);
    plantSignature(image, 7, 500);
    plantSignature(image, 1500, 300);
    ImageState state = imageOf(image);
    auto first = scanTones(state);
    EXPECT_EQ(state.LastMatch, 0);
    auto second = scanTones(state);
    ASSERT_EQ(first.size(), 2u);
    ASSERT_EQ(second.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(first[i].start, second[i].start);
        EXPECT_EQ(first[i].end, second[i].end);
    }
}

TEST(ToneScan, MatchesTheSharedSearchStepByStep)
{
    std::vector<std::uint8_t> image(5000, 0);
    for (std::size_t at : {3u, 50u, 51u, 52u, 700u, 4990u}) plantSignature(image, at, 200);
    ImageState walked = imageOf(image);
    std::vector<std::int32_t> bySearch;
    while (zevran::image::FindHexInImage(walked, kToneSignature)) bySearch.push_back(walked.SearchStart);
    ImageState scanned = imageOf(image);
    std::vector<std::int32_t> byScan;
    scanTones(scanned, [&](std::int32_t at) { byScan.push_back(at); });
    EXPECT_EQ(byScan, bySearch);
}

namespace {

std::vector<std::string> rowLines(const std::vector<ToneSlot>& rows)
{
    std::vector<std::string> lines;
    lines.reserve(rows.size());
    for (const ToneSlot& row : rows) lines.push_back(row.number + " " + row.start + " " + row.end + " " + row.size);
    return lines;
}

ToneStreamScan streamScan(const std::vector<std::uint8_t>& image, std::size_t chunkBytes)
{
    std::istringstream in(std::string(image.begin(), image.end()));
    return scanToneStream(in, chunkBytes);
}

}  // namespace

TEST(ToneStreamScan, SignatureAcrossAChunkBoundaryIsFoundOnce)
{
    // Every split of the eight header bytes over two 64-byte chunks, and a tone whose
    // length field ends the file.
    for (std::size_t at = 56; at <= 64; ++at) {
        std::vector<std::uint8_t> image(200, 0);
        plantSignature(image, at, 100);
        plantSignature(image, 192, 100);
        const ToneStreamScan scan = streamScan(image, 64);
        EXPECT_EQ(scan.imageBytes, 200);
        const std::string start = "0x000000" + zevran::image::HexPad(static_cast<std::uint32_t>(at), 2);
        EXPECT_EQ(rowLines(scan.rows),
                  (std::vector<std::string>{"001 " + start + " 0x000000" +
                                                zevran::image::HexPad(static_cast<std::uint32_t>(at + 107), 2) + " 108",
                                            "002 0x000000C0 0x0000012B 108"}))
            << "signature at " << at;
    }
}

TEST(ToneStreamScan, SignatureAtOffsetZeroIsNeverFound)
{
    std::vector<std::uint8_t> image(300, 0);
    plantSignature(image, 0, 100);
    EXPECT_TRUE(streamScan(image, 64).rows.empty());
}

TEST(ToneStreamScan, GivesTheRowsOfTheWholeImageScanForAnyChunkSize)
{
    std::mt19937 random(7);
    std::vector<std::uint8_t> image(5000);
    for (auto& byte : image) byte = static_cast<std::uint8_t>(random() % 4 == 0 ? 'M' : random());
    for (std::size_t at = 3; at + 8 < image.size(); at += 97 + random() % 50)
        plantSignature(image, at, 93 + random() % 300);
    plantSignature(image, image.size() - 16, 200);  // a tone whose header ends 8 bytes short of the end
    // A signature whose length field runs off the end.
    image[image.size() - 6] = image[image.size() - 5] = image[image.size() - 4] = 'M';
    image[image.size() - 3] = 'D';
    ImageState state = imageOf(image);
    const std::vector<std::string> expected = rowLines(scanTones(state));
    ASSERT_GT(expected.size(), 20u);
    for (std::size_t chunk : {8u, 9u, 13u, 64u, 1000u, 4999u, 5000u, 5001u, 1u << 20})
        EXPECT_EQ(rowLines(streamScan(image, chunk).rows), expected) << "chunk " << chunk;
}

TEST(ToneStreamScan, EmptyInputHasNoBytesAndNoRows)
{
    const ToneStreamScan scan = streamScan({}, 64);
    EXPECT_EQ(scan.imageBytes, 0);
    EXPECT_TRUE(scan.rows.empty());
}
