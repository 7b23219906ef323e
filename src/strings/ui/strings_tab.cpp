#include "strings_tab.hpp"

#include "strings/string_search.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QAction>
#include <QButtonGroup>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>

namespace zevran::strings {

using image::named;

using image::fromUtf8;

namespace {

// Columns of ListView2.
enum Column { kNumber, kStart, kEnd, kText, kLength };

}  // namespace

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
    Text11 = named(new QLineEdit(frame10), "Text11");
    Option1 = named(new QRadioButton(frame10), "Option1", tr("Handset codes"));
    Option2 = named(new QRadioButton(frame10), "Option2", tr("Single-byte codes"));
    Option2->setChecked(true);
    auto* searchCodes = new QButtonGroup(frame10);
    searchCodes->addButton(Option1);
    searchCodes->addButton(Option2);
    SearchBegin = named(new QCheckBox(frame10), "SearchBegin", tr("From the beginning"));
    SeachString = named(new QPushButton(frame10), "SeachString", tr("Search"));
    auto* frame10Layout = new QGridLayout(frame10);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label4", tr("Text:")), 0, 0);
    frame10Layout->addWidget(Text11, 0, 1, 1, 3);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label13", tr("Search in:")), 1, 0);
    frame10Layout->addWidget(Option2, 1, 1);
    frame10Layout->addWidget(Option1, 1, 2);
    frame10Layout->addWidget(SearchBegin, 1, 3);
    frame10Layout->addWidget(SeachString, 0, 4);
    return frame10;
}

// The hit found, its stored text and the replacement typed for it.
QGroupBox* StringsTab::buildFoundFrame()
{
    auto* frame11 = named(new QGroupBox(this), "Frame11", tr("Found"));
    Text4 = named(new QLineEdit(frame11), "Text4");
    Text10 = named(new QLineEdit(frame11), "Text10");
    Text9 = named(new QLineEdit(frame11), "Text9");
    Text8 = named(new QLineEdit(frame11), "Text8");
    Text7 = named(new QLineEdit(frame11), "Text7");
    FoundText = named(new QLineEdit(frame11), "FoundText");
    FoundLabel = named(new QLabel(frame11), "FoundLabel", tr("Stored text:"));
    for (QLineEdit* shown : {Text4, Text10, Text9, Text8, FoundText}) shown->setReadOnly(true);
    Add2List = named(new QPushButton(frame11), "Add2List", tr("Add to list"));
    Add2List->setEnabled(false);
    auto* frame11Layout = new QGridLayout(frame11);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label8", tr("Hits:")), 0, 0);
    frame11Layout->addWidget(Text4, 0, 1);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label9", tr("Start:")), 0, 2);
    frame11Layout->addWidget(Text10, 0, 3);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label10", tr("End:")), 0, 4);
    frame11Layout->addWidget(Text9, 0, 5);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label11", tr("Length:")), 0, 6);
    frame11Layout->addWidget(Text8, 0, 7);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label12", tr("Replacement:")), 1, 0);
    frame11Layout->addWidget(Text7, 1, 1, 1, 6);
    frame11Layout->addWidget(Add2List, 1, 7);
    frame11Layout->addWidget(FoundLabel, 2, 0);
    frame11Layout->addWidget(FoundText, 2, 1, 1, 7);
    return frame11;
}

// The edit list and the codes its texts are written in.
QGroupBox* StringsTab::buildEditListFrame()
{
    auto* frame13 = named(new QGroupBox(this), "Frame13", tr("Edit list"));
    ListView2 = image::reportList("ListView2", {tr("No."), tr("Start"), tr("End"), tr("Text"), tr("Length")}, frame13);
    image::showCellsInToolTips(ListView2, {kText});
    // `Removeone` removes "the selected row": there is never more than one.
    ListView2->setSelectionMode(QAbstractItemView::SingleSelection);
    Option3 = named(new QRadioButton(frame13), "Option3", tr("Write handset codes"));
    Option4 = named(new QRadioButton(frame13), "Option4", tr("Write single-byte codes"));
    Option4->setChecked(true);
    auto* outputCodes = new QButtonGroup(frame13);
    outputCodes->addButton(Option3);
    outputCodes->addButton(Option4);
    auto* encoding = new QHBoxLayout;
    encoding->addWidget(named(new QLabel(frame13), "Label14", tr("Write in:")));
    encoding->addWidget(Option4);
    encoding->addWidget(Option3);
    encoding->addStretch();
    auto* frame13Layout = new QVBoxLayout(frame13);
    frame13Layout->addWidget(ListView2, 1);
    frame13Layout->addLayout(encoding);
    return frame13;
}

