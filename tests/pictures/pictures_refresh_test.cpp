// What the picture tab shows follows the image: in an installed workshop the shipped data
// under share/ is read-only, so the pictures the tab writes for itself go to the user's
// runtime folder; undo and redo draw the preview and the finder again.
#include "pictures_tab_fixture.hpp"

#include "pictures/ui/picture_finder_pane.hpp"
#include "pictures/ui/picture_import_view.hpp"

#include <QLineEdit>
#include <QTimer>

using namespace zevran::test;
using zevran::pictures::PictureImportView;

class PicturesRefreshTest : public PicturesTabFixture {
    Q_OBJECT

    // Imports a 2*2 picture of one colour into the logo's current frame, confirmed.
    void importLogoOf(QColor colour)
    {
        QImage picture(2, 2, QImage::Format_RGB32);
        picture.fill(colour);
        QVERIFY(picture.save(path("new.png"), "PNG"));
        m_dialogs->files = {path("new.png")};
        QTimer answer;
        answer.setInterval(5);
        connect(&answer, &QTimer::timeout, this, [&] {
            auto* view = m_tab->findChild<PictureImportView*>("PictureImportView");
            if (!view || !view->isVisible()) return;
            answer.stop();
            view->ImportConfirm->click();
        });
        answer.start();
        choose(m_tab->importpic);
        answer.stop();
    }

    QRgb previewPixel(int x, int y) const
    {
        int zoom = 0;
        const QImage frame = shown(2, 2, &zoom);
        return frame.isNull() ? 0x12345678 : block(frame, zoom, x, y);
    }

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { resetHome(); }

    void importIntoAnAsfImagePreviewsFromTheRuntimeFolder()
    {
        QDir().mkpath(path("run"));
        startInstalledWindow("phone.asf");
        openTable(kTable);
        QStringList written;
        connect(m_tab, &zevran::pictures::PicturesTab::previewFileWritten, this,
                [&](const QString& file) { written << file; });
        clickRow(Logo);
        QCOMPARE(written, QStringList{path("run/temp.bmp")});
        written.clear();
        importLogoOf(QColor(0x10, 0x20, 0x30));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{13});
        // The frame as imported is shown from the runtime folder; share/ gains nothing.
        QVERIFY(!written.isEmpty());
        for (const QString& file : written) QCOMPARE(file, path("run/temp.bmp"));
        QCOMPARE(QDir(path("share")).entryList(QDir::Files), QStringList{"16.dat"});
        QCOMPARE(previewPixel(1, 1), QRgb(0x102030));
    }

    void undoAndRedoDrawThePreviewAndTheFinderAgain()
    {
        startWindow("phone.asf");
        openTable(kTable);
        clickRow(Logo);
        m_tab->ShowInFinder_Click();
        auto* finder = m_tab->finder();
        QVERIFY(finder);
        QCOMPARE(previewPixel(0, 0), QRgb(0xFF0000));
        QCOMPARE(finder->canvas->picture().pixel(0, 0) & 0xFFFFFF, QRgb(0xFF0000));
        importLogoOf(QColor(0x10, 0x20, 0x30));
        QCOMPARE(previewPixel(0, 0), QRgb(0x102030));
        QCOMPARE(finder->canvas->picture().pixel(0, 0) & 0xFFFFFF, QRgb(0x102030));
        m_window->findChild<QAction*>("menuundo")->trigger();
        QCOMPARE(previewPixel(0, 0), QRgb(0xFF0000));
        QCOMPARE(finder->canvas->picture().pixel(0, 0) & 0xFFFFFF, QRgb(0xFF0000));
        m_window->findChild<QAction*>("menuredo")->trigger();
        QCOMPARE(previewPixel(0, 0), QRgb(0x102030));
        QCOMPARE(finder->canvas->picture().pixel(0, 0) & 0xFFFFFF, QRgb(0x102030));
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("1"));
        finder->close();
    }
};

QTEST_MAIN(PicturesRefreshTest)
#include "pictures_refresh_test.moc"
