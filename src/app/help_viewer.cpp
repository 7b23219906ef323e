#include "help_viewer.hpp"

#include <QDesktopServices>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace zevran::app {

std::function<bool(const QUrl&)>& desktopOpener()
{
    static std::function<bool(const QUrl&)> opener = [](const QUrl& url) { return QDesktopServices::openUrl(url); };
    return opener;
}

QDialog* showHelpViewer(QWidget* window, const QString& path, const QString& note)
{
    auto* viewer = window->findChild<QDialog*>("HelpViewer");
    if (!viewer) {
        viewer = new QDialog(window);
        viewer->setObjectName("HelpViewer");
        auto* layout = new QVBoxLayout(viewer);
        auto* label = new QLabel(viewer);
        label->setObjectName("HelpViewerNote");
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        auto* browser = new QTextBrowser(viewer);
        browser->setObjectName("HelpViewerText");
        // Links out of the help still go to the desktop; they may find a handler.
        browser->setOpenExternalLinks(true);
        layout->addWidget(label);
        layout->addWidget(browser);
        viewer->resize(760, 600);
    }
    viewer->setWindowTitle(QFileInfo(path).fileName());
    viewer->findChild<QLabel*>("HelpViewerNote")->setText(note);
    viewer->findChild<QTextBrowser*>("HelpViewerText")->setSource(QUrl::fromLocalFile(path));
    viewer->show();
    viewer->raise();
    viewer->activateWindow();
    return viewer;
}

}  // namespace zevran::app
