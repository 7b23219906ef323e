#include "converter_tab.hpp"

#include "image/converter.hpp"
#include "image/file_io.hpp"
#include "image/hex_text.hpp"
#include "window/tab_host.hpp"
#include "image/temporary_output.hpp"
#include "window/widget_helpers.hpp"

#include <QApplication>
#include <QButtonGroup>
#include <QFileInfo>
#include <QGridLayout>
#include <QVBoxLayout>
#include <fstream>
#include <optional>

namespace zevran::image {

using window::Answer;
using window::CaptionKey;
using window::hiddenProgress;
using window::InterfaceTexts;
using window::named;
using window::TabHost;

ConverterTab::ConverterTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("ConverterTab");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildSRecordToBinaryFrame());
    layout->addWidget(buildBinaryToSRecordFrame());
    layout->addStretch();
}

std::vector<CaptionKey> ConverterTab::captionKeys()
{
    std::vector<CaptionKey> keys;
    for (const char* frame : {"Frame18", "Frame19"}) keys.push_back({"SSTab4", std::string(frame) + "Name", frame});
    keys.push_back({"SSTab4", "OpenS3File", "OpenS3File"});
    // Shown on the button only when the next conversion is ready.
    keys.push_back({"SSTab4", "ComS3ToBin", nullptr, -1, &InterfaceTexts::ComS3ToBin});
    for (const char* name : {"OpenBinFile", "AllAdd", "PartAdd", "Label2", "Label35", "Label36", "Label37",
                             "AllAddressOption", "FillDataOption", "PartAddressOption"})
        keys.push_back({"SSTab4", name, name});
    return keys;
}

QGroupBox* ConverterTab::buildSRecordToBinaryFrame()
{
    auto* frame18 = named(new QGroupBox(this), "Frame18", tr("S-record to binary"));
    OpenS3File = named(new QPushButton(frame18), "OpenS3File", tr("S-record file..."));
    s3InputPath = named(new QLineEdit(frame18), "Text1");
    AllAdd = named(new QRadioButton(frame18), "AllAdd", tr("Whole address space"));
    PartAdd = named(new QRadioButton(frame18), "PartAdd", tr("Data only"));
    AllAdd->setChecked(true);
    auto* s3Modes = new QButtonGroup(frame18);
    s3Modes->addButton(AllAdd);
    s3Modes->addButton(PartAdd);
    s3FillByte = named(new QLineEdit(frame18), "Text3", QStringLiteral("FF"));
    BinOutput = named(new QLineEdit(frame18), "BinOutput");
    BinOutputLabel = named(new QLabel(frame18), "BinOutputLabel", tr("Output:"));
    recordAddress = named(new QLineEdit(frame18), "Text2");
    recordAddress->setReadOnly(true);
    ComS3ToBin = named(new QPushButton(frame18), "ComS3ToBin", QStringLiteral("s3->bin"));
    s3ToBinProgress = hiddenProgress("ProgressBar3", frame18);
    auto* s3Layout = new QGridLayout(frame18);
    s3Layout->addWidget(OpenS3File, 0, 0);
    s3Layout->addWidget(s3InputPath, 0, 1, 1, 3);
    s3Layout->addWidget(BinOutputLabel, 1, 0);
    s3Layout->addWidget(BinOutput, 1, 1, 1, 3);
    s3Layout->addWidget(AllAdd, 2, 0);
    s3Layout->addWidget(named(new QLabel(frame18), "Label2", tr("Fill byte:")), 2, 1);
    s3Layout->addWidget(s3FillByte, 2, 2);
    s3Layout->addWidget(PartAdd, 3, 0);
    s3Layout->addWidget(recordAddress, 4, 0, 1, 3);
    s3Layout->addWidget(ComS3ToBin, 4, 3);
    s3Layout->addWidget(s3ToBinProgress, 5, 0, 1, 4);
    return frame18;
}

