// The window of an installed workshop: shipped data read-only under share/zevran, the
// user's settings and language files in their XDG folders; and help and home page on
// a desktop that has no program for them.
#include "test_window.hpp"
#include "qt_files.hpp"
#include "scripted_dialogs.hpp"

#include "app/help_viewer.hpp"
#include "app/main_window.hpp"
#include "settings/program_folder.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QUrl>

using zevran::app::Form1;
using zevran::app::Layout;
using zevran::app::ProgramFolders;
using zevran::test::closeWindow;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

class InstalledWindowTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_root;
    ProgramFolders m_folders;
    ScriptedDialogs* m_dialogs = nullptr;

    QString path(const QString& name) const { return m_root.path() + "/" + name; }

    std::unique_ptr<Form1> startWindow()
    {
        auto dialogs = std::make_unique<ScriptedDialogs>();
        m_dialogs = dialogs.get();
        auto window = std::make_unique<Form1>(m_folders, std::move(dialogs));
        window->LoadSettings();
        return window;
    }

    QStringList languageItems(Form1& window)
    {
        QStringList captions;
        for (QAction* item : window.findChild<QMenu*>("menulanguage")->actions()) captions.append(item->text());
        return captions;
    }

private slots:
    void init()
    {
        QVERIFY(m_root.isValid());
        // The shipped data, as cmake --install lays it out.
        QDir().mkpath(path("usr/share/zevran/language"));
        QDir().mkpath(path("usr/share/zevran/help"));
        for (const char* name : {"English.ini", "ChineseS.ini"}) {
            QFile::copy(QString(ZEVRAN_DATA_DIR "/language/") + name, path("usr/share/zevran/language/") + name);
        }
        QFile::copy(ZEVRAN_DATA_DIR "/help/English.html", path("usr/share/zevran/help/English.html"));
        QDir().mkpath(path("home"));
        m_folders.layout = Layout::Installed;
        m_folders.dataFolder = path("usr/share/zevran").toStdString();
        m_folders.settingsFile = path("home/.config/zevran/zevran.ini").toStdString();
        m_folders.userLanguageFolder = path("home/.local/share/zevran/language").toStdString();
        m_folders.runtimeFolder = path("run/zevran").toStdString();
        m_folders.startFolder = path("home").toStdString();
        zevran::app::desktopOpener() = [](const QUrl&) { return false; };
    }
    void cleanup()
    {
        QDir(m_root.path()).removeRecursively();
        QDir().mkpath(m_root.path());
    }

    void freshChineseUserStartsWithChineseCaptions()
    {
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "ChineseS.ini"));
        auto window = startWindow();
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString::fromUtf8("\xE9\x93\x83\xE5\xA3\xB0"));
        QCOMPARE(languageItems(*window), (QStringList{"ChineseS", "English"}));
        QVERIFY(window->findChild<QMenu*>("menulanguage")->actions()[0]->isChecked());
    }

    void freshUserOfAnotherLocaleStartsInEnglish()
    {
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "English.ini"));
        auto window = startWindow();
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString("Ring tones"));
    }

    void shippedLanguageFileLackingKeysIsNeverWritten()
    {
        const QByteArray shipped = "[SSTab1]\r\nTab1Name=Tones\r\n";
        writeBytes(path("usr/share/zevran/language/English.ini"), shipped);
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "English.ini"));
        auto window = startWindow();
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString("Tones"));
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(1), QString());
        QCOMPARE(readBytes(path("usr/share/zevran/language/English.ini")), shipped);
        QVERIFY(!QFile::exists(path("home/.local/share/zevran/language")));
    }

    void usersOwnLanguageFileIsListedAndWinsOverTheShippedOne()
    {
        QDir().mkpath(path("home/.local/share/zevran/language"));
        writeBytes(path("home/.local/share/zevran/language/English.ini"), "[SSTab1]\r\nTab1Name=My tones\r\n");
        writeBytes(path("home/.local/share/zevran/language/Pirate.ini"), "[SSTab1]\r\nTab1Name=Shanties\r\n");
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "English.ini"));
        auto window = startWindow();
        QCOMPARE(languageItems(*window), (QStringList{"ChineseS", "English", "Pirate"}));
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString("My tones"));
        window->languagNum_Click(3);
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString("Shanties"));
        // A user's file takes the keys it lacks, as a portable one does.
        QVERIFY(readBytes(path("home/.local/share/zevran/language/Pirate.ini")).contains("Tab2Name="));
    }

    void settingsLandInTheUsersConfigFolderAndEmptyFoldersAreHome()
    {
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "ChineseS.ini"));
        auto window = startWindow();
        QCOMPARE(window->settings().MobileFilePath, path("home"));
        QCOMPARE(window->settings().S3SavePath, path("home"));
        QCOMPARE(window->runtimeFolder(), path("run/zevran"));
        QVERIFY(closeWindow(*window));
        const QByteArray settings = readBytes(path("home/.config/zevran/zevran.ini"));
        QVERIFY(settings.startsWith("[Language]\r\nLanguage=ChineseS.ini\r\n"));
        QVERIFY(settings.contains("Mobile File Path=" + path("home").toUtf8() + "\r\n"));
        QVERIFY(!QFile::exists(path("usr/share/zevran/zevran.ini")));
    }

    void helpWithoutADesktopHandlerIsShownInTheBuiltInViewer()
    {
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "English.ini"));
        auto window = startWindow();
        window->help_Click();
        QVERIFY(m_dialogs->codes().empty());
        auto* viewer = window->findChild<QDialog*>("HelpViewer");
        QVERIFY(viewer);
        QVERIFY(viewer->isVisible());
        const QString help = path("usr/share/zevran/help/English.html");
        QCOMPARE(viewer->findChild<QTextBrowser*>("HelpViewerText")->source(), QUrl::fromLocalFile(help));
        QCOMPARE(viewer->findChild<QLabel*>("HelpViewerNote")->text(),
                 "No program on this desktop opens " + help + ", so it is shown here.");
        window->help_Click();
        QCOMPARE(window->findChildren<QDialog*>("HelpViewer").size(), 1);
    }

    void helpWithADesktopHandlerGoesToIt()
    {
        QList<QUrl> opened;
        zevran::app::desktopOpener() = [&opened](const QUrl& url) {
            opened.append(url);
            return true;
        };
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "English.ini"));
        auto window = startWindow();
        window->help_Click();
        QCOMPARE(opened, QList<QUrl>{QUrl::fromLocalFile(path("usr/share/zevran/help/English.html"))});
        QVERIFY(!window->findChild<QDialog*>("HelpViewer"));
    }

    void homePageWithoutAHandlerSaysSoNamingTheAddress()
    {
        QVERIFY(zevran::app::prepareUserFolders(m_folders, "ChineseS.ini"));
        auto window = startWindow();
        window->homepage_Click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(
            m_dialogs->messages[0].text,
            QString::fromUtf8("\xE6\x9C\xAC\xE6\x9C\xBA\xE6\xB2\xA1\xE6\x9C\x89\xE8\x83\xBD\xE6\x89\x93\xE5\xBC\x80"
                              "\xE4\xB8\xBB\xE9\xA1\xB5 https://zevran-workshop.example.org/ "
                              "\xE7\x9A\x84\xE7\xA8\x8B\xE5\xBA\x8F\xE3\x80\x82"));
    }
};

QTEST_MAIN(InstalledWindowTest)
#include "installed_window_test.moc"
