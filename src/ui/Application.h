#pragma once

#include <QApplication>
#include <functional>

namespace tarvex {

// The application object. A fault raised in an event handler ends that operation with an
// error box; the program goes on running.
class Application : public QApplication {
    Q_OBJECT
public:
    Application(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;

    // The program's icon on every window: the installed icon theme's, or else the icons that
    // lie beside the delivered files (share/icons beside share/tarvex, or in the build tree).
    void UseProgramIcon(const QString& deliveredFolder);

    // The error box of a fault.
    static void ReportFault(const QString& message);

    // Replaces the error box, for tests; an empty function restores it.
    using FaultReporter = std::function<void(const QString&)>;
    static void SetFaultReporter(FaultReporter reporter);
};

} // namespace tarvex
