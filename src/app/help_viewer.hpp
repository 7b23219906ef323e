// Help and home page on a desktop that may have no program for them: the help is
// HTML, so it can be shown in a viewer of the workshop's own.
#pragma once

#include <QString>

#include <functional>

class QDialog;
class QUrl;
class QWidget;

namespace zevran::app {

// Hands a file or address to the desktop's handler (QDesktopServices::openUrl);
// false when no program took it. Tests put an opener of their own here.
std::function<bool(const QUrl&)>& desktopOpener();

// Shows the HTML document at `path` in the window's help viewer ("HelpViewer"), under
// `note`; one viewer serves every later call.
QDialog* showHelpViewer(QWidget* window, const QString& path, const QString& note);

}  // namespace zevran::app
