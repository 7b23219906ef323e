// What the editor commands' window tests share: two images that differ in known places,
// a window on the shipped language files, and the compare dialog reached as a user does.
#pragma once

#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"
#include "app/list_cells.hpp"
#include "app/compare_dialog.hpp"
#include "app/main_window.hpp"
#include "strings/ui/strings_tab.hpp"
#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <QUrl>
#include <QDropEvent>

namespace zevran::test {


inline const QByteArray kOpen = "0123456789ABCDEF";
// Against kOpen: 2..3 and 8 differ, and 16..19 lie past its end.
inline const QByteArray kSecond = "01xx4567z9ABCDEFtail";

inline QByteArray imageOf(app::Form1& window)
{
    const auto& bytes = window.imageState().FirmwareImage;
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}


class EditorFixture : public WindowFixture {
protected:
    // Each test starts from an empty home folder: no settings, no recent files.
    void emptyHome()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    std::unique_ptr<app::Form1> startWindow()
    {
        QDir().mkpath(path("language"));
        for (const char* name : {"English.ini", "ChineseS.ini"})
            QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/language/") + name, path("language/") + name);
        if (!QFile::exists(path("zevran.ini")))
            writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        return startedWindow();
    }

    QString phoneFile(const QString& name, const QByteArray& bytes)
    {
        writeBytes(path(name), bytes);
        return path(name);
    }

    static QAction* action(app::Form1& window, const char* name) { return window.findChild<QAction*>(name); }

    // Opens the second file through File > "Compare with..." and returns the dialog.
    app::CompareDialog* compareWith(app::Form1& window, const QString& second)
    {
        m_dialogs->files = {second};
        action(window, "menucompare")->trigger();
        return window.findChild<app::CompareDialog*>("CompareDialog");
    }

    static QAbstractItemView* listOf(app::CompareDialog* dialog)
    {
        return dialog->findChild<QAbstractItemView*>("CompareList");
    }

    static QStringList recentItems(app::Form1& window)
    {
        QCoreApplication::processEvents();
        auto* menu = window.findChild<QMenu*>("menurecent");
        QMetaObject::invokeMethod(menu, "aboutToShow");
        QStringList items;
        for (QAction* item : menu->actions())
            if (item->objectName() == "recentfile")
                items << (item->isEnabled() ? "" : "(missing) ") + QFileInfo(item->data().toString()).fileName();
        return items;
    }
};

}  // namespace zevran::test
