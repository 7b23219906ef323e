#include "picture_import_view.hpp"

#include "window/widget_helpers.hpp"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace zevran::pictures {

namespace {

// Each pixel as a square block, enlarged by the whole factor that brings the picture
// near 256 x 320 (a handset's largest picture, twice); never smoothed.
QPixmap blocks(const QImage& picture)
{
    if (picture.isNull()) return {};
    const int zoom = std::max(1, std::min(256 / std::max(1, picture.width()), 320 / std::max(1, picture.height())));
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    return QPixmap::fromImage(
        rgb.scaled(rgb.width() * zoom, rgb.height() * zoom, Qt::IgnoreAspectRatio, Qt::FastTransformation));
}

QLabel* pictureLabel(const char* name, const QImage& picture, QWidget* parent)
{
    auto* label = window::named(new QLabel(parent), name);
    label->setAlignment(Qt::AlignCenter);
    label->setFrameShape(QFrame::StyledPanel);
    label->setPixmap(blocks(picture));
    return label;
}

}  // namespace

PictureImportView::PictureImportView(const QImage& before, const QImage& after, const ImportCounts& counts,
                                     const ImportViewTexts& texts, QWidget* parent)
    : QDialog(parent)
{
    setObjectName("PictureImportView");
    setWindowTitle(texts.title);
    setModal(true);
    BeforePicture = pictureLabel("BeforePicture", before, this);
    AfterPicture = pictureLabel("AfterPicture", after, this);
    ChangedBytes = window::named(new QLabel(this), "ChangedBytes", QString(texts.changed).arg(counts.changedBytes));
    // A 4-bit row of odd width keeps no nibble for its last pixel: the user hears of
    // the pixels lost there before importing.
    UnstoredPixels =
        window::named(new QLabel(this), "UnstoredPixels", QString(texts.unstored).arg(counts.unstoredPixels));
    UnstoredPixels->setWordWrap(true);
    UnstoredPixels->setVisible(counts.unstoredPixels > 0);
    auto* buttons = new QDialogButtonBox(this);
    ImportConfirm = window::named(buttons->addButton(texts.confirm, QDialogButtonBox::AcceptRole), "ImportConfirm");
    ImportCancel = window::named(buttons->addButton(texts.cancel, QDialogButtonBox::RejectRole), "ImportCancel");
    ImportCancel->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* pictures = new QGridLayout;
    pictures->addWidget(window::named(new QLabel(this), "BeforeCaption", texts.before), 0, 0, Qt::AlignCenter);
    pictures->addWidget(window::named(new QLabel(this), "AfterCaption", texts.after), 0, 1, Qt::AlignCenter);
    pictures->addWidget(BeforePicture, 1, 0);
    pictures->addWidget(AfterPicture, 1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(pictures, 1);
    layout->addWidget(ChangedBytes);
    layout->addWidget(UnstoredPixels);
    layout->addWidget(buttons);
}

}  // namespace zevran::pictures
