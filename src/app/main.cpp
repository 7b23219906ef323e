// zevran: the workshop window. `zevran [--home DIR] [FILE]`.
#include "main_window.hpp"
#include "settings/program_folder.hpp"
#include "screenshots.hpp"
#include "single_instance.hpp"
#include "termination_signal.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <memory>
#include <optional>
#include <string_view>

namespace {

void describeOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "Zevran Handset Workshop: ring tones, texts and pictures of a handset's firmware image.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({"home", "The portable program folder (zevran.ini, language/, help/, 16.dat).", "DIR"});
    parser.addOption({"screenshots", "Saves a PNG of each tab into DIR and quits.", "DIR"});
    parser.addPositionalArgument("FILE", "A phone file to open; handed to the running window if there is one.");
}

// --help and --version are answered without a screen, so they work on a console and
// for the manual page's generator at build time.
bool asksForTextOnly(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--") return false;
        if (word == "-h" || word == "--help" || word == "-?" || word == "--help-all" || word == "-v" ||
            word == "--version")
            return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    if (asksForTextOnly(argc, argv)) {
        QCoreApplication console(argc, argv);
        QCoreApplication::setApplicationName("zevran");
        QCoreApplication::setApplicationVersion(ZEVRAN_VERSION);
        QCommandLineParser parser;
        describeOptions(parser);
        parser.process(console);
        return 0;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName("Zevran Handset Workshop");
    QApplication::setApplicationVersion(ZEVRAN_VERSION);
    QCommandLineParser parser;
    describeOptions(parser);
    parser.process(application);

    using namespace zevran::app;
    const ProgramFolders folders = findProgramFolders(
        environmentOfThisProcess(parser.value("home").toStdString(), ZEVRAN_RELATIVE_DATA_DIR, argv[0]),
        [](const std::string& path) { return QFileInfo(QString::fromStdString(path)).isDir(); });
    // A user's first start of an installed workshop names the language of the locale.
    prepareUserFolders(folders, localeLanguageFile(QLocale::system().uiLanguages().value(0).toStdString()));

    const QString file = parser.positionalArguments().value(0);
    const bool screenshots = parser.isSet("screenshots");
    // Screenshots are a job of their own, beside any running window.
    std::optional<SingleInstance> instance;
    if (!screenshots) {
        instance.emplace(QString::fromStdString(folders.runtimeFolder));
        if (!instance->claim(file)) return 0;
    }

    // Screenshots are taken on a window whose few dialogs answer themselves.
    auto staged = std::make_unique<StagedDialogs>();
    StagedDialogs* stagedDialogs = staged.get();
    Form1 window(folders, screenshots ? std::move(staged) : nullptr);
    // From before the settings are read, so a SIGTERM that finds them written closes the window.
    if (!screenshots) closeOnTerminationSignal(&window);
    window.LoadSettings();
    window.show();
    if (!file.isEmpty()) window.openPhoneFile(QDir().absoluteFilePath(file));
    if (screenshots) return saveScreenshots(window, *stagedDialogs, parser.value("screenshots")) ? 0 : 1;
    serveWindow(*instance, &window, [&window](const QString& handed) { window.openPhoneFile(handed); });
    return QApplication::exec();
}
