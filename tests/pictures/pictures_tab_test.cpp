// The picture tab through the dialogs double: picture tables in and out and the preview
// (its player is tested in picture_player_tab_test.cpp).
#include "pictures_tab_fixture.hpp"

#include "pictures/pixel_decode.hpp"

#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QTimer>

using namespace zevran::test;

class PicturesTabTest : public PicturesTabFixture {
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { resetHome(); }

    // ---- Picture tables ----

    void openTableFillsTheRowsRenumbered()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QCOMPARE(rowCount(m_tab->pictureList), 8);
        QCOMPARE(rowTexts(m_tab->pictureList, Logo),
                 (QStringList{"001", "logo", "0X00000100", "3", "12", "2*2", "24"}));
        QCOMPARE(rowTexts(m_tab->pictureList, Screen),
                 (QStringList{"002", "screen", "0X00000200", "1", "12288", "96*64", "16"}));
        QCOMPARE(rowTexts(m_tab->pictureList, Odd), (QStringList{"008", "odd", "0X00003730", "1", "1", "2*2", "2"}));
        QCOMPARE(checkState(m_tab->pictureList, Logo, 0), Qt::Unchecked);
        QVERIFY(cellFlags(m_tab->pictureList, Logo, 0) & Qt::ItemIsUserCheckable);
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->nextpicture->isEnabled());
        QVERIFY(m_tab->PreviousPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QCOMPARE(m_dialogs->asked.last(), "open " + m_home.path() + "|All files (*);;Picture tables (*.txt)|2");
        QCOMPARE(m_window->settings().TableSavePath, m_home.path());
        QVERIFY(m_dialogs->messages.empty());
    }

    void checkedCheck1RecomputesFrameSizes()
    {
        startWindow("phone.bin");
        const QByteArray table = line("001", "big", "00000100", "1", "99", "128*160", "16") +
                                 line("002", "mono", "00000200", "1", "99", "12*12", "1") +
                                 line("003", "odd", "00000300", "1", "99", "10*5", "1");
        openTable(table, false);
        QCOMPARE(cellText(m_tab->pictureList, 0, 4), QString("99"));
        QCOMPARE(cellText(m_tab->pictureList, 2, 4), QString("99"));
        openTable(table, true);
        QCOMPARE(cellText(m_tab->pictureList, 0, 4), QString("40960"));
        QCOMPARE(cellText(m_tab->pictureList, 1, 4), QString("18"));
        QCOMPARE(cellText(m_tab->pictureList, 2, 4), QString("6"));
    }

    void badLineShowsMessage38WithWhereAndClearsTheListAndPreview()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(0);
        QVERIFY(!m_tab->previewPicture->pixmap().isNull());
        openTable(line("001", "logo", "00000100", "3", "12", "2*2", "24") + "002 short\t 0X00000200\t Frames: 1\r\n");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        // Message 38 has no text of its own; what failed and where stands in its place.
        QCOMPARE(m_dialogs->messages[0].text, path("table.txt") + ": line 2: only 5 of 11 space-separated fields");
        QVERIFY(m_tab->previewPicture->pixmap().isNull());
        QCOMPARE(m_tab->frameAddressBox->text(), QString());
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Critical);
        QCOMPARE(rowCount(m_tab->pictureList), 0);
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->nextpicture->isEnabled());
        QVERIFY(!m_tab->PreviousPicture->isEnabled());
    }

    void fieldThatNamesNoPictureIsSaidAtLoadWithItsLine()
    {
        startWindow("phone.bin");
        openTable(line("001", "logo", "00000100", "3", "12", "2*2", "24") + "\r\n" +
                  line("002", "bad", "0001G0", "x", "0", "2*2", "16"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(m_dialogs->messages[0].text, path("table.txt") + ":\n" +
                                                  "line 3: the address \"0X0001G0\" is not a hexadecimal number\n"
                                                  "line 3: the frame count \"x\" is not a number\n"
                                                  "line 3: the frame size \"0\" is below 1 byte");
        // The rows are listed as before.
        QCOMPARE(rowCount(m_tab->pictureList), 2);
    }

    void longFrameCountWrapsInsteadOfWideningTheWindow()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        const int before = m_window->minimumSizeHint().width();
        // Frame 5 of 3, of a row whose frames also run past the image's end.
        openTable(line("001", "logo", "00003FF8", "3", "12", "2*2", "24"));
        clickRow(0);
        for (int i = 0; i < 4; ++i) m_tab->nextpicture->click();
        QVERIFY(m_tab->FrameCount->text().contains("past the last frame"));
        QVERIFY(m_tab->FrameCount->text().contains("past the end of the image"));
        QCOMPARE(m_tab->FrameCount->toolTip(), m_tab->FrameCount->text());
        QCOMPARE(m_window->minimumSizeHint().width(), before);
    }

    void check1RefusesDimensionsWithoutAStar()
    {
        startWindow("phone.bin");
        openTable(line("001", "logo", "00000100", "3", "12", "2x2", "24"), true);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(m_dialogs->messages[0].text, path("table.txt") + ": line 1: the dimensions \"2x2\" have no \"*\"");
        QCOMPARE(rowCount(m_tab->pictureList), 0);
    }

    void unreadableTableIsMessage38Too()
    {
        startWindow("phone.bin");
        m_dialogs->files.push_back(path("missing.txt"));
        m_tab->OpenPicTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(rowCount(m_tab->pictureList), 0);
    }

    void cancelledOpenKeepsTheRowsAndResetsTheFrame()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->nextpicture->click();
        QCOMPARE(m_tab->currentFrame(), 1);
        m_tab->OpenPicTable->click();  // no answer scripted: cancelled
        QCOMPARE(m_tab->currentFrame(), 0);
        QCOMPARE(rowCount(m_tab->pictureList), 8);
        QVERIFY(m_dialogs->messages.empty());
    }

    void saveWritesEveryRowWithTheOffsetAndTheHeaders()
    {
        startWindow("phone.bin");
        // A name in the code page (GBK 标志) and an address above six hex digits.
        openTable(line("001", "\xB1\xEA\xD6\xBE", "00000100", "3", "12", "2*2", "24") +
                  line("002", "far", "01234567", "1", "2", "2*1", "8"));
        QCOMPARE(cellText(m_tab->pictureList, 0, 1), QString::fromUtf8("标志"));
        m_tab->saveAddressOffset->setText("100");
        m_dialogs->files.push_back(path("saved.txt"));
        m_tab->SavePicTable->click();
        QCOMPARE(readBytes(path("saved.txt")),
                 QByteArray("001 \xB1\xEA\xD6\xBE\t 0X00000200\t Frames: 3\t Size: 12\t Pixels: 2*2\t Bits: 24\t\r\n"
                            "002 far\t 0X00234667\t Frames: 1\t Size: 2\t Pixels: 2*1\t Bits: 8\t\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{16});
        QCOMPARE(m_dialogs->messages[0].title, QString("Done"));
        QCOMPARE(m_dialogs->asked.last(), "save " + m_home.path() + "|All files (*);;Picture tables (*.txt)|2");
    }

    void saveReplacesALongerFileAndReloadsTheSameRows()
    {
        startWindow("phone.bin");
        openTable(kTable);
        writeBytes(path("saved.txt"), QByteArray(5000, 'x'));
        m_dialogs->files.push_back(path("saved.txt"));
        m_tab->SavePicTable->click();
        QVERIFY(readBytes(path("saved.txt"))
                    .startsWith("001 logo\t 0X00000100\t Frames: 3\t Size: 12\t Pixels: 2*2\t Bits: 24\t\r\n"
                                "002 screen\t 0X00000200\t Frames: 1\t Size: 12288\t Pixels: 96*64\t Bits: 16\t\r\n"));
        QVERIFY(!readBytes(path("saved.txt")).contains("xxxx"));
        std::vector<QStringList> before;
        before.reserve(8);
        for (int i = 0; i < 8; ++i) before.push_back(rowTexts(m_tab->pictureList, i));
        m_dialogs->files.push_back(path("saved.txt"));
        m_tab->OpenPicTable->click();
        for (int i = 0; i < 8; ++i) QCOMPARE(rowTexts(m_tab->pictureList, i), before[static_cast<std::size_t>(i)]);
    }

    void saveOfAnEmptyListIsMessage4()
    {
        startWindow("phone.bin");
        m_tab->SavePicTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{4});
        QVERIFY(m_dialogs->asked.isEmpty());
    }

    void saveWithAnOverflowingOffsetNamesTheCause()
    {
        startWindow("phone.bin");
        openTable(kTable);
        m_tab->saveAddressOffset->setText("7FFFFFFF");
        m_dialogs->files.push_back(path("saved.txt"));
        m_tab->SavePicTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.startsWith(path("saved.txt")));
        QVERIFY(!QFile::exists(path("saved.txt")));
    }

    // ---- Preview ----

    void clickedRowShowsFrameZeroEnlargedWithoutSmoothing()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QByteArray temporary;
        QString temporaryPath;
        connect(m_tab, &PicturesTab::previewFileWritten, this, [&](const QString& file) {
            temporaryPath = file;
            temporary = readBytes(file);
        });
        QSignalSpy written(m_tab, &PicturesTab::previewFileWritten);
        clickRow(Screen);
        QCOMPARE(written.size(), 1);
        QCOMPARE(temporaryPath, path("temp.bmp"));
        QVERIFY(!QFile::exists(path("temp.bmp")));
        const QByteArray image = phoneImage();
        const auto expected = zevran::pictures::pictureFrameBmp(
            std::span(reinterpret_cast<const std::uint8_t*>(image.constData()), static_cast<std::size_t>(image.size())),
            0x200, 96, 64, 16, {});
        QCOMPARE(temporary,
                 QByteArray(reinterpret_cast<const char*>(expected->data()), static_cast<qsizetype>(expected->size())));
        QCOMPARE(temporary.left(70), bmpHeader(70 + 12288, 70, 96, 64, 16, 3, 12288) +
                                         QByteArray::fromHex("00F80000E00700001F00000000000000"));
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x200"));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("1"));
        int zoom = 0;
        const QImage shownImage = shown(96, 64, &zoom);
        QVERIFY(!shownImage.isNull());
        QVERIFY(zoom >= 2);
        QCOMPARE(zoom, m_tab->previewZoom());
        QVERIFY(96 * zoom <= m_tab->previewPicture->contentsRect().width());
        QVERIFY(64 * zoom <= m_tab->previewPicture->contentsRect().height());
        // Qt reads a bit-field BMP by shifting: a full 5-bit channel gives 248, a full 6-bit one 252.
        QCOMPARE(block(shownImage, zoom, 0, 0), 0x00FC00u);
        QCOMPARE(block(shownImage, zoom, 95, 0), 0x00FC00u);
        QCOMPARE(block(shownImage, zoom, 47, 1), 0xF80000u);
        QCOMPARE(block(shownImage, zoom, 48, 1), 0x0000F8u);
        QCOMPARE(block(shownImage, zoom, 0, 63), 0xF80000u);
        QCOMPARE(block(shownImage, zoom, 95, 63), 0x0000F8u);
        QVERIFY(m_dialogs->messages.empty());
    }

    void frameRunningPastTheImagesEndSaysSo()
    {
        startWindow("phone.bin");
        openTable(line("001", "tail", "00003FFA", "1", "12", "2*2", "24"));
        clickRow(0);
        QCOMPARE(m_tab->FrameCount->text(),
                 QString("of 1  (the frame runs past the end of the image: the missing bytes show black)"));
        openTable(line("001", "logo", "00000100", "3", "12", "2*2", "24"));
        clickRow(0);
        QCOMPARE(m_tab->FrameCount->text(), QString("of 3"));
    }

    void frameCountIsRetoldInTheNewLanguage()
    {
        QDir().mkpath(path("language"));
        QVERIFY(QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/language/ChineseS.ini"), path("language/ChineseS.ini")));
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        QCOMPARE(m_tab->FrameCount->text(), QString("of 3"));
        m_window->languagNum_Click(1);  // ChineseS sorts before English
        QCOMPARE(m_tab->FrameCount->text(), QString::fromUtf8("共 3 帧"));
    }

    void nextAndPreviousStepPastEitherEnd()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        expectLogoFrame(qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255));
        m_tab->nextpicture->click();
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x10C"));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("2"));
        QCOMPARE(m_tab->FrameCount->text(), QString("of 3"));
        expectLogoFrame(qRgb(0, 0, 0), qRgb(255, 255, 0), qRgb(0, 255, 255), qRgb(255, 0, 255));
        m_tab->nextpicture->click();
        QCOMPARE(m_tab->FrameCount->text(), QString("of 3"));
        m_tab->nextpicture->click();
        // Past the last frame: the bytes that follow the picture.
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x124"));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("4"));
        QCOMPARE(m_tab->FrameCount->text(), QString("of 3: past the last frame"));
        expectLogoFrame(qRgb(0x03, 0x02, 0x01), qRgb(0x06, 0x05, 0x04), qRgb(0x09, 0x08, 0x07), qRgb(0x0C, 0x0B, 0x0A));
        for (int i = 0; i < 4; ++i) m_tab->PreviousPicture->click();
        // Below frame 0: the bytes before it.
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0xF4"));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("0"));
        QCOMPARE(m_tab->currentFrame(), -1);
        expectLogoFrame(qRgb(0xAA, 0xAA, 0xAA), qRgb(0xAA, 0xAA, 0xAA), qRgb(0xAA, 0xAA, 0xAA), qRgb(0xAA, 0xAA, 0xAA));
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(!QFile::exists(path("temp.bmp")));
    }

    void arrowKeysShowTheRowTheyReach()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->nextpicture->click();
        QSignalSpy written(m_tab, &PicturesTab::previewFileWritten);
        QTest::keyClick(m_tab->pictureList, Qt::Key_Down);
        QCOMPARE(written.size(), 1);
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x200"));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("1"));
        QCOMPARE(m_tab->currentFrame(), 0);
        QTest::keyClick(m_tab->pictureList, Qt::Key_Up);
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x100"));
    }

    void everyDepthPreviewsItsColours()
    {
        startWindow("phone.bin");
        openTable(kTable);
        int zoom = 0;
        clickRow(Mono);
        QImage image = shown(64, 96, &zoom);
        QVERIFY(!image.isNull());
        QCOMPARE(block(image, zoom, 0, 0), 0xFFFFFFu);
        QCOMPARE(block(image, zoom, 1, 0), 0u);
        QCOMPARE(block(image, zoom, 63, 95), 0xFFFFFFu);
        QCOMPARE(block(image, zoom, 62, 95), 0u);
        QCOMPARE(block(image, zoom, 0, 95), 0u);
        clickRow(Pal);  // the colours of 16.dat: black, navy, green, teal / blue, lime, aqua, red
        image = shown(4, 2, &zoom);
        const std::vector<QRgb> expected{0x000000, 0x000080, 0x008000, 0x008080,
                                         0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000};
        for (int i = 0; i < 8; ++i) QCOMPARE(block(image, zoom, i % 4, i / 4), expected[static_cast<std::size_t>(i)]);
        clickRow(D8);
        image = shown(2, 1, &zoom);
        QCOMPARE(block(image, zoom, 0, 0), 0x0000FFu);
        QCOMPARE(block(image, zoom, 1, 0), 0xFF0000u);
        clickRow(D12);
        image = shown(2, 1, &zoom);
        QCOMPARE(block(image, zoom, 0, 0), 0xFF0000u);
        QCOMPARE(block(image, zoom, 1, 0), 0x00FF00u);
        QVERIFY(m_dialogs->messages.empty());
    }

    void refusedDepthShowsTheFixedMessageAndKeepsThePicture()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(D8);
        const QImage before = m_tab->previewPicture->pixmap().toImage();
        clickRow(Odd);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_dialogs->messages[0].title, QString::fromUtf8("错误"));
        QCOMPARE(m_tab->previewPicture->pixmap().toImage(), before);
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x3730"));
    }

    void doubleClickShowsMessage39()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QTest::mouseDClick(m_tab->pictureList->viewport(), Qt::LeftButton, {},
                           rowRect(m_tab->pictureList, Logo).center());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{39});
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Information);
        QCOMPARE(m_dialogs->messages[0].text, QString("Click a picture to see it."));
    }
};

QTEST_MAIN(PicturesTabTest)
#include "pictures_tab_test.moc"
