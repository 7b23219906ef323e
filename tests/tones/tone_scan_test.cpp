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

TEST(ToneScan, ToneAt0x1234OfSize256GivesItsRow)
{
    std::vector<std::uint8_t> image(0x2000, 0);
    plantSignature(image, 0x1234, 0x100 - 8);
    ImageState state = imageOf(image);
    auto rows = scanTones(state);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].number, "001");
    EXPECT_EQ(rows[0].start, "0x00001234");
    EXPECT_EQ(rows[0].end, "0x00001333");
    EXPECT_EQ(rows[0].size, "256");
    EXPECT_EQ(rows[0].note, "");
}

TEST(ToneScan, SignatureAtOffsetZeroIsNeverFound)
{
    std::vector<std::uint8_t> image(400, 0);
    plantSignature(image, 0, 200);
    ImageState state = imageOf(image);
    EXPECT_TRUE(scanTones(state).empty());
}

TEST(ToneScan, DeclaredSizeMustLieFrom101To99999)
{
    std::vector<std::uint8_t> image(600000, 0);
    plantSignature(image, 1000, 92);       // 100: too small
    plantSignature(image, 2000, 93);       // 101
    plantSignature(image, 3000, 99991);    // 99999
    plantSignature(image, 200000, 99992);  // 100000: too large
    ImageState state = imageOf(image);
    auto rows = scanTones(state);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].start, "0x000007D0");
    EXPECT_EQ(rows[0].size, "101");
    EXPECT_EQ(rows[1].number, "002");
    EXPECT_EQ(rows[1].start, "0x00000BB8");
    EXPECT_EQ(rows[1].size, "99999");
}

TEST(ToneScan, SignatureInsideAnAcceptedToneIsExaminedToo)
{
    std::vector<std::uint8_t> image(4000, 0);
    plantSignature(image, 100, 1000);
    plantSignature(image, 300, 200);
    ImageState state = imageOf(image);
    auto rows = scanTones(state);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].start, "0x00000064");
    EXPECT_EQ(rows[1].start, "0x0000012C");
}

TEST(ToneScan, SignaturesOneByteApartAreJudgedEachOnItsOwn)
{
    // The copy at 11 overwrites the first's last three bytes, leaving "MMMMD": the
    // four bytes at 10 no longer form a signature, so only the copy at 11 is judged.
    std::vector<std::uint8_t> image(2000, 0);
    plantSignature(image, 10, 0);
    plantSignature(image, 11, 150);
    ImageState state = imageOf(image);
    auto rows = scanTones(state);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].start, "0x0000000B");
    EXPECT_EQ(rows[0].size, "158");
}

TEST(ToneScan, SignatureWhoseLengthFieldPassesTheEndIsNoTone)
{
    std::vector<std::uint8_t> image(20, 0);
    image[14] = 'M', image[15] = 'M', image[16] = 'M', image[17] = 'D', image[18] = 0, image[19] = 0;
    ImageState state = imageOf(image);
    std::vector<std::int32_t> matches;
    EXPECT_TRUE(scanTones(state, [&](std::int32_t at) { matches.push_back(at); }).empty());
    EXPECT_EQ(matches, (std::vector<std::int32_t>{14}));
}

TEST(ToneScan, HugeDeclaredLengthIsRejectedWithoutOverflow)
{
    std::vector<std::uint8_t> image(100, 0);
    plantSignature(image, 5, 0xFFFFFFFF);
    ImageState state = imageOf(image);
    EXPECT_TRUE(scanTones(state).empty());
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
