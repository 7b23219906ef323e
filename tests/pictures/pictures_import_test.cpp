// The picture tab's import through the dialogs double: "Import picture..." and
// "Import all frames..." of the pop-up menu, the before/after view, and the outputs of
// a "bin" and an "asf" phone file.
#include "pictures_tab_fixture.hpp"

#include "pictures/ui/picture_import_view.hpp"

#include <QLineEdit>
#include <QTimer>

using namespace zevran::test;
using zevran::pictures::PictureImportView;

namespace {

// A picture file of the given pixels (0xRRGGBB), top row first, in `format` ("PNG", "BMP").
bool writePicture(const QString& path, int width, int height, const std::vector<QRgb>& pixels, const char* format)
{
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, 0xFF000000u | pixels[static_cast<std::size_t>(y) * width + x]);
    return picture.save(path, format);
}

// What the before/after view showed before it was answered.
struct ViewSeen {
    bool shown = false;
    QString changed;
    QString unstored;  // the line on pixels no image bit holds, when it is shown
    QImage before;
    QImage after;
};

}  // namespace

class PictureImportTest : public PicturesTabFixture {
    Q_OBJECT

    // Chooses `item` from the pop-up menu and answers the before/after view, once it
    // shows, with Import (`confirm`) or Cancel. The dialogs asked before are forgotten.
    ViewSeen chooseAndAnswer(QAction* item, bool confirm)
    {
        m_dialogs->asked.clear();
        ViewSeen seen;
        QTimer poll;
        poll.setInterval(5);
        connect(&poll, &QTimer::timeout, this, [&] {
            auto* view = m_tab->findChild<PictureImportView*>("PictureImportView");
            if (!view || !view->isVisible()) return;
            poll.stop();
            seen.shown = true;
            seen.changed = view->ChangedBytes->text();
            if (view->UnstoredPixels->isVisible()) seen.unstored = view->UnstoredPixels->text();
            seen.before = view->BeforePicture->pixmap().toImage();
            seen.after = view->AfterPicture->pixmap().toImage();
            (confirm ? view->ImportConfirm : view->ImportCancel)->click();
        });
        poll.start();
        choose(item);
        poll.stop();
        return seen;
    }

    QByteArray imageBytes(int at, int count) const
    {
        const auto& image = m_window->imageState().FirmwareImage;
        return QByteArray(reinterpret_cast<const char*>(image.data()) + at, count);
    }

    // The four pixels of the logo's first frame, changed: 010203, 040506 / 070809, 0A0B0C.
    QString writeNewLogo(const char* format = "PNG")
    {
        QString file = path(QStringLiteral("new.") + QString(format).toLower());
        writePicture(file, 2, 2, {0x010203, 0x040506, 0x070809, 0x0A0B0C}, format);
        return file;
    }

    // The colour of picture pixel (x, y) of an enlarged view picture 2 pixels wide.
    static QRgb viewPixel(const QImage& picture, int x, int y)
    {
        const int zoom = picture.width() / 2;
        return picture.pixel(x * zoom + zoom / 2, y * zoom + zoom / 2) & 0xFFFFFF;
    }

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { resetHome(); }

    void menuOffersBothImportsForAChosenRowOfABinOrAsfFile()
    {
        for (const char* phone : {"phone.bin", "phone.asf"}) {
            startWindow(phone);
            openTable(kTable);
            emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
            QVERIFY(!m_tab->importpic->isEnabled());
            QVERIFY(!m_tab->importallpic->isEnabled());
            m_window->findChild<QMenu*>("menufile5")->hide();
            clickRow(Logo);
            emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
            QVERIFY(m_tab->importpic->isEnabled());
            QVERIFY(m_tab->importallpic->isEnabled());
            QCOMPARE(m_tab->importpic->text(), QString("Import picture..."));
            QCOMPARE(m_tab->importallpic->text(), QString("Import all frames..."));
            QCOMPARE(m_window->findChild<QAction*>("importpic"), m_tab->importpic);
            m_window->findChild<QMenu*>("menufile5")->hide();
            resetHome();
        }
    }

