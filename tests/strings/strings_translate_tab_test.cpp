// The strings tab's translation frame through the dialogs double: "Export all
// strings...", "Import translation..." filling the edit list and the list of entries
// that do not fit, the report, and the outputs of imported rows with undo.
#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "strings/ui/strings_tab.hpp"

#include <QTreeView>
#include <QAction>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QDir>
#include <QFile>

using zevran::app::Form1;
using zevran::app::MessageKind;
using zevran::strings::StringsTab;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// A string table: "Menu" 0x10, "Settings" 0x15, "Back" 0x1E in single-byte codes;
// "OK" 0x24 (A1 4F A1 4B) and 设置 0x29 (8B BE 7F 6E) in handset codes.
QByteArray phoneImage()
{
    QByteArray image(0x40, '\xFF');
    image.replace(0x10, 0x1E, QByteArray("Menu\0Settings\0Back\0\0\xA1\x4F\xA1\x4B\0\x8B\xBE\x7F\x6E\0", 0x1E));
    return image;
}

std::vector<std::uint8_t> bytesOf(const QByteArray& bytes) { return {bytes.begin(), bytes.end()}; }

const QString kTranslation = QString::fromUtf8("address,encoding,source,target\r\n"
                                               "0x00000010,single,Menu,菜单\r\n"
                                               "0x00000015,single,Settings,Settings++\r\n"
                                               "0x0000001E,single,Back,\r\n"
                                               "0x00000024,handset,OK,是\r\n");

}  // namespace

class StringsTranslateTabTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    StringsTab* m_tab = nullptr;


    void open(const QString& name)
    {
        writeBytes(path(name), phoneImage());
        m_window->openPhoneFile(path(name));
    }

    void importTranslation(const QString& text = kTranslation)
    {
        writeBytes(path("zh.csv"), text.toUtf8());
        m_dialogs->files.push_back(path("zh.csv"));
        m_tab->ImportTranslation->click();
    }

    QStringList cells(const QAbstractItemView* list, int index, int columns) const
    {
        QStringList shown;
        if (index >= rowCount(list)) return {"no row", QString::number(index)};
        for (int column = 0; column < columns; ++column) shown << cellText(list, index, column);
        return shown;
    }

    QAction* action(const char* name) const
    {
        return m_window->findChild<QMenu*>("menufile4")->findChild<QAction*>(name);
    }

