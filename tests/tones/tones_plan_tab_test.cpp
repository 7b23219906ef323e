// The ring-tone tab's replacement plan: pairing files with slots and its two outputs.
#include "tones_tab_fixture.hpp"

using namespace zevran::test;
using zevran::app::Form1;
using zevran::tones::TonesTab;

class TonesPlanTabTest : public TonesTabFixture {
    Q_OBJECT

private slots:
    void init() { startTab(); }
    void cleanup() { stopWindow(); }

    void threeFilesAndTwoSlotsPairByPosition()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("tones"));
        for (const char* name : {"a.mmf", "b.mmf", "c.mmf"}) writeBytes(path("tones/") + name, QByteArray(110, 'x'));
        m_tab->showToneFiles(path("tones"));
        showMenu("menufile2");
        QVERIFY(!action("addmmf")->isEnabled());
        select(m_tab->toneFileList, {0, 1, 2});
        showMenu("menufile2");
        QVERIFY(action("addmmf")->isEnabled());
        action("addmmf")->trigger();
        select(m_tab->toneList, {0, 2});
        action("addaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList),
                 (QStringList{"001|c.mmf 110 字节|", "002|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 ",
                              "003|b.mmf 110 字节|003 0x00001234 - 0x00001333 256 "}));
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        QCOMPARE(checkState(m_tab->planList, 0, 0), Qt::Unchecked);
        setCheckState(m_tab->planList, 1, 0, Qt::Checked);
        QCOMPARE(checkState(m_tab->planList, 1, 0), Qt::Checked);
    }

    void removeCommandsKeepNumbersWithoutGaps()
    {
        openPhone("phone.bin");
        planTwoPairs();
        select(m_tab->planList, {0});
        action("movemmf")->trigger();
        QCOMPARE(listTexts(m_tab->planList), (QStringList{"001||001 0x00000100 - 0x0000019F 160 ",
                                                          "002|c.mmf 300 字节|003 0x00001234 - 0x00001333 256 "}));
        QCOMPARE(checkState(m_tab->planList, 0, 0), Qt::Unchecked);
        select(m_tab->planList, {0});
        action("moveaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|c.mmf 300 字节|003 0x00001234 - 0x00001333 256 "});
        action("movealladdress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|c.mmf 300 字节|"});
        select(m_tab->planList, {0});
        action("moveone")->trigger();
        QCOMPARE(rowCount(m_tab->planList), 0);
    }

    void planMenuEnablesByRowsSelectionAndKind()
    {
        showMenu("menufile3");
        for (const char* name :
             {"moveone", "moveall", "movemmf", "moveallmmf", "moveaddress", "movealladdress", "outputs3", "outputaxf"})
            QVERIFY2(!action(name)->isEnabled(), name);
        openPhone("phone.bin");
        planTwoPairs();
        m_tab->planList->clearSelection();
        showMenu("menufile3");
        QVERIFY(action("moveall")->isEnabled());
        QVERIFY(!action("moveone")->isEnabled());
        QVERIFY(action("outputs3")->isEnabled());
        QVERIFY(!action("outputaxf")->isEnabled());
    }

    void srecordOutputWritesEachPairZeroFilledToItsSlot()
    {
        openPhone("phone.bin");
        planTwoPairs();
        writeBytes(path("tones/b.mmf"), QByteArray(101, 'B'));
        // c (300 bytes) cannot go into the 256-byte slot: give tone 003 to b instead.
        select(m_tab->planList, {1});
        action("movemmf")->trigger();
        m_tab->showToneFiles(path("tones"));
        select(m_tab->toneFileList, {1});
        action("addmmf")->trigger();
        setCheckState(m_tab->planList, 1, 0, Qt::Checked);
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(readBytes(path("patch.s3")),
                 patchFile({{0x100, padded(QByteArray(120, 'A'), 160)}, {0x1234, padded(QByteArray(101, 'B'), 256)}}));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    void srecordOutputWritesNothingWhenAToneIsTooLarge()
    {
        openPhone("phone.bin");
        planTwoPairs();
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{12});
        QCOMPARE(m_dialogs->messages[0].text, QString("Too large.\nRow 002 of the plan: c.mmf 300 ") +
                                                  QString::fromUtf8("字节") +
                                                  " does not fit its slot. Nothing was written.");
        QVERIFY(!QFileInfo::exists(path("patch.s3")));
    }

    void cancelledSaveDialogEndsTheToneOutputSilently()
    {
        openPhone("phone.bin");
        planTwoPairs();
        m_dialogs->files = {""};
        action("outputs3")->trigger();
        QVERIFY(m_dialogs->messages.empty());
    }

    void emptySlotMessageComesAfterTheSaveDialog()
    {
        openPhone("phone.bin");
        planTwoPairs();
        setCheckState(m_tab->planList, 1, 0, Qt::Unchecked);
        // An empty tone into a slot of 0 bytes (a hand-made table): sizes pass, the slot is empty.
        setCellText(m_tab->planList, 0, 1, QString::fromUtf8("a.mmf 0 字节"));
        setCellText(m_tab->planList, 0, 2, "001 0x00000100 - 0x0000019F 0 ");
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->asked.size(), 1);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{1});
    }

    void imageOutputPatchesTheImageAndEnablesSave()
    {
        openPhone("phone.asf");
        planTwoPairs();
        setCheckState(m_tab->planList, 1, 0, Qt::Unchecked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        const std::vector<std::uint8_t>& image = m_window->imageState().FirmwareImage;
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()) + 0x100, 160),
                 padded(QByteArray(120, 'A'), 160));
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()) + 0x1234, 4), QByteArray("MMMD"));
        QVERIFY(action("Save")->isEnabled());
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
    }

    void imageOutputChangesNothingWhenAToneIsTooLarge()
    {
        openPhone("phone.asf");
        planTwoPairs();
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{12});
        QCOMPARE(static_cast<char>(m_window->imageState().FirmwareImage[0x100]), 'M');
        QVERIFY(!action("Save")->isEnabled());
    }

    void imageOutputWithNothingCheckedShowsMessage11()
    {
        openPhone("phone.asf");
        planTwoPairs();
        for (int i = 0; i < 2; ++i) setCheckState(m_tab->planList, i, 0, Qt::Unchecked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{11});
        QVERIFY(!action("Save")->isEnabled());
    }

    void nothingIsSavedOrExportedOverThePhoneFile()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        m_dialogs->files = {path("phone.bin")};
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("is the phone file open in the workshop"));
        m_window->writeSRecordPatch({{0, 0, {'X'}}});
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0}));
        m_dialogs->files = {path("phone.bin")};
        m_window->writeSRecordPatch({{0, 0, {'X'}}});
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0, 0}));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
        // An "asf" phone file named like an exported tone: "t.mmf" would write t-001.mmf over it.
        writeBytes(path("t-001.mmf"), phoneImage());
        m_window->openPhoneFile(path("t-001.mmf"));
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        m_dialogs->files = {path("t.mmf")};
        action("outputselect")->trigger();
        QCOMPARE(m_dialogs->codes().back(), 0);
        QVERIFY(m_dialogs->messages.back().text.contains("t-001.mmf: is the phone file open in the workshop"));
        QCOMPARE(readBytes(path("t-001.mmf")), phoneImage());
    }

    void windowDoesNotCloseUnderAnExport()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        m_dialogs->files = {path("all.mmf")};
        bool closed = true;
        QTimer::singleShot(0, this, [&] { closed = m_window->close(); });
        action("outputall")->trigger();
        QVERIFY(!closed);
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{32, 9}));
        QVERIFY(m_window->mayClose());
    }

    void outputsForTheOtherKindDoNothing()
    {
        openPhone("phone.asf");
        planTwoPairs();
        m_tab->outputs3_Click();
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(m_dialogs->asked.isEmpty());
    }

    void outputRefusesASlotOutsideTheImage()
    {
        openPhone("phone.asf");
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(120, 'A'));
        m_tab->showToneFiles(path("tones"));
        writeBytes(path("other.txt"), " 001 : 0x00100000 - 0x0010009F  Size: 160 \t\r\n");
        m_dialogs->files = {path("other.txt")};
        m_tab->OpenToneTable->click();
        select(m_tab->toneFileList, {0});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0});
        action("addaddress")->trigger();
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("outside the image"));
        QVERIFY(!action("Save")->isEnabled());
    }
};

QTEST_MAIN(TonesPlanTabTest)
#include "tones_plan_tab_test.moc"
