#include "tones_tab.hpp"
#include "tone_columns.hpp"

#include "tones/tone_check.hpp"
#include "tones/tone_export.hpp"
#include "tones/tone_table.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"
#include "strings/code_page.hpp"

#include <QDesktopServices>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QSplitter>
#include <QTreeView>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>
#include <span>

namespace zevran::tones {

using window::BusyPointer;
using window::fromUtf8;
using window::named;
using window::reportView;
using window::RowTableModel;


TonesTab::TonesTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("TonesTab");
    // The panes share the tab as the user drags the splitters between them.
    auto* rightPanes = named(new QSplitter(Qt::Vertical, this), "TonesRightSplitter");
    rightPanes->addWidget(buildToneFilesFrame());
    rightPanes->addWidget(buildPlanFrame());
    rightPanes->setChildrenCollapsible(false);
    auto* panes = named(new QSplitter(Qt::Horizontal, this), "TonesSplitter");
    panes->addWidget(buildTonesFrame());
    panes->addWidget(rightPanes);
    panes->setStretchFactor(0, 3);
    panes->setStretchFactor(1, 2);
    panes->setChildrenCollapsible(false);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(panes);

    playFile = [](const QString& path) { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); };
}

// The tones found in the image, with their notes, and the scan's buttons.
QGroupBox* TonesTab::buildTonesFrame()
{
    auto* frame5 = named(new QGroupBox(this), "Frame5", tr("Tones in the image"));
    m_toneModel = new RowTableModel<ToneSlot>(toneColumns(), this);
    m_toneModel->setHeaders({tr("No."), tr("Start"), tr("End"), tr("Size"), tr("Note")});
    toneList = reportView("ListView4", m_toneModel, frame5);
    // The note editor floats over the note cell of the row being edited.
    noteEditor = named(new QLineEdit(toneList->viewport()), "Text5");
    noteEditor->setVisible(false);
    GetTone = named(new QPushButton(frame5), "GetTone", tr("Scan tones"));
    SaveToneTable = named(new QPushButton(frame5), "SaveToneTable", tr("Save table"));
    OpenToneTable = named(new QPushButton(frame5), "OpenToneTable", tr("Open table"));
    scanProgress = window::hiddenProgress("ProgressBar1", frame5);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(GetTone);
    buttons->addWidget(OpenToneTable);
    buttons->addWidget(SaveToneTable);
    buttons->addStretch();
    ToneCount = named(new QLabel(frame5), "ToneCount");
    buttons->addWidget(ToneCount);
    auto* frame5Layout = new QVBoxLayout(frame5);
    frame5Layout->addLayout(buttons);
    frame5Layout->addWidget(toneList, 1);
    frame5Layout->addWidget(scanProgress);
    return frame5;
}

// The folders and the tone files of the one chosen.
QGroupBox* TonesTab::buildToneFilesFrame()
{
    auto* frame7 = named(new QGroupBox(this), "Frame7", tr("Tone files"));
    folders = new QFileSystemModel(this);
    folders->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders->setRootPath(QString());
    ET1 = named(new QTreeView(frame7), "ET1");
    ET1->setModel(folders);
    for (int column = 1; column < folders->columnCount(); ++column) ET1->hideColumn(column);
    ET1->setHeaderHidden(true);
    connect(folders, &QFileSystemModel::directoryLoaded, this, [this](const QString& loaded) {
        if (m_openedFolder.isEmpty() || currentFolder() != m_openedFolder) return;
        if (m_openedFolder.startsWith(loaded)) ET1->scrollTo(ET1->currentIndex(), QAbstractItemView::PositionAtCenter);
    });
    m_fileModel = new RowTableModel<ToneFileRow>(fileColumns(), this);
    m_fileModel->setHeaders({tr("Name"), tr("Size")});
    toneFileList = reportView("ListView1", m_fileModel, frame7);
    toneFileList->header()->setSectionsClickable(true);
    auto* folderPanes = named(new QSplitter(Qt::Vertical, frame7), "TonesFolderSplitter");
    folderPanes->addWidget(ET1);
    folderPanes->addWidget(toneFileList);
    folderPanes->setChildrenCollapsible(false);
    auto* frame7Layout = new QVBoxLayout(frame7);
    frame7Layout->addWidget(folderPanes);
    return frame7;
}

