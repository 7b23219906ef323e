// A "bin" phone file is never written: every command of every tab runs on one, and
// its bytes, size and modification time are the same afterwards.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/list_cells.hpp"
#include "app/main_window.hpp"
#include "image/ui/converter_tab.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <sys/stat.h>
#include <utime.h>

using zevran::app::Form1;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// A tone at 0x100, the text "Hello" at 0x400 and a 3*2 picture of 16 bits at 0x500.
QByteArray phoneImage()
{
    QByteArray image(0x800, '\x11');
    image.replace(0x100, 8, QByteArray("MMMD\x00\x00\x00\xF8", 8));
    image.replace(0x400, 6, QByteArray("Hello\0", 6));
    for (int i = 0; i < 12; ++i) image[0x500 + i] = static_cast<char>(0x40 + i);
    return image;
}

struct FileStamp {
    QByteArray bytes;
    qint64 size = 0;
    timespec modified{};
};

FileStamp stampOf(const QString& path)
{
    struct stat info {};
    ::stat(path.toLocal8Bit().constData(), &info);
    return {readBytes(path), static_cast<qint64>(info.st_size), info.st_mtim};
}

}  // namespace

class BinUntouchedTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    void runToneCommands(Form1& window)
    {
        auto* tab = window.findChild<zevran::tones::TonesTab*>();
        tab->GetTone->click();
        QCOMPARE(rowCount(tab->toneList), 1);
        selectRow(tab->toneList, 0);
        m_dialogs->files = {path("out/tones.txt"), path("out/tones.txt"), path("out/ring.mmf"), path("out/all.mmf"),
                            path("out/tones.s3")};
        tab->SaveToneTable->click();
        tab->OpenToneTable->click();
        selectRow(tab->toneList, 0);
        window.findChild<QAction*>("outputselect")->trigger();
        window.findChild<QAction*>("outputall")->trigger();
        writeBytes(path("tones/new.mmf"), QByteArray(200, 'N'));
        tab->showToneFiles(path("tones"));
        selectRow(tab->toneFileList, 0);
        window.findChild<QAction*>("addmmf")->trigger();
        window.findChild<QAction*>("addaddress")->trigger();
        setCheckState(tab->planList, 0, 0, Qt::Checked);
        window.findChild<QAction*>("outputs3")->trigger();
        // Disabled for a "bin" file, and refusing all the same when called.
        tab->outputaxf_Click();
        selectRow(tab->planList, 0);
        for (const char* name : {"movemmf", "moveallmmf", "movealladdress", "moveall"})
            window.findChild<QAction*>(name)->trigger();
        QVERIFY(QFile::exists(path("out/tones.s3")));
        QVERIFY(QFile::exists(path("out/ring-001.mmf")));
    }

    void runStringCommands(Form1& window)
    {
        auto* tab = window.findChild<zevran::strings::StringsTab*>();
        tab->searchText->setText("Hello");
        window.findChild<QRadioButton*>("Option2")->setChecked(true);
        window.findChild<QCheckBox*>("SearchBegin")->setChecked(true);
        tab->SeachString_Click();
        QCOMPARE(tab->foundStart->text(), QString("00000400"));
        tab->replacementText->setText("Howdy");
        tab->Add2List_Click();
        m_dialogs->files = {path("out/strings.s3")};
        tab->outputStrS3_Click();
        tab->outputStraxf_Click();
        tab->Removeall_Click();
        QVERIFY(QFile::exists(path("out/strings.s3")));
    }

    void runPictureCommands(Form1& window)
    {
        auto* tab = window.findChild<zevran::pictures::PicturesTab*>();
        writeBytes(path("pictures.txt"), "001 pic\t 0X00000500\t Frames: 2\t Size: 12\t Pixels: 3*2\t Bits: 16\t\r\n");
        m_dialogs->files = {path("pictures.txt"), path("out/pictures.txt"), path("out/pictures.s3")};
        m_dialogs->folders = {path("out/"), path("out/")};
        tab->OpenPicTable_Click();
        QCOMPARE(rowCount(tab->pictureList), 1);
        selectRow(tab->pictureList, 0);
        tab->ListView5_ItemClick(0);
        tab->nextpicture_Click();
        tab->PreviousPicture_Click();
        tab->PlayPicture_Click();
        tab->Timer2_Timer();
        tab->PausePlay_Click();
        tab->StopPlay_Click();
        tab->SavePicTable_Click();
        setCheckState(tab->pictureList, 0, 0, Qt::Checked);
        tab->outputpic_Click();
        tab->outputpicall_Click();
        tab->outputpics3_Click();
        QVERIFY(QFile::exists(path("out/pictures.s3")));
        QVERIFY(QFile::exists(path("out/pic-01.bmp")));
    }

    void runConverterCommands(Form1& window, const QString& phone)
    {
        auto* tab = window.findChild<zevran::image::ConverterTab*>();
        tab->binInputPath->setText(phone);
        tab->AllAddressOption->setChecked(true);
        tab->ComBinToS3_Click();
        QCOMPARE(readBytes(path("phone.s3")).left(18), QByteArray("S00600004844521B\r\n"));
        // Converting phone.s3 back would write phone.bin: the open phone file is refused.
        const std::size_t before = m_dialogs->messages.size();
        tab->s3InputPath->setText(path("phone.s3"));
        tab->PartAdd->setChecked(true);
        tab->ComS3ToBin_Click();
        QCOMPARE(m_dialogs->messages.size(), before + 1);
        QVERIFY(m_dialogs->messages.back().text.contains("phone file open in the workshop"));
    }

