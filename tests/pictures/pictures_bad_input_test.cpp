// Picture tables that ask too much of the image: rows running off its end, frame
// counts beyond what a patch can hold, letters where numbers belong, dimensions whose
// product overflows. Each is answered with a message; nothing else changes.
#include "pictures_tab_fixture.hpp"

using namespace zevran::test;

class PicturesBadInputTest : public PicturesTabFixture {
    Q_OBJECT

private slots:
    void cleanup() { resetHome(); }

    void frameRunningPastTheImageEndShowsZerosForTheMissingBytes()
    {
        startWindow("phone.bin");
        // A 256-byte image whose last six bytes are white pixels; the frame needs 12.
        QByteArray image(0x100, '\0');
        image.replace(0xFA, 6, QByteArray(6, '\xFF'));
        writeBytes(path("short.bin"), image);
        m_window->openPhoneFile(path("short.bin"));
        openTable(line("001", "edge", "000000FA", "1", "12", "2*2", "24"));
        clickRow(0);
        QVERIFY(m_dialogs->messages.empty());
        expectLogoFrame(0xFFFFFF, 0xFFFFFF, 0x000000, 0x000000);
        QCOMPARE(readBytes(path("short.bin")), image);
    }

    void frameCountAbove32767IsRefusedForAPatchAndNothingIsWritten()
    {
        startWindow("phone.bin");
        openTable(line("001", "many", "00000100", "40000", "12", "2*2", "24"));
        setCheckState(m_tab->pictureList, 0, 0, Qt::Checked);
        m_dialogs->files.push_back(path("many.s3"));
        choose(m_window->findChild<QAction*>("outputpics3"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.contains("32767"), qPrintable(m_dialogs->messages[0].text));
        QVERIFY(!QFile::exists(path("many.s3")));
    }

    void lettersWhereNumbersBelongGiveTheWrongFormatMessage()
    {
        startWindow("phone.bin");
        openTable(line("001", "junk", "000000QQ", "x", "y", "a*b", "zz"));
        QCOMPARE(rowCount(m_tab->pictureList), 1);
        // The fields that can name no picture are said at load, the row is listed anyway.
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QVERIFY(m_dialogs->messages[0].text.contains("line 1: the address \"0X000000QQ\" is not a hexadecimal number"));
        m_dialogs->messages.clear();
        clickRow(0);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, QString::fromUtf8("错误的bmp文件格式"));
        QVERIFY(!QFile::exists(path("temp.bmp")));
    }

    void dimensionsWhoseProductOverflowsClearTheListWithMessage38()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QVERIFY(rowCount(m_tab->pictureList) > 0);
        openTable(line("001", "huge", "00000100", "1", "12", "65536*65536", "16"), true);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(rowCount(m_tab->pictureList), 0);
    }
};

QTEST_MAIN(PicturesBadInputTest)
#include "pictures_bad_input_test.moc"
