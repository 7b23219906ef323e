// The text-string tab: search the image for a text and plan same-length replacements.
#pragma once

#include "window/caption_keys.hpp"
#include "strings/string_edit.hpp"
#include "strings/translation_import.hpp"

#include <QWidget>
#include <vector>

class QGroupBox;
class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPoint;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTreeView;

namespace zevran::window {
class TabHost;
}

namespace zevran::window {
template <typename Row>
class RowTableModel;
}

namespace zevran::strings {

class StringsTab : public QWidget {
    Q_OBJECT
public:
    explicit StringsTab(QWidget* parent = nullptr);
    // The language file's keys that label this tab's controls, in the file's order.
    static std::vector<window::CaptionKey> captionKeys();

    // The window whose image, dialogs and messages the commands use, and the edit
    // list's pop-up menu, which the tab fills with its commands.
    void attach(window::TabHost& host, QMenu* editListMenu);

    void SeachString_Click();
    void Add2List_Click();
    void Removeone_Click();
    void Removeall_Click();
    void outputStrS3_Click();
    void outputStraxf_Click();
    // Translation: every stored string out to a PO, XLIFF or CSV file, a translated
    // file back into the edit list, and the report of the entries that did not fit.
    void ExportStrings_Click();
    void ImportTranslation_Click();
    void SaveReport_Click();

    // The list's pop-up items: `Removeone` needs a selected row, `Removeall` any row,
    // and each output a checked row and a phone file of its kind ("bin" for
    // `outputStrS3`, "asf" for `outputStraxf`). Run on every item event of the list,
    // when a phone file is opened and when the menu opens.
    void updateListMenu();
    // The found string's label in the current language.
    void applyTexts();
    // Every row of the edit list, checked or not, as the byte view reads their slots.
    std::vector<StringEditRow> editRows() const { return rowsWhere(false); }

    QLineEdit* searchText;       // text to look for
    QLineEdit* hitCount;         // hits so far in this pass
    QLineEdit* foundStart;       // start of the found string
    QLineEdit* foundEnd;         // its last byte
    QLineEdit* foundLength;      // its length
    QLineEdit* replacementText;  // the replacement
    QLineEdit* FoundText;        // the stored string found, as text
    QLabel* FoundLabel;
    QRadioButton* searchHandsetCodes;     // search in handset codes
    QRadioButton* searchSingleByteCodes;  // search in single-byte codes
    QRadioButton* writeHandsetCodes;      // write in handset codes
    QRadioButton* writeSingleByteCodes;   // write in single-byte codes
    QCheckBox* SearchBegin;
    QPushButton* SeachString;
    QPushButton* Add2List;
    QTreeView* editList;
    QPushButton* ExportStrings;
    QPushButton* ImportTranslation;
    QProgressBar* ExportProgress;  // shown while an export runs
    QPushButton* StopExport;
    QTreeView* refusedList;  // the imported entries that do not fit: address, source, translation, outcome
    QPushButton* SaveReport;

private:
    QGroupBox* buildSearchFrame();
    QGroupBox* buildFoundFrame();
    QGroupBox* buildEditListFrame();
    QWidget* makeTranslationFrame();
    void applyTranslationTexts();
    void addEditRow(const StringEditRow& row);
    void makeEditModel();
    void makeRefusedModel();
    void showRefused();
    // An outcome and a file failure in the current language.
    QString outcomeText(const EntryResult& result) const;
    QString fileFailureText(const TranslationFileFailure& failure) const;
    void ListView2_ContextMenu(const QPoint& position);
    std::vector<StringEditRow> checkedRows() const { return rowsWhere(true); }
    std::vector<StringEditRow> rowsWhere(bool checkedOnly) const;
    // The checked rows' regions in the output encoding; nullopt when a row cannot be
    // written (its error shown) or nothing is checked.
    std::optional<std::vector<image::Region>> checkedRegions();

    window::TabHost* m_host = nullptr;
    window::RowTableModel<StringEditRow>* m_editModel = nullptr;
    window::RowTableModel<EntryResult>* m_refusedModel = nullptr;
    QMenu* menufile4 = nullptr;
    QAction* Removeone = nullptr;
    QAction* Removeall = nullptr;
    QAction* outputStrS3 = nullptr;
    QAction* outputStraxf = nullptr;
    // The encoding the shown hit was found in, which the replacement is padded in.
    bool m_hitInHandsetCodes = false;
    // The pattern and encoding of the last search: another one starts a fresh pass.
    std::string m_searchedPattern;
    bool m_searchedInHandsetCodes = false;
    // The last import, whose outcomes the report holds.
    ImportResult m_lastImport;
    bool m_stopExport = false;
};

}  // namespace zevran::strings
