// The ring-tone tab through the dialogs double: scan, tone tables, export, notes, the
// file browser, the replacement plan and both patch outputs.
#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "image/srecord.hpp"
#include "tones/tone_check.hpp"
#include "tones/ui/tone_columns.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QTreeView>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using zevran::app::Form1;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;
using zevran::tones::TonesTab;

namespace {

const QByteArray kLanguage =
    "[SSTab1]\r\nListview1Header1=Name\r\nListview1Header2=Size\r\nListview4Header4=Size\r\n"
    "[String]\r\nMsgTitle1=Warning\r\nMsgStr1=Empty.\r\nMsgStr3=No phone file.\r\nMsgStr4=Nothing to save.\r\n"
    "MsgStr6=Saved.\r\nMsgStr8=Nothing selected.\r\nMsgStr9=Exported.\r\nMsgStr10=Written.\r\nMsgStr11=Nothing checked.\r\n"
    "MsgStr12=Too large.\r\nMsgStr13=Patched.\r\n"
    "[Filter]\r\nFilter1=S-record (*.s3)|*.s3\r\nFilter4=Tables (*.txt)|*.txt\r\nFilter6=Tones (*.mmf)|*.mmf\r\n"
    "[Zevran]\r\nToneCrcOk=CRC correct\r\nToneCrcBad=CRC wrong\r\nToneCrcNone=no CRC\r\nToneTitle=Title:\r\n";

void putBigEndian(QByteArray& bytes, int at, quint32 value)
{
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> (24 - 8 * i));
}

void putChunk(QByteArray& out, const QByteArray& id, const QByteArray& body)
{
    out += id;
    QByteArray length(4, '\0');
    putBigEndian(length, 0, static_cast<quint32>(body.size()));
    out += length + body;
}

// A SMAF tone of `size` bytes titled "Spring" (or with the contents chunk body
// `contents`), ending in the CRC of all before it.
QByteArray smafTone(int size, const QByteArray& contents = QByteArray::fromHex("0001010000") + "ST:Spring,")
{
    QByteArray body;
    putChunk(body, "CNTI", contents);
    putChunk(body, QByteArray("MTR\x01", 4), QByteArray(size - 8 - body.size() - 8 - 2, '\x5A'));
    body += QByteArray(2, '\0');
    QByteArray tone;
    putChunk(tone, "MMMD", body);
    const auto crc = zevran::tones::smafCrc(
        std::span(reinterpret_cast<const std::uint8_t*>(tone.constData()), static_cast<std::size_t>(tone.size() - 2)));
    tone[tone.size() - 2] = static_cast<char>(crc >> 8);
    tone[tone.size() - 1] = static_cast<char>(crc);
    return tone;
}

// Signatures at 0 (never found), 0x100 (a real tone of 160 bytes), 0x400 (declared
// size 100: too small), 0x500 (101) and 0x1234 (256).
QByteArray phoneImage()
{
    QByteArray image(0x2000, '\x11');
    auto signature = [&image](int at, quint32 length) {
        image.replace(at, 4, "MMMD");
        putBigEndian(image, at + 4, length);
    };
    signature(0, 0x100);
    image.replace(0x100, 160, smafTone(160));
    signature(0x400, 92);
    signature(0x500, 93);
    signature(0x1234, 0xF8);
    return image;
}

QStringList listTexts(const QAbstractItemView* list)
{
    QStringList rows;
    for (int i = 0; i < rowCount(list); ++i) rows << rowTexts(list, i).join('|');
    return rows;
}

QByteArray patchFile(const std::vector<std::pair<std::uint32_t, QByteArray>>& regions)
{
    std::string text(zevran::image::S0Line);
    for (const auto& [first, bytes] : regions)
        text += zevran::image::sRecordRegionText(
            std::span(reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())),
            first);
    text += zevran::image::S7Line;
    return QByteArray::fromStdString(text);
}

