#pragma once

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

// Writes a consistent copy of the open database (what its journal holds included) to the
// target: under a temporary name first, private to the user, synced, then renamed. A
// failure is a DatabaseFault, and no file of the target's name is left by it.
void CopyDatabaseDurably(QSqlDatabase& db, const QString& target);

} // namespace tarvex
