// The picture gallery on the picture tab: "Scan for pictures" fills it with the
// candidates of the whole image, drawn as the preview draws them; Stop stops the scan;
// a double-click opens the finder on a candidate; the chosen ones become table rows.
#include "pictures_tab_fixture.hpp"

#include "pictures/ui/picture_finder_pane.hpp"
#include "pictures/ui/picture_gallery.hpp"
#include "pictures/pixel_decode.hpp"
#include "support/firmware_like.hpp"
#include "support/noise_bytes.hpp"

#include <QComboBox>
#include <QListView>
#include <QProgressBar>
#include <QSpinBox>

namespace zevran::test {

using pictures::PictureGallery;

namespace {

// Two pictures among noise and code: a 16-bit icon of 56*56 at 0x6000 and a 24-bit
// scene of 40*30 at 0xC000; `noiseAfter` bytes of noise follow.
QByteArray galleryImage(std::size_t noiseAfter = 0x2000)
{
    std::vector<std::uint8_t> image = noise(0x2000, 7);
    const auto add = [&](const std::vector<std::uint8_t>& bytes) {
        image.insert(image.end(), bytes.begin(), bytes.end());
    };
    add(thumbCode(0x2000, 8));
    image.resize(0x6000, 0xFF);
    add(drawPictureBytes(56, 56, 16, 0, 99, classicColours()));
    add(thumbCode(0x3000, 9));
    image.resize(0xC000, 0x00);
    add(drawPictureBytes(40, 30, 24, 1, 98, classicColours()));
    add(noise(noiseAfter, 11));
    return QByteArray(reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size()));
}

}  // namespace

class PictureGalleryTest : public PicturesTabFixture {
    Q_OBJECT

    void openImage(const QByteArray& image)
    {
        writeBytes(path("gallery.bin"), image);
        m_window->openPhoneFile(path("gallery.bin"));
    }

    PictureGallery* scanToTheEnd()
    {
        m_tab->findChild<QPushButton*>("ScanPictures")->click();
        PictureGallery* gallery = m_tab->gallery();
        if (!gallery) return nullptr;
        if (!QTest::qWaitFor([&] { return !gallery->scanning(); }, 20000)) return nullptr;
        return gallery;
    }

private slots:
    void init() { resetHome(); }

    void scanFillsTheGalleryWithTheImagesPictures()
    {
        startWindow("phone.bin");
        openImage(galleryImage());
        PictureGallery* gallery = scanToTheEnd();
        QVERIFY(gallery);
        QVERIFY(gallery->isVisible());
        QCOMPARE(gallery->model->rowCount(), 2);
        QCOMPARE(gallery->progress->value(), gallery->progress->maximum());
        QCOMPARE(gallery->statusLine->text().left(17), QString("Pictures found: 2"));
        const auto& icon = gallery->model->candidate(0);
        QCOMPARE(icon.address, 0x6000);
        QCOMPARE(icon.depth, 16);
        QCOMPARE(icon.width, 56);
        const auto& scene = gallery->model->candidate(1);
        QCOMPARE(scene.depth, 24);
        QCOMPARE(scene.width, 40);
        QCOMPARE(gallery->model->data(gallery->model->index(0), Qt::DisplayRole).toString(),
                 QString("pic_00006000\n0x00006000  16 bits  56*%1").arg(icon.height));
        QVERIFY(!gallery->model->data(gallery->model->index(0), Qt::DecorationRole).value<QImage>().isNull());
    }

    void thumbnailIsThePicturePreviewDraws()
    {
        startWindow("phone.bin");
        openImage(galleryImage());
        PictureGallery* gallery = scanToTheEnd();
        QVERIFY(gallery);
        QVERIFY(gallery->model->rowCount() > 0);
        const auto& c = gallery->model->candidate(0);
        const QByteArray image = galleryImage();
        const auto bmp = pictures::pictureFrameBmp(
            std::span(reinterpret_cast<const std::uint8_t*>(image.data()), static_cast<std::size_t>(image.size())),
            c.address, c.width, c.height, c.depth, pictures::readColourTable(path("16.dat").toStdString()));
        QVERIFY(bmp);
        const QImage preview =
            QImage::fromData(bmp->data(), static_cast<int>(bmp->size()), "BMP").convertToFormat(QImage::Format_RGB32);
        QCOMPARE(gallery->model->picture(0).convertToFormat(QImage::Format_RGB32), preview);
    }

    void stopEndsTheScanWithWhatWasFound()
    {
        startWindow("phone.bin");
        openImage(galleryImage(std::size_t{48} << 20));
        m_tab->findChild<QPushButton*>("ScanPictures")->click();
        PictureGallery* gallery = m_tab->gallery();
        QVERIFY(gallery && gallery->scanning());
        QVERIFY(gallery->stopButton->isEnabled());
        QVERIFY(!gallery->addButton->isEnabled());
        gallery->stopButton->click();
        QVERIFY(QTest::qWaitFor([&] { return !gallery->scanning(); }, 20000));
        QVERIFY(gallery->statusLine->text().startsWith("Stopped: "));
        QVERIFY(gallery->progress->value() < gallery->progress->maximum());
        QVERIFY(!gallery->stopButton->isEnabled());
        QVERIFY(gallery->addButton->isEnabled());
    }

