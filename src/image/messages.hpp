// The numbered messages: each code's text is MsgStrN of the language file; its title
// and icon are fixed per code here.
#pragma once

#include <optional>

namespace zevran::image {

enum class MessageIcon { Exclamation, Stop, Information };

struct MessageStyle {
    int titleNumber;  // N of the language key MsgTitleN
    MessageIcon icon;
};

// nullopt for a code that shows nothing (0, 35, 40 and above, and the unused ones).
std::optional<MessageStyle> messageStyle(int code);

}  // namespace zevran::image
