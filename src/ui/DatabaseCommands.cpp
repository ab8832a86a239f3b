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

namespace {

// The commands work on the database files of this workstation. With the databases on the
// server they would work on files nobody uses, so they say where the databases are instead.
bool OnServerSaySo(MainWindow& window, const AppState& state) {
    if (!state.Dbs.OnServer())
        return false;
    window.Prompts().MsgBox(
        QStringLiteral("The clinic's databases are on the server (%1).\r\rThis command works "
                       "on the database files of one workstation. The server's databases are "
                       "kept by the server and its administrator.")
            .arg(state.Dbs.Choice.Server.Describe()),
        msg::Information, QStringLiteral("TVX Regimenter"));
    return true;
}

} // namespace

void RegisterDatabaseCommands(MainWindow& window, AppState& state) {
    auto host = std::make_shared<MainWindowMaintenanceHost>(window, state);
    auto backup = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuBackup"), [&window, &state, host, backup] {
        if (OnServerSaySo(window, state))
            return;
        OpenOnce(window, *backup, [&] {
            return new BackupDialog(state, *host, window.Prompts(), window.Settings(), &window);
        });
    });
    window.SetMenuCommand(QStringLiteral("mnuCompress"), [&window, &state, host] {
        if (OnServerSaySo(window, state))
            return;
        CompressRepairLogic logic(*host, window.Prompts());
        logic.CompressDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRebuild"), [&window, &state, host] {
        if (OnServerSaySo(window, state))
            return;
        CompressRepairLogic logic(*host, window.Prompts());
        logic.RepairDatabase();
    });
    window.SetMenuCommand(QStringLiteral("mnuRestore"), [&window, &state, host] {
        if (OnServerSaySo(window, state))
            return;
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
