// The picture tab's player: play, pause and stop, the timer's ticks and the frame counter.
#include "pictures_tab_fixture.hpp"

#include <QLineEdit>
#include <QSignalSpy>
#include <QSlider>
#include <QTimer>

using namespace zevran::test;

class PicturePlayerTabTest : public PicturesTabFixture {
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_home.isValid()); }
    void cleanup() { resetHome(); }

    void playPauseAndStopSetTheButtons()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->speedSlider->setValue(5);
        QCOMPARE(m_tab->Timer2->interval(), 500);
        m_tab->PlayPicture->click();
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());
        QVERIFY(m_tab->StopPlay->isEnabled());
        m_tab->PausePlay->click();
        QVERIFY(m_tab->paused());
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(m_tab->StopPlay->isEnabled());
        m_tab->PlayPicture->click();
        QVERIFY(!m_tab->paused());
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(!m_tab->PlayPicture->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->currentFrame(), 1);
        m_tab->StopPlay->click();
        QVERIFY(!m_tab->Timer2->isActive());
        QVERIFY(!m_tab->paused());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QVERIFY(m_tab->PausePlay->isEnabled());  // left as it was
        QCOMPARE(m_tab->currentFrame(), 0);
        m_tab->speedSlider->setValue(10);
        QCOMPARE(m_tab->Timer2->interval(), 1000);
    }

    void ticksWithoutRepeatShowEveryFrameThenFrameZeroAndStop()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->speedSlider->setValue(10);
        QStringList files;
        connect(m_tab, &PicturesTab::previewFileWritten, this,
                [&](const QString& file) { files << QFileInfo(file).fileName(); });
        m_tab->PlayPicture->click();
        QStringList ordinals;
        for (int tick = 0; tick < 4; ++tick) {
            QVERIFY(m_tab->Timer2->isActive());
            m_tab->Timer2_Timer();
            ordinals << m_tab->frameOrdinalBox->text();
        }
        QCOMPARE(ordinals, (QStringList{"1", "2", "3", "1"}));
        QCOMPARE(files, (QStringList{"temp0.bmp", "temp1.bmp", "temp2.bmp", "temp0.bmp"}));
        QVERIFY(!m_tab->Timer2->isActive());
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->PausePlay->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
        QCOMPARE(m_tab->currentFrame(), 0);
        expectLogoFrame(qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 255));
        for (const char* file : {"temp0.bmp", "temp1.bmp", "temp2.bmp"}) QVERIFY(!QFile::exists(path(file)));
    }

    void ticksWithRepeatLoopShowingFrameZeroOnce()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->speedSlider->setValue(10);
        m_tab->RepeatPlay->setChecked(true);
        m_tab->PlayPicture->click();
        QStringList ordinals;
        for (int tick = 0; tick < 8; ++tick) {
            m_tab->Timer2_Timer();
            ordinals << m_tab->frameOrdinalBox->text();
        }
        QCOMPARE(ordinals, (QStringList{"1", "2", "3", "1", "2", "3", "1", "2"}));
        QVERIFY(m_tab->Timer2->isActive());
        QVERIFY(m_tab->StopPlay->isEnabled());
    }

    void pausedTicksDoNothingAndPlayContinues()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        m_tab->speedSlider->setValue(10);
        m_tab->PlayPicture->click();
        m_tab->Timer2_Timer();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("2"));
        m_tab->PausePlay->click();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("2"));
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x10C"));
        m_tab->PlayPicture->click();
        m_tab->Timer2_Timer();
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("3"));
        QCOMPARE(m_tab->frameAddressBox->text(), QString("0x118"));
    }

    void theRunningTimerPlaysToTheEndAndStops()
    {
        startWindow("phone.bin");
        openTable(kTable);
        clickRow(Logo);
        QStringList files;
        connect(m_tab, &PicturesTab::previewFileWritten, this,
                [&](const QString& file) { files << QFileInfo(file).fileName(); });
        m_tab->speedSlider->setValue(1);
        QCOMPARE(m_tab->Timer2->interval(), 100);
        m_tab->PlayPicture->click();
        QTRY_VERIFY_WITH_TIMEOUT(!m_tab->Timer2->isActive(), 20000);
        QCOMPARE(files, (QStringList{"temp0.bmp", "temp1.bmp", "temp2.bmp", "temp0.bmp"}));
        QVERIFY(m_tab->PlayPicture->isEnabled());
        QVERIFY(!m_tab->StopPlay->isEnabled());
    }

    void frameCounterPastItsRangeIsReportedAndKept()
    {
        startWindow("phone.bin");
        openTable(kTable);
        // A refused depth only shows the fixed message, so stepping to the counter's end is quick.
        clickRow(Odd);
        for (int i = 0; i < 32767; ++i) m_tab->nextpicture_Click();
        QCOMPARE(m_dialogs->messages.size(), std::size_t{32768});
        QCOMPARE(m_dialogs->messages.back().text, QString::fromUtf8("错误的bmp文件格式"));
        QCOMPARE(m_tab->currentFrame(), 32767);
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("32768"));
        m_dialogs->messages.clear();
        m_tab->nextpicture->click();
        QCOMPARE(m_dialogs->codes(), std::vector<int>{0});
        QVERIFY(m_dialogs->messages[0].text.contains("32768"));
        QCOMPARE(m_tab->currentFrame(), 32767);
        QCOMPARE(m_tab->frameOrdinalBox->text(), QString("32768"));
    }
};

QTEST_MAIN(PicturePlayerTabTest)
#include "picture_player_tab_test.moc"
