#include "strings_tab.hpp"

#include "strings/string_search.hpp"

#include "window/row_table_model.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QAction>
#include <QButtonGroup>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

namespace zevran::strings {

using window::named;

using window::fromUtf8;

namespace {

using EditColumn = window::RowColumn<StringEditRow>;

// A cell showing one of the row's texts as it was given.
EditColumn cellOf(std::string StringEditRow::*cell, bool toolTip = false)
{
    return {.text = [cell](const StringEditRow& row) { return fromUtf8(row.*cell); }, .toolTip = toolTip};
}

}  // namespace

// The edit list's columns: No. (with the check box that says the row is written),
// Start, End, Text (shown whole under the pointer) and Length.
void StringsTab::makeEditModel()
{
    EditColumn number = cellOf(&StringEditRow::number);
    number.checked = [](const StringEditRow& row) { return row.checked; };
    number.setChecked = [](StringEditRow& row, bool checked) { row.checked = checked; };
    m_editModel =
        new window::RowTableModel<StringEditRow>({number, cellOf(&StringEditRow::start), cellOf(&StringEditRow::end),
                                                  cellOf(&StringEditRow::text, true), cellOf(&StringEditRow::length)},
                                                 this);
    m_editModel->setHeaders({tr("No."), tr("Start"), tr("End"), tr("Text"), tr("Length")});
}

StringsTab::StringsTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("StringsTab");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildSearchFrame());
    layout->addWidget(buildFoundFrame());
    layout->addWidget(buildEditListFrame(), 1);
    layout->addWidget(makeTranslationFrame(), 1);
}

// The text searched for and the codes it is searched in.
QGroupBox* StringsTab::buildSearchFrame()
{
    auto* frame10 = named(new QGroupBox(this), "Frame10", tr("Search"));
    searchText = named(new QLineEdit(frame10), "Text11");
    searchHandsetCodes = named(new QRadioButton(frame10), "Option1", tr("Handset codes"));
    searchSingleByteCodes = named(new QRadioButton(frame10), "Option2", tr("Single-byte codes"));
    searchSingleByteCodes->setChecked(true);
    auto* searchCodes = new QButtonGroup(frame10);
    searchCodes->addButton(searchHandsetCodes);
    searchCodes->addButton(searchSingleByteCodes);
    SearchBegin = named(new QCheckBox(frame10), "SearchBegin", tr("From the beginning"));
    SeachString = named(new QPushButton(frame10), "SeachString", tr("Search"));
    auto* frame10Layout = new QGridLayout(frame10);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label4", tr("Text:")), 0, 0);
    frame10Layout->addWidget(searchText, 0, 1, 1, 3);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label13", tr("Search in:")), 1, 0);
    frame10Layout->addWidget(searchSingleByteCodes, 1, 1);
    frame10Layout->addWidget(searchHandsetCodes, 1, 2);
    frame10Layout->addWidget(SearchBegin, 1, 3);
    frame10Layout->addWidget(SeachString, 0, 4);
    return frame10;
}

// The hit found, its stored text and the replacement typed for it.
QGroupBox* StringsTab::buildFoundFrame()
{
    auto* frame11 = named(new QGroupBox(this), "Frame11", tr("Found"));
    hitCount = named(new QLineEdit(frame11), "Text4");
    foundStart = named(new QLineEdit(frame11), "Text10");
    foundEnd = named(new QLineEdit(frame11), "Text9");
    foundLength = named(new QLineEdit(frame11), "Text8");
    replacementText = named(new QLineEdit(frame11), "Text7");
    FoundText = named(new QLineEdit(frame11), "FoundText");
    FoundLabel = named(new QLabel(frame11), "FoundLabel", tr("Stored text:"));
    for (QLineEdit* shown : {hitCount, foundStart, foundEnd, foundLength, FoundText}) shown->setReadOnly(true);
    Add2List = named(new QPushButton(frame11), "Add2List", tr("Add to list"));
    Add2List->setEnabled(false);
    auto* frame11Layout = new QGridLayout(frame11);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label8", tr("Hits:")), 0, 0);
    frame11Layout->addWidget(hitCount, 0, 1);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label9", tr("Start:")), 0, 2);
    frame11Layout->addWidget(foundStart, 0, 3);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label10", tr("End:")), 0, 4);
    frame11Layout->addWidget(foundEnd, 0, 5);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label11", tr("Length:")), 0, 6);
    frame11Layout->addWidget(foundLength, 0, 7);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label12", tr("Replacement:")), 1, 0);
    frame11Layout->addWidget(replacementText, 1, 1, 1, 6);
    frame11Layout->addWidget(Add2List, 1, 7);
    frame11Layout->addWidget(FoundLabel, 2, 0);
    frame11Layout->addWidget(FoundText, 2, 1, 1, 7);
    return frame11;
}