    void menuCaptionsFollowTheShippedChineseFile()
    {
        // Both shipped files in the language folder: ChineseS is the first item.
        QDir().mkpath(path("language"));
        QVERIFY(QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/language/ChineseS.ini"), path("language/ChineseS.ini")));
        startWindow("phone.bin");
        m_window->languagNum_Click(1);
        openTable(kTable);
        clickRow(Logo);
        emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
        QCOMPARE(m_tab->importpic->text(), QString::fromUtf8("导入图片..."));
        QCOMPARE(m_tab->importallpic->text(), QString::fromUtf8("导入全部帧..."));
        m_window->findChild<QMenu*>("menufile5")->hide();
    }

    void importPictureIntoABinFileWritesAPatchOfTheFrame()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        const QString picture = writeNewLogo();
        m_dialogs->files = {picture, path("logo.s3")};
        const ViewSeen seen = chooseAndAnswer(m_tab->importpic, true);
        QVERIFY(seen.shown);
        QCOMPARE(seen.changed, QString("12 bytes of the image change."));
        // As it is: red, green / blue, white; as it will be: the new colours.
        QCOMPARE(viewPixel(seen.before, 0, 0), QRgb(0xFF0000));
        QCOMPARE(viewPixel(seen.before, 1, 1), QRgb(0xFFFFFF));
        QCOMPARE(viewPixel(seen.after, 0, 0), QRgb(0x010203));
        QCOMPARE(viewPixel(seen.after, 1, 0), QRgb(0x040506));
        QCOMPARE(viewPixel(seen.after, 0, 1), QRgb(0x070809));
        QCOMPARE(viewPixel(seen.after, 1, 1), QRgb(0x0A0B0C));
        // 11 + 01 + 00 + (03 + 02 + ... + 0A = 4E) = 60 -> 9F.
        QCOMPARE(readBytes(path("logo.s3")), QByteArray("S00600004844521B\r\n"
                                                        "S311000001000302010605040908070C0B0A9F\r\n"
                                                        "S705A002000058\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(m_dialogs->asked.size(), 2);
        QVERIFY(m_dialogs->asked[0].startsWith("open "));
        QVERIFY(m_dialogs->asked[0].endsWith("|All files (*);;Pictures (*.bmp *.png)|2"));
        QVERIFY(m_dialogs->asked[1].startsWith("save "));
        QVERIFY(m_dialogs->asked[1].contains("S-record files (*.s3)"));
        // A "bin" image is never changed.
        QCOMPARE(imageBytes(0x100, 12), kLogoFrames.left(12));
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
    }

    void importPictureIntoAnAsfFileChangesTheImageAndThePreview()
    {
        startWindow("phone.asf");
        openTable(kTable);
        clickRow(Logo);
        m_tab->nextpicture->click();  // the current frame: the second
        m_dialogs->files = {writeNewLogo("BMP")};
        const ViewSeen seen = chooseAndAnswer(m_tab->importpic, true);
        QVERIFY(seen.shown);
        QCOMPARE(imageBytes(0x10C, 12), QByteArray::fromHex("0302010605040908070C0B0A"));
        QCOMPARE(imageBytes(0x100, 12), kLogoFrames.left(12));
        QVERIFY(m_window->findChild<QAction*>("Save")->isEnabled());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("2"));
        expectLogoFrame(0x010203, 0x040506, 0x070809, 0x0A0B0C);
        // The phone file itself waits for Save.
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
    }

    void cancelInTheViewWritesNothing()
    {
        startWindow("phone.asf");
        openTable(kTable);
        clickRow(Logo);
        m_dialogs->files = {writeNewLogo()};
        const ViewSeen seen = chooseAndAnswer(m_tab->importpic, false);
        QVERIFY(seen.shown);
        QCOMPARE(imageBytes(0x100, 12), kLogoFrames.left(12));
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
        QVERIFY(m_dialogs->messages.empty());
        QCOMPARE(m_dialogs->asked.size(), 1);
    }

    void cancelledFileDialogEndsSilently()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_dialogs->files = {QString()};
        const ViewSeen seen = chooseAndAnswer(m_tab->importpic, true);
        QVERIFY(!seen.shown);
        QVERIFY(m_dialogs->messages.empty());
    }

