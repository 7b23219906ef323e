// One window at a time: a second start hands its FILE to the running window and ends;
// a start that cannot reach a running window runs anyway. The second (and sometimes
// the first) start is the real program in a process of its own.
#include "qt_files.hpp"

#include "settings/profile_file.hpp"
#include "app/single_instance.hpp"

#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>

using zevran::app::SingleInstance;
using zevran::test::writeBytes;

class SingleInstanceTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_home;

    QString path(const QString& name) const { return m_home->path() + "/" + name; }

    // The real program on the portable folder of this test.
    void startProgram(QProcess& process, const QStringList& arguments)
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.remove("ZEVRAN_HOME");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_home->path());
        process.start(ZEVRAN_WINDOW_PROGRAM, QStringList{"--home", m_home->path()} + arguments);
        QVERIFY(process.waitForStarted());
    }

    // Waits with the event loop running, so a window in this process can answer.
    static void waitForEnd(QProcess& process)
    {
        QTRY_VERIFY_WITH_TIMEOUT(process.state() == QProcess::NotRunning, 60000);
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    }

private slots:
    void init()
    {
        // Short names: the socket's address must fit 108 bytes.
        m_home = std::make_unique<QTemporaryDir>(QDir::tempPath() + "/zsi-XXXXXX");
        QVERIFY(m_home->isValid());
        writeBytes(path("zevran.ini"), "[Language]\r\nLanguage=English.ini\r\n");
        writeBytes(path("phone.bin"), QByteArray(64, '\xFF'));
    }
    void cleanup() { m_home.reset(); }

    void firstStartHoldsTheLockAndListens()
    {
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QVERIFY(first.listening());
        QCOMPARE(first.lockPath(), path("zevran.lock"));
        QCOMPARE(first.socketName(), path("zevran.socket"));
        QVERIFY(QFile::exists(path("zevran.lock")));
    }

    void socketLeftByACrashedWindowIsReplaced()
    {
        writeBytes(path("zevran.socket"), "left over");
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QVERIFY(first.listening());
    }

    void tooLongFolderPutsTheSocketInTheTemporaryFolder()
    {
        const QString deep = m_home->path() + "/" + QString(120, 'd');
        SingleInstance first(deep);
        QVERIFY(first.socketName().startsWith(QDir::tempPath() + "/zevran-"));
        QVERIFY(first.claim(QString()));
        QVERIFY(first.listening());
    }

    void secondStartHandsItsFileOverAndEndsWithStatusZero()
    {
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QStringList handed;
        first.serve([&handed](const QString& file) { handed.append(file); });
        QProcess second;
        // A relative FILE is taken from the second start's working folder.
        startProgram(second, {"phone.bin"});
        waitForEnd(second);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(handed, QStringList{path("phone.bin")});
    }

    void secondStartWithoutFileOnlyRaisesTheWindow()
    {
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QStringList handed;
        first.serve([&handed](const QString& file) { handed.append(file); });
        QProcess second;
        startProgram(second, {});
        waitForEnd(second);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(handed, QStringList{QString()});
    }

    void fileHandedOverWaitsForAnOpenDialogToClose()
    {
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QWidget window;
        window.show();
        QStringList opened;
        zevran::app::serveWindow(first, &window, [&opened](const QString& file) { opened.append(file); });
        QDialog dialog(&window);
        dialog.setModal(true);
        dialog.show();
        QProcess second;
        startProgram(second, {path("phone.bin")});
        waitForEnd(second);
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(opened.isEmpty());
        dialog.close();
        QTRY_COMPARE_WITH_TIMEOUT(opened, QStringList{path("phone.bin")}, 10000);
    }

    void handOversAreOpenedOneAtATimeAfterTheMessageOfTheFirstCloses()
    {
        SingleInstance first(m_home->path());
        QVERIFY(first.claim(QString()));
        QWidget window;
        window.show();
        writeBytes(path("other.bin"), QByteArray(64, '\xFF'));
        QStringList steps;
        QProcess second;
        QProcess third;
        // Each opening shows a message, as a folder handed over does, and waits for it.
        // The first message stays open until both later starts have ended, so they must
        // be answered while it is open; a start still waiting after 20 s is written down.
        zevran::app::serveWindow(first, &window, [&](const QString& file) {
            const QString name = QFileInfo(file).fileName();
            steps.append("start " + name);
            QDialog box(&window);
            if (name == "phone.bin") {
                startProgram(third, {path("other.bin")});
                QElapsedTimer shown;
                shown.start();
                auto* closer = new QTimer(&box);
                QObject::connect(closer, &QTimer::timeout, &box, [&] {
                    const bool ended = second.state() == QProcess::NotRunning && third.state() == QProcess::NotRunning;
                    if (!ended && shown.elapsed() < 20000) return;
                    if (!ended) steps.append("a start still waiting");
                    box.reject();
                });
                closer->start(50);
            } else {
                QTimer::singleShot(0, &box, &QDialog::reject);
            }
            box.exec();
            steps.append("end " + name);
        });
        startProgram(second, {path("phone.bin")});
        QTRY_COMPARE_WITH_TIMEOUT(steps.size(), 4, 60000);
        QCOMPARE(steps, (QStringList{"start phone.bin", "end phone.bin", "start other.bin", "end other.bin"}));
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(third.exitCode(), 0);
    }

    void minimizedWindowComesBackToTheFront()
    {
        QWidget window;
        window.showMinimized();
        zevran::app::bringToFront(&window);
        QVERIFY(!window.isMinimized());
        QVERIFY(window.isVisible());
    }

    void runningWindowOpensTheFileOfASecondStart()
    {
        QProcess first;
        startProgram(first, {});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("zevran.socket")), 60000);
        QProcess second;
        startProgram(second, {"phone.bin"});
        waitForEnd(second);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(first.state(), QProcess::Running);
        // SIGTERM closes the window as Exit does, so the folder of the file it opened is written.
        first.terminate();
        waitForEnd(first);
        QCOMPARE(first.exitCode(), 0);
        const zevran::app::ProfileFile settings(path("zevran.ini").toStdString());
        QCOMPARE(QString::fromStdString(settings.read("File Path", "Mobile File Path").value_or("")), m_home->path());
    }

    void lockHeldButNoWindowToReachStartsAnyway()
    {
        // This process holds the lock and listens nowhere, as a copy whose socket failed.
        QLockFile held(path("zevran.lock"));
        QVERIFY(held.tryLock(0));
        QFile::remove(path("zevran.ini"));
        QProcess start;
        startProgram(start, {});
        // The window's start-up writes its settings file.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("zevran.ini")), 60000);
        QCOMPARE(start.state(), QProcess::Running);
        start.terminate();
        waitForEnd(start);
        QCOMPARE(start.exitCode(), 0);
    }
};

QTEST_MAIN(SingleInstanceTest)
#include "single_instance_test.moc"
