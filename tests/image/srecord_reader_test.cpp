#include "image/srecord_reader.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

namespace {

SRecordData design(std::string_view line)
{
    SRecordData record;
    readDesignRecord(line, 1, record);
    return record;
}

SRecordData strict(std::string_view line)
{
    SRecordData record;
    readStrictRecord(line, 1, record);
    return record;
}

std::vector<std::string> split(std::initializer_list<std::string_view> pieces)
{
    LineSplitter splitter;
    std::vector<std::string> lines;
    auto collect = [&](std::string_view line) { lines.emplace_back(line); };
    for (auto piece : pieces) splitter.feed(piece, collect);
    splitter.finish(collect);
    return lines;
}

using Bytes = std::vector<std::uint8_t>;

}  // namespace

TEST(SRecordRead, HeaderAndTrailerLinesCarryNoData)
{
    EXPECT_FALSE(design("S00600004844521B").isData);
    EXPECT_FALSE(design("S705A002000058").isData);
}

TEST(SRecordRead, S3LineGivesAddressAndData)
{
    SRecordData record = design("S30700000020DEAD4D");
    EXPECT_TRUE(record.isData);
    EXPECT_EQ(record.address, 0x20u);
    EXPECT_EQ(record.bytes, (Bytes{0xDE, 0xAD}));
}

TEST(SRecordRead, AddressAboveTheSignedRangeIsReadUnsigned)
{
    EXPECT_EQ(design("S307A0020000010253").address, 0xA0020000u);
}

TEST(SRecordRead, S1LineIsReadAsIfItWereS3)
{
    // Characters 5-12 are taken as the address even though an S1 address has 4 digits.
    SRecordData record = design("S1071000AABBCCDD00");
    EXPECT_TRUE(record.isData);
    EXPECT_EQ(record.address, 0x1000AABBu);
    EXPECT_EQ(record.bytes, (Bytes{0xCC, 0xDD}));
}

TEST(SRecordRead, S5CountLineIsReadAsS3SoItsCountOfThreeFails) { EXPECT_THROW(design("S5030001FB"), SRecordError); }

TEST(SRecordRead, ChecksumIsNotRead) { EXPECT_EQ(design("S30700000020DEAD00").bytes, (Bytes{0xDE, 0xAD})); }

TEST(SRecordRead, NonHexDigitReadsAsZero) { EXPECT_EQ(design("S30700000020GEAX4D").bytes, (Bytes{0x0E, 0xA0})); }

TEST(SRecordRead, MissingPairsOfAShortLineReadAsZero)
{
    EXPECT_EQ(design("S30900000010AB").bytes, (Bytes{0xAB, 0x00, 0x00, 0x00}));
}

TEST(SRecordRead, LoneDigitOfAShortLineIsThatDigitsValue)
{
    EXPECT_EQ(design("S30900000010ABC").bytes, (Bytes{0xAB, 0x0C, 0x00, 0x00}));
}

TEST(SRecordRead, CountOfFiveGivesNoBytes)
{
    SRecordData record = design("S30500000000FA");
    EXPECT_TRUE(record.isData);
    EXPECT_TRUE(record.bytes.empty());
}

TEST(SRecordRead, CountBelowFiveFailsNamingTheLine)
{
    SRecordData record;
    try {
        readDesignRecord("S30400000000", 12, record);
        FAIL() << "no error";
    } catch (const SRecordError& error) {
        EXPECT_EQ(error.line(), 12u);
        EXPECT_EQ(std::string(error.what()).rfind("line 12: count field \"04\" is below 5", 0), 0u) << error.what();
    }
}

TEST(SRecordRead, EmptyLineHasACountBelowFive)
{
    EXPECT_THROW(design(""), SRecordError);
    EXPECT_THROW(design("S"), SRecordError);
}

TEST(SRecordReadStrict, RecordTypesGiveTheirAddressWidths)
{
    SRecordData s1 = strict("S1071000AABBCCDDDA");
    EXPECT_EQ(s1.address, 0x1000u);
    EXPECT_EQ(s1.bytes, (Bytes{0xAA, 0xBB, 0xCC, 0xDD}));
    SRecordData s2 = strict("S20710000011223382");
    EXPECT_EQ(s2.address, 0x100000u);
    EXPECT_EQ(s2.bytes, (Bytes{0x11, 0x22, 0x33}));
    SRecordData s3 = strict("S3080000010011223390");
    EXPECT_EQ(s3.address, 0x100u);
    EXPECT_EQ(s3.bytes, (Bytes{0x11, 0x22, 0x33}));
}

