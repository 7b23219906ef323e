// Language files: every caption, column header, status label, message and filter of
// the window comes from one of them, read with private-profile semantics.
#pragma once

#include "window/interface_texts.hpp"

#include <QString>
#include <string>
#include <string_view>

class QWidget;

namespace zevran::app {

// Reads every key of the language file at `path` in its fixed order and gives each
// value to its target among the window's children (found by object name) or to
// `texts`. A missing or empty key is written back empty, as the profile reading does,
// so a file lacking keys gains them and a missing file is created; without `writeBack`
// (a shipped file of an installed workshop) the file is only read.
void ApplyLanguage(QWidget* window, const std::string& path, window::InterfaceTexts& texts, const std::string& codePage,
                   bool writeBack = true);

// True when `bytes` (after a byte-order mark, if any) are valid UTF-8.
bool isValidUtf8(std::string_view bytes);

// The text of a language file's value: UTF-8 when the file is valid UTF-8, else the code page.
QString decodeLanguageValue(const std::string& value, bool utf8File, const std::string& codePage);

}  // namespace zevran::app
