// The texts of the classic key set that commands read when they show them: message
// texts and titles, dialog filters, the help file's name. The workshop's own keys are
// asked for by name through TabHost::text.
#pragma once

#include <QString>
#include <array>

namespace zevran::window {

struct InterfaceTexts {
    std::array<QString, 40> MsgStr;   // MsgStr[N] for message code N
    std::array<QString, 8> MsgTitle;  // MsgTitle[N]
    std::array<QString, 8> Filter;    // Filter[N], in the classic "desc|patterns" form
    QString HelpStr;                  // the help document, relative to the program folder
    QString StatusBar1Str3;           // the version text when no marker is found
    QString ComS3ToBin;               // the converter's start caption
};

}  // namespace zevran::window
