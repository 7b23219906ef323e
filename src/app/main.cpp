// zevran: the workshop window. `zevran [--home DIR] [FILE]`.
#include "main_window.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLockFile>
#include <QTabWidget>
#include <QTimer>

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

    zevran::app::Form1 window(home);
    window.LoadSettings();
    window.show();
    if (!parser.positionalArguments().isEmpty()) window.openPhoneFile(QDir().absoluteFilePath(parser.positionalArguments().first()));
    if (parser.isSet("screenshots")) {
        const QString folder = parser.value("screenshots");
        QDir().mkpath(folder);
        auto* tabs = window.findChild<QTabWidget*>("SSTab1");
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QApplication::processEvents();
            window.grab().save(QStringLiteral("%1/tab-%2.png").arg(folder).arg(i));
        }
        return 0;
    }
    return QApplication::exec();
}