// The edit list and the codes its texts are written in.
QGroupBox* StringsTab::buildEditListFrame()
{
    auto* frame13 = named(new QGroupBox(this), "Frame13", tr("Edit list"));
    makeEditModel();
    editList = window::reportView("ListView2", m_editModel, frame13);
    // `Removeone` removes "the selected row": there is never more than one.
    editList->setSelectionMode(QAbstractItemView::SingleSelection);
    writeHandsetCodes = named(new QRadioButton(frame13), "Option3", tr("Write handset codes"));
    writeSingleByteCodes = named(new QRadioButton(frame13), "Option4", tr("Write single-byte codes"));
    writeSingleByteCodes->setChecked(true);
    auto* outputCodes = new QButtonGroup(frame13);
    outputCodes->addButton(writeHandsetCodes);
    outputCodes->addButton(writeSingleByteCodes);
    auto* encoding = new QHBoxLayout;
    encoding->addWidget(named(new QLabel(frame13), "Label14", tr("Write in:")));
    encoding->addWidget(writeSingleByteCodes);
    encoding->addWidget(writeHandsetCodes);
    encoding->addStretch();
    auto* frame13Layout = new QVBoxLayout(frame13);
    frame13Layout->addWidget(editList, 1);
    frame13Layout->addLayout(encoding);
    return frame13;
}

std::vector<window::CaptionKey> StringsTab::captionKeys()
{
    std::vector<window::CaptionKey> keys;
    for (const char* frame : {"Frame10", "Frame11", "Frame13"})
        keys.push_back({"SSTab2", std::string(frame) + "Name", frame});
    // The classic file lists the tone tab's table buttons a second time here; the key
    // is read in its place and labels nothing of this tab.
    for (const char* button : {"SaveToneTable", "OpenToneTable"}) keys.push_back({"SSTab1", button, button});
    for (int c = 0; c < 5; ++c) keys.push_back({"SSTab2", "Listview2Header" + std::to_string(c + 1), "ListView2", c});
    for (const char* name : {"SeachString", "Add2List", "Option1", "Option2", "Option3", "Option4", "SearchBegin",
                             "Label4", "Label8", "Label9", "Label10", "Label11", "Label12", "Label13", "Label14"})
        keys.push_back({"SSTab2", name, name});
    return keys;
}

void StringsTab::attach(window::TabHost& host, QMenu* editListMenu)
{
    m_host = &host;
    menufile4 = editListMenu;
    Removeone = window::menuAction(menufile4, "Removeone");
    Removeall = window::menuAction(menufile4, "Removeall");
    window::menuSeparator(menufile4, "line5");
    outputStrS3 = window::menuAction(menufile4, "outputStrS3");
    outputStraxf = window::menuAction(menufile4, "outputStraxf");
    connect(SeachString, &QPushButton::clicked, this, &StringsTab::SeachString_Click);
    connect(searchText, &QLineEdit::returnPressed, this, &StringsTab::SeachString_Click);
    connect(Add2List, &QPushButton::clicked, this, &StringsTab::Add2List_Click);
    connect(Removeone, &QAction::triggered, this, &StringsTab::Removeone_Click);
    connect(Removeall, &QAction::triggered, this, &StringsTab::Removeall_Click);
    connect(outputStrS3, &QAction::triggered, this, &StringsTab::outputStrS3_Click);
    connect(outputStraxf, &QAction::triggered, this, &StringsTab::outputStraxf_Click);
    connect(editList, &QTreeView::customContextMenuRequested, this, &StringsTab::ListView2_ContextMenu);
    connect(m_editModel, &QAbstractItemModel::dataChanged, this, &StringsTab::updateListMenu);
    connect(editList->selectionModel(), &QItemSelectionModel::selectionChanged, this, &StringsTab::updateListMenu);
    connect(menufile4, &QMenu::aboutToShow, this, &StringsTab::updateListMenu);
    connect(ExportStrings, &QPushButton::clicked, this, &StringsTab::ExportStrings_Click);
    connect(ImportTranslation, &QPushButton::clicked, this, &StringsTab::ImportTranslation_Click);
    connect(StopExport, &QPushButton::clicked, this, [this] { m_stopExport = true; });
    connect(SaveReport, &QPushButton::clicked, this, &StringsTab::SaveReport_Click);
    updateListMenu();
}

