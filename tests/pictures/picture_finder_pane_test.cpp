// The picture finder window on the picture tab's synthetic phone image: opened from
// the tab and from a row, its view against the preview, its moves by buttons and
// keys, the pointer's address, a click, the width guess and "Add to table".
#include "pictures_tab_fixture.hpp"

#include "pictures/ui/picture_finder_pane.hpp"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QMouseEvent>

namespace zevran::test {

using pictures::FinderMove;
using pictures::PictureFinderPane;

class PictureFinderPaneTest : public PicturesTabFixture {
    Q_OBJECT

    // The finder opened from the tab's button, its view 300 x 100 screen pixels.
    PictureFinderPane* openFinder()
    {
        auto* button = m_tab->findChild<QPushButton*>("FindPictures");
        if (!button) return nullptr;
        button->click();
        auto* finder = m_window->findChild<PictureFinderPane*>();
        if (finder) finder->canvas->setFixedSize(300, 100);
        return finder;
    }

    // The screen row's place, size and depth typed in: 0x200, 16 bits, 96 * 64, zoom 2.
    PictureFinderPane* finderOnScreen()
    {
        PictureFinderPane* finder = openFinder();
        if (!finder) return nullptr;
        finder->depthBox->setCurrentIndex(finder->depthBox->findData(16));
        finder->widthBox->setValue(96);
        finder->heightBox->setValue(64);
        finder->zoomBox->setValue(2);
        finder->addressEdit->setText("0x200");
        QTest::keyClick(finder->addressEdit, Qt::Key_Return);
        return finder;
    }

private slots:
    void init() { resetHome(); }

    void findPicturesOpensTheFinderWithoutATable()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = openFinder();
        QVERIFY(finder);
        QVERIFY(finder->isVisible());
        QCOMPARE(finder->address(), 0);
        QCOMPARE(rowCount(m_tab->pictureList), 0);
    }

