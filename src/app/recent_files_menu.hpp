// File > Recent files: the last eight phone files opened, newest first, kept in the
// settings file. A file that is gone is shown disabled until it is removed.
#pragma once

#include "settings/recent_files.hpp"

#include <QObject>
#include <QString>
#include <QStringList>

class QAction;
class QMenu;

namespace zevran::app {

class RecentFilesMenu : public QObject {
    Q_OBJECT
public:
    // Fills `menu` (kept by the caller) from the list in the settings file.
    RecentFilesMenu(QMenu* menu, const QString& settingsPath, QObject* parent = nullptr);

    // The captions of the two commands under the list.
    void setTexts(const QString& removeMissing, const QString& clear);

    // A phone file was opened: it goes to the top, and the list is saved.
    void add(const QString& path);
    void removeMissing();
    void clear();

    QStringList paths() const;

signals:
    void openRequested(const QString& path);

private:
    void rebuild();
    void save();

    QMenu* m_menu;
    QString m_settingsPath;
    image::RecentFiles m_files;
    QAction* m_removeMissing = nullptr;
    QAction* m_clear = nullptr;
    QString m_removeMissingText;
    QString m_clearText;
};

}  // namespace zevran::app
