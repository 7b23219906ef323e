// The ring-tone tab: tones found in the image, tone files on disk and the
// replacement plan between them.
#pragma once

#include <QWidget>

class QFileSystemModel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeView;
class QTreeWidget;

namespace zevran::tones {

class TonesTab : public QWidget {
    Q_OBJECT
public:
    explicit TonesTab(QWidget* parent = nullptr);

    QTreeWidget* ListView1;  // ".mmf" files of the folder chosen in ET1
    QTreeWidget* ListView3;  // the replacement plan
    QTreeWidget* ListView4;  // tones found in the image
    QTreeView* ET1;          // folder tree
    QFileSystemModel* folders;
    QLineEdit* Text5;        // note editor
    QPushButton* GetTone;
    QPushButton* SaveToneTable;
    QPushButton* OpenToneTable;
    QProgressBar* ProgressBar1;

    // The folder shown by the folder tree, remembered as "mmf File Path".
    QString currentFolder() const;
    void setCurrentFolder(const QString& folder);
};

}  // namespace zevran::tones
