#include "ui/Guarded.h"

#include "support/Fault.h"
#include "ui/Application.h"

namespace tarvex {

bool RunGuarded(const std::function<void()>& operation) {
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
    Application::ReportFault(report);
    return false;
}

} // namespace tarvex
