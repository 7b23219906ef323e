// The strings tab's outputs through the dialogs double: the checked rows of the edit
// list as an S-record patch in either encoding, or laid over an in-image phone file,
// and the rows refused before anything is written.
#include "strings_tab_fixture.hpp"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QTest>

using zevran::test::bytesOf;
using zevran::test::kS0;
using zevran::test::kS7;
using zevran::test::kWen;
using zevran::test::kZhong;
using zevran::test::phoneImage;
using zevran::test::readBytes;

class StringsOutputTabTest : public zevran::test::StringsTabFixture {
    Q_OBJECT

private slots:
    void init() { startTab(); }
    void cleanup() { stopWindow(false); }

    void disabledOrWrongKindOutputDoesNothing()
    {
        open("phone.bin");
        search("Menu");
        add("Cat");
        setCheckState(m_tab->editList, 0, 0, Qt::Unchecked);
        m_dialogs->files.push_back(path("never.s3"));
        action("outputStrS3")->trigger();
        m_tab->outputStrS3_Click();
        setCheckState(m_tab->editList, 0, 0, Qt::Checked);
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
        setCheckState(m_tab->editList, 2, 0, Qt::Unchecked);
        search(kZhong);
        add(kWen);
        QVERIFY(m_tab->writeSingleByteCodes->isChecked());
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
        QCOMPARE(rowCount(m_tab->editList), 4);
    }

    void sRecordPatchInHandsetCodes()
    {
        open("phone.bin");
        search("Hi", true);
        add("Yo");
        search(kZhong, true);
        add(kWen);
        QCOMPARE(row(1), QStringList({"02", "00000070", "00000073", kWen + " ", "2"}));
        m_tab->writeHandsetCodes->setChecked(true);
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
        m_tab->writeSingleByteCodes->setChecked(true);
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
        setCheckState(m_tab->editList, 1, 0, Qt::Unchecked);
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
        QCOMPARE(rowCount(m_tab->editList), 2);
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

QTEST_MAIN(StringsOutputTabTest)
#include "strings_output_tab_test.moc"
