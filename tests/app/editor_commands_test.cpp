// File > "Compare with...", Edit > Undo and Redo, the Save button and the title marker
// following the image's real state, and File > "Recent files", through the window with
// its dialogs double and the shipped language files.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/list_cells.hpp"
#include "app/compare_dialog.hpp"
#include "app/main_window.hpp"
#include "strings/ui/strings_tab.hpp"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>
#include <QDropEvent>

using zevran::app::Answer;
using zevran::app::CompareDialog;
using zevran::app::Form1;
using zevran::app::MessageKind;
using zevran::test::closeWindow;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

const QByteArray kOpen = "0123456789ABCDEF";
// Against kOpen: 2..3 and 8 differ, and 16..19 lie past its end.
const QByteArray kSecond = "01xx4567z9ABCDEFtail";

QByteArray imageOf(Form1& window)
{
    const auto& bytes = window.imageState().FirmwareImage;
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

}  // namespace

class EditorCommandsTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    std::unique_ptr<Form1> startWindow()
    {
        QDir().mkpath(path("language"));
        for (const char* name : {"English.ini", "ChineseS.ini"})
            QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/language/") + name, path("language/") + name);
        if (!QFile::exists(path("zevran.ini")))
            writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        return startedWindow();
    }

    QString phoneFile(const QString& name, const QByteArray& bytes)
    {
        writeBytes(path(name), bytes);
        return path(name);
    }

    static QAction* action(Form1& window, const char* name) { return window.findChild<QAction*>(name); }

    // Opens the second file through File > "Compare with..." and returns the dialog.
    CompareDialog* compareWith(Form1& window, const QString& second)
    {
        m_dialogs->files = {second};
        action(window, "menucompare")->trigger();
        return window.findChild<CompareDialog*>("CompareDialog");
    }

    static QTreeWidget* listOf(CompareDialog* dialog) { return dialog->findChild<QTreeWidget*>("CompareList"); }

    static QStringList recentItems(Form1& window)
    {
        QCoreApplication::processEvents();
        auto* menu = window.findChild<QMenu*>("menurecent");
        QMetaObject::invokeMethod(menu, "aboutToShow");
        QStringList items;
        for (QAction* item : menu->actions())
            if (item->objectName() == "recentfile")
                items << (item->isEnabled() ? "" : "(missing) ") + QFileInfo(item->data().toString()).fileName();
        return items;
    }

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    void compareListsRegionsWithTheirFirstBytes()
    {
        auto window = startWindow();
        QVERIFY(!action(*window, "menucompare")->isEnabled());
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        QVERIFY(action(*window, "menucompare")->isEnabled());
        CompareDialog* dialog = compareWith(*window, phoneFile("second.bin", kSecond));
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), QString("Compare with second.bin"));
        QTreeWidget* list = listOf(dialog);
        QCOMPARE(headerText(list, 0), QString("First"));
        QCOMPARE(headerText(list, 4), QString("Second image"));
        QCOMPARE(rowCount(list), 3);
        QCOMPARE(rowTexts(list, 0), (QStringList{"0x00000002", "0x00000003", "2", "32 33", "78 78"}));
        QCOMPARE(rowTexts(list, 1), (QStringList{"0x00000008", "0x00000008", "1", "38", "7A"}));
        QCOMPARE(rowTexts(list, 2), (QStringList{"0x00000010", "0x00000013", "4", "", "74 61 69 6C"}));
        for (int row = 0; row < 3; ++row) QCOMPARE(checkState(list, row, 0), Qt::Checked);
        QCOMPARE(dialog->findChild<QLabel*>("CompareSummary")->text(), QString("3 regions checked, 7 bytes"));
        QVERIFY(m_dialogs->asked.first().startsWith("open "));
    }

    void gapJoinsNearbyRegionsInTheList()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        CompareDialog* dialog = compareWith(*window, phoneFile("second.bin", kSecond));
        dialog->findChild<QSpinBox*>("CompareGap")->setValue(4);
        QTreeWidget* list = listOf(dialog);
        QCOMPARE(rowCount(list), 2);
        QCOMPARE(rowTexts(list, 0),
                 (QStringList{"0x00000002", "0x00000008", "7", "32 33 34 35 36 37 38", "78 78 34 35 36 37 7A"}));
        QCOMPARE(rowTexts(list, 1), (QStringList{"0x00000010", "0x00000013", "4", "", "74 61 69 6C"}));
        dialog->findChild<QSpinBox*>("CompareGap")->setValue(7);
        QCOMPARE(rowCount(list), 1);
        QCOMPARE(rowTexts(list, 0), (QStringList{"0x00000002", "0x00000013", "18", "32 33 34 35 36 37 38 39 ...",
                                                 "78 78 34 35 36 37 7A 39 ..."}));
    }

    void imagesDifferingAllOverAreListedWithARaisedGap()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", QByteArray(40000, 'a')));
        QByteArray second(40000, 'a');
        for (int at = 0; at < second.size(); at += 2) second[at] = 'b';
        CompareDialog* dialog = compareWith(*window, phoneFile("second.bin", second));
        // 20000 runs one byte apart are more than a list shows: a gap of 1 makes them one.
        QCOMPARE(dialog->findChild<QSpinBox*>("CompareGap")->value(), 1);
        QCOMPARE(rowCount(listOf(dialog)), 1);
        QCOMPARE(rowTexts(listOf(dialog), 0),
                 (QStringList{"0x00000000", "0x00009C3E", "39999", "61 61 61 61 61 61 61 61 ...",
                              "62 61 62 61 62 61 62 61 ..."}));
    }

    void checkedRegionsOfABinFileBecomeAnSRecordPatch()
    {
        auto window = startWindow();
        const QString phone = phoneFile("phone.bin", kOpen);
        window->openPhoneFile(phone);
        CompareDialog* dialog = compareWith(*window, phoneFile("second.bin", kSecond));
        setCheckState(listOf(dialog), 1, 0, Qt::Unchecked);
        QCOMPARE(dialog->findChild<QLabel*>("CompareSummary")->text(), QString("2 regions checked, 6 bytes"));
        m_dialogs->files = {path("change.s3")};
        dialog->findChild<QPushButton*>("CompareWrite")->click();
        // 78 78 at 2: 07 + 02 + 78 + 78 = F9 -> 06. "tail" at 10: 09 + 10 + 74 + 61 + 69 + 6C = 1C3 -> 3C.
        QCOMPARE(readBytes(path("change.s3")), QByteArray("S00600004844521B\r\n"
                                                          "S30700000002787806\r\n"
                                                          "S309000000107461696C3C\r\n"
                                                          "S705A002000058\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(readBytes(phone), kOpen);
        QCOMPARE(imageOf(*window), kOpen);
        QVERIFY(!action(*window, "Save")->isEnabled());
        QVERIFY(!action(*window, "menuundo")->isEnabled());
    }

    void checkedRegionsOfAnAsfFileGoIntoTheImageAsOneUndoStep()
    {
        auto window = startWindow();
        const QString phone = phoneFile("phone.asf", kOpen);
        window->openPhoneFile(phone);
        CompareDialog* dialog = compareWith(*window, phoneFile("second.asf", kSecond));
        QTreeWidget* list = listOf(dialog);
        // The image cannot grow: the bytes past its end are listed but cannot be checked.
        QCOMPARE(checkState(list, 2, 0), Qt::Unchecked);
        QVERIFY(!(cellFlags(list, 2, 0) & Qt::ItemIsEnabled));
        dialog->findChild<QPushButton*>("CompareCheckAll")->click();
        QCOMPARE(checkState(list, 2, 0), Qt::Unchecked);
        QCOMPARE(dialog->findChild<QLabel*>("CompareSummary")->text(), QString("2 regions checked, 3 bytes"));
        dialog->findChild<QPushButton*>("CompareWrite")->click();
        QCOMPARE(imageOf(*window), QByteArray("01xx4567z9ABCDEF"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        QCOMPARE(readBytes(phone), kOpen);
        QVERIFY(action(*window, "Save")->isEnabled());
        QVERIFY(window->isWindowModified());
        action(*window, "menuundo")->trigger();
        QCOMPARE(imageOf(*window), kOpen);
        QVERIFY(!action(*window, "Save")->isEnabled());
        QVERIFY(!window->isWindowModified());
    }

    void noCheckedRegionCannotBeWrittenAndCancelWritesNothing()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.asf", kOpen));
        CompareDialog* dialog = compareWith(*window, phoneFile("second.asf", kSecond));
        dialog->findChild<QPushButton*>("CompareCheckNone")->click();
        QCOMPARE(dialog->findChild<QLabel*>("CompareSummary")->text(), QString("0 regions checked, 0 bytes"));
        QVERIFY(!dialog->findChild<QPushButton*>("CompareWrite")->isEnabled());
        dialog->findChild<QPushButton*>("CompareCheckAll")->click();
        dialog->findChild<QPushButton*>("CompareCancel")->click();
        QCOMPARE(imageOf(*window), kOpen);
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(!action(*window, "Save")->isEnabled());
    }

    void equalImagesAreSaidToBeEqual()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        QVERIFY(!compareWith(*window, phoneFile("copy.bin", kOpen)));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].kind, MessageKind::Information);
        QCOMPARE(m_dialogs->messages[0].text, QString("The two images are equal: there is nothing to carry over."));
    }

    void shorterSecondImageIsRefusedNamingBothLengths()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        const QString shorter = phoneFile("short.bin", "0123");
        QVERIFY(!compareWith(*window, shorter));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text,
                 shorter + " holds 4 bytes, fewer than the 16 of the open image: a patch cannot shorten an image.");
    }

    void cancelledOpenComparesNothing()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        QVERIFY(!compareWith(*window, QString()));
        QVERIFY(m_dialogs->messages.empty());
    }

    void titleNamesTheFileAndMarksUnsavedChanges()
    {
        auto window = startWindow();
        QCOMPARE(window->windowTitle(), QString("Zevran Handset Workshop V1.11"));
        window->openPhoneFile(phoneFile("phone.asf", "0123456789"));
        QCOMPARE(window->windowTitle(), QString("phone.asf[*] - Zevran Handset Workshop V1.11"));
        QVERIFY(!window->isWindowModified());
        window->patchInImage({{2, 3, {'A', 'B'}}});
        QVERIFY(window->isWindowModified());
        window->findChild<QAction*>("Save")->trigger();
        QVERIFY(!window->isWindowModified());
    }

    void undoAndRedoStepThroughOutputsWithSaveFollowingTheImage()
    {
        auto window = startWindow();
        const QString phone = phoneFile("phone.asf", "0123456789");
        window->openPhoneFile(phone);
        QAction* undo = action(*window, "menuundo");
        QAction* redo = action(*window, "menuredo");
        QAction* save = action(*window, "Save");
        QCOMPARE(undo->shortcut(), QKeySequence("Ctrl+Z"));
        QCOMPARE(redo->shortcut(), QKeySequence("Ctrl+Shift+Z"));
        QVERIFY(!undo->isEnabled());
        QVERIFY(!redo->isEnabled());
        window->patchInImage({{2, 3, {'A', 'B'}}});
        window->patchInImage({{5, 5, {'Z'}}});
        QCOMPARE(imageOf(*window), QByteArray("01AB4Z6789"));
        undo->trigger();
        QCOMPARE(imageOf(*window), QByteArray("01AB456789"));
        QVERIFY(save->isEnabled());
        QVERIFY(redo->isEnabled());
        undo->trigger();
        QCOMPARE(imageOf(*window), QByteArray("0123456789"));
        QVERIFY(!save->isEnabled());
        QVERIFY(!undo->isEnabled());
        // Back at the opened state: closing asks nothing.
        redo->trigger();
        QCOMPARE(imageOf(*window), QByteArray("01AB456789"));
        QVERIFY(save->isEnabled());
        undo->trigger();
        QVERIFY(closeWindow(*window));
        QVERIFY(!m_dialogs->asked.join("\n").contains("question"));
        QCOMPARE(readBytes(phone), QByteArray("0123456789"));
    }

    void undoPastASaveAsksOnCloseAndRedoBackToItDoesNot()
    {
        auto window = startWindow();
        const QString phone = phoneFile("phone.asf", "0123456789");
        window->openPhoneFile(phone);
        QAction* save = action(*window, "Save");
        window->patchInImage({{2, 3, {'A', 'B'}}});
        window->patchInImage({{5, 5, {'Z'}}});
        save->trigger();
        QCOMPARE(readBytes(phone), QByteArray("01AB4Z6789"));
        QVERIFY(!save->isEnabled());
        action(*window, "menuundo")->trigger();
        QVERIFY(save->isEnabled());
        QVERIFY(window->isWindowModified());
        m_dialogs->answers = {Answer::Cancel};
        QVERIFY(!closeWindow(*window));
        QCOMPARE(m_dialogs->asked.filter("question").size(), 1);
        action(*window, "menuredo")->trigger();
        QVERIFY(!save->isEnabled());
        QVERIFY(!window->isWindowModified());
        QVERIFY(closeWindow(*window));
        QCOMPARE(m_dialogs->asked.filter("question").size(), 1);
        QCOMPARE(readBytes(phone), QByteArray("01AB4Z6789"));
    }

    void undoneStateCanBeSavedAndUndoneAgain()
    {
        auto window = startWindow();
        const QString phone = phoneFile("phone.asf", "0123456789");
        window->openPhoneFile(phone);
        window->patchInImage({{0, 1, {'X', 'Y'}}});
        window->findChild<QAction*>("Save")->trigger();
        action(*window, "menuundo")->trigger();
        window->findChild<QAction*>("Save")->trigger();
        QCOMPARE(readBytes(phone), QByteArray("0123456789"));
        action(*window, "menuredo")->trigger();
        QVERIFY(action(*window, "Save")->isEnabled());
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{13, 21, 21}));
    }

    void outputThatChangesNoByteLeavesSaveDisabled()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.asf", "0123456789"));
        window->patchInImage({{2, 3, {'2', '3'}}});
        QVERIFY(!action(*window, "Save")->isEnabled());
        QVERIFY(!action(*window, "menuundo")->isEnabled());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
    }

    void stringOutputIsUndoneLikeAnyOther()
    {
        auto window = startWindow();
        QByteArray image(0x800, '\x11');
        image.replace(0x400, 6, QByteArray("Hello\0", 6));
        window->openPhoneFile(phoneFile("phone.asf", image));
        auto* tab = window->findChild<zevran::strings::StringsTab*>();
        tab->searchText->setText("Hello");
        window->findChild<QRadioButton*>("Option2")->setChecked(true);
        window->findChild<QCheckBox*>("SearchBegin")->setChecked(true);
        tab->SeachString_Click();
        tab->replacementText->setText("Howdy");
        tab->Add2List_Click();
        tab->outputStraxf_Click();
        QCOMPARE(imageOf(*window).mid(0x400, 6), QByteArray("Howdy\0", 6));
        QVERIFY(action(*window, "Save")->isEnabled());
        action(*window, "menuundo")->trigger();
        QCOMPARE(imageOf(*window), image);
        QVERIFY(!action(*window, "Save")->isEnabled());
    }

    void openingAnotherFileStartsAFreshHistory()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("a.asf", "0123456789"));
        window->patchInImage({{0, 0, {'X'}}});
        m_dialogs->answers = {Answer::No};
        window->openPhoneFile(phoneFile("b.asf", "abcdefghij"));
        QVERIFY(!action(*window, "menuundo")->isEnabled());
        QVERIFY(!action(*window, "Save")->isEnabled());
        QVERIFY(!window->isWindowModified());
        action(*window, "menuundo")->trigger();
        QCOMPARE(imageOf(*window), QByteArray("abcdefghij"));
    }

    void editMenuSitsBetweenFileAndHelp()
    {
        auto window = startWindow();
        QStringList menus;
        for (QAction* item : window->menuBar()->actions()) menus << item->menu()->objectName();
        QCOMPARE(menus, (QStringList{"file", "menuedit", "menuhelp"}));
        QCOMPARE(window->findChild<QMenu*>("menuedit")->title(), QString("Edit"));
        QCOMPARE(action(*window, "menuundo")->text(), QString("Undo"));
    }

    void recentFilesListsOpenedFilesNewestFirstAndKeepsThem()
    {
        auto window = startWindow();
        const QString a = phoneFile("a.bin", "0123");
        const QString b = phoneFile("b.asf", "4567");
        window->openPhoneFile(a);
        window->openPhoneFile(b);
        window->openPhoneFile(a);
        window->openPhoneFile(phoneFile("c.s3", "S0"));  // not a phone file: not listed
        QCOMPARE(recentItems(*window), (QStringList{"a.bin", "b.asf"}));
        const QByteArray settings = readBytes(path("zevran.ini"));
        QVERIFY(settings.contains(("[Recent Files]\r\nFile1=" + a + "\r\nFile2=" + b + "\r\nFile3=\r\n").toUtf8()));
        QVERIFY(closeWindow(*window));
        window.reset();
        window = startWindow();
        QCOMPARE(recentItems(*window), (QStringList{"a.bin", "b.asf"}));
    }

    void recentFileOpensWhenChosen()
    {
        auto window = startWindow();
        const QString a = phoneFile("a.bin", "0123");
        window->openPhoneFile(a);
        window->openPhoneFile(phoneFile("b.asf", "4567"));
        recentItems(*window);
        for (QAction* item : window->findChild<QMenu*>("menurecent")->actions())
            if (item->data().toString() == a) item->trigger();
        QCOMPARE(QString::fromStdString(window->imageState().FirmwarePath), a);
        QCOMPARE(recentItems(*window), (QStringList{"a.bin", "b.asf"}));
    }

    // Every way of replacing a changed image asks as closing does.
    void replacingAChangedImageAsksFirst_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<int>("answer");
        for (const char* way : {"open", "recent", "drop", "hand-over"}) {
            QTest::newRow(qPrintable(QString("%1, cancel").arg(way))) << way << int(Answer::Cancel);
            QTest::newRow(qPrintable(QString("%1, no").arg(way))) << way << int(Answer::No);
            QTest::newRow(qPrintable(QString("%1, yes").arg(way))) << way << int(Answer::Yes);
        }
    }
    void replacingAChangedImageAsksFirst()
    {
        QFETCH(QString, way);
        QFETCH(int, answer);
        auto window = startWindow();
        const QString other = phoneFile("other.bin", "4567");
        window->openPhoneFile(other);
        const QString asf = phoneFile("phone.asf", "0123");
        window->openPhoneFile(asf);
        window->patchInImage({{0, 0, {'X'}}});
        m_dialogs->asked.clear();
        m_dialogs->answers = {Answer(answer)};
        if (way == "open") {
            m_dialogs->files = {other};
            window->menuopen_Click();
        } else if (way == "recent") {
            recentItems(*window);
            for (QAction* item : window->findChild<QMenu*>("menurecent")->actions())
                if (item->data().toString() == other) item->trigger();
        } else if (way == "drop") {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(other)});
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
            QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(window.get(), &enter);
            QVERIFY(enter.isAccepted());
            QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(window.get(), &drop);
        } else {
            window->openPhoneFile(other);
        }
        QCOMPARE(m_dialogs->asked.filter("question").size(), 1);
        const bool replaced = Answer(answer) != Answer::Cancel;
        QCOMPARE(QString::fromStdString(window->imageState().FirmwarePath), replaced ? other : asf);
        QCOMPARE(readBytes(asf), QByteArray(Answer(answer) == Answer::Yes ? "X123" : "0123"));
        if (!replaced) {
            // The changed image stays with its undo step.
            QCOMPARE(window->imageState().FirmwareImage[0], std::uint8_t('X'));
            QVERIFY(action(*window, "Save")->isEnabled());
            action(*window, "menuundo")->trigger();
            QCOMPARE(window->imageState().FirmwareImage[0], std::uint8_t('0'));
        }
    }

    void unchangedImageIsReplacedWithoutAQuestion()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("phone.asf", "0123"));
        window->openPhoneFile(phoneFile("other.bin", "4567"));
        QVERIFY(m_dialogs->asked.filter("question").isEmpty());
        QCOMPARE(QString::fromStdString(window->imageState().FirmwarePath), path("other.bin"));
    }

    void missingFileIsDisabledAndCanBeRemovedAndTheListCleared()
    {
        auto window = startWindow();
        window->openPhoneFile(phoneFile("a.bin", "0123"));
        window->openPhoneFile(phoneFile("b.asf", "4567"));
        QFile::remove(path("a.bin"));
        QCOMPARE(recentItems(*window), (QStringList{"b.asf", "(missing) a.bin"}));
        QVERIFY(action(*window, "menurecentmissing")->isEnabled());
        action(*window, "menurecentmissing")->trigger();
        QCOMPARE(recentItems(*window), (QStringList{"b.asf"}));
        QVERIFY(!action(*window, "menurecentmissing")->isEnabled());
        QCOMPARE(action(*window, "menurecentclear")->text(), QString("Clear list"));
        action(*window, "menurecentclear")->trigger();
        QCOMPARE(recentItems(*window), QStringList{});
        QVERIFY(!action(*window, "menurecentclear")->isEnabled());
        QVERIFY(readBytes(path("zevran.ini")).contains("[Recent Files]\r\nFile1=\r\nFile2=\r\n"));
    }

    void languageSwitchRetitlesEveryNewItem()
    {
        auto window = startWindow();
        QCOMPARE(action(*window, "menucompare")->text(), QString("Compare with..."));
        QCOMPARE(window->findChild<QMenu*>("menurecent")->title(), QString("Recent files"));
        window->languagNum_Click(1);  // ChineseS, the first language file by name
        QCOMPARE(action(*window, "menucompare")->text(), QString::fromUtf8("与其他文件比较..."));
        QCOMPARE(window->findChild<QMenu*>("menurecent")->title(), QString::fromUtf8("最近打开的文件"));
        QCOMPARE(window->findChild<QMenu*>("menuedit")->title(), QString::fromUtf8("编辑"));
        QCOMPARE(action(*window, "menuundo")->text(), QString::fromUtf8("撤销"));
        QCOMPARE(action(*window, "menuredo")->text(), QString::fromUtf8("重做"));
        QCOMPARE(action(*window, "menurecentclear")->text(), QString::fromUtf8("清空列表"));
    }
};

QTEST_MAIN(EditorCommandsTest)
#include "editor_commands_test.moc"
