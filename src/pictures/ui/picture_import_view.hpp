// The picture import's confirmation: the frame as it is and as it will be, side by
// side, with the number of image bytes that change. The user imports or cancels.
#pragma once

#include <QDialog>
#include <QImage>
#include <QString>

class QLabel;
class QPushButton;

namespace zevran::pictures {

// Every text of the view, from the language file.
struct ImportViewTexts {
    QString title;
    QString before;   // caption over the frame as it is
    QString after;    // caption over the frame as it will be
    QString changed;  // "%1 bytes change", %1 the count
    QString confirm;
    QString cancel;
    QString unstored;  // "%1 pixels ... cannot be stored", %1 the count; shown when it is not 0
};

// What the import does to the image: bytes that change, and pixels no image bit holds.
struct ImportCounts {
    qint64 changedBytes = 0;
    qint64 unstoredPixels = 0;
};

class PictureImportView : public QDialog {
    Q_OBJECT
public:
    PictureImportView(const QImage& before, const QImage& after, const ImportCounts& counts,
                      const ImportViewTexts& texts, QWidget* parent);

    QLabel* BeforePicture;
    QLabel* AfterPicture;
    QLabel* ChangedBytes;
    QLabel* UnstoredPixels;  // hidden when every pixel is stored
    QPushButton* ImportConfirm;
    QPushButton* ImportCancel;
};

}  // namespace zevran::pictures
