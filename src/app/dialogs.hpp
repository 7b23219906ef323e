// The Qt dialogs behind the workshop's dialog interface, and the filters they take.
#pragma once

#include "window/window_dialogs.hpp"

#include <QString>

class QWidget;

namespace zevran::app {

using window::Answer;
using window::Dialogs;
using window::MessageKind;

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

// A save dialog's answer with the extension of the chosen filter (one filter in Qt's
// form, "S-record files (*.s3 *.sre)") added when the file name has none.
QString withFilterExtension(const QString& name, const QString& chosenFilter);

}  // namespace zevran::app
