// The converter tab through the dialogs double: every failure, the documented edge
// cases, and a stop in the middle of a long conversion.
#include "qt_files.hpp"
#include "window_fixture.hpp"

#include "app/main_window.hpp"
#include "image/ui/converter_tab.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMouseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using zevran::app::Form1;
using zevran::image::ConverterTab;
using zevran::test::readBytes;
using zevran::test::ScriptedDialogs;
using zevran::test::writeBytes;

namespace {

const QByteArray kTwoRecords =
    "S00600004844521B\r\nS3090000001001020304DC\r\nS3090000002005060708BC\r\nS705A002000058\r\n";

// Counts the paint events a widget receives.
class PaintCounter : public QObject {
public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) ++count;
        return false;
    }
};

}  // namespace

class ConverterTabTest : public zevran::test::WindowFixture {
    Q_OBJECT

private:
    ConverterTab* m_tab = nullptr;


private slots:
    void init()
    {
        startWindow();
        m_tab = m_window->findChild<ConverterTab*>();
    }
    void cleanup() { stopWindow(); }

    void emptyS3InputShowsMessage31()
    {
        m_tab->ComS3ToBin->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{31});
    }

    void twoRecordsInFullAddressModeFillTheGap()
    {
        writeBytes(path("two.s3"), kTwoRecords);
        m_tab->s3InputPath->setText(path("two.s3"));
        m_tab->s3FillByte->setText("00");
        m_tab->ComS3ToBin->click();
        QByteArray expected(0x24, '\0');
        expected.replace(0x10, 4, "\x01\x02\x03\x04");
        expected.replace(0x20, 4, "\x05\x06\x07\x08");
        QCOMPARE(readBytes(path("two.bin")), expected);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].kind, zevran::app::MessageKind::Information);
        QCOMPARE(m_dialogs->messages[0].text, "The binary file " + path("two.bin") + " has been written.");
        QCOMPARE(m_tab->recordAddress->text(), QString("00000020"));
        QVERIFY(m_tab->s3ToBinProgress->isHidden());
    }

    void twoRecordsInDataOnlyModeGiveEightBytes()
    {
        writeBytes(path("two.s3"), kTwoRecords);
        m_tab->s3InputPath->setText(path("two.s3"));
        m_tab->PartAdd->setChecked(true);
        m_tab->ComS3ToBin->click();
        QCOMPARE(readBytes(path("two.bin")), QByteArray("\x01\x02\x03\x04\x05\x06\x07\x08"));
    }

    void badLineNamesItsNumberAndLeavesNoPartialOutput()
    {
        writeBytes(path("bad.s3"), "S30600000000AA4F\r\nS304000000\r\n");
        m_tab->s3InputPath->setText(path("bad.s3"));
        m_tab->PartAdd->setChecked(true);
        m_tab->ComS3ToBin->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("line 2"));
        QVERIFY(m_dialogs->messages[0].text.endsWith("(" + path("bad.bin") +
                                                     " was not written; an existing file stays as it was)"));
        QCOMPARE(QDir(m_home.path()).entryList({"bad*"}, QDir::Files), QStringList{"bad.s3"});
        QCOMPARE(m_tab->ComS3ToBin->text(), QString("s3->bin"));
    }

    void stopInTheMiddleKeepsTheOldOutputAndHidesTheBar()
    {
        writeBytes(path("big.bin"), "the old output");
        m_dialogs->answers.push_back(zevran::app::Answer::Yes);
        QByteArray text;
        for (int address = 0; address < 0x100000; address += 16)
            text += "S315" + QByteArray::number(address, 16).toUpper().rightJustified(8, '0') +
                    "000102030405060708090A0B0C0D0E0F00\r\n";
        writeBytes(path("big.s3"), text);
        m_tab->s3InputPath->setText(path("big.s3"));
        m_tab->PartAdd->setChecked(true);
        bool sawRunning = false;
        QTimer::singleShot(0, this, [&] {
            sawRunning = m_tab->converting() && !m_tab->s3ToBinProgress->isHidden();
            m_tab->ComS3ToBin->click();
        });
        m_tab->ComS3ToBin->click();
        QVERIFY(sawRunning);
        QVERIFY(!m_tab->converting());
        QVERIFY(m_tab->s3ToBinProgress->isHidden());
        QCOMPARE(m_tab->ComS3ToBin->text(), QString("s3->bin"));
        QCOMPARE(readBytes(path("big.bin")), QByteArray("the old output"));
        QCOMPARE(QDir(m_home.path()).entryList({"big*"}, QDir::Files), (QStringList{"big.bin", "big.s3"}));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(m_dialogs->messages[0].text, "The conversion was stopped: " + path("big.bin") +
                                                  " was not written, and an existing file stays as it was.");
    }

    void existingOutputIsReplacedOnlyWhenTheUserAgrees()
    {
        writeBytes(path("two.s3"), kTwoRecords);
        writeBytes(path("two.bin"), "keep me");
        m_tab->s3InputPath->setText(path("two.s3"));
        m_tab->PartAdd->setChecked(true);
        m_dialogs->answers = {zevran::app::Answer::No, zevran::app::Answer::Yes};
        m_tab->ComS3ToBin->click();
        QCOMPARE(m_dialogs->asked,
                 QStringList{"question Replace file|" + path("two.bin") + " already exists. Replace it?"});
        QCOMPARE(readBytes(path("two.bin")), QByteArray("keep me"));
        QVERIFY(m_dialogs->messages.empty());
        m_tab->ComS3ToBin->click();
        QCOMPARE(readBytes(path("two.bin")), QByteArray("\x01\x02\x03\x04\x05\x06\x07\x08"));
        writeBytes(path("b.bin"), "AB");
        writeBytes(path("b.s3"), "keep me too");
        m_tab->binInputPath->setText(path("b.bin"));
        m_tab->ComBinToS3->click();  // no answer left: the question is cancelled
        QCOMPARE(readBytes(path("b.s3")), QByteArray("keep me too"));
    }

    void outputBoxShowsTheNameBesideTheInputAndMayBeChanged()
    {
        writeBytes(path("two.s3"), kTwoRecords);
        m_tab->s3InputPath->setText(path("two.s3"));
        QCOMPARE(m_tab->BinOutput->text(), path("two.bin"));
        m_tab->BinOutput->setText(path("chosen.raw"));
        m_tab->PartAdd->setChecked(true);
        m_tab->ComS3ToBin->click();
        QCOMPARE(readBytes(path("chosen.raw")), QByteArray("\x01\x02\x03\x04\x05\x06\x07\x08"));
        QVERIFY(!QFileInfo::exists(path("two.bin")));
        writeBytes(path("b.bin"), QByteArray("\x01", 1));
        m_tab->binInputPath->setText(path("b.bin"));
        QCOMPARE(m_tab->S3Output->text(), path("b.s3"));
        m_tab->S3Output->setText(path("out.srec"));
        m_tab->ComBinToS3->click();
        QCOMPARE(readBytes(path("out.srec")), QByteArray("S00600004844521B\r\nS3060000000001F8\r\nS705A002000058\r\n"));
    }

    void windowRepaintsAndTakesClicksDuringA64MiBConversion()
    {
        // 64 MiB of S3 text: 16 data bytes a line, checksums left at 00 as the reader allows.
        constexpr int kLines = (64 << 20) / 48;
        QByteArray text;
        text.reserve(qsizetype{kLines} * 48);
        QByteArray line = "S3150000000000112233445566778899AABBCCDDEEFF00\r\n";
        for (int i = 0; i < kLines; ++i) {
            const QByteArray address = QByteArray::number(i * 16, 16).toUpper().rightJustified(8, '0');
            line.replace(4, 8, address);
            text += line;
        }
        writeBytes(path("large.s3"), text);
        text.clear();
        m_window->findChild<QTabWidget*>("SSTab1")->setCurrentWidget(m_tab);
        m_window->show();
        auto* button = new QPushButton("elsewhere", m_window.get());
        button->show();
        PaintCounter paints;
        m_tab->installEventFilter(&paints);
        int ticks = 0;
        int ticksWhileConverting = 0;
        bool clickedWhileConverting = false;
        connect(button, &QPushButton::clicked, this, [&] { clickedWhileConverting = m_tab->converting(); });
        QTimer ticker;
        ticker.setInterval(5);
        connect(&ticker, &QTimer::timeout, this, [&] {
            ++ticks;
            if (m_tab->converting()) ++ticksWhileConverting;
            m_tab->update();
            // Posted, not sent: the click arrives only if the event loop turns.
            if (ticks == 2) {
                const QPoint centre = button->rect().center();
                QCoreApplication::postEvent(button, new QMouseEvent(QEvent::MouseButtonPress, centre,
                                                                    button->mapToGlobal(centre), Qt::LeftButton,
                                                                    Qt::LeftButton, Qt::NoModifier));
                QCoreApplication::postEvent(button, new QMouseEvent(QEvent::MouseButtonRelease, centre,
                                                                    button->mapToGlobal(centre), Qt::LeftButton,
                                                                    Qt::NoButton, Qt::NoModifier));
            }
        });
        m_tab->s3InputPath->setText(path("large.s3"));
        m_tab->PartAdd->setChecked(true);
        ticker.start();
        QTimer::singleShot(0, this, [&] { paints.count = 0; });
        m_tab->ComS3ToBin->click();
        ticker.stop();
        QVERIFY2(ticksWhileConverting >= 3, qPrintable(QString::number(ticksWhileConverting)));
        QVERIFY(clickedWhileConverting);
        QVERIFY(paints.count >= 1);
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QCOMPARE(QFileInfo(path("large.bin")).size(), qint64{kLines} * 16);
        QCOMPARE(m_tab->recordAddress->text(),
                 QByteArray::number((kLines - 1) * 16, 16).toUpper().rightJustified(8, '0'));
    }

    void seventeenByteFileGivesAFullLineAndACountSixLine()
    {
        writeBytes(path("b.bin"),
                   QByteArray("\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10", 17));
        m_tab->binInputPath->setText(path("b.bin"));
        m_tab->ComBinToS3->click();
        QCOMPARE(readBytes(path("b.s3")), QByteArray("S00600004844521B\r\n"
                                                     "S31500000000000102030405060708090A0B0C0D0E0F72\r\n"
                                                     "S3060000001010D9\r\n"
                                                     "S705A002000058\r\n"));
        QCOMPARE(m_dialogs->codes(), std::vector<int>{10});
    }

    void binaryWhoseOutputWouldBeItselfIsRefusedAndKept()
    {
        writeBytes(path("image.s3"), "raw bytes");
        m_tab->binInputPath->setText(path("image.s3"));
        m_tab->ComBinToS3->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("would overwrite the input"));
        QCOMPARE(readBytes(path("image.s3")), QByteArray("raw bytes"));
    }

    void fillOnlyRangeIsWrittenWhereTheUserChooses()
    {
        m_tab->FillDataOption->setChecked(true);
        m_tab->binStartAddress->setText("0");
        m_tab->binEndAddress->setText("0F");
        m_tab->binFillByte->setText("FF");
        m_dialogs->files.push_back(path("fill.s3"));
        m_tab->ComBinToS3->click();
        QCOMPARE(
            readBytes(path("fill.s3")),
            QByteArray("S00600004844521B\r\nS31500000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFA\r\nS705A002000058\r\n"));
        QCOMPARE(m_window->settings().MobileFilePath, m_home.path());
    }

    void rangeFieldsAreCheckedInOrder()
    {
        m_tab->PartAddressOption->setChecked(true);
        m_tab->ComBinToS3->click();
        m_tab->binStartAddress->setText("10");
        m_tab->ComBinToS3->click();
        m_tab->binEndAddress->setText("10");
        m_tab->ComBinToS3->click();
        m_tab->binEndAddress->setText("20");
        m_tab->ComBinToS3->click();
        QCOMPARE(m_dialogs->codes(), (std::vector<int>{28, 29, 30, 31}));
    }

    void optionsEnableTheirFields()
    {
        m_tab->PartAdd->setChecked(true);
        QVERIFY(!m_tab->s3FillByte->isEnabled());
        m_tab->AllAdd->setChecked(true);
        QVERIFY(m_tab->s3FillByte->isEnabled());
        QVERIFY(!m_tab->binStartAddress->isEnabled());
        QVERIFY(!m_tab->binEndAddress->isEnabled());
        m_tab->PartAddressOption->setChecked(true);
        QVERIFY(m_tab->binStartAddress->isEnabled());
        QVERIFY(m_tab->findChild<QLabel*>("Label36")->isEnabled());
    }

    void chosenInputsFillTheirBoxesAndFolders()
    {
        m_dialogs->files = {path("in.s3"), path("in.bin")};
        m_tab->OpenS3File->click();
        m_tab->OpenBinFile->click();
        QCOMPARE(m_tab->s3InputPath->text(), path("in.s3"));
        QCOMPARE(m_tab->binInputPath->text(), path("in.bin"));
        QCOMPARE(m_window->settings().S3SavePath, m_home.path());
        QVERIFY(m_dialogs->asked[0].endsWith("|2"));
    }
};

QTEST_MAIN(ConverterTabTest)
#include "converter_tab_test.moc"
