// The ring-tone tab's file browser and replacement plan: the cells of ListView1,
// ListView4 and ListView3 go through the plan logic and come back as rows.
#include "tones/tone_patch.hpp"
#include "tones_tab.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>

namespace zevran::tones {

using image::fromUtf8;

void TonesTab::showToneFiles(const QString& folder)
{
    m_listedFolder = folder;
    ListView1->clear();
    const QFileInfoList files =
        QDir(folder, QStringLiteral("*.mmf"), QDir::Name | QDir::IgnoreCase, QDir::Files).entryInfoList();
    QList<QTreeWidgetItem*> items;
    for (const QFileInfo& file : files)
        items.append(new QTreeWidgetItem(QStringList{file.fileName(), QString::number(file.size())}));
    ListView1->addTopLevelItems(items);
    if (ListView1->header()->isSortIndicatorShown())
        ListView1->sortItems(m_fileSortColumn, m_fileSortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void TonesTab::ListView1_ColumnClick(int column)
{
    // The captions are matched in English whatever the language: other headers only
    // flip the order of the column already sorted on.
    const QString caption = ListView1->headerItem()->text(column);
    if (caption == QLatin1String("Name") || caption == QLatin1String("Size")) m_fileSortColumn = column;
    m_fileSortDescending = !m_fileSortDescending;
    const Qt::SortOrder order = m_fileSortDescending ? Qt::DescendingOrder : Qt::AscendingOrder;
    ListView1->header()->setSortIndicatorShown(true);
    ListView1->header()->setSortIndicator(m_fileSortColumn, order);
    // Cells compare as text, so "1000" sorts before "999".
    ListView1->sortItems(m_fileSortColumn, order);
}

std::vector<ReplacementRow> TonesTab::planRows() const
{
    std::vector<ReplacementRow> rows;
    for (int i = 0; i < ListView3->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = ListView3->topLevelItem(i);
        rows.push_back({item->text(0).toStdString(), item->text(1).toStdString(), item->text(2).toStdString(),
                        item->checkState(0) == Qt::Checked});
    }
    return rows;
}

void TonesTab::showPlanRows(const std::vector<ReplacementRow>& rows)
{
    m_fillingPlan = true;
    ListView3->clear();
    for (const ReplacementRow& row : rows) {
        auto* item =
            new QTreeWidgetItem(ListView3, QStringList{fromUtf8(row.number), fromUtf8(row.file), fromUtf8(row.slot)});
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(0, row.checked ? Qt::Checked : Qt::Unchecked);
    }
    // The file cell is read at a glance only when it is shown whole.
    if (!rows.empty()) ListView3->resizeColumnToContents(1);
    m_fillingPlan = false;
}

void TonesTab::planCellChanged(QTreeWidgetItem* item, int column)
{
    if (m_fillingPlan || column != 0 || item->checkState(0) != Qt::Checked) return;
    // A row can be checked only once it pairs a file with a slot.
    if (!mayCheckPlanRow({item->text(0).toStdString(), item->text(1).toStdString(), item->text(2).toStdString(), true}))
        item->setCheckState(0, Qt::Unchecked);
}

std::string TonesTab::planSizeUnit() const
{
    return m_host->fixedText("PlanSizeUnit", kPlanSizeUnit).remove(' ').toStdString();
}

void TonesTab::addmmf_Click()
{
    // The unit word ends the cell as one word: the file's size is read back before it.
    const std::string unit = planSizeUnit();
    std::vector<std::string> cells;
    for (int i = 0; i < ListView1->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = ListView1->topLevelItem(i);
        if (item->isSelected())
            cells.push_back(planFileText(item->text(0).toStdString(), item->text(1).toStdString(), unit));
    }
    std::vector<ReplacementRow> rows = planRows();
    addPlanCells(rows, PlanColumn::File, cells);
    showPlanRows(rows);
}

void TonesTab::addaddress_Click()
{
    std::vector<std::string> cells;
    const std::vector<ToneSlot> tones = toneRows();
    for (std::size_t i = 0; i < tones.size(); ++i)
        if (ListView4->topLevelItem(static_cast<int>(i))->isSelected()) cells.push_back(planSlotText(tones[i]));
    std::vector<ReplacementRow> rows = planRows();
    addPlanCells(rows, PlanColumn::Slot, cells);
    showPlanRows(rows);
}

int TonesTab::selectedPlanRow() const
{
    const QList<QTreeWidgetItem*> selected = ListView3->selectedItems();
    return selected.isEmpty() ? -1 : ListView3->indexOfTopLevelItem(selected.front());
}

void TonesTab::enableMenufile3()
{
    const bool rows = ListView3->topLevelItemCount() > 0;
    const bool selected = selectedPlanRow() >= 0;
    const std::string& kind = m_host->imageState().FileKind;
    for (const char* name : {"moveone", "movemmf", "moveaddress"}) command(name)->setEnabled(selected);
    for (const char* name : {"moveall", "moveallmmf", "movealladdress"}) command(name)->setEnabled(rows);
    command("outputs3")->setEnabled(rows && kind == "bin");
    command("outputaxf")->setEnabled(rows && kind == "asf");
}

void TonesTab::moveone_Click()
{
    std::vector<ReplacementRow> rows = planRows();
    if (const int row = selectedPlanRow(); row >= 0) removePlanRow(rows, static_cast<std::size_t>(row));
    showPlanRows(rows);
}

void TonesTab::moveall_Click() { ListView3->clear(); }

void TonesTab::movemmf_Click()
{
    std::vector<ReplacementRow> rows = planRows();
    if (const int row = selectedPlanRow(); row >= 0)
        removePlanCell(rows, static_cast<std::size_t>(row), PlanColumn::File);
    showPlanRows(rows);
}

void TonesTab::moveaddress_Click()
{
    std::vector<ReplacementRow> rows = planRows();
    if (const int row = selectedPlanRow(); row >= 0)
        removePlanCell(rows, static_cast<std::size_t>(row), PlanColumn::Slot);
    showPlanRows(rows);
}

void TonesTab::moveallmmf_Click()
{
    std::vector<ReplacementRow> rows = planRows();
    clearPlanColumn(rows, PlanColumn::File);
    showPlanRows(rows);
}

void TonesTab::movealladdress_Click()
{
    std::vector<ReplacementRow> rows = planRows();
    clearPlanColumn(rows, PlanColumn::Slot);
    showPlanRows(rows);
}

bool TonesTab::anyPlanRowChecked() const
{
    const std::vector<ReplacementRow> rows = planRows();
    return std::any_of(rows.begin(), rows.end(), [](const ReplacementRow& row) { return row.checked; });
}

std::optional<std::vector<image::Region>> TonesTab::planRegions()
{
    std::vector<image::Region> regions;
    const auto imageLength = static_cast<std::int64_t>(m_host->imageState().FirmwareImage.size());
    try {
        for (const ReplacementRow& row : planRows()) {
            PlanRowPatch patch = tonePatchRegion(row, m_listedFolder.toStdString(), imageLength);
            if (patch.result == PlanRowResult::EmptySlot) m_host->ShowMessage(1);
            if (patch.result == PlanRowResult::TooLarge) {
                // Departure: the classic output wrote the pairs before this one and then
                // stopped; every pair is now checked before anything is written.
                m_host->showMessageWith(12,
                                        m_host->text("PlanRowTooLarge").arg(fromUtf8(row.number), fromUtf8(row.file)));
                return std::nullopt;
            }
            if (patch.result == PlanRowResult::Region) regions.push_back(std::move(patch.region));
        }
    } catch (const std::exception& error) {
        m_host->showError(m_host->failureText(error));
        return std::nullopt;
    }
    return regions;
}

void TonesTab::outputs3_Click()
{
    if (!m_host->takesSRecordPatch() || !anyPlanRowChecked()) return;
    const QString path = m_host->chooseSRecordPatchPath();
    if (path.isEmpty()) return;
    if (const auto regions = planRegions(); regions && !regions->empty()) m_host->writeSRecordPatchTo(path, *regions);
}

void TonesTab::outputaxf_Click()
{
    if (!m_host->takesInImagePatch()) return;
    if (!anyPlanRowChecked()) {
        m_host->ShowMessage(11);
        return;
    }
    const auto regions = planRegions();
    if (!regions) return;
    if (!regions->empty()) m_host->patchInImage(*regions);
    else m_host->ShowMessage(13);
}

}  // namespace zevran::tones
