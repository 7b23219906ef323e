// The picture tab's files: picture tables opened and saved, the chosen rows' frames
// exported as BMP files, and the checked rows written as an S-record patch.
#include "pictures_tab.hpp"
#include "pictures_tab_cells.hpp"
#include "pictures_tab_work.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/output_file.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"
#include "picture_finder_pane.hpp"
#include "picture_gallery.hpp"
#include "pictures/picture_export_job.hpp"
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

using namespace zevran::image;
using namespace zevran::window;

// ---- Picture tables ----

void PicturesTab::OpenPicTable_Click()
{
    m_frame = 0;  // also when the dialog is then cancelled
    ShellSettings& settings = m_host->settings();
    const QString path = m_host->dialogs().openFile(settings.TableSavePath, m_host->filter(2), 2);
    if (path.isEmpty()) return;
    settings.TableSavePath = fromUtf8(FolderOf(path.toStdString()));
    // The list is replaced, so an animation of one of its rows ends here.
    stopPlayer();
    m_pictureModel->clear();
    std::vector<PictureEntry> rows;
    std::vector<TableFieldWarning> warnings;
    try {
        const auto bytes = readWholeFile(path.toStdString());
        const std::string text = strings::decodeText(std::string(bytes.begin(), bytes.end()), m_host->codePage());
        rows = readPictureTable(text, recomputeFrameSizes->isChecked());
        warnings = pictureTableWarnings(text);
    } catch (const std::exception& error) {
        for (QPushButton* button : {PlayPicture, nextpicture, PreviousPicture}) button->setEnabled(false);
        // Message 38 has no text of its own: what failed and where goes under it, and
        // the preview of a row no longer listed is cleared with the list.
        m_preview = QImage();
        scalePreview();
        frameAddressBox->clear();
        frameOrdinalBox->clear();
        FrameCount->clear();
        m_host->showMessageWith(kMessageBadPictureTable, path + ": " + m_host->failureText(error));
        return;
    }
    appendPictureRows(rows);
    for (QPushButton* button : {PlayPicture, nextpicture, PreviousPicture}) button->setEnabled(true);
    // The rows load as they always did, but a field that can name no picture is said now,
    // not later as a wrong picture format.
    if (!warnings.empty())
        m_host->showMessageWith(kMessageBadPictureTable, path + ":\n" + tableWarningText(*m_host, warnings));
}

