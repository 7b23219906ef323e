// The strings tab's translation frame: "Export all strings..." writes every stored
// string to a PO, XLIFF or CSV file; "Import translation..." reads one back, adds a
// checked edit-list row for each translation that fits and lists the others, whose
// outcomes "Save report..." writes as CSV. The jobs live in string_extract and
// translation_import; this file only asks, calls and shows.
#include "strings_tab.hpp"

#include "strings/string_extract.hpp"
#include "strings/translation_files.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "image/temporary_output.hpp"
#include "window/row_table_model.hpp"
#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>

namespace zevran::strings {

using window::fromUtf8;
using window::named;

namespace {

QString pathText(const std::string& path) { return fromUtf8(path); }

using RefusedColumn = window::RowColumn<EntryResult>;

// An entry's text cut by its column shows whole under the pointer.
RefusedColumn entryCell(std::string TranslationEntry::*cell)
{
    return {.text = [cell](const EntryResult& result) { return fromUtf8(result.entry.*cell); }, .toolTip = true};
}

}  // namespace

// The report list's columns: the entry's key, its source and translation, and why it
// does not fit in the current language.
void StringsTab::makeRefusedModel()
{
    const RefusedColumn address{
        .text = [](const EntryResult& result) { return fromUtf8(entryKey(result.entry.address, result.entry.codes)); }};
    const RefusedColumn outcome{.text = [this](const EntryResult& result) { return outcomeText(result); },
                                .toolTip = true};
    m_refusedModel = new window::RowTableModel<EntryResult>(
        {address, entryCell(&TranslationEntry::source), entryCell(&TranslationEntry::target), outcome}, this);
    m_refusedModel->setHeaders({tr("Address"), tr("Source"), tr("Translation"), tr("Outcome")});
}

QWidget* StringsTab::makeTranslationFrame()
{
    auto* frame = named(new QGroupBox(this), "FrameTranslate", tr("Translation"));
    ExportStrings = named(new QPushButton(frame), "ExportStrings", tr("Export all strings..."));
    ImportTranslation = named(new QPushButton(frame), "ImportTranslation", tr("Import translation..."));
    ExportProgress = named(new QProgressBar(frame), "ExportProgress");
    ExportProgress->setRange(0, 100);
    ExportProgress->hide();
    StopExport = named(new QPushButton(frame), "StopExport", tr("Stop"));
    StopExport->hide();
    makeRefusedModel();
    refusedList = window::reportView("ListViewRefused", m_refusedModel, frame);
    SaveReport = named(new QPushButton(frame), "SaveReport", tr("Save report..."));
    SaveReport->setEnabled(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(ExportStrings);
    buttons->addWidget(ImportTranslation);
    buttons->addWidget(ExportProgress, 1);
    buttons->addWidget(StopExport);
    buttons->addStretch();
    buttons->addWidget(SaveReport);
    auto* layout = new QVBoxLayout(frame);
    layout->addLayout(buttons);
    layout->addWidget(refusedList, 1);
    return frame;
}

void StringsTab::applyTranslationTexts()
{
    findChild<QGroupBox*>("FrameTranslate")->setTitle(m_host->text("FrameTranslate"));
    ExportStrings->setText(m_host->text("ExportStrings"));
    ImportTranslation->setText(m_host->text("ImportTranslation"));
    StopExport->setText(m_host->text("StopExport"));
    SaveReport->setText(m_host->text("SaveReport"));
    m_refusedModel->setHeaders({m_host->text("RefusedHeader1"), m_host->text("RefusedHeader2"),
                                m_host->text("RefusedHeader3"), m_host->text("RefusedHeader4")});
    showRefused();
}

void StringsTab::ExportStrings_Click()
{
    image::ImageState& state = m_host->imageState();
    const QString path =
        m_host->dialogs().saveFile(m_host->settings().TableSavePath, m_host->text("TranslationFilter"), 1);
    if (path.isEmpty()) return;
    m_host->settings().TableSavePath = fromUtf8(image::FolderOf(path.toStdString()));
    window::KeepWindowOpen keepOpen(*m_host);
    ExtractOptions options;
    options.codePage = m_host->codePage();
    // Progress and Stop: the finder reports every MiB, and pending events run between.
    options.progress = [this](std::size_t done, std::size_t total) {
        ExportProgress->setValue(static_cast<int>(total ? done * 100 / total : 100));
        QApplication::processEvents();
        return !m_stopExport;
    };
    m_stopExport = false;
    ExportProgress->setValue(0);
    ExportProgress->show();
    StopExport->show();
    // Events run between the MiB read: no second job starts meanwhile.
    ExportStrings->setEnabled(false);
    ImportTranslation->setEnabled(false);
    ExtractResult result;
    QString failure;
    try {
        result = extractStrings(state.FirmwareImage, options);
    } catch (const std::exception& error) {  // a code page iconv does not know
        failure = m_host->failureText(error);
    }
    ExportProgress->hide();
    StopExport->hide();
    ExportStrings->setEnabled(true);
    ImportTranslation->setEnabled(true);
    if (!failure.isEmpty()) {
        m_host->showError(failure);
        return;
    }
    if (result.stopped) {
        m_host->showInformation(m_host->text("ExportStopped"));
        return;
    }
    try {
        m_host->document().refuseAsOutput(path.toStdString());
        writeTranslationFile(path.toStdString(), result.strings, image::FileNameOf(state.FirmwarePath));
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    m_host->showInformation(m_host->text("StringsExported").arg(result.strings.size()).arg(path));
}

void StringsTab::ImportTranslation_Click()
{
    const QString path =
        m_host->dialogs().openFile(m_host->settings().TableSavePath, m_host->text("TranslationFilter"), 1);
    if (path.isEmpty()) return;
    m_host->settings().TableSavePath = fromUtf8(image::FolderOf(path.toStdString()));
    std::vector<TranslationEntry> entries;
    try {
        entries = readTranslationFile(path.toStdString());
    } catch (const TranslationFileError& error) {
        m_host->showError(fileFailureText(error.failure()));
        return;
    }
    std::vector<StringEditRow> rows;
    try {
        ImportResult imported = importTranslations(m_host->imageState().FirmwareImage, entries, m_host->codePage());
        for (const EntryResult& result : imported.results)
            if (result.outcome == ImportOutcome::Fits)
                rows.push_back(editRowOf(result, m_editModel->rows().size() + rows.size(), m_host->codePage()));
        m_lastImport = std::move(imported);
    } catch (const std::exception& error) {  // a code page iconv does not know
        m_host->showFailure(error);
        return;
    }
    for (const StringEditRow& row : rows) addEditRow(row);
    showRefused();
    SaveReport->setEnabled(!m_lastImport.results.empty());
    updateListMenu();
    m_host->showInformation(m_host->text("TranslationImported")
                                .arg(m_lastImport.fitting)
                                .arg(m_lastImport.results.size() - m_lastImport.fitting)
                                .arg(m_lastImport.untranslated));
}

void StringsTab::showRefused()
{
    std::vector<EntryResult> refused;
    std::copy_if(m_lastImport.results.begin(), m_lastImport.results.end(), std::back_inserter(refused),
                 [](const EntryResult& result) { return result.outcome != ImportOutcome::Fits; });
    m_refusedModel->setRows(std::move(refused));
}

void StringsTab::SaveReport_Click()
{
    const QString path = m_host->dialogs().saveFile(m_host->settings().TableSavePath, m_host->text("ReportFilter"), 1);
    if (path.isEmpty()) return;
    m_host->settings().TableSavePath = fromUtf8(image::FolderOf(path.toStdString()));
    try {
        m_host->document().refuseAsOutput(path.toStdString());
        image::TemporaryOutput report(path.toStdString(), image::kSavingMarker);
        report.stream() << reportCsv(m_lastImport);
        report.commit();
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    m_host->showInformation(m_host->text("ReportWritten").arg(path));
}

QString StringsTab::outcomeText(const EntryResult& result) const
{
    switch (result.outcome) {
    case ImportOutcome::Fits: return m_host->text("OutcomeFits");
    case ImportOutcome::OverBudget: return m_host->text("OutcomeOverBudget").arg(result.overBy);
    case ImportOutcome::NotEncodable:
        return m_host->text("OutcomeNotEncodable")
            .arg(QStringLiteral("U+%1").arg(static_cast<uint>(result.character), 4, 16, QLatin1Char('0')).toUpper());
    case ImportOutcome::StoredTextChanged: return m_host->text("OutcomeTextChanged");
    case ImportOutcome::OutsideImage: return m_host->text("OutcomeOutside");
    }
    return {};
}

QString StringsTab::fileFailureText(const TranslationFileFailure& failure) const
{
    using Reason = TranslationFileFailure::Reason;
    QString place = pathText(failure.file);
    if (failure.line) place = m_host->text("TranslationLine").arg(place).arg(failure.line);
    if (failure.entry) place = m_host->text("TranslationEntryPlace").arg(place).arg(failure.entry);
    const QString detail = fromUtf8(failure.detail);
    switch (failure.reason) {
    case Reason::UnknownFormat: return m_host->text("TranslationFileUnknown").arg(place);
    case Reason::Unreadable: return m_host->text("TranslationFileUnreadable").arg(place, detail);
    case Reason::Syntax: return m_host->text("TranslationFileSyntax").arg(place, detail);
    case Reason::BadKey: return m_host->text("TranslationFileBadKey").arg(place, detail);
    case Reason::MissingColumn: return m_host->text("TranslationFileMissingColumn").arg(place, detail);
    case Reason::NotUtf8: return m_host->text("TranslationFileNotUtf8").arg(place);
    case Reason::DuplicateKey: return m_host->text("TranslationFileDuplicateKey").arg(place, detail);
    }
    return place;
}

}  // namespace zevran::strings
