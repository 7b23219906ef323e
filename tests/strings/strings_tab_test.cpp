// The strings tab through the dialogs double: the search in both encodings, and the
// edit list and its pop-up menu, on phone files the test writes.
#include "strings_tab_fixture.hpp"

#include <QCheckBox>
#include <QTabWidget>
#include <QTest>

using zevran::test::kWen;
using zevran::test::kZhong;

class StringsTabTest : public zevran::test::StringsTabFixture {
    Q_OBJECT

private slots:
    void init() { startTab(); }
    void cleanup() { stopWindow(false); }

    void tabWaitsForAPhoneFile()
    {
        auto* tabs = m_window->findChild<QTabWidget*>("SSTab1");
        QVERIFY(!tabs->isTabEnabled(1));
        QVERIFY(!m_tab->Add2List->isEnabled());
        open("phone.bin");
        QVERIFY(tabs->isTabEnabled(1));
        QVERIFY(!m_tab->Add2List->isEnabled());
    }

    void threeOccurrencesAreWalkedThenMissedThenWrapped()
    {
        open("phone.bin");
        search("Menu");
        QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
        m_tab->SeachString->click();
        QCOMPARE(found(), QStringList({"00000020", "00000029", "10", "2"}));
        m_tab->SeachString->click();
        QCOMPARE(found(), QStringList({"00000030", "00000033", "4", "3"}));
        QVERIFY(m_dialogs->messages.empty());
        m_tab->SeachString->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{26});
        QCOMPARE(found(), QStringList({"", "", "", "3"}));
        QCOMPARE(m_window->imageState().LastMatch, 0);
        m_tab->SeachString->click();
        QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{26});
    }

    void newTextStartsAFreshPass()
    {
        open("phone.bin");
        search("Tail");
        QCOMPARE(found(), QStringList({"000000E0", "000000E3", "4", "1"}));
        search("Menu");
        QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
        search("Menu", true);  // the same text in the other encoding starts afresh too
        QCOMPARE(m_dialogs->codes(), std::vector<int>{26});
        QVERIFY(m_dialogs->messages.size() == 1);
    }

    void foundStringIsShownAsTextInItsEncoding()
    {
        open("phone.bin");
        search("Menu");
        QCOMPARE(m_tab->FoundText->text(), QString("Menu"));
        m_tab->SeachString->click();
        QCOMPARE(m_tab->FoundText->text(), QString("Menu items"));
        search("Hi", true);
        QCOMPARE(m_tab->FoundText->text(), QString("Hi  "));
        search(QString::fromUtf8("中文"), true);
        QCOMPARE(m_tab->FoundText->text(), QString::fromUtf8("中文"));
        search(QString::fromUtf8("中文"));
        QCOMPARE(m_tab->FoundText->text(), QString::fromUtf8("中文"));
    }

    void fromTheBeginningEveryClickShowsTheFirst()
    {
        open("phone.bin");
        m_tab->SearchBegin->setChecked(true);
        for (int click = 0; click < 3; ++click) {
            search("Menu");
            QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
        }
        m_tab->SearchBegin->setChecked(false);
        m_tab->SeachString->click();
        QCOMPARE(found(), QStringList({"00000020", "00000029", "10", "2"}));
    }

    void handsetCodesMeasureCharacters()
    {
        open("phone.bin");
        search("Hi", true);
        QCOMPARE(found(), QStringList({"00000040", "00000047", "4", "1"}));
        QCOMPARE(m_tab->replacementText->maxLength(), 4);
    }

    void oddByteCountInHandsetCodesShowsAHalfCharacter()
    {
        open("phone.bin");
        search("OK", true);
        QCOMPARE(found(), QStringList({"00000050", "00000054", "2.5", "1"}));
        // 2.5 rounds half to even.
        QCOMPARE(m_tab->replacementText->maxLength(), 2);
    }

    void chineseInSingleByteCodesIsFoundByItsTwoGbkBytes()
    {
        open("phone.bin");
        search(kZhong);
        QCOMPARE(found(), QStringList({"00000060", "00000063", "4", "1"}));
        QCOMPARE(m_tab->replacementText->maxLength(), 4);
    }

    void chineseInHandsetCodesIsFoundByItsCodeUnit()
    {
        open("phone.bin");
        search(kZhong, true);
        QCOMPARE(found(), QStringList({"00000070", "00000073", "2", "1"}));
        QCOMPARE(m_tab->replacementText->maxLength(), 2);
    }

    void hitRunningToTheEndWithoutAZeroIsCountedAndPassedOver()
    {
        open("phone.bin");
        search("Tail");
        QCOMPARE(found(), QStringList({"000000E0", "000000E3", "4", "1"}));
        m_tab->SeachString->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{26});
        QCOMPARE(found(), QStringList({"", "", "", "2"}));
        m_tab->SeachString->click();
        QCOMPARE(found(), QStringList({"000000E0", "000000E3", "4", "1"}));
    }

    void emptySearchTextShowsMessage27AndChangesNothing()
    {
        open("phone.bin");
        m_tab->SeachString->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{27});
        QVERIFY(!m_tab->Add2List->isEnabled());
        search("Menu");
        search("");
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{27, 27}));
        QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Warning);
    }

    void missShowsMessage26AndStillEnablesAdd2List()
    {
        open("phone.bin");
        search("Menu", true);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{26});
        QCOMPARE(found(), QStringList({"", "", "", "0"}));
        QVERIFY(m_tab->Add2List->isEnabled());
    }

    void replacementBoxIsLimitedToTheFoundLength()
    {
        open("phone.bin");
        m_tab->replacementText->setText("abcdefghijkl");
        search("Menu");
        QCOMPARE(m_tab->replacementText->maxLength(), 4);
        QCOMPARE(m_tab->replacementText->text(), QString("abcd"));
        m_tab->SeachString->click();
        QCOMPARE(m_tab->replacementText->maxLength(), 10);
    }

    void textWithoutACodeInTheCodePageSaysSo()
    {
        open("phone.bin");
        search(QString::fromUtf8("\xF0\x9F\x98\x80"));  // U+1F600 has no GBK code
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.contains("GBK"), qPrintable(m_dialogs->messages[0].text));
    }

    void addedRowsHoldTheFoundStringAndThePaddedReplacement()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        search("Hi", true);
        add("Yo");
        search(kZhong);
        add(kWen);
        QCOMPARE(rowCount(m_tab->editList), 3);
        QCOMPARE(row(0), QStringList({"01", "00000010", "00000013", "Cat ", "4"}));
        QCOMPARE(row(1), QStringList({"02", "00000040", "00000047", "Yo  ", "4"}));
        // 文 takes two of the string's four GBK bytes: two spaces fill the rest.
        QCOMPARE(row(2), QStringList({"03", "00000060", "00000063", kWen + "  ", "4"}));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(cellFlags(m_tab->editList, i, 0) & Qt::ItemIsUserCheckable);
            QCOMPARE(checkState(m_tab->editList, i, 0), Qt::Checked);
        }
        QVERIFY(m_dialogs->messages.empty());
    }

    void addingWithAnEmptyStartOrReplacementShowsMessage25()
    {
        open("phone.bin");
        search("Menu", true);
        add("x");
        search("Menu");
        add("");
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{26, 25, 25}));
        QCOMPARE(m_dialogs->messages[1].kind, zevran::app::MessageKind::Warning);
        QCOMPARE(rowCount(m_tab->editList), 0);
    }

    void replacementThatCannotFillItsStringIsRefused()
    {
        open("phone.bin");
        // Three characters fit the box of four, but take six GBK bytes.
        search("Menu");
        add(kZhong + kWen + kZhong);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, "\"" + kZhong + kWen + kZhong +
                                                  "\" takes 6 bytes in single-byte codes, more than the 4 of the "
                                                  "string at 00000010");
        search("OK", true);
        add("A");
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0, 0}));
        QVERIFY2(m_dialogs->messages[1].text.contains("odd count"), qPrintable(m_dialogs->messages[1].text));
        QCOMPARE(rowCount(m_tab->editList), 0);
    }

    void removeOneTakesTheSelectedRowAndNumbersAreKept()
    {
        open("phone.bin");
        for (const char* replacement : {"A", "B", "C"}) {
            search("Menu");
            add(replacement);
        }
        action("Removeone")->trigger();
        QCOMPARE(rowCount(m_tab->editList), 3);
        setCurrentRow(m_tab->editList, 1);
        action("Removeone")->trigger();
        QCOMPARE(rowCount(m_tab->editList), 2);
        QCOMPARE(row(0), QStringList({"01", "00000010", "00000013", "A   ", "4"}));
        QCOMPARE(row(1), QStringList({"03", "00000030", "00000033", "C   ", "4"}));
        // A later row takes the count of rows plus one, so numbers may repeat.
        m_tab->SearchBegin->setChecked(true);
        search("Menu");
        add("D");
        QCOMPARE(row(2), QStringList({"03", "00000010", "00000013", "D   ", "4"}));
        action("Removeall")->trigger();
        QCOMPARE(rowCount(m_tab->editList), 0);
        QCOMPARE(itemsEnabled(), QList<bool>({false, false, false, false}));
        QVERIFY(m_dialogs->messages.empty());
    }

    void menuItemsFollowTheListAndTheFileKind()
    {
        QCOMPARE(itemsEnabled(), QList<bool>({false, false, false, false}));
        open("phone.bin");
        QCOMPARE(itemsEnabled(), QList<bool>({false, false, false, false}));
        search("Menu");
        add("Cat");
        QCOMPARE(itemsEnabled(), QList<bool>({false, true, true, false}));
        setCurrentRow(m_tab->editList, 0);
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, true, false}));
        setCheckState(m_tab->editList, 0, 0, Qt::Unchecked);
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, false, false}));
        setCheckState(m_tab->editList, 0, 0, Qt::Checked);
        // The list outlives the phone file: opening another kind moves the output over.
        open("phone.asf");
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, false, true}));
        open("patch.s3");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{2});
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, false, false}));
        QVERIFY(m_window->findChild<QTabWidget*>("SSTab1")->isTabEnabled(1));
    }

    void pointingAtTheListOpensMenufile4WithFreshItems()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        auto* menu = m_window->findChild<QMenu*>("menufile4");
        emit m_tab->editList->customContextMenuRequested(QPoint(4, 4));
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(itemsEnabled(), QList<bool>({false, true, true, false}));
        menu->hide();
    }
};

QTEST_MAIN(StringsTabTest)
#include "strings_tab_test.moc"
