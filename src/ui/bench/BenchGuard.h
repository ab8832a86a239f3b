#pragma once

#include <QWidget>
#include <functional>
#include <utility>

namespace tarvex {

// Runs one operation of the bench for an event. A fault (or any error of the run-time) ends
// that operation with an error box over the window and goes no further: nothing is thrown
// through Qt's event loop, and the picture stays as the operation left it. A wait cursor
// the operation left on is taken down. False when a fault ended the operation.
bool RunInBench(QWidget* window, const std::function<void()>& operation);

// A slot that runs its function through RunInBench:
//   connect(action, &QAction::triggered, this, BenchSlot(this, [this] { ... }));
template <typename F> auto BenchSlot(QWidget* window, F function) {
    return [window, function = std::move(function)]() { RunInBench(window, function); };
}

} // namespace tarvex
