#include "ui/bench/BenchGuard.h"

#include "support/Fault.h"

#include <QApplication>
#include <QMessageBox>
#include <new>

namespace tarvex {

bool RunInBench(QWidget* window, const std::function<void()>& operation) {
    QString report;
    try {
        operation();
        return true;
    } catch (const Fault& fault) {
        report = fault.Message();
    } catch (const std::bad_alloc&) {
        report = QStringLiteral("There is not enough memory for this step. Close other programs, "
                                "or work on a smaller picture, and try again.");
    } catch (const std::exception& error) {
        report = QString::fromLocal8Bit(error.what());
    }
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    QMessageBox::critical(window, QStringLiteral("Picture Bench"), report);
    return false;
}

} // namespace tarvex
