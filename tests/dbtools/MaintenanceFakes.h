#pragma once

#include "data/Databases.h"
#include "dbtools/MaintenanceHost.h"
#include "shell/AppState.h"

#include <QStringList>

namespace tarvex::testing {

// The program around a maintenance command: the real opening and closing of the
// databases of a state, and a record of everything else.
class FakeMaintenanceHost : public IMaintenanceHost {
public:
    explicit FakeMaintenanceHost(AppState& state) : state_(state) {}
    QString AppFolder() const override { return state_.AppFolder; }
    void CloseDatabases() override {
        calls << "close";
        tarvex::CloseDatabases(state_);
    }
    void OpenDatabases() override {
        calls << "open";
        tarvex::OpenDatabases(state_);
    }
    void ResetShell() override {
        calls << "reset";
        state_.Program.FullName.clear();
    }
    void SetStatusBar(const QString& text) override { statuses << text; }
    void SetBusy(bool busy) override { calls << (busy ? "busy" : "idle"); }
    void DoEvents() override {}

    QStringList calls;
    QStringList statuses;

private:
    AppState& state_;
};

} // namespace tarvex::testing
