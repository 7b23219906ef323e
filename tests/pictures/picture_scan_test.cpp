#include "pictures/picture_scan.hpp"

#include "support/firmware_like.hpp"
#include "support/noise_bytes.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace zevran::pictures;
using zevran::test::noise;

struct Planted {
    std::vector<std::uint8_t> image;
    PictureCandidate picture;  // where it lies and its geometry
};

void append(std::vector<std::uint8_t>& to, const std::vector<std::uint8_t>& bytes)
{
    to.insert(to.end(), bytes.begin(), bytes.end());
}

// A picture at 0x6000 behind noise, code and fill, and code, text and noise after it.
Planted plantedAmongOthers(int depth, std::int32_t width, std::int32_t height, int kind)
{
    Planted planted;
    auto& image = planted.image;
    append(image, noise(0x2000, 7));
    append(image, zevran::test::thumbCode(0x2000, 8));
    image.resize(0x6000, 0xFF);
    planted.picture = {0x6000, depth, width, height, 0, false};
    append(image, zevran::test::drawPictureBytes(width, height, depth, kind, 99, zevran::test::classicColours()));
    append(image, zevran::test::thumbCode(0x1800, 9));
    append(image, zevran::test::asciiTexts(0x800, 10));
    append(image, noise(0x2000, 11));
    return planted;
}

ScanRequest requestWithColours()
{
    ScanRequest request;
    request.colours = zevran::test::classicColours();
    return request;
}

struct DepthCase {
    int depth;
    std::int32_t width;
    std::int32_t height;
    int kind;
};

class PictureScanDepth : public testing::TestWithParam<DepthCase> {};

// The picture's bytes that the candidate covers.
std::int64_t coveredBytes(const PictureCandidate& found, const PictureCandidate& picture)
{
    const std::int64_t end = std::min(found.address + candidateBytes(found), picture.address + candidateBytes(picture));
    return std::max<std::int64_t>(0, end - std::max(found.address, picture.address));
}

TEST_P(PictureScanDepth, PlantedPictureIsFoundWithItsGeometry)
{
    const DepthCase c = GetParam();
    const Planted planted = plantedAmongOthers(c.depth, c.width, c.height, c.kind);
    const ScanResult result = scanPictures(planted.image, requestWithColours());
    ASSERT_FALSE(result.failure);
    ASSERT_FALSE(result.stopped);
    ASSERT_EQ(result.candidates.size(), 1u);
    const PictureCandidate& found = result.candidates[0];
    EXPECT_EQ(found.depth, c.depth);
    EXPECT_EQ(found.width, c.width);
    // It starts within a row of the picture and holds nearly all of it (a pixel or row
    // at an edge may be read as belonging to the bytes beside it).
    const std::int64_t row = candidateBytes({0, c.depth, c.width, 1});
    EXPECT_LE(std::abs(found.address - 0x6000), row) << found.address;
    EXPECT_LE(std::abs(found.height - c.height), 1) << found.height;
    EXPECT_GE(coveredBytes(found, planted.picture) * 10, candidateBytes(planted.picture) * 9);
    EXPECT_GE(found.score, 0.5);
    EXPECT_LE(found.score, 1.0);
    EXPECT_FALSE(found.known);
}

INSTANTIATE_TEST_SUITE_P(Depths, PictureScanDepth,
                         testing::Values(DepthCase{4, 48, 40, 0}, DepthCase{8, 64, 32, 1}, DepthCase{12, 40, 36, 1},
                                         DepthCase{16, 56, 56, 0}, DepthCase{16, 96, 64, 1}, DepthCase{24, 33, 30, 1},
                                         DepthCase{8, 20, 24, 0}),
                         [](const testing::TestParamInfo<DepthCase>& row) {
                             return "Depth" + std::to_string(row.param.depth) + "Width" +
                                    std::to_string(row.param.width);
                         });

struct PackedCase {
    const char* name;
    DepthCase first;
    DepthCase second;
};

class PictureScanPacked : public testing::TestWithParam<PackedCase> {};

