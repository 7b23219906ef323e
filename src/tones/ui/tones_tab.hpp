// The ring-tone tab: tones found in the image, tone files on disk and the
// replacement plan between them.
#pragma once

#include "window/caption_keys.hpp"
#include "tones/tone_plan.hpp"
#include "image/patch_writer.hpp"
#include "tones/tone_scan.hpp"

#include <QHash>
#include <QString>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

class QGroupBox;
class QAction;
class QFileSystemModel;
class QLabel;
class QMenu;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeView;

namespace zevran::window {
class TabHost;
}

namespace zevran::window {
template <typename Row>
class RowTableModel;
}

namespace zevran::tones {

struct ToneFileRow;

class TonesTab : public QWidget {
    Q_OBJECT
public:
    explicit TonesTab(QWidget* parent = nullptr);
    // The language file's keys that label this tab's controls, in the file's order.
    static std::vector<window::CaptionKey> captionKeys();

    // The window whose image, dialogs, folders and messages the commands use; the
    // pop-up menus of the tone list, the file list and the plan, which the tab fills
    // with its commands; and the status panel that shows the selected tone's check.
    void attach(window::TabHost& host, QMenu* toneListMenu, QMenu* fileListMenu, QMenu* planMenu, QLabel* checkPanel);

    QTreeView* toneFileList;  // ".mmf" files of the folder chosen in ET1
    QTreeView* planList;      // the replacement plan
    QTreeView* toneList;      // tones found in the image
    QTreeView* ET1;           // folder tree
    QFileSystemModel* folders;
    QLineEdit* noteEditor;  // note editor, shown over a row's note cell
    QPushButton* GetTone;
    QPushButton* SaveToneTable;
    QPushButton* OpenToneTable;
    QProgressBar* scanProgress;
    QLabel* ToneCount;  // how many tones the last scan found

    // The folder shown by the folder tree, remembered as "mmf File Path".
    QString currentFolder() const;
    void setCurrentFolder(const QString& folder);

    void GetTone_Click();
    void SaveToneTable_Click();
    void OpenToneTable_Click();
    void outputselect_Click();
    void outputall_Click();
    void addaddress_Click();
    void addmmf_Click();
    void moveone_Click();
    void moveall_Click();
    void movemmf_Click();
    void moveaddress_Click();
    void moveallmmf_Click();
    void movealladdress_Click();
    void outputs3_Click();
    void outputaxf_Click();

    // Lists the ".mmf" files of a folder in toneFileList, as choosing it in ET1 does.
    void showToneFiles(const QString& folder);
    // Starts editing the note of a selected row of toneList; the edit ends when noteEditor
    // loses focus.
    void editNote(int row);
    void Text5_LostFocus();
    // Escape in the note editor: the note stays as it was.
    void cancelNote();
    void ListView1_ColumnClick(int column);
    // The status-bar check of the selected tone, in the current language.
    void showToneCheck();
    // The tone count and the tone check again, after a language switch.
    void applyTexts();
    // A phone file was opened: the plan's outputs follow its kind.
    void enableOutputsForKind();

    // Plays a tone file; the desktop's default handler unless a test replaces it.
    std::function<void(const QString& path)> playFile;

    // The rows of the lists as the logic sees them: the lists' models hold them.
    const std::vector<ToneSlot>& toneRows() const;
    const std::vector<ReplacementRow>& planRows() const;
    const std::vector<ToneFileRow>& toneFileRows() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QGroupBox* buildTonesFrame();
    QGroupBox* buildToneFilesFrame();
    QGroupBox* buildPlanFrame();
    // The unit word of the plan's file cells in the current language.
    std::string planSizeUnit() const;
    void showToneCount();
    void connectCommands();
    void connectMenus(QMenu* toneListMenu, QMenu* fileListMenu, QMenu* planMenu);
    QAction* command(const char* name) const { return m_commands.value(QLatin1String(name)); }
    void enableMenufile1();
    void enableMenufile2();
    void enableMenufile3();
    void showToneRows(const std::vector<ToneSlot>& rows);
    void showPlanRows(const std::vector<ReplacementRow>& rows);
    void exportTones(bool everyRow);
    bool hasSelectedTone() const;
    int selectedPlanRow() const;
    bool anyPlanRowChecked() const;
    // The regions of the checked pairs (message 1 for each empty slot); none, with the
    // message shown, when any pair cannot be written: then nothing is written.
    std::optional<std::vector<image::Region>> planRegions();

    window::TabHost* m_host = nullptr;
    window::RowTableModel<ToneSlot>* m_toneModel = nullptr;        // toneList
    window::RowTableModel<ToneFileRow>* m_fileModel = nullptr;     // toneFileList
    window::RowTableModel<ReplacementRow>* m_planModel = nullptr;  // planList
    std::optional<std::size_t> m_tonesFound;                       // none before the first scan
    QLabel* m_checkPanel = nullptr;
    QHash<QString, QAction*> m_commands;  // the pop-up menus' commands by name
    QString m_listedFolder;               // the folder whose files toneFileList lists
    QString m_openedFolder;               // the folder ET1 was opened at, scrolled to as its parents load
    int m_noteRow = -1;                   // the toneList row whose note noteEditor edits
    std::string m_planUnit;               // the unit word the plan's file cells were written with
    int m_fileSortColumn = 0;
    bool m_fileSortDescending = true;
};

}  // namespace zevran::tones
