// The ring-tone tab: the scan, the tone table, the export, the notes and the tone files.
#include "tones_tab_fixture.hpp"

using namespace zevran::test;
using zevran::app::Form1;
using zevran::tones::TonesTab;

class TonesTabTest : public TonesTabFixture {
    Q_OBJECT

private slots:
    void init() { startTab(); }
    void cleanup() { stopWindow(); }


    void planUnitWordFollowsALanguageSwitch()
    {
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nPlanSizeUnit=octets\r\n");
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(110, 'x'));
        m_tab->showToneFiles(path("tones"));
        select(m_tab->toneFileList, {0});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0});
        action("addaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 "});
        m_window->languagNum_Click(2);
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 octets|001 0x00000100 - 0x0000019F 160 "});
        m_window->languagNum_Click(1);
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 "});
    }

    void scanWithoutPhoneFileShowsMessage3()
    {
        m_tab->GetTone->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{3});
        QCOMPARE(rowCount(m_tab->toneList), 0);
    }

    void scanListsEveryToneInRange()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        const QStringList expected{"001|0x00000100|0x0000019F|160|", "002|0x00000500|0x00000564|101|",
                                   "003|0x00001234|0x00001333|256|"};
        QCOMPARE(listTexts(m_tab->toneList), expected);
        QCOMPARE(m_tab->ToneCount->text(), QString("3 tones found"));
        QVERIFY(!m_tab->scanProgress->isVisible());
        QCOMPARE(m_tab->scanProgress->value(), 1);
        m_tab->GetTone->click();
        QCOMPARE(listTexts(m_tab->toneList), expected);
        QCOMPARE(m_window->imageState().LastMatch, 0);
        QVERIFY(m_dialogs->messages.empty());
    }

    void selectingAToneShowsItsCheckInTheStatusBar()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        select(m_tab->toneList, {2});
        QCOMPARE(panel->text(), QString("003: CRC wrong"));
        // Another language speaks of the selected tone in its own words.
        m_window->languagNum_Click(2);
        QCOMPARE(panel->text(), QString("003: Mauvais CRC"));
        m_tab->toneList->clearSelection();
        QCOMPARE(panel->text(), QString());
    }

    void toneCheckFollowsAChangeOfItsBytesAndItsUndo()
    {
        openPhone("phone.asf");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        // One byte of the tone's track changed in the image: its CRC no longer holds.
        m_window->patchInImage({{0x150, 0x150, {0x00}}}, false);
        QCOMPARE(panel->text(), QString("001: CRC wrong  Title: Spring"));
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        m_window->findChild<QAction*>("menuredo")->trigger();
        QCOMPARE(panel->text(), QString("001: CRC wrong  Title: Spring"));
    }

    void toneTitleIsDecodedByTheTonesCodeType()
    {
        // Code type 00 is Shift-JIS: 83 65 83 58 83 67 is "テスト", which the handset's
        // GBK code page would read as other characters.
        QByteArray image = phoneImage();
        image.replace(
            0x100, 160,
            smafTone(160, QByteArray::fromHex("0001000000") + "ST:" + QByteArray::fromHex("836583588367") + ","));
        writeBytes(path("phone.bin"), image);
        m_window->openPhoneFile(path("phone.bin"));
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        QCOMPARE(panel->text(), QString::fromUtf8("001: CRC correct  Title: テスト"));
    }

    void toneCountIsRetoldInTheNewLanguage()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QCOMPARE(m_tab->ToneCount->text(), QString("3 tones found"));
        m_window->languagNum_Click(2);
        QCOMPARE(m_tab->ToneCount->text(), QString("3 sonneries"));
    }

    void saveTableWritesEveryRowWithItsNote()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        setCellText(m_tab->toneList, 0, 4, "ring1");
        m_dialogs->files = {path("tones.txt")};
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{6});
        QCOMPARE(m_dialogs->asked.first(), QString("save %1|Tables (*.txt)|2").arg(m_home.path()));
        QCOMPARE(readBytes(path("tones.txt")), QByteArray(" 001 : 0x00000100 - 0x0000019F  Size: 160 \tring1\r\n"
                                                          " 002 : 0x00000500 - 0x00000564  Size: 101 \t\r\n"
                                                          " 003 : 0x00001234 - 0x00001333  Size: 256 \t\r\n"));
        QCOMPARE(m_window->settings().TableSavePath, m_home.path());
    }

    void tableReopenedAndSavedAgainGivesTheSameBytes()
    {
        const QByteArray table = " 001 : 0x00000100 - 0x0000019F  Size: 160 \tring1\r\n\r\n"
                                 " 002 : 0x00001234 - 0x00001333  Size: 256 \t\r\n";
        writeBytes(path("in.txt"), table);
        m_dialogs->files = {path("in.txt"), path("out.txt")};
        m_tab->OpenToneTable->click();
        QCOMPARE(listTexts(m_tab->toneList),
                 (QStringList{"001|0x00000100|0x0000019F|160|ring1", "002|0x00001234|0x00001333|256|"}));
        m_tab->SaveToneTable->click();
        QCOMPARE(readBytes(path("out.txt")), QByteArray(table).replace("\r\n\r\n", "\r\n"));
    }

    void savingAnEmptyListShowsMessage4WithoutADialog()
    {
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{4});
        QVERIFY(m_dialogs->asked.isEmpty());
    }

    void shortTableLineStopsReadingAndKeepsTheRowsBefore()
    {
        writeBytes(path("in.txt"),
                   " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n 002 : 0x1\r\n 003 : 0x2 - 0x3  Size: 4 \t\r\n");
        m_dialogs->files = {path("in.txt")};
        m_tab->OpenToneTable->click();
        QCOMPARE(listTexts(m_tab->toneList), QStringList{"001|0x00000100|0x0000019F|160|"});
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("line 2"));
    }

    void exportSelectedWritesThoseRowsOverOldFiles()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("out"));
        writeBytes(path("out/ring-001.mmf"), QByteArray(200, 'Z'));
        select(m_tab->toneList, {0, 2});
        m_dialogs->files = {path("out/ring.mmf")};
        action("outputselect")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{9});
        QCOMPARE(m_dialogs->messages[0].text, QString("Exported.\nFiles written: 2"));
        const QByteArray image = phoneImage();
        QCOMPARE(readBytes(path("out/ring-001.mmf")), image.mid(0x100, 160) + QByteArray(40, 'Z'));
        QCOMPARE(readBytes(path("out/ring-003.mmf")), image.mid(0x1234, 256));
        QVERIFY(!QFile::exists(path("out/ring-002.mmf")));
        QCOMPARE(m_window->settings().RingSavePath, path("out"));
        QVERIFY(!m_tab->scanProgress->isVisible());
    }

    void exportAllNeedsASelectionButWritesEveryRow()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{8});
        QVERIFY(m_dialogs->asked.isEmpty());
        select(m_tab->toneList, {1});
        m_dialogs->files = {path("all.mmf")};
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{8, 9}));
        for (const char* name : {"all-001.mmf", "all-002.mmf", "all-003.mmf"})
            QVERIFY2(QFile::exists(path(name)), name);
        QCOMPARE(readBytes(path("all-002.mmf")), phoneImage().mid(0x500, 101));
    }

    void exportStopsAtARowOutsideTheImage()
    {
        openPhone("phone.bin");
        writeBytes(path("other.txt"),
                   " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n 002 : 0x00100000 - 0x001000FF  Size: 256 \t\r\n");
        m_dialogs->files = {path("other.txt"), path("x.mmf")};
        m_tab->OpenToneTable->click();
        select(m_tab->toneList, {0});
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("row 002"));
        QCOMPARE(readBytes(path("x-001.mmf")), phoneImage().mid(0x100, 160));
        QVERIFY(!QFile::exists(path("x-002.mmf")));
    }

    void toneMenuEnablesByRowsAndImage()
    {
        showMenu("menufile1");
        for (const char* name : {"outputselect", "outputall", "addaddress"}) QVERIFY2(!action(name)->isEnabled(), name);
        writeBytes(path("t.txt"), " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n");
        m_dialogs->files = {path("t.txt")};
        m_tab->OpenToneTable->click();
        showMenu("menufile1");
        QVERIFY(action("addaddress")->isEnabled());
        QVERIFY(!action("outputselect")->isEnabled());
        QVERIFY(!action("outputall")->isEnabled());
        openPhone("phone.bin");
        showMenu("menufile1");
        QVERIFY(action("outputselect")->isEnabled());
        QVERIFY(action("outputall")->isEnabled());
    }

    void doubleClickEditsTheNoteUntilFocusLeaves()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {1});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 1, 0));
        QVERIFY(!m_tab->noteEditor->isHidden());
        m_tab->noteEditor->setText("alarm");
        emit m_tab->noteEditor->editingFinished();
        QVERIFY(m_tab->noteEditor->isHidden());
        QCOMPARE(cellText(m_tab->toneList, 1, 4), QString("alarm"));
    }

    void escapeCancelsTheNoteEdit()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        setCellText(m_tab->toneList, 1, 4, "ring");
        select(m_tab->toneList, {1});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 1, 0));
        m_tab->noteEditor->setText("alarm");
        QTest::keyClick(m_tab->noteEditor, Qt::Key_Escape);
        QVERIFY(m_tab->noteEditor->isHidden());
        emit m_tab->noteEditor->editingFinished();
        QCOMPARE(cellText(m_tab->toneList, 1, 4), QString("ring"));
    }

    void rescanClearsTheToneCheck()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        m_tab->GetTone->click();
        QVERIFY(m_tab->toneList->selectionModel()->selectedRows().isEmpty());
        QCOMPARE(panel->text(), QString());
    }

    void listsReadBackTheirRowsAsTheUserLeftThem()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {2});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 2, 4));
        m_tab->noteEditor->setText(QString::fromUtf8("闹钟"));
        emit m_tab->noteEditor->editingFinished();
        const zevran::tones::ToneSlot& tone = m_tab->toneRows().at(2);
        QCOMPARE(QString::fromStdString(tone.number + "|" + tone.start + "|" + tone.end + "|" + tone.size),
                 QString("003|0x00001234|0x00001333|256"));
        QCOMPARE(QString::fromStdString(tone.note), QString::fromUtf8("闹钟"));
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/z.mmf"), QByteArray(1000, 'Z'));
        writeBytes(path("tones/y.mmf"), QByteArray(99, 'Y'));
        m_tab->showToneFiles(path("tones"));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(m_tab->toneFileRows().size(), std::size_t{2});
        QCOMPARE(m_tab->toneFileRows()[0].name + "|" + m_tab->toneFileRows()[0].size, QString("y.mmf|99"));
        select(m_tab->toneFileList, {1});
        action("addmmf")->trigger();
        action("addaddress")->trigger();
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        QCOMPARE(m_tab->planRows().size(), std::size_t{1});
        const zevran::tones::ReplacementRow& pair = m_tab->planRows()[0];
        QCOMPARE(QString::fromStdString(pair.number + "|" + pair.file + "|" + pair.slot),
                 QString::fromUtf8("001|z.mmf 1000 字节|003 0x00001234 - 0x00001333 256 闹钟"));
        QVERIFY(pair.checked);
    }

    void browserListsToneFilesAndSortsByNameOrSizeAsText()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/b.mmf"), QByteArray(101, 'B'));
        writeBytes(path("tones/A.MMF"), QByteArray(1000, 'A'));
        writeBytes(path("tones/c.mmf"), QByteArray(300, 'C'));
        writeBytes(path("tones/notes.txt"), "x");
        m_tab->showToneFiles(path("tones"));
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"c.mmf|300", "b.mmf|101", "A.MMF|1000"}));
        // A caption other than "Name" or "Size" only flips the order of the sorted column.
        setHeaderText(m_tab->toneFileList, 0, "Nom");
        emit m_tab->toneFileList->header()->sectionClicked(0);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
    }

    void doubleClickPlaysTheToneFile()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/b.mmf"), "MMMD");
        m_tab->showToneFiles(path("tones"));
        QStringList played;
        m_tab->playFile = [&played](const QString& file) { played << file; };
        emit m_tab->toneFileList->doubleClicked(cellIndex(m_tab->toneFileList, 0, 0));
        QCOMPARE(played, QStringList{path("tones/b.mmf")});
    }
};

QTEST_MAIN(TonesTabTest)
#include "tones_tab_test.moc"
