#include "ui/Application.h"

#include "shell/Splash.h"
#include "support/Fault.h"

#include <QMessageBox>

namespace tarvex {

namespace {
Application::FaultReporter& Reporter() {
    static Application::FaultReporter reporter;
    return reporter;
}
} // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("Tarvex"));
    // No display name: Qt would append it to every window title, and the titles are the
    // program's own.
    setApplicationVersion(VersionText().mid(8));
}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const Fault& fault) {
        ReportFault(fault.Message());
    } catch (const std::exception& error) {
        ReportFault(QString::fromLocal8Bit(error.what()));
    }
    return false;
}

void Application::SetFaultReporter(FaultReporter reporter) {
    Reporter() = std::move(reporter);
}

void Application::ReportFault(const QString& message) {
    if (Reporter()) {
        Reporter()(message);
        return;
    }
    QMessageBox::critical(activeWindow(), ProductName(), message);
}

} // namespace tarvex
