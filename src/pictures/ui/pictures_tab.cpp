#include "pictures_tab.hpp"
#include "pictures_tab_cells.hpp"
#include "pictures_tab_work.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"
#include "picture_finder_pane.hpp"
#include "picture_gallery.hpp"
#include "pictures/picture_frames.hpp"
#include "pictures/picture_table.hpp"
#include "pictures/pixel_decode.hpp"
#include "strings/code_page.hpp"

#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QPixmap>
#include <QSlider>
#include <QSplitter>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace zevran::pictures {

using window::fromUtf8;
using window::named;

std::vector<window::CaptionKey> PicturesTab::captionKeys()
{
    std::vector<window::CaptionKey> keys{{"SSTab3", "Frame16Name", "Frame16"}};
    for (const char* name : {"OpenPicTable", "SavePicTable", "RepeatPlay"}) keys.push_back({"SSTab3", name, name});
    for (int c = 0; c < 7; ++c) keys.push_back({"SSTab3", "Listview5Header" + std::to_string(c + 1), "ListView5", c});
    for (const char* name : {"Label28", "Label30", "Check1", "Label25"}) keys.push_back({"SSTab3", name, name});
    return keys;
}

PicturesTab::PicturesTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("PicturesTab");
    QWidget* table = buildTablePane();
    QGroupBox* frame16 = buildPreviewPane();
    // The list and the preview share the width as the user drags their splitter.
    auto* panes = named(new QSplitter(Qt::Horizontal, this), "PicturesSplitter");
    panes->addWidget(table);
    panes->addWidget(frame16);
    panes->setStretchFactor(0, 3);
    panes->setStretchFactor(1, 2);
    panes->setSizes({3000, 2000});  // three fifths for the list, until the user drags
    panes->setChildrenCollapsible(false);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(panes);
}

// The picture table's list, its buttons, the address offset and the progress bar.
QWidget* PicturesTab::buildTablePane()
{
    auto* table = new QWidget(this);
    m_pictureModel = makePictureListModel(this);
    m_pictureModel->setHeaders(
        {tr("No."), tr("Name"), tr("Address"), tr("Frames"), tr("Size"), tr("Pixels"), tr("Bits")});
    pictureList = window::reportView("ListView5", m_pictureModel, table);
    OpenPicTable = named(new QPushButton(table), "OpenPicTable", tr("Open table"));
    SavePicTable = named(new QPushButton(table), "SavePicTable", tr("Save table"));
    FindPictures = named(new QPushButton(table), "FindPictures");
    ScanPictures = named(new QPushButton(table), "ScanPictures");
    recomputeFrameSizes = named(new QCheckBox(table), "Check1", tr("Recompute frame sizes"));
    saveAddressOffset = named(new QLineEdit(table), "Text21");
    // Wide enough for a whole address, so "1000" never shows as "000".
    window::fitToText(saveAddressOffset, QStringLiteral("FFFFFFFF"));
    saveAddressOffset->setMaximumWidth(std::max(110, saveAddressOffset->minimumWidth()));
    pictureProgress = window::hiddenProgress("ProgressBar2", table);
    auto* tableButtons = new QHBoxLayout;
    tableButtons->addWidget(OpenPicTable);
    tableButtons->addWidget(SavePicTable);
    tableButtons->addWidget(FindPictures);
    tableButtons->addWidget(ScanPictures);
    tableButtons->addWidget(recomputeFrameSizes);
    tableButtons->addStretch();
    // The offset has a line of its own, so the buttons and it never squeeze each other.
    auto* offset = new QHBoxLayout;
    offset->addWidget(named(new QLabel(table), "Label25", tr("Address offset:")));
    offset->addWidget(saveAddressOffset);
    offset->addStretch();
    auto* tableLayout = new QVBoxLayout(table);
    tableLayout->setContentsMargins(0, 0, 0, 0);
    tableLayout->addLayout(tableButtons);
    tableLayout->addLayout(offset);
    tableLayout->addWidget(pictureList, 1);
    tableLayout->addWidget(pictureProgress);
    return table;
}

