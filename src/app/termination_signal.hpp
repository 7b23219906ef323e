// SIGTERM, as a session's log-out or `kill` sends it, closes the window the way its
// Exit command does: the save question, then the settings are written.
#pragma once

class QWidget;

namespace zevran::app {

// From now on SIGTERM closes `window` (on systems without the signal, nothing changes).
void closeOnTerminationSignal(QWidget* window);

}  // namespace zevran::app
