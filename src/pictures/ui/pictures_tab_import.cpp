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

#include <algorithm>

namespace zevran::pictures {

using namespace zevran::image;
using namespace zevran::window;

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

}  // namespace

QString PicturesTab::importText(const char* key) const { return m_host->text(key); }

void PicturesTab::importpic_Click()
{
    if (m_working) return;
    const std::optional<ImportableRow> row = importableRow();
    if (!row) return;
    std::vector<FramePicture> pictures;
    try {
        // The player may stand past the last frame to look; a picture goes only into a frame.
        pictures = onePicture(*row, m_frame, "");
    } catch (const RowImportError& error) {
        showImportStop(row->entry, error);
        return;
    }
    ShellSettings& settings = m_host->settings();
    const QString path = m_host->dialogs().openFile(settings.PictureSavePath, importText("PictureImportFilter"), 2);
    if (path.isEmpty()) return;
    settings.PictureSavePath = fromUtf8(FolderOf(path.toStdString()));
    pictures.front().file = path.toStdString();
    importFrames(*row, pictures);
}

void PicturesTab::importallpic_Click()
{
    if (m_working) return;
    const std::optional<ImportableRow> row = importableRow();
    if (!row) return;
    if (row->geometry.frames <= 0) {
        m_host->showError(importText("PictureImportNoFrames").arg(fromUtf8(row->entry.number)));
        return;
    }
    const QString folder = m_host->BrowseForFolder();
    if (folder.isEmpty()) return;
    m_host->settings().PictureSavePath = folder;
    std::vector<FramePicture> pictures;
    try {
        // Every frame's picture must be there before any is read.
        pictures = folderPictures(*row, folder.toStdString());
    } catch (const RowImportError& error) {
        showImportStop(row->entry, error);
        return;
    }
    importFrames(*row, pictures);
}

// Where and why an import stopped, in the window's language.
void PicturesTab::showImportStop(const PictureEntry& row, const RowImportError& error)
{
    const QString number = fromUtf8(row.number);
    QString reason = m_host->failureText(error);
    if (error.refusal) {
        reason = importText(reasonKey(error.refusal->reason()));
        for (const std::string& value : error.refusal->values()) reason = reason.arg(fromUtf8(value));
    }
    const QString ordinal = QString::number(error.frame + 1);
    const QString file = fromUtf8(error.file);
    switch (error.stop) {
    case ImportStop::RowRefused:
    case ImportStop::NoSuchFrame: m_host->showError(importText("PictureImportRowRefused").arg(number, reason)); return;
    case ImportStop::NoFrames: m_host->showError(importText("PictureImportNoFrames").arg(number)); return;
    case ImportStop::PictureMissing:
        m_host->showError(importText("PictureImportMissing").arg(number).arg(error.frame + 1).arg(file));
        return;
    case ImportStop::Unreadable:
        m_host->showError(importText("PictureImportUnreadable").arg(number, ordinal, file));
        return;
    case ImportStop::Refused:
        m_host->showError(importText("PictureImportRefused").arg(number, ordinal, file, reason));
        return;
    }
}

// The chosen row read as numbers, refused (with its message) when its depth or size
// cannot be imported, before any file is asked for.
std::optional<ImportableRow> PicturesTab::importableRow()
{
    if (selectedRow() < 0 || !(m_host->takesSRecordPatch() || m_host->takesInImagePatch())) return std::nullopt;
    const PictureEntry entry = selectedEntry();
    try {
        return pictures::importableRow(entry, colourTablePath());
    } catch (const RowImportError& error) {
        showImportStop(entry, error);
        return std::nullopt;
    }
}

// Reads and encodes every frame's picture; the first that cannot be read or does not
// fit stops the import with its reason, and nothing is written.
void PicturesTab::importFrames(const ImportableRow& row, const std::vector<FramePicture>& pictures)
{
    Timer2->stop();
    RowImportResult result;
    try {
        // The image as it is when the import starts; nothing changes it until the user confirms.
        BusyPointer busy;
        result = importPictures(m_host->imageState().FirmwareImage, row, pictures, readPictureFile);
    } catch (const RowImportError& error) {
        showImportStop(row.entry, error);
        return;
    }
    if (!confirmImport(row, pictures, result)) return;
    if (m_host->takesSRecordPatch()) {
        m_host->writeSRecordPatch(result.regions);
    } else {
        m_host->patchInImage(result.regions);
        // The preview shows the frame as the image now holds it.
        showFrameOrError(previewFilePath(m_host->runtimeFolder().toStdString()));
    }
}

// The first frame the import changes (else the first imported), as it is and as it
// will be, with the count of changed bytes of all frames; true when the user imports.
bool PicturesTab::confirmImport(const ImportableRow& row, const std::vector<FramePicture>& pictures,
                                const RowImportResult& result)
{
    const auto& image = m_host->imageState().FirmwareImage;
    const FrameGeometry& geometry = row.geometry;
    const ColourTable& colours = row.colours;
    const std::vector<Region>& regions = result.regions;
    if (regions.empty()) return false;
    std::size_t shown = 0;
    for (std::size_t i = 0; i < regions.size(); ++i)
        if (!std::equal(regions[i].bytes.begin(), regions[i].bytes.end(), image.begin() + regions[i].first)) {
            shown = i;
            break;
        }
    const Region& region = regions[shown];
    const FrameLayout frame{frameAddress(geometry, pictures[shown].frame), geometry.width, geometry.height,
                            geometry.depth};
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
    std::int64_t unstored = 0;
    for (const std::int64_t pixels : result.unstoredPixels) unstored += pixels;
    PictureImportView view(before, after, {result.changedBytes, unstored}, texts, this);
    return view.exec() == QDialog::Accepted;
}

}  // namespace zevran::pictures
