#pragma once

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

// The version that the delivered databases and the present schema carry.
inline constexpr const char* kCurrentDatabaseVersion = "3.8";

// The file names of the three databases in the application folder.
inline constexpr const char* kProgramDbFile = "Tarvex.MDB";
inline constexpr const char* kLibraryDbFile = "Exercise Library.MDB";
inline constexpr const char* kPicklistDbFile = "Picklist.MDB";

// Creates the tables, keys, indexes and relations of each database in an empty file.
// Used by the tool that makes the delivered databases and by tests.
void CreateProgramSchema(QSqlDatabase& db);
void CreateLibrarySchema(QSqlDatabase& db);
void CreatePicklistSchema(QSqlDatabase& db);

// Creates the table Version: one text column of 20 characters that takes no empty string.
void CreateVersionTable(QSqlDatabase& db);

// Writes the one row of the Version table.
void WriteVersion(QSqlDatabase& db, const QString& version);

// The connection settings every database file gets when it is opened: relations
// enforced, write-ahead journal.
void ApplyConnectionSettings(QSqlDatabase& db);

} // namespace tarvex