private slots:
    void init()
    {
        startWindow();
        m_tab = m_window->findChild<StringsTab*>();
    }
    void cleanup() { stopWindow(); }

    void exportWritesEveryStringInTheChosenFormat()
    {
        open("phone.bin");
        m_dialogs->files.push_back(path("menu.po"));
        m_tab->ExportStrings->click();
        QCOMPARE(m_dialogs->asked.size(), 1);
        QVERIFY(m_dialogs->asked[0].endsWith("|PO files (*.po);;XLIFF files (*.xlf *.xliff);;CSV files (*.csv)|1"));
        const QByteArray po = readBytes(path("menu.po"));
        QVERIFY(po.contains("#. budget 8 bytes\nmsgctxt \"0x00000015 single\"\nmsgid \"Settings\"\nmsgstr \"\"\n"));
        QVERIFY(po.contains(QString::fromUtf8("msgctxt \"0x00000029 handset\"\nmsgid \"设置\"").toUtf8()));
        QCOMPARE(m_dialogs->messages.size(), size_t{1});
        QCOMPARE(m_dialogs->messages[0].kind, MessageKind::Information);
        QCOMPARE(m_dialogs->messages[0].text, "5 strings were written to " + path("menu.po") + ".");
        QVERIFY(m_tab->ExportStrings->isEnabled());
        QVERIFY(m_tab->ExportProgress->isHidden());
        QVERIFY(m_tab->StopExport->isHidden());
    }

    void exportToCsvAndCancelledExport()
    {
        open("phone.bin");
        m_dialogs->files.push_back("");
        m_tab->ExportStrings->click();
        QVERIFY(m_dialogs->messages.empty());
        m_dialogs->files.push_back(path("menu.csv"));
        m_tab->ExportStrings->click();
        QCOMPARE(readBytes(path("menu.csv")), QByteArray("address,encoding,budget,source,target\r\n"
                                                         "0x00000010,single,4,Menu,\r\n"
                                                         "0x00000015,single,8,Settings,\r\n"
                                                         "0x0000001E,single,4,Back,\r\n"
                                                         "0x00000024,handset,4,OK,\r\n") +
                                                  QString::fromUtf8("0x00000029,handset,4,设置,\r\n").toUtf8());
    }

    void stopDuringALongExportWritesNothing()
    {
        // 3 MiB: the finder reports its progress every MiB, and pending events run then.
        QByteArray image = phoneImage();
        image.append(QByteArray(3 << 20, 'A'));
        writeBytes(path("large.bin"), image);
        m_window->openPhoneFile(path("large.bin"));
        m_dialogs->files.push_back(path("large.po"));
        bool barShown = false;
        QTimer::singleShot(0, this, [this, &barShown] {
            barShown = m_tab->ExportProgress->isVisibleTo(m_tab) && m_tab->StopExport->isVisibleTo(m_tab) &&
                       !m_tab->ExportStrings->isEnabled() && !m_tab->ImportTranslation->isEnabled();
            m_tab->StopExport->click();
        });
        m_tab->ExportStrings->click();
        QVERIFY(barShown);
        QVERIFY(!QFile::exists(path("large.po")));
        QCOMPARE(m_dialogs->messages.back().text, QString("The export was stopped; nothing was written."));
        QVERIFY(m_tab->ExportProgress->isHidden());
        QVERIFY(m_tab->ExportStrings->isEnabled());
        QVERIFY(m_tab->ImportTranslation->isEnabled());
    }

    void importAddsACheckedRowPerFittingEntryAndListsTheRest()
    {
        open("phone.bin");
        importTranslation();
        QCOMPARE(rowCount(m_tab->editList), 2);
        QCOMPARE(cells(m_tab->editList, 0, 5),
                 QStringList({"01", "00000010", "00000013", QString::fromUtf8("菜单"), "4"}));
        QCOMPARE(cells(m_tab->editList, 1, 5),
                 QStringList({"02", "00000024", "00000027", QString::fromUtf8("是 "), "2"}));
        QCOMPARE(checkState(m_tab->editList, 1, 0), Qt::Checked);
        QCOMPARE(rowCount(m_tab->refusedList), 1);
        QCOMPARE(cells(m_tab->refusedList, 0, 4),
                 QStringList({"0x00000015 single", "Settings", "Settings++", "over budget by 2 bytes"}));
        QCOMPARE(m_dialogs->messages.back().text,
                 "2 translations fit and were added to the edit list; 1 do not fit and are listed under it; "
                 "1 entries are untranslated.");
        QVERIFY(m_tab->SaveReport->isEnabled());
        QVERIFY(action("outputStrS3")->isEnabled());
    }

    void importedRowsAreWrittenInTheirOwnEncodingsAndUndone()
    {
        open("phone.asf");
        importTranslation();
        // The list is written in single-byte codes; the handset row keeps its own.
        m_tab->writeSingleByteCodes->setChecked(true);
        action("outputStraxf")->trigger();
        QByteArray expected = phoneImage();
        expected.replace(0x10, 4, "\xB2\xCB\xB5\xA5");
        expected.replace(0x24, 4, "\x66\x2F\xA1\x20");
        QCOMPARE(m_window->imageState().FirmwareImage, bytesOf(expected));
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(m_window->imageState().FirmwareImage, bytesOf(phoneImage()));
    }

    void importedRowsLeaveAsOneSRecordPatch()
    {
        open("phone.bin");
        importTranslation();
        m_dialogs->files.push_back(path("zh.s3"));
        action("outputStrS3")->trigger();
        // 09 + 10 + B2 CB B5 A5 = 2F0 -> 0F; 09 + 24 + 66 2F A1 20 = 183 -> 7C.
        QCOMPARE(readBytes(path("zh.s3")), QByteArray("S00600004844521B\r\n"
                                                      "S30900000010B2CBB5A50F\r\n"
                                                      "S30900000024662FA1207C\r\n"
                                                      "S705A002000058\r\n"));
    }

    void reportIsSavedAsCsv()
    {
        open("phone.bin");
        importTranslation();
        m_dialogs->files.push_back(path("report.csv"));
        m_tab->SaveReport->click();
        QCOMPARE(QString::fromUtf8(readBytes(path("report.csv"))),
                 QString::fromUtf8("address,encoding,source,translation,outcome\r\n"
                                   "0x00000010,single,Menu,菜单,fits\r\n"
                                   "0x00000015,single,Settings,Settings++,over budget by 2 bytes\r\n"
                                   "0x00000024,handset,OK,是,fits\r\n"));
        QCOMPARE(m_dialogs->messages.back().text, "The report was written to " + path("report.csv") + ".");
    }

    void everyOutcomeIsShownInTheRefusedList()
    {
        open("phone.bin");
        importTranslation(QString::fromUtf8("address,encoding,source,target\r\n"
                                            "0x00000024,handset,OK,\xEA\x84\xA3\r\n"
                                            "0x0000001E,single,Bock,Zurueck\r\n"
                                            "0x00100000,single,Far,Near\r\n"));
        QCOMPARE(rowCount(m_tab->editList), 0);
        QCOMPARE(cells(m_tab->refusedList, 0, 4).last(), "character U+A123 not encodable");
        QCOMPARE(cells(m_tab->refusedList, 1, 4).last(), "stored text changed");
        QCOMPARE(cells(m_tab->refusedList, 2, 4).last(), "address outside the image");
    }

    void refusedCellsShowWholeAndFollowTheLanguage()
    {
        // Both shipped languages in the folder, English chosen; the next test starts on an empty folder.
        stopWindow();
        QDir().mkpath(path("language"));
        QVERIFY(QFile::copy(ZEVRAN_DATA_DIR "/language/ChineseS.ini", path("language/ChineseS.ini")));
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        startWindow();
        m_tab = m_window->findChild<StringsTab*>();
        open("phone.bin");
        importTranslation();
        QCOMPARE(headerText(m_tab->refusedList, 0), QString("Address"));
        QCOMPARE(headerText(m_tab->refusedList, 3), QString("Outcome"));
        QCOMPARE(cellToolTip(m_tab->refusedList, 0, 0), QString());
        QCOMPARE(cellToolTip(m_tab->refusedList, 0, 1), QString("Settings"));
        QCOMPARE(cellToolTip(m_tab->refusedList, 0, 2), QString("Settings++"));
        QCOMPARE(cellToolTip(m_tab->refusedList, 0, 3), QString("over budget by 2 bytes"));
        QCOMPARE(cellToolTip(m_tab->editList, 0, 3), QString::fromUtf8("菜单"));
        QCOMPARE(cellToolTip(m_tab->editList, 0, 1), QString());
        for (QAction* item : m_window->findChildren<QAction*>("languagNum"))
            if (item->text() == "ChineseS") item->trigger();
        QCOMPARE(headerText(m_tab->refusedList, 0), QString::fromUtf8("地址"));
        QCOMPARE(headerText(m_tab->refusedList, 3), QString::fromUtf8("结果"));
        QCOMPARE(headerText(m_tab->editList, 3), QString::fromUtf8("替换文字"));
        QCOMPARE(cells(m_tab->refusedList, 0, 4),
                 QStringList({"0x00000015 single", "Settings", "Settings++", QString::fromUtf8("超出长度 2 字节")}));
        QCOMPARE(cellToolTip(m_tab->refusedList, 0, 3), QString::fromUtf8("超出长度 2 字节"));
    }

    void brokenTranslationFileIsNamedWithItsLine()
    {
        open("phone.bin");
        importTranslation("address,encoding,source,target\r\n0x10,single,Menu,X\r\n");
        QCOMPARE(m_dialogs->messages.size(), size_t{1});
        QCOMPARE(m_dialogs->messages[0].text,
                 path("zh.csv") +
                     ", line 2: \"0x10 single\" is no entry key (\"0x\", eight hex digits, then single or handset)");
        QCOMPARE(rowCount(m_tab->editList), 0);
    }
};

QTEST_MAIN(StringsTranslateTabTest)
#include "strings_translate_tab_test.moc"
