#include "ui/DatabaseCommands.h"

#include "dbtools/CompressRepair.h"
#include "dbtools/RestoreLogic.h"
#include "dbtools/ServerMaintenance.h"
#include "dbtools/ServerRestore.h"
#include "media/MediaDrives.h"
#include "shell/SettingsStore.h"
#include "ui/BackupDialog.h"
#include "ui/MainWindow.h"
#include "ui/MaintenanceHost.h"
#include "ui/OpenOnce.h"
#include "ui/QtMediaControls.h"

#include <QDir>
#include <memory>

namespace tarvex {

void RegisterDatabaseCommands(MainWindow& window, AppState& state) {
    auto host = std::make_shared<MainWindowMaintenanceHost>(window, state);
    auto backup = std::make_shared<QPointer<QWidget>>();
    // Each command has a form for the files of this workstation and one for the databases on
    // the server; the settings chose the engine before the first opening.
    window.SetMenuCommand(QStringLiteral("mnuBackup"), [&window, &state, host, backup] {
        OpenOnce(window, *backup, [&] {
            return new BackupDialog(state, *host, window.Prompts(), window.Settings(), &window);
        });
    });
    window.SetMenuCommand(QStringLiteral("mnuCompress"), [&window, &state, host] {
        if (state.Dbs.OnServer()) {
            ServerMaintenanceLogic logic(state.Dbs.Choice.Server, *host, window.Prompts());
            logic.CompressDatabase();
            return;
        }
        CompressRepairLogic logic(*host, window.Prompts());
        logic.CompressDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRebuild"), [&window, &state, host] {
        if (state.Dbs.OnServer()) {
            ServerMaintenanceLogic logic(state.Dbs.Choice.Server, *host, window.Prompts());
            logic.RepairDatabase();
            return;
        }
        CompressRepairLogic logic(*host, window.Prompts());
        logic.RepairDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRestore"), [&window, &state, host] {
        QtOpenFileDialog dialog(&window);
        // The chooser opens where the backups go.
        const QString start = DefaultBackupFolder(
            ListMediaDrives(state),
            window.Settings().Get(BackupLogic::kSettingsSection, BackupLogic::kSettingsKey),
            QDir::homePath());
        if (state.Dbs.OnServer()) {
            ServerRestoreLogic logic(state.Dbs.Choice.Server, *host, window.Prompts(), dialog);
            logic.StartFolder = start;
            logic.RestoreDatabases();
            return;
        }
        RestoreLogic logic(*host, window.Prompts(), dialog);
        logic.StartFolder = start;
        logic.RestoreDatabases();
    });
}

} // namespace tarvex
