#include "pictures_tab.hpp"

#include "app/widget_helpers.hpp"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

namespace zevran::pictures {

using app::named;

PicturesTab::PicturesTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("PicturesTab");
    auto* table = new QWidget(this);
    auto* frame16 = named(new QGroupBox(this), "Frame16", tr("Preview"));
    ListView5 = app::reportList("ListView5",
                                {tr("No."), tr("Name"), tr("Address"), tr("Frames"), tr("Size"), tr("Pixels"), tr("Bits")},
                                table);
    OpenPicTable = named(new QPushButton(table), "OpenPicTable", tr("Open table"));
    SavePicTable = named(new QPushButton(table), "SavePicTable", tr("Save table"));
    Check1 = named(new QCheckBox(table), "Check1", tr("Recompute frame sizes"));
    Text21 = named(new QLineEdit(table), "Text21");
    Text21->setMaximumWidth(110);
    ProgressBar2 = app::hiddenProgress("ProgressBar2", table);
    auto* tableButtons = new QHBoxLayout;
    tableButtons->addWidget(OpenPicTable);
    tableButtons->addWidget(SavePicTable);
    tableButtons->addWidget(Check1);
    tableButtons->addStretch();
    tableButtons->addWidget(named(new QLabel(table), "Label25", tr("Address offset:")));
    tableButtons->addWidget(Text21);
    auto* tableLayout = new QVBoxLayout(table);
    tableLayout->setContentsMargins(0, 0, 0, 0);
    tableLayout->addLayout(tableButtons);
    tableLayout->addWidget(ListView5, 1);
    tableLayout->addWidget(ProgressBar2);

    Picture2 = named(new QLabel(frame16), "Picture2");
    Picture2->setMinimumSize(256, 320);
    Picture2->setAlignment(Qt::AlignCenter);
    Picture2->setFrameShape(QFrame::StyledPanel);
    Text15 = named(new QLineEdit(this), "Text15");
    Text16 = named(new QLineEdit(this), "Text16");
    Text15->setReadOnly(true);
    Text16->setReadOnly(true);
    PreviousPicture = named(new QPushButton(this), "PreviousPicture", QStringLiteral("◀"));
    nextpicture = named(new QPushButton(this), "nextpicture", QStringLiteral("▶"));
    PlayPicture = named(new QPushButton(this), "PlayPicture", tr("Play"));
    PausePlay = named(new QPushButton(this), "PausePlay", tr("Pause"));
    StopPlay = named(new QPushButton(this), "StopPlay", tr("Stop"));
    for (QPushButton* button : {PreviousPicture, nextpicture, PlayPicture, PausePlay, StopPlay}) button->setEnabled(false);
    RepeatPlay = named(new QCheckBox(this), "RepeatPlay", tr("Repeat"));
    Slider1 = named(new QSlider(Qt::Horizontal, this), "Slider1");
    Slider1->setRange(1, 10);
    Slider1->setValue(2);
    Timer2 = new QTimer(this);
    Timer2->setObjectName("Timer2");
    Timer2->setInterval(Slider1->value() * 100);

    auto* player = new QGridLayout;
    player->addWidget(named(new QLabel(this), "Label28", tr("Address:")), 0, 0);
    player->addWidget(Text15, 0, 1);
    player->addWidget(named(new QLabel(this), "Label30", tr("Frame:")), 0, 2);
    player->addWidget(Text16, 0, 3);
    auto* steps = new QHBoxLayout;
    for (QWidget* control : std::initializer_list<QWidget*>{PreviousPicture, nextpicture, PlayPicture, PausePlay, StopPlay, RepeatPlay})
        steps->addWidget(control);
    auto* preview = new QVBoxLayout(frame16);
    preview->addWidget(Picture2, 1);
    preview->addLayout(player);
    preview->addLayout(steps);
    preview->addWidget(Slider1);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(table, 3);
    layout->addWidget(frame16, 2);
}

}  // namespace zevran::pictures
