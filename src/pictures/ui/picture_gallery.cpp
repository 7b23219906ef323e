#include "picture_gallery.hpp"

#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "pictures/picture_player.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <atomic>

#ifdef __linux__
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace zevran::pictures {

namespace {

// The progress bar counts in thousandths of the scan.
constexpr int kProgressSteps = 1000;
// How often the window looks at the worker: well inside a frame of the event loop.
constexpr int kPollMilliseconds = 40;
// The image is copied for the worker this many bytes to a turn of the event loop: a
// copy of 64 MiB at once would hold the window up for most of a tenth of a second.
constexpr std::size_t kCopySliceBytes = std::size_t{4} << 20;
constexpr int kScanNiceness = 10;

// The scan runs at a lower priority than the window, so that the window's thread gets a
// core whenever it has work, however long the scan. Linux keeps a nice value per
// thread, and the scan's own helper threads take the one of the thread that starts them.
void yieldToTheWindow()
{
#ifdef __linux__
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kScanNiceness);
#endif
}

ColourTable galleryColours(const window::TabHost& host)
{
    return coloursForDepth(4, host.dataFolder().toStdString() + "/16.dat");
}

}  // namespace

// --- the candidates ---

CandidateModel::CandidateModel(window::TabHost& host, QObject* parent) : QAbstractListModel(parent), m_host(host) {}

void CandidateModel::setCandidates(std::vector<PictureCandidate> candidates, std::vector<std::string> names)
{
    beginResetModel();
    m_candidates = std::move(candidates);
    m_names = std::move(names);
    m_thumbnails.assign(m_candidates.size(), QImage());
    endResetModel();
}

QImage CandidateModel::picture(int row) const
{
    const PictureCandidate& c = candidate(row);
    ViewRenderer renderer;
    renderer.render(m_host.imageState().FirmwareImage, {c.address, c.depth, c.width, c.height}, galleryColours(m_host));
    // A copy: the renderer's pixels go with it.
    return QImage(reinterpret_cast<const uchar*>(renderer.pixels().data()), renderer.width(), renderer.height(),
                  qsizetype{renderer.width()} * 4, QImage::Format_ARGB32)
        .copy();
}

int CandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_candidates.size());
}

QVariant CandidateModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const PictureCandidate& c = candidate(index.row());
    switch (role) {
    case Qt::DisplayRole: {
        QString caption = name(index.row()) + "\n0x" +
                          QString::fromStdString(image::HexPad(static_cast<std::uint32_t>(c.address), 8)) + "  " +
                          m_host.text("GalleryBits").arg(c.depth) + "  " + QString("%1*%2").arg(c.width).arg(c.height);
        if (c.known) caption += "\n" + m_host.text("GalleryKnown");
        return caption;
    }
    case Qt::EditRole: return name(index.row());
    case Qt::DecorationRole: {
        QImage& thumbnail = m_thumbnails[static_cast<std::size_t>(index.row())];
        if (thumbnail.isNull()) {
            // Whole-pixel blocks as in the preview, shrunk only where the picture is
            // larger than the thumbnail.
            thumbnail = picture(index.row());
            const int side = std::max(thumbnail.width(), thumbnail.height());
            // A whole factor, so every pixel grows into the same square.
            const int factor = side > 0 ? kThumbnailSize / side : 0;
            if (factor > 0) thumbnail = thumbnail.scaled(thumbnail.size() * factor);
            else thumbnail = thumbnail.scaled(kThumbnailSize, kThumbnailSize, Qt::KeepAspectRatio);
        }
        return thumbnail;
    }
    case Qt::ToolTipRole: return QString::number(c.score, 'f', 3);
    default: return {};
    }
}

bool CandidateModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole) return false;
    const std::string typed = value.toString().toStdString();
    if (!pictureNameAllowed(typed)) return false;
    m_names[static_cast<std::size_t>(index.row())] = typed;
    emit dataChanged(index, index);
    return true;
}

