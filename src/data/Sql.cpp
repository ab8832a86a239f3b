#include "data/Sql.h"

#include "support/Fault.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QStringList>

namespace tarvex {

namespace {

QString QuoteIdentifier(const QString& name) {
    return u'"' + name + u'"';
}

[[noreturn]] void Fail(const QSqlError& error, const QString& sql) {
    throw DatabaseFault(QStringLiteral("The database refused a statement: %1\n\n%2")
                            .arg(error.text(), sql.left(300)));
}

// Replaces the "*" and "?" wildcards of Jet by "%" and "_" inside the quoted texts that
// follow LIKE.
QString TranslateLikePatterns(const QString& sql) {
    static const QRegularExpression like(QStringLiteral("(\\bLIKE\\s*')((?:[^']|'')*)'"),
                                         QRegularExpression::CaseInsensitiveOption);
    QString out;
    qsizetype last = 0;
    auto it = like.globalMatch(sql);
    while (it.hasNext()) {
        const auto m = it.next();
        out += sql.mid(last, m.capturedStart() - last);
        QString pattern = m.captured(2);
        pattern.replace(u'*', u'%').replace(u'?', u'_');
        out += m.captured(1) + pattern + u'\'';
        last = m.capturedEnd();
    }
    out += sql.mid(last);
    return out;
}

} // namespace

QString TranslateJet(const QString& jetSql) {
    QString sql = jetSql;
    static const QRegularExpression deleteStar(QStringLiteral("^\\s*DELETE\\s+\\*\\s+FROM\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
    sql.replace(deleteStar, QStringLiteral("DELETE FROM"));
    static const QRegularExpression distinctRow(QStringLiteral("\\bDISTINCTROW\\s+"),
                                                QRegularExpression::CaseInsensitiveOption);
    sql.replace(distinctRow, QString());
    static const QRegularExpression top(QStringLiteral("^(\\s*SELECT\\s+)TOP\\s+(\\d+)\\s+"),
                                        QRegularExpression::CaseInsensitiveOption);
    const auto m = top.match(sql);
    if (m.hasMatch()) {
        const QString count = m.captured(2);
        sql.replace(m.capturedStart(), m.capturedLength(), m.captured(1));
        sql += QStringLiteral(" LIMIT ") + count;
    }
    // The column Desc is a keyword of SQLite; the keyword DESC is always spelled in capitals.
    static const QRegularExpression descColumn(QStringLiteral("(?<![\"\\w])Desc\\b(?!\")"));
    sql.replace(descColumn, QStringLiteral("\"Desc\""));
    return TranslateLikePatterns(sql);
}

QString SqlText(const QString& value) {
    QString quoted = value;
    quoted.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quoted + u'\'';
}

void Execute(QSqlDatabase& db, const QString& jetSql) {
    QSqlQuery query(db);
    const QString sql = TranslateJet(jetSql);
    if (!query.exec(sql))
        Fail(query.lastError(), sql);
}

QSqlQuery OpenQuery(QSqlDatabase& db, const QString& jetSql) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const QString sql = TranslateJet(jetSql);
    if (!query.exec(sql))
        Fail(query.lastError(), sql);
    return query;
}

QSqlQuery ExecPrepared(QSqlDatabase& db, const QString& sql, const QVariantList& values) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        Fail(query.lastError(), sql);
    for (const QVariant& v : values)
        query.addBindValue(v);
    if (!query.exec())
        Fail(query.lastError(), sql);
    return query;
}

qint64 InsertRow(QSqlDatabase& db, const QString& table, const ColumnValues& values) {
    QStringList columns, marks;
    QVariantList bound;
    for (const auto& [column, value] : values) {
        columns << QuoteIdentifier(column);
        marks << QStringLiteral("?");
        bound << value;
    }
    const QString sql = values.empty() ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table)
                                       : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                             .arg(table, columns.join(u','), marks.join(u','));
    QSqlQuery query = ExecPrepared(db, sql, bound);
    return query.lastInsertId().toLongLong();
}

void UpdateRow(QSqlDatabase& db, const QString& table, const QString& keyColumn,
               const QVariant& key, const ColumnValues& values) {
    QStringList sets;
    QVariantList bound;
    for (const auto& [column, value] : values) {
        sets << QuoteIdentifier(column) + QStringLiteral("=?");
        bound << value;
    }
    bound << key;
    ExecPrepared(db,
                 QStringLiteral("UPDATE %1 SET %2 WHERE %3=?")
                     .arg(table, sets.join(u','), QuoteIdentifier(keyColumn)),
                 bound);
}

PreparedInsert::PreparedInsert(QSqlDatabase& db, const QString& table, const QStringList& columns)
    : query_(db) {
    QStringList quoted, marks;
    for (const QString& column : columns) {
        quoted << QuoteIdentifier(column);
        marks << QStringLiteral("?");
    }
    sql_ = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
               .arg(table, quoted.join(u','), marks.join(u','));
    if (!query_.prepare(sql_))
        Fail(query_.lastError(), sql_);
}

qint64 PreparedInsert::Insert(const QVariantList& values) {
    for (int i = 0; i < values.size(); ++i)
        query_.bindValue(i, values[i]);
    if (!query_.exec())
        Fail(query_.lastError(), sql_);
    return query_.lastInsertId().toLongLong();
}

Transaction::Transaction(QSqlDatabase& db) : db_(db) {
    if (!db_.transaction())
        Fail(db_.lastError(), QStringLiteral("BEGIN"));
    open_ = true;
}

Transaction::~Transaction() {
    if (open_)
        db_.rollback();
}

void Transaction::Commit() {
    if (!db_.commit())
        Fail(db_.lastError(), QStringLiteral("COMMIT"));
    open_ = false;
}

} // namespace tarvex
