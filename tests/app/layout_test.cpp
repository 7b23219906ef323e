// The window's layout: boxes wide enough for their text, the status bar's lines and
// tone details, splitters remembered between runs, the folder tree at the remembered
// folder, whole cells in tooltips, and the extension a save dialog adds.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/list_cells.hpp"
#include "app/main_window.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"
#include "window/row_table_model.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileSystemModel>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

using zevran::app::Form1;
using zevran::test::closeWindow;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// A "bin" phone file holding one 256-byte tone at 0x100.
QByteArray phoneImage()
{
    QByteArray image(0x800, '\x11');
    image.replace(0x100, 8, QByteArray("MMMD\x00\x00\x00\xF8", 8));
    return image;
}

// Whether the box shows `text` whole: its width holds the text in its font, plus the
// frame and the two pixels QLineEdit keeps on each side of its text.
bool showsWhole(const QLineEdit* box, const QString& text)
{
    const int frame = box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, box);
    return box->width() >= box->fontMetrics().horizontalAdvance(text) + 2 * frame + 4;
}

}  // namespace

class LayoutTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    std::unique_ptr<Form1> startWindowOnPhoneFile()
    {
        writeBytes(path("phone.bin"), phoneImage());
        auto window = startedWindow();
        window->openPhoneFile(path("phone.bin"));
        return window;
    }