// The preview of a frame, its address and number, and the player's controls.
QGroupBox* PicturesTab::buildPreviewPane()
{
    auto* frame16 = named(new QGroupBox(this), "Frame16", tr("Preview"));
    m_frame16 = frame16;
    previewPicture = named(new QLabel(frame16), "Picture2");
    previewPicture->setMinimumSize(256, 320);
    previewPicture->setAlignment(Qt::AlignCenter);
    previewPicture->setFrameShape(QFrame::StyledPanel);
    // The frame is scaled to the label, never the label to the frame: a typed size of
    // thousands of pixels must not stretch the window.
    previewPicture->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    frameAddressBox = named(new QLineEdit(this), "Text15");
    frameOrdinalBox = named(new QLineEdit(this), "Text16");
    FrameCount = named(new QLabel(this), "FrameCount");
    // A long count (past the last frame, past the image's end) wraps within the column
    // instead of widening the window; the whole text is also its tooltip.
    FrameCount->setWordWrap(true);
    FrameCount->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    frameAddressBox->setReadOnly(true);
    frameOrdinalBox->setReadOnly(true);
    window::fitToText(frameAddressBox, QStringLiteral("0xFFFFFFFF"));
    window::fitToText(frameOrdinalBox, QStringLiteral("-999"));
    PreviousPicture = named(new QPushButton(this), "PreviousPicture", QStringLiteral("◀"));
    nextpicture = named(new QPushButton(this), "nextpicture", QStringLiteral("▶"));
    PlayPicture = named(new QPushButton(this), "PlayPicture", tr("Play"));
    PausePlay = named(new QPushButton(this), "PausePlay", tr("Pause"));
    StopPlay = named(new QPushButton(this), "StopPlay", tr("Stop"));
    for (QPushButton* button : {PreviousPicture, nextpicture, PlayPicture, PausePlay, StopPlay})
        button->setEnabled(false);
    RepeatPlay = named(new QCheckBox(this), "RepeatPlay", tr("Repeat"));
    speedSlider = named(new QSlider(Qt::Horizontal, this), "Slider1");
    SpeedLabel = named(new QLabel(this), "SpeedLabel", tr("Frame time:"));
    speedSlider->setRange(1, 10);
    speedSlider->setValue(2);
    Timer2 = new QTimer(this);
    Timer2->setObjectName("Timer2");
    Timer2->setInterval(speedSlider->value() * 100);

    auto* player = new QGridLayout;
    player->addWidget(named(new QLabel(this), "Label28", tr("Address:")), 0, 0);
    player->addWidget(frameAddressBox, 0, 1);
    player->addWidget(named(new QLabel(this), "Label30", tr("Frame:")), 0, 2);
    player->addWidget(frameOrdinalBox, 0, 3);
    player->addWidget(FrameCount, 0, 4);
    auto* steps = new QHBoxLayout;
    for (QWidget* control :
         std::initializer_list<QWidget*>{PreviousPicture, nextpicture, PlayPicture, PausePlay, StopPlay, RepeatPlay})
        steps->addWidget(control);
    auto* preview = new QVBoxLayout(frame16);
    preview->addWidget(previewPicture, 1);
    preview->addLayout(player);
    preview->addLayout(steps);
    auto* speed = new QHBoxLayout;
    speed->addWidget(SpeedLabel);
    speed->addWidget(speedSlider, 1);
    preview->addLayout(speed);
    return frame16;
}

using namespace zevran::image;
using namespace zevran::window;

namespace {

// Each pixel as a square block of zoom x zoom. QImage::scaled does not replicate an
// indexed image's pixels exactly, so the blocks are laid out here.
QImage enlarged(const QImage& picture, int zoom)
{
    const QImage source = picture.convertToFormat(QImage::Format_RGB32);
    QImage out(source.width() * zoom, source.height() * zoom, QImage::Format_RGB32);
    for (int y = 0; y < out.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(source.constScanLine(y / zoom));
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) line[x] = in[x / zoom];
    }
    return out;
}

}  // namespace

