#include "bytes/byte_text.hpp"
#include "bytes/byte_values.hpp"

#include <gtest/gtest.h>

namespace zevran::bytes {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ByteText, PatternsInEachEncoding)
{
    EXPECT_EQ(patternBytes("4d 4D4d", PatternKind::Hex, "GBK"), (Bytes{0x4D, 0x4D, 0x4D}));
    EXPECT_FALSE(patternBytes("4D4", PatternKind::Hex, "GBK"));
    EXPECT_FALSE(patternBytes("4G", PatternKind::Hex, "GBK"));
    EXPECT_EQ(patternBytes("中A", PatternKind::SingleByte, "GBK"), (Bytes{0xD6, 0xD0, 0x41}));
    EXPECT_EQ(patternBytes("中A", PatternKind::HandsetCodes, "GBK"), (Bytes{0x4E, 0x2D, 0xA1, 0x41}));
    EXPECT_FALSE(patternBytes("", PatternKind::SingleByte, "GBK"));
}

TEST(ByteText, FindGoesRoundTheImageBothWays)
{
    const Bytes image{0xAA, 1, 2, 0xAA, 1, 2, 0, 0};
    const Bytes pattern{0xAA, 1};
    EXPECT_EQ(findPattern(image, pattern, 0, true)->address, 0u);
    EXPECT_EQ(findPattern(image, pattern, 1, true)->address, 3u);
    const auto wrapped = findPattern(image, pattern, 4, true);
    EXPECT_EQ(wrapped->address, 0u);
    EXPECT_TRUE(wrapped->wrapped);
    EXPECT_EQ(findPattern(image, pattern, 3, false)->address, 0u);
    EXPECT_EQ(findPattern(image, pattern, 0, false)->address, 3u);
    EXPECT_TRUE(findPattern(image, pattern, 0, false)->wrapped);
    EXPECT_FALSE(findPattern(image, Bytes{9}, 0, true));
}

TEST(ByteText, CharactersOfBothEncodings)
{
    const auto table = singleByteCharacters("CP1252");
    EXPECT_EQ(table[0x41], u'A');
    EXPECT_EQ(table[0x09], 0);
    EXPECT_EQ(table[0xE9], u'é');
    EXPECT_EQ(handsetCharacter(0x4E, 0x2D), u'中');
    EXPECT_EQ(handsetCharacter(0xA1, 0x41), u'A');
    EXPECT_EQ(handsetCharacter(0x00, 0x41), 0);
}

TEST(ByteText, TwoByteCharactersOfTheCodePageStandOverBothBytes)
{
    const CodePageText text("GBK");
    const Bytes bytes{0xD6, 0xD0, 0x41, 0x81, 0x0A, 0xCE};
    const auto zhong = text.at(bytes, 0);
    EXPECT_EQ(zhong.unit, u'中');
    EXPECT_EQ(zhong.bytes, 2);
    EXPECT_EQ(text.at(bytes, 2).unit, u'A');
    EXPECT_EQ(text.at(bytes, 3).unit, 0);  // a lead byte before a control code
    EXPECT_EQ(text.at(bytes, 3).bytes, 1);
    EXPECT_EQ(text.at(bytes, 5).unit, 0);  // a lead byte at the end: its pair is cut
}

TEST(ByteText, AddressesToGoTo)
{
    EXPECT_EQ(parseAddress("0x1F", 0x100), 0x1Fu);
    EXPECT_EQ(parseAddress(" ff ", 0x100), 0xFFu);
    EXPECT_FALSE(parseAddress("100", 0x100));
    EXPECT_FALSE(parseAddress("xyz", 0x100));
}

TEST(ByteValues, NumbersInBothOrders)
{
    const Bytes image{0xFE, 0xFF, 0x01, 0x80};
    const auto numbers = numbersAt(image, 0);
    EXPECT_EQ(numbers[0].littleEndian, 0xFEu);
    EXPECT_EQ(numbers[0].signedLittle(), -2);
    EXPECT_EQ(numbers[1].littleEndian, 0xFFFEu);
    EXPECT_EQ(numbers[1].bigEndian, 0xFEFFu);
    EXPECT_EQ(numbers[1].signedBig(), -257);
    EXPECT_EQ(numbers[2].littleEndian, 0x8001FFFEu);
    EXPECT_EQ(numbers[2].signedLittle(), -2147352578);
    EXPECT_FALSE(numbersAt(image, 2)[2].present);
}

TEST(ByteValues, PixelsAsThePreviewShowsThem)
{
    const auto depth8 = pixelAt(Bytes{0xE0}, 0, 8);
    EXPECT_EQ(depth8->blue, 255);
    EXPECT_EQ(depth8->red, 0);
    EXPECT_EQ(pixelAt(Bytes{0x01}, 0, 8)->red, 85);
    const auto depth16 = pixelAt(Bytes{0x1F, 0x00}, 0, 16);
    EXPECT_EQ(depth16->stored, 0x001Fu);
    EXPECT_EQ(depth16->blue, 255);
    EXPECT_EQ(depth16->red, 0);
    const auto depth12 = pixelAt(Bytes{0xF0, 0x8A, 0xBC}, 0, 12);
    EXPECT_EQ(depth12->stored, 0xF08u);
    EXPECT_EQ(depth12->red, 255);
    EXPECT_EQ(depth12->blue, 136);
    const auto depth24 = pixelAt(Bytes{1, 2, 3}, 0, 24);
    EXPECT_EQ(depth24->blue, 1);
    EXPECT_EQ(depth24->red, 3);
    EXPECT_FALSE(pixelAt(Bytes{1, 2}, 0, 24));
}

}  // namespace
}  // namespace zevran::bytes
