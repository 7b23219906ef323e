#include "bytes_link.hpp"

#include "bytes/owner_rows.hpp"
#include "bytes/ui/bytes_tab.hpp"
#include "pictures/ui/pictures_tab.hpp"
#include "strings/ui/strings_tab.hpp"
#include "tones/ui/tones_tab.hpp"

#include <QAction>
#include <QMenu>
#include <QTabWidget>
#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QTreeView>
#include <algorithm>

namespace zevran::app {

using image::ByteOwner;
using image::OwnerKind;

BytesLink::BytesLink(window::TabHost& host, ImageHistory& history, QObject* parent)
    : QObject(parent), m_host(host), m_history(history)
{
    m_writePatch = new QAction(this);
    m_writePatch->setObjectName("menuwritepatch");
    connect(m_writePatch, &QAction::triggered, this, [this] { writeChangesAsPatch(); });
    // Only a "bin" image keeps its edits unwritten; an "asf" image is saved instead.
    connect(&m_history, &ImageHistory::modifiedChanged, this, &BytesLink::updateWriteItem);
    updateWriteItem();
}

void BytesLink::addFileItem(QMenu* file) { file->addAction(m_writePatch); }

void BytesLink::attach(QTabWidget* tabs, const Lists& lists)
{
    m_tabs = tabs;
    m_lists = lists;
    m_tab = new bytes::BytesTab(tabs);
    tabs->addTab(m_tab, QString());
    m_tab->attach(*this);
    connect(&m_history, &ImageHistory::imageChanged, m_tab, &bytes::BytesTab::imageChanged);
    connect(&m_history, &ImageHistory::imageReplaced, m_tab, &bytes::BytesTab::imageReplaced);
    addShowBytes(lists.toneMenu, OwnerKind::Tone);
    addShowBytes(lists.editListMenu, OwnerKind::EditRow);
    addShowBytes(lists.pictureMenu, OwnerKind::PictureFrame);
    applyTexts();
}

void BytesLink::addShowBytes(QMenu* menu, OwnerKind kind)
{
    menu->addSeparator();
    QAction* item = menu->addAction(QString());
    item->setObjectName("ShowBytes");
    connect(item, &QAction::triggered, this, [this, kind] { showRowBytes(kind); });
    // Enabled for a selected row only, checked as the menu opens.
    connect(menu, &QMenu::aboutToShow, item,
            [this, item, kind] { item->setEnabled(listOf(kind)->currentIndex().isValid()); });
    m_showBytes.push_back(item);
}

void BytesLink::applyTexts()
{
    m_writePatch->setText(m_host.text("BytesWritePatch"));
    for (QAction* item : m_showBytes) item->setText(m_host.text("BytesShowBytes"));
    if (!m_tab) return;
    m_tabs->setTabText(m_tabs->indexOf(m_tab), m_host.text("BytesTabName"));
    m_tab->applyTexts();
}

void BytesLink::updateWriteItem()
{
    m_writePatch->setEnabled(m_host.takesSRecordPatch() && m_history.unwrittenChanges());
}

bool BytesLink::overwriteBytes(std::int64_t address, std::span<const std::uint8_t> bytes)
{
    // An image that is no phone file of a known kind has no output to end in.
    if (!m_host.takesInImagePatch() && !m_host.takesSRecordPatch()) return false;
    const auto region = image::overwriteRegion(m_host.imageState().FirmwareImage.size(), address, bytes);
    if (!region) return false;
    m_history.patch({*region});
    return true;
}

bool BytesLink::writeChangesAsPatch()
{
    if (!m_host.takesSRecordPatch()) return false;
    const std::vector<image::Region> regions = m_history.originals().changedRegions(m_host.imageState().FirmwareImage);
    if (regions.empty()) {
        m_host.showInformation(m_host.text("BytesNothingChanged"));
        return false;
    }
    const QString path = m_host.chooseSRecordPatchPath();
    if (path.isEmpty() || !m_host.writeSRecordPatchTo(path, regions)) return false;
    m_history.patchWritten();
    return true;
}

std::vector<ByteOwner> BytesLink::rangesOf(OwnerKind kind) const
{
    switch (kind) {
    case OwnerKind::Tone: return bytes::toneOwners(m_lists.tones->toneRows());
    case OwnerKind::EditRow: return bytes::editRowOwners(m_lists.strings->editRows());
    case OwnerKind::PictureFrame: return bytes::pictureOwners(m_lists.pictures->pictureRows());
    }
    return {};
}

std::vector<ByteOwner> BytesLink::ownedRanges() const
{
    std::vector<ByteOwner> all;
    for (OwnerKind kind : {OwnerKind::EditRow, OwnerKind::PictureFrame, OwnerKind::Tone}) {
        std::vector<ByteOwner> some = rangesOf(kind);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

QAbstractItemView* BytesLink::listOf(OwnerKind kind) const
{
    switch (kind) {
    case OwnerKind::Tone: return m_lists.tones->toneList;
    case OwnerKind::EditRow: return m_lists.strings->editList;
    case OwnerKind::PictureFrame: return m_lists.pictures->pictureList;
    }
    return nullptr;
}

QWidget* BytesLink::tabOf(OwnerKind kind) const
{
    switch (kind) {
    case OwnerKind::Tone: return m_lists.tones;
    case OwnerKind::EditRow: return m_lists.strings;
    case OwnerKind::PictureFrame: return m_lists.pictures;
    }
    return nullptr;
}

void BytesLink::showOwner(const ByteOwner& owner)
{
    QAbstractItemView* list = listOf(owner.kind);
    const QModelIndex row = list->model()->index(owner.row, 0);
    if (!row.isValid()) return;
    m_tabs->setCurrentWidget(tabOf(owner.kind));
    list->selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    list->scrollTo(row);
}

void BytesLink::showRowBytes(OwnerKind kind)
{
    const int row = listOf(kind)->currentIndex().row();
    if (row < 0) return;
    // A picture row owns its frames one after another: the view selects them all.
    std::int64_t first = -1;
    std::int64_t end = -1;
    for (const ByteOwner& owner : rangesOf(kind)) {
        if (owner.row != row) continue;
        first = first < 0 ? owner.first : std::min(first, owner.first);
        end = std::max(end, owner.end);
    }
    if (first < 0) return;
    m_tabs->setCurrentWidget(m_tab);
    m_tab->showBytes(first, end);
}

}  // namespace zevran::app