std::vector<PictureEntry> PicturesTab::rowsWhere(const std::function<bool(int)>& take) const
{
    std::vector<PictureEntry> rows;
    for (int i = 0; i < m_pictureModel->rowCount(); ++i)
        if (take(i)) rows.push_back(m_pictureModel->row(i).entry);
    return rows;
}

void PicturesTab::appendPictureRows(const std::vector<PictureEntry>& rows)
{
    for (const PictureEntry& row : rows) m_pictureModel->append({row, false});
}

std::vector<QWidget*> PicturesTab::workControls() const
{
    return {pictureList, OpenPicTable, SavePicTable, recomputeFrameSizes, saveAddressOffset, m_frame16};
}

void PicturesTab::attach(window::TabHost& host, QMenu* pictureListMenu)
{
    m_host = &host;
    menufile5 = pictureListMenu;
    outputpic = menuAction(menufile5, "outputpic");
    outputpicall = menuAction(menufile5, "outputpicall");
    outputpics3 = menuAction(menufile5, "outputpics3");
    ShowInFinder = menuAction(menufile5, "ShowInFinder");
    importpic = menuAction(menufile5, "importpic");
    importallpic = menuAction(menufile5, "importallpic");
    connect(OpenPicTable, &QPushButton::clicked, this, &PicturesTab::OpenPicTable_Click);
    connect(SavePicTable, &QPushButton::clicked, this, &PicturesTab::SavePicTable_Click);
    connect(pictureList, &QTreeView::clicked, this,
            [this](const QModelIndex& index) { ListView5_ItemClick(index.row()); });
    // A row chosen with the keyboard is shown too; a mouse press is left to the click.
    connect(pictureList->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid() && pictureList->selectionModel()->isRowSelected(current.row(), {}) &&
                    QApplication::mouseButtons() == Qt::NoButton)
                    ListView5_ItemClick(current.row());
            });
    connect(pictureList, &QTreeView::customContextMenuRequested, this, &PicturesTab::ListView5_MouseUp);
    pictureList->viewport()->installEventFilter(this);
    previewPicture->installEventFilter(this);
    connect(nextpicture, &QPushButton::clicked, this, &PicturesTab::nextpicture_Click);
    connect(PreviousPicture, &QPushButton::clicked, this, &PicturesTab::PreviousPicture_Click);
    connect(PlayPicture, &QPushButton::clicked, this, &PicturesTab::PlayPicture_Click);
    connect(PausePlay, &QPushButton::clicked, this, &PicturesTab::PausePlay_Click);
    connect(StopPlay, &QPushButton::clicked, this, &PicturesTab::StopPlay_Click);
    connect(speedSlider, &QSlider::valueChanged, this, &PicturesTab::Slider1_Change);
    connect(Timer2, &QTimer::timeout, this, &PicturesTab::Timer2_Timer);
    connect(outputpic, &QAction::triggered, this, &PicturesTab::outputpic_Click);
    connect(outputpicall, &QAction::triggered, this, &PicturesTab::outputpicall_Click);
    connect(outputpics3, &QAction::triggered, this, &PicturesTab::outputpics3_Click);
    connect(FindPictures, &QPushButton::clicked, this, &PicturesTab::FindPictures_Click);
    connect(ScanPictures, &QPushButton::clicked, this, &PicturesTab::ScanPictures_Click);
    connect(ShowInFinder, &QAction::triggered, this, &PicturesTab::ShowInFinder_Click);
    connect(importpic, &QAction::triggered, this, &PicturesTab::importpic_Click);
    connect(importallpic, &QAction::triggered, this, &PicturesTab::importallpic_Click);
    applyTexts();
    enablePictureMenu();
}

bool PicturesTab::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == pictureList->viewport() && event->type() == QEvent::MouseButtonDblClick) ListView5_DblClick();
    if (watched == previewPicture && event->type() == QEvent::Resize) scalePreview();
    return QWidget::eventFilter(watched, event);
}

// ---- The preview and its player ----

