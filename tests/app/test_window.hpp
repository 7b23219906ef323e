// A window started on a program folder with its dialogs answered by the double, as
// every window test begins.
#pragma once

#include "scripted_dialogs.hpp"

#include "app/main_window.hpp"

#include <QCloseEvent>
#include <QCoreApplication>
#include <memory>

namespace zevran::test {

// Starts the window on `home` after its settings are read; `dialogs` is pointed at the
// double that answers its dialogs.
inline std::unique_ptr<app::Form1> startTestWindow(const QString& home, ScriptedDialogs*& dialogs)
{
    auto owned = std::make_unique<ScriptedDialogs>();
    dialogs = owned.get();
    auto window = std::make_unique<app::Form1>(home, std::move(owned));
    window->LoadSettings();
    return window;
}

// Asks the window to close as the title bar's close button does; true when it agreed.
inline bool closeWindow(app::Form1& window)
{
    QCloseEvent event;
    QCoreApplication::sendEvent(&window, &event);
    return event.isAccepted();
}

}  // namespace zevran::test