QGroupBox* ConverterTab::buildBinaryToSRecordFrame()
{
    auto* frame19 = named(new QGroupBox(this), "Frame19", tr("Binary to S-record"));
    OpenBinFile = named(new QPushButton(frame19), "OpenBinFile", tr("Binary file..."));
    binInputPath = named(new QLineEdit(frame19), "Text19");
    S3Output = named(new QLineEdit(frame19), "S3Output");
    S3OutputLabel = named(new QLabel(frame19), "S3OutputLabel", tr("Output:"));
    AllAddressOption = named(new QRadioButton(frame19), "AllAddressOption", tr("Whole file"));
    PartAddressOption = named(new QRadioButton(frame19), "PartAddressOption", tr("File at a range"));
    FillDataOption = named(new QRadioButton(frame19), "FillDataOption", tr("Fill bytes only"));
    AllAddressOption->setChecked(true);
    auto* binModes = new QButtonGroup(frame19);
    for (QRadioButton* option : {AllAddressOption, PartAddressOption, FillDataOption}) binModes->addButton(option);
    binStartAddress = named(new QLineEdit(frame19), "Text18");
    binEndAddress = named(new QLineEdit(frame19), "Text17");
    binFillByte = named(new QLineEdit(frame19), "Text20", QStringLiteral("FF"));
    ComBinToS3 = named(new QPushButton(frame19), "ComBinToS3", QStringLiteral("bin->s3"));
    auto* binLayout = new QGridLayout(frame19);
    binLayout->addWidget(OpenBinFile, 0, 0);
    binLayout->addWidget(binInputPath, 0, 1, 1, 3);
    binLayout->addWidget(S3OutputLabel, 1, 0);
    binLayout->addWidget(S3Output, 1, 1, 1, 3);
    binLayout->addWidget(AllAddressOption, 2, 0);
    binLayout->addWidget(PartAddressOption, 3, 0);
    binLayout->addWidget(FillDataOption, 4, 0);
    binLayout->addWidget(named(new QLabel(frame19), "Label35", tr("Start:")), 2, 1);
    binLayout->addWidget(binStartAddress, 2, 2);
    binLayout->addWidget(named(new QLabel(frame19), "Label36", tr("End:")), 3, 1);
    binLayout->addWidget(binEndAddress, 3, 2);
    binLayout->addWidget(named(new QLabel(frame19), "Label37", tr("Fill byte:")), 4, 1);
    binLayout->addWidget(binFillByte, 4, 2);
    binLayout->addWidget(ComBinToS3, 4, 3);
    return frame19;
}

namespace {

// Progress is counted in KiB of input so a file of several GiB still fits the bar.
int kibibytes(std::uint64_t bytes) { return static_cast<int>(std::min<std::uint64_t>(bytes / 1024, 0x7FFFFFFF)); }

constexpr std::size_t kSliceBytes = std::size_t{256} * 1024;

}  // namespace

void ConverterTab::attach(TabHost& host)
{
    m_host = &host;
    connect(OpenS3File, &QPushButton::clicked, this, &ConverterTab::OpenS3File_Click);
    connect(OpenBinFile, &QPushButton::clicked, this, &ConverterTab::OpenBinFile_Click);
    connect(ComS3ToBin, &QPushButton::clicked, this, &ConverterTab::ComS3ToBin_Click);
    connect(ComBinToS3, &QPushButton::clicked, this, &ConverterTab::ComBinToS3_Click);
    // Each output is shown beside its input, where it goes unless the user changes it.
    connect(s3InputPath, &QLineEdit::textChanged, this, [this](const QString& input) {
        BinOutput->setText(input.isEmpty() ? QString()
                                           : QString::fromStdString(convertedOutputPath(input.toStdString(), ".bin")));
    });
    connect(binInputPath, &QLineEdit::textChanged, this, [this](const QString& input) {
        S3Output->setText(input.isEmpty() ? QString()
                                          : QString::fromStdString(convertedOutputPath(input.toStdString(), ".s3")));
    });
    for (QRadioButton* option : {AllAdd, PartAdd, AllAddressOption, PartAddressOption, FillDataOption})
        connect(option, &QRadioButton::toggled, this, &ConverterTab::updateEnabled);
    updateEnabled();
}