QByteArray padded(const QByteArray& bytes, int size) { return bytes + QByteArray(size - bytes.size(), '\0'); }

}  // namespace

class TonesTabTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    TonesTab* m_tab = nullptr;

    QAction* action(const char* name) const { return m_window->findChild<QAction*>(name); }
    void showMenu(const char* name) { emit m_window->findChild<QMenu*>(name)->aboutToShow(); }

    void openPhone(const QString& name)
    {
        writeBytes(path(name), phoneImage());
        m_window->openPhoneFile(path(name));
    }

    void select(QAbstractItemView* list, std::initializer_list<int> rows) { selectRows(list, rows); }

    // Files a (120 bytes), b (101) and c (300) in the listed folder, then a plan
    // pairing a with tone 001 and c with tone 003, both checked.
    void planTwoPairs()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(120, 'A'));
        writeBytes(path("tones/c.mmf"), QByteArray(300, 'C'));
        m_tab->showToneFiles(path("tones"));
        m_tab->GetTone->click();
        select(m_tab->toneFileList, {0, 1});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0, 2});
        action("addaddress")->trigger();
        for (int i = 0; i < 2; ++i) setCheckState(m_tab->planList, i, 0, Qt::Checked);
    }

private slots:
    void init()
    {
        QDir().mkpath(path("language"));
        writeBytes(path("language/English.ini"), kLanguage);
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nToneCrcBad=Mauvais CRC\r\nTonesFound=%1 sonneries\r\n");
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        startWindow();
        m_tab = m_window->findChild<TonesTab*>();
    }
    void cleanup() { stopWindow(); }

    void planUnitWordFollowsALanguageSwitch()
    {
        writeBytes(path("language/Other.ini"), "[Zevran]\r\nPlanSizeUnit=octets\r\n");
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(110, 'x'));
        m_tab->showToneFiles(path("tones"));
        select(m_tab->toneFileList, {0});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0});
        action("addaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 "});
        m_window->languagNum_Click(2);
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 octets|001 0x00000100 - 0x0000019F 160 "});
        m_window->languagNum_Click(1);
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 "});
    }

    void scanWithoutPhoneFileShowsMessage3()
    {
        m_tab->GetTone->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{3});
        QCOMPARE(rowCount(m_tab->toneList), 0);
    }

    void scanListsEveryToneInRange()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        const QStringList expected{"001|0x00000100|0x0000019F|160|", "002|0x00000500|0x00000564|101|",
                                   "003|0x00001234|0x00001333|256|"};
        QCOMPARE(listTexts(m_tab->toneList), expected);
        QCOMPARE(m_tab->ToneCount->text(), QString("3 tones found"));
        QVERIFY(!m_tab->scanProgress->isVisible());
        QCOMPARE(m_tab->scanProgress->value(), 1);
        m_tab->GetTone->click();
        QCOMPARE(listTexts(m_tab->toneList), expected);
        QCOMPARE(m_window->imageState().LastMatch, 0);
        QVERIFY(m_dialogs->messages.empty());
    }

    void selectingAToneShowsItsCheckInTheStatusBar()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        select(m_tab->toneList, {2});
        QCOMPARE(panel->text(), QString("003: CRC wrong"));
        // Another language speaks of the selected tone in its own words.
        m_window->languagNum_Click(2);
        QCOMPARE(panel->text(), QString("003: Mauvais CRC"));
        m_tab->toneList->clearSelection();
        QCOMPARE(panel->text(), QString());
    }

    void toneCheckFollowsAChangeOfItsBytesAndItsUndo()
    {
        openPhone("phone.asf");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        // One byte of the tone's track changed in the image: its CRC no longer holds.
        m_window->patchInImage({{0x150, 0x150, {0x00}}}, false);
        QCOMPARE(panel->text(), QString("001: CRC wrong  Title: Spring"));
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        m_window->findChild<QAction*>("menuredo")->trigger();
        QCOMPARE(panel->text(), QString("001: CRC wrong  Title: Spring"));
    }

    void toneTitleIsDecodedByTheTonesCodeType()
    {
        // Code type 00 is Shift-JIS: 83 65 83 58 83 67 is "テスト", which the handset's
        // GBK code page would read as other characters.
        QByteArray image = phoneImage();
        image.replace(
            0x100, 160,
            smafTone(160, QByteArray::fromHex("0001000000") + "ST:" + QByteArray::fromHex("836583588367") + ","));
        writeBytes(path("phone.bin"), image);
        m_window->openPhoneFile(path("phone.bin"));
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        QCOMPARE(panel->text(), QString::fromUtf8("001: CRC correct  Title: テスト"));
    }

    void toneCountIsRetoldInTheNewLanguage()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QCOMPARE(m_tab->ToneCount->text(), QString("3 tones found"));
        m_window->languagNum_Click(2);
        QCOMPARE(m_tab->ToneCount->text(), QString("3 sonneries"));
    }

    void saveTableWritesEveryRowWithItsNote()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        setCellText(m_tab->toneList, 0, 4, "ring1");
        m_dialogs->files = {path("tones.txt")};
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{6});
        QCOMPARE(m_dialogs->asked.first(), QString("save %1|Tables (*.txt)|2").arg(m_home.path()));
        QCOMPARE(readBytes(path("tones.txt")), QByteArray(" 001 : 0x00000100 - 0x0000019F  Size: 160 \tring1\r\n"
                                                          " 002 : 0x00000500 - 0x00000564  Size: 101 \t\r\n"
                                                          " 003 : 0x00001234 - 0x00001333  Size: 256 \t\r\n"));
        QCOMPARE(m_window->settings().TableSavePath, m_home.path());
    }

    void tableReopenedAndSavedAgainGivesTheSameBytes()
    {
        const QByteArray table = " 001 : 0x00000100 - 0x0000019F  Size: 160 \tring1\r\n\r\n"
                                 " 002 : 0x00001234 - 0x00001333  Size: 256 \t\r\n";
        writeBytes(path("in.txt"), table);
        m_dialogs->files = {path("in.txt"), path("out.txt")};
        m_tab->OpenToneTable->click();
        QCOMPARE(listTexts(m_tab->toneList),
                 (QStringList{"001|0x00000100|0x0000019F|160|ring1", "002|0x00001234|0x00001333|256|"}));
        m_tab->SaveToneTable->click();
        QCOMPARE(readBytes(path("out.txt")), QByteArray(table).replace("\r\n\r\n", "\r\n"));
    }

    void savingAnEmptyListShowsMessage4WithoutADialog()
    {
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{4});
        QVERIFY(m_dialogs->asked.isEmpty());
    }

    void shortTableLineStopsReadingAndKeepsTheRowsBefore()
    {
        writeBytes(path("in.txt"),
                   " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n 002 : 0x1\r\n 003 : 0x2 - 0x3  Size: 4 \t\r\n");
        m_dialogs->files = {path("in.txt")};
        m_tab->OpenToneTable->click();
        QCOMPARE(listTexts(m_tab->toneList), QStringList{"001|0x00000100|0x0000019F|160|"});
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("line 2"));
    }

    void exportSelectedWritesThoseRowsOverOldFiles()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("out"));
        writeBytes(path("out/ring-001.mmf"), QByteArray(200, 'Z'));
        select(m_tab->toneList, {0, 2});
        m_dialogs->files = {path("out/ring.mmf")};
        action("outputselect")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{9});
        QCOMPARE(m_dialogs->messages[0].text, QString("Exported.\nFiles written: 2"));
        const QByteArray image = phoneImage();
        QCOMPARE(readBytes(path("out/ring-001.mmf")), image.mid(0x100, 160) + QByteArray(40, 'Z'));
        QCOMPARE(readBytes(path("out/ring-003.mmf")), image.mid(0x1234, 256));
        QVERIFY(!QFile::exists(path("out/ring-002.mmf")));
        QCOMPARE(m_window->settings().RingSavePath, path("out"));
        QVERIFY(!m_tab->scanProgress->isVisible());
    }

    void exportAllNeedsASelectionButWritesEveryRow()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{8});
        QVERIFY(m_dialogs->asked.isEmpty());
        select(m_tab->toneList, {1});
        m_dialogs->files = {path("all.mmf")};
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{8, 9}));
        for (const char* name : {"all-001.mmf", "all-002.mmf", "all-003.mmf"})
            QVERIFY2(QFile::exists(path(name)), name);
        QCOMPARE(readBytes(path("all-002.mmf")), phoneImage().mid(0x500, 101));
    }

    void exportStopsAtARowOutsideTheImage()
    {
        openPhone("phone.bin");
        writeBytes(path("other.txt"),
                   " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n 002 : 0x00100000 - 0x001000FF  Size: 256 \t\r\n");
        m_dialogs->files = {path("other.txt"), path("x.mmf")};
        m_tab->OpenToneTable->click();
        select(m_tab->toneList, {0});
        action("outputall")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("row 002"));
        QCOMPARE(readBytes(path("x-001.mmf")), phoneImage().mid(0x100, 160));
        QVERIFY(!QFile::exists(path("x-002.mmf")));
    }

    void toneMenuEnablesByRowsAndImage()
    {
        showMenu("menufile1");
        for (const char* name : {"outputselect", "outputall", "addaddress"}) QVERIFY2(!action(name)->isEnabled(), name);
        writeBytes(path("t.txt"), " 001 : 0x00000100 - 0x0000019F  Size: 160 \t\r\n");
        m_dialogs->files = {path("t.txt")};
        m_tab->OpenToneTable->click();
        showMenu("menufile1");
        QVERIFY(action("addaddress")->isEnabled());
        QVERIFY(!action("outputselect")->isEnabled());
        QVERIFY(!action("outputall")->isEnabled());
        openPhone("phone.bin");
        showMenu("menufile1");
        QVERIFY(action("outputselect")->isEnabled());
        QVERIFY(action("outputall")->isEnabled());
    }

    void doubleClickEditsTheNoteUntilFocusLeaves()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {1});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 1, 0));
        QVERIFY(!m_tab->noteEditor->isHidden());
        m_tab->noteEditor->setText("alarm");
        emit m_tab->noteEditor->editingFinished();
        QVERIFY(m_tab->noteEditor->isHidden());
        QCOMPARE(cellText(m_tab->toneList, 1, 4), QString("alarm"));
    }

    void escapeCancelsTheNoteEdit()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        setCellText(m_tab->toneList, 1, 4, "ring");
        select(m_tab->toneList, {1});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 1, 0));
        m_tab->noteEditor->setText("alarm");
        QTest::keyClick(m_tab->noteEditor, Qt::Key_Escape);
        QVERIFY(m_tab->noteEditor->isHidden());
        emit m_tab->noteEditor->editingFinished();
        QCOMPARE(cellText(m_tab->toneList, 1, 4), QString("ring"));
    }

    void rescanClearsTheToneCheck()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        auto* panel = m_window->findChild<QLabel*>("StatusBar1Panel2");
        select(m_tab->toneList, {0});
        QCOMPARE(panel->text(), QString("001: CRC correct  Title: Spring"));
        m_tab->GetTone->click();
        QVERIFY(m_tab->toneList->selectionModel()->selectedRows().isEmpty());
        QCOMPARE(panel->text(), QString());
    }

    void listsReadBackTheirRowsAsTheUserLeftThem()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {2});
        emit m_tab->toneList->doubleClicked(cellIndex(m_tab->toneList, 2, 4));
        m_tab->noteEditor->setText(QString::fromUtf8("闹钟"));
        emit m_tab->noteEditor->editingFinished();
        const zevran::tones::ToneSlot& tone = m_tab->toneRows().at(2);
        QCOMPARE(QString::fromStdString(tone.number + "|" + tone.start + "|" + tone.end + "|" + tone.size),
                 QString("003|0x00001234|0x00001333|256"));
        QCOMPARE(QString::fromStdString(tone.note), QString::fromUtf8("闹钟"));
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/z.mmf"), QByteArray(1000, 'Z'));
        writeBytes(path("tones/y.mmf"), QByteArray(99, 'Y'));
        m_tab->showToneFiles(path("tones"));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(m_tab->toneFileRows().size(), std::size_t{2});
        QCOMPARE(m_tab->toneFileRows()[0].name + "|" + m_tab->toneFileRows()[0].size, QString("y.mmf|99"));
        select(m_tab->toneFileList, {1});
        action("addmmf")->trigger();
        action("addaddress")->trigger();
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        QCOMPARE(m_tab->planRows().size(), std::size_t{1});
        const zevran::tones::ReplacementRow& pair = m_tab->planRows()[0];
        QCOMPARE(QString::fromStdString(pair.number + "|" + pair.file + "|" + pair.slot),
                 QString::fromUtf8("001|z.mmf 1000 字节|003 0x00001234 - 0x00001333 256 闹钟"));
        QVERIFY(pair.checked);
    }

    void browserListsToneFilesAndSortsByNameOrSizeAsText()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/b.mmf"), QByteArray(101, 'B'));
        writeBytes(path("tones/A.MMF"), QByteArray(1000, 'A'));
        writeBytes(path("tones/c.mmf"), QByteArray(300, 'C'));
        writeBytes(path("tones/notes.txt"), "x");
        m_tab->showToneFiles(path("tones"));
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
        emit m_tab->toneFileList->header()->sectionClicked(1);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"c.mmf|300", "b.mmf|101", "A.MMF|1000"}));
        // A caption other than "Name" or "Size" only flips the order of the sorted column.
        setHeaderText(m_tab->toneFileList, 0, "Nom");
        emit m_tab->toneFileList->header()->sectionClicked(0);
        QCOMPARE(listTexts(m_tab->toneFileList), (QStringList{"A.MMF|1000", "b.mmf|101", "c.mmf|300"}));
    }

    void doubleClickPlaysTheToneFile()
    {
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/b.mmf"), "MMMD");
        m_tab->showToneFiles(path("tones"));
        QStringList played;
        m_tab->playFile = [&played](const QString& file) { played << file; };
        emit m_tab->toneFileList->doubleClicked(cellIndex(m_tab->toneFileList, 0, 0));
        QCOMPARE(played, QStringList{path("tones/b.mmf")});
    }

    void threeFilesAndTwoSlotsPairByPosition()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        QDir().mkpath(path("tones"));
        for (const char* name : {"a.mmf", "b.mmf", "c.mmf"}) writeBytes(path("tones/") + name, QByteArray(110, 'x'));
        m_tab->showToneFiles(path("tones"));
        showMenu("menufile2");
        QVERIFY(!action("addmmf")->isEnabled());
        select(m_tab->toneFileList, {0, 1, 2});
        showMenu("menufile2");
        QVERIFY(action("addmmf")->isEnabled());
        action("addmmf")->trigger();
        select(m_tab->toneList, {0, 2});
        action("addaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList),
                 (QStringList{"001|c.mmf 110 字节|", "002|a.mmf 110 字节|001 0x00000100 - 0x0000019F 160 ",
                              "003|b.mmf 110 字节|003 0x00001234 - 0x00001333 256 "}));
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        QCOMPARE(checkState(m_tab->planList, 0, 0), Qt::Unchecked);
        setCheckState(m_tab->planList, 1, 0, Qt::Checked);
        QCOMPARE(checkState(m_tab->planList, 1, 0), Qt::Checked);
    }

    void removeCommandsKeepNumbersWithoutGaps()
    {
        openPhone("phone.bin");
        planTwoPairs();
        select(m_tab->planList, {0});
        action("movemmf")->trigger();
        QCOMPARE(listTexts(m_tab->planList), (QStringList{"001||001 0x00000100 - 0x0000019F 160 ",
                                                          "002|c.mmf 300 字节|003 0x00001234 - 0x00001333 256 "}));
        QCOMPARE(checkState(m_tab->planList, 0, 0), Qt::Unchecked);
        select(m_tab->planList, {0});
        action("moveaddress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|c.mmf 300 字节|003 0x00001234 - 0x00001333 256 "});
        action("movealladdress")->trigger();
        QCOMPARE(listTexts(m_tab->planList), QStringList{"001|c.mmf 300 字节|"});
        select(m_tab->planList, {0});
        action("moveone")->trigger();
        QCOMPARE(rowCount(m_tab->planList), 0);
    }

    void planMenuEnablesByRowsSelectionAndKind()
    {
        showMenu("menufile3");
        for (const char* name :
             {"moveone", "moveall", "movemmf", "moveallmmf", "moveaddress", "movealladdress", "outputs3", "outputaxf"})
            QVERIFY2(!action(name)->isEnabled(), name);
        openPhone("phone.bin");
        planTwoPairs();
        m_tab->planList->clearSelection();
        showMenu("menufile3");
        QVERIFY(action("moveall")->isEnabled());
        QVERIFY(!action("moveone")->isEnabled());
        QVERIFY(action("outputs3")->isEnabled());
        QVERIFY(!action("outputaxf")->isEnabled());
    }

    void srecordOutputWritesEachPairZeroFilledToItsSlot()
    {
        openPhone("phone.bin");
        planTwoPairs();
        writeBytes(path("tones/b.mmf"), QByteArray(101, 'B'));
        // c (300 bytes) cannot go into the 256-byte slot: give tone 003 to b instead.
        select(m_tab->planList, {1});
        action("movemmf")->trigger();
        m_tab->showToneFiles(path("tones"));
        select(m_tab->toneFileList, {1});
        action("addmmf")->trigger();
        setCheckState(m_tab->planList, 1, 0, Qt::Checked);
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QCOMPARE(readBytes(path("patch.s3")),
                 patchFile({{0x100, padded(QByteArray(120, 'A'), 160)}, {0x1234, padded(QByteArray(101, 'B'), 256)}}));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    void srecordOutputWritesNothingWhenAToneIsTooLarge()
    {
        openPhone("phone.bin");
        planTwoPairs();
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{12});
        QCOMPARE(m_dialogs->messages[0].text, QString("Too large.\nRow 002 of the plan: c.mmf 300 ") +
                                                  QString::fromUtf8("字节") +
                                                  " does not fit its slot. Nothing was written.");
        QVERIFY(!QFileInfo::exists(path("patch.s3")));
    }

    void cancelledSaveDialogEndsTheToneOutputSilently()
    {
        openPhone("phone.bin");
        planTwoPairs();
        m_dialogs->files = {""};
        action("outputs3")->trigger();
        QVERIFY(m_dialogs->messages.empty());
    }

    void emptySlotMessageComesAfterTheSaveDialog()
    {
        openPhone("phone.bin");
        planTwoPairs();
        setCheckState(m_tab->planList, 1, 0, Qt::Unchecked);
        // An empty tone into a slot of 0 bytes (a hand-made table): sizes pass, the slot is empty.
        setCellText(m_tab->planList, 0, 1, QString::fromUtf8("a.mmf 0 字节"));
        setCellText(m_tab->planList, 0, 2, "001 0x00000100 - 0x0000019F 0 ");
        m_dialogs->files = {path("patch.s3")};
        action("outputs3")->trigger();
        QCOMPARE(m_dialogs->asked.size(), 1);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{1});
    }

    void imageOutputPatchesTheImageAndEnablesSave()
    {
        openPhone("phone.asf");
        planTwoPairs();
        setCheckState(m_tab->planList, 1, 0, Qt::Unchecked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        const std::vector<std::uint8_t>& image = m_window->imageState().FirmwareImage;
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()) + 0x100, 160),
                 padded(QByteArray(120, 'A'), 160));
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.data()) + 0x1234, 4), QByteArray("MMMD"));
        QVERIFY(action("Save")->isEnabled());
        QCOMPARE(readBytes(path("phone.asf")), phoneImage());
    }

    void imageOutputChangesNothingWhenAToneIsTooLarge()
    {
        openPhone("phone.asf");
        planTwoPairs();
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{12});
        QCOMPARE(static_cast<char>(m_window->imageState().FirmwareImage[0x100]), 'M');
        QVERIFY(!action("Save")->isEnabled());
    }

    void imageOutputWithNothingCheckedShowsMessage11()
    {
        openPhone("phone.asf");
        planTwoPairs();
        for (int i = 0; i < 2; ++i) setCheckState(m_tab->planList, i, 0, Qt::Unchecked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{11});
        QVERIFY(!action("Save")->isEnabled());
    }

    void nothingIsSavedOrExportedOverThePhoneFile()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        m_dialogs->files = {path("phone.bin")};
        m_tab->SaveToneTable->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("is the phone file open in the workshop"));
        m_window->writeSRecordPatch({{0, 0, {'X'}}});
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0}));
        m_dialogs->files = {path("phone.bin")};
        m_window->writeSRecordPatch({{0, 0, {'X'}}});
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{0, 0}));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
        // An "asf" phone file named like an exported tone: "t.mmf" would write t-001.mmf over it.
        writeBytes(path("t-001.mmf"), phoneImage());
        m_window->openPhoneFile(path("t-001.mmf"));
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        m_dialogs->files = {path("t.mmf")};
        action("outputselect")->trigger();
        QCOMPARE(m_dialogs->codes().back(), 0);
        QVERIFY(m_dialogs->messages.back().text.contains("t-001.mmf: is the phone file open in the workshop"));
        QCOMPARE(readBytes(path("t-001.mmf")), phoneImage());
    }

    void windowDoesNotCloseUnderAnExport()
    {
        openPhone("phone.bin");
        m_tab->GetTone->click();
        select(m_tab->toneList, {0});
        m_dialogs->files = {path("all.mmf")};
        bool closed = true;
        QTimer::singleShot(0, this, [&] { closed = m_window->close(); });
        action("outputall")->trigger();
        QVERIFY(!closed);
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{32, 9}));
        QVERIFY(m_window->mayClose());
    }

    void outputsForTheOtherKindDoNothing()
    {
        openPhone("phone.asf");
        planTwoPairs();
        m_tab->outputs3_Click();
        QVERIFY(m_dialogs->messages.empty());
        QVERIFY(m_dialogs->asked.isEmpty());
    }

    void outputRefusesASlotOutsideTheImage()
    {
        openPhone("phone.asf");
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a.mmf"), QByteArray(120, 'A'));
        m_tab->showToneFiles(path("tones"));
        writeBytes(path("other.txt"), " 001 : 0x00100000 - 0x0010009F  Size: 160 \t\r\n");
        m_dialogs->files = {path("other.txt")};
        m_tab->OpenToneTable->click();
        select(m_tab->toneFileList, {0});
        action("addmmf")->trigger();
        select(m_tab->toneList, {0});
        action("addaddress")->trigger();
        setCheckState(m_tab->planList, 0, 0, Qt::Checked);
        action("outputaxf")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages.front().text.contains("outside the image"));
        QVERIFY(!action("Save")->isEnabled());
    }
};

QTEST_MAIN(TonesTabTest)
#include "tones_tab_test.moc"
