// The keys of the language file that label a tab's own controls. Each tab lists its
// keys in the order the classic language file holds them (a file lacking keys gains
// them in that order); the window reads them and labels the tab's children by their
// design object names.
#pragma once

#include "interface_texts.hpp"

#include <QString>
#include <string>
#include <vector>

namespace zevran::window {

struct CaptionKey {
    const char* section;
    std::string key;
    // The control (a button, label, group or menu) by its object name; with `column`,
    // that column of the list of that name's header.
    const char* objectName = nullptr;
    int column = -1;
    // A text the tab shows later rather than at once (objectName is then null).
    QString InterfaceTexts::*kept = nullptr;
};

}  // namespace zevran::window
