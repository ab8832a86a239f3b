#pragma once

#include <QString>

namespace tarvex {

// Brings the three database files to the present version before they are opened.
// Converting databases of former releases is not built yet: a file of another version
// is refused with a DatabaseFault that names it, so that it is never opened with a
// schema it does not have. A file that does not exist is left for the opening to report.
void UpgradeDatabases(const QString& programPath, const QString& libraryPath,
                      const QString& picklistPath);

// The version text of a database file; empty when it has no Version table or row.
QString ReadDatabaseVersion(const QString& path);

} // namespace tarvex
