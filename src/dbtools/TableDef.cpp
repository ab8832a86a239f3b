#include "dbtools/TableDef.h"

#include "data/Sql.h"
#include "support/Fault.h"

#include <QRegularExpression>
#include <QSqlQuery>

namespace tarvex {

namespace {

// The form the schema gives the "no empty string" rule of a text column.
QRegularExpression NoEmptyStringRule(const QString& column) {
    return QRegularExpression(QStringLiteral("\\s*CHECK\\s*\\(\\s*\"?%1\"?\\s*<>\\s*''\\s*\\)")
                                  .arg(QRegularExpression::escape(column)),
                              QRegularExpression::CaseInsensitiveOption);
}

QString TableSql(QSqlDatabase& db, const QString& table) {
    QSqlQuery query = ExecPrepared(
        db,
        QStringLiteral("SELECT sql FROM sqlite_schema WHERE type = 'table' AND name = ? COLLATE "
                       "NOCASE"),
        {table});
    if (!query.next())
        throw DatabaseFault(QStringLiteral("The table '%1' is not in the database.").arg(table));
    return query.value(0).toString();
}

int SchemaVersion(QSqlDatabase& db) {
    QSqlQuery query = OpenQuery(db, QStringLiteral("PRAGMA schema_version"));
    query.next();
    return query.value(0).toInt();
}

} // namespace

QString FieldSql(const FieldDef& field) {
    QString sql = QStringLiteral("\"%1\" ").arg(field.Name);
    switch (field.Type) {
    case FieldType::Boolean:
        sql += QStringLiteral("BOOLEAN");
        break;
    case FieldType::Long:
        sql += QStringLiteral("INTEGER");
        break;
    case FieldType::Text:
        sql += field.Size > 0 ? QStringLiteral("VARCHAR(%1) COLLATE NOCASE").arg(field.Size)
                              : QStringLiteral("TEXT COLLATE NOCASE");
        if (!field.AllowEmpty)
            sql += QStringLiteral(" CHECK (\"%1\" <> '')").arg(field.Name);
        break;
    }
    // SQLite adds a column that takes no null only with a value for the rows already there.
    if (field.Required)
        sql += field.Type == FieldType::Text ? QStringLiteral(" NOT NULL DEFAULT ''")
                                             : QStringLiteral(" NOT NULL DEFAULT 0");
    return sql;
}

void AppendField(QSqlDatabase& db, const QString& table, const FieldDef& field) {
    Execute(db, QStringLiteral("ALTER TABLE %1 ADD COLUMN %2").arg(table, FieldSql(field)));
}

void AppendIndex(QSqlDatabase& db, const QString& table, const QString& index,
                 const QString& column) {
    Execute(db, QStringLiteral("CREATE INDEX \"%1\" ON %2 (\"%3\")").arg(index, table, column));
}

void AllowEmptyStrings(QSqlDatabase& db, const QString& table, const QString& column) {
    const QString sql = TableSql(db, table);
    QString changed = sql;
    changed.remove(NoEmptyStringRule(column));
    if (changed == sql)
        return;
    // Taking a constraint out changes nothing stored, so SQLite lets the definition be
    // rewritten in place, with the schema's version counted up so that every connection
    // reads it again.
    const int version = SchemaVersion(db);
    Execute(db, QStringLiteral("PRAGMA writable_schema = ON"));
    ExecPrepared(db,
                 QStringLiteral("UPDATE sqlite_schema SET sql = ? WHERE type = 'table' AND name = "
                                "? COLLATE NOCASE"),
                 {changed, table});
    Execute(db, QStringLiteral("PRAGMA schema_version = %1").arg(version + 1));
    Execute(db, QStringLiteral("PRAGMA writable_schema = OFF"));
}

bool HasColumn(QSqlDatabase& db, const QString& table, const QString& column) {
    QSqlQuery query =
        ExecPrepared(db, QStringLiteral("SELECT name FROM pragma_table_info(?)"), {table});
    while (query.next())
        if (query.value(0).toString().compare(column, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

void ExecuteIgnoringErrors(QSqlDatabase& db, const QString& jetSql) {
    QSqlQuery query(db);
    (void)query.exec(TranslateJet(jetSql));
}

} // namespace tarvex