private slots:
    void binOpenedAfterAnAsfAndEndingBadlyIsStillNeverWritten()
    {
        writeBytes(path("a.asf"), phoneImage());
        // A version marker too near the end ends the open part way.
        QByteArray bin = phoneImage();
        bin.replace(bin.size() - 20, 14, "VersionString:");
        writeBytes(path("y.bin"), bin);
        auto window = startedWindow();
        window->openPhoneFile(path("a.asf"));
        window->openPhoneFile(path("y.bin"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(window->imageState().FileKind, std::string("other"));
        window->patchInImage({{0, 3, {'X', 'X', 'X', 'X'}}});
        QVERIFY(!window->findChild<QAction*>("Save")->isEnabled());
        QVERIFY(!window->Saveaxf(true));
        QCOMPARE(readBytes(path("y.bin")), bin);
        QCOMPARE(readBytes(path("a.asf")), phoneImage());
    }

    void everyCommandLeavesTheBinPhoneFileAsItWas()
    {
        QDir().mkpath(path("out"));
        QDir().mkpath(path("tones"));
        const QString phone = path("phone.bin");
        writeBytes(phone, phoneImage());
        // An old time stamp, so that any write at all would move it.
        utimbuf old{1000000000, 1000000000};
        ::utime(phone.toLocal8Bit().constData(), &old);
        const FileStamp before = stampOf(phone);

        auto window = startedWindow();
        m_dialogs->files = {phone};
        window->menuopen_Click();
        QCOMPARE(window->imageState().FileKind, std::string("bin"));

        runToneCommands(*window);
        runStringCommands(*window);
        runPictureCommands(*window);
        runConverterCommands(*window, phone);
        window->findChild<QAction*>("Save")->trigger();
        QVERIFY(!window->Saveaxf(true));
        QCloseEvent close;
        QCoreApplication::sendEvent(window.get(), &close);
        QVERIFY(close.isAccepted());
        window.reset();

        const FileStamp after = stampOf(phone);
        QCOMPARE(after.bytes, before.bytes);
        QCOMPARE(after.size, before.size);
        QCOMPARE(after.modified.tv_sec, before.modified.tv_sec);
        QCOMPARE(after.modified.tv_nsec, before.modified.tv_nsec);
    }
};

QTEST_MAIN(BinUntouchedTest)
#include "bin_untouched_test.moc"
