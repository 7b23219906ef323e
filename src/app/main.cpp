// zevran: the workshop window. `zevran [--home DIR] [FILE]`.
#include "main_window.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLockFile>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("Zevran Handset Workshop");
    QApplication::setApplicationVersion("1.11");
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"home", "The program folder (zevran.ini, language/, 16.dat).", "DIR"});
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
    return QApplication::exec();
}
