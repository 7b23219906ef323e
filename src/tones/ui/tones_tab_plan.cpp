// The ring-tone tab's file browser and replacement plan: the rows of toneFileList,
// toneList and planList go through the plan logic and come back into the plan.
#include "tones/tone_patch.hpp"
#include "tones_tab.hpp"
#include "tone_columns.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QTreeView>

namespace zevran::tones {

using window::fromUtf8;
using window::selectedRows;

void TonesTab::showToneFiles(const QString& folder)
{
    m_listedFolder = folder;
    const QFileInfoList files =
        QDir(folder, QStringLiteral("*.mmf"), QDir::Name | QDir::IgnoreCase, QDir::Files).entryInfoList();
    std::vector<ToneFileRow> rows;
    rows.reserve(static_cast<std::size_t>(files.size()));
    for (const QFileInfo& file : files) rows.push_back({file.fileName(), QString::number(file.size())});
    m_fileModel->setRows(std::move(rows));
    if (toneFileList->header()->isSortIndicatorShown())
        m_fileModel->sort(m_fileSortColumn, m_fileSortDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void TonesTab::ListView1_ColumnClick(int column)
{
    // The captions are matched in English whatever the language: other headers only
    // flip the order of the column already sorted on.
    const QString caption = m_fileModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    if (caption == QLatin1String("Name") || caption == QLatin1String("Size")) m_fileSortColumn = column;
    m_fileSortDescending = !m_fileSortDescending;
    const Qt::SortOrder order = m_fileSortDescending ? Qt::DescendingOrder : Qt::AscendingOrder;
    toneFileList->header()->setSortIndicatorShown(true);
    toneFileList->header()->setSortIndicator(m_fileSortColumn, order);
    // Cells compare as text, so "1000" sorts before "999".
    m_fileModel->sort(m_fileSortColumn, order);
}

void TonesTab::showPlanRows(const std::vector<ReplacementRow>& rows)
{
    m_planModel->setRows(rows);
    // The file cell is read at a glance only when it is shown whole.
    if (!rows.empty()) planList->resizeColumnToContents(1);
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
    for (int i : selectedRows(toneFileList)) {
        const ToneFileRow& file = m_fileModel->row(i);
        cells.push_back(planFileText(file.name.toStdString(), file.size.toStdString(), unit));
    }
    std::vector<ReplacementRow> rows = planRows();
    addPlanCells(rows, PlanColumn::File, cells);
    showPlanRows(rows);
}

void TonesTab::addaddress_Click()
{
    std::vector<std::string> cells;
    for (int i : selectedRows(toneList)) cells.push_back(planSlotText(m_toneModel->row(i)));
    std::vector<ReplacementRow> rows = planRows();
    addPlanCells(rows, PlanColumn::Slot, cells);
    showPlanRows(rows);
}

int TonesTab::selectedPlanRow() const
{
    const std::vector<int> selected = selectedRows(planList);
    return selected.empty() ? -1 : selected.front();
}

void TonesTab::enableMenufile3()
{
    const bool rows = m_planModel->rowCount() > 0;
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

void TonesTab::moveall_Click() { m_planModel->clear(); }

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
    const std::vector<ReplacementRow>& rows = planRows();
    return std::any_of(rows.begin(), rows.end(), [](const ReplacementRow& row) { return row.checked; });
}

std::optional<std::vector<image::Region>> TonesTab::planRegions()
{
    std::vector<image::Region> regions;
    const auto imageLength = static_cast<std::int64_t>(m_host->imageState().FirmwareImage.size());
    try {
        // A message box may run pending events: the rows are taken as they stood.
        const std::vector<ReplacementRow> rows = planRows();
        for (const ReplacementRow& row : rows) {
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
        m_host->showFailure(error);
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