std::vector<image::CaptionKey> StringsTab::captionKeys()
{
    std::vector<image::CaptionKey> keys;
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

void StringsTab::attach(image::TabHost& host, QMenu* editListMenu)
{
    m_host = &host;
    menufile4 = editListMenu;
    Removeone = image::menuAction(menufile4, "Removeone");
    Removeall = image::menuAction(menufile4, "Removeall");
    image::menuSeparator(menufile4, "line5");
    outputStrS3 = image::menuAction(menufile4, "outputStrS3");
    outputStraxf = image::menuAction(menufile4, "outputStraxf");
    connect(SeachString, &QPushButton::clicked, this, &StringsTab::SeachString_Click);
    connect(Text11, &QLineEdit::returnPressed, this, &StringsTab::SeachString_Click);
    connect(Add2List, &QPushButton::clicked, this, &StringsTab::Add2List_Click);
    connect(Removeone, &QAction::triggered, this, &StringsTab::Removeone_Click);
    connect(Removeall, &QAction::triggered, this, &StringsTab::Removeall_Click);
    connect(outputStrS3, &QAction::triggered, this, &StringsTab::outputStrS3_Click);
    connect(outputStraxf, &QAction::triggered, this, &StringsTab::outputStraxf_Click);
    connect(ListView2, &QTreeWidget::customContextMenuRequested, this, &StringsTab::ListView2_ContextMenu);
    connect(ListView2, &QTreeWidget::itemChanged, this, &StringsTab::updateListMenu);
    connect(ListView2, &QTreeWidget::itemSelectionChanged, this, &StringsTab::updateListMenu);
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
    if (Text11->text().isEmpty()) {
        m_host->ShowMessage(kMessageEmptySearchText);
        return;
    }
    for (QLineEdit* shown : {Text8, Text9, Text10, FoundText}) shown->clear();
    const bool handsetCodes = Option1->isChecked();
    std::string pattern;
    try {
        pattern = searchPattern(Text11->text().toStdString(), handsetCodes, m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showError(m_host->failureText(error));
        return;
    }
    // Departure: the classic search went on from the previous text's last hit, so a
    // new text could report "no further occurrence" on its first try.
    if (pattern != m_searchedPattern || handsetCodes != m_searchedInHandsetCodes) {
        state.LastMatch = 0;
        m_searchedPattern = pattern;
        m_searchedInHandsetCodes = handsetCodes;
    }
    int passCount = Text4->text().toInt();
    std::optional<StringHit> hit;
    {
        image::BusyPointer busy;
        hit = findNextString(state, pattern, handsetCodes, passCount);
    }
    Text4->setText(QString::number(passCount));
    if (hit) {
        Text10->setText(fromUtf8(hit->Text10));
        Text9->setText(fromUtf8(hit->Text9));
        Text8->setText(fromUtf8(hit->Text8));
        Text7->setMaxLength(hit->maxLength);
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
        row = makeFittedEditRow(static_cast<std::size_t>(ListView2->topLevelItemCount()), Text10->text().toStdString(),
                                Text9->text().toStdString(), Text7->text().toStdString(), Text8->text().toStdString(),
                                m_hitInHandsetCodes, m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showError(m_host->failureText(error));
        return;
    }
    if (!row) {
        m_host->ShowMessage(kMessageEmptyEditFields);
        return;
    }
    addEditRow(*row);
    updateListMenu();
}

void StringsTab::addEditRow(const StringEditRow& row)
{
    auto* item = new QTreeWidgetItem(
        {fromUtf8(row.number), fromUtf8(row.start), fromUtf8(row.end), fromUtf8(row.text), fromUtf8(row.length)});
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    // A new replacement is meant to be written: it starts checked.
    item->setCheckState(kNumber, Qt::Checked);
    if (row.handsetCodes) item->setData(kNumber, Qt::UserRole, *row.handsetCodes);
    ListView2->addTopLevelItem(item);
}

void StringsTab::Removeone_Click()
{
    const QList<QTreeWidgetItem*> selected = ListView2->selectedItems();
    if (selected.isEmpty()) return;
    delete selected.first();
    updateListMenu();
}

void StringsTab::Removeall_Click()
{
    ListView2->clear();
    updateListMenu();
}

void StringsTab::updateListMenu()
{
    if (!m_host) return;
    bool anyChecked = false;
    for (int i = 0; i < ListView2->topLevelItemCount() && !anyChecked; ++i)
        anyChecked = ListView2->topLevelItem(i)->checkState(kNumber) == Qt::Checked;
    Removeone->setEnabled(!ListView2->selectedItems().isEmpty());
    Removeall->setEnabled(ListView2->topLevelItemCount() > 0);
    outputStrS3->setEnabled(anyChecked && m_host->takesSRecordPatch());
    outputStraxf->setEnabled(anyChecked && m_host->takesInImagePatch());
}

void StringsTab::ListView2_ContextMenu(const QPoint& position)
{
    menufile4->popup(ListView2->viewport()->mapToGlobal(position));
}

std::vector<StringEditRow> StringsTab::rowsWhere(bool checkedOnly) const
{
    std::vector<StringEditRow> rows;
    for (int i = 0; i < ListView2->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = ListView2->topLevelItem(i);
        if (checkedOnly && item->checkState(kNumber) != Qt::Checked) continue;
        rows.push_back({item->text(kNumber).toStdString(), item->text(kStart).toStdString(),
                        item->text(kEnd).toStdString(), item->text(kText).toStdString(),
                        item->text(kLength).toStdString()});
        // An imported translation is written in its string's encoding.
        const QVariant ownCodes = item->data(kNumber, Qt::UserRole);
        if (ownCodes.isValid()) rows.back().handsetCodes = ownCodes.toBool();
    }
    return rows;
}

std::optional<std::vector<image::Region>> StringsTab::checkedRegions()
{
    const std::vector<StringEditRow> rows = checkedRows();
    if (rows.empty()) return std::nullopt;
    try {
        return editListRegions(rows, Option3->isChecked(), m_host->imageState().FirmwareLength, m_host->codePage());
    } catch (const std::exception& error) {
        m_host->showError(m_host->failureText(error));
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
