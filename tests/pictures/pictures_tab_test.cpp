// The picture tab through the dialogs double: picture tables in and out, the preview
// with its player, export to BMP files, the pop-up menu and the S-record patch.
#include "app/qt_files.hpp"
#include "app/scripted_dialogs.hpp"

#include "app/main_window.hpp"
#include "pictures/pictures_tab.hpp"
#include "pictures/pixel_decode.hpp"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

using zevran::app::Form1;
using zevran::pictures::PicturesTab;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// Only the keys these tests read; the header texts label the saved table's columns.
const QByteArray kLanguage =
    "[SSTab3]\r\nListview5Header1=No.\r\nListview5Header2=Name\r\nListview5Header3=Address\r\n"
    "Listview5Header4=Frames\r\nListview5Header5=Size\r\nListview5Header6=Pixels\r\nListview5Header7=Bits\r\n"
    "[String]\r\nMsgTitle1=Warning\r\nMsgTitle2=Done\r\nMsgStr1=Empty region.\r\nMsgStr4=Nothing to save.\r\n"
    "MsgStr10=Patch written.\r\nMsgStr13=Changed in memory.\r\nMsgStr16=Table saved.\r\nMsgStr18=Exported.\r\n"
    "MsgStr38=never read\r\nMsgStr39=Click a picture to see it.\r\n"
    "[Filter]\r\nFilter1=All files (*.*)|*.*|S-record files (*.s3)|*.s3\r\n"
    "Filter2=All files (*.*)|*.*|Picture tables (*.txt)|*.txt\r\n";

// 24-bit pixels are stored blue, green, red.
const QByteArray kLogoFrames = QByteArray::fromHex("0000FF00FF00FF0000FFFFFF"    // red, green / blue, white
                                                   "00000000FFFFFFFF00FF00FF"    // black, yellow / cyan, magenta
                                                   "808080102030405060708090");  // three greys of sorts
const QByteArray kAfterLogo = QByteArray::fromHex("0102030405060708090A0B0C");

// A synthetic phone image: pictures at every depth, and known bytes around the first.
QByteArray phoneImage()
{
    QByteArray image(0x4000, '\0');
    image.replace(0xF4, 12, QByteArray(12, '\xAA'));  // before logo: "frame -1"
    image.replace(0x100, 36, kLogoFrames);
    image.replace(0x124, 12, kAfterLogo);  // after logo: "frame 3"
    // screen: 96 x 64 at 16 bits, the top row green, then red on the left half, blue on the right.
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 96; ++x) {
            const int at = 0x200 + (y * 96 + x) * 2;
            const QByteArray pixel = y == 0 ? QByteArray::fromHex("E007") : x < 48 ? QByteArray::fromHex("00F8")
                                                                                    : QByteArray::fromHex("1F00");
            image.replace(at, 2, pixel);
        }
    // mono: display column 0 lights its topmost pixel of the bottom page, column 95 the
    // lowest pixel of the top page.
    image[0x3200 + 7 * 96 + 0] = '\x80';
    image[0x3200 + 0 * 96 + 95] = '\x01';
    image.replace(0x3600, 4, QByteArray::fromHex("01239ABC"));  // pal: colour indexes 0 1 2 3 / 9 A B C
    image.replace(0x3700, 2, QByteArray::fromHex("E003"));      // d8: blue, red
    image.replace(0x3710, 3, QByteArray::fromHex("F000F0"));    // d12: red, green
    return image;
}

QByteArray line(const char* number, const char* name, const char* address, const char* frames, const char* size,
                const char* pixels, const char* bits)
{
    return QByteArray(number) + " " + name + "\t 0X" + address + "\t Frames: " + frames + "\t Size: " + size +
           "\t Pixels: " + pixels + "\t Bits: " + bits + "\t\r\n";
}

// Row numbers in the file are ignored and blank lines take none.
const QByteArray kTable = line("001", "logo", "00000100", "3", "12", "2*2", "24") + "\r\n" +
                          line("007", "screen", "00000200", "1", "12288", "96*64", "16") +
                          line("003", "mono", "00003200", "1", "768", "64*96", "1") +
                          line("004", "pal", "00003600", "1", "4", "4*2", "4") + "\n" +
                          line("005", "d8", "00003700", "1", "2", "2*1", "8") +
                          line("006", "d12", "00003710", "1", "3", "2*1", "12") +
                          line("008", "none", "00003720", "0", "12", "2*2", "24") +
                          line("009", "odd", "00003730", "1", "1", "2*2", "2");

