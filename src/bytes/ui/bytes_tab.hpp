// The "Bytes" tab: the byte view with "go to" and find above it and the inspector
// beside it. Edits typed in the view enter the image through the window as undo steps;
// the tab only reads the image and the owners the other tabs report.
#pragma once

#include "bytes/byte_text.hpp"
#include "image/byte_owners.hpp"

#include <QWidget>
#include <optional>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QSplitter;

namespace zevran::bytes {

class BytesHost;
class BytesInspector;
class BytesView;

class BytesTab : public QWidget {
    Q_OBJECT
public:
    explicit BytesTab(QWidget* parent = nullptr);

    void attach(BytesHost& host);
    void applyTexts();

    // A phone file's bytes replaced the image; bytes of it changed (an edit, undo, redo).
    void imageReplaced();
    void imageChanged();
    // Reads the owners' ranges from the tabs again (done each time the tab is shown).
    void refreshOwners();

    // "Show bytes" of a row on another tab: its bytes selected, in view.
    void showBytes(std::int64_t first, std::int64_t end);
    // "Show owner": the row owning the byte at the cursor, selected on its tab.
    void showOwner();
    // The names of every owner of the byte ("tone 004", "changed"), comma-separated.
    QString ownerText(std::size_t address) const;

    void goTo();
    void findNext() { find(true); }
    void findPrevious() { find(false); }

    BytesView* view;
    BytesInspector* inspector;
    QLineEdit* GoToAddress;
    QPushButton* GoToButton;
    QLineEdit* FindText;
    QComboBox* FindKind;  // hex, single-byte text, handset-code text
    QPushButton* FindPreviousButton;
    QPushButton* FindNextButton;
    QComboBox* TextEncodingBox;  // the text column: single-byte or handset codes
    QLabel* BytesStatus;         // the cursor's address, or what the last find or go-to said
    QMenu* viewMenu;
    QAction* ShowOwner;
    QAction* WriteChangesAsPatch;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildControls();
    void find(bool forward);
    void cursorMoved(std::size_t address);
    void showViewMenu(const QPoint& position);
    void applyEncoding();
    QString ownerName(const image::ByteOwner& owner) const;

    BytesHost* m_host = nullptr;
    image::ByteOwners m_owners;
    QLabel* m_goToLabel = nullptr;
    QLabel* m_findLabel = nullptr;
    QSplitter* m_panes = nullptr;
};

}  // namespace zevran::bytes