Qt::ItemFlags CandidateModel::flags(const QModelIndex& index) const
{
    return QAbstractListModel::flags(index) | (index.isValid() ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

// --- the window ---

// What the worker thread shares with the window: its own copy of the image, so the
// window may change the image while the scan runs (the copy itself is made on the
// window's thread, a slice to a turn of its event loop), and the scan's control.
struct PictureGallery::Job {
    std::vector<std::uint8_t> image;
    ScanRequest request;
    ScanControl control;
    ScanResult result;
    std::atomic<bool> finished{false};
};

PictureGallery::PictureGallery(window::TabHost& host, QWidget* parent) : QDialog(parent), m_host(host)
{
    setObjectName("PictureGallery");
    progress = new QProgressBar(this);
    progress->setObjectName("GalleryProgress");
    progress->setRange(0, kProgressSteps);
    stopButton = new QPushButton(this);
    stopButton->setObjectName("GalleryStop");
    stopButton->setEnabled(false);
    model = new CandidateModel(host, this);
    list = new QListView(this);
    list->setObjectName("GalleryList");
    list->setModel(model);
    list->setViewMode(QListView::IconMode);
    list->setResizeMode(QListView::Adjust);
    list->setIconSize(QSize(CandidateModel::kThumbnailSize, CandidateModel::kThumbnailSize));
    list->setGridSize(QSize(CandidateModel::kThumbnailSize + 72, CandidateModel::kThumbnailSize + 64));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    list->setUniformItemSizes(true);
    addButton = new QPushButton(this);
    addButton->setObjectName("GalleryAdd");
    statusLine = new QLabel(this);
    statusLine->setObjectName("GalleryStatus");
    m_poll = new QTimer(this);
    m_poll->setInterval(kPollMilliseconds);

    auto* top = new QHBoxLayout;
    top->addWidget(progress, 1);
    top->addWidget(stopButton);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(statusLine, 1);
    bottom->addWidget(addButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(list, 1);
    layout->addLayout(bottom);

    connect(stopButton, &QPushButton::clicked, this, &PictureGallery::stopScan);
    connect(addButton, &QPushButton::clicked, this, &PictureGallery::addSelected);
    connect(m_poll, &QTimer::timeout, this, &PictureGallery::poll);
    connect(list, &QListView::doubleClicked, this, [this](const QModelIndex& index) {
        const PictureCandidate& c = model->candidate(index.row());
        emit openInFinder({c.address, 1, c.width, c.height, c.depth});
    });
    resize(820, 600);
    retranslate();
}

PictureGallery::~PictureGallery()
{
    if (m_job) m_job->control.stop = true;
    if (m_worker.joinable()) m_worker.join();
}

QString PictureGallery::text(std::string_view key) const { return m_host.text(key); }

void PictureGallery::retranslate()
{
    setWindowTitle(text("GalleryTitle"));
    stopButton->setText(text("GalleryStop"));
    addButton->setText(text("GalleryAdd"));
    // The captions under the thumbnails are read from the texts as they are drawn.
    list->viewport()->update();
}

void PictureGallery::startScan(std::vector<PictureEntry> rows)
{
    if (m_job) return;
    m_rows = std::move(rows);
    m_job = std::make_shared<Job>();
    m_job->image.reserve(m_host.imageState().FirmwareImage.size());
    m_job->request.colours = galleryColours(m_host);
    model->setCandidates({}, {});
    progress->setValue(0);
    stopButton->setEnabled(true);
    addButton->setEnabled(false);
    statusLine->setText(text("GalleryScanning"));
    copyImageSlice();
}

// The worker gets the image as it is when the copy ends; Stop meanwhile leaves the
// rest uncopied, and the worker, told to stop, finds nothing.
void PictureGallery::copyImageSlice()
{
    if (!m_job) return;
    const std::vector<std::uint8_t>& image = m_host.imageState().FirmwareImage;
    std::vector<std::uint8_t>& copy = m_job->image;
    if (copy.size() > image.size()) copy.resize(image.size());  // another file was opened meanwhile
    const std::size_t end = std::min(image.size(), copy.size() + kCopySliceBytes);
    copy.insert(copy.end(), image.begin() + static_cast<std::ptrdiff_t>(copy.size()),
                image.begin() + static_cast<std::ptrdiff_t>(end));
    if (copy.size() < image.size() && !m_job->control.stop) {
        QTimer::singleShot(0, this, &PictureGallery::copyImageSlice);
        return;
    }
    m_worker = std::thread([job = m_job] {
        yieldToTheWindow();
        job->result = scanPictures(job->image, job->request, &job->control);
        job->finished = true;
    });
    m_poll->start();
}

void PictureGallery::stopScan()
{
    if (m_job) m_job->control.stop = true;
}

void PictureGallery::poll()
{
    if (!m_job) return;
    const auto total = std::max<std::int64_t>(1, m_job->control.total);
    progress->setValue(
        static_cast<int>(std::min<std::int64_t>(kProgressSteps, m_job->control.done * kProgressSteps / total)));
    if (m_job->finished) finishScan();
}

void PictureGallery::finishScan()
{
    m_poll->stop();
    m_worker.join();
    const std::shared_ptr<Job> job = std::move(m_job);
    std::vector<PictureCandidate> candidates = std::move(job->result.candidates);
    markKnownCandidates(candidates, m_rows);
    std::vector<std::string> names = candidateNames(candidates, m_rows);
    const auto count = static_cast<int>(candidates.size());
    model->setCandidates(std::move(candidates), std::move(names));
    progress->setValue(job->result.stopped ? progress->value() : kProgressSteps);
    stopButton->setEnabled(false);
    addButton->setEnabled(true);
    statusLine->setText(text(job->result.stopped ? "GalleryStopped" : "GalleryFound").arg(count));
    emit scanEnded();
}

void PictureGallery::addSelected()
{
    QModelIndexList chosen = list->selectionModel()->selectedIndexes();
    if (chosen.isEmpty()) {
        statusLine->setText(text("GalleryNoneSelected"));
        return;
    }
    std::sort(chosen.begin(), chosen.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QStringList added;
    for (const QModelIndex& index : chosen) {
        const PictureCandidate& c = model->candidate(index.row());
        emit addToTableRequested({c.address, 1, c.width, c.height, c.depth}, model->name(index.row()));
        added << model->name(index.row());
    }
    statusLine->setText(text("GalleryAdded").arg(added.join(", ")));
}

}  // namespace zevran::pictures
