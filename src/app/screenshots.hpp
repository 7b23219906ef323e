// Pictures of the window at work, for the documentation and for looking the window
// over: each tab with the demo's tones, texts and pictures in it, in every language.
#pragma once

#include "dialogs.hpp"

#include <QStringList>

namespace zevran::app {

class Form1;

// Answers the few dialogs that staging the tabs opens, from a list given in advance;
// messages are not shown.
class StagedDialogs : public Dialogs {
public:
    QStringList files;
    QString openFile(const QString&, const QString&, int) override
    {
        return files.isEmpty() ? QString() : files.takeFirst();
    }
    QString saveFile(const QString&, const QString&, int) override { return QString(); }
    QString chooseFolder(const QString&) override { return QString(); }
    void message(int, MessageKind, const QString&, const QString&) override {}
    Answer askYesNoCancel(const QString&, const QString&) override { return Answer::No; }
};

// With the demo phone file open in `window` (its folder holding demo-pictures.txt and
// tones/), fills each tab as a user would and saves "tab-N-LANGUAGE.png" into `folder`
// for every tab and language. Returns false when a picture could not be saved.
bool saveScreenshots(Form1& window, StagedDialogs& dialogs, const QString& folder);

}  // namespace zevran::app