enum Row { Logo, Screen, Mono, Pal, D8, D12, None, Odd };

QByteArray bmpHeader(int fileSize, int offset, int width, int height, int bits, int compression, int dataSize)
{
    auto le = [](quint32 value, int bytes) {
        QByteArray out;
        for (int i = 0; i < bytes; ++i) out += char((value >> (8 * i)) & 0xFF);
        return out;
    };
    return "BM" + le(fileSize, 4) + le(0, 4) + le(offset, 4) + le(40, 4) + le(width, 4) + le(height, 4) + le(1, 2) +
           le(bits, 2) + le(compression, 4) + le(dataSize, 4) + le(3780, 4) + le(3780, 4) + le(0, 4) + le(0, 4);
}

QStringList rowTexts(const QTreeWidgetItem* item)
{
    QStringList cells;
    for (int c = 0; c < 7; ++c) cells << item->text(c);
    return cells;
}

}  // namespace

class PicturesTabTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_home;
    std::unique_ptr<Form1> m_window;
    ScriptedDialogs* m_dialogs = nullptr;
    PicturesTab* m_tab = nullptr;

    QString path(const QString& name) const { return m_home.path() + "/" + name; }

    void startWindow(const QString& phoneName)
    {
        QDir().mkpath(path("language"));
        writeBytes(path("language/English.ini"), kLanguage);
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        QVERIFY(QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/16.dat"), path("16.dat")));
        auto dialogs = std::make_unique<ScriptedDialogs>();
        m_dialogs = dialogs.get();
        m_window = std::make_unique<Form1>(m_home.path(), std::move(dialogs));
        m_window->LoadSettings();
        m_tab = m_window->findChild<PicturesTab*>();
        writeBytes(path(phoneName), phoneImage());
        m_window->openPhoneFile(path(phoneName));
        m_window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(2);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_dialogs->messages.clear();
    }

    void openTable(const QByteArray& text, bool recompute = false)
    {
        writeBytes(path("table.txt"), text);
        m_tab->Check1->setChecked(recompute);
        m_dialogs->files.push_back(path("table.txt"));
        m_tab->OpenPicTable->click();
    }

    QTreeWidgetItem* row(int index) const { return m_tab->ListView5->topLevelItem(index); }

    void clickRow(int index)
    {
        const QRect rect = m_tab->ListView5->visualItemRect(row(index));
        QTest::mouseClick(m_tab->ListView5->viewport(), Qt::LeftButton, {}, rect.center());
    }

    // Right-click on the list and choose `item` from the pop-up menu, as a user does.
    void choose(QAction* item)
    {
        emit m_tab->ListView5->customContextMenuRequested(QPoint(5, 5));
        auto* menu = m_window->findChild<QMenu*>("menufile5");
        QVERIFY(menu->isVisible());
        QVERIFY(item->isEnabled());
        menu->hide();
        item->trigger();
    }

    // The preview as shown, with the factor by which it is enlarged.
    QImage shown(int width, int height, int* zoom) const
    {
        const QImage image = m_tab->Picture2->pixmap().toImage();
        *zoom = image.width() / width;
        if (image.width() != width * *zoom || image.height() != height * *zoom) return QImage();
        return image;
    }

    // The colour of picture pixel (x, y): every screen pixel of its block must agree.
    static QRgb block(const QImage& image, int zoom, int x, int y)
    {
        const QRgb colour = image.pixel(x * zoom, y * zoom);
        if (image.pixel(x * zoom + zoom - 1, y * zoom + zoom - 1) != colour) return 0x12345678;
        return colour & 0xFFFFFF;
    }

    // The 2 x 2 picture on show, pixels left to right, top to bottom.
    void expectLogoFrame(QRgb a, QRgb b, QRgb c, QRgb d)
    {
        int zoom = 0;
        const QImage image = shown(2, 2, &zoom);
        QVERIFY(!image.isNull());
        QCOMPARE(block(image, zoom, 0, 0), a & 0xFFFFFF);
        QCOMPARE(block(image, zoom, 1, 0), b & 0xFFFFFF);
        QCOMPARE(block(image, zoom, 0, 1), c & 0xFFFFFF);
        QCOMPARE(block(image, zoom, 1, 1), d & 0xFFFFFF);
    }

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup()
    {
        m_window.reset();
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    // ---- Picture tables ----

    void openTableFillsTheRowsRenumbered()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QCOMPARE(m_tab->ListView5->topLevelItemCount(), 8);
        QCOMPARE(rowTexts(row(Logo)), (QStringList{"001", "logo", "0X00000100", "3", "12", "2*2", "24"}));
        QCOMPARE(rowTexts(row(Screen)), (QStringList{"002", "screen", "0X00000200", "1", "12288", "96*64", "16"}));
        QCOMPARE(rowTexts(row(Odd)), (QStringList{"008", "odd", "0X00003730", "1", "1", "2*2", "2"}));
        QCOMPARE(row(Logo)->checkState(0), Qt::Unchecked);
        QVERIFY(row(Logo)->flags() & Qt::ItemIsUserCheckable);
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->nextpicture->isEnabled());
        QVERIFY(m_tab->PreviousPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QCOMPARE(m_dialogs->asked.last(),
                 "open " + m_home.path() + "|All files (*);;Picture tables (*.txt)|2");
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
        QCOMPARE(row(0)->text(4), QString("99"));
        QCOMPARE(row(2)->text(4), QString("99"));
        openTable(table, true);
        QCOMPARE(row(0)->text(4), QString("40960"));
        QCOMPARE(row(1)->text(4), QString("18"));
        QCOMPARE(row(2)->text(4), QString("6"));
    }

    void badLineShowsMessage38AndClearsTheList()
    {
        startWindow("phone.bin");
        openTable(kTable);
        openTable(line("001", "logo", "00000100", "3", "12", "2*2", "24") + "002 short\t 0X00000200\t Frames: 1\r\n");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(m_dialogs->messages[0].text, QString());
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Critical);
        QCOMPARE(m_tab->ListView5->topLevelItemCount(), 0);
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->nextpicture->isEnabled());
        QVERIFY(!m_tab->PreviousPicture->isEnabled());
    }

    void unreadableTableIsMessage38Too()
    {
        startWindow("phone.bin");
        m_dialogs->files.push_back(path("missing.txt"));
        m_tab->OpenPicTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{38});
        QCOMPARE(m_tab->ListView5->topLevelItemCount(), 0);
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
        QCOMPARE(m_tab->ListView5->topLevelItemCount(), 8);
        QVERIFY(m_dialogs->messages.empty());
    }

    void saveWritesEveryRowWithTheOffsetAndTheHeaders()
    {
        startWindow("phone.bin");
        // A name in the code page (GBK 标志) and an address above six hex digits.
        openTable(line("001", "\xB1\xEA\xD6\xBE", "00000100", "3", "12", "2*2", "24") +
                  line("002", "far", "01234567", "1", "2", "2*1", "8"));
        QCOMPARE(row(0)->text(1), QString::fromUtf8("标志"));
        m_tab->Text21->setText("100");
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
        for (int i = 0; i < 8; ++i) before.push_back(rowTexts(row(i)));
        m_dialogs->files.push_back(path("saved.txt"));
        m_tab->OpenPicTable->click();
        for (int i = 0; i < 8; ++i) QCOMPARE(rowTexts(row(i)), before[static_cast<std::size_t>(i)]);
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
        m_tab->Text21->setText("7FFFFFFF");
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
        QCOMPARE(temporary, QByteArray(reinterpret_cast<const char*>(expected->data()), static_cast<qsizetype>(expected->size())));
        QCOMPARE(temporary.left(70), bmpHeader(70 + 12288, 70, 96, 64, 16, 3, 12288) +
                                         QByteArray::fromHex("00F80000E00700001F00000000000000"));
        QCOMPARE(m_tab->Text15->text(), QString("0x200"));
        QCOMPARE(m_tab->Text16->text(), QString("1"));
        int zoom = 0;
        const QImage shownImage = shown(96, 64, &zoom);
        QVERIFY(!shownImage.isNull());
        QVERIFY(zoom >= 2);
        QCOMPARE(zoom, m_tab->previewZoom());
        QVERIFY(96 * zoom <= m_tab->Picture2->contentsRect().width());
        QVERIFY(64 * zoom <= m_tab->Picture2->contentsRect().height());
        // Qt reads a bit-field BMP by shifting: a full 5-bit channel gives 248, a full 6-bit one 252.
        QCOMPARE(block(shownImage, zoom, 0, 0), 0x00FC00u);
        QCOMPARE(block(shownImage, zoom, 95, 0), 0x00FC00u);
        QCOMPARE(block(shownImage, zoom, 47, 1), 0xF80000u);
        QCOMPARE(block(shownImage, zoom, 48, 1), 0x0000F8u);
        QCOMPARE(block(shownImage, zoom, 0, 63), 0xF80000u);
        QCOMPARE(block(shownImage, zoom, 95, 63), 0x0000F8u);
        QVERIFY(m_dialogs->messages.empty());
    }

    void nextAndPreviousStepPastEitherEnd()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        expectLogoFrame(qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255));
        m_tab->nextpicture->click();
        QCOMPARE(m_tab->Text15->text(), QString("0x10C"));
        QCOMPARE(m_tab->Text16->text(), QString("2"));
        expectLogoFrame(qRgb(0, 0, 0), qRgb(255, 255, 0), qRgb(0, 255, 255), qRgb(255, 0, 255));
        m_tab->nextpicture->click();
        m_tab->nextpicture->click();
        // Past the last frame: the bytes that follow the picture.
        QCOMPARE(m_tab->Text15->text(), QString("0x124"));
        QCOMPARE(m_tab->Text16->text(), QString("4"));
        expectLogoFrame(qRgb(0x03, 0x02, 0x01), qRgb(0x06, 0x05, 0x04),
                        qRgb(0x09, 0x08, 0x07), qRgb(0x0C, 0x0B, 0x0A));
        for (int i = 0; i < 4; ++i) m_tab->PreviousPicture->click();
        // Below frame 0: the bytes before it.
        QCOMPARE(m_tab->Text15->text(), QString("0xF4"));
        QCOMPARE(m_tab->Text16->text(), QString("0"));
        QCOMPARE(m_tab->currentFrame(), -1);
        expectLogoFrame(qRgb(0xAA, 0xAA, 0xAA), qRgb(0xAA, 0xAA, 0xAA),
                        qRgb(0xAA, 0xAA, 0xAA), qRgb(0xAA, 0xAA, 0xAA));
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
        QTest::keyClick(m_tab->ListView5, Qt::Key_Down);
        QCOMPARE(written.size(), 1);
        QCOMPARE(m_tab->Text15->text(), QString("0x200"));
        QCOMPARE(m_tab->Text16->text(), QString("1"));
        QCOMPARE(m_tab->currentFrame(), 0);
        QTest::keyClick(m_tab->ListView5, Qt::Key_Up);
        QCOMPARE(m_tab->Text15->text(), QString("0x100"));
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
        const std::vector<QRgb> expected{0x000000, 0x000080, 0x008000, 0x008080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000};
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
        const QImage before = m_tab->Picture2->pixmap().toImage();
        clickRow(Odd);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_dialogs->messages[0].title, QString::fromUtf8("错误"));
        QCOMPARE(m_tab->Picture2->pixmap().toImage(), before);
        QCOMPARE(m_tab->Text15->text(), QString("0x3730"));
    }

    void doubleClickShowsMessage39()
    {
        startWindow("phone.bin");
        openTable(kTable);
        QTest::mouseDClick(m_tab->ListView5->viewport(), Qt::LeftButton, {},
                           m_tab->ListView5->visualItemRect(row(Logo)).center());
        QCOMPARE(m_dialogs->codes(), std::vector<int>{39});
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Information);
        QCOMPARE(m_dialogs->messages[0].text, QString("Click a picture to see it."));
    }

    // ---- The player ----

    void playPauseAndStopSetTheButtons()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->Slider1->setValue(5);
        QCOMPARE(m_tab->Timer2->interval(), 500);
        m_tab->PlayPicture->click();
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());
        QVERIFY(m_tab->StopPlay->isEnabled());
        m_tab->PausePlay->click();
        QVERIFY(m_tab->paused());
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(m_tab->StopPlay->isEnabled());
        m_tab->PlayPicture->click();
        QVERIFY(!m_tab->paused());
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->currentFrame(), 1);
        m_tab->StopPlay->click();
        QVERIFY(!m_tab->Timer2->isActive());
        QVERIFY(!m_tab->paused());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());  // left as it was
        QCOMPARE(m_tab->currentFrame(), 0);
        m_tab->Slider1->setValue(10);
        QCOMPARE(m_tab->Timer2->interval(), 1000);
    }

    void ticksWithoutRepeatShowEveryFrameThenFrameZeroAndStop()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->Slider1->setValue(10);
        QStringList files;
        connect(m_tab, &PicturesTab::previewFileWritten, this, [&](const QString& file) { files << QFileInfo(file).fileName(); });
        m_tab->PlayPicture->click();
        QStringList ordinals;
        for (int tick = 0; tick < 4; ++tick) {
            QVERIFY(m_tab->Timer2->isActive());
            m_tab->Timer2_Timer();
            ordinals << m_tab->Text16->text();
        }
        QCOMPARE(ordinals, (QStringList{"1", "2", "3", "1"}));
        QCOMPARE(files, (QStringList{"temp0.bmp", "temp1.bmp", "temp2.bmp", "temp0.bmp"}));
        QVERIFY(!m_tab->Timer2->isActive());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QCOMPARE(m_tab->currentFrame(), 0);
        expectLogoFrame(qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255));
        for (const char* file : {"temp0.bmp", "temp1.bmp", "temp2.bmp"}) QVERIFY(!QFile::exists(path(file)));
    }

    void ticksWithRepeatLoopShowingFrameZeroOnce()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->Slider1->setValue(10);
        m_tab->RepeatPlay->setChecked(true);
        m_tab->PlayPicture->click();
        QStringList ordinals;
        for (int tick = 0; tick < 8; ++tick) {
            m_tab->Timer2_Timer();
            ordinals << m_tab->Text16->text();
        }
        QCOMPARE(ordinals, (QStringList{"1", "2", "3", "1", "2", "3", "1", "2"}));
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(m_tab->StopPlay->isEnabled());
    }

    void pausedTicksDoNothingAndPlayContinues()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->Slider1->setValue(10);
        m_tab->PlayPicture->click();
        m_tab->Timer2_Timer();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->Text16->text(), QString("2"));
        m_tab->PausePlay->click();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->Text16->text(), QString("2"));
        QCOMPARE(m_tab->Text15->text(), QString("0x10C"));
        m_tab->PlayPicture->click();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->Text16->text(), QString("3"));
        QCOMPARE(m_tab->Text15->text(), QString("0x118"));
    }

    void theRunningTimerPlaysToTheEndAndStops()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        QStringList files;
        connect(m_tab, &PicturesTab::previewFileWritten, this, [&](const QString& file) { files << QFileInfo(file).fileName(); });
        m_tab->Slider1->setValue(1);
        QCOMPARE(m_tab->Timer2->interval(), 100);
        m_tab->PlayPicture->click();
        QTRY_VERIFY_WITH_TIMEOUT(!m_tab->Timer2->isActive(), 20000);
        QCOMPARE(files, (QStringList{"temp0.bmp", "temp1.bmp", "temp2.bmp", "temp0.bmp"}));
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
    }

    void frameCounterPastItsRangeIsReportedAndKept()
    {
        startWindow("phone.bin");
        openTable(kTable);
        // A refused depth only shows the fixed message, so stepping to the counter's end is quick.
        clickRow(Odd);
        for (int i = 0; i < 32767; ++i) m_tab->nextpicture_Click();
        QCOMPARE(m_dialogs->messages.size(), std::size_t{32768});
        QCOMPARE(m_dialogs->messages.back().text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_tab->currentFrame(), 32767);
        QCOMPARE(m_tab->Text16->text(), QString("32768"));
        m_dialogs->messages.clear();
        m_tab->nextpicture->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("32768"));
        QCOMPARE(m_tab->currentFrame(), 32767);
        QCOMPARE(m_tab->Text16->text(), QString("32768"));
    }

    // ---- The pop-up menu ----

    void menuFollowsTheRowsAndTheFileKind()
    {
        startWindow("phone.bin");
        auto* menu = m_window->findChild<QMenu*>("menufile5");
        emit m_tab->ListView5->customContextMenuRequested(QPoint(5, 5));
        QVERIFY(menu->isVisible());
        QVERIFY(!m_tab->outputpic->isEnabled());
        QVERIFY(!m_tab->outputpicall->isEnabled());
        QVERIFY(!m_tab->outputpics3->isEnabled());
        menu->hide();
        openTable(kTable);
        emit m_tab->ListView5->customContextMenuRequested(QPoint(5, 5));
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
        emit m_tab->ListView5->customContextMenuRequested(QPoint(5, 5));
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
        row(Logo)->setSelected(true);
        row(D8)->setSelected(true);
        m_dialogs->folders.push_back(path("out/"));
        QDir().mkpath(path("out"));
        bool sawProgress = false;
        QTimer::singleShot(0, this, [&] {
            sawProgress = m_tab->ProgressBar2->isVisible() && m_tab->ProgressBar2->maximum() == 3 &&
                          !m_tab->ListView5->isEnabled() && !m_window->mayClose;
        });
        choose(m_tab->outputpic);
        QVERIFY(sawProgress);
        QCOMPARE(m_dialogs->asked.last(), QString::fromUtf8("folder 请选择软件安装路径："));
        QCOMPARE(m_window->settings().PictureSavePath, path("out/"));
        QCOMPARE(QDir(path("out")).entryList(QDir::Files),
                 (QStringList{"d8-01.bmp", "logo-01.bmp", "logo-02.bmp", "logo-03.bmp"}));
        const QByteArray logo1 = QByteArray::fromHex(
            "424D46000000000000003600000028000000020000000200000001001800000000001000000"
            "0C40E0000C40E00000000000000000000"
            "FF0000FFFFFF0000"    // bottom row first: blue, white
            "0000FF00FF000000");  // top row: red, green
        QCOMPARE(readBytes(path("out/logo-01.bmp")), logo1);
        QCOMPARE(readBytes(path("out/logo-03.bmp")),
                 bmpHeader(70, 54, 2, 2, 24, 0, 16) + QByteArray::fromHex("4050607080900000" "8080801020300000"));
        QCOMPARE(readBytes(path("out/d8-01.bmp")), bmpHeader(62, 54, 2, 1, 24, 0, 8) +
                                                       QByteArray::fromHex("FF0000" "0000FF" "0000"));
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
        QVERIFY(m_tab->ProgressBar2->isHidden());
        QVERIFY(m_tab->ListView5->isEnabled());
        QVERIFY(m_window->mayClose);
    }

    void exportOfAllRowsRefusesMonoAndOddDepthsFrameByFrame()
    {
        startWindow("phone.bin");
        openTable(kTable);
        m_dialogs->folders.push_back(path("all/"));
        QDir().mkpath(path("all"));
        bool sawProgress = false;
        QTimer::singleShot(0, this, [&] { sawProgress = m_tab->ProgressBar2->isVisible() && m_tab->ProgressBar2->maximum() == 8; });
        choose(m_tab->outputpicall);
        QVERIFY(sawProgress);
        QCOMPARE(QDir(path("all")).entryList(QDir::Files),
                 (QStringList{"d12-01.bmp", "d8-01.bmp", "logo-01.bmp", "logo-02.bmp", "logo-03.bmp", "pal-01.bmp",
                              "screen-01.bmp"}));
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0, 0, 18}));
        QCOMPARE(m_dialogs->messages[0].text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_dialogs->messages[1].text, QString::fromUtf8("错误的bmp文件格式"));
        const QByteArray pal = readBytes(path("all/pal-01.bmp"));
        QCOMPARE(pal.size(), 118 + 8);
        QCOMPARE(pal.mid(54, 64), readBytes(QStringLiteral(ZEVRAN_DATA_DIR "/16.dat")).left(64));
        QCOMPARE(pal.mid(118), QByteArray::fromHex("9ABC0000" "01230000"));
        QCOMPARE(QImage(path("all/screen-01.bmp")).size(), QSize(96, 64));
        QVERIFY(m_tab->ProgressBar2->isHidden());
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
        row(Logo)->setSelected(true);
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
        QVERIFY(m_window->mayClose);
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
        row(Logo)->setCheckState(0, Qt::Checked);
        row(D8)->setCheckState(0, Qt::Checked);
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
        row(D8)->setCheckState(0, Qt::Checked);
        row(None)->setCheckState(0, Qt::Checked);
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
        row(Logo)->setCheckState(0, Qt::Checked);
        row(8)->setCheckState(0, Qt::Checked);
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
        row(Logo)->setCheckState(0, Qt::Checked);
        m_tab->outputpics3_Click();
        QVERIFY(m_dialogs->asked.filter("save").isEmpty());
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
        const auto& image = m_window->imageState().FirmwareImage;
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size())), phoneImage());
    }
};

QTEST_MAIN(PicturesTabTest)
#include "pictures_tab_test.moc"