    void importAllFramesFromAFolderOfBmpAndPngFiles()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        QDir().mkpath(path("frames"));
        writePicture(path("frames/logo-01.png"), 2, 2, {0x010203, 0x040506, 0x070809, 0x0A0B0C}, "PNG");
        // The second frame as it is: black, yellow / cyan, magenta.
        writePicture(path("frames/logo-02.bmp"), 2, 2, {0x000000, 0xFFFF00, 0x00FFFF, 0xFF00FF}, "BMP");
        writePicture(path("frames/logo-03.png"), 2, 2, {0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF}, "PNG");
        m_dialogs->folders = {path("frames/")};
        m_dialogs->files = {path("all.s3")};
        const ViewSeen seen = chooseAndAnswer(m_tab->importallpic, true);
        QVERIFY(seen.shown);
        // Frame 1: 12 bytes; frame 2: none; frame 3 (808080 102030 / 405060 708090): 12.
        QCOMPARE(seen.changed, QString("24 bytes of the image change."));
        QCOMPARE(viewPixel(seen.after, 0, 0), QRgb(0x010203));
        QCOMPARE(readBytes(path("all.s3")), QByteArray("S00600004844521B\r\n"
                                                       "S311000001000302010605040908070C0B0A9F\r\n"
                                                       "S3110000010C00000000FFFFFFFF00FF00FFE7\r\n"
                                                       "S31100000118FFFFFFFFFFFFFFFFFFFFFFFFE1\r\n"
                                                       "S705A002000058\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
    }

    void missingFrameNamesItsFileAndImportsNothing()
    {
        startWindow("phone.asf");
        openTable(kTable);
        clickRow(Logo);
        QDir().mkpath(path("frames"));
        writePicture(path("frames/logo-01.png"), 2, 2, {0, 0, 0, 0}, "PNG");
        writePicture(path("frames/logo-03.png"), 2, 2, {0, 0, 0, 0}, "PNG");
        m_dialogs->folders = {path("frames/")};
        const ViewSeen seen = chooseAndAnswer(m_tab->importallpic, true);
        QVERIFY(!seen.shown);
        QCOMPARE(m_dialogs->messages.size(), std::size_t{1});
        QCOMPARE(m_dialogs->messages[0].code, 0);
        QCOMPARE(m_dialogs->messages[0].text,
                 "Row 001, frame 2: " + path("frames/logo-02.bmp") +
                     " is missing (nor is there a .png of that name); nothing was imported.");
        QCOMPARE(imageBytes(0x100, 12), kLogoFrames.left(12));
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
    }

    void pictureOfAnotherSizeIsRefusedNamingRowFrameFileAndSizes()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        const QString file = path("wide.png");
        writePicture(file, 3, 2, {0, 0, 0, 0, 0, 0}, "PNG");
        m_dialogs->files = {file};
        QVERIFY(!chooseAndAnswer(m_tab->importpic, true).shown);
        QCOMPARE(m_dialogs->messages.size(), std::size_t{1});
        QCOMPARE(m_dialogs->messages[0].text,
                 "Row 001, frame 1, " + file +
                     ": the picture is 3*2 pixels, the row's frames are 2*2; nothing was imported.");
    }

    void importIntoAFramePastTheLastIsRefusedBeforeAnyFileIsAsked()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);                                                    // three frames
        for (int step = 0; step < 3; ++step) m_tab->nextpicture->click();  // stepping past the last stays allowed
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("4"));
        m_dialogs->messages.clear();
        QVERIFY(!chooseAndAnswer(m_tab->importpic, true).shown);
        QVERIFY(m_dialogs->asked.isEmpty());
        QCOMPARE(m_dialogs->messages.size(), std::size_t{1});
        QCOMPARE(m_dialogs->messages[0].text,
                 QString("Row 001: the row has 3 frames, and frame 4 is not one of them: a picture goes only into a "
                         "frame of the row"));
        QVERIFY(!QFile::exists(path("logo.s3")));
    }

    void viewCountsThePixelsAnOddFourBitRowCannotStore()
    {
        startWindow("phone.bin");
        // 3*2 at depth 4 over the palette bytes at 0x3600: one byte a row, so the third
        // pixel of each row has no nibble and shows in colour 0 (black).
        openTable(line("001", "narrow", "00003600", "1", "2", "3*2", "4"));
        clickRow(0);
        const QString file = path("narrow.png");
        writePicture(file, 3, 2, {0x000000, 0x000000, 0xFFFFFF, 0x000000, 0x000000, 0x000000}, "PNG");
        m_dialogs->files = {file, path("narrow.s3")};
        const ViewSeen seen = chooseAndAnswer(m_tab->importpic, true);
        QVERIFY(seen.shown);
        QCOMPARE(seen.unstored, QString("1 pixels of the last column cannot be stored: a 4-bit row of odd width keeps "
                                        "no nibble for its last pixel. The import goes on without them."));
        QVERIFY(QFile::exists(path("narrow.s3")));
        // An import whose pixels all fit says nothing of it.
        clickRow(0);
        writePicture(file, 3, 2, {0, 0, 0, 0, 0, 0}, "PNG");
        m_dialogs->files = {file, path("black.s3")};
        const ViewSeen fitting = chooseAndAnswer(m_tab->importpic, false);
        QVERIFY(fitting.shown);
        QCOMPARE(fitting.unstored, QString());
    }

    void unreadablePictureAndUnimportableDepthAreRefused()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        writeBytes(path("notes.png"), "not a picture");
        m_dialogs->files = {path("notes.png")};
        QVERIFY(!chooseAndAnswer(m_tab->importpic, true).shown);
        QCOMPARE(m_dialogs->messages.back().text,
                 "Row 001, frame 1: " + path("notes.png") + " cannot be read as a picture; nothing was imported.");
        clickRow(Odd);  // depth 2: the preview shows its fixed message
        m_dialogs->messages.clear();
        m_dialogs->asked.clear();
        QVERIFY(!chooseAndAnswer(m_tab->importpic, true).shown);
        // Refused before any file is asked for.
        QVERIFY(m_dialogs->asked.isEmpty());
        QCOMPARE(m_dialogs->messages.size(), std::size_t{1});
        QCOMPARE(m_dialogs->messages[0].text,
                 QString("Row 008: a picture of depth 2 cannot be imported (depths 1, 4, 8, 12, 16 and 24 can)"));
    }
};

QTEST_MAIN(PictureImportTest)
#include "pictures_import_test.moc"
