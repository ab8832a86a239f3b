#pragma once

#include <QString>

namespace tarvex {

// Looks at a database file before anything opens it for writing: that it is there, is a
// file and not a folder, can be written, begins as a database, passes the engine's quick
// check and has the table that marks it as the given database of this program. The file
// is only read. A file that fails is a DatabaseFault whose text names the file, the cause
// and what to do.
void CheckDatabaseFile(const QString& path, const QString& markTable);

// Whether a journal beside the file holds work that a crash left unfinished. Such a file is
// opened for writing by a check, so that the engine finishes or takes back that work as it
// does at every opening; a connection that may only read cannot, and the file would look
// damaged.
bool HasJournalToRecover(const QString& path);

// The box of a database file that cannot be used, for the given cause.
QString UnusableDatabaseText(const QString& path, const QString& cause);

} // namespace tarvex
