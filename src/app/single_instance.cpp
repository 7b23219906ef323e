#include "single_instance.hpp"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <QWidget>

#include <deque>
#include <memory>

namespace zevran::app {

namespace {

// A request is one line: "open FILE-URL" or "raise"; the answer is "done". The file
// travels as an encoded URL, so no byte of its name can end the line early.
constexpr qsizetype kRequestLimit = qsizetype{64} * 1024;
constexpr int kWaitMs = 5000;
// A socket address holds 108 bytes; longer paths go to /tmp under a hashed name.
constexpr qsizetype kSocketPathLimit = 100;
// The first start listens right after taking the lock; a start that finds the lock
// taken but no listener yet tries again for this many tenths of a second.
constexpr int kConnectAttempts = 30;

QString socketNameFor(const QString& folder)
{
    QString beside = folder + "/zevran.socket";
    if (beside.toLocal8Bit().size() < kSocketPathLimit) return beside;
    const QByteArray hash = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QDir::tempPath() + "/zevran-" + QString::fromLatin1(hash) + ".socket";
}

}  // namespace

SingleInstance::SingleInstance(const QString& runtimeFolder, QObject* parent)
    : QObject(parent), m_lock(runtimeFolder + "/zevran.lock"), m_socketName(socketNameFor(runtimeFolder))
{
    QDir().mkpath(runtimeFolder);
    // A lock is stale only when the process that holds it is gone, never by its age.
    m_lock.setStaleLockTime(0);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::takeConnection);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim(const QString& file)
{
    if (m_lock.tryLock(0)) {
        // The lock is ours, so a socket left behind by a copy that crashed can go.
        QLocalServer::removeServer(m_socketName);
        m_server.listen(m_socketName);
        return true;
    }
    const bool heldByAnother = m_lock.error() == QLockFile::LockFailedError;
    return !handOver(file, heldByAnother ? kConnectAttempts : 1);
}

bool SingleInstance::handOver(const QString& file, int attempts)
{
    const QByteArray request =
        file.isEmpty() ? QByteArray("raise\n")
                       : "open " + QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()).toEncoded() + "\n";
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0) QThread::msleep(100);
        QLocalSocket socket;
        socket.connectToServer(m_socketName);
        if (!socket.waitForConnected(kWaitMs)) continue;
        socket.write(request);
        if (!socket.waitForBytesWritten(kWaitMs)) continue;
        // The window answers once the file is open; a window stuck in a dialog has it
        // anyway, so this start ends either way.
        while (!socket.canReadLine() && socket.waitForReadyRead(kWaitMs)) {}
        return true;
    }
    return false;
}

void SingleInstance::serve(std::function<void(const QString& file)> handler) { m_handler = std::move(handler); }

void SingleInstance::takeConnection()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
        if (socket->canReadLine()) readRequest(socket);
    }
}

void SingleInstance::readRequest(QLocalSocket* socket)
{
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kRequestLimit) socket->abort();
        return;
    }
    const QByteArray line = socket->readLine(kRequestLimit).trimmed();
    QString file;
    if (line.startsWith("open ")) {
        const QUrl url = QUrl::fromEncoded(line.mid(5));
        if (!url.isLocalFile()) {
            socket->abort();
            return;
        }
        file = url.toLocalFile();
    } else if (line != "raise") {
        socket->abort();
        return;
    }
    if (m_handler) m_handler(file);
    socket->write("done\n");
    socket->disconnectFromServer();
}

void bringToFront(QWidget* window)
{
    if (window->isMinimized()) window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
    if (QWidget* modal = QApplication::activeModalWidget()) {
        modal->raise();
        modal->activateWindow();
    }
}

void serveWindow(SingleInstance& instance, QWidget* window, std::function<void(const QString& file)> open)
{
    // Files handed over are opened one at a time, never from inside the socket's
    // handler and never while a dialog is open: a message of one opening (its box runs
    // an event loop of its own) must close before the next opening starts.
    auto waiting = std::make_shared<std::deque<QString>>();
    auto opening = std::make_shared<bool>(false);
    auto* retry = new QTimer(window);
    retry->setInterval(250);
    auto openWaiting = [retry, waiting, opening, open = std::move(open)] {
        while (!waiting->empty()) {
            if (*opening || QApplication::activeModalWidget()) {
                retry->start();
                return;
            }
            const QString file = waiting->front();
            waiting->pop_front();
            *opening = true;
            open(file);
            *opening = false;
        }
        retry->stop();
    };
    QObject::connect(retry, &QTimer::timeout, window, openWaiting);
    instance.serve([window, waiting, openWaiting](const QString& file) {
        bringToFront(window);
        if (file.isEmpty()) return;
        waiting->push_back(file);
        QTimer::singleShot(0, window, openWaiting);
    });
}

}  // namespace zevran::app