void PicturesTab::SavePicTable_Click()
{
    if (m_pictureModel->rowCount() == 0) {
        m_host->ShowMessage(4);
        return;
    }
    ShellSettings& settings = m_host->settings();
    const QString path = m_host->dialogs().saveFile(settings.TableSavePath, m_host->filter(2), 2);
    if (path.isEmpty()) return;
    settings.TableSavePath = fromUtf8(FolderOf(path.toStdString()));
    const std::vector<PictureEntry> rows = pictureRows();
    // The frame, size, dimension and depth columns are labelled with their headers as shown.
    std::array<std::string, 4> headers;
    for (int column = 3; column <= 6; ++column)
        headers[static_cast<std::size_t>(column - 3)] =
            m_pictureModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString().toStdString();
    try {
        const std::string text = pictureTableText(rows, headers, saveAddressOffset->text().toStdString());
        const std::string bytes = strings::encodeText(text, m_host->codePage());
        m_host->document().refuseAsOutput(path.toStdString());
        saveFileSafely(path.toStdString(),
                       std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    } catch (const std::exception& error) {
        m_host->showError(path + ": " + m_host->failureText(error));
        return;
    }
    m_host->ShowMessage(16);
}

void PicturesTab::ListView5_MouseUp(const QPoint& position)
{
    if (m_working) return;
    enablePictureMenu();
    menufile5->popup(pictureList->viewport()->mapToGlobal(position));
}

void PicturesTab::enablePictureMenu()
{
    const bool rows = m_pictureModel->rowCount() > 0;
    outputpic->setEnabled(rows);
    outputpicall->setEnabled(rows);
    outputpics3->setEnabled(rows && m_host->imageState().FileKind == "bin");
    ShowInFinder->setEnabled(selectedRow() >= 0);
    const bool importable = selectedRow() >= 0 && (m_host->takesSRecordPatch() || m_host->takesInImagePatch());
    importpic->setEnabled(importable);
    importallpic->setEnabled(importable);
}

void PicturesTab::outputpic_Click() { exportPictures(true); }

void PicturesTab::outputpicall_Click() { exportPictures(false); }

// Every frame of the chosen rows as FOLDER/NAME-NN.bmp. The selected rows' export
// advances the progress bar frame by frame within each row; the export of all rows
// advances it row by row.
void PicturesTab::exportPictures(bool selectedOnly)
{
    if (m_working) return;
    const QString folder = m_host->BrowseForFolder();
    m_host->settings().PictureSavePath = folder;  // a cancel is remembered too
    if (folder.isEmpty()) return;
    Timer2->stop();
    // The rows are read once: the list may change while pending events run.
    const std::vector<PictureEntry> rows = rowsWhere([this, selectedOnly](int row) {
        return !selectedOnly || pictureList->selectionModel()->isRowSelected(row, {});
    });
    QString failure;
    ExportTally tally;
    {
        Work work(*this);
        ExportListener listener;
        listener.rowStarted = [&](std::size_t, std::int64_t frames) {
            if (!selectedOnly) return;
            pictureProgress->setRange(0, static_cast<int>(std::max<std::int64_t>(1, frames)));
            pictureProgress->setVisible(true);
        };
        listener.frameDone = [&](std::size_t, std::int64_t frame, FrameExport outcome) {
            if (outcome == FrameExport::DepthNotDrawable) showWrongFormat();
            if (selectedOnly) pictureProgress->setValue(static_cast<int>(frame));
            QApplication::processEvents();
        };
        listener.rowDone = [&](std::size_t row) {
            if (!selectedOnly) pictureProgress->setValue(static_cast<int>(row + 1));
        };
        if (!selectedOnly) {
            pictureProgress->setRange(0, std::max<int>(1, static_cast<int>(rows.size())));
            pictureProgress->setVisible(true);
        }
        try {
            tally = exportRows(m_host->document(), rows, folder.toStdString(), colourTablePath(), listener);
        } catch (const RowExportError& error) {
            failure = onRow(*m_host, rows[error.row], error);
            tally = error.tally;
        }
    }
    pictureProgress->setVisible(false);
    pictureProgress->reset();
    QString counted = m_host->text("FilesWritten").arg(tally.written);
    QStringList skipped;  // rows whose depth cannot be written as BMP
    for (const std::string& number : tally.skippedRows) skipped << fromUtf8(number);
    if (!skipped.isEmpty()) counted += "\n" + m_host->text("RowsSkipped").arg(skipped.join(", "));
    if (!failure.isEmpty()) m_host->showError(failure + "\n" + counted);
    else m_host->showMessageWith(18, counted);
}

// The bytes of every checked row, all frames together, as one S-record patch file at
// the rows' own addresses. Offered for "bin" phone files only: an "asf" image would
// take back the very bytes it holds.
void PicturesTab::outputpics3_Click()
{
    if (m_working || m_host->imageState().FileKind != "bin") return;
    ShellSettings& settings = m_host->settings();
    const QString path = m_host->dialogs().saveFile(settings.S3SavePath, m_host->filter(1), 2);
    if (path.isEmpty()) return;
    settings.S3SavePath = fromUtf8(FolderOf(path.toStdString()));
    Timer2->stop();
    const std::vector<PictureEntry> checked = rowsWhere([this](int row) { return m_pictureModel->row(row).checked; });
    RowsPatch patch;
    QString failure;
    {
        Work work(*this);
        try {
            patch = rowsPatch(m_host->document(), checked);
            // A row of no bytes is reported and left out, so the file still ends in its S7 line.
            for (std::size_t k = 0; k < patch.emptyRows.size(); ++k) m_host->ShowMessage(kMessageEmptyRegion);
            writeEditsAsPatch(m_host->document(), path.toStdString(), patch.regions);
        } catch (const RowExportError& error) {
            failure = onRow(*m_host, checked[error.row], error);
        } catch (const std::exception& error) {
            failure = m_host->failureText(error);
        }
    }
    if (!failure.isEmpty()) m_host->showError(failure);
    else if (!patch.regions.empty()) m_host->ShowMessage(10);
}

}  // namespace zevran::pictures
