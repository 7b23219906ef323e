// Bad places and bad files through the window: devices, full disks, folders that are
// files, and changes that run off the image. Each case shows a message saying what and
// where, and leaves every file it was not asked to write as it was.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/list_cells.hpp"
#include "app/main_window.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QTreeView>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <sys/resource.h>

using zevran::app::Form1;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// Files may grow to `bytes` and no further while it lives: a full disk that stops
// root as well. The signal that would end the process becomes a failed write.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_old);
        m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_old;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_oldHandler);
    }

private:
    rlimit m_old{};
    void (*m_oldHandler)(int) = nullptr;
};

}  // namespace

class HardeningTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    QAction* action(const char* name) const { return m_window->findChild<QAction*>(name); }
    zevran::tones::TonesTab* tones() const { return m_window->findChild<zevran::tones::TonesTab*>(); }

    // A phone image with one tone of 0x100 bytes at 0x40.
    QByteArray phoneImage() const
    {
        QByteArray image(0x1000, '\x11');
        image.replace(0x40, 8, QByteArray("MMMD\x00\x00\x00\xF8", 8));
        return image;
    }

private slots:
    void init() { startWindow(); }
    void cleanup() { stopWindow(); }

    void saveOnAFullDiskKeepsThePhoneFileAndSaveEnabled()
    {
        writeBytes(path("phone.asf"), phoneImage());
        m_window->openPhoneFile(path("phone.asf"));
        m_window->patchInImage({{0x10, 0x13, {'N', 'E', 'W', '!'}}});
        {
            FileSizeLimit limit(0x800);
            QVERIFY(!m_window->Saveaxf(true));
        }
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{13, 0}));
        QVERIFY2(m_dialogs->messages.back().text.contains(path("phone.asf")),
                 qPrintable(m_dialogs->messages.back().text));
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
        QVERIFY(action("Save")->isEnabled());
        QCOMPARE(QDir(m_home.path()).entryList(QDir::Files).filter("phone.asf"), QStringList{"phone.asf"});
        // The disk has room again: the same save now goes through.
        QVERIFY(m_window->Saveaxf(true));
        QCOMPARE(readBytes(path("phone.asf")).mid(0x10, 4), QByteArray("NEW!"));
        QVERIFY(!action("Save")->isEnabled());
    }

    void emptyFileOpenedSinceIsNotOverwrittenByTheOldImage()
    {
        writeBytes(path("a.asf"), "0123");
        writeBytes(path("empty.asf"), "");
        m_window->openPhoneFile(path("a.asf"));
        m_window->patchInImage({{0, 0, {'X'}}});
        // The empty file takes the phone file's name, while the old image stays (its
        // changes let go at the question).
        m_dialogs->answers = {zevran::app::Answer::No};
        m_window->openPhoneFile(path("empty.asf"));
        QVERIFY(!m_window->Saveaxf(true));
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{13, 1, 0}));
        QVERIFY(m_dialogs->messages.back().text.contains("holds 0 bytes, not the 4"));
        QCOMPARE(readBytes(path("empty.asf")), QByteArray());
        QCOMPARE(readBytes(path("a.asf")), QByteArray("0123"));
    }

    void deviceAsPhoneFileIsRefusedNotReadForever()
    {
        m_window->openPhoneFile("/dev/zero");
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, QString("/dev/zero: is a device, not a file"));
        QVERIFY(m_window->imageState().FirmwarePath.empty());
    }

    void changeRunningOffTheImageSaysSo()
    {
        writeBytes(path("phone.asf"), "0123");
        m_window->openPhoneFile(path("phone.asf"));
        m_window->patchInImage({{2, 5, {'a', 'b', 'c', 'd'}}});
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("past the end of the image (4 bytes)"));
        QVERIFY(action("Save")->isEnabled());
        const auto& image = m_window->imageState().FirmwareImage;
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()), 4), QByteArray("01ab"));
    }

    void patchFileOnAFullDiskShowsNoDoneMessage()
    {
        writeBytes(path("phone.bin"), phoneImage());
        m_window->openPhoneFile(path("phone.bin"));
        m_dialogs->files = {"/dev/full"};
        m_dialogs->chosenFilter = 1;  // "All files": the device's name as it is
        m_window->writeSRecordPatch({{0x10, 0x13, {'N', 'E', 'W', '!'}}});
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.contains("/dev/full"), qPrintable(m_dialogs->messages[0].text));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    void toneTableIntoAFolderThatIsAFileSaysWhere()
    {
        writeBytes(path("phone.bin"), phoneImage());
        m_window->openPhoneFile(path("phone.bin"));
        tones()->GetTone->click();
        QCOMPARE(rowCount(tones()->toneList), 1);
        writeBytes(path("plain"), "a file");
        m_dialogs->files = {path("plain/tones.txt")};
        tones()->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.startsWith(path("plain/tones.txt")));
        QCOMPARE(readBytes(path("plain")), QByteArray("a file"));
    }

    void toneExportOnAFullDiskStopsWithAMessage()
    {
        writeBytes(path("phone.bin"), phoneImage());
        m_window->openPhoneFile(path("phone.bin"));
        tones()->GetTone->click();
        selectRow(tones()->toneList, 0);
        // "/proc/ring.mmf" less four characters, "-001.mmf": a file /proc will not make.
        m_dialogs->files = {"/proc/ring.mmf"};
        action("outputselect")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY2(m_dialogs->messages[0].text.contains("/proc/ring-001.mmf"), qPrintable(m_dialogs->messages[0].text));
        QVERIFY(tones()->scanProgress->isHidden());
    }

    void toneTableWithLettersAndOddSizesOpensAsText()
    {
        writeBytes(path("phone.asf"), phoneImage());
        m_window->openPhoneFile(path("phone.asf"));
        writeBytes(
            path("odd.txt"),
            " 0x1 : 0xZZ - 0xQQ  Size: -5 \t\r\n 002 : 0x00000040 - 0x0000013F  Size: 99999999999999999999 \t\r\n");
        m_dialogs->files = {path("odd.txt")};
        tones()->OpenToneTable->click();
        QCOMPARE(rowCount(tones()->toneList), 2);
        QCOMPARE(cellText(tones()->toneList, 0, 3), QString("-5"));
        QVERIFY(m_dialogs->messages.empty());
        // Planned as slots, the negative size is an empty slot and the enormous one lies outside.
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), "MMMD");
        tones()->showToneFiles(path("tones"));
        selectRow(tones()->toneFileList, 0);
        action("addmmf")->trigger();
        action("addmmf")->trigger();
        selectRow(tones()->toneList, 0);
        selectRow(tones()->toneList, 1);
        action("addaddress")->trigger();
        QAbstractItemView* plan = tones()->planList;
        const int negative = cellText(plan, 0, 2).startsWith("0x1 ") ? 0 : 1;
        // A slot of -5 bytes takes no tone of 4.
        setCheckState(plan, negative, 0, Qt::Checked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{12});
        // An enormous slot lies outside the image.
        setCheckState(plan, negative, 0, Qt::Unchecked);
        setCheckState(plan, 1 - negative, 0, Qt::Checked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{12, 0}));
        QVERIFY(m_dialogs->messages.back().text.contains("outside the image"));
        QVERIFY(!action("Save")->isEnabled());
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
    }
};

QTEST_MAIN(HardeningTest)
#include "hardening_test.moc"
