// The picture tab: picture tables, the preview with its player, export and patches.
#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSlider;
class QTimer;
class QTreeWidget;

namespace zevran::pictures {

class PicturesTab : public QWidget {
    Q_OBJECT
public:
    explicit PicturesTab(QWidget* parent = nullptr);

    QTreeWidget* ListView5;
    QPushButton* OpenPicTable;
    QPushButton* SavePicTable;
    QCheckBox* Check1;      // recompute frame sizes when loading
    QCheckBox* RepeatPlay;
    QLineEdit* Text21;      // address offset added when saving
    QLineEdit* Text15;      // address of the frame on show
    QLineEdit* Text16;      // its ordinal
    QLabel* Picture2;       // the preview
    QPushButton* PreviousPicture;
    QPushButton* nextpicture;
    QPushButton* PlayPicture;
    QPushButton* PausePlay;
    QPushButton* StopPlay;
    QSlider* Slider1;
    QTimer* Timer2;
    QProgressBar* ProgressBar2;
};

}  // namespace zevran::pictures
