#pragma once

#include "dbtools/MaintenanceHost.h"

namespace tarvex {

class MainWindow;
struct AppState;

// The main window as the program around a maintenance command.
class MainWindowMaintenanceHost : public IMaintenanceHost {
public:
    MainWindowMaintenanceHost(MainWindow& window, AppState& state)
        : window_(window), state_(state) {}

    QString AppFolder() const override;
    void CloseDatabases() override;
    void OpenDatabases() override;
    void ResetShell() override;
    void SetStatusBar(const QString& text) override;
    void SetBusy(bool busy) override;
    void DoEvents() override;

private:
    MainWindow& window_;
    AppState& state_;
};

} // namespace tarvex