// Two pictures back to back, as resource blocks hold them, behind code and before code
// and noise: the plain parts of the second are alike at the first one's width too, and
// the walk over the first must stop where the second begins.
TEST_P(PictureScanPacked, EachIsFoundWithItsOwnGeometry)
{
    const PackedCase c = GetParam();
    const auto colours = zevran::test::classicColours();
    std::vector<std::uint8_t> image = zevran::test::thumbCode(0x4000, 8);
    std::vector<PictureCandidate> planted;
    std::uint32_t seed = 99;
    for (const DepthCase& picture : {c.first, c.second}) {
        planted.push_back(
            {static_cast<std::int64_t>(image.size()), picture.depth, picture.width, picture.height, 0, false});
        append(image, zevran::test::drawPictureBytes(picture.width, picture.height, picture.depth, picture.kind, seed++,
                                                     colours));
    }
    append(image, zevran::test::thumbCode(0x1800, 9));
    append(image, noise(0x2000, 11));
    const ScanResult result = scanPictures(image, requestWithColours());
    ASSERT_EQ(result.candidates.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const PictureCandidate& found = result.candidates[i];
        const PictureCandidate& picture = planted[i];
        EXPECT_EQ(found.depth, picture.depth) << i;
        EXPECT_EQ(found.width, picture.width) << i;
        EXPECT_LE(std::abs(found.address - picture.address), candidateBytes({0, picture.depth, picture.width, 1})) << i;
        EXPECT_LE(std::abs(found.height - picture.height), 1) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, PictureScanPacked,
                         testing::Values(PackedCase{"Depth12Then16", {12, 72, 40, 0}, {16, 52, 40, 0}},
                                         PackedCase{"Depth24Widths40And44", {24, 40, 40, 1}, {24, 44, 40, 1}},
                                         PackedCase{"Depth8Then12", {8, 50, 40, 1}, {12, 64, 40, 1}},
                                         PackedCase{"Depth16Widths93And94", {16, 93, 40, 1}, {16, 94, 40, 1}}),
                         [](const testing::TestParamInfo<PackedCase>& row) { return std::string(row.param.name); });

// The scan's goals on a firmware-like image: 90 % of the planted pictures found with
// their depth and width, at most 2 candidates per MiB covering none (make bench prints
// both for this image beside the goals).
TEST(PictureScan, FirmwareLikeImageGivesMostPicturesAndFewFalseCandidates)
{
    const auto made = zevran::test::makeFirmwareLike(std::size_t{8} << 20, 2024, zevran::test::classicColours());
    const ScanResult result = scanPictures(made.image, requestWithColours());
    const auto tally = zevran::test::tallyScan(made, result.candidates);
    ASSERT_GE(tally.pictures, 200u);
    EXPECT_GE(tally.found * 100, tally.pictures * 90) << tally.found << " of " << tally.pictures;
    EXPECT_LE(tally.falseCandidates, 2u * 8) << "false candidates in 8 MiB";
}

TEST(PictureScan, ConstantFillGivesNoCandidate)
{
    for (std::uint8_t fill : {0x00, 0xFF, 0x5A}) {
        const std::vector<std::uint8_t> image(std::size_t{1} << 20, fill);
        EXPECT_TRUE(scanPictures(image, requestWithColours()).candidates.empty()) << int{fill};
    }
}

TEST(PictureScan, RandomBytesGiveNoCandidate)
{
    const auto image = noise(std::size_t{4} << 20, 12345);
    EXPECT_TRUE(scanPictures(image, requestWithColours()).candidates.empty());
}

TEST(PictureScan, CodeAndTextGiveNoCandidate)
{
    std::vector<std::uint8_t> image = zevran::test::thumbCode(std::size_t{1} << 20, 3);
    append(image, zevran::test::asciiTexts(std::size_t{1} << 19, 4));
    append(image, zevran::test::wordTable(std::size_t{1} << 19, 5));
    EXPECT_TRUE(scanPictures(image, requestWithColours()).candidates.empty());
}

TEST(PictureScan, EmptyImageGivesNothing)
{
    const ScanResult result = scanPictures({}, requestWithColours());
    EXPECT_FALSE(result.failure);
    EXPECT_TRUE(result.candidates.empty());
}

TEST(PictureScan, RangeLimitsWhatIsFound)
{
    const Planted planted = plantedAmongOthers(16, 64, 48, 0);
    ScanRequest request = requestWithColours();
    request.first = 0x6000 + 64 * 2 * 48;  // just past the picture
    EXPECT_TRUE(scanPictures(planted.image, request).candidates.empty());
    request.first = 0;
    request.last = 0x5FFF;  // just before it
    EXPECT_TRUE(scanPictures(planted.image, request).candidates.empty());
    request.first = 0x5000;
    request.last = 0x6000 + 64 * 2 * 48 - 1;
    const ScanResult inside = scanPictures(planted.image, request);
    ASSERT_EQ(inside.candidates.size(), 1u);
    EXPECT_EQ(inside.candidates[0].width, 64);
    EXPECT_GE(inside.candidates[0].address, 0x5000);
    EXPECT_LE(inside.candidates[0].address + candidateBytes(inside.candidates[0]), 0x6000 + 64 * 2 * 48);
}

TEST(PictureScan, DepthLimitLeavesOtherDepthsOut)
{
    const Planted planted = plantedAmongOthers(16, 64, 48, 0);
    ScanRequest request = requestWithColours();
    request.depths = {8, 24};
    EXPECT_TRUE(scanPictures(planted.image, request).candidates.empty());
    request.depths = {16};
    ASSERT_EQ(scanPictures(planted.image, request).candidates.size(), 1u);
}

struct RefusalCase {
    std::int64_t first, last;
    std::vector<int> depths;
    ScanRefusal reason;
    std::int64_t value;
};

TEST(PictureScan, RangeAndDepthRefusalsNameTheirValue)
{
    const std::vector<std::uint8_t> image(0x1000, 0);
    for (const RefusalCase& c : std::vector<RefusalCase>{
             {0x1000, -1, {16}, ScanRefusal::FirstOutsideImage, 0x1000},
             {-1, -1, {16}, ScanRefusal::FirstOutsideImage, -1},
             {0, 0x1000, {16}, ScanRefusal::LastOutsideImage, 0x1000},
             {0x800, 0x7FF, {16}, ScanRefusal::RangeReversed, 0x7FF},
             {0, -1, {16, 2}, ScanRefusal::DepthNotScanned, 2},
             {0, -1, {1}, ScanRefusal::DepthNotScanned, 1},
         }) {
        ScanRequest request;
        request.first = c.first;
        request.last = c.last;
        request.depths = c.depths;
        const ScanResult result = scanPictures(image, request);
        ASSERT_TRUE(result.failure);
        EXPECT_EQ(result.failure->reason, c.reason);
        EXPECT_EQ(result.failure->value, c.value);
    }
}

TEST(PictureScan, CandidateOverlappingATableRowIsKnown)
{
    std::vector<PictureCandidate> candidates = {{0x1000, 16, 32, 32, 0.9, false}, {0x3000, 8, 32, 32, 0.9, false}};
    // The first row's two frames of 1025 bytes end at 0x1001, two bytes into the first
    // candidate; the second row ends at 0x23FF, before the second candidate.
    const std::vector<PictureEntry> rows = {
        {"001", "logo", "0X00000800", "2", "1025", "32*32", "8"},
        {"002", "gap", "0X00002000", "1", "1024", "32*32", "8"},
        {"003", "bad", "0XZZ", "x", "y", "z", "w"},
    };
    markKnownCandidates(candidates, rows);
    EXPECT_TRUE(candidates[0].known);
    EXPECT_FALSE(candidates[1].known);
}

TEST(PictureScan, StopBeforeTheStartFindsNothingAndSaysSo)
{
    const Planted planted = plantedAmongOthers(16, 64, 48, 0);
    ScanControl control;
    control.stop = true;
    const ScanResult result = scanPictures(planted.image, requestWithColours(), &control);
    EXPECT_TRUE(result.stopped);
    EXPECT_TRUE(result.candidates.empty());
}

TEST(PictureScan, ProgressReachesTheTotalAndThreadsChangeNothing)
{
    const auto made = zevran::test::makeFirmwareLike(std::size_t{3} << 20, 77, zevran::test::classicColours());
    ScanControl control;
    const ScanResult two = scanPictures(made.image, requestWithColours(), &control, 2);
    EXPECT_EQ(control.done.load(), control.total.load());
    EXPECT_EQ(control.total.load(), std::int64_t{3 << 20} * 10);  // ten lanes: 4, 8, 12 x 3, 16 x 2, 24 x 3
    const ScanResult one = scanPictures(made.image, requestWithColours(), nullptr, 1);
    ASSERT_EQ(one.candidates.size(), two.candidates.size());
    for (std::size_t i = 0; i < one.candidates.size(); ++i) {
        EXPECT_EQ(one.candidates[i].address, two.candidates[i].address);
        EXPECT_EQ(one.candidates[i].width, two.candidates[i].width);
        EXPECT_EQ(one.candidates[i].height, two.candidates[i].height);
    }
}

TEST(PictureScan, CandidatesBecomeRowsUnderNamesNoOneHas)
{
    const std::vector<PictureCandidate> candidates = {{0x1234, 16, 32, 20, 0.9, false},
                                                      {0x1234, 8, 64, 10, 0.8, false}};
    const std::vector<PictureEntry> rows = {{"001", "pic_00001234", "0X00001234", "1", "1280", "32*20", "16"}};
    const auto names = candidateNames(candidates, rows);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], "pic_00001234_2");
    EXPECT_EQ(names[1], "pic_00001234_3");
    const PictureEntry entry = candidateEntry(candidates[0], "002", names[0]);
    EXPECT_EQ(entry.address, "0X00001234");
    EXPECT_EQ(entry.frames, "1");
    EXPECT_EQ(entry.frameSize, "1280");
    EXPECT_EQ(entry.dimensions, "32*20");
    EXPECT_EQ(entry.depth, "16");
}

}  // namespace