int PicturesTab::selectedRow() const
{
    const QModelIndex current = pictureList->currentIndex();
    if (current.isValid() && pictureList->selectionModel()->isRowSelected(current.row(), {})) return current.row();
    const std::vector<int> selected = window::selectedRows(pictureList);
    return selected.empty() ? -1 : selected.front();
}

PictureEntry PicturesTab::selectedEntry() const
{
    const int row = selectedRow();
    return row < 0 ? PictureEntry{} : m_pictureModel->row(row).entry;
}

std::string PicturesTab::colourTablePath() const { return (m_host->dataFolder() + "/16.dat").toStdString(); }

void PicturesTab::showWrongFormat()
{
    m_host->dialogs().message(0, MessageKind::Critical, m_host->fixedText("WrongFormatTitle", kWrongFormatTitle),
                              m_host->fixedText("WrongFormatText", kWrongFormatText));
}

void PicturesTab::showFrameCount(const FrameGeometry& geometry, std::int32_t address)
{
    // Stepping past the last frame stays allowed; the count says where it has led.
    const bool pastLast = m_frame < 0 || m_frame >= geometry.frames;
    QString count = m_host->text(pastLast ? "FrameBeyond" : "FrameOf").arg(geometry.frames);
    // Bytes past the image's end decode as black: the preview says why it is dark.
    if (frameRunsPastImage(geometry, address, m_host->imageState().FirmwareImage.size()))
        count += "  " + m_host->text("FramePastImageEnd");
    FrameCount->setText(count);
    FrameCount->setToolTip(count);
}

// Shows the current frame of the chosen row: decoded into the temporary BMP at `path`,
// loaded into previewPicture, and the file deleted again. Returns why it could not, or "".
QString PicturesTab::showFrame(const std::string& path)
{
    const PictureEntry row = selectedEntry();
    const QString file = QString::fromStdString(path);
    try {
        const FrameGeometry geometry = pictures::frameGeometry(row);
        const std::int32_t address = shownFrameAddress(geometry, m_frame);
        frameAddressBox->setText(fromUtf8(frameAddressText(address)));
        frameOrdinalBox->setText(fromUtf8(frameOrdinalText(m_frame)));
        showFrameCount(geometry, address);
        // A refused depth leaves the picture on show as it was.
        if (!decodePreviewFrame(m_host->imageState().FirmwareImage, geometry, address, path, colourTablePath())) {
            showWrongFormat();
            return {};
        }
        emit previewFileWritten(file);
        loadPreview(file);
    } catch (const std::exception& error) {
        QFile::remove(file);
        return onRow(*m_host, row, error);
    }
    QFile::remove(file);
    return {};
}

void PicturesTab::showFrameOrError(const std::string& path)
{
    const QString failure = showFrame(path);
    if (!failure.isEmpty()) m_host->showError(failure);
}

void PicturesTab::loadPreview(const QString& path)
{
    m_preview = QImage();
    m_preview.load(path, "BMP");
    scalePreview();
}

// The frame is enlarged by the largest whole factor that fits the label, without
// smoothing, so a 96 x 64 picture fills the preview. The BMP files stay as decoded.
void PicturesTab::scalePreview()
{
    if (m_preview.isNull()) {
        previewPicture->clear();
        return;
    }
    const int frame = 2 * previewPicture->frameWidth();
    const QSize area = previewPicture->size().expandedTo(previewPicture->minimumSize()) - QSize(frame, frame);
    m_zoom = std::max(1, std::min(area.width() / m_preview.width(), area.height() / m_preview.height()));
    previewPicture->setPixmap(QPixmap::fromImage(enlarged(m_preview, m_zoom)));
}

void PicturesTab::ListView5_ItemClick(int row)
{
    if (row < 0 || row >= m_pictureModel->rowCount() || m_working) return;
    m_frame = 0;
    showFrameOrError(previewFilePath(m_host->runtimeFolder().toStdString()));
}

void PicturesTab::imageBytesChanged()
{
    if (m_finder && m_finder->isVisible()) m_finder->redraw();
    if (!m_preview.isNull() && selectedRow() >= 0 && !m_working)
        showFrameOrError(previewFilePath(m_host->runtimeFolder().toStdString()));
}