void ConverterTab::applyTexts()
{
    s3ToBinProgress->setFormat(m_host->text("ConvertProgress"));
    BinOutputLabel->setText(m_host->text("ConvertOutput"));
    S3OutputLabel->setText(m_host->text("ConvertOutput"));
}

void ConverterTab::updateEnabled()
{
    const bool fill = AllAdd->isChecked();
    s3FillByte->setEnabled(fill);
    if (auto* label = findChild<QLabel*>("Label2")) label->setEnabled(fill);
    S3Output->setEnabled(!FillDataOption->isChecked());
    const bool range = !AllAddressOption->isChecked();
    for (QWidget* control : std::initializer_list<QWidget*>{
             binStartAddress, binEndAddress, findChild<QLabel*>("Label35"), findChild<QLabel*>("Label36")})
        if (control) control->setEnabled(range);
}

void ConverterTab::OpenS3File_Click()
{
    const QString path = m_host->dialogs().openFile(m_host->settings().S3SavePath, m_host->filter(1), 2);
    if (path.isEmpty()) return;
    m_host->settings().S3SavePath = QString::fromStdString(FolderOf(path.toStdString()));
    s3InputPath->setText(path);
}

void ConverterTab::OpenBinFile_Click()
{
    const QString path = m_host->dialogs().openFile(m_host->settings().MobileFilePath, m_host->filter(3), 2);
    if (path.isEmpty()) return;
    m_host->settings().MobileFilePath = QString::fromStdString(FolderOf(path.toStdString()));
    binInputPath->setText(path);
}

void ConverterTab::ComS3ToBin_Click()
{
    if (m_converting) {
        // Honoured after the current slice: the partial output is removed.
        m_stopRequested = true;
        ComS3ToBin->setText(QStringLiteral("s3->bin"));
        return;
    }
    if (s3InputPath->text().isEmpty()) {
        m_host->ShowMessage(kMessageNoInputFile);
        return;
    }
    convertS3ToBin();
}

bool ConverterTab::mayWrite(const std::string& output)
{
    // Departure: the classic converter replaced an existing file without a word.
    if (!QFileInfo::exists(QString::fromStdString(output))) return true;
    return m_host->dialogs().askYesNoCancel(m_host->text("ReplaceFileTitle"),
                                            m_host->text("ReplaceFile").arg(QString::fromStdString(output))) ==
           Answer::Yes;
}

std::string ConverterTab::outputOf(const QLineEdit* box, const QLineEdit* input, const char* extension) const
{
    const QString chosen = box->text().trimmed();
    return chosen.isEmpty() ? convertedOutputPath(input->text().toStdString(), extension) : chosen.toStdString();
}