    void showInFinderTakesTheSelectedRowsPlaceSizeAndDepth()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Screen);
        QAction* show = m_window->findChild<QAction*>("ShowInFinder");
        QVERIFY(show);
        choose(show);
        auto* finder = m_window->findChild<PictureFinderPane*>();
        QVERIFY(finder && finder->isVisible());
        QCOMPARE(finder->address(), 0x200);
        QCOMPARE(finder->depthBox->currentData().toInt(), 16);
        QCOMPARE(finder->widthBox->value(), 96);
        QCOMPARE(finder->heightBox->value(), 64);
        QCOMPARE(finder->framesBox->value(), 1);
        QCOMPARE(finder->addressEdit->text(), QString("00000200"));
    }

    void viewShowsTheRowAsThePreviewShowsIt()
    {
        startWindow("phone.bin");
        openTable(kTable);
        for (Row r : {Screen, Mono, Pal, D8, D12}) {
            clickRow(r);
            choose(m_window->findChild<QAction*>("ShowInFinder"));
            auto* finder = m_window->findChild<PictureFinderPane*>();
            const QImage preview = m_tab->previewPicture->pixmap().toImage();
            const int zoom = m_tab->previewZoom();
            const QImage view = finder->canvas->picture();
            const int width = preview.width() / zoom, height = preview.height() / zoom;
            QVERIFY(view.width() >= width);
            QVERIFY(view.height() >= std::min(height, view.height()));
            for (int y = 0; y < std::min(height, view.height()); ++y)
                for (int x = 0; x < width; ++x)
                    QCOMPARE(view.pixel(x, y) & 0xFFFFFF, preview.pixel(x * zoom, y * zoom) & 0xFFFFFF);
        }
    }

    void buttonsMoveByAByteAPixelARowAFrameAndAPageBothWays()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        QCOMPARE(finder->view().rows, 50);                       // 100 screen pixels at zoom 2
        const std::int64_t steps[5] = {1, 2, 192, 12288, 9600};  // byte, pixel, row (96 * 2), frame, page
        for (int i = 0; i < 5; ++i) {
            finder->forwardButtons[static_cast<std::size_t>(i)]->click();
            QCOMPARE(finder->address(), 0x200 + steps[i]);
            finder->backButtons[static_cast<std::size_t>(i)]->click();
            QCOMPARE(finder->address(), 0x200);
        }
        // Never before the image's first byte nor past its last.
        finder->backButtons[4]->click();
        QCOMPARE(finder->address(), 0);
        finder->addressEdit->setText("3FF0");
        QTest::keyClick(finder->addressEdit, Qt::Key_Return);
        finder->forwardButtons[4]->click();
        QCOMPARE(finder->address(), 0x3FFF);
    }

    void keysMoveAsTheButtonsDo()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        const struct {
            Qt::Key forward, back;
            Qt::KeyboardModifiers modifiers;
            std::int64_t step;
        } keys[] = {{Qt::Key_Right, Qt::Key_Left, Qt::ControlModifier, 1},
                    {Qt::Key_Right, Qt::Key_Left, {}, 2},
                    {Qt::Key_Down, Qt::Key_Up, {}, 192},
                    {Qt::Key_Down, Qt::Key_Up, Qt::ControlModifier, 12288},
                    {Qt::Key_PageDown, Qt::Key_PageUp, {}, 9600}};
        for (const auto& k : keys) {
            QTest::keyClick(finder->canvas, k.forward, k.modifiers);
            QCOMPARE(finder->address(), 0x200 + k.step);
            QTest::keyClick(finder->canvas, k.back, k.modifiers);
            QCOMPARE(finder->address(), 0x200);
        }
    }

    void pointerShowsItsAddressAndAClickMakesItTheStart()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        // Pixel (5, 3) at zoom 2: 0x200 + (3 * 96 + 5) * 2 = 0x44A.
        QMouseEvent move(QEvent::MouseMove, QPointF(11, 7), finder->canvas->mapToGlobal(QPointF(11, 7)), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(finder->canvas, &move);
        QVERIFY2(finder->statusLine->text().endsWith("0x0000044A"), qPrintable(finder->statusLine->text()));
        QTest::mouseClick(finder->canvas, Qt::LeftButton, {}, QPoint(11, 7));
        QCOMPARE(finder->address(), 0x44A);
        QCOMPARE(finder->addressEdit->text(), QString("0000044A"));
    }

    void badAddressIsRefusedAndTheOldOneKept()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        finder->addressEdit->setText("12G4");
        QTest::keyClick(finder->addressEdit, Qt::Key_Return);
        QCOMPARE(finder->address(), 0x200);
        QCOMPARE(finder->addressEdit->text(), QString("00000200"));
        QVERIFY2(finder->statusLine->text().endsWith("12G4"), qPrintable(finder->statusLine->text()));
    }

    void guessAppliesTheBestWidthAndListsTheNextOnes()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        finder->widthBox->setValue(50);
        finder->guessButton->click();
        QCOMPARE(finder->widthBox->value(), 96);
        // The screen's rows below its first are alike: two and three rows down come next.
        QCOMPARE(finder->nextWidths->count(), 4);
        QCOMPARE(finder->nextWidths->item(0)->data(Qt::UserRole).toInt(), 192);
        QCOMPARE(finder->nextWidths->item(1)->data(Qt::UserRole).toInt(), 288);
        QTest::mouseClick(finder->nextWidths->viewport(), Qt::LeftButton, {},
                          finder->nextWidths->visualItemRect(finder->nextWidths->item(0)).center());
        QCOMPARE(finder->widthBox->value(), 192);
    }

    void guessOnMonoDisplayMemoryIsRefused()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        finder->depthBox->setCurrentIndex(finder->depthBox->findData(1));
        finder->guessButton->click();
        QCOMPARE(finder->nextWidths->count(), 0);
        QVERIFY(!finder->statusLine->text().isEmpty());
    }

    void addToTableAppendsARowNumberedAfterTheLastThatPreviewsAsTheOriginal()
    {
        startWindow("phone.bin");
        openTable(kTable);
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        finder->nameEdit->setText("found_screen");
        finder->addButton->click();
        QCOMPARE(rowCount(m_tab->pictureList), 9);
        QCOMPARE(rowTexts(m_tab->pictureList, 8),
                 (QStringList{"009", "found_screen", "0X00000200", "1", "12288", "96*64", "16"}));
        clickRow(Screen);
        const QImage original = m_tab->previewPicture->pixmap().toImage();
        clickRow(8);
        QCOMPARE(m_tab->previewPicture->pixmap().toImage(), original);
    }

    void addToTableWithoutATableStartsAtRowOne()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        finder->depthBox->setCurrentIndex(finder->depthBox->findData(1));
        finder->addressEdit->setText("3200");
        QTest::keyClick(finder->addressEdit, Qt::Key_Return);
        finder->framesBox->setValue(2);
        finder->nameEdit->setText("mono");
        finder->addButton->click();
        QCOMPARE(rowCount(m_tab->pictureList), 1);
        QCOMPARE(rowTexts(m_tab->pictureList, 0), (QStringList{"001", "mono", "0X00003200", "2", "768", "64*96", "1"}));
    }

    void captionsComeFromTheWorkshopTexts()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = openFinder();
        QVERIFY(finder);
        // The test's language file lacks the keys: the shipped English ones stand in.
        QCOMPARE(m_tab->FindPictures->text(), QString("Find pictures"));
        QCOMPARE(m_tab->ShowInFinder->text(), QString("Show in finder"));
        QCOMPARE(finder->windowTitle(), QString("Picture finder"));
        QCOMPARE(finder->guessButton->text(), QString("Guess width"));
        QCOMPARE(finder->addButton->text(), QString("Add to table"));
        QCOMPARE(finder->forwardButtons[0]->text(), QString("Byte >"));
        QCOMPARE(finder->backButtons[4]->text(), QString("< Page"));
    }

    void bothShippedLanguagesHaveEveryFinderText()
    {
        const QStringList keys = {"FindPictures",     "ShowInFinder",  "FinderTitle",          "FinderAddress",
                                  "FinderDepth",      "FinderWidth",   "FinderHeight",         "FinderFrames",
                                  "FinderZoom",       "FinderByte",    "FinderPixel",          "FinderRow",
                                  "FinderFrame",      "FinderPage",    "FinderPointer",        "FinderGuessWidth",
                                  "FinderGuessed",    "FinderNoWidth", "FinderMonoHasNoWidth", "FinderName",
                                  "FinderAddToTable", "FinderBadName", "FinderAdded",          "FinderBadAddress"};
        for (const char* language : {"English", "ChineseS"}) {
            QFile file(QString(ZEVRAN_DATA_DIR "/language/%1.ini").arg(language));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll());
            const QString section = text.mid(text.indexOf("[Zevran]"));
            for (const QString& key : keys) {
                const qsizetype at = section.indexOf("\r\n" + key + "=");
                QVERIFY2(at >= 0, qPrintable(QString(language) + " lacks " + key));
                const qsizetype valueAt = at + 3 + key.size();
                QVERIFY2(section.indexOf("\r\n", valueAt) > valueAt,
                         qPrintable(QString(language) + ": " + key + " is empty"));
            }
        }
    }

    void nameWithASpaceOrNoNameAddsNothing()
    {
        startWindow("phone.bin");
        PictureFinderPane* finder = finderOnScreen();
        QVERIFY(finder);
        for (const QString& name : {QString("boot logo"), QString()}) {
            finder->nameEdit->setText(name);
            finder->statusLine->clear();
            finder->addButton->click();
            QCOMPARE(rowCount(m_tab->pictureList), 0);
            QVERIFY(!finder->statusLine->text().isEmpty());
        }
    }
};

}  // namespace zevran::test

QTEST_MAIN(zevran::test::PictureFinderPaneTest)
#include "picture_finder_pane_test.moc"
