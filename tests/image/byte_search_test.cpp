#include "image/byte_search.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace zevran::image;

namespace {

// The plain scan that the fast search must agree with.
std::size_t naiveFind(const std::vector<std::uint8_t>& hay, const std::vector<std::uint8_t>& needle, std::size_t from)
{
    if (needle.empty() || hay.size() < needle.size()) return kNotFound;
    for (std::size_t i = from; i + needle.size() <= hay.size(); ++i) {
        std::size_t j = 0;
        while (j < needle.size() && hay[i + j] == needle[j]) ++j;
        if (j == needle.size()) return i;
    }
    return kNotFound;
}

}  // namespace

TEST(FindBytes, AgreesWithAPlainScanOnEveryStartPosition)
{
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        // A small alphabet makes partial matches frequent.
        std::vector<std::uint8_t> hay(random() % 90);
        for (auto& b : hay) b = static_cast<std::uint8_t>(random() % 3);
        std::vector<std::uint8_t> needle(1 + random() % 6);
        for (auto& b : needle) b = static_cast<std::uint8_t>(random() % 3);
        for (std::size_t from = 0; from <= hay.size() + 1; ++from)
            ASSERT_EQ(findBytes(hay, needle, from), naiveFind(hay, needle, from))
                << "round " << round << " from " << from;
    }
}

TEST(FindBytes, FindsAMatchInTheLastPossiblePosition)
{
    std::vector<std::uint8_t> hay(100, 0);
    hay[96] = 'M';
    hay[97] = 'M';
    hay[98] = 'M';
    hay[99] = 'D';
    const std::vector<std::uint8_t> needle{'M', 'M', 'M', 'D'};
    EXPECT_EQ(findBytes(hay, needle, 0), 96u);
    EXPECT_EQ(findBytes(hay, needle, 97), kNotFound);
}

TEST(FindBytes, EmptyNeedleIsNeverFound)
{
    const std::vector<std::uint8_t> hay{1, 2};
    EXPECT_EQ(findBytes(hay, {}, 0), kNotFound);
}

TEST(FindBytesBefore, FindsTheLastMatchStartingBeforeTheLimit)
{
    const std::vector<std::uint8_t> hay{'M', 'M', 'M', 'D', 0, 'M', 'M', 'M', 'D', 'M', 'M'};
    const std::vector<std::uint8_t> needle{'M', 'M', 'M', 'D'};
    EXPECT_EQ(findBytesBefore(hay, needle, hay.size()), 5u);  // "MM" at the end is cut short
    EXPECT_EQ(findBytesBefore(hay, needle, 5), 0u);
    EXPECT_EQ(findBytesBefore(hay, needle, 0), kNotFound);
    EXPECT_EQ(findBytesBefore(hay, {}, hay.size()), kNotFound);
    EXPECT_EQ(findBytesBefore(std::vector<std::uint8_t>{'M'}, needle, 1), kNotFound);
}
