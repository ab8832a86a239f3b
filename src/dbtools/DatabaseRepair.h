#pragma once

#include <QDateTime>
#include <QString>

namespace tarvex {

// Whether the database file opens and the engine finds every page and index in order.
bool DatabaseIsSound(const QString& path);

// Rewrites the database file without its dead space: a compacted copy is written to the
// work file (which must not exist) and synced. A failure is a DatabaseFault.
void CompactDatabase(const QString& source, const QString& work);

// Makes the database file openable. A sound file is left as it is (false). A damaged one
// is recovered, as far as its pages allow, into a new file by the SQLite shell's recovery;
// the damaged file is kept beside it as "<name> (damaged <date> <time>).<ext>", with its
// journal, and the new file takes the name in one step (true). A failure leaves the file
// as it was and is a DatabaseFault.
bool RepairDatabaseFile(const QString& path, const QDateTime& now);

// The name under which a damaged file is kept.
QString DamagedCopyName(const QString& path, const QDateTime& now);

} // namespace tarvex
