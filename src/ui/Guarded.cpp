#include "ui/Guarded.h"

#include "support/Fault.h"
#include "ui/Application.h"

namespace tarvex {

namespace {

std::function<CommandStateRestorer()>& Capture() {
    static std::function<CommandStateRestorer()> capture;
    return capture;
}

} // namespace

void SetCommandStateCapture(std::function<CommandStateRestorer()> capture) {
    Capture() = std::move(capture);
}

CommandStateRestorer CaptureCommandState() {
    return Capture() ? Capture()() : CommandStateRestorer();
}

bool RunGuarded(const std::function<void()>& operation) {
    const CommandStateRestorer restoreCommands = CaptureCommandState();
    QString report;
    try {
        operation();
        return true;
    } catch (const Fault& fault) {
        report = fault.Message();
    } catch (const std::exception& error) {
        report = QString::fromLocal8Bit(error.what());
    }
    // The operation is over: a wait cursor it put up must not outlive it.
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    // Nor may the commands it took away stay away: whatever it did to the toolbar and the
    // menu before the fault is undone.
    if (restoreCommands)
        restoreCommands();
    Application::ReportFault(report);
    return false;
}

} // namespace tarvex
