#include "data/Databases.h"

#include "data/DatabaseCheck.h"
#include "data/Schema.h"
#include "dbtools/Upgrade.h"
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

} // namespace

DatabaseSession::~DatabaseSession() {
    CloseAll();
}

void DatabaseSession::OpenAll(const QString& appFolder) {
    CloseAll();
    appFolder_ = appFolder;
    if (OnServer()) {
        OpenServer();
        return;
    }
    const QString libraryName = QLatin1String(kLibraryDbFile);
    ProgramPath = FindFileNoCase(appFolder, QLatin1String(kProgramDbFile));
    LibraryPath = FindFileNoCase(appFolder, libraryName);
    PicklistPath = FindFileNoCase(appFolder, QLatin1String(kPicklistDbFile));

    // Each file is looked at, read-only, before anything writes to it: a damaged or foreign
    // file is named and left as it is.
    CheckDatabaseFile(ProgramPath, QStringLiteral("Patient"));
    CheckDatabaseFile(LibraryPath, QStringLiteral("ExerciseLibrary"));
    CheckDatabaseFile(PicklistPath, QStringLiteral("Label"));

    // The databases are brought to the present version before anything is opened on them.
    UpgradeDatabases({appFolder, ProgramPath, LibraryPath, PicklistPath}, UpgradePrompter);

    try {
        ProgramDb = OpenFile(ProgramPath, "ProgramDb");
        LibraryDb = OpenFile(LibraryPath, "LibraryDb");
        // A fresh view: a filter of the run before never survives a reopen.
        Library = LibraryRecordset();
        Library.Attach(LibraryDb);
        PicklistDb = OpenFile(PicklistPath, "PicklistDb");
    } catch (...) {
        CloseAll();
        throw;
    }
    ++OpenCount;
}

void DatabaseSession::OpenServer() {
    const ServerSettings& server = Choice.Server;
    // The stores are named in messages as the files are.
    ProgramPath = StoreSchemaName(Store::Program) + QStringLiteral(" on ") + server.Describe();
    LibraryPath = StoreSchemaName(Store::Library) + QStringLiteral(" on ") + server.Describe();
    PicklistPath = StoreSchemaName(Store::Picklist) + QStringLiteral(" on ") + server.Describe();
    CheckServerStores(server);
    try {
        ProgramDb = OpenServerStore(server, Store::Program, NewConnectionName("ProgramDb"));
        LibraryDb = OpenServerStore(server, Store::Library, NewConnectionName("LibraryDb"));
        Library = LibraryRecordset();
        Library.Attach(LibraryDb);
        PicklistDb = OpenServerStore(server, Store::Picklist, NewConnectionName("PicklistDb"));
    } catch (...) {
        CloseAll();
        throw;
    }
    ++OpenCount;
}

void DatabaseSession::CloseAll() {
    CloseConnection(ProgramDb);
    CloseConnection(PicklistDb);
    Library = LibraryRecordset();
    CloseConnection(LibraryDb);
}

void DatabaseSession::ReopenAll() {
    const QString folder = appFolder_;
    CloseAll();
    OpenAll(folder);
}

void OpenDatabases(AppState& state) {
    state.Dbs.OpenAll(state.AppFolder);
    state.Program.PatientID.reset();
    state.Program.InvoiceID.reset();
}

void CloseDatabases(AppState& state) {
    state.Dbs.CloseAll();
}

} // namespace tarvex
