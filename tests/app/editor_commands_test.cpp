// Edit > Undo and Redo, the Save button and the title marker following the image's real
// state, and File > "Recent files", through the window with its dialogs double and the
// shipped language files.
#include "editor_fixture.hpp"

using zevran::app::Answer;
using namespace zevran::test;

class EditorCommandsTest : public EditorFixture {
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { emptyHome(); }

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
