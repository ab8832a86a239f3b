#pragma once

#include <QString>

namespace tarvex {

class Prompter;

// The three database files of the application folder.
struct DatabasePaths {
    QString Folder; // also holds the two companion files
    QString Program;
    QString Library;
    QString Picklist;
};

// Brings the three databases to the present version before they are opened: the library,
// then the program database, then the picklists, each step on a fresh connection and
// skipped when the file has its version already. Each step is one transaction, its version
// included, so that a break leaves the file as before the step or after it. Before the
// first step writes to a file, a copy of the file as it was is kept beside it, named for
// its version ("Tarvex (version 3.5).MDB", "Picklist (no version).MDB"); a copy of that
// name made before is left as it is. The prompter asks the "Update Text" question; without
// one, the update runs unasked, as it does whatever the answer. A failure is a fault; what
// was done stays done.
void UpgradeDatabases(const DatabasePaths& paths, Prompter* prompter);

// The version text of a database file; empty when it has no Version table or row.
QString ReadDatabaseVersion(const QString& path);

// The name of the copy that the upgrade keeps of a file of the given version.
QString FormerVersionCopyName(const QString& path, const QString& version);

} // namespace tarvex
