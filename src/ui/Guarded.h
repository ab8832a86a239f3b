#pragma once

#include <QApplication>
#include <concepts>
#include <functional>
#include <utility>

namespace tarvex {

// What the toolbar and the menu allow at this moment, as a way to give it back: the main
// window registers the capture, and a command that a fault ends restores what the
// commands were before it. Empty when no main window is there.
using CommandStateRestorer = std::function<void()>;
void SetCommandStateCapture(std::function<CommandStateRestorer()> capture);
CommandStateRestorer CaptureCommandState();

// Runs one operation of the logic for an event. A fault ends that operation with the
// run-time's report (an error box) and goes no further: nothing is ever thrown through
// Qt's event loop. A busy cursor that the operation left on is taken down, and the toolbar
// and the menu are given back as they were before the operation. Returns false when a
// fault ended the operation.
bool RunGuarded(const std::function<void()>& operation);

// A slot that runs its function through RunGuarded. It takes the signal's arguments
// that the function takes, so Qt's connect sees it as any other functor.
template <typename F> struct GuardedSlot {
    F function;

    template <typename... Args>
    requires std::invocable<F&, Args...>
    void operator()(Args&&... args) {
        RunGuarded([&] { std::invoke(function, std::forward<Args>(args)...); });
    }
};

// Wraps a slot: connect(button, &QPushButton::clicked, this, Guarded([this] { ... })).
template <typename F> GuardedSlot<F> Guarded(F function) {
    return GuardedSlot<F>{std::move(function)};
}

// The wait cursor for as long as the guard lives, whatever ends the work in between.
class BusyCursor {
public:
    BusyCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

} // namespace tarvex
