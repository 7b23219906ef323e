// One workshop window per program folder (per user when installed). The first start
// holds a lock file and listens on a local socket; a later start hands its FILE to that
// window, which opens it and comes to the front, and then ends. A start that cannot
// make the lock or the socket runs anyway: it never ends because it could not prove
// that another copy runs.
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QLocalSocket;
class QWidget;

namespace zevran::app {

class SingleInstance : public QObject {
    Q_OBJECT
public:
    // The lock and the socket live in `runtimeFolder`, which is made when missing.
    explicit SingleInstance(const QString& runtimeFolder, QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when this process is to run the window: it holds the lock, or no running
    // window could be reached. False when a running window took the request (open
    // `file`, or only come to the front when `file` is empty): this process then ends
    // with status 0.
    bool claim(const QString& file);

    // After claim() returned true: each later start's request reaches `handler` (the
    // absolute path of its FILE, or an empty text for "come to the front").
    void serve(std::function<void(const QString& file)> handler);

    bool listening() const { return m_server.isListening(); }
    QString lockPath() const { return m_lock.fileName(); }
    // The socket's name: a path in the runtime folder, or in /tmp when that path is too
    // long for a socket address.
    QString socketName() const { return m_socketName; }

private:
    bool handOver(const QString& file, int attempts);
    void takeConnection();
    void readRequest(QLocalSocket* socket);

    QLockFile m_lock;
    QLocalServer m_server;
    QString m_socketName;
    std::function<void(const QString&)> m_handler;
};

// Un-minimizes, raises and activates `window`, or the modal dialog in front of it.
void bringToFront(QWidget* window);

// Runs the requests of later starts on `window`: it comes to the front and opens the
// file, but not while a modal dialog is open there (the request waits for it to close).
void serveWindow(SingleInstance& instance, QWidget* window, std::function<void(const QString& file)> open);

}  // namespace zevran::app