void ConverterTab::convertS3ToBin()
{
    const std::string input = s3InputPath->text().toStdString();
    const std::string output = outputOf(BinOutput, s3InputPath, ".bin");
    S3ToBinOptions options;
    options.mode = AllAdd->isChecked() ? S3ToBinMode::FullAddress : S3ToBinMode::DataOnly;
    std::ifstream in;
    std::optional<TemporaryOutput> out;
    try {
        options.fill = fillByteFromText(s3FillByte->text().toStdString());
        // A named pipe would hold the window until something wrote to it.
        requireRegularFile(input);
        in = openInputFile(input);
        refuseSameFile(input, output);
        m_host->document().refuseAsOutput(output);
        if (!mayWrite(output)) return;
        // Departure: the bytes go to a temporary file renamed over the output when
        // done, so a stop or a failure leaves an existing file as it was.
        out.emplace(output, kConvertingMarker);
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    m_converting = true;
    m_stopRequested = false;
    ComS3ToBin->setText(m_host->texts().ComS3ToBin);
    s3ToBinProgress->setRange(0, std::max(1, kibibytes(QFileInfo(s3InputPath->text()).size())));
    s3ToBinProgress->setValue(0);
    s3ToBinProgress->setVisible(true);
    SRecordToBinary converter(in, out->stream(), options);
    QString failure;
    try {
        while (!m_stopRequested && converter.convertSome(kSliceBytes)) {
            recordAddress->setText(QString::fromStdString(HexPad(converter.currentAddress(), 8)));
            s3ToBinProgress->setValue(kibibytes(converter.inputBytesRead()));
            QApplication::processEvents();
        }
        if (!m_stopRequested) {
            recordAddress->setText(QString::fromStdString(HexPad(converter.currentAddress(), 8)));
            s3ToBinProgress->setValue(s3ToBinProgress->maximum());
            converter.flush();
            out->commit();
        }
    } catch (const OutputWriteError& error) {
        failure = QString::fromStdString(output) + ": " + m_host->failureText(error);
    } catch (const FileError& error) {
        failure = m_host->failureText(error);
    } catch (const std::exception& error) {
        failure = QString::fromStdString(input) + ": " + m_host->failureText(error);
    }
    out.reset();  // an output not committed is removed here
    m_converting = false;
    s3ToBinProgress->setVisible(false);
    s3ToBinProgress->reset();
    ComS3ToBin->setText(QStringLiteral("s3->bin"));
    const QString outputName = QString::fromStdString(output);
    if (!failure.isEmpty()) m_host->showError(m_host->text("ConvertFailed").arg(failure, outputName));
    else if (m_stopRequested) m_host->showInformation(m_host->text("ConvertStopped").arg(outputName));
    else m_host->showInformation(m_host->text("BinWritten").arg(outputName));
}

void ConverterTab::ComBinToS3_Click()
{
    BinToS3Fields fields;
    fields.mode = AllAddressOption->isChecked()    ? BinToS3Mode::WholeFile
                  : PartAddressOption->isChecked() ? BinToS3Mode::FileAtRange
                                                   : BinToS3Mode::FillOnly;
    fields.startText = binStartAddress->text().toStdString();
    fields.endText = binEndAddress->text().toStdString();
    fields.fillText = binFillByte->text().toStdString();
    fields.inputPath = binInputPath->text().toStdString();
    try {
        BinToS3Check check = checkBinToS3Fields(fields);
        if (check.message != 0) {
            m_host->ShowMessage(check.message);
            return;
        }
        std::string output;
        std::ifstream in;
        if (fields.mode == BinToS3Mode::FillOnly) {
            const QString path = m_host->dialogs().saveFile(m_host->settings().MobileFilePath, m_host->filter(1), 2);
            if (path.isEmpty()) return;
            m_host->settings().MobileFilePath = QString::fromStdString(FolderOf(path.toStdString()));
            output = path.toStdString();
        } else {
            requireRegularFile(fields.inputPath);
            in = openInputFile(fields.inputPath);
            output = outputOf(S3Output, binInputPath, ".s3");
            refuseSameFile(fields.inputPath, output);
        }
        if (fields.mode == BinToS3Mode::WholeFile) {
            check.start = 0;
            check.end = wholeFileLastAddress(fields.inputPath);
        }
        m_host->document().refuseAsOutput(output);
        // The save dialog of the fill-only mode has asked already.
        if (fields.mode != BinToS3Mode::FillOnly && !mayWrite(output)) return;
        TemporaryOutput out(output, kConvertingMarker);
        withOutputName(output, [&] {
            binaryToSRecord(fields.mode == BinToS3Mode::FillOnly ? nullptr : &in, out.stream(), check.start, check.end,
                            check.fill);
        });
        out.commit();
    } catch (const std::exception& error) {
        m_host->showFailure(error);
        return;
    }
    m_host->ShowMessage(10);
}

}  // namespace zevran::image
