// The Bytes tab through the dialogs double: go to, find in hex and both text encodings,
// the owners' colours and names, "Show bytes" and "Show owner" both ways, typing in both
// columns of an "asf" image, and a "bin" image's edits leaving as one patch.
#include "app/list_cells.hpp"
#include "app/qt_files.hpp"
#include "app/window_fixture.hpp"

#include "app/main_window.hpp"
#include "bytes/ui/bytes_inspector.hpp"
#include "bytes/ui/bytes_tab.hpp"
#include "bytes/ui/bytes_view.hpp"
#include "image/patch_writer.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <sstream>

using zevran::app::Answer;
using zevran::app::Form1;
using zevran::bytes::BytesTab;
using zevran::bytes::BytesView;
using zevran::image::OwnerKind;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

// A 512-byte phone image, zero but for:
//   0x10 "Menu", 0x30 "Menu"
//   0x40 01 02 03 04     read by the inspector
//   0x60 D6 D0           中 in GBK
//   0x70 4E 2D           中 in handset codes
//   0x100 a SMAF tone    "MMMD" and a body of 100 bytes: 0x100..0x16B
QByteArray phoneImage()
{
    QByteArray image(0x200, '\0');
    const auto place = [&image](int offset, const QByteArray& bytes) { image.replace(offset, bytes.size(), bytes); };
    place(0x10, "Menu");
    place(0x30, "Menu");
    place(0x40, QByteArray("\x01\x02\x03\x04", 4));
    place(0x60, "\xD6\xD0");
    place(0x70, "\x4E\x2D");
    place(0x100, QByteArray("MMMD\x00\x00\x00\x64", 8));
    return image;
}

using Selection = std::pair<std::size_t, std::size_t>;

}  // namespace

class BytesTabTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    BytesTab* m_tab = nullptr;
    QTabWidget* m_tabs = nullptr;


    void open(const QString& name)
    {
        writeBytes(path(name), phoneImage());
        m_window->openPhoneFile(path(name));
    }

    // One found tone, one edit-list slot over the "Menu" at 0x10, and a picture of two
    // frames of 8 bytes at 0x80.
    void fillOwners()
    {
        auto* tones = m_window->findChild<zevran::tones::TonesTab*>();
        tones->GetTone_Click();
        auto* strings = m_window->findChild<zevran::strings::StringsTab*>();
        strings->searchText->setText("Menu");
        strings->searchSingleByteCodes->setChecked(true);
        strings->SeachString->click();
        strings->replacementText->setText("Mine");
        strings->Add2List->click();
        auto* pictures = m_window->findChild<zevran::pictures::PicturesTab*>();
        pictures->appendPictureRows({{"001", "pic", "0X00000080", "2", "8", "2*2", "16"}});
        m_tab->refreshOwners();
    }

    void find(const QString& text, int kind, bool forward = true)
    {
        m_tab->FindText->setText(text);
        m_tab->FindKind->setCurrentIndex(kind);
        (forward ? m_tab->FindNextButton : m_tab->FindPreviousButton)->click();
    }

    QAction* showBytesIn(const char* menu) const
    {
        return m_window->findChild<QMenu*>(menu)->findChild<QAction*>("ShowBytes");
    }

    const std::vector<std::uint8_t>& image() const { return m_window->imageState().FirmwareImage; }

