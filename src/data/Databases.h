#pragma once

#include "data/LibraryRecordset.h"
#include "data/Server.h"

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

struct AppState;
class Prompter;

// The one owner of the three connections and of the long-lived library view. Opening,
// closing and reopening go through it alone; nobody else keeps a connection across a
// reopen (a statement takes the handle from here for its own run).
class DatabaseSession {
public:
    DatabaseSession() = default;
    ~DatabaseSession();
    DatabaseSession(const DatabaseSession&) = delete;
    DatabaseSession& operator=(const DatabaseSession&) = delete;

    // Checks the three files of the folder (read-only: a missing, damaged, foreign or
    // read-only file is a DatabaseFault that names it), brings them up to date and opens
    // them, with a fresh, unfiltered library view. Nothing is created, and nothing stays
    // open after a failure. With the server chosen, the same for its three stores.
    void OpenAll(const QString& appFolder);
    // Closes "Tarvex.MDB", "Picklist.MDB" and "Exercise Library.MDB", in that order.
    void CloseAll();
    // Closes and opens again, as the maintenance commands need.
    void ReopenAll();

    bool IsOpen() const { return ProgramDb.isValid() && ProgramDb.isOpen(); }
    bool OnServer() const { return Choice.Engine == DatabaseEngine::Postgres; }

    // Where the databases live; read from the settings before the first opening.
    EngineChoice Choice;

    QString ProgramPath;
    QString LibraryPath;
    QString PicklistPath;
    QSqlDatabase ProgramDb;
    QSqlDatabase LibraryDb;
    QSqlDatabase PicklistDb;
    LibraryRecordset Library;
    int OpenCount = 0; // how often the databases were opened in this run
    // Asks the upgrade's one question; none in programs without windows.
    Prompter* UpgradePrompter = nullptr;

private:
    void OpenServer();

    QString appFolder_;
};

using Databases = DatabaseSession;

// Opens the three databases of the application folder: first brings them up to the present
// version, then "Tarvex.MDB", "Exercise Library.MDB" with the library view, "Picklist.MDB".
// A missing or unreadable file is a DatabaseFault; no file is ever created here. Afterwards
// no patient and no stored program is current.
void OpenDatabases(AppState& state);

// Closes "Tarvex.MDB", "Picklist.MDB" and "Exercise Library.MDB" in that order.
void CloseDatabases(AppState& state);

} // namespace tarvex
