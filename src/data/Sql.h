#pragma once

#include "data/Dialect.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <utility>
#include <vector>

namespace tarvex {

// The statements of the system are kept in the classic Jet dialect ("DELETE * FROM",
// "SELECT TOP 1", "DISTINCTROW", "*" wildcards) because the texts are observable values.
// They are turned into the engine's dialect here, at the one place where they are executed.
QString TranslateJet(const QString& jetSql, SqlDialect dialect = SqlDialect::Sqlite);

// A text value as an SQL literal: between single quotes, an apostrophe doubled.
QString SqlText(const QString& value);

// Runs a statement that returns no rows. A failure is a DatabaseFault with the engine's text.
void Execute(QSqlDatabase& db, const QString& jetSql);

// Runs a query and returns it positioned before its first row (forward only).
QSqlQuery OpenQuery(QSqlDatabase& db, const QString& jetSql);

// Runs a prepared statement, translated as above, with values bound in order.
QSqlQuery ExecPrepared(QSqlDatabase& db, const QString& jetSql, const QVariantList& values);

using ColumnValues = std::vector<std::pair<QString, QVariant>>;

// Adds a row with the given columns (an invalid QVariant writes null) and returns the
// key the engine gave it (0 for a table whose key is not the engine's to give).
qint64 InsertRow(QSqlDatabase& db, const QString& table, const ColumnValues& values);

// Changes the columns of the row whose keyColumn equals key.
void UpdateRow(QSqlDatabase& db, const QString& table, const QString& keyColumn,
               const QVariant& key, const ColumnValues& values);

// An insert prepared once and run for many rows, each with the values of the columns in
// the order given at construction.
class PreparedInsert {
public:
    PreparedInsert(QSqlDatabase& db, const QString& table, const QStringList& columns);
    // Adds the row; returns its key as InsertRow does.
    qint64 Insert(const QVariantList& values);

private:
    QSqlQuery query_;
    QString sql_;
    QString key_;
    bool returning_ = false;
};

// Within a transaction: no other connection writes to the tables until the transaction
// ends; they may still read them. On the server a second workstation's writer waits for the
// lock. A database file needs nothing more: its one writer holds the file from the first
// write of a transaction to its end.
void LockTablesForWriting(QSqlDatabase& db, const QStringList& tables);

// One transaction: commits when Commit() is called, rolls back otherwise.
class Transaction {
public:
    explicit Transaction(QSqlDatabase& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void Commit();

private:
    QSqlDatabase& db_;
    bool open_ = false;
};

} // namespace tarvex
