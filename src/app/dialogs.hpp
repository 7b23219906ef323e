// Every file, folder and message dialog of the workshop goes through this interface,
// so that each command can be driven by a test double instead of a person.
#pragma once

#include <QString>

class QWidget;

namespace zevran::app {

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

// The real dialogs of Qt, owned by the main window.
class QtDialogs : public Dialogs {
public:
    explicit QtDialogs(QWidget* parent) : m_parent(parent) {}

    QString openFile(const QString& folder, const QString& filter, int filterIndex) override;
    QString saveFile(const QString& folder, const QString& filter, int filterIndex) override;
    QString chooseFolder(const QString& prompt) override;
    void message(int code, MessageKind kind, const QString& title, const QString& text) override;
    Answer askYesNoCancel(const QString& title, const QString& text) override;

private:
    QWidget* m_parent;
};

// "All files (*.*)|*.*|S-record files (*.s3)|*.s3;*.sre" in Qt's form, one filter a
// line: "All files (*)\nS-record files (*.s3 *.sre)". "*.*" matches every file.
QString qtFilterFromClassic(const QString& classic);

// The `index`-th filter (from 1) of a Qt filter text, or "" when there is none.
QString nthFilter(const QString& qtFilter, int index);

}  // namespace zevran::app
