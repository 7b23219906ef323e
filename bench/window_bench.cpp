// The window's own long jobs, timed in the window as the user meets them: filling the
// tone list with 5000 rows, and an S-record conversion in slices on the event loop,
// with the longest pause between two turns of the loop while it runs.
// Usage: zevran-window-bench S3FILE  (writes S3FILE less ".s3" plus ".bin")
//        zevran-window-bench --load PHONEFILE  (opens it, scans tones, searches a text;
//        prints the peak memory, which must not hold the image twice)
//        zevran-window-bench --preview  (times showing 128*160 frames of 16 bits)
//        zevran-window-bench --finder  (times the picture finder's 512*1024 view at each depth)
//        zevran-window-bench --gallery  (the longest pause of the event loop while "Scan for
//        pictures" runs over a 32 MiB firmware-like image and its candidates are shown)
#include "app/main_window.hpp"
#include "image/ui/converter_tab.hpp"
#include "pictures/ui/picture_finder_pane.hpp"
#include "pictures/ui/picture_gallery.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "support/firmware_like.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QApplication>
#include <QComboBox>
#include <QSpinBox>
#include <QElapsedTimer>
#include <QFile>
#include <QStringList>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <cstddef>
#include <sys/resource.h>
#include <cstdio>
#include <vector>

