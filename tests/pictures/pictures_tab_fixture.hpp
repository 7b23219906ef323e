// Shared by the picture tab's tests: a synthetic phone image with pictures at every
// depth, its picture table, and the window driven through the dialogs double.
#pragma once

#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "pictures/ui/pictures_tab.hpp"

#include <QTreeView>
#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

namespace zevran::test {

using app::Form1;
using pictures::PicturesTab;

// Only the keys these tests read; the header texts label the saved table's columns.
inline const QByteArray kLanguage =
    "[SSTab3]\r\nListview5Header1=No.\r\nListview5Header2=Name\r\nListview5Header3=Address\r\n"
    "Listview5Header4=Frames\r\nListview5Header5=Size\r\nListview5Header6=Pixels\r\nListview5Header7=Bits\r\n"
    "[String]\r\nMsgTitle1=Warning\r\nMsgTitle2=Done\r\nMsgStr1=Empty region.\r\nMsgStr4=Nothing to save.\r\n"
    "MsgStr10=Patch written.\r\nMsgStr13=Changed in memory.\r\nMsgStr16=Table saved.\r\nMsgStr18=Exported.\r\n"
    "MsgStr38=never read\r\nMsgStr39=Click a picture to see it.\r\n"
    "[Filter]\r\nFilter1=All files (*.*)|*.*|S-record files (*.s3)|*.s3\r\n"
    "Filter2=All files (*.*)|*.*|Picture tables (*.txt)|*.txt\r\n";

// 24-bit pixels are stored blue, green, red.
inline const QByteArray kLogoFrames = QByteArray::fromHex("0000FF00FF00FF0000FFFFFF"    // red, green / blue, white
                                                          "00000000FFFFFFFF00FF00FF"    // black, yellow / cyan, magenta
                                                          "808080102030405060708090");  // three greys of sorts
inline const QByteArray kAfterLogo = QByteArray::fromHex("0102030405060708090A0B0C");

// A synthetic phone image: pictures at every depth, and known bytes around the first.
inline QByteArray phoneImage()
{
    QByteArray image(0x4000, '\0');
    image.replace(0xF4, 12, QByteArray(12, '\xAA'));  // before logo: "frame -1"
    image.replace(0x100, 36, kLogoFrames);
    image.replace(0x124, 12, kAfterLogo);  // after logo: "frame 3"
    // screen: 96 x 64 at 16 bits, the top row green, then red on the left half, blue on the right.
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 96; ++x) {
            const int at = 0x200 + (y * 96 + x) * 2;
            const QByteArray pixel = y == 0   ? QByteArray::fromHex("E007")
                                     : x < 48 ? QByteArray::fromHex("00F8")
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

inline QByteArray line(const char* number, const char* name, const char* address, const char* frames, const char* size,
                       const char* pixels, const char* bits)
{
    return QByteArray(number) + " " + name + "\t 0X" + address + "\t Frames: " + frames + "\t Size: " + size +
           "\t Pixels: " + pixels + "\t Bits: " + bits + "\t\r\n";
}

// Row numbers in the file are ignored and blank lines take none.
inline const QByteArray kTable =
    line("001", "logo", "00000100", "3", "12", "2*2", "24") + "\r\n" +
    line("007", "screen", "00000200", "1", "12288", "96*64", "16") +
    line("003", "mono", "00003200", "1", "768", "64*96", "1") + line("004", "pal", "00003600", "1", "4", "4*2", "4") +
    "\n" + line("005", "d8", "00003700", "1", "2", "2*1", "8") + line("006", "d12", "00003710", "1", "3", "2*1", "12") +
    line("008", "none", "00003720", "0", "12", "2*2", "24") + line("009", "odd", "00003730", "1", "1", "2*2", "2");

enum Row { Logo, Screen, Mono, Pal, D8, D12, None, Odd };

inline QByteArray bmpHeader(int fileSize, int offset, int width, int height, int bits, int compression, int dataSize)
{
    auto le = [](quint32 value, int bytes) {
        QByteArray out;
        for (int i = 0; i < bytes; ++i) out += char((value >> (8 * i)) & 0xFF);
        return out;
    };
    return "BM" + le(fileSize, 4) + le(0, 4) + le(offset, 4) + le(40, 4) + le(width, 4) + le(height, 4) + le(1, 2) +
           le(bits, 2) + le(compression, 4) + le(dataSize, 4) + le(3780, 4) + le(3780, 4) + le(0, 4) + le(0, 4);
}

// The window on a fresh program folder; each test starts it with the phone file it needs.
class PicturesTabFixture : public zevran::test::WindowFixture {
protected:
    PicturesTab* m_tab = nullptr;

    void startWindow(const QString& phoneName)
    {
        QDir().mkpath(path("language"));
        writeBytes(path("language/English.ini"), kLanguage);
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        QVERIFY(QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/16.dat"), path("16.dat")));
        WindowFixture::startWindow();
        showWindowOn(phoneName);
    }
    // The same for an installed workshop: shipped data read-only in share/, settings in
    // config/, previews in run/.
    void startInstalledWindow(const QString& phoneName)
    {
        QDir().mkpath(path("share/language"));
        writeBytes(path("share/language/English.ini"), kLanguage);
        QVERIFY(QFile::copy(QStringLiteral(ZEVRAN_DATA_DIR "/16.dat"), path("share/16.dat")));
        QDir().mkpath(path("config"));
        writeBytes(path("config/zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        app::ProgramFolders folders;
        folders.layout = app::Layout::Installed;
        folders.dataFolder = path("share").toStdString();
        folders.settingsFile = path("config/zevran.ini").toStdString();
        folders.userLanguageFolder = path("data/language").toStdString();
        folders.runtimeFolder = path("run").toStdString();
        folders.startFolder = m_home.path().toStdString();
        auto dialogs = std::make_unique<ScriptedDialogs>();
        m_dialogs = dialogs.get();
        m_window = std::make_unique<Form1>(folders, std::move(dialogs));
        m_window->LoadSettings();
        showWindowOn(phoneName);
    }
    void showWindowOn(const QString& phoneName)
    {
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
        m_tab->recomputeFrameSizes->setChecked(recompute);
        m_dialogs->files.push_back(path("table.txt"));
        m_tab->OpenPicTable->click();
    }

    void clickRow(int index)
    {
        const QRect rect = rowRect(m_tab->pictureList, index);
        QTest::mouseClick(m_tab->pictureList->viewport(), Qt::LeftButton, {}, rect.center());
    }

    // Right-click on the list and choose `item` from the pop-up menu, as a user does.
    void choose(QAction* item)
    {
        emit m_tab->pictureList->customContextMenuRequested(QPoint(5, 5));
        auto* menu = m_window->findChild<QMenu*>("menufile5");
        QVERIFY(menu->isVisible());
        QVERIFY(item->isEnabled());
        menu->hide();
        item->trigger();
    }

    // The preview as shown, with the factor by which it is enlarged.
    QImage shown(int width, int height, int* zoom) const
    {
        QImage image = m_tab->previewPicture->pixmap().toImage();
        *zoom = image.width() / width;
        if (image.width() != width * *zoom || image.height() != height * *zoom) return QImage();
        return image;
    }

    // The colour of picture pixel (x, y) as shown. The first and last screen pixels of
    // its block must agree; when they do not, 0x12345678 stands for no colour at all.
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

    void resetHome() { stopWindow(); }
};

}  // namespace zevran::test
