#include "termination_signal.hpp"

#include <QSocketNotifier>
#include <QWidget>

#include <csignal>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace zevran::app {

#ifdef Q_OS_UNIX
namespace {

// A signal handler may only write to a file descriptor; the event loop reads the
// other end and closes the window there.
int g_signalPipe[2] = {-1, -1};

void noteSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_signalPipe[0], &byte, 1);
}

}  // namespace

void closeOnTerminationSignal(QWidget* window)
{
    if (g_signalPipe[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0) return;
    auto* notifier = new QSocketNotifier(g_signalPipe[1], QSocketNotifier::Read, window);
    QObject::connect(notifier, &QSocketNotifier::activated, window, [window] {
        char byte = 0;
        [[maybe_unused]] const auto read = ::read(g_signalPipe[1], &byte, 1);
        window->close();
    });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
}
#else
void closeOnTerminationSignal(QWidget*) {}
#endif

}  // namespace zevran::app