TEST(SRecordReadStrict, HeaderCountAndStartRecordsCarryNoData)
{
    for (auto line :
         {"S00F000068656C6C6F202020202000003C", "S5030001FB", "S705A002000058", "S804000000FB", "S9030000FC", ""})
        EXPECT_FALSE(strict(line).isData) << line;
}

TEST(SRecordReadStrict, WrongChecksumFailsNamingTheLine)
{
    SRecordData record;
    try {
        readStrictRecord("S30700000020DEAD00", 4, record);
        FAIL() << "no error";
    } catch (const SRecordError& error) {
        EXPECT_EQ(std::string(error.what()), "line 4: checksum 00 does not match 4D");
    }
}

TEST(SRecordReadStrict, MalformedLinesFail)
{
    for (auto line : {"X3070000", "S4030000FC", "S30700000020DEAD4", "S30700000020DEAD4D00", "S30700000020DEXD4D",
                      "S3040000", "S1020000"})
        EXPECT_THROW(strict(line), SRecordError) << line;
}

TEST(SRecordReadStrict, ForeignLinesAreThoseNeitherBlankNorStartingWithS)
{
    for (std::string_view line : {"# comment", ";", "s315", " S3090000001001020304DC", "\tX", "0"})
        EXPECT_TRUE(isForeignLine(line)) << line;
    for (std::string_view line : {"", " ", " \t ", "S", "S3090000001001020304DC", "Sx"})
        EXPECT_FALSE(isForeignLine(line)) << line;
}

TEST(LineSplitter, FeedFirstLineTakesOneLineAndLeavesTheSplitterEmpty)
{
    LineSplitter splitter;
    std::vector<std::string> lines;
    auto collect = [&](std::string_view line) { lines.emplace_back(line); };
    // The first piece ends in CR: its LF may follow in the next.
    EXPECT_EQ(splitter.feedFirstLine("S3AB\r", collect), 5u);
    EXPECT_FALSE(splitter.idle());
    EXPECT_EQ(splitter.feedFirstLine("\nS3CD\rS3EF\n", collect), 6u);
    EXPECT_TRUE(splitter.idle());
    EXPECT_EQ(splitter.feedFirstLine("S3EF\n", collect), 5u);
    EXPECT_EQ(splitter.feedFirstLine("S3G", collect), 3u);
    EXPECT_EQ(splitter.feedFirstLine("H\r\nS3", collect), 3u);
    EXPECT_TRUE(splitter.idle());
    EXPECT_EQ(lines, (std::vector<std::string>{"S3AB", "S3CD", "S3EF", "S3GH"}));
}

TEST(LineSplitter, AllThreeLineEndsEndALine)
{
    EXPECT_EQ(split({"a\r\nb\rc\nd"}), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(LineSplitter, CrLfSplitAcrossPiecesIsOneLineEnd)
{
    EXPECT_EQ(split({"a\r", "\nb\r", "\n"}), (std::vector<std::string>{"a", "b"}));
}

TEST(LineSplitter, LineSplitAcrossPiecesIsJoined)
{
    EXPECT_EQ(split({"S3", "07", "\r\nS7"}), (std::vector<std::string>{"S307", "S7"}));
}

TEST(LineSplitter, EmptyLinesInTheMiddleAreDelivered)
{
    EXPECT_EQ(split({"a\r\n\r\nb\n\nc"}), (std::vector<std::string>{"a", "", "b", "", "c"}));
}

TEST(LineSplitter, NoExtraLineAfterTheLastLineEnd) { EXPECT_EQ(split({"a\r\n"}), (std::vector<std::string>{"a"})); }

TEST(LineSplitter, OverlongLineIsCut)
{
    std::string longLine(5000, 'A');
    auto lines = split({longLine.substr(0, 3000), longLine.substr(3000) + "\nB"});
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].size(), LineSplitter::kMaxKeptLine);
    EXPECT_EQ(lines[1], "B");
}
