#pragma once

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

// The two engines a clinic's databases live on: SQLite files on one workstation, or a
// PostgreSQL server that several workstations share.
enum class SqlDialect { Sqlite, Postgres };

// The dialect of a connection, from its driver.
SqlDialect DialectOf(const QSqlDatabase& db);

// A column or table name as the engine wants it quoted. PostgreSQL folds the unquoted names
// of the statements to lower case, and its tables are made with unquoted names, so a quoted
// name is given in lower case there.
QString QuoteName(SqlDialect dialect, const QString& name);

// The hidden column that names a row of a table without a key ("rowid", "ctid").
QString RowIdentityColumn(SqlDialect dialect);

// The collation of the server that compares text without regard to case, as the classic
// engine did, and the deterministic one under which its patterns (ILIKE) are matched.
inline constexpr const char* kServerNoCase = "nocase";
inline constexpr const char* kServerPatternCollation = "und-x-icu";

} // namespace tarvex
