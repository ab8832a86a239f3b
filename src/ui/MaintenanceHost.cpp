#include "ui/MaintenanceHost.h"

#include "data/Databases.h"
#include "shell/AppState.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QSqlQuery>

namespace tarvex {

QString MainWindowMaintenanceHost::AppFolder() const {
    return state_.AppFolder;
}

void MainWindowMaintenanceHost::CloseDatabases() {
    // The journal is folded into each file first, so that the file alone holds everything
    // while the work copies, compacts or replaces it. (A server keeps its own log.)
    if (!state_.Dbs.OnServer())
        for (QSqlDatabase* db :
             {&state_.Dbs.ProgramDb, &state_.Dbs.LibraryDb, &state_.Dbs.PicklistDb})
            if (db->isValid() && db->isOpen())
                QSqlQuery(*db).exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    tarvex::CloseDatabases(state_);
}

void MainWindowMaintenanceHost::OpenDatabases() {
    tarvex::OpenDatabases(state_);
    window_.ReloadWorkspace();
}

void MainWindowMaintenanceHost::ResetShell() {
    window_.ShellLogic().ResetAfterReopen();
}

void MainWindowMaintenanceHost::SetStatusBar(const QString& text) {
    window_.ShellLogic().SetStatusBar(text);
}

void MainWindowMaintenanceHost::SetBusy(bool busy) {
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void MainWindowMaintenanceHost::DoEvents() {
    QCoreApplication::processEvents();
}

} // namespace tarvex
