#include "ui/DatabaseCommands.h"

#include "dbtools/CompressRepair.h"
#include "ui/MainWindow.h"
#include "ui/MaintenanceHost.h"

#include <memory>

namespace tarvex {

void RegisterDatabaseCommands(MainWindow& window, AppState& state) {
    auto host = std::make_shared<MainWindowMaintenanceHost>(window, state);
    window.SetMenuCommand(QStringLiteral("mnuCompress"), [&window, host] {
        CompressRepairLogic logic(*host, window.Prompts());
        logic.CompressDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRebuild"), [&window, host] {
        CompressRepairLogic logic(*host, window.Prompts());
        logic.RepairDatabase();
    });
}

} // namespace tarvex
