#include "strings_tab.hpp"

#include "app/widget_helpers.hpp"

#include <QButtonGroup>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace zevran::strings {

using app::named;

StringsTab::StringsTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("StringsTab");
    auto* frame10 = named(new QGroupBox(this), "Frame10", tr("Search"));
    Text11 = named(new QLineEdit(frame10), "Text11");
    Option1 = named(new QRadioButton(frame10), "Option1", tr("Handset codes"));
    Option2 = named(new QRadioButton(frame10), "Option2", tr("Single-byte codes"));
    Option2->setChecked(true);
    auto* searchCodes = new QButtonGroup(frame10);
    searchCodes->addButton(Option1);
    searchCodes->addButton(Option2);
    SearchBegin = named(new QCheckBox(frame10), "SearchBegin", tr("From the beginning"));
    SeachString = named(new QPushButton(frame10), "SeachString", tr("Search"));
    auto* frame10Layout = new QGridLayout(frame10);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label4", tr("Text:")), 0, 0);
    frame10Layout->addWidget(Text11, 0, 1, 1, 3);
    frame10Layout->addWidget(named(new QLabel(frame10), "Label13", tr("Search in:")), 1, 0);
    frame10Layout->addWidget(Option2, 1, 1);
    frame10Layout->addWidget(Option1, 1, 2);
    frame10Layout->addWidget(SearchBegin, 1, 3);
    frame10Layout->addWidget(SeachString, 0, 4);

    auto* frame11 = named(new QGroupBox(this), "Frame11", tr("Found"));
    Text4 = named(new QLineEdit(frame11), "Text4");
    Text10 = named(new QLineEdit(frame11), "Text10");
    Text9 = named(new QLineEdit(frame11), "Text9");
    Text8 = named(new QLineEdit(frame11), "Text8");
    Text7 = named(new QLineEdit(frame11), "Text7");
    for (QLineEdit* shown : {Text4, Text10, Text9, Text8}) shown->setReadOnly(true);
    Add2List = named(new QPushButton(frame11), "Add2List", tr("Add to list"));
    Add2List->setEnabled(false);
    auto* frame11Layout = new QGridLayout(frame11);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label8", tr("Hits:")), 0, 0);
    frame11Layout->addWidget(Text4, 0, 1);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label9", tr("Start:")), 0, 2);
    frame11Layout->addWidget(Text10, 0, 3);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label10", tr("End:")), 0, 4);
    frame11Layout->addWidget(Text9, 0, 5);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label11", tr("Length:")), 0, 6);
    frame11Layout->addWidget(Text8, 0, 7);
    frame11Layout->addWidget(named(new QLabel(frame11), "Label12", tr("Replacement:")), 1, 0);
    frame11Layout->addWidget(Text7, 1, 1, 1, 6);
    frame11Layout->addWidget(Add2List, 1, 7);

    auto* frame13 = named(new QGroupBox(this), "Frame13", tr("Edit list"));
    ListView2 = app::reportList("ListView2", {tr("No."), tr("Start"), tr("End"), tr("Text"), tr("Length")}, frame13);
    Option3 = named(new QRadioButton(frame13), "Option3", tr("Write handset codes"));
    Option4 = named(new QRadioButton(frame13), "Option4", tr("Write single-byte codes"));
    Option4->setChecked(true);
    auto* outputCodes = new QButtonGroup(frame13);
    outputCodes->addButton(Option3);
    outputCodes->addButton(Option4);
    auto* encoding = new QHBoxLayout;
    encoding->addWidget(named(new QLabel(frame13), "Label14", tr("Write in:")));
    encoding->addWidget(Option4);
    encoding->addWidget(Option3);
    encoding->addStretch();
    auto* frame13Layout = new QVBoxLayout(frame13);
    frame13Layout->addWidget(ListView2, 1);
    frame13Layout->addLayout(encoding);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame10);
    layout->addWidget(frame11);
    layout->addWidget(frame13, 1);
}

}  // namespace zevran::strings
