// The workshop's own texts in the section [Zevran] of a language file: where each is
// read from when the language file lacks it, and that no such key is ever written
// into a language file, so files made for the classic key set stay as they were.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/main_window.hpp"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using zevran::app::Form1;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// The keys of the [Zevran] section of a language file's text, in file order.
QStringList workshopKeys(const QByteArray& file)
{
    QStringList keys;
    bool inside = false;
    for (const QByteArray& raw : file.split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith('[')) inside = line == "[Zevran]";
        else if (inside && !line.isEmpty() && !line.startsWith(';')) keys << line.section('=', 0, 0);
    }
    return keys;
}

QByteArray shipped(const char* name) { return readBytes(QStringLiteral(ZEVRAN_SOURCE_DIR "/data/language/") + name); }

}  // namespace

class WorkshopTextsTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    std::unique_ptr<Form1> startIn(const QString& language)
    {
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=" + language.toUtf8() + "\r\n");
        return startedWindow();
    }

private slots:
    void init() { QDir().mkpath(path("language")); }
    void cleanup()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    void languageFileValueComesFirst()
    {
        writeBytes(path("language/English.ini"), "[Zevran]\r\nToneCrcOk=shipped\r\n");
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcOk=  CRC bon  \r\n");
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneCrcOk"), QString("CRC bon"));
    }

    void missingKeyFallsBackToTheShippedEnglishFile()
    {
        writeBytes(path("language/English.ini"), "[Zevran]\r\nToneCrcOk=shipped ok\r\nToneTitle=shipped title\r\n");
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcOk=CRC bon\r\n");
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneTitle"), QString("shipped title"));
    }

    void emptyValueFallsBackLikeAMissingOne()
    {
        writeBytes(path("language/English.ini"), "[Zevran]\r\nToneCrcNone=shipped none\r\n");
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcNone=\r\n");
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneCrcNone"), QString("shipped none"));
    }

    void keyInAnotherSectionIsNotRead()
    {
        // The tone-check keys once lived in [String]; there they are no longer read.
        writeBytes(path("language/English.ini"), "[Zevran]\r\nToneCrcBad=shipped bad\r\n");
        writeBytes(path("language/Other.ini"), "[String]\r\nToneCrcBad=old place\r\n");
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneCrcBad"), QString("shipped bad"));
    }

    void withoutEitherFileTheBuiltInEnglishTextIsUsed()
    {
        writeBytes(path("language/Other.ini"), "[String]\r\nMsgTitle1=Attention\r\n");
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneCrcOk"), QString("CRC correct"));
        QCOMPARE(window->text("ToneCrcBad"), QString("CRC wrong: the tone may be damaged or cut short"));
        QCOMPARE(window->text("ToneCrcNone"), QString("no CRC"));
        QCOMPARE(window->text("ToneTitle"), QString("Title:"));
    }

    void unknownKeyShowsItsName()
    {
        writeBytes(path("language/English.ini"), "[Zevran]\r\n");
        const auto window = startIn("English.ini");
        QCOMPARE(window->text("NoSuchKey"), QString("NoSuchKey"));
    }

    void codePageFileIsDecodedInTheCodePage()
    {
        // "正确" in GBK: the file is not valid UTF-8, so its values are read in the code page.
        writeBytes(path("language/Gbk.ini"), "[Zevran]\r\nToneCrcOk=CRC \xD5\xFD\xC8\xB7\r\n");
        const auto window = startIn("Gbk.ini");
        QCOMPARE(window->text("ToneCrcOk"), QString::fromUtf8("CRC 正确"));
    }

    void classicLanguageFileGainsNoWorkshopKeys()
    {
        const QByteArray classic = "[Menu]\r\nmenufile=&Fichier\r\n[String]\r\nMsgStr1=Vide.\r\n";
        writeBytes(path("language/Other.ini"), classic);
        const auto window = startIn("Other.ini");
        QCOMPARE(window->text("ToneTitle"), QString("Title:"));
        const QByteArray after = readBytes(path("language/Other.ini"));
        // The classic keys it lacked are written back, as they always were ...
        QVERIFY(after.startsWith(classic.left(classic.indexOf("[String]"))));
        QVERIFY(after.contains("MsgStr2=\r\n"));
        // ... but nothing of the workshop's own section.
        QVERIFY(!after.contains("Zevran"));
        QVERIFY(!after.contains("ToneCrc"));
        QVERIFY(!after.contains("ToneTitle"));
    }

    void languageSwitchLeavesBothFilesWithoutNewWorkshopKeys()
    {
        const QByteArray english = "[Zevran]\r\nToneCrcOk=shipped ok\r\n";
        writeBytes(path("language/English.ini"), english);
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcOk=CRC bon\r\n");
        const auto window = startIn("English.ini");
        QCOMPARE(window->text("ToneCrcOk"), QString("shipped ok"));
        window->languagNum_Click(2);
        QCOMPARE(window->text("ToneCrcOk"), QString("CRC bon"));
        QCOMPARE(window->text("ToneTitle"), QString("Title:"));
        for (const char* name : {"language/English.ini", "language/Other.ini"}) {
            // The classic sections the files lacked follow; [Zevran] keeps its one key.
            const QByteArray after = readBytes(path(name));
            const qsizetype start = after.indexOf("[Zevran]");
            const QByteArray section = after.mid(start, after.indexOf("\n[", start) + 1 - start);
            QCOMPARE(section.count('\n'), 2);
        }
    }

    void fixedTextsStayUnlessTheLanguageTranslatesThem()
    {
        writeBytes(path("language/English.ini"), "[Zevran]\r\nFolderPrompt=Choose the folder:\r\n");
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcOk=CRC bon\r\n");
        const auto window = startIn("Other.ini");
        m_dialogs->folders = {"", ""};
        window->BrowseForFolder();
        window->languagNum_Click(1);
        window->BrowseForFolder();
        QCOMPARE(m_dialogs->asked,
                 (QStringList{QString::fromUtf8("folder 请选择软件安装路径："), "folder Choose the folder:"}));
    }

    void shippedChineseTranslatesEveryWorkshopKeyButTheFixedTexts()
    {
        QStringList english = workshopKeys(shipped("English.ini"));
        for (const char* fixed : {"FolderPrompt", "PlanSizeUnit", "WrongFormatTitle", "WrongFormatText"})
            QVERIFY2(english.removeAll(fixed) == 1, fixed);
        QCOMPARE(workshopKeys(shipped("ChineseS.ini")), english);
    }

    void shippedChineseLabelsToolBarPlayerAndHomeLink()
    {
        writeBytes(path("language/English.ini"), shipped("English.ini"));
        writeBytes(path("language/ChineseS.ini"), shipped("ChineseS.ini"));
        const auto window = startIn("ChineseS.ini");
        QCOMPARE(window->findChild<QAction*>("Open")->text(), QString::fromUtf8("打开"));
        QCOMPARE(window->findChild<QAction*>("Save")->text(), QString::fromUtf8("保存"));
        QCOMPARE(window->findChild<QAction*>("Exit")->text(), QString::fromUtf8("退出"));
        QCOMPARE(window->findChild<QPushButton*>("PlayPicture")->text(), QString::fromUtf8("播放"));
        QCOMPARE(window->findChild<QLabel*>("Label16")->text(), QString::fromUtf8("主页"));
        QCOMPARE(window->findChild<QLabel*>("SpeedLabel")->text(), QString::fromUtf8("每帧时间："));
        window->languagNum_Click(2);  // English
        QCOMPARE(window->findChild<QAction*>("Open")->text(), QString("Open"));
        QCOMPARE(window->findChild<QPushButton*>("PlayPicture")->text(), QString("Play"));
    }

    // What failed and where reads in the window's language, with its values.
    void failureDetailsReadInTheWindowsLanguage()
    {
        writeBytes(path("language/English.ini"), shipped("English.ini"));
        writeBytes(path("language/ChineseS.ini"), shipped("ChineseS.ini"));
        const auto window = startIn("ChineseS.ini");
        QDir().mkpath(path("folder.bin"));
        window->openPhoneFile(path("folder.bin"));
        QCOMPARE(m_dialogs->messages.back().text, path("folder.bin") + QString::fromUtf8("：是文件夹，不是文件"));
        window->openPhoneFile(path("missing.bin"));
        QCOMPARE(m_dialogs->messages.back().text, path("missing.bin") + QString::fromUtf8("：没有那个文件或目录"));
        window->languagNum_Click(2);  // English
        window->openPhoneFile(path("folder.bin"));
        QCOMPARE(m_dialogs->messages.back().text, path("folder.bin") + ": is a folder, not a file");
    }
};

QTEST_MAIN(WorkshopTextsTest)
#include "workshop_texts_test.moc"