private slots:
    void init()
    {
        startWindow();
        m_tab = m_window->findChild<BytesTab*>();
        m_tabs = m_window->findChild<QTabWidget*>("SSTab1");
    }
    void cleanup() { stopWindow(false); }

    void tabIsLastAndNamed()
    {
        QCOMPARE(m_tabs->indexOf(m_tab), 5);
        QCOMPARE(m_tabs->tabText(5), QString("Bytes"));
    }

    void goToMovesTheCursorAndTheInspectorReadsThere()
    {
        open("phone.bin");
        m_tab->GoToAddress->setText("0x40");
        m_tab->GoToButton->click();
        QCOMPARE(m_tab->view->cursor(), std::size_t{0x40});
        QCOMPARE(m_tab->BytesStatus->text(), QString("0x00000040"));
        const auto& numbers = m_tab->inspector->numbers;
        QCOMPARE(numbers[0][0]->text(), QString("1"));
        QCOMPARE(numbers[1][0]->text(), QString("513"));       // 02 01
        QCOMPARE(numbers[1][2]->text(), QString("258"));       // 01 02
        QCOMPARE(numbers[2][0]->text(), QString("67305985"));  // 04 03 02 01
        QCOMPARE(numbers[2][2]->text(), QString("16909060"));  // 01 02 03 04
        QCOMPARE(m_tab->inspector->pixelHex[0]->text(), QString("01"));
        QCOMPARE(m_tab->inspector->pixelHex[1]->text(), QString("010"));
        QCOMPARE(m_tab->inspector->pixelHex[2]->text(), QString("0201"));
        QCOMPARE(m_tab->inspector->pixelHex[3]->text(), QString("010203"));
        // 0x0201 at 16 bits: red 0, green 16 of 63, blue 1 of 31.
        QCOMPARE(m_tab->inspector->swatches[2]->palette().color(QPalette::Window), QColor(0, 65, 8));

        m_tab->GoToAddress->setText("200");
        m_tab->GoToButton->click();
        QCOMPARE(m_tab->view->cursor(), std::size_t{0x40});
        QCOMPARE(m_tab->BytesStatus->text(), QString("There is no such address in this image."));
    }

    void findWalksHexHitsBothWaysAndGoesRound()
    {
        open("phone.bin");
        find("4D 65 6E 75", 0);
        QCOMPARE(m_tab->view->selection(), Selection(0x10, 0x14));
        m_tab->findNext();
        QCOMPARE(m_tab->view->selection(), Selection(0x30, 0x34));
        m_tab->findNext();
        QCOMPARE(m_tab->view->selection(), Selection(0x10, 0x14));
        QCOMPARE(m_tab->BytesStatus->text(), QString("Found after going round the image's end."));
        m_tab->findPrevious();
        QCOMPARE(m_tab->view->selection(), Selection(0x30, 0x34));
        find("4D6", 0);
        QCOMPARE(m_tab->BytesStatus->text(), QString("Type hex digits in pairs, or a text the code page can hold."));
        find("FFFF", 0);
        QCOMPARE(m_tab->BytesStatus->text(), QString("Not found in the image."));
    }

    void findTextInEitherEncoding()
    {
        open("phone.bin");
        find(QString::fromUtf8("中"), 1);
        QCOMPARE(m_tab->view->selection(), Selection(0x60, 0x62));
        find(QString::fromUtf8("中"), 2);
        QCOMPARE(m_tab->view->selection(), Selection(0x70, 0x72));
    }

    void bytesAreColouredAndNamedByTheirOwners()
    {
        open("phone.bin");
        fillOwners();
        BytesView* view = m_tab->view;
        QCOMPARE(view->fillOf(0x100), BytesView::ownerColour(OwnerKind::Tone));
        QCOMPARE(view->fillOf(0x16B), BytesView::ownerColour(OwnerKind::Tone));
        QVERIFY(!view->fillOf(0x16C).isValid());
        QCOMPARE(view->fillOf(0x88), BytesView::ownerColour(OwnerKind::PictureFrame));
        QCOMPARE(view->fillOf(0x13), BytesView::ownerColour(OwnerKind::EditRow));
        QVERIFY(!view->fillOf(0x00).isValid());
        QCOMPARE(m_tab->ownerText(0x100), QString("tone 001"));
        QCOMPARE(m_tab->ownerText(0x88), QString("picture 001 frame 2"));
        QCOMPARE(m_tab->ownerText(0x10), QString("edit row 001"));
        QCOMPARE(m_tab->ownerText(0x00), QString());
        // Hovering the hex cell or the text cell of a byte names its owner.
        view->resize(900, 600);
        m_tab->GoToAddress->setText("100");
        m_tab->GoToButton->click();
        QCOMPARE(view->toolTipAt(view->cellRect(0x100, false).center()), QString("tone 001"));
        QCOMPARE(view->toolTipAt(view->cellRect(0x101, true).center()), QString("tone 001"));
    }

    void showBytesSelectsEachListsRow()
    {
        open("phone.bin");
        fillOwners();
        auto* tones = m_window->findChild<zevran::tones::TonesTab*>();
        setCurrentRow(tones->toneList, 0);
        showBytesIn("menufile1")->trigger();
        QCOMPARE(m_tabs->currentWidget(), m_tab);
        QCOMPARE(m_tab->view->selection(), Selection(0x100, 0x16C));
        auto* strings = m_window->findChild<zevran::strings::StringsTab*>();
        setCurrentRow(strings->editList, 0);
        showBytesIn("menufile4")->trigger();
        QCOMPARE(m_tab->view->selection(), Selection(0x10, 0x14));
        auto* pictures = m_window->findChild<zevran::pictures::PicturesTab*>();
        setCurrentRow(pictures->pictureList, 0);
        showBytesIn("menufile5")->trigger();
        QCOMPARE(m_tab->view->selection(), Selection(0x80, 0x90));
    }

    void showOwnerSelectsTheOwningRowOnItsTab()
    {
        open("phone.bin");
        fillOwners();
        auto* tones = m_window->findChild<zevran::tones::TonesTab*>();
        m_tab->view->setCursor(0x120);
        m_tab->ShowOwner->trigger();
        QCOMPARE(m_tabs->currentWidget(), tones);
        QCOMPARE(tones->toneList->currentIndex().row(), 0);
        auto* pictures = m_window->findChild<zevran::pictures::PicturesTab*>();
        pictures->appendPictureRows({{"002", "other", "0X000001C0", "1", "16", "4*2", "16"}});
        m_tab->refreshOwners();
        m_tab->view->setCursor(0x1C5);
        m_tab->ShowOwner->trigger();
        QCOMPARE(m_tabs->currentWidget(), pictures);
        QCOMPARE(pictures->pictureList->currentIndex().row(), 1);
        auto* strings = m_window->findChild<zevran::strings::StringsTab*>();
        m_tab->view->setCursor(0x12);
        m_tab->ShowOwner->trigger();
        QCOMPARE(m_tabs->currentWidget(), strings);
        QCOMPARE(strings->editList->currentIndex().row(), 0);
    }

    void typingOverwritesAnAsfImageInBothColumns()
    {
        open("phone.asf");
        BytesView* view = m_tab->view;
        view->setCursor(0x80);
        QTest::keyClicks(view, "aB");
        QCOMPARE(image()[0x80], std::uint8_t{0xAB});
        QCOMPARE(view->cursor(), std::size_t{0x81});
        QTest::keyClick(view, Qt::Key_Tab);
        QVERIFY(view->textColumnActive());
        QTest::keyClicks(view, "Hi");
        QCOMPARE(image()[0x81], std::uint8_t{'H'});
        QCOMPARE(image()[0x82], std::uint8_t{'i'});
        m_tab->TextEncodingBox->setCurrentIndex(1);
        // Typed through an input method, as a key event carrying the character.
        QKeyEvent wide(QEvent::KeyPress, 0, Qt::NoModifier, QString::fromUtf8("中"));
        QCoreApplication::sendEvent(view, &wide);
        QCOMPARE(image()[0x83], std::uint8_t{0x4E});
        QCOMPARE(image()[0x84], std::uint8_t{0x2D});
        QCOMPARE(image().size(), std::size_t{0x200});
        QCOMPARE(view->fillOf(0x80), BytesView::changedColour());
        QCOMPARE(m_tab->ownerText(0x84), QString("changed"));
        QVERIFY(m_window->findChild<QAction*>("Save")->isEnabled());
        QVERIFY(!m_window->findChild<QAction*>("menuwritepatch")->isEnabled());

        // Each byte typed is one undo step; the other tabs read the edited bytes.
        QAction* undo = m_window->findChild<QAction*>("menuundo");
        undo->trigger();
        QCOMPARE(image()[0x83], std::uint8_t{0x00});
        undo->trigger();
        undo->trigger();
        QCOMPARE(image()[0x80], std::uint8_t{0xAB});
        undo->trigger();
        QCOMPARE(image()[0x80], std::uint8_t{0x00});
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
        m_window->findChild<QAction*>("menuredo")->trigger();
        m_window->findChild<QAction*>("menuredo")->trigger();
        auto* strings = m_window->findChild<zevran::strings::StringsTab*>();
        strings->searchText->setText("H");
        strings->searchSingleByteCodes->setChecked(true);
        strings->SeachString->click();
        QCOMPARE(strings->foundStart->text(), QString("00000081"));

        QVERIFY(m_window->Saveaxf(false));
        QByteArray saved = phoneImage();
        saved[0x80] = '\xAB';
        saved[0x81] = 'H';
        QCOMPARE(readBytes(path("phone.asf")), saved);
    }

    void binEditsStayInMemoryAndLeaveAsOnePatch()
    {
        open("phone.bin");
        BytesView* view = m_tab->view;
        view->setCursor(0x20);
        QTest::keyClicks(view, "C3");
        view->setCursor(0x1FF);
        QTest::keyClicks(view, "7E");
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
        QVERIFY(!m_window->findChild<QAction*>("Save")->isEnabled());
        QVERIFY(m_window->isWindowModified());
        QAction* write = m_window->findChild<QAction*>("menuwritepatch");
        QVERIFY(write->isEnabled());
        // The view's pop-up menu offers the same patch; the byte it opens on has no owner.
        view->resize(900, 600);
        emit view->customContextMenuRequested(view->cellRect(0x1FF, false).center());
        QCOMPARE(view->cursor(), std::size_t{0x1FF});
        QVERIFY(m_tab->WriteChangesAsPatch->isEnabled());
        QVERIFY(!m_tab->ShowOwner->isEnabled());
        m_tab->viewMenu->hide();
        m_dialogs->files.push_back(path("edits.s3"));
        write->trigger();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
        QVERIFY(!write->isEnabled());
        QVERIFY(!m_window->isWindowModified());
        // Flashing the patch over the file as opened gives the edited image.
        const QByteArray opened = phoneImage();
        std::vector<std::uint8_t> flashed(opened.begin(), opened.end());
        std::istringstream patch(readBytes(path("edits.s3")).toStdString());
        zevran::image::applySRecordPatch(flashed, patch);
        QCOMPARE(flashed, image());
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
        QVERIFY(zevran::test::closeWindow(*m_window));
        QVERIFY(m_dialogs->asked.filter("question").isEmpty());
    }

    void closingWithUnwrittenBinEditsAsksFirst()
    {
        open("phone.bin");
        m_tab->view->setCursor(0x20);
        QTest::keyClicks(m_tab->view, "C3");
        m_dialogs->answers = {Answer::Cancel};
        QVERIFY(!zevran::test::closeWindow(*m_window));
        QCOMPARE(m_dialogs->asked.filter("question").size(), 1);
        QVERIFY(m_dialogs->asked.last().contains("not yet written as a patch"));
        // Yes writes the patch; a cancelled save dialog keeps the window open.
        m_dialogs->answers = {Answer::Yes};
        m_dialogs->files.push_back("");
        QVERIFY(!zevran::test::closeWindow(*m_window));
        m_dialogs->answers = {Answer::Yes};
        m_dialogs->files.push_back(path("close.s3"));
        QVERIFY(zevran::test::closeWindow(*m_window));
        QVERIFY(readBytes(path("close.s3")).contains("S30600000020C3"));
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    void openingAnotherFileWithUnwrittenBinEditsAsksFirst()
    {
        open("phone.bin");
        const QString first = path("phone.bin");
        m_tab->view->setCursor(0x20);
        QTest::keyClicks(m_tab->view, "C3");
        writeBytes(path("other.bin"), QByteArray(64, '\x11'));
        m_dialogs->asked.clear();
        m_dialogs->answers = {Answer::Cancel};
        m_window->openPhoneFile(path("other.bin"));
        QCOMPARE(m_dialogs->asked.filter("question").size(), 1);
        QVERIFY(m_dialogs->asked.last().contains("not yet written as a patch"));
        QCOMPARE(QString::fromStdString(m_window->imageState().FirmwarePath), first);
        QCOMPARE(m_window->imageState().FirmwareImage[0x20], std::uint8_t(0xC3));
        m_dialogs->answers = {Answer::No};
        m_window->openPhoneFile(path("other.bin"));
        QCOMPARE(QString::fromStdString(m_window->imageState().FirmwarePath), path("other.bin"));
        QCOMPARE(readBytes(first), phoneImage());
    }

    void closingAfterNoDropsTheBinEdits()
    {
        open("phone.bin");
        m_tab->view->setCursor(0x20);
        QTest::keyClicks(m_tab->view, "C3");
        m_dialogs->answers = {Answer::No};
        QVERIFY(zevran::test::closeWindow(*m_window));
        QVERIFY(m_dialogs->asked.filter("save").isEmpty());
        QCOMPARE(readBytes(path("phone.bin")), phoneImage());
    }

    void undoingPastASaveShowsTheBytesAsChanged()
    {
        open("phone.asf");
        m_tab->view->setCursor(0x40);
        QTest::keyClicks(m_tab->view, "FF");
        m_tab->view->setCursor(0);
        QCOMPARE(m_tab->view->fillOf(0x40), BytesView::changedColour());
        QVERIFY(m_window->Saveaxf(false));
        QVERIFY(!m_tab->view->fillOf(0x40).isValid());
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(image()[0x40], std::uint8_t{0x01});
        QCOMPARE(m_tab->view->fillOf(0x40), BytesView::changedColour());
        m_window->findChild<QAction*>("menuredo")->trigger();
        QVERIFY(!m_tab->view->fillOf(0x40).isValid());
    }

    void aLoneHexDigitIsWrittenWhenTheCursorLeavesItsByte()
    {
        open("phone.asf");
        BytesView* view = m_tab->view;
        view->setCursor(0x40);  // 01
        QTest::keyClick(view, Qt::Key_F);
        QCOMPARE(image()[0x40], std::uint8_t{0x01});
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(image()[0x40], std::uint8_t{0xF1});
        QCOMPARE(view->cursor(), std::size_t{0x41});
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(image()[0x40], std::uint8_t{0x01});
    }

    void keysGoToFindAndStepThroughHits()
    {
        open("phone.bin");
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_tabs->setCurrentWidget(m_tab);
        m_tab->view->setFocus();
        QTest::keyClick(m_tab->view, Qt::Key_G, Qt::ControlModifier);
        QVERIFY(m_tab->GoToAddress->hasFocus());
        QTest::keyClicks(m_tab->GoToAddress, "31");
        QTest::keyClick(m_tab->GoToAddress, Qt::Key_Return);
        QCOMPARE(m_tab->view->cursor(), std::size_t{0x31});
        QTest::keyClick(m_tab->view, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(m_tab->FindText->hasFocus());
        m_tab->FindKind->setCurrentIndex(1);
        QTest::keyClicks(m_tab->FindText, "Menu");
        QTest::keyClick(m_tab->FindText, Qt::Key_Return);
        QCOMPARE(m_tab->view->selection(), Selection(0x10, 0x14));
        QTest::keyClick(m_tab->view, Qt::Key_F3);
        QCOMPARE(m_tab->view->selection(), Selection(0x30, 0x34));
        QTest::keyClick(m_tab->view, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(m_tab->view->selection(), Selection(0x10, 0x14));
        // The arrows move the cursor; Shift with them selects.
        m_tab->view->setCursor(0x20);
        QTest::keyClick(m_tab->view, Qt::Key_Down);
        QTest::keyClick(m_tab->view, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(m_tab->view->cursor(), std::size_t{0x31});
        QCOMPARE(m_tab->view->selection(), Selection(0x30, 0x32));
    }

    void anImageOfNoKnownKindTakesNoEdits()
    {
        open("phone.dat");
        m_tab->view->setCursor(0x20);
        QTest::keyClicks(m_tab->view, "C3");
        QCOMPARE(image()[0x20], std::uint8_t{0x00});
    }
};

QTEST_MAIN(BytesTabTest)
#include "bytes_tab_test.moc"