namespace {

using zevran::app::Answer;
using zevran::app::MessageKind;

// Every dialog answered at once; a message other than "file written" (message 10, or
// the converter's own information that the binary file was written) ends the run.
class SilentDialogs : public zevran::app::Dialogs {
public:
    QStringList files;  // answers of the open dialog, in order
    QString openFile(const QString&, const QString&, int) override
    {
        return files.isEmpty() ? QString() : files.takeFirst();
    }
    QString saveFile(const QString&, const QString&, int) override { return {}; }
    QString chooseFolder(const QString&) override { return {}; }
    void message(int code, MessageKind kind, const QString&, const QString& text) override
    {
        if (code != 10 && !(code == 0 && kind == MessageKind::Information)) {
            std::fprintf(stderr, "window bench: message %d: %s\n", code, qPrintable(text));
            std::exit(1);
        }
    }
    // Each timed run replaces the output of the run before it.
    Answer askYesNoCancel(const QString&, const QString&) override { return Answer::Yes; }
};

// 5000 tones of 101 bytes, one every 128 bytes.
QByteArray imageWithTones(int tones)
{
    QByteArray image(tones * 128 + 128, '\0');
    for (int i = 0; i < tones; ++i) {
        char* at = image.data() + 64 + std::ptrdiff_t{i} * 128;
        std::copy_n("MMMD\0\0\0\x5D", 8, at);
    }
    return image;
}

// A timer's nanoseconds in the units the figures are given in.
double milliseconds(qint64 nanoseconds) { return static_cast<double>(nanoseconds) / 1e6; }
double seconds(qint64 nanoseconds) { return static_cast<double>(nanoseconds) / 1e9; }

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// 20 frames of 128*160 pixels at 16 bits, one after another from 0x1000, and the
// picture table that lists them.
void writePictureFixture(const QString& folder)
{
    constexpr int kFrameBytes = 128 * 160 * 2;
    QByteArray image(0x1000 + 20 * kFrameBytes, '\0');
    for (int i = 0x1000; i < image.size(); ++i) image[i] = static_cast<char>(i * 7 / 3);
    QFile phone(folder + "/pictures.bin");
    if (phone.open(QIODevice::WriteOnly)) phone.write(image);
    QFile table(folder + "/pictures.txt");
    if (table.open(QIODevice::WriteOnly))
        table.write("001 frames\t 0X00001000\t Frames: 20\t Size: 40960\t Pixels: 128*160\t Bits: 16\t\r\n");
}

// Showing frame after frame as the player does: decode, temporary BMP, load, zoom.
int previewFrames()
{
    QTemporaryDir home;
    auto dialogs = std::make_unique<SilentDialogs>();
    SilentDialogs* answers = dialogs.get();
    zevran::app::Form1 window(home.path(), std::move(dialogs));
    window.LoadSettings();
    window.show();
    writePictureFixture(home.path());
    window.openPhoneFile(home.path() + "/pictures.bin");
    auto* pictures = window.findChild<zevran::pictures::PicturesTab*>();
    answers->files = {home.path() + "/pictures.txt"};
    pictures->OpenPicTable_Click();
    if (pictures->pictureList->model()->rowCount() != 1) return 1;
    pictures->pictureList->selectionModel()->select(pictures->pictureList->model()->index(0, 0),
                                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    pictures->ListView5_ItemClick(0);
    std::vector<double> shown;
    for (int frame = 0; frame < 60; ++frame) {
        QElapsedTimer clock;
        clock.start();
        if (frame % 20 == 19) pictures->ListView5_ItemClick(0);
        else pictures->nextpicture_Click();
        QApplication::processEvents();
        shown.push_back(milliseconds(clock.nsecsElapsed()));
    }
    std::printf("preview_frame_ms %.2f\npreview_frame_worst_ms %.2f\n", median(shown),
                *std::max_element(shown.begin(), shown.end()));
    return 0;
}

// The picture finder's view of 512 * 1024 pixels at zoom 1, moved on a row and painted
// 60 times at each depth, as a user holding the down key sees it.
int finderRedraws()
{
    QTemporaryDir home;
    zevran::app::Form1 window(home.path(), std::make_unique<SilentDialogs>());
    window.LoadSettings();
    window.show();
    QByteArray image(8 << 20, '\0');
    for (int i = 0; i < image.size(); ++i) image[i] = static_cast<char>(i * 7 / 3 + (i >> 11));
    QFile phone(home.path() + "/finder.bin");
    if (phone.open(QIODevice::WriteOnly)) phone.write(image);
    phone.close();
    window.openPhoneFile(home.path() + "/finder.bin");
    auto* pictures = window.findChild<zevran::pictures::PicturesTab*>();
    pictures->FindPictures_Click();
    zevran::pictures::PictureFinderPane* finder = pictures->finder();
    finder->canvas->setFixedSize(512, 1024);
    finder->zoomBox->setValue(1);
    finder->widthBox->setValue(512);
    for (int depth : {1, 4, 8, 12, 16, 24}) {
        finder->depthBox->setCurrentIndex(finder->depthBox->findData(depth));
        finder->setAddress(0x1000);
        QApplication::processEvents();
        std::vector<double> redraws;
        for (int step = 0; step < 60; ++step) {
            QElapsedTimer clock;
            clock.start();
            finder->moveBy(zevran::pictures::FinderMove::Row, 1);
            finder->canvas->repaint();
            redraws.push_back(milliseconds(clock.nsecsElapsed()));
        }
        std::printf("finder_redraw_ms_%d %.2f\n", depth, median(redraws));
    }
    return 0;
}

// "Scan for pictures" over a 32 MiB firmware-like image (about a thousand pictures
// planted among code, data and text), with a 1 ms timer on the event loop: the longest
// time between two of its ticks from the click until the candidates have been on show
// for half a second, the gallery scrolled through meanwhile.
int galleryScan()
{
    QTemporaryDir home;
    zevran::app::Form1 window(home.path(), std::make_unique<SilentDialogs>());
    window.LoadSettings();
    window.show();
    const auto made = zevran::test::makeFirmwareLike(std::size_t{32} << 20, 2024, zevran::test::classicColours());
    QFile phone(home.path() + "/gallery.bin");
    if (!phone.open(QIODevice::WriteOnly) ||
        phone.write(reinterpret_cast<const char*>(made.image.data()), static_cast<qint64>(made.image.size())) < 0)
        return 1;
    phone.close();
    window.openPhoneFile(phone.fileName());
    auto* pictures = window.findChild<zevran::pictures::PicturesTab*>();
    QApplication::processEvents();

    QElapsedTimer clock, sinceTurn;
    qint64 longestGap = 0;
    QTimer ticker;
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longestGap = std::max(longestGap, sinceTurn.nsecsElapsed());
        sinceTurn.restart();
    });
    ticker.start();
    clock.start();
    sinceTurn.start();
    pictures->ScanPictures_Click();
    zevran::pictures::PictureGallery* gallery = pictures->gallery();
    while (gallery->scanning()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double scanned = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    // The thumbnails are drawn as they come into view: scroll the list through.
    QElapsedTimer shown;
    shown.start();
    while (shown.elapsed() < 500) {
        gallery->list->scrollTo(
            gallery->model->index(static_cast<int>(shown.elapsed()) * gallery->model->rowCount() / 500));
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    longestGap = std::max(longestGap, sinceTurn.nsecsElapsed());
    std::printf("gallery_image_bytes %zu\ngallery_scan_s %.3f\ngallery_candidates %d\ngallery_longest_pause_ms %.1f\n",
                made.image.size(), scanned, gallery->model->rowCount(), static_cast<double>(longestGap) / 1e6);
    return 0;
}

long peakKibibytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

int loadLargeImage(const QString& phone)
{
    QTemporaryDir home;
    zevran::app::Form1 window(home.path(), std::make_unique<SilentDialogs>());
    window.LoadSettings();
    const long before = peakKibibytes();
    QElapsedTimer clock;
    clock.start();
    window.openPhoneFile(phone);
    const double opened = seconds(clock.nsecsElapsed());
    auto* tones = window.findChild<zevran::tones::TonesTab*>();
    tones->GetTone_Click();
    const double scanned = seconds(clock.nsecsElapsed());
    auto* strings = window.findChild<zevran::strings::StringsTab*>();
    strings->searchText->setText(QStringLiteral("Melody"));
    strings->SeachString_Click();
    const double searched = seconds(clock.nsecsElapsed());
    std::printf("load_image_bytes %lld\nload_tone_rows %d\nload_found_at %s\n",
                static_cast<long long>(window.imageState().FirmwareImage.size()), tones->toneList->model()->rowCount(),
                qPrintable(strings->foundStart->text()));
    std::printf("load_open_s %.3f\nload_scan_s %.3f\nload_search_s %.3f\n", opened, scanned - opened,
                searched - scanned);
    std::printf("load_peak_before_kib %ld\nload_peak_kib %ld\n", before, peakKibibytes());
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc == 3 && QByteArray(argv[1]) == "--load") return loadLargeImage(QString::fromLocal8Bit(argv[2]));
    if (argc == 2 && QByteArray(argv[1]) == "--preview") return previewFrames();
    if (argc == 2 && QByteArray(argv[1]) == "--finder") return finderRedraws();
    if (argc == 2 && QByteArray(argv[1]) == "--gallery") return galleryScan();
    if (argc != 2) {
        std::fprintf(stderr, "usage: zevran-window-bench S3FILE | --load PHONEFILE\n");
        return 2;
    }
    QTemporaryDir home;
    zevran::app::Form1 window(home.path(), std::make_unique<SilentDialogs>());
    window.LoadSettings();
    window.show();

    const QString phone = home.path() + "/tones.bin";
    QFile file(phone);
    if (!file.open(QIODevice::WriteOnly) || file.write(imageWithTones(5000)) < 0) return 1;
    file.close();
    window.openPhoneFile(phone);
    auto* tones = window.findChild<zevran::tones::TonesTab*>();
    std::vector<double> fills;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer clock;
        clock.start();
        tones->GetTone_Click();
        fills.push_back(seconds(clock.nsecsElapsed()));
    }
    if (tones->toneList->model()->rowCount() != 5000) return 1;
    std::printf("listview4_rows %d\nlistview4_fill_s %.4f\n", tones->toneList->model()->rowCount(), median(fills));

    auto* converter = window.findChild<zevran::image::ConverterTab*>();
    converter->s3InputPath->setText(QString::fromLocal8Bit(argv[1]));
    converter->PartAdd->setChecked(true);
    std::vector<double> times;
    std::vector<double> gaps;
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer clock;
        QElapsedTimer sinceTurn;
        qint64 longestGap = 0;
        QTimer ticker;
        ticker.setInterval(1);
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            longestGap = std::max(longestGap, sinceTurn.nsecsElapsed());
            sinceTurn.restart();
        });
        ticker.start();
        clock.start();
        sinceTurn.start();
        converter->ComS3ToBin_Click();
        times.push_back(seconds(clock.nsecsElapsed()));
        gaps.push_back(milliseconds(std::max(longestGap, sinceTurn.nsecsElapsed())));
    }
    std::printf("window_s3_to_bin_s %.4f\nwindow_longest_pause_ms %.1f\n", median(times),
                *std::max_element(gaps.begin(), gaps.end()));
    return 0;
}
