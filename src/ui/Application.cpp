#include "ui/Application.h"

#include "shell/CommandLine.h"
#include "shell/Splash.h"
#include "support/Fault.h"

#include <QDir>
#include <QFileInfo>
#include <QIcon>
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
    setApplicationVersion(ProgramVersion());
    // The desktop entry's name: the window is matched with the menu's entry and its icon.
    setDesktopFileName(QLatin1String(kDesktopId));
}

void Application::UseProgramIcon(const QString& deliveredFolder) {
    QIcon icon = QIcon::fromTheme(QLatin1String(kDesktopId));
    if (icon.isNull()) {
        // Installed, the delivered folder is share/tarvex beside share/icons; in the build
        // tree it is bin, beside share/icons.
        const QDir installed(QDir(deliveredFolder).filePath(QStringLiteral("../icons/hicolor")));
        const QDir buildTree(
            QDir(deliveredFolder).filePath(QStringLiteral("../share/icons/hicolor")));
        for (const QDir& theme : {installed, buildTree}) {
            for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
                const QString file = theme.filePath(
                    QStringLiteral("%1x%1/apps/%2.png").arg(size).arg(QLatin1String(kDesktopId)));
                if (QFileInfo::exists(file))
                    icon.addFile(file, QSize(size, size));
            }
        }
    }
    if (!icon.isNull())
        setWindowIcon(icon);
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
