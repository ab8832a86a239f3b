#pragma once

#include "data/Dialect.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

namespace tarvex {

// The version that the delivered databases and the present schema carry.
inline constexpr const char* kCurrentDatabaseVersion = "3.8";

// The file names of the three databases in the application folder.
inline constexpr const char* kProgramDbFile = "Tarvex.MDB";
inline constexpr const char* kLibraryDbFile = "Exercise Library.MDB";
inline constexpr const char* kPicklistDbFile = "Picklist.MDB";

// The three stores: each a file of its own on SQLite, a schema of its own on the server.
enum class Store { Program, Library, Picklist };
inline constexpr Store kAllStores[] = {Store::Program, Store::Library, Store::Picklist};

// The store's file name ("Tarvex.MDB"), and the name of its schema on the server
// ("program").
QString StoreFileName(Store store);
QString StoreSchemaName(Store store);
// The table whose presence marks a database as this store of this program.
QString StoreMarkTable(Store store);

// What a column holds.
enum class ColumnKind {
    Identity, // the key, given by the engine
    Key,      // the key, given by the program
    Long,
    Short,
    Text,
    Boolean,
    Date,
    Currency,
};

struct ColumnShape {
    const char* Name;
    ColumnKind Kind;
    int Size = 0;                     // the classic size of a text column; 0 for a memo
    bool Required = false;            // refuses null
    bool NoEmpty = false;             // refuses the empty string
    const char* References = nullptr; // "Patient (PatientID)": deleted with its row there
};

struct IndexShape {
    const char* Name;
    const char* Columns; // "PatientID, Date"
};

struct TableShape {
    const char* Name;
    std::vector<ColumnShape> Columns;
    std::vector<IndexShape> Indexes;
};

// The tables of a store in the order they are made (a table after those it refers to).
const std::vector<TableShape>& StoreTables(Store store);

// The key column that the engine gives a table's rows ("PatientID"); empty when the table
// has none or the program gives it.
QString IdentityKeyOf(const QString& table);

// The statements that make a store's tables, keys, indexes and relations in the dialect.
QStringList SchemaStatements(Store store, SqlDialect dialect);

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
