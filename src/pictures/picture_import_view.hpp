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
};

class PictureImportView : public QDialog {
    Q_OBJECT
public:
    PictureImportView(const QImage& before, const QImage& after, qint64 changedBytes, const ImportViewTexts& texts,
                      QWidget* parent);

    QLabel* BeforePicture;
    QLabel* AfterPicture;
    QLabel* ChangedBytes;
    QPushButton* ImportConfirm;
    QPushButton* ImportCancel;
};

}  // namespace zevran::pictures
