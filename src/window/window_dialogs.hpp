// Every file, folder and message dialog of the workshop goes through this interface,
// so that each command can be driven by a test double instead of a person.
#pragma once

#include <QString>

namespace zevran::window {

enum class MessageKind { Warning, Critical, Information };
enum class Answer { Yes, No, Cancel };

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // A path, or "" when cancelled. `filter` is in Qt's form; `filterIndex` counts from 1.
    virtual QString openFile(const QString& folder, const QString& filter, int filterIndex) = 0;
    virtual QString saveFile(const QString& folder, const QString& filter, int filterIndex) = 0;
    // A folder ending in "/", or "" when cancelled.
    virtual QString chooseFolder(const QString& prompt) = 0;
    // `code` is the message number (0 for a message without one) so tests can see it.
    virtual void message(int code, MessageKind kind, const QString& title, const QString& text) = 0;
    virtual Answer askYesNoCancel(const QString& title, const QString& text) = 0;
};

}  // namespace zevran::window