void StringsTab::SeachString_Click()
{
    image::ImageState& state = m_host->imageState();
    if (SearchBegin->isChecked()) state.LastMatch = 0;
    if (searchText->text().isEmpty()) {
        m_host->ShowMessage(kMessageEmptySearchText);
        return;
    }
    for (QLineEdit* shown : {foundLength, foundEnd, foundStart, FoundText}) shown->clear();
    const bool handsetCodes = searchHandsetCodes->isChecked();
    std::string pattern;
    try {
        pattern = searchPattern(searchText->text().toStdString(), handsetCodes, m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    // Departure: the classic search went on from the previous text's last hit, so a
    // new text could report "no further occurrence" on its first try.
    if (pattern != m_searchedPattern || handsetCodes != m_searchedInHandsetCodes) {
        state.LastMatch = 0;
        m_searchedPattern = pattern;
        m_searchedInHandsetCodes = handsetCodes;
    }
    int passCount = hitCount->text().toInt();
    std::optional<StringHit> hit;
    {
        window::BusyPointer busy;
        hit = findNextString(state, pattern, handsetCodes, passCount);
    }
    hitCount->setText(QString::number(passCount));
    if (hit) {
        foundStart->setText(fromUtf8(hit->foundStart));
        foundEnd->setText(fromUtf8(hit->foundEnd));
        foundLength->setText(fromUtf8(hit->foundLength));
        replacementText->setMaxLength(hit->maxLength);
        const std::span<const std::uint8_t> stored(state.FirmwareImage.data() + hit->start, hit->end - hit->start);
        FoundText->setText(fromUtf8(storedText(stored, handsetCodes, m_host->codePage())));
        m_hitInHandsetCodes = handsetCodes;
    } else {
        m_host->ShowMessage(kMessageNoFurtherOccurrence);
    }
    Add2List->setEnabled(true);
}

void StringsTab::applyTexts()
{
    FoundLabel->setText(m_host->text("FoundLabel"));
    applyTranslationTexts();
}

void StringsTab::Add2List_Click()
{
    std::optional<StringEditRow> row;
    try {
        row = makeFittedEditRow(m_editModel->rows().size(), foundStart->text().toStdString(),
                                foundEnd->text().toStdString(), replacementText->text().toStdString(),
                                foundLength->text().toStdString(), m_hitInHandsetCodes, m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    if (!row) {
        m_host->ShowMessage(kMessageEmptyEditFields);
        return;
    }
    addEditRow(*row);
    updateListMenu();
}

void StringsTab::addEditRow(const StringEditRow& row) { m_editModel->append(row); }

void StringsTab::Removeone_Click()
{
    const std::vector<int> selected = window::selectedRows(editList);
    if (selected.empty()) return;
    m_editModel->removeRow(selected.front());
    updateListMenu();
}

void StringsTab::Removeall_Click()
{
    m_editModel->clear();
    updateListMenu();
}

void StringsTab::updateListMenu()
{
    if (!m_host) return;
    const std::vector<StringEditRow>& rows = m_editModel->rows();
    const bool anyChecked = std::any_of(rows.begin(), rows.end(), [](const StringEditRow& row) { return row.checked; });
    Removeone->setEnabled(!window::selectedRows(editList).empty());
    Removeall->setEnabled(!rows.empty());
    outputStrS3->setEnabled(anyChecked && m_host->takesSRecordPatch());
    outputStraxf->setEnabled(anyChecked && m_host->takesInImagePatch());
}

void StringsTab::ListView2_ContextMenu(const QPoint& position)
{
    menufile4->popup(editList->viewport()->mapToGlobal(position));
}

std::vector<StringEditRow> StringsTab::rowsWhere(bool checkedOnly) const
{
    std::vector<StringEditRow> rows;
    for (const StringEditRow& row : m_editModel->rows())
        if (!checkedOnly || row.checked) rows.push_back(row);
    return rows;
}

std::optional<std::vector<image::Region>> StringsTab::checkedRegions()
{
    const std::vector<StringEditRow> rows = checkedRows();
    if (rows.empty()) return std::nullopt;
    try {
        return editListRegions(rows, writeHandsetCodes->isChecked(), m_host->imageState().FirmwareLength,
                               m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return std::nullopt;
    }
}

void StringsTab::outputStrS3_Click()
{
    if (!m_host->takesSRecordPatch()) return;
    if (const auto regions = checkedRegions()) m_host->writeSRecordPatch(*regions);
}

void StringsTab::outputStraxf_Click()
{
    if (!m_host->takesInImagePatch()) return;
    if (const auto regions = checkedRegions()) m_host->patchInImage(*regions);
}

}  // namespace zevran::strings
