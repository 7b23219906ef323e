#include "image/table_text.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

using Views = std::vector<std::string_view>;

TEST(DelTab, TrimsSpacesThenRemovesEveryTab)
{
    EXPECT_EQ(Del_TAb("  \tring\t1  "), "ring1");
    EXPECT_EQ(Del_TAb("\t a "), " a");
    EXPECT_EQ(Del_TAb(""), "");
}

TEST(SplitTextLines, EveryKindOfLineEnd)
{
    EXPECT_EQ(splitTextLines("a\r\nb\rc\nd"), (Views{"a", "b", "c", "d"}));
    EXPECT_EQ(splitTextLines("a\r\n\r\n"), (Views{"a", ""}));
    EXPECT_TRUE(splitTextLines("").empty());
}

TEST(SplitAtSpaces, RunsOfSpacesGiveEmptyFields)
{
    EXPECT_EQ(splitAtSpaces(" 001 : x"), (Views{"", "001", ":", "x"}));
    EXPECT_EQ(splitAtSpaces("a  b "), (Views{"a", "", "b", ""}));
    EXPECT_EQ(splitAtSpaces(""), (Views{""}));
}