void PicturesTab::ListView5_DblClick() { m_host->ShowMessage(39); }

void PicturesTab::nextpicture_Click() { stepFrame(1); }

void PicturesTab::PreviousPicture_Click() { stepFrame(-1); }

void PicturesTab::stepFrame(int step)
{
    try {
        m_frame = steppedFrame(m_frame, step);
    } catch (const PlayerOverflow& error) {
        m_host->showFailure(error);
        return;
    }
    showFrameOrError(previewFilePath(m_host->runtimeFolder().toStdString()));
}

void PicturesTab::PlayPicture_Click()
{
    // After a pause the timer is still running: play only lets its ticks work again.
    if (!m_paused) Timer2->start();
    m_paused = false;
    PausePlay->setEnabled(true);
    StopPlay->setEnabled(true);
    PlayPicture->setEnabled(false);
    pictureList->setFocus();
}

void PicturesTab::PausePlay_Click()
{
    m_paused = true;
    PausePlay->setEnabled(false);
    PlayPicture->setEnabled(true);
    pictureList->setFocus();
}

void PicturesTab::StopPlay_Click()
{
    Timer2->stop();
    m_paused = false;
    PlayPicture->setEnabled(true);
    StopPlay->setEnabled(false);
    m_frame = 0;
}

void PicturesTab::stopPlayer()
{
    Timer2->stop();
    m_paused = false;
    PlayPicture->setEnabled(true);
    PausePlay->setEnabled(false);
    StopPlay->setEnabled(false);
}

void PicturesTab::Slider1_Change(int value) { Timer2->setInterval(value * 100); }

void PicturesTab::Timer2_Timer()
{
    // While the player is paused, or a message of the last tick is still open, a tick passes.
    if (m_paused || m_inTick || m_working) return;
    m_inTick = true;
    const PictureEntry row = selectedEntry();
    QString failure;
    try {
        const AnimationTick tick = animationTick(m_frame, pictures::frameGeometry(row).frames, RepeatPlay->isChecked());
        m_frame = tick.show;
        failure = showFrame(animationFilePath(m_host->runtimeFolder().toStdString(), tick.show));
        if (failure.isEmpty()) {
            m_frame = tick.next;
            if (tick.stop) stopPlayer();
        }
    } catch (const std::exception& error) {
        failure = onRow(*m_host, row, error);
    }
    if (!failure.isEmpty()) {
        // A frame that cannot be shown ends the animation before its reason is shown.
        stopPlayer();
        m_frame = 0;
        m_host->showError(failure);
    }
    m_inTick = false;
}

void PicturesTab::applyTexts()
{
    PlayPicture->setText(m_host->text("PlayPicture"));
    PausePlay->setText(m_host->text("PausePlay"));
    StopPlay->setText(m_host->text("StopPlay"));
    PreviousPicture->setToolTip(m_host->text("PreviousPicture"));
    nextpicture->setToolTip(m_host->text("nextpicture"));
    SpeedLabel->setText(m_host->text("SpeedLabel"));
    speedSlider->setToolTip(m_host->text("Slider1"));
    FindPictures->setText(m_host->text("FindPictures"));
    ScanPictures->setText(m_host->text("ScanPictures"));
    ShowInFinder->setText(m_host->text("ShowInFinder"));
    importpic->setText(m_host->text("importpic"));
    importallpic->setText(m_host->text("importallpic"));
    if (m_finder) m_finder->retranslate();
    if (m_gallery) m_gallery->retranslate();
    // A frame on show keeps its count, now in the new language.
    if (selectedRow() >= 0 && !FrameCount->text().isEmpty()) {
        try {
            const FrameGeometry geometry = pictures::frameGeometry(selectedEntry());
            showFrameCount(geometry, shownFrameAddress(geometry, m_frame));
        } catch (const std::exception&) {
            // A row that cannot be shown has no count on show to retell.
        }
    }
}

void PicturesTab::shutDown()
{
    Timer2->stop();
    m_paused = false;
}

}  // namespace zevran::pictures
