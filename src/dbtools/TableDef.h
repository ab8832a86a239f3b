#pragma once

#include <QSqlDatabase>
#include <QString>

namespace tarvex {

// The changes to a table's definition that the upgrade makes, in the terms of the classic
// engine's table definitions (a field of a type, a size, required or not, empty strings
// allowed or not; an index on one field), carried out in SQLite.

enum class FieldType { Boolean, Long, Text };

struct FieldDef {
    QString Name;
    FieldType Type = FieldType::Text;
    int Size = 0;           // text only; 0 is a text without a stated length
    bool Required = false;  // no null; existing rows read 0 until they are written
    bool AllowEmpty = true; // text only: false refuses the empty string
};

// The column's definition as SQLite takes it in ALTER TABLE ADD COLUMN.
QString FieldSql(const FieldDef& field);

// Appends the field at the end of the table.
void AppendField(QSqlDatabase& db, const QString& table, const FieldDef& field);

// Creates a non-unique index of that name on one field.
void AppendIndex(QSqlDatabase& db, const QString& table, const QString& index,
                 const QString& column);

// Lets a text field take the empty string: the field's "no empty string" rule is taken
// out of the table's definition, without touching a row. A field without the rule is
// left as it is. Runs inside the caller's transaction.
void AllowEmptyStrings(QSqlDatabase& db, const QString& table, const QString& column);

// Whether the table has a column of that name (without regard to case).
bool HasColumn(QSqlDatabase& db, const QString& table, const QString& column);

// Runs a statement and ignores its failure: for the few drops that may find nothing.
void ExecuteIgnoringErrors(QSqlDatabase& db, const QString& jetSql);

} // namespace tarvex