QGroupBox* TonesTab::buildPlanFrame()
{
    auto* frame8 = named(new QGroupBox(this), "Frame8", tr("Replacement plan"));
    m_planModel = new RowTableModel<ReplacementRow>(planColumns(), this);
    m_planModel->setHeaders({tr("No."), tr("New tone"), tr("Target slot")});
    planList = reportView("ListView3", m_planModel, frame8);
    auto* frame8Layout = new QVBoxLayout(frame8);
    frame8Layout->addWidget(planList);
    return frame8;
}

std::vector<window::CaptionKey> TonesTab::captionKeys()
{
    std::vector<window::CaptionKey> keys;
    for (const char* frame : {"Frame5", "Frame7", "Frame8"})
        keys.push_back({"SSTab1", std::string(frame) + "Name", frame});
    for (const char* button : {"GetTone", "SaveToneTable", "OpenToneTable"}) keys.push_back({"SSTab1", button, button});
    for (int c = 0; c < 2; ++c) keys.push_back({"SSTab1", "Listview1Header" + std::to_string(c + 1), "ListView1", c});
    for (int c = 0; c < 3; ++c) keys.push_back({"SSTab1", "Listview3Header" + std::to_string(c + 1), "ListView3", c});
    for (int c = 0; c < 5; ++c) keys.push_back({"SSTab1", "Listview4Header" + std::to_string(c + 1), "ListView4", c});
    return keys;
}

QString TonesTab::currentFolder() const { return folders->filePath(ET1->currentIndex()); }

void TonesTab::setCurrentFolder(const QString& folder)
{
    const QModelIndex index = folders->index(folder);
    ET1->setCurrentIndex(index);
    // Expands the folder's parents; their rows arrive later, as each is read, so the
    // tree scrolls to the folder again after every parent of it has loaded.
    ET1->scrollTo(index, QAbstractItemView::PositionAtCenter);
    m_openedFolder = index.isValid() ? folders->filePath(index) : QString();
}

void TonesTab::attach(window::TabHost& host, QMenu* toneListMenu, QMenu* fileListMenu, QMenu* planMenu,
                      QLabel* checkPanel)
{
    m_host = &host;
    m_checkPanel = checkPanel;
    connectCommands();
    connectMenus(toneListMenu, fileListMenu, planMenu);
}

void TonesTab::connectCommands()
{
    connect(GetTone, &QPushButton::clicked, this, &TonesTab::GetTone_Click);
    connect(SaveToneTable, &QPushButton::clicked, this, &TonesTab::SaveToneTable_Click);
    connect(OpenToneTable, &QPushButton::clicked, this, &TonesTab::OpenToneTable_Click);
    connect(toneList, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& at) { editNote(at.row()); });
    connect(toneList->selectionModel(), &QItemSelectionModel::selectionChanged, this, &TonesTab::showToneCheck);
    // A new list drops the selection without a word from the selection model.
    connect(m_toneModel, &QAbstractItemModel::modelReset, this, &TonesTab::showToneCheck);
    connect(noteEditor, &QLineEdit::editingFinished, this, &TonesTab::Text5_LostFocus);
    noteEditor->installEventFilter(this);
    connect(ET1->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) { showToneFiles(folders->filePath(index)); });
    connect(toneFileList->header(), &QHeaderView::sectionClicked, this, &TonesTab::ListView1_ColumnClick);
    connect(toneFileList, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& at) {
        if (at.isValid()) playFile(QDir(m_listedFolder).filePath(m_fileModel->row(at.row()).name));
    });
}

