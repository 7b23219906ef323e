// The converter tab: S-record files to binary and back.
#pragma once

#include "window/caption_keys.hpp"

#include <QWidget>
#include <string>
#include <vector>

class QGroupBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace zevran::window {
class TabHost;
}

namespace zevran::image {

class ConverterTab : public QWidget {
    Q_OBJECT
public:
    explicit ConverterTab(QWidget* parent = nullptr);
    // The language file's keys that label this tab's controls, in the file's order.
    static std::vector<window::CaptionKey> captionKeys();

    // The window whose dialogs, folders and messages the commands use.
    void attach(window::TabHost& host);

    void OpenS3File_Click();
    void OpenBinFile_Click();
    void ComS3ToBin_Click();
    void ComBinToS3_Click();
    bool converting() const { return m_converting; }
    // The progress bar's text in the current language.
    void applyTexts();

    QPushButton* OpenS3File;
    QLineEdit* s3InputPath;  // S-record input
    QLineEdit* BinOutput;    // its output: beside the input unless changed
    QLabel* BinOutputLabel;
    QRadioButton* AllAdd;
    QRadioButton* PartAdd;
    QLineEdit* s3FillByte;     // fill byte of the full-address mode
    QLineEdit* recordAddress;  // address of the record being converted
    QPushButton* ComS3ToBin;
    QProgressBar* s3ToBinProgress;
    QPushButton* OpenBinFile;
    QLineEdit* binInputPath;  // binary input
    QLineEdit* S3Output;      // its output: beside the input unless changed
    QLabel* S3OutputLabel;
    QRadioButton* AllAddressOption;
    QRadioButton* PartAddressOption;
    QRadioButton* FillDataOption;
    QLineEdit* binStartAddress;  // start address
    QLineEdit* binEndAddress;    // end address
    QLineEdit* binFillByte;      // fill byte
    QPushButton* ComBinToS3;

private:
    QGroupBox* buildSRecordToBinaryFrame();
    QGroupBox* buildBinaryToSRecordFrame();
    void updateEnabled();
    void convertS3ToBin();
    // True when `output` does not exist yet or the user agrees to replace it.
    bool mayWrite(const std::string& output);
    // The output box's path, or the input's name with `extension` when the box is empty.
    std::string outputOf(const QLineEdit* box, const QLineEdit* input, const char* extension) const;

    window::TabHost* m_host = nullptr;
    bool m_converting = false;
    bool m_stopRequested = false;
};

}  // namespace zevran::image
