#include "data/Databases.h"

#include "data/Schema.h"
#include "data/Upgrade.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "support/Fault.h"

#include <QFileInfo>
#include <QSqlError>
#include <atomic>

namespace tarvex {

namespace {

QString NewConnectionName(const char* role) {
    static std::atomic<int> serial{0};
    return QStringLiteral("%1-%2").arg(QLatin1String(role)).arg(++serial);
}

QSqlDatabase OpenFile(const QString& path, const char* role) {
    if (!QFileInfo(path).isFile())
        throw DatabaseFault(QStringLiteral("Could not find file '%1'.").arg(path));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), NewConnectionName(role));
    db.setDatabaseName(path);
    if (!db.open()) {
        const QString error = db.lastError().text();
        const QString name = db.connectionName();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw DatabaseFault(QStringLiteral("Could not open '%1': %2").arg(path, error));
    }
    ApplyConnectionSettings(db);
    return db;
}

void CloseFile(QSqlDatabase& db) {
    if (!db.isValid())
        return;
    const QString name = db.connectionName();
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

} // namespace

void OpenDatabases(AppState& state) {
    Databases& dbs = state.Dbs;
    dbs.ProgramPath = AppPathAndFName(state, QLatin1String(kProgramDbFile));
    dbs.LibraryPath = AppPathAndFName(state, QLatin1String(kLibraryDbFile));
    dbs.PicklistPath = AppPathAndFName(state, QLatin1String(kPicklistDbFile));

    // The databases are brought to the present version before anything is opened on them.
    UpgradeDatabases(dbs.ProgramPath, dbs.LibraryPath, dbs.PicklistPath);

    try {
        dbs.ProgramDb = OpenFile(dbs.ProgramPath, "ProgramDb");
        dbs.LibraryDb = OpenFile(dbs.LibraryPath, "LibraryDb");
        dbs.Library.Attach(dbs.LibraryDb);
        dbs.PicklistDb = OpenFile(dbs.PicklistPath, "PicklistDb");
    } catch (...) {
        CloseDatabases(state);
        throw;
    }
    ++dbs.OpenCount;
    state.Program.PatientID.reset();
    state.Program.InvoiceID.reset();
}

void CloseDatabases(AppState& state) {
    Databases& dbs = state.Dbs;
    CloseFile(dbs.ProgramDb);
    CloseFile(dbs.PicklistDb);
    dbs.Library.Detach();
    CloseFile(dbs.LibraryDb);
}

} // namespace tarvex
