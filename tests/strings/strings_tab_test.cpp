// The strings tab through the dialogs double: the search in both encodings, the
// edit list and its pop-up menu, and both outputs, on phone files the test writes.
#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "strings/ui/strings_tab.hpp"

#include <QTreeWidget>
#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

using zevran::app::Form1;
using zevran::strings::StringsTab;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

const QString kZhong = QString::fromUtf8("\xE4\xB8\xAD");  // 中: D6 D0 in GBK, U+4E2D
const QString kWen = QString::fromUtf8("\xE6\x96\x87");    // 文: CE C4 in GBK, U+6587

// A 256-byte phone image, zero everywhere but for these stored strings:
//   0x00 "Menu"         never found: the search starts at index 1
//   0x10 "Menu", 0x20 "Menu items", 0x30 "Menu"
//   0x40 "Hi  "         in handset codes: A1 48 A1 69 A1 20 A1 20
//   0x50 "OK!"          in handset codes with a stray byte: A1 4F A1 4B 21, 5 bytes
//   0x60 "中文"          in GBK: D6 D0 CE C4
//   0x70 "中文"          in handset codes: 4E 2D 65 87
//   0xE0 "Tail", and 0xFC "Tail" running to the image's end without a zero
QByteArray phoneImage(int size = 0x100)
{
    QByteArray image(0x100, '\0');
    const auto place = [&image](int offset, const QByteArray& bytes) { image.replace(offset, bytes.size(), bytes); };
    place(0x00, "Menu");
    place(0x10, "Menu");
    place(0x20, "Menu items");
    place(0x30, "Menu");
    place(0x40, "\xA1\x48\xA1\x69\xA1\x20\xA1\x20");
    place(0x50, "\xA1\x4F\xA1\x4B\x21");
    place(0x60, "\xD6\xD0\xCE\xC4");
    place(0x70, "\x4E\x2D\x65\x87");
    place(0xE0, "Tail");
    place(0xFC, "Tail");
    return image.left(size);
}

std::vector<std::uint8_t> bytesOf(const QByteArray& bytes) { return {bytes.begin(), bytes.end()}; }

const QByteArray kS0 = "S00600004844521B\r\n";
const QByteArray kS7 = "S705A002000058\r\n";

}  // namespace

class StringsTabTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    StringsTab* m_tab = nullptr;


    void open(const QString& name, const QByteArray& bytes = phoneImage())
    {
        writeBytes(path(name), bytes);
        m_window->openPhoneFile(path(name));
    }

    void search(const QString& text, bool handsetCodes = false)
    {
        m_tab->Text11->setText(text);
        (handsetCodes ? m_tab->Option1 : m_tab->Option2)->setChecked(true);
        m_tab->SeachString->click();
    }

    void add(const QString& replacement)
    {
        m_tab->Text7->setText(replacement);
        m_tab->Add2List->click();
    }

    // Start, end, length and hit counter as the tab shows them.
    QStringList found() const
    {
        return {m_tab->Text10->text(), m_tab->Text9->text(), m_tab->Text8->text(), m_tab->Text4->text()};
    }

    QStringList row(int index) const
    {
        if (index >= rowCount(m_tab->ListView2)) return {"no row", QString::number(index)};
        return rowTexts(m_tab->ListView2, index);
    }

    QAction* action(const char* name) const
    {
        return m_window->findChild<QMenu*>("menufile4")->findChild<QAction*>(name);
    }

    // Removeone, Removeall, outputStrS3, outputStraxf.
    QList<bool> itemsEnabled() const
    {
        return {action("Removeone")->isEnabled(), action("Removeall")->isEnabled(), action("outputStrS3")->isEnabled(),
                action("outputStraxf")->isEnabled()};
    }

    QAction* saveButton() const { return m_window->findChild<QAction*>("Save"); }

