// The window shell around the tabs: the shipped language files, the about page, help,
// version markers at the image's edges, remembered window state, and settings or
// language files that are damaged or cannot be written.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/about_tab.hpp"
#include "app/main_window.hpp"
#include "strings/code_page.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using zevran::app::AboutTab;
using zevran::app::Form1;
using zevran::test::closeWindow;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

class ShellTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    std::unique_ptr<Form1> startWindow()
    {
        auto window = startedWindow();
        return window;
    }

    void useLanguage(const QString& name, const QByteArray& bytes)
    {
        QDir().mkpath(path("language"));
        writeBytes(path("language/") + name, bytes);
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=" + name.toUtf8() + "\r\n");
    }

private slots:
    void cleanup()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    void shippedLanguageFilesHoldEveryKeyWithAText_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("English") << "English.ini";
        QTest::newRow("ChineseS") << "ChineseS.ini";
    }
    void shippedLanguageFilesHoldEveryKeyWithAText()
    {
        QFETCH(QString, file);
        const QByteArray shipped = readBytes(QStringLiteral(ZEVRAN_SOURCE_DIR "/data/language/") + file);
        QVERIFY(!shipped.isEmpty());
        useLanguage(file, shipped);
        auto window = startWindow();
        // A key the file lacked would have been written back into it, empty.
        QCOMPARE(readBytes(path("language/") + file), shipped);
        for (const QByteArray& line : shipped.split('\n')) {
            const QByteArray text = line.trimmed();
            if (text.isEmpty() || text.startsWith(';') || text.startsWith('[')) continue;
            QVERIFY2(text.indexOf('=') > 0 && !text.endsWith('='), text.constData());
        }
        for (int code : {1,  2,  3,  4,  6,  8,  9,  10, 11, 12, 13, 15, 16, 17, 18,
                         21, 25, 26, 27, 28, 29, 30, 31, 32, 33, 35, 36, 37, 39})
            QVERIFY2(!window->texts().MsgStr[static_cast<std::size_t>(code)].isEmpty(),
                     qPrintable(QString::number(code)));
        for (int filter = 1; filter <= 7; ++filter) {
            // Every file first, the useful pattern second: filter index 2 preselects it.
            const QStringList entries = window->filter(filter).split(";;");
            QVERIFY2(entries.size() >= 2 && entries[0].endsWith("(*)") && !entries[1].endsWith("(*)"),
                     qPrintable(entries.join(" | ")));
        }
    }

    void languageFileInTheCodePageIsDecoded()
    {
        // "铃声" and "扫描" in GBK, not UTF-8.
        const std::string gbk = "[SSTab1]\r\nTab1Name=" + zevran::strings::encodeText("铃声") +
                                "\r\nGetTone=" + zevran::strings::encodeText("扫描") + "\r\n";
        useLanguage("Gbk.ini", QByteArray::fromStdString(gbk));
        auto window = startWindow();
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->tabText(0), QString::fromUtf8("铃声"));
        QCOMPARE(window->findChild<QPushButton*>("GetTone")->text(), QString::fromUtf8("扫描"));
        // Keys written back keep the file in its code page.
        QVERIFY(readBytes(path("language/Gbk.ini")).startsWith(QByteArray::fromStdString(gbk)));
    }

    void settingsThatCannotBeReadOrWrittenStillLetTheWindowStartAndClose()
    {
        // A folder where the settings file belongs stops every read and write, even root's.
        QDir().mkpath(path("zevran.ini"));
        auto window = startWindow();
        QCOMPARE(window->windowTitle(), QString("Zevran Handset Workshop V1.11"));
        QCOMPARE(window->settings().S3SavePath, m_home.path());
        QVERIFY(closeWindow(*window));
        QVERIFY(QFileInfo(path("zevran.ini")).isDir());
    }

    void aboutScrollerMovesFiftyTwipsATickAndLoops()
    {
        auto window = startWindow();
        window->resize(900, 600);
        auto* about = window->findChild<AboutTab*>();
        window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(4);
        QCOMPARE(static_cast<int>(about->Label1.size()), 24);
        QVERIFY(about->Timer1->isActive());
        const int height = about->creditsArea->height() * 15;
        for (int tick = 0; tick < 3; ++tick) about->Timer1_Timer();
        QCOMPARE(about->scrollOffset->text(), QString("150"));
        for (int i : {0, 1, 23}) {
            QLabel* line = about->Label1[static_cast<std::size_t>(i)];
            QCOMPARE(line->y(), (height - 150 + i * 400) / 15);
            QCOMPARE(line->x(), (about->creditsArea->width() - line->width()) / 2);
        }
        // Once the last line has passed 200 twips above the top, the text starts again below.
        const int ticksToLoop = (height + 23 * 400 + 200) / 50 + 1;
        for (int tick = 3; tick < ticksToLoop; ++tick) about->Timer1_Timer();
        QCOMPARE(about->scrollOffset->text(), QString("0"));
        QCOMPARE(about->Label1[0]->y(), height / 15);
        // Leaving the tab removes the lines; coming back starts from the bottom.
        window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(0);
        QVERIFY(about->Label1.empty());
        QVERIFY(!about->Timer1->isActive());
        window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(4);
        QCOMPARE(about->scrollOffset->text(), QString("0"));
    }

    void homePageLinkLightsUpUnderThePointer()
    {
        auto window = startWindow();
        auto* about = window->findChild<AboutTab*>();
        QEvent enter(QEvent::Enter);
        QCoreApplication::sendEvent(about->homePageLink, &enter);
        QVERIFY(about->homePageLink->styleSheet().contains("underline"));
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(about->homePageLink, &leave);
        QCOMPARE(about->homePageLink->styleSheet(), QString());
    }

    void missingHelpDocumentShowsMessage33()
    {
        useLanguage("English.ini", "[String]\r\nHelpStr=help/none.html\r\nMsgStr33=No help.\r\n");
        auto window = startWindow();
        window->help_Click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{33});
        QCOMPARE(m_dialogs->messages[0].text, QString("No help."));
    }

    void versionMarkerTooNearTheEndEndsTheOpenSayingWhere()
    {
        auto window = startWindow();
        writeBytes(path("near.bin"), "..VersionString:...V1.2");
        window->openPhoneFile(path("near.bin"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.startsWith(path("near.bin")));
        QVERIFY(!window->findChild<QTabWidget*>("SSTab1")->isTabEnabled(1));
        // Nothing may be written out as if an earlier file's kind still held.
        QCOMPARE(window->imageState().FileKind, std::string("other"));
        QVERIFY(!window->imageState().ImageLoaded);
        for (const char* name : {"outputs3", "outputaxf", "outputStrS3", "outputStraxf", "Save"})
            QVERIFY2(!window->findChild<QAction*>(name)->isEnabled(), name);
    }

    void revisionMarkerInTheFirstTwelveBytesEndsTheOpen()
    {
        auto window = startWindow();
        writeBytes(path("rev.asf"), "..12345Rev S and more bytes after it");
        window->openPhoneFile(path("rev.asf"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        writeBytes(path("rev2.asf"), "12345678ABCDRev S");
        window->openPhoneFile(path("rev2.asf"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(window->findChild<QLabel*>("StatusBar1Panel4")->text(), QString("12345678"));
    }

    void currentTabAndShortcutsAreThereNextTime()
    {
        {
            auto window = startWindow();
            QCOMPARE(window->findChild<QAction*>("menuopen")->shortcut(), QKeySequence(QKeySequence::Open));
            QCOMPARE(window->findChild<QAction*>("Save")->shortcut(), QKeySequence(QKeySequence::Save));
            QCOMPARE(window->findChild<QAction*>("menuexit")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
            window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(3);
            QVERIFY(closeWindow(*window));
        }
        QVERIFY(readBytes(path("zevran.ini")).contains("[Window]\r\nGeometry="));
        QVERIFY(readBytes(path("zevran.ini")).contains("\r\nTab=3\r\n"));
        auto window = startWindow();
        QCOMPARE(window->findChild<QTabWidget*>("SSTab1")->currentIndex(), 3);
    }

    void rememberedSizeLargerThanTheScreenIsFittedToIt()
    {
        {
            auto window = startWindow();
            const QRect room = window->screen()->availableGeometry();
            window->setGeometry(room.x() + 40, room.y() + 40, room.width() + 900, room.height() + 700);
            QVERIFY(closeWindow(*window));
        }
        auto window = startWindow();
        const QRect room = window->screen()->availableGeometry();
        QVERIFY2(window->width() <= room.width(), qPrintable(QString::number(window->width())));
        QVERIFY2(window->height() <= room.height(), qPrintable(QString::number(window->height())));
        QVERIFY(room.contains(window->frameGeometry().topLeft()));
    }
};

QTEST_MAIN(ShellTest)
#include "shell_test.moc"
