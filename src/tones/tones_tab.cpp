#include "tones_tab.hpp"

#include "app/widget_helpers.hpp"

#include <QFileSystemModel>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QTreeView>
#include <QVBoxLayout>

namespace zevran::tones {

using app::named;
using app::reportList;

TonesTab::TonesTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("TonesTab");
    auto* frame5 = named(new QGroupBox(this), "Frame5", tr("Tones in the image"));
    ListView4 = reportList("ListView4", {tr("No."), tr("Start"), tr("End"), tr("Size"), tr("Note")}, frame5);
    Text5 = named(new QLineEdit(frame5), "Text5");
    Text5->setPlaceholderText(tr("Note for the selected tone"));
    GetTone = named(new QPushButton(frame5), "GetTone", tr("Scan tones"));
    SaveToneTable = named(new QPushButton(frame5), "SaveToneTable", tr("Save table"));
    OpenToneTable = named(new QPushButton(frame5), "OpenToneTable", tr("Open table"));
    ProgressBar1 = app::hiddenProgress("ProgressBar1", frame5);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(GetTone);
    buttons->addWidget(OpenToneTable);
    buttons->addWidget(SaveToneTable);
    buttons->addStretch();
    auto* frame5Layout = new QVBoxLayout(frame5);
    frame5Layout->addLayout(buttons);
    frame5Layout->addWidget(ListView4, 1);
    frame5Layout->addWidget(Text5);
    frame5Layout->addWidget(ProgressBar1);

    auto* frame7 = named(new QGroupBox(this), "Frame7", tr("Tone files"));
    folders = new QFileSystemModel(this);
    folders->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders->setRootPath(QString());
    ET1 = named(new QTreeView(frame7), "ET1");
    ET1->setModel(folders);
    for (int column = 1; column < folders->columnCount(); ++column) ET1->hideColumn(column);
    ET1->setHeaderHidden(true);
    ListView1 = reportList("ListView1", {tr("Name"), tr("Size")}, frame7);
    ListView1->setSortingEnabled(true);
    auto* frame7Layout = new QVBoxLayout(frame7);
    frame7Layout->addWidget(ET1, 1);
    frame7Layout->addWidget(ListView1, 1);

    auto* frame8 = named(new QGroupBox(this), "Frame8", tr("Replacement plan"));
    ListView3 = reportList("ListView3", {tr("Tone"), tr("File"), tr("Size")}, frame8);
    auto* frame8Layout = new QVBoxLayout(frame8);
    frame8Layout->addWidget(ListView3);

    auto* layout = new QGridLayout(this);
    layout->addWidget(frame5, 0, 0, 2, 1);
    layout->addWidget(frame7, 0, 1);
    layout->addWidget(frame8, 1, 1);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(1, 2);
}

QString TonesTab::currentFolder() const { return folders->filePath(ET1->currentIndex()); }

void TonesTab::setCurrentFolder(const QString& folder)
{
    const QModelIndex index = folders->index(folder);
    ET1->setCurrentIndex(index);
    ET1->scrollTo(index);
}

}  // namespace zevran::tones