void TonesTab::connectMenus(QMenu* toneListMenu, QMenu* fileListMenu, QMenu* planMenu)
{
    // Each menu's commands in their order; "-" names a separator line.
    const std::vector<std::pair<QMenu*, std::vector<const char*>>> items{
        {toneListMenu, {"outputselect", "outputall", "-line1", "addaddress"}},
        {fileListMenu, {"addmmf"}},
        {planMenu,
         {"moveone", "moveall", "-line4", "movemmf", "moveallmmf", "-line3", "moveaddress", "movealladdress", "-line2",
          "outputs3", "outputaxf"}},
    };
    for (const auto& [menu, names] : items)
        for (const char* name : names) {
            if (name[0] == '-') window::menuSeparator(menu, name + 1);
            else m_commands.insert(QLatin1String(name), window::menuAction(menu, name));
        }
    struct Popup {
        QTreeView* list;
        QMenu* menu;
        void (TonesTab::*enable)();
    };
    for (const Popup& popup : {Popup{toneList, toneListMenu, &TonesTab::enableMenufile1},
                               Popup{toneFileList, fileListMenu, &TonesTab::enableMenufile2},
                               Popup{planList, planMenu, &TonesTab::enableMenufile3}}) {
        QMenu* menu = popup.menu;
        connect(menu, &QMenu::aboutToShow, this, popup.enable);
        connect(popup.list, &QWidget::customContextMenuRequested, this,
                [menu, list = popup.list](const QPoint& at) { menu->popup(list->viewport()->mapToGlobal(at)); });
    }
    const std::vector<std::pair<const char*, void (TonesTab::*)()>> commands{
        {"outputselect", &TonesTab::outputselect_Click}, {"outputall", &TonesTab::outputall_Click},
        {"addaddress", &TonesTab::addaddress_Click},     {"addmmf", &TonesTab::addmmf_Click},
        {"moveone", &TonesTab::moveone_Click},           {"moveall", &TonesTab::moveall_Click},
        {"movemmf", &TonesTab::movemmf_Click},           {"moveaddress", &TonesTab::moveaddress_Click},
        {"moveallmmf", &TonesTab::moveallmmf_Click},     {"movealladdress", &TonesTab::movealladdress_Click},
        {"outputs3", &TonesTab::outputs3_Click},         {"outputaxf", &TonesTab::outputaxf_Click},
    };
    for (const auto& [name, command] : commands) connect(this->command(name), &QAction::triggered, this, command);
    enableOutputsForKind();
}

void TonesTab::enableOutputsForKind()
{
    command("outputs3")->setEnabled(m_host->takesSRecordPatch());
    command("outputaxf")->setEnabled(m_host->takesInImagePatch());
}

void TonesTab::enableMenufile1()
{
    const bool rows = m_toneModel->rowCount() > 0;
    const bool loaded = m_host->imageState().ImageLoaded;
    command("addaddress")->setEnabled(rows);
    command("outputselect")->setEnabled(rows && loaded);
    command("outputall")->setEnabled(rows && loaded);
}

void TonesTab::enableMenufile2() { command("addmmf")->setEnabled(!window::selectedRows(toneFileList).empty()); }

const std::vector<ToneSlot>& TonesTab::toneRows() const { return m_toneModel->rows(); }

const std::vector<ReplacementRow>& TonesTab::planRows() const { return m_planModel->rows(); }

const std::vector<ToneFileRow>& TonesTab::toneFileRows() const { return m_fileModel->rows(); }

// One reset of the model: thousands of rows go in at once.
void TonesTab::showToneRows(const std::vector<ToneSlot>& rows) { m_toneModel->setRows(rows); }

