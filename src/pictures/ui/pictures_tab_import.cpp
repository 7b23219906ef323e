// The picture tab's import: "Import picture..." and "Import all frames..." of its
// pop-up menu. Pictures are read through Qt's readers, encoded as the exact inverse of
// the preview, shown before and after, and written as the phone file's kind wants.
#include "pictures_tab.hpp"
#include "pictures_tab_cells.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"
#include "pictures/picture_encode.hpp"
#include "pictures/picture_file.hpp"
#include "pictures/picture_import.hpp"
#include "picture_import_view.hpp"

#include <QTimer>
#include <QTreeWidget>

#include <algorithm>

namespace zevran::pictures {

using namespace zevran::image;

namespace {

// The language key of each refusal's reason.
const char* reasonKey(ImportRefusal reason)
{
    switch (reason) {
    case ImportRefusal::Depth: return "PictureImportDepth";
    case ImportRefusal::NegativeSize: return "PictureImportNegativeSize";
    case ImportRefusal::TooLarge: return "PictureImportTooLarge";
    case ImportRefusal::PictureSize: return "PictureImportSize";
    case ImportRefusal::PixelData: return "PictureImportPixelData";
    case ImportRefusal::NoBytes: return "PictureImportNoBytes";
    case ImportRefusal::PastEnd: return "PictureImportPastEnd";
    case ImportRefusal::Clash: return "PictureImportClash";
    case ImportRefusal::NoSuchFrame: return "PictureImportNoSuchFrame";
    }
    return "PictureImportSize";
}

// The frame's picture as the preview shows it, decoded from `bytes` whose first byte
// lies at image address `base`.
QImage framePicture(std::span<const std::uint8_t> bytes, std::int64_t base, const FrameLayout& frame,
                    const ColourTable& colours)
{
    const std::int64_t address = frame.address - base;
    std::vector<std::uint8_t> bmp;
    if (frame.depth == 1) {
        bmp = monoFrameBmp(bytes, address, frame.width, frame.height);
    } else {
        auto decoded = pictureFrameBmp(bytes, address, frame.width, frame.height, frame.depth, colours);
        if (!decoded) return {};
        bmp = std::move(*decoded);
    }
    QImage picture;
    picture.loadFromData(bmp.data(), static_cast<int>(bmp.size()), "BMP");
    return picture;
}

// Image bytes that the regions change, each address counted once.
qint64 changedBytes(std::span<const std::uint8_t> image, std::vector<Region> regions)
{
    std::sort(regions.begin(), regions.end(), [](const Region& a, const Region& b) { return a.first < b.first; });
    qint64 changed = 0;
    std::int64_t counted = -1;  // the last address counted
    for (const Region& region : regions)
        for (std::int64_t at = std::max<std::int64_t>(region.first, counted + 1); at <= region.last; ++at) {
            if (region.bytes[static_cast<std::size_t>(at - region.first)] != image[static_cast<std::size_t>(at)]) ++changed;
            counted = at;
        }
    return changed;
}

}  // namespace

QString PicturesTab::importText(const char* key) const { return m_host->text(key); }

void PicturesTab::importpic_Click()
{
    RowToImport row;
    if (m_working || !importableRow(row)) return;
    // The player may stand past the last frame to look; a picture goes only into a frame.
    try {
        requireFrameOfRow(row.geometry, m_frame);
    } catch (const PictureImportError& error) {
        QString reason = importText(reasonKey(error.reason()));
        for (const std::string& value : error.values()) reason = reason.arg(fromUtf8(value));
        m_host->showError(importText("PictureImportRowRefused").arg(fromUtf8(row.entry.number), reason));
        return;
    }
    ShellSettings& settings = m_host->settings();
    const QString path = m_host->dialogs().openFile(settings.PictureSavePath, importText("PictureImportFilter"), 2);
    if (path.isEmpty()) return;
    settings.PictureSavePath = fromUtf8(FolderOf(path.toStdString()));
    importFrames(row, {{m_frame, path.toStdString()}});
}

void PicturesTab::importallpic_Click()
{
    RowToImport row;
    if (m_working || !importableRow(row)) return;
    if (row.geometry.frames <= 0) {
        m_host->showError(importText("PictureImportNoFrames").arg(fromUtf8(row.entry.number)));
        return;
    }
    const QString folder = m_host->BrowseForFolder();
    if (folder.isEmpty()) return;
    m_host->settings().PictureSavePath = folder;
    // Every frame's picture must be there before any is read.
    std::vector<FramePicture> frames;
    for (std::int64_t frame = 0; frame < row.geometry.frames; ++frame) {
        const auto file = exportedFramePicture(folder.toStdString(), row.entry.name, frame);
        if (!file) {
            m_host->showError(importText("PictureImportMissing")
                                  .arg(fromUtf8(row.entry.number))
                                  .arg(frame + 1)
                                  .arg(fromUtf8(pictureFramePath(folder.toStdString(), row.entry.name, frame))));
            return;
        }
        frames.push_back({frame, *file});
    }
    importFrames(row, frames);
}

// The chosen row read as numbers, refused (with its message) when its depth or size
// cannot be imported, before any file is asked for.
bool PicturesTab::importableRow(RowToImport& row)
{
    QTreeWidgetItem* item = selectedRow();
    if (!item || !(m_host->takesSRecordPatch() || m_host->takesInImagePatch())) return false;
    row.entry = entryOf(item);
    const QString number = fromUtf8(row.entry.number);
    try {
        row.geometry = pictures::frameGeometry(row.entry);
        row.colours = coloursForDepth(row.geometry.depth, colourTablePath());
        shownImageBytes({frameAddress(row.geometry, 0), row.geometry.width, row.geometry.height, row.geometry.depth});
    } catch (const PictureImportError& error) {
        QString reason = importText(reasonKey(error.reason()));
        for (const std::string& value : error.values()) reason = reason.arg(fromUtf8(value));
        m_host->showError(importText("PictureImportRowRefused").arg(number, reason));
        return false;
    } catch (const std::exception& error) {
        m_host->showError(importText("PictureImportRowRefused").arg(number, m_host->failureText(error)));
        return false;
    }
    return true;
}

// Reads and encodes every frame's picture; the first that cannot be read or does not
// fit stops the import with its reason, and nothing is written.
void PicturesTab::importFrames(const RowToImport& row, const std::vector<FramePicture>& frames)
{
    Timer2->stop();
    const QString rowNumber = fromUtf8(row.entry.number);
    const FrameGeometry& geometry = row.geometry;
    const ColourTable& colours = row.colours;
    // The image as it is when the import starts; nothing changes it until the user confirms.
    RowImport import(m_host->imageState().FirmwareImage, geometry, colours);
    QString failure;
    {
        BusyPointer busy;
        for (const FramePicture& frame : frames) {
            const QString file = fromUtf8(frame.file);
            // Frames count from 1, as the player and the export's file names count them.
            const QString ordinal = QString::number(frame.frame + 1);
            PictureGrid picture;
            try {
                picture = readPictureFile(frame.file, colours);
            } catch (const std::exception&) {
                failure = importText("PictureImportUnreadable").arg(rowNumber, ordinal, file);
                break;
            }
            try {
                import.importFrame(frame.frame, picture);
            } catch (const PictureImportError& error) {
                QString reason = importText(reasonKey(error.reason()));
                for (const std::string& value : error.values()) reason = reason.arg(fromUtf8(value));
                failure = importText("PictureImportRefused").arg(rowNumber, ordinal, file, reason);
                break;
            }
        }
    }
    if (!failure.isEmpty()) {
        m_host->showError(failure);
        return;
    }
    const std::vector<Region> regions = import.regions();
    std::vector<std::int64_t> imported;
    for (const FramePicture& frame : frames) imported.push_back(frame.frame);
    if (!confirmImport(geometry, regions, imported, import.unstoredPixels())) return;
    if (m_host->takesSRecordPatch()) {
        m_host->writeSRecordPatch(regions);
    } else {
        m_host->patchInImage(regions);
        // The preview shows the frame as the image now holds it.
        showFrameOrError(previewFilePath(m_host->runtimeFolder().toStdString()));
    }
}

// The first frame the import changes (else the first imported), as it is and as it
// will be, with the count of changed bytes of all frames; true when the user imports.
bool PicturesTab::confirmImport(const FrameGeometry& geometry, const std::vector<Region>& regions,
                                const std::vector<std::int64_t>& frames, std::int64_t unstoredPixels)
{
    const auto& image = m_host->imageState().FirmwareImage;
    const ColourTable colours = coloursForDepth(geometry.depth, colourTablePath());
    if (regions.empty()) return false;
    std::size_t shown = 0;
    for (std::size_t i = 0; i < regions.size(); ++i)
        if (!std::equal(regions[i].bytes.begin(), regions[i].bytes.end(), image.begin() + regions[i].first)) {
            shown = i;
            break;
        }
    const Region& region = regions[shown];
    const FrameLayout frame{frameAddress(geometry, frames[shown]), geometry.width, geometry.height, geometry.depth};
    const QImage before = framePicture(image, 0, frame, colours);
    // The picture after: the region laid over a copy of the bytes it covers, from an even
    // address so the 4-bit rows round as they do in the image.
    const std::int64_t base = region.first - region.first % 2;
    std::vector<std::uint8_t> bytes(image.begin() + base, image.begin() + region.last + 1);
    std::copy(region.bytes.begin(), region.bytes.end(), bytes.begin() + (region.first - base));
    const QImage after = framePicture(bytes, base, frame, colours);
    const ImportViewTexts texts{importText("PictureImportTitle"),   importText("PictureImportBefore"),
                                importText("PictureImportAfter"),   importText("PictureImportChanged"),
                                importText("PictureImportConfirm"), importText("PictureImportCancel"),
                                importText("PictureImportUnstored")};
    PictureImportView view(before, after, {changedBytes(image, regions), unstoredPixels}, texts, this);
    return view.exec() == QDialog::Accepted;
}

}  // namespace zevran::pictures
