// The text-string tab: search the image for a text and plan same-length replacements.
#pragma once

#include <QWidget>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace zevran::strings {

class StringsTab : public QWidget {
    Q_OBJECT
public:
    explicit StringsTab(QWidget* parent = nullptr);

    QLineEdit* Text11;  // text to look for
    QLineEdit* Text4;   // hits so far in this pass
    QLineEdit* Text10;  // start of the found string
    QLineEdit* Text9;   // its last byte
    QLineEdit* Text8;   // its length
    QLineEdit* Text7;   // the replacement
    QRadioButton* Option1;  // search in handset codes
    QRadioButton* Option2;  // search in single-byte codes
    QRadioButton* Option3;  // write in handset codes
    QRadioButton* Option4;  // write in single-byte codes
    QCheckBox* SearchBegin;
    QPushButton* SeachString;
    QPushButton* Add2List;
    QTreeWidget* ListView2;
};

}  // namespace zevran::strings
