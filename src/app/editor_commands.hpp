// The editor's everyday commands beside the tabs: File > "Compare with..." and
// "Recent files", Edit > Undo and Redo, and the title bar naming the open file with a
// marker while the image differs from it. The window calls in at the few points of its
// life cycle that matter to them (an image read, a phone file opened, a language applied).
#pragma once

#include "image_history.hpp"
#include "recent_files_menu.hpp"

#include "window/tab_host.hpp"

#include <QObject>
#include <QString>

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;

namespace zevran::app {

class CompareDialog;

class EditorCommands : public QObject {
    Q_OBJECT
public:
    EditorCommands(window::TabHost& host, QMainWindow* window, const QString& settingsPath);

    // "Compare with..." and the "Recent files" menu, at the end of the File menu so far.
    void addFileItems(QMenu* file);
    // The Edit menu with Undo and Redo, at the end of the menu bar so far.
    void addEditMenu(QMenuBar* bar);

    ImageHistory& history() { return *m_history; }
    RecentFilesMenu& recentFiles() { return *m_recent; }

    // The language's texts for every item here, after the window applied a language.
    void applyTexts();
    // New bytes were read into the image from `path`: the history starts afresh and the
    // title names the file. Comparing waits for fileOpened.
    void imageReplaced(const QString& path);
    // `path` opened as a phone file of a known kind: it can be compared and heads the
    // recent files.
    void fileOpened(const QString& path);

    // File > "Compare with...": a second image against the open one; the regions checked
    // in the list are written as every edit is (a patch for "bin", the image for "asf").
    void compareWith();

signals:
    void openRequested(const QString& path);

private:
    void writeChecked(const CompareDialog& dialog);

    window::TabHost& m_host;
    QMainWindow* m_window;
    ImageHistory* m_history;
    RecentFilesMenu* m_recent = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QAction* m_compare = nullptr;
};

}  // namespace zevran::app
