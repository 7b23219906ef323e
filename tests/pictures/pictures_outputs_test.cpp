// The picture tab's outputs through the dialogs double: the pop-up menu, export to BMP
// files, the S-record patch of the checked rows, and the rows these read from the list.
#include "pictures_tab_fixture.hpp"

#include <QCloseEvent>
#include <QProgressBar>
#include <QTimer>

using namespace zevran::test;

class PictureOutputsTest : public PicturesTabFixture {
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { resetHome(); }

    // ---- The list's rows ----

    void nameCellsShowTheirWholeTextUnderThePointer()
    {
        startWindow("phone.bin");
        openTable(kTable +
                  line("009", "a_name_far_longer_than_its_column_is_wide", "00000100", "1", "12", "2*2", "24"));
        QCOMPARE(cellToolTip(m_tab->pictureList, Screen, 1), QString("screen"));
        QCOMPARE(cellToolTip(m_tab->pictureList, 8, 1), QString("a_name_far_longer_than_its_column_is_wide"));
        for (int column : {0, 2, 3, 4, 5, 6}) QCOMPARE(cellToolTip(m_tab->pictureList, Screen, column), QString());
    }

    void anotherTableLoadsUnchecked()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QVERIFY(setCheckState(m_tab->pictureList, Logo, 0, Qt::Checked));
        QCOMPARE(checkState(m_tab->pictureList, Logo, 0), Qt::Checked);
        QVERIFY(!setCellText(m_tab->pictureList, Logo, 1, "renamed"));
        openTable(kTable);
        QCOMPARE(rowCount(m_tab->pictureList), 8);
        for (int row = 0; row < 8; ++row) QCOMPARE(checkState(m_tab->pictureList, row, 0), Qt::Unchecked);
        QCOMPARE(m_tab->pictureRows()[Logo].name, std::string("logo"));
    }

    void tableSavedOverThePhoneFileIsRefusedAndTheFileKept()
    {
        startWindow("phone.bin");
        openTable(kTable);
        m_dialogs->files.push_back(path("phone.bin"));
        m_tab->SavePicTable_Click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text,
                 path("phone.bin") + ": " + path("phone.bin") +
                     ": is the phone file open in the workshop; it is changed only by saving its image");
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    // ---- The pop-up menu ----

    void menuFollowsTheRowsAndTheFileKind()
    {
        startWindow("phone.bin");
        auto* menu = m_window->findChild<QMenu*>("menufile5");
        emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
        QVERIFY(menu->isVisible());
        QVERIFY(!m_tab->outputpic->isEnabled());
        QVERIFY(!m_tab->outputpicall->isEnabled());
        QVERIFY(!m_tab->outputpics3->isEnabled());
        menu->hide();
        openTable(kTable);
        emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
        QVERIFY(m_tab->outputpic->isEnabled());
        QVERIFY(m_tab->outputpicall->isEnabled());
        QVERIFY(m_tab->outputpics3->isEnabled());
        menu->hide();
        QCOMPARE(m_window->findChild<QAction*>("outputpics3"), m_tab->outputpics3);
    }

    void menuOfAnAsfImageOffersNoPatch()
    {
        startWindow("phone.asf");
        openTable(kTable);
        emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
        QVERIFY(m_tab->outputpic->isEnabled());
        QVERIFY(m_tab->outputpicall->isEnabled());
        QVERIFY(!m_tab->outputpics3->isEnabled());
        m_window->findChild<QMenu*>("menufile5")->hide();
    }

    // ---- Export ----

    void exportOfSelectedRowsWritesEachFrame()
    {
        startWindow("phone.bin");
        openTable(kTable);
        selectRow(m_tab->pictureList, Logo);
        selectRow(m_tab->pictureList, D8);
        m_dialogs->folders.push_back(path("out/"));
        QDir().mkpath(path("out"));
        bool sawProgress = false;
        QTimer::singleShot(0, this, [&] {
            sawProgress = m_tab->pictureProgress->isVisible() && m_tab->pictureProgress->maximum() == 3 &&
                          !m_tab->pictureList->isEnabled() && !m_window->mayClose();
        });
        choose(m_tab->outputpic);
        QVERIFY(sawProgress);
        QCOMPARE(m_dialogs->asked.last(), QString::fromUtf8("folder 请选择软件安装路径："));
        QCOMPARE(m_window->settings().PictureSavePath, path("out/"));
        QCOMPARE(QDir(path("out")).entryList(QDir::Files),
                 (QStringList{"d8-01.bmp", "logo-01.bmp", "logo-02.bmp", "logo-03.bmp"}));
        const QByteArray logo1 =
            QByteArray::fromHex("424D46000000000000003600000028000000020000000200000001001800000000001000000"
                                "0C40E0000C40E00000000000000000000"
                                "FF0000FFFFFF0000"    // bottom row first: blue, white
                                "0000FF00FF000000");  // top row: red, green
        QCOMPARE(readBytes(path("out/logo-01.bmp")), logo1);
        QCOMPARE(readBytes(path("out/logo-03.bmp")),
                 bmpHeader(70, 54, 2, 2, 24, 0, 16) + QByteArray::fromHex("4050607080900000"
                                                                          "8080801020300000"));
        QCOMPARE(readBytes(path("out/d8-01.bmp")), bmpHeader(62, 54, 2, 1, 24, 0, 8) + QByteArray::fromHex("FF0000"
                                                                                                           "0000FF"
                                                                                                           "0000"));
        // Qt reads them back as the colours stored.
        const QImage second(path("out/logo-02.bmp"));
        QCOMPARE(second.size(), QSize(2, 2));
        QCOMPARE(second.pixel(0, 0) & 0xFFFFFF, 0x000000u);
        QCOMPARE(second.pixel(1, 0) & 0xFFFFFF, 0xFFFF00u);
        QCOMPARE(second.pixel(0, 1) & 0xFFFFFF, 0x00FFFFu);
        QCOMPARE(second.pixel(1, 1) & 0xFFFFFF, 0xFF00FFu);
        QCOMPARE(QImage(path("out/d8-01.bmp")).pixel(0, 0) & 0xFFFFFF, 0x0000FFu);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{18});
        QCOMPARE(m_dialogs->messages[0].title, QString("Done"));
        QVERIFY(m_tab->pictureProgress->isHidden());
        QVERIFY(m_tab->pictureList->isEnabled());
        QVERIFY(m_window->mayClose());
    }

    void exportOfAllRowsWritesMonoAsThePreviewDoesAndRefusesOddDepths()
    {
        startWindow("phone.bin");
        openTable(kTable);
        m_dialogs->folders.push_back(path("all/"));
        QDir().mkpath(path("all"));
        bool sawProgress = false;
        QTimer::singleShot(0, this, [&] {
            sawProgress = m_tab->pictureProgress->isVisible() && m_tab->pictureProgress->maximum() == 8;
        });
        choose(m_tab->outputpicall);
        QVERIFY(sawProgress);
        QCOMPARE(QDir(path("all")).entryList(QDir::Files),
                 (QStringList{"d12-01.bmp", "d8-01.bmp", "logo-01.bmp", "logo-02.bmp", "logo-03.bmp", "mono-01.bmp",
                              "pal-01.bmp", "screen-01.bmp"}));
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0, 18}));
        QCOMPARE(m_dialogs->messages[0].text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_dialogs->messages[1].text,
                 QString("Exported.\nFiles written: 8\nRows skipped (a depth BMP files cannot hold): 008"));
        // The mono screen as a 1-bit BMP of 64*96 pixels: 62 header and colour bytes, 768 of pixels.
        const QByteArray mono = readBytes(path("all/mono-01.bmp"));
        QCOMPARE(mono.size(), 62 + 768);
        QCOMPARE(mono.mid(28, 2), QByteArray::fromHex("0100"));
        QCOMPARE(QImage(path("all/mono-01.bmp")).size(), QSize(64, 96));
        const QByteArray pal = readBytes(path("all/pal-01.bmp"));
        QCOMPARE(pal.size(), 118 + 8);
        QCOMPARE(pal.mid(54, 64), readBytes(QStringLiteral(ZEVRAN_DATA_DIR "/16.dat")).left(64));
        QCOMPARE(pal.mid(118), QByteArray::fromHex("9ABC0000"
                                                   "01230000"));
        QCOMPARE(QImage(path("all/screen-01.bmp")).size(), QSize(96, 64));
        QVERIFY(m_tab->pictureProgress->isHidden());
    }

    void cancelledExportWritesNothingAndRemembersTheEmptyFolder()
    {
        startWindow("phone.bin");
        openTable(kTable);
        choose(m_tab->outputpicall);
        QVERIFY(m_dialogs->messages.empty());
        QCOMPARE(m_window->settings().PictureSavePath, QString());
    }

    void exportStopsTheAnimation()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->PlayPicture->click();
        m_dialogs->folders.push_back(m_home.path());
        choose(m_tab->outputpic);
        QVERIFY(!m_tab->Timer2->isActive());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{18});
        QVERIFY(QFile::exists(path("logo-03.bmp")));
    }

    void closingDuringAnExportIsRefused()
    {
        startWindow("phone.bin");
        openTable(kTable);
        selectRow(m_tab->pictureList, Logo);
        m_dialogs->folders.push_back(m_home.path());
        bool accepted = true;
        QTimer::singleShot(0, this, [&] {
            QCloseEvent event;
            QCoreApplication::sendEvent(m_window.get(), &event);
            accepted = event.isAccepted();
        });
        choose(m_tab->outputpic);
        QVERIFY(!accepted);
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{32, 18}));
        QVERIFY(m_window->mayClose());
    }

    void shutDownStopsThePlayerAndClearsThePause()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->PlayPicture->click();
        m_tab->PausePlay->click();
        QVERIFY(m_tab->paused());
        QVERIFY(m_window->close());
        QVERIFY(!m_tab->Timer2->isActive());
        QVERIFY(!m_tab->paused());
    }

    // ---- The S-record patch ----

    void patchHoldsTheCheckedRowsInListOrder()
    {
        startWindow("phone.bin");
        openTable(kTable);
        setCheckState(m_tab->pictureList, Logo, 0, Qt::Checked);
        setCheckState(m_tab->pictureList, D8, 0, Qt::Checked);
        m_dialogs->files.push_back(path("patches/pictures.s3"));
        QDir().mkpath(path("patches"));
        choose(m_tab->outputpics3);
        QCOMPARE(readBytes(path("patches/pictures.s3")), QByteArray("S00600004844521B\r\n"
                                                                    "S315000001000000FF00FF00FF0000FFFFFF00000000EF\r\n"
                                                                    "S31500000110FFFFFFFF00FF00FF80808010203040506F\r\n"
                                                                    "S3090000012060708090F5\r\n"
                                                                    "S30700003700E003DE\r\n"
                                                                    "S705A002000058\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(m_dialogs->asked.last(), "save " + m_home.path() + "|All files (*);;S-record files (*.s3)|2");
        QCOMPARE(m_window->settings().S3SavePath, path("patches"));
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
    }

    void rowOfLengthZeroIsMessage1AndLeftOut()
    {
        startWindow("phone.bin");
        openTable(kTable);
        setCheckState(m_tab->pictureList, D8, 0, Qt::Checked);
        setCheckState(m_tab->pictureList, None, 0, Qt::Checked);
        m_dialogs->files.push_back(path("p.s3"));
        choose(m_tab->outputpics3);
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{1, 10}));
        QCOMPARE(readBytes(path("p.s3")), QByteArray("S00600004844521B\r\nS30700003700E003DE\r\nS705A002000058\r\n"));
    }

    void noCheckedRowWritesNothing()
    {
        startWindow("phone.bin");
        openTable(kTable);
        m_dialogs->files.push_back(path("p.s3"));
        choose(m_tab->outputpics3);
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(!QFile::exists(path("p.s3")));
    }

    void rowPastTheImageNamesItselfAndWritesNothing()
    {
        startWindow("phone.bin");
        openTable(kTable + line("010", "far", "00003FF0", "1", "32", "4*4", "16"));
        setCheckState(m_tab->pictureList, Logo, 0, Qt::Checked);
        setCheckState(m_tab->pictureList, 8, 0, Qt::Checked);
        m_dialogs->files.push_back(path("p.s3"));
        choose(m_tab->outputpics3);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.startsWith("row 009: "));
        QVERIFY(!QFile::exists(path("p.s3")));
    }

    void asfImageIsNeverPatchedFromItself()
    {
        startWindow("phone.asf");
        openTable(kTable);
        setCheckState(m_tab->pictureList, Logo, 0, Qt::Checked);
        m_tab->outputpics3_Click();
        QVERIFY(m_dialogs->asked.filter("save").isEmpty());
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
        const auto& image = m_window->imageState().FirmwareImage;
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size())),
                 phoneImage());
    }
};

QTEST_MAIN(PictureOutputsTest)
#include "pictures_outputs_test.moc"
