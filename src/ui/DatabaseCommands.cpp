#include "ui/DatabaseCommands.h"

#include "dbtools/CompressRepair.h"
#include "dbtools/RestoreLogic.h"
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
    window.SetMenuCommand(QStringLiteral("mnuBackup"), [&window, &state, host, backup] {
        OpenOnce(window, *backup, [&] {
            return new BackupDialog(state, *host, window.Prompts(), window.Settings(), &window);
        });
    });
    window.SetMenuCommand(QStringLiteral("mnuCompress"), [&window, host] {
        CompressRepairLogic logic(*host, window.Prompts());
        logic.CompressDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRebuild"), [&window, host] {
        CompressRepairLogic logic(*host, window.Prompts());
        logic.RepairDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRestore"), [&window, &state, host] {
        QtOpenFileDialog dialog(&window);
        RestoreLogic logic(*host, window.Prompts(), dialog);
        // The chooser opens where the backups go.
        logic.StartFolder = DefaultBackupFolder(
            ListMediaDrives(state),
            window.Settings().Get(BackupLogic::kSettingsSection, BackupLogic::kSettingsKey),
            QDir::homePath());
        logic.RestoreDatabases();
    });
}

} // namespace tarvex
