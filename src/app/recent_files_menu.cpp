#include "recent_files_menu.hpp"

#include "settings/profile_file.hpp"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace zevran::app {

namespace {

bool present(const std::string& path) { return QFileInfo(QString::fromStdString(path)).isFile(); }

}  // namespace

RecentFilesMenu::RecentFilesMenu(QMenu* menu, const QString& settingsPath, QObject* parent)
    : QObject(parent), m_menu(menu), m_settingsPath(settingsPath)
{
    m_files = image::readRecentFiles(ProfileFile(m_settingsPath.toStdString()));
    // Files come and go while the window is open: their state is looked at each time.
    connect(m_menu, &QMenu::aboutToShow, this, &RecentFilesMenu::rebuild);
    rebuild();
}

void RecentFilesMenu::setTexts(const QString& removeMissing, const QString& clear)
{
    m_removeMissingText = removeMissing;
    m_clearText = clear;
    rebuild();
}

void RecentFilesMenu::add(const QString& path)
{
    m_files.add(QFileInfo(path).absoluteFilePath().toStdString());
    save();
}

void RecentFilesMenu::removeMissing()
{
    for (const std::string& path : std::vector<std::string>(m_files.paths()))
        if (!present(path)) m_files.remove(path);
    save();
}

void RecentFilesMenu::clear()
{
    m_files.clear();
    save();
}

QStringList RecentFilesMenu::paths() const
{
    QStringList list;
    for (const std::string& path : m_files.paths()) list << QString::fromStdString(path);
    return list;
}

void RecentFilesMenu::save()
{
    image::writeRecentFiles(ProfileFile(m_settingsPath.toStdString()), m_files);
    // Rebuilt once the command that changed the list is over: its own item is among
    // those the rebuild deletes.
    QMetaObject::invokeMethod(this, &RecentFilesMenu::rebuild, Qt::QueuedConnection);
}

void RecentFilesMenu::rebuild()
{
    m_menu->clear();
    bool anyMissing = false;
    int number = 1;
    for (const std::string& path : m_files.paths()) {
        const QString name = QString::fromStdString(path);
        // "&1 " gives the first eight a key each; a "&" in the path is shown as itself.
        QAction* item = m_menu->addAction(
            QStringLiteral("&%1 %2").arg(number++).arg(QDir::toNativeSeparators(name).replace("&", "&&")));
        item->setObjectName("recentfile");
        item->setData(name);
        item->setEnabled(present(path));
        anyMissing = anyMissing || !item->isEnabled();
        connect(item, &QAction::triggered, this, [this, name] { emit openRequested(name); });
    }
    m_menu->addSeparator();
    m_removeMissing = m_menu->addAction(m_removeMissingText);
    m_removeMissing->setObjectName("menurecentmissing");
    m_removeMissing->setEnabled(anyMissing);
    connect(m_removeMissing, &QAction::triggered, this, &RecentFilesMenu::removeMissing);
    m_clear = m_menu->addAction(m_clearText);
    m_clear->setObjectName("menurecentclear");
    m_clear->setEnabled(!m_files.empty());
    connect(m_clear, &QAction::triggered, this, &RecentFilesMenu::clear);
    m_menu->setEnabled(true);
}

}  // namespace zevran::app
