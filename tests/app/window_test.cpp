// The window's life cycle through the dialogs double: start-up, language, opening,
// in-image patches, saving and shut-down.
#include "app/list_cells.hpp"
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/main_window.hpp"
#include "image/ui/converter_tab.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QTabWidget>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QAbstractItemView>

using zevran::app::Answer;
using zevran::app::Form1;
using zevran::test::closeWindow;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// A small language file: a few captions and messages, every other key left out.
const QByteArray kEnglish =
    "[Menu]\r\nmenuopen=Open phone file\r\n[SSTab1]\r\nTab1Name=Tones\r\nGetTone=Scan\r\nListview4Header4=Size\r\n"
    "[String]\r\nStatusBar1Str3=unknown\r\nMsgTitle1=Warning\r\nMsgTitle2=Done\r\nMsgTitle7=Quit\r\n"
    "MsgStr1=The file is empty.\r\nMsgStr2=Unknown kind.\r\nMsgStr13=Changed in memory.\r\nMsgStr21=Saved.\r\n"
    "MsgStr33=No help.\r\nMsgStr35=Save changes?\r\nMsgStr38=never read\r\n"
    "[Filter]\r\nFilter5=All files (*.*)|*.*|Phone files (*.bin;*.asf)|*.bin;*.asf\r\n";

}  // namespace

class WindowTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    std::unique_ptr<Form1> startWindow(const QByteArray& settings = "[Language]\r\nLanguage=English.ini\r\n")
    {
        QDir().mkpath(m_home.path() + "/language");
        writeBytes(m_home.path() + "/language/English.ini", kEnglish);
        writeBytes(m_home.path() + "/language/ChineseS.ini", "[SSTab1]\r\nTab1Name=\xE9\x93\x83\xE5\xA3\xB0\r\n");
        if (!settings.isNull()) writeBytes(m_home.path() + "/zevran.ini", settings);
        auto window = startedWindow();
        return window;
    }

    QString phoneFile(const QString& name, const QByteArray& bytes)
    {
        QString path = m_home.path() + "/" + name;
        writeBytes(path, bytes);
        return path;
    }