    // The worker's copy of the image is made a slice at a time between turns of the
    // event loop: a picture past the first slices is found where it lies.
    void pictureBeyondTheFirstCopySlicesIsFound()
    {
        startWindow("phone.bin");
        QByteArray image = galleryImage(std::size_t{9} << 20);
        const auto last = static_cast<std::int64_t>(image.size());
        const std::vector<std::uint8_t> icon = drawPictureBytes(48, 40, 8, 0, 97, classicColours());
        image.append(reinterpret_cast<const char*>(icon.data()), static_cast<qsizetype>(icon.size()));
        const std::vector<std::uint8_t> code = thumbCode(0x2000, 12);
        image.append(reinterpret_cast<const char*>(code.data()), static_cast<qsizetype>(code.size()));
        openImage(image);
        PictureGallery* gallery = scanToTheEnd();
        QVERIFY(gallery);
        QCOMPARE(gallery->model->rowCount(), 3);
        const auto& found = gallery->model->candidate(2);
        QCOMPARE(found.address, last);
        QCOMPARE(found.depth, 8);
        QCOMPARE(found.width, 48);
    }

    void chosenCandidatesBecomeRowsUnderTheirNames()
    {
        startWindow("phone.bin");
        openImage(galleryImage());
        PictureGallery* gallery = scanToTheEnd();
        QVERIFY(gallery);
        QCOMPARE(gallery->model->rowCount(), 2);
        auto* model = gallery->model;
        QVERIFY(!model->setData(model->index(1), "my scene", Qt::EditRole));  // a table line cannot carry a space
        QVERIFY(model->setData(model->index(1), "my_scene", Qt::EditRole));
        gallery->list->selectAll();
        gallery->addButton->click();
        QCOMPARE(rowCount(m_tab->pictureList), 2);
        const auto& icon = model->candidate(0);
        QCOMPARE(rowTexts(m_tab->pictureList, 0),
                 (QStringList{"001", "pic_00006000", "0X00006000", "1", QString::number(56 * icon.height * 2),
                              QString("56*%1").arg(icon.height), "16"}));
        QCOMPARE(cellText(m_tab->pictureList, 1, 1), QString("my_scene"));
        QCOMPARE(cellText(m_tab->pictureList, 1, 6), QString("24"));
        QCOMPARE(gallery->statusLine->text(), QString("Added to the table: pic_00006000, my_scene"));
        // A second scan knows them, and names nothing after them again.
        gallery = scanToTheEnd();
        QVERIFY(gallery);
        QVERIFY(model->data(model->index(0), Qt::DisplayRole).toString().endsWith("\n(in the table)"));
        QCOMPARE(model->name(0), QString("pic_00006000_2"));
    }

    void doubleClickOpensTheFinderOnTheCandidate()
    {
        startWindow("phone.bin");
        openImage(galleryImage());
        PictureGallery* gallery = scanToTheEnd();
        QVERIFY(gallery);
        QVERIFY(gallery->model->rowCount() == 2);
        emit gallery->list->doubleClicked(gallery->model->index(1));
        auto* finder = m_tab->finder();
        QVERIFY(finder && finder->isVisible());
        const auto& scene = gallery->model->candidate(1);
        QCOMPARE(finder->address(), scene.address);
        QCOMPARE(finder->depthBox->currentData().toInt(), 24);
        QCOMPARE(finder->widthBox->value(), 40);
        QCOMPARE(finder->heightBox->value(), scene.height);
    }

    void finderStartsTheScanToo()
    {
        startWindow("phone.bin");
        openImage(galleryImage());
        m_tab->findChild<QPushButton*>("FindPictures")->click();
        auto* scan = m_tab->finder()->findChild<QPushButton*>("FinderScanPictures");
        QVERIFY(scan);
        QCOMPARE(scan->text(), QString("Scan for pictures"));
        scan->click();
        QVERIFY(m_tab->gallery());
        QVERIFY(QTest::qWaitFor([&] { return !m_tab->gallery()->scanning(); }, 20000));
        QCOMPARE(m_tab->gallery()->model->rowCount(), 2);
        QCOMPARE(m_tab->ScanPictures->text(), QString("Scan for pictures"));
        QCOMPARE(m_tab->gallery()->windowTitle(), QString("Pictures found in the image"));
    }
};

}  // namespace zevran::test

QTEST_MAIN(zevran::test::PictureGalleryTest)
#include "picture_gallery_test.moc"
