#pragma once

#include "data/LibraryRecordset.h"

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

struct AppState;

// The three database handles, open for the whole run.
struct Databases {
    QString ProgramPath;
    QString LibraryPath;
    QString PicklistPath;
    QSqlDatabase ProgramDb;
    QSqlDatabase LibraryDb;
    QSqlDatabase PicklistDb;
    LibraryRecordset Library;
    int OpenCount = 0; // how often the databases were opened in this run

    bool IsOpen() const { return ProgramDb.isValid() && ProgramDb.isOpen(); }
};

// Opens the three databases of the application folder: first brings them up to the present
// version, then "Tarvex.MDB", "Exercise Library.MDB" with the library view, "Picklist.MDB".
// A missing or unreadable file is a DatabaseFault; no file is ever created here. Afterwards
// no patient and no stored program is current.
void OpenDatabases(AppState& state);

// Closes "Tarvex.MDB", "Picklist.MDB" and "Exercise Library.MDB" in that order.
void CloseDatabases(AppState& state);

} // namespace tarvex
