#include "image/messages.hpp"

#include <gtest/gtest.h>

using namespace zevran::image;

namespace {

void expectStyle(int code, int title, MessageIcon icon)
{
    auto style = messageStyle(code);
    ASSERT_TRUE(style.has_value()) << "code " << code;
    EXPECT_EQ(style->titleNumber, title) << "code " << code;
    EXPECT_EQ(style->icon, icon) << "code " << code;
}

}  // namespace

TEST(MessageStyle, EveryShownCodeHasItsTitleAndIcon)
{
    for (int code : {1, 3, 4, 5, 11, 17, 19, 22, 24, 31}) expectStyle(code, 1, MessageIcon::Exclamation);
    for (int code : {2, 7, 8, 12, 28, 29, 30, 38}) expectStyle(code, 1, MessageIcon::Stop);
    for (int code : {34, 39}) expectStyle(code, 1, MessageIcon::Information);
    for (int code : {6, 9, 10, 13, 16, 18, 20, 21, 23}) expectStyle(code, 2, MessageIcon::Information);
    for (int code : {25, 27, 36, 37}) expectStyle(code, 3, MessageIcon::Exclamation);
    for (int code : {32, 33}) expectStyle(code, 3, MessageIcon::Information);
    expectStyle(15, 5, MessageIcon::Information);
    expectStyle(26, 6, MessageIcon::Exclamation);
}

TEST(MessageStyle, CodesOutsideTheTableShowNothing)
{
    for (int code : {0, 14, 35, 40, 41, -1}) EXPECT_FALSE(messageStyle(code).has_value()) << "code " << code;
}