void TonesTab::GetTone_Click()
{
    image::ImageState& image = m_host->imageState();
    if (!image.ImageLoaded) {
        m_host->ShowMessage(3);
        return;
    }
    scanProgress->setVisible(true);
    m_toneModel->clear();
    const int length = static_cast<int>(std::min<std::size_t>(image.FirmwareImage.size(), 0x7FFFFFFF));
    scanProgress->setRange(1, std::max(1, length));
    scanProgress->setValue(std::clamp(100000, 1, std::max(1, length)));
    std::vector<ToneSlot> rows;
    {
        BusyPointer busy;
        rows = scanTones(image, [this](std::int32_t at) { scanProgress->setValue(std::max(1, at)); });
    }
    showToneRows(rows);
    m_tonesFound = rows.size();
    showToneCount();
    QCoreApplication::processEvents();
    scanProgress->setValue(1);
    scanProgress->setVisible(false);
}

void TonesTab::SaveToneTable_Click()
{
    if (m_toneModel->rowCount() == 0) {
        m_host->ShowMessage(4);
        return;
    }
    const QString path = m_host->dialogs().saveFile(m_host->settings().TableSavePath, m_host->filter(4), 2);
    if (path.isEmpty()) return;
    m_host->settings().TableSavePath = fromUtf8(image::FolderOf(path.toStdString()));
    try {
        const std::string caption =
            m_toneModel->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString().toStdString();
        const std::string text = strings::encodeText(toneTableText(toneRows(), caption), m_host->codePage());
        m_host->document().refuseAsOutput(path.toStdString());
        // An existing table is replaced whole, never left half old and half new.
        image::saveFileSafely(path.toStdString(),
                              std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    } catch (const std::exception& error) {
        m_host->showError(path + ": " + m_host->failureText(error));
        return;
    }
    m_host->ShowMessage(6);
}

void TonesTab::OpenToneTable_Click()
{
    const QString path = m_host->dialogs().openFile(m_host->settings().TableSavePath, m_host->filter(4), 2);
    if (path.isEmpty()) return;
    m_host->settings().TableSavePath = fromUtf8(image::FolderOf(path.toStdString()));
    ToneTableRead table;
    try {
        const std::vector<std::uint8_t> bytes = image::readWholeFile(path.toStdString());
        table = readToneTable(strings::decodeText(std::string(bytes.begin(), bytes.end()), m_host->codePage()));
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    showToneRows(table.rows);
    if (table.stoppedAtLine)
        m_host->showError(m_host->text("ToneTableStopped").arg(path).arg(*table.stoppedAtLine).arg(table.rows.size()));
}

bool TonesTab::hasSelectedTone() const { return !window::selectedRows(toneList).empty(); }

void TonesTab::outputselect_Click() { exportTones(false); }

void TonesTab::outputall_Click() { exportTones(true); }

void TonesTab::exportTones(bool everyRow)
{
    if (!hasSelectedTone()) {
        m_host->ShowMessage(8);
        return;
    }
    const QString picked = m_host->dialogs().saveFile(m_host->settings().RingSavePath, m_host->filter(6), 2);
    if (picked.isEmpty()) return;
    m_host->settings().RingSavePath = fromUtf8(image::FolderOf(picked.toStdString()));
    // Pending events run during the export: it works on the rows and selection as they were.
    const std::vector<ToneSlot> rows = toneRows();
    std::vector<bool> selected(rows.size());
    int written = 0;
    for (int row : window::selectedRows(toneList)) selected[static_cast<std::size_t>(row)] = true;
    scanProgress->setRange(0, std::max<int>(1, static_cast<int>(rows.size())));
    scanProgress->setVisible(true);
    QString failure;
    // Pending events run between the files: the window may not close under the export.
    window::KeepWindowOpen keepOpen(*m_host);
    try {
        std::optional<BusyPointer> busy;
        if (everyRow) busy.emplace();
        tones::exportTones(
            m_host->document(), rows, [&](std::size_t i) { return everyRow || selected[i]; }, picked.toStdString(),
            [&](std::size_t i) {
                if (everyRow || selected[i]) ++written;
                QCoreApplication::processEvents();
                scanProgress->setValue(static_cast<int>(i) + 1);
            });
    } catch (const std::exception& error) {
        failure = m_host->failureText(error);
    }
    if (!m_listedFolder.isEmpty()) showToneFiles(m_listedFolder);
    const QString counted = m_host->text("FilesWritten").arg(written);
    if (failure.isEmpty()) m_host->showMessageWith(9, counted);
    else m_host->showError(m_host->text("ToneExportStopped").arg(failure) + "\n" + counted);
    if (everyRow) scanProgress->setValue(1);
    scanProgress->setVisible(false);
}

void TonesTab::editNote(int row)
{
    if (row < 0 || row >= m_toneModel->rowCount() || !toneList->selectionModel()->isRowSelected(row, {})) return;
    m_noteRow = row;
    const QRect cell = toneList->visualRect(m_toneModel->index(row, 4));
    const int x = toneList->header()->sectionViewportPosition(4);
    noteEditor->setGeometry(x, cell.top(), toneList->header()->sectionSize(4), cell.height());
    noteEditor->setText(fromUtf8(m_toneModel->row(row).note));
    noteEditor->setVisible(true);
    noteEditor->selectAll();
    noteEditor->setFocus();
}

void TonesTab::Text5_LostFocus()
{
    const int row = std::exchange(m_noteRow, -1);
    if (row < 0) return;
    noteEditor->setVisible(false);
    toneList->setFocus();
    // The list may have been scanned again under the editor.
    if (row >= m_toneModel->rowCount()) return;
    ToneSlot slot = m_toneModel->row(row);
    slot.note = noteEditor->text().toStdString();
    m_toneModel->replaceRow(row, std::move(slot));
}

bool TonesTab::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == noteEditor && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        cancelNote();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void TonesTab::cancelNote()
{
    // Departure: the classic editor committed the note whichever way the edit ended.
    if (std::exchange(m_noteRow, -1) < 0) return;
    noteEditor->setVisible(false);
    toneList->setFocus();
}

void TonesTab::applyTexts()
{
    // The plan's file cells carry the unit word of the language they were added in.
    const std::string unit = planSizeUnit();
    if (!m_planUnit.empty() && unit != m_planUnit)
        for (int i = 0; i < m_planModel->rowCount(); ++i) {
            // Row by row, so the plan keeps its selection.
            ReplacementRow row = m_planModel->row(i);
            row.file = withPlanUnit(row.file, m_planUnit, unit);
            m_planModel->replaceRow(i, std::move(row));
        }
    m_planUnit = unit;
    showToneCount();
    showToneCheck();
}

void TonesTab::showToneCount()
{
    if (m_tonesFound) ToneCount->setText(m_host->text("TonesFound").arg(*m_tonesFound));
}

void TonesTab::showToneCheck()
{
    QLabel* panel = m_checkPanel;
    const std::vector<int> selected = window::selectedRows(toneList);
    if (selected.empty()) {
        panel->clear();
        return;
    }
    const ToneSlot& row = m_toneModel->row(selected.front());
    ToneCheck check;
    try {
        check = checkTone(toneBytes(m_host->imageState(), row));
    } catch (const std::exception&) {
        // A row from a table of another image, or a tone cut by the image's end.
        check.crc = CrcState::Bad;
    }
    QString text = fromUtf8(row.number) + ": " +
                   m_host->text(check.crc == CrcState::Ok    ? "ToneCrcOk"
                                : check.crc == CrcState::Bad ? "ToneCrcBad"
                                                             : "ToneCrcNone");
    // The title comes decoded by the tone's own code type.
    if (!check.title.empty()) text += "  " + m_host->text("ToneTitle") + " " + fromUtf8(check.title);
    panel->setText(text);
}

}  // namespace zevran::tones
