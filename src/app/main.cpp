// zevran: the workshop window. `zevran [--home DIR] [FILE]`.
#include "main_window.hpp"
#include "screenshots.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLockFile>
#include <memory>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("Zevran Handset Workshop");
    QApplication::setApplicationVersion("1.11");
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"home", "The program folder (zevran.ini, language/, 16.dat).", "DIR"});
    parser.addOption({"screenshots", "Saves a PNG of each tab into DIR and quits.", "DIR"});
    parser.addPositionalArgument("FILE", "A phone file to open.");
    parser.process(application);

    QString home = parser.value("home");
    if (home.isEmpty()) home = qEnvironmentVariable("ZEVRAN_HOME");
    if (home.isEmpty()) home = QApplication::applicationDirPath();
    home = QDir(home).absolutePath();

    // One workshop at a time per program folder: a second start ends quietly.
    QLockFile instance(home + "/zevran.lock");
    instance.setStaleLockTime(0);
    if (!instance.tryLock(0)) return 0;

    // Screenshots are taken on a window whose few dialogs answer themselves.
    const bool screenshots = parser.isSet("screenshots");
    auto staged = std::make_unique<zevran::app::StagedDialogs>();
    zevran::app::StagedDialogs* stagedDialogs = staged.get();
    zevran::app::Form1 window(home, screenshots ? std::move(staged) : nullptr);
    window.LoadSettings();
    window.show();
    if (!parser.positionalArguments().isEmpty()) window.openPhoneFile(QDir().absoluteFilePath(parser.positionalArguments().first()));
    if (screenshots) return zevran::app::saveScreenshots(window, *stagedDialogs, parser.value("screenshots")) ? 0 : 1;
    return QApplication::exec();
}