private slots:
    void init()
    {
        startWindow();
        m_tab = m_window->findChild<StringsTab*>();
    }
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
        QCOMPARE(m_tab->Text7->maxLength(), 4);
    }

    void oddByteCountInHandsetCodesShowsAHalfCharacter()
    {
        open("phone.bin");
        search("OK", true);
        QCOMPARE(found(), QStringList({"00000050", "00000054", "2.5", "1"}));
        // 2.5 rounds half to even.
        QCOMPARE(m_tab->Text7->maxLength(), 2);
    }

    void chineseInSingleByteCodesIsFoundByItsTwoGbkBytes()
    {
        open("phone.bin");
        search(kZhong);
        QCOMPARE(found(), QStringList({"00000060", "00000063", "4", "1"}));
        QCOMPARE(m_tab->Text7->maxLength(), 4);
    }

    void chineseInHandsetCodesIsFoundByItsCodeUnit()
    {
        open("phone.bin");
        search(kZhong, true);
        QCOMPARE(found(), QStringList({"00000070", "00000073", "2", "1"}));
        QCOMPARE(m_tab->Text7->maxLength(), 2);
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
        m_tab->Text7->setText("abcdefghijkl");
        search("Menu");
        QCOMPARE(m_tab->Text7->maxLength(), 4);
        QCOMPARE(m_tab->Text7->text(), QString("abcd"));
        m_tab->SeachString->click();
        QCOMPARE(m_tab->Text7->maxLength(), 10);
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
        QCOMPARE(rowCount(m_tab->ListView2), 3);
        QCOMPARE(row(0), QStringList({"01", "00000010", "00000013", "Cat ", "4"}));
        QCOMPARE(row(1), QStringList({"02", "00000040", "00000047", "Yo  ", "4"}));
        // 文 takes two of the string's four GBK bytes: two spaces fill the rest.
        QCOMPARE(row(2), QStringList({"03", "00000060", "00000063", kWen + "  ", "4"}));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(cellFlags(m_tab->ListView2, i, 0) & Qt::ItemIsUserCheckable);
            QCOMPARE(checkState(m_tab->ListView2, i, 0), Qt::Checked);
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
        QCOMPARE(rowCount(m_tab->ListView2), 0);
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
        QCOMPARE(rowCount(m_tab->ListView2), 0);
    }

    void removeOneTakesTheSelectedRowAndNumbersAreKept()
    {
        open("phone.bin");
        for (const char* replacement : {"A", "B", "C"}) {
            search("Menu");
            add(replacement);
        }
        action("Removeone")->trigger();
        QCOMPARE(rowCount(m_tab->ListView2), 3);
        setCurrentRow(m_tab->ListView2, 1);
        action("Removeone")->trigger();
        QCOMPARE(rowCount(m_tab->ListView2), 2);
        QCOMPARE(row(0), QStringList({"01", "00000010", "00000013", "A   ", "4"}));
        QCOMPARE(row(1), QStringList({"03", "00000030", "00000033", "C   ", "4"}));
        // A later row takes the count of rows plus one, so numbers may repeat.
        m_tab->SearchBegin->setChecked(true);
        search("Menu");
        add("D");
        QCOMPARE(row(2), QStringList({"03", "00000010", "00000013", "D   ", "4"}));
        action("Removeall")->trigger();
        QCOMPARE(rowCount(m_tab->ListView2), 0);
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
        setCurrentRow(m_tab->ListView2, 0);
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, true, false}));
        setCheckState(m_tab->ListView2, 0, 0, Qt::Unchecked);
        QCOMPARE(itemsEnabled(), QList<bool>({true, true, false, false}));
        setCheckState(m_tab->ListView2, 0, 0, Qt::Checked);
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
        emit m_tab->ListView2->customContextMenuRequested(QPoint(4, 4));
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(itemsEnabled(), QList<bool>({false, true, true, false}));
        menu->hide();
    }

    void disabledOrWrongKindOutputDoesNothing()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        setCheckState(m_tab->ListView2, 0, 0, Qt::Unchecked);
        m_dialogs->files.push_back(path("never.s3"));
        action("outputStrS3")->trigger();
        m_tab->outputStrS3_Click();
        setCheckState(m_tab->ListView2, 0, 0, Qt::Checked);
        m_tab->outputStraxf_Click();
        QVERIFY(m_dialogs->asked.isEmpty());
        QVERIFY(m_dialogs->messages.empty());
        QCOMPARE(m_window->imageState().FirmwareImage, bytesOf(phoneImage()));
        QVERIFY(!saveButton()->isEnabled());
    }

    void sRecordPatchHoldsTheCheckedRowsInSingleByteCodes()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        m_tab->SeachString->click();
        add("Food");
        m_tab->SeachString->click();
        add("Bar");
        setCheckState(m_tab->ListView2, 2, 0, Qt::Unchecked);
        search(kZhong);
        add(kWen);
        QVERIFY(m_tab->Option4->isChecked());
        m_dialogs->files.push_back(path("patches/strings.s3"));
        QDir().mkpath(path("patches"));
        action("outputStrS3")->trigger();
        // Count, address, data, then 255 minus the low byte of their sum:
        // 09 + 10 + 43 61 74 20 = 151 -> AE; 0F + 20 + 46 6F 6F 64 + 6 * 20 = 277 -> 88;
        // 09 + 60 + CE C4 20 20 = 23B -> C4.
        QCOMPARE(readBytes(path("patches/strings.s3")), kS0 +
                                                            "S3090000001043617420AE\r\n"
                                                            "S30F00000020466F6F6420202020202088\r\n"
                                                            "S30900000060CEC42020C4\r\n" +
                                                            kS7);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(m_dialogs->asked, QStringList({"save " + m_home.path() + "||2"}));
        QCOMPARE(m_window->settings().S3SavePath, path("patches"));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
        QCOMPARE(rowCount(m_tab->ListView2), 4);
    }

    void sRecordPatchInHandsetCodes()
    {
        open("phone.bin");
        search("Hi", true);
        add("Yo");
        search(kZhong, true);
        add(kWen);
        QCOMPARE(row(1), QStringList({"02", "00000070", "00000073", kWen + " ", "2"}));
        m_tab->Option3->setChecked(true);
        m_dialogs->files.push_back(path("hi.s3"));
        action("outputStrS3")->trigger();
        // 0D + 40 + A1 59 A1 6F A1 20 A1 20 = 3D9 -> 26; 09 + 70 + 65 87 A1 20 = 226 -> D9.
        QCOMPARE(readBytes(path("hi.s3")), kS0 +
                                               "S30D00000040A159A16FA120A12026\r\n"
                                               "S309000000706587A120D9\r\n" +
                                               kS7);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
    }

    void listWrittenInTheOtherCodesIsRefusedBeforeTheDialog()
    {
        open("phone.bin");
        search("Hi", true);
        add("Yo");
        m_tab->Option4->setChecked(true);
        m_dialogs->files.push_back(path("never.s3"));
        action("outputStrS3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.startsWith("row 01 at 00000040..00000047: "),
                 qPrintable(m_dialogs->messages[0].text));
        QVERIFY(m_dialogs->asked.isEmpty());
        QVERIFY(!QFile::exists(path("never.s3")));
    }

    void cancelledSaveDialogWritesNothing()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        action("outputStrS3")->trigger();
        QCOMPARE(m_dialogs->asked.size(), 1);
        QVERIFY(m_dialogs->messages.empty());
    }

    void inImageOutputPatchesTheImageAndEnablesSave()
    {
        open("phone.asf");
        search("Menu");
        add("Cat");
        search("Hi", true);
        add("Yo");
        setCheckState(m_tab->ListView2, 1, 0, Qt::Unchecked);
        QVERIFY(!saveButton()->isEnabled());
        action("outputStraxf")->trigger();
        QByteArray expected = phoneImage();
        expected.replace(0x10, 4, "Cat ");
        QCOMPARE(m_window->imageState().FirmwareImage, bytesOf(expected));
        QVERIFY(saveButton()->isEnabled());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Information);
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
        saveButton()->trigger();
        QCOMPARE(readBytes(path("phone.asf")), expected);
        // The rows stay, and the patched string is found as it now reads.
        QCOMPARE(rowCount(m_tab->ListView2), 2);
        m_tab->SearchBegin->setChecked(true);
        search("Cat");
        QCOMPARE(found(), QStringList({"00000010", "00000013", "4", "1"}));
    }

    void rowFromALongerPhoneFileIsRefused()
    {
        open("long.asf");
        search("Tail");
        add("Head");
        open("short.asf", phoneImage(0x80));
        action("outputStraxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.contains("past the end of the image (128 bytes)"),
                 qPrintable(m_dialogs->messages[0].text));
        QVERIFY(!saveButton()->isEnabled());
        QCOMPARE(m_window->imageState().FirmwareImage, bytesOf(phoneImage(0x80)));
    }
};

QTEST_MAIN(StringsTabTest)
#include "strings_tab_test.moc"
