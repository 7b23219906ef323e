// What every window test shares: a fresh program folder, the window started on it with
// its dialogs answered by the double, and the window and the folder's files dropped
// after each test.
#pragma once

#include "test_window.hpp"

#include "app/main_window.hpp"

#include <QDir>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace zevran::test {

class WindowFixture : public QObject {
protected:
    QString path(const QString& name) const { return m_home.path() + "/" + name; }

    // Starts the window on the program folder as the program starts it: settings read.
    std::unique_ptr<app::Form1> startedWindow() { return startTestWindow(m_home.path(), m_dialogs); }
    void startWindow() { m_window = startedWindow(); }

    // Drops the window (without asking it) and, with `emptyFolder`, every file of the
    // program folder, so the next test starts as on a fresh machine.
    void stopWindow(bool emptyFolder = true)
    {
        m_window.reset();
        if (!emptyFolder) return;
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    QTemporaryDir m_home;
    std::unique_ptr<app::Form1> m_window;
    ScriptedDialogs* m_dialogs = nullptr;
};

}  // namespace zevran::test