private slots:
    void init() { QVERIFY(m_home.isValid()); }

    void everyTabsKeyLabelsAControlOfThatTab()
    {
        auto window = startedWindow();
        const std::vector<std::pair<const char*, std::vector<zevran::window::CaptionKey>>> tabs{
            {"TonesTab", zevran::tones::TonesTab::captionKeys()},
            {"StringsTab", zevran::strings::StringsTab::captionKeys()},
            {"PicturesTab", zevran::pictures::PicturesTab::captionKeys()},
            {"ConverterTab", zevran::image::ConverterTab::captionKeys()}};
        int labelled = 0;
        for (const auto& [tabName, keys] : tabs) {
            auto* tab = window->findChild<QWidget*>(tabName);
            QVERIFY2(tab, tabName);
            for (const zevran::window::CaptionKey& key : keys) {
                // The tone tab's table buttons are read a second time among the text tab's keys.
                if (key.kept || (QString(tabName) == "StringsTab" && QString(key.section) == "SSTab1")) continue;
                QVERIFY2(tab->findChild<QObject*>(key.objectName), (QString(tabName) + " " + key.objectName).toUtf8());
                if (key.column >= 0)
                    QVERIFY(key.column < columnCount(tab->findChild<QAbstractItemView*>(key.objectName)));
                ++labelled;
            }
        }
        QCOMPARE(labelled, 16 + 23 + 15 + 13);
    }
    void cleanup()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    void startUpAppliesTheLanguageAndDisablesTheImageTabs()
    {
        auto window = startWindow();
        auto* tabs = window->findChild<QTabWidget*>("SSTab1");
        QCOMPARE(window->windowTitle(), QString("Zevran Handset Workshop V1.11"));
        // The five classic tabs, then the byte view.
        QCOMPARE(tabs->count(), 6);
        QCOMPARE(tabs->tabText(0), QString("Tones"));
        QVERIFY(!tabs->isTabEnabled(1));
        QVERIFY(!tabs->isTabEnabled(2));
        QCOMPARE(window->findChild<QPushButton*>("GetTone")->text(), QString("Scan"));
        QCOMPARE(window->findChild<QAction*>("menuopen")->text(), QString("Open phone file"));
        QCOMPARE(headerText(window->findChild<QAbstractItemView*>("ListView4"), 3), QString("Size"));
        QVERIFY(!window->findChild<QAction*>("Save")->isEnabled());
        // Keys the file lacked were added to it, empty.
        QVERIFY(readBytes(m_home.path() + "/language/English.ini").contains("\r\nMsgStr39=\r\n"));
    }

    void everyNamedControlExists()
    {
        auto window = startWindow();
        for (const char* name : {"ListView1", "ListView2", "ListView3", "ListView4", "ListView5"})
            QVERIFY2(window->findChild<QAbstractItemView*>(name), name);
        QCOMPARE(columnCount(window->findChild<QAbstractItemView*>("ListView1")), 2);
        QCOMPARE(columnCount(window->findChild<QAbstractItemView*>("ListView2")), 5);
        QCOMPARE(columnCount(window->findChild<QAbstractItemView*>("ListView3")), 3);
        QCOMPARE(columnCount(window->findChild<QAbstractItemView*>("ListView4")), 5);
        QCOMPARE(columnCount(window->findChild<QAbstractItemView*>("ListView5")), 7);
        for (const char* name : {"GetTone",      "SaveToneTable", "OpenToneTable",     "SeachString", "Add2List",
                                 "OpenPicTable", "SavePicTable",  "OpenS3File",        "OpenBinFile", "ComS3ToBin",
                                 "ComBinToS3",   "Option1",       "Option4",           "SearchBegin", "Check1",
                                 "RepeatPlay",   "AllAdd",        "PartAddressOption", "Text1",       "Text21",
                                 "Label16",      "Picture1",      "Picture2",          "Slider1",     "ET1"})
            QVERIFY2(window->findChild<QWidget*>(name), name);
        for (const char* name :
             {"menufile1", "menufile2", "menufile3", "menufile4", "menufile5", "file", "menuhelp", "menulanguage"})
            QVERIFY2(window->findChild<QMenu*>(name), name);
        for (const char* name : {"outputselect", "addmmf", "movealladdress", "outputStraxf", "outputpics3", "Open",
                                 "Save", "Exit", "help", "homepage", "menuexit"})
            QVERIFY2(window->findChild<QAction*>(name), name);
    }

    void languageMenuListsTheFilesAndChecksTheChosenOne()
    {
        auto window = startWindow();
        const auto items = window->findChildren<QAction*>("languagNum");
        QCOMPARE(items.size(), 2);
        QCOMPARE(items[0]->text(), QString("ChineseS"));
        QCOMPARE(items[1]->text(), QString("English"));
        QVERIFY(!items[0]->isChecked());
        QVERIFY(items[1]->isChecked());
        window->languagNum_Click(1);
        QVERIFY(items[0]->isChecked());
        QVERIFY(!items[1]->isChecked());
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString::fromUtf8("\xE9\x93\x83\xE5\xA3\xB0"));
        QCOMPARE(window->settings().Language, QString("ChineseS.ini"));
    }

    void firstStartTakesTheLocalesLanguageAndWritesItAtOnce_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("caption");
        QTest::newRow("C locale") << "C"
                                  << "English.ini"
                                  << "Tones";
        QTest::newRow("English locale") << "en_GB"
                                        << "English.ini"
                                        << "Tones";
        QTest::newRow("Chinese locale") << "zh_CN"
                                        << "ChineseS.ini" << QString::fromUtf8("\xE9\x93\x83\xE5\xA3\xB0");
    }
    void firstStartTakesTheLocalesLanguageAndWritesItAtOnce()
    {
        QFETCH(QString, locale);
        QFETCH(QString, language);
        QFETCH(QString, caption);
        const QLocale before;
        QLocale::setDefault(QLocale(locale));
        auto window = startWindow(QByteArray());
        QLocale::setDefault(before);
        const auto items = window->findChildren<QAction*>("languagNum");
        QCOMPARE(items[language == "ChineseS.ini" ? 0 : 1]->isChecked(), true);
        QCOMPARE(items[language == "ChineseS.ini" ? 1 : 0]->isChecked(), false);
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), caption);
        QVERIFY(readBytes(m_home.path() + "/zevran.ini")
                    .startsWith("[Language]\r\nLanguage=" + language.toUtf8() + "\r\n"));
        QVERIFY(closeWindow(*window));
        const QByteArray written = readBytes(m_home.path() + "/zevran.ini");
        QVERIFY2(written.startsWith("[Language]\r\nLanguage=" + language.toUtf8() + "\r\n"), written.constData());
        // Every folder left empty became the program folder on the way out.
        QVERIFY(written.contains("Mobile File Path=" + m_home.path().toUtf8() + "\r\n"));
        // The second start keeps the language.
        window.reset();
        auto second = startedWindow();
        QCOMPARE(second->findChild<QTabWidget*>("SSTab1")->tabText(0), caption);
    }

    void secondStartReadsTheBareNameAsItsLanguageFile()
    {
        auto window = startWindow("[Language]\r\nLanguage=ChineseS\r\n");
        const auto items = window->findChildren<QAction*>("languagNum");
        QVERIFY(items[0]->isChecked());
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString::fromUtf8("\xE9\x93\x83\xE5\xA3\xB0"));
        QCOMPARE(window->settings().Language, QString("ChineseS.ini"));
        QVERIFY(!QFileInfo::exists(m_home.path() + "/language/ChineseS"));
    }

    void openingABinFileSetsItsKindVersionAndOutputs()
    {
        auto window = startWindow();
        const QString path = phoneFile("PHONE.BIN", QByteArray("..VersionString:...V1.2.3.4rest", 31));
        m_dialogs->files.push_back(path);
        window->menuopen_Click();
        QCOMPARE(window->imageState().FileKind, std::string("bin"));
        QVERIFY(window->imageState().ImageLoaded);
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel4")->text(), QString("V1.2.3.4"));
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel6")->text(), QString("PHONE.BIN"));
        QVERIFY(window->findChild<QTabWidget*>("SSTab1")->isTabEnabled(1));
        QVERIFY(window->findChild<QAction*>("outputs3")->isEnabled());
        // The string list's S-record output also waits for a checked row (strings_tab_test).
        QVERIFY(!window->findChild<QAction*>("outputStrS3")->isEnabled());
        QVERIFY(!window->findChild<QAction*>("outputaxf")->isEnabled());
        QVERIFY(!window->findChild<QAction*>("outputStraxf")->isEnabled());
        QCOMPARE(window->settings().MobileFilePath, m_home.path());
        QVERIFY(m_dialogs->asked.first().startsWith("open " + m_home.path() +
                                                    "|All files (*);;Phone files (*.bin *.asf)|2"));
        QVERIFY(m_dialogs->messages.empty());
    }

    void languageSwitchKeepsTheOpenFileInTheStatusBar()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("PHONE.BIN", QByteArray("..VersionString:...V1.2.3.4rest", 31)));
        writeBytes(m_home.path() + "/language/ChineseS.ini",
                   "[String]\r\nStatusBar1Str1=(none)\r\nStatusBar1Str2=no file\r\n");
        window->languagNum_Click(1);
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel4")->text(), QString("V1.2.3.4"));
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel6")->text(), QString("PHONE.BIN"));
    }

    void openingAFileWithoutMarkerShowsTheUnknownVersion()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("x.asf", "plain bytes"));
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel4")->text(), QString("unknown"));
        QVERIFY(window->findChild<QAction*>("outputaxf")->isEnabled());
        QVERIFY(!window->findChild<QAction*>("outputs3")->isEnabled());
    }

    void cancelledOpenChangesNothing()
    {
        auto window = startWindow();
        window->menuopen_Click();
        QVERIFY(window->imageState().FirmwarePath.empty());
        QVERIFY(m_dialogs->messages.empty());
    }

    void emptyFileShowsMessage1AndKeepsTheImage()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("a.bin", "abc"));
        window->openPhoneFile(phoneFile("empty.bin", ""));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{1});
        QCOMPARE(m_dialogs->messages[0].text, QString("The file is empty."));
        QCOMPARE(window->imageState().FirmwareLength, 3);
    }

    void unknownKindShowsMessage2AndDisablesEveryOutput()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("patch.s3", "S3"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{2});
        QVERIFY(!window->imageState().ImageLoaded);
        for (const char* name : {"outputs3", "outputStrS3", "outputaxf", "outputStraxf"})
            QVERIFY2(!window->findChild<QAction*>(name)->isEnabled(), name);
    }

    void unreadableFileSaysWhichFile()
    {
        auto window = startWindow();
        const QString path = phoneFile("a.asf", "abc");
        window->openPhoneFile(path);
        window->openPhoneFile(m_home.path() + "/missing.bin");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("missing.bin"));
        QCOMPARE(QString::fromStdString(window->imageState().FirmwarePath), path);
    }

    void inImagePatchEnablesSaveAndSaveWritesTheFile()
    {
        auto window = startWindow();
        const QString path = phoneFile("phone.asf", "0123456789");
        window->openPhoneFile(path);
        window->patchInImage({{2, 3, {'A', 'B'}}});
        QVERIFY(window->findChild<QAction*>("Save")->isEnabled());
        QCOMPARE(readBytes(path), QByteArray("0123456789"));
        window->findChild<QAction*>("Save")->trigger();
        QCOMPARE(readBytes(path), QByteArray("01AB456789"));
        QVERIFY(!window->findChild<QAction*>("Save")->isEnabled());
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{13, 21}));
    }

    void inImagePatchDoesNothingForABinFile()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", "0123"));
        window->patchInImage({{0, 0, {'X'}}});
        QVERIFY(!window->findChild<QAction*>("Save")->isEnabled());
        QVERIFY(m_dialogs->messages.empty());
    }

    void failedSaveKeepsThePhoneFileAndSaveEnabled()
    {
        auto window = startWindow();
        const QString folder = m_home.path() + "/phones";
        QDir().mkpath(folder);
        window->openPhoneFile(phoneFile("phones/phone.asf", "0123"));
        window->patchInImage({{0, 0, {'X'}}});
        // The folder becomes a plain file: no temporary file can be made beside the phone file.
        QDir().rename(folder, m_home.path() + "/moved");
        writeBytes(folder, "not a folder");
        QVERIFY(!window->Saveaxf(true));
        QVERIFY(window->findChild<QAction*>("Save")->isEnabled());
        QCOMPARE(readBytes(m_home.path() + "/moved/phone.asf"), QByteArray("0123"));
        QCOMPARE(m_dialogs->codes().back(), 0);
    }

    void sRecordPatchIsWrittenWhereTheUserChooses()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", "0123"));
        const QString patch = m_home.path() + "/out/patch.s3";
        QDir().mkpath(m_home.path() + "/out");
        m_dialogs->files.push_back(patch);
        window->writeSRecordPatch({{0x1000, 0x1000, {0xAB}}});
        QCOMPARE(readBytes(patch), QByteArray("S00600004844521B\r\nS30600001000AB3E\r\nS705A002000058\r\n"));
        QCOMPARE(window->settings().S3SavePath, m_home.path() + "/out");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
    }

    void closingWithoutChangesAsksNothingAndWritesTheSettingsInOrder()
    {
        auto window = startWindow();
        QVERIFY(closeWindow(*window));
        QVERIFY(m_dialogs->asked.isEmpty());
        const QString home = m_home.path();
        const QByteArray written = readBytes(home + "/zevran.ini");
        const QByteArray folders =
            ("[File Path]\r\nmmf File Path=" + home + "\r\nMobile File Path=" + home + "\r\nRing Save Path=" + home +
             "\r\nPicture Save Path=" + home + "\r\nS3 Save Path=" + home + "\r\nTable Save Path=" + home + "\r\n")
                .toUtf8();
        QVERIFY2(written.startsWith("[Language]\r\nLanguage=English.ini\r\n" + folders), written.constData());
    }

    void cancelAtTheSaveQuestionKeepsTheWindowOpenAndWritesNothing()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.asf", "0123"));
        window->patchInImage({{0, 0, {'X'}}});
        const QByteArray before = readBytes(m_home.path() + "/zevran.ini");
        m_dialogs->answers.push_back(Answer::Cancel);
        QVERIFY(!closeWindow(*window));
        QCOMPARE(m_dialogs->asked.last(), QString("question Quit|Save changes?"));
        QCOMPARE(readBytes(m_home.path() + "/zevran.ini"), before);
    }

    void yesAtTheSaveQuestionSavesWithoutTheDoneMessage()
    {
        auto window = startWindow();
        const QString path = phoneFile("phone.asf", "0123");
        window->openPhoneFile(path);
        window->patchInImage({{0, 0, {'X'}}});
        m_dialogs->answers.push_back(Answer::Yes);
        QVERIFY(closeWindow(*window));
        QCOMPARE(readBytes(path), QByteArray("X123"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
    }

    void noAtTheSaveQuestionClosesWithoutSaving()
    {
        auto window = startWindow();
        const QString path = phoneFile("phone.asf", "0123");
        window->openPhoneFile(path);
        window->patchInImage({{0, 0, {'X'}}});
        m_dialogs->answers.push_back(Answer::No);
        QVERIFY(closeWindow(*window));
        QCOMPARE(readBytes(path), QByteArray("0123"));
    }

    void messagesOutsideTheTableShowNothingAnd38IsEmpty()
    {
        auto window = startWindow();
        window->ShowMessage(35);
        window->ShowMessage(40);
        window->ShowMessage(0);
        QVERIFY(m_dialogs->messages.empty());
        window->ShowMessage(38);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(m_dialogs->messages[0].text, QString());
        QCOMPARE(m_dialogs->messages[0].title, QString("Warning"));
    }

    void folderChooserUsesItsFixedPromptAndEndsInASlash()
    {
        auto window = startWindow();
        m_dialogs->folders = {"/data/pictures", "/", ""};
        QCOMPARE(window->BrowseForFolder(), QString("/data/pictures/"));
        QCOMPARE(window->BrowseForFolder(), QString("/"));
        QCOMPARE(window->BrowseForFolder(), QString());
        QCOMPARE(
            m_dialogs->asked.first(),
            QString::fromUtf8(
                "folder \xE8\xAF\xB7\xE9\x80\x89\xE6\x8B\xA9\xE8\xBD\xAF\xE4\xBB\xB6\xE5\xAE\x89\xE8\xA3\x85\xE8\xB7\xAF\xE5\xBE\x84\xEF\xBC\x9A"));
    }

    void secondStartInTheSameProgramFolderEndsQuietly()
    {
        QProcess first;
        first.setProcessEnvironment([] {
            auto environment = QProcessEnvironment::systemEnvironment();
            environment.insert("QT_QPA_PLATFORM", "offscreen");
            return environment;
        }());
        QProcess second;
        second.setProcessEnvironment(first.processEnvironment());
        first.start(ZEVRAN_WINDOW_PROGRAM, {"--home", m_home.path()});
        QVERIFY(first.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_home.path() + "/zevran.lock"), 20000);
        second.start(ZEVRAN_WINDOW_PROGRAM, {"--home", m_home.path()});
        QVERIFY(second.waitForFinished(20000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);
        first.kill();
        first.waitForFinished();
    }

    void missingHelpDocumentIsMessage33()
    {
        auto window = startWindow();
        window->help_Click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{33});
    }
};

QTEST_MAIN(WindowTest)
#include "window_test.moc"
