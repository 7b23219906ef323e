#include "messages.hpp"

#include <algorithm>
#include <array>

namespace zevran::image {

namespace {

struct StyleRow {
    std::initializer_list<int> codes;
    MessageStyle style;
};

}  // namespace

std::optional<MessageStyle> messageStyle(int code)
{
    static const std::array<StyleRow, 8> table{{
        {{1, 3, 4, 5, 11, 17, 19, 22, 24, 31}, {1, MessageIcon::Exclamation}},
        {{2, 7, 8, 12, 28, 29, 30, 38}, {1, MessageIcon::Stop}},
        {{34, 39}, {1, MessageIcon::Information}},
        {{6, 9, 10, 13, 16, 18, 20, 21, 23}, {2, MessageIcon::Information}},
        {{25, 27, 36, 37}, {3, MessageIcon::Exclamation}},
        {{32, 33}, {3, MessageIcon::Information}},
        {{15}, {5, MessageIcon::Information}},
        {{26}, {6, MessageIcon::Exclamation}},
    }};
    for (const auto& row : table)
        if (std::find(row.codes.begin(), row.codes.end(), code) != row.codes.end()) return row.style;
    return std::nullopt;
}

}  // namespace zevran::image