private slots:
    void cleanup()
    {
        QDir(m_home.path()).removeRecursively();
        QDir().mkpath(m_home.path());
    }

    void addressOffsetBoxShowsAWholeAddressInASqueezedWindow()
    {
        auto window = startWindowOnPhoneFile();
        window->findChild<QTabWidget*>("SSTab1")->setCurrentIndex(2);
        window->resize(200, 200);  // as narrow as the layouts allow
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        auto* tab = window->findChild<zevran::pictures::PicturesTab*>();
        tab->saveAddressOffset->setText("1000");
        QVERIFY(showsWhole(tab->saveAddressOffset, "1000"));
        QVERIFY(showsWhole(tab->saveAddressOffset, "FFFFFFFF"));
        QVERIFY(showsWhole(tab->frameAddressBox, "0xFFFFFFFF"));
    }

    void statusBarPanelsHaveSeparatorLines()
    {
        auto window = startedWindow();
        for (const char* name : {"StatusBar1Line2", "StatusBar1Line3", "StatusBar1Line5", "StatusBar1Line7"}) {
            auto* line = window->findChild<QFrame*>(name);
            QVERIFY2(line, name);
            QCOMPARE(line->frameShape(), QFrame::VLine);
        }
    }

    void toneDetailsShowOnTheRingToneTabOnly()
    {
        auto window = startWindowOnPhoneFile();
        auto* tabs = window->findChild<QTabWidget*>("SSTab1");
        auto* details = window->findChild<QLabel*>("StatusBar1Panel2");
        auto* line = window->findChild<QFrame*>("StatusBar1Line2");
        QVERIFY(!details->isHidden());
        tabs->setCurrentIndex(3);
        QVERIFY(details->isHidden());
        QVERIFY(line->isHidden());
        tabs->setCurrentIndex(1);
        QVERIFY(details->isHidden());
        tabs->setCurrentIndex(0);
        QVERIFY(!details->isHidden());
        QVERIFY(!line->isHidden());
        QVERIFY(!window->findChild<QLabel*>("StatusBar1Panel4")->isHidden());
    }

    void splitterSizesAreThereNextTime()
    {
        QList<int> across;
        QList<int> down;
        {
            auto window = startedWindow();
            // As large as the screen, which a remembered size never exceeds.
            const QSize room = window->screen()->availableGeometry().size();
            window->resize(room);
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window.get()));
            auto* panes = window->findChild<QSplitter*>("TonesSplitter");
            auto* right = window->findChild<QSplitter*>("TonesRightSplitter");
            panes->setSizes({room.width() / 3, room.width() * 2 / 3});
            right->setSizes({room.height() * 3 / 4, room.height() / 4});
            across = panes->sizes();
            down = right->sizes();
            QCOMPARE(across.size(), 2);
            QVERIFY(across[0] < across[1]);
            QVERIFY(down[0] > down[1]);
            QVERIFY(closeWindow(*window));
        }
        const QByteArray settings = readBytes(path("zevran.ini"));
        for (const char* key :
             {"\r\nTonesSplitter=", "\r\nTonesRightSplitter=", "\r\nTonesFolderSplitter=", "\r\nPicturesSplitter="})
            QVERIFY2(settings.contains(key), key);
        auto window = startedWindow();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCOMPARE(window->findChild<QSplitter*>("TonesSplitter")->sizes(), across);
        QCOMPARE(window->findChild<QSplitter*>("TonesRightSplitter")->sizes(), down);
    }

    void folderTreeOpensAtAndShowsTheRememberedFolder()
    {
        const QString folder = path("tones/deep/er/still");
        QVERIFY(QDir().mkpath(folder));
        for (int i = 0; i < 40; ++i) QDir().mkpath(path("tones/deep/a%1").arg(i, 2, 10, QChar('0')));
        writeBytes(path("zevran.ini"), "[File Path]\r\nmmf File Path=" + folder.toUtf8() + "\r\n");
        auto window = startedWindow();
        auto* tab = window->findChild<zevran::tones::TonesTab*>();
        QCOMPARE(tab->folders->filePath(tab->ET1->currentIndex()), folder);
        QCOMPARE(tab->currentFolder(), folder);
        window->resize(900, 600);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        for (QModelIndex parent = tab->ET1->currentIndex().parent(); parent.isValid(); parent = parent.parent())
            QVERIFY2(tab->ET1->isExpanded(parent), qPrintable(tab->folders->filePath(parent)));
        // Its parents' rows arrive as they are read; the folder ends in view.
        QTRY_VERIFY(tab->ET1->viewport()->rect().contains(tab->ET1->visualRect(tab->ET1->currentIndex())));
    }

    void folderTreeShownScrollsToAFolderItIsGiven()
    {
        const QString folder = path("tones/deep/er/still");
        QVERIFY(QDir().mkpath(folder));
        for (int i = 0; i < 40; ++i) QDir().mkpath(path("tones/deep/a%1").arg(i, 2, 10, QChar('0')));
        auto window = startedWindow();
        window->resize(900, 600);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        auto* tab = window->findChild<zevran::tones::TonesTab*>();
        tab->setCurrentFolder(folder);
        QCOMPARE(tab->currentFolder(), folder);
        // Its parents' rows arrive as they are read; the folder ends in view.
        QTRY_VERIFY(tab->ET1->viewport()->rect().contains(tab->ET1->visualRect(tab->ET1->currentIndex())));
        for (QModelIndex parent = tab->ET1->currentIndex().parent(); parent.isValid(); parent = parent.parent())
            QVERIFY2(tab->ET1->isExpanded(parent), qPrintable(tab->folders->filePath(parent)));
    }

    void planCellsShowWholeInTheirToolTips()
    {
        auto window = startWindowOnPhoneFile();
        auto* tab = window->findChild<zevran::tones::TonesTab*>();
        tab->GetTone_Click();
        QCOMPARE(rowCount(tab->toneList), 1);
        setCellText(tab->toneList, 0, 4, "a rather long note about the ring tone");
        selectRow(tab->toneList, 0);
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/a ring tone with a long name.mmf"), QByteArray(200, 'N'));
        tab->showToneFiles(path("tones"));
        selectRow(tab->toneFileList, 0);
        tab->addmmf_Click();
        tab->addaddress_Click();
        QCOMPARE(cellToolTip(tab->toneList, 0, 4), QString("a rather long note about the ring tone"));
        QCOMPARE(cellToolTip(tab->planList, 0, 2),
                 QString("001 0x00000100 - 0x000001FF 256 a rather long note about the ring tone"));
        QCOMPARE(cellToolTip(tab->planList, 0, 1), cellText(tab->planList, 0, 1));
        QVERIFY(cellToolTip(tab->planList, 0, 1).startsWith("a ring tone with a long name.mmf 200 "));
        selectRow(tab->planList, 0);
        tab->moveallmmf_Click();
        QCOMPARE(cellToolTip(tab->planList, 0, 1), QString());
        QCOMPARE(cellToolTip(tab->planList, 0, 2), cellText(tab->planList, 0, 2));
    }

    void editListTextShowsWholeInItsToolTip()
    {
        QByteArray image = phoneImage();
        image.replace(0x400, 42, QByteArray("an old label text, longer than its column\0", 42));
        writeBytes(path("phone.bin"), image);
        auto window = startedWindow();
        window->openPhoneFile(path("phone.bin"));
        auto* tab = window->findChild<zevran::strings::StringsTab*>();
        tab->searchText->setText("an old label");
        tab->searchSingleByteCodes->setChecked(true);
        tab->SeachString->click();
        tab->replacementText->setText("a replacement text longer than its column");
        tab->Add2List->click();
        QCOMPARE(cellToolTip(tab->editList, 0, 3), QString("a replacement text longer than its column"));
        using EditRows = zevran::window::RowTableModel<zevran::strings::StringEditRow>;
        auto* rows = dynamic_cast<EditRows*>(tab->editList->model());
        QVERIFY(rows);
        zevran::strings::StringEditRow changed = rows->row(0);
        changed.text = "short";
        rows->replaceRow(0, changed);
        QCOMPARE(cellToolTip(tab->editList, 0, 3), QString("short"));
    }

    void tonePatchNamedWithoutExtensionIsWrittenAsS3()
    {
        // The shipped English texts give the S-record filter, preselected as filter 2.
        QDir().mkpath(path("language"));
        QVERIFY(QFile::copy(ZEVRAN_DATA_DIR "/language/English.ini", path("language/English.ini")));
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        auto window = startWindowOnPhoneFile();
        auto* tab = window->findChild<zevran::tones::TonesTab*>();
        tab->GetTone_Click();
        selectRow(tab->toneList, 0);
        QDir().mkpath(path("tones"));
        writeBytes(path("tones/new.mmf"), QByteArray(200, 'N'));
        tab->showToneFiles(path("tones"));
        selectRow(tab->toneFileList, 0);
        tab->addmmf_Click();
        tab->addaddress_Click();
        setCheckState(tab->planList, 0, 0, Qt::Checked);
        m_dialogs->files = {path("tonepatch")};
        window->findChild<QAction*>("outputs3")->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QVERIFY(!QFile::exists(path("tonepatch")));
        QVERIFY(readBytes(path("tonepatch.s3")).startsWith("S00600004844521B\r\n"));
    }

    void savedNameWithAnExtensionOrAnyFileFilterIsKept()
    {
        QCOMPARE(zevran::app::withFilterExtension("/tmp/x.bin", "S-record files (*.s3 *.sre)"), QString("/tmp/x.bin"));
        QCOMPARE(zevran::app::withFilterExtension("/tmp/tonepatch", "S-record files (*.s3 *.sre)"),
                 QString("/tmp/tonepatch.s3"));
        QCOMPARE(zevran::app::withFilterExtension("/tmp/tonepatch", "All files (*)"), QString("/tmp/tonepatch"));
    }
};

QTEST_MAIN(LayoutTest)
#include "layout_test.moc"
