// File > "Compare with...": the regions where two images differ, checked and written as a
// patch or into the image, through the window with its dialogs double.
#include "editor_fixture.hpp"

using zevran::app::CompareDialog;
using zevran::app::MessageKind;
using namespace zevran::test;

class CompareDialogTest : public EditorFixture {
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { emptyHome(); }

    void compareListsRegionsWithTheirFirstBytes()
    {
        auto window = startWindow();
        QVERIFY(!action(*window, "menucompare")->isEnabled());
        window->openPhoneFile(phoneFile("phone.bin", kOpen));
        QVERIFY(action(*window, "menucompare")->isEnabled());
        CompareDialog* dialog = compareWith(*window, phoneFile("second.bin", kSecond));
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), QString("Compare with second.bin"));
        QAbstractItemView* list = listOf(dialog);
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
        QAbstractItemView* list = listOf(dialog);
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
        QAbstractItemView* list = listOf(dialog);
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
};

QTEST_MAIN(CompareDialogTest)
#include "compare_dialog_test.moc"
