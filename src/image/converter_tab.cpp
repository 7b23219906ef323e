#include "converter_tab.hpp"

#include "app/widget_helpers.hpp"

#include <QButtonGroup>
#include <QGridLayout>
#include <QVBoxLayout>

namespace zevran::image {

using app::named;

ConverterTab::ConverterTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("ConverterTab");
    auto* frame18 = named(new QGroupBox(this), "Frame18", tr("S-record to binary"));
    OpenS3File = named(new QPushButton(frame18), "OpenS3File", tr("S-record file..."));
    Text1 = named(new QLineEdit(frame18), "Text1");
    AllAdd = named(new QRadioButton(frame18), "AllAdd", tr("Whole address space"));
    PartAdd = named(new QRadioButton(frame18), "PartAdd", tr("Data only"));
    AllAdd->setChecked(true);
    auto* s3Modes = new QButtonGroup(frame18);
    s3Modes->addButton(AllAdd);
    s3Modes->addButton(PartAdd);
    Text3 = named(new QLineEdit(frame18), "Text3", QStringLiteral("FF"));
    Text2 = named(new QLineEdit(frame18), "Text2");
    Text2->setReadOnly(true);
    ComS3ToBin = named(new QPushButton(frame18), "ComS3ToBin", QStringLiteral("s3->bin"));
    ProgressBar3 = app::hiddenProgress("ProgressBar3", frame18);
    auto* s3Layout = new QGridLayout(frame18);
    s3Layout->addWidget(OpenS3File, 0, 0);
    s3Layout->addWidget(Text1, 0, 1, 1, 3);
    s3Layout->addWidget(AllAdd, 1, 0);
    s3Layout->addWidget(named(new QLabel(frame18), "Label2", tr("Fill byte:")), 1, 1);
    s3Layout->addWidget(Text3, 1, 2);
    s3Layout->addWidget(PartAdd, 2, 0);
    s3Layout->addWidget(Text2, 3, 0, 1, 3);
    s3Layout->addWidget(ComS3ToBin, 3, 3);
    s3Layout->addWidget(ProgressBar3, 4, 0, 1, 4);

    auto* frame19 = named(new QGroupBox(this), "Frame19", tr("Binary to S-record"));
    OpenBinFile = named(new QPushButton(frame19), "OpenBinFile", tr("Binary file..."));
    Text19 = named(new QLineEdit(frame19), "Text19");
    AllAddressOption = named(new QRadioButton(frame19), "AllAddressOption", tr("Whole file"));
    PartAddressOption = named(new QRadioButton(frame19), "PartAddressOption", tr("File at a range"));
    FillDataOption = named(new QRadioButton(frame19), "FillDataOption", tr("Fill bytes only"));
    AllAddressOption->setChecked(true);
    auto* binModes = new QButtonGroup(frame19);
    for (QRadioButton* option : {AllAddressOption, PartAddressOption, FillDataOption}) binModes->addButton(option);
    Text18 = named(new QLineEdit(frame19), "Text18");
    Text17 = named(new QLineEdit(frame19), "Text17");
    Text20 = named(new QLineEdit(frame19), "Text20", QStringLiteral("FF"));
    ComBinToS3 = named(new QPushButton(frame19), "ComBinToS3", QStringLiteral("bin->s3"));
    auto* binLayout = new QGridLayout(frame19);
    binLayout->addWidget(OpenBinFile, 0, 0);
    binLayout->addWidget(Text19, 0, 1, 1, 3);
    binLayout->addWidget(AllAddressOption, 1, 0);
    binLayout->addWidget(PartAddressOption, 2, 0);
    binLayout->addWidget(FillDataOption, 3, 0);
    binLayout->addWidget(named(new QLabel(frame19), "Label35", tr("Start:")), 1, 1);
    binLayout->addWidget(Text18, 1, 2);
    binLayout->addWidget(named(new QLabel(frame19), "Label36", tr("End:")), 2, 1);
    binLayout->addWidget(Text17, 2, 2);
    binLayout->addWidget(named(new QLabel(frame19), "Label37", tr("Fill byte:")), 3, 1);
    binLayout->addWidget(Text20, 3, 2);
    binLayout->addWidget(ComBinToS3, 3, 3);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame18);
    layout->addWidget(frame19);
    layout->addStretch();
}

}  // namespace zevran::image
