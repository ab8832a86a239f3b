#include "data/Sql.h"

#include "data/Schema.h"
#include "data/Server.h"
#include "support/Fault.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QStringList>
#include <algorithm>

namespace tarvex {

namespace {

// SQLite's code for a file that it cannot open (SQLITE_CANTOPEN).
constexpr const char* kCannotOpen = "14";

[[noreturn]] void Fail(const QSqlError& error, const QString& sql) {
    const int number = error.nativeErrorCode() == QLatin1String(kCannotOpen)
                           ? DatabaseFault::kFileNotFound
                           : DatabaseFault::kEngineError;
    throw DatabaseFault(QStringLiteral("The database refused a statement: %1\n\n%2")
                            .arg(error.text(), sql.left(300)),
                        number);
}

// A statement cut into the pieces that the rewrites must tell apart: plain SQL, quoted
// values ('...', with '' for an apostrophe) and quoted names ("..." or [...]).
struct SqlPiece {
    enum class Kind { Plain, Value, Name } kind;
    QString text; // with its quotes, for values and names
};

std::vector<SqlPiece> CutIntoPieces(const QString& sql) {
    std::vector<SqlPiece> pieces;
    qsizetype i = 0;
    while (i < sql.size()) {
        const QChar quote = sql.at(i);
        const auto opens = [](QChar c) { return c == u'\'' || c == u'"' || c == u'['; };
        if (!opens(quote)) {
            const qsizetype next = [&] {
                for (qsizetype j = i; j < sql.size(); ++j)
                    if (opens(sql.at(j)))
                        return j;
                return sql.size();
            }();
            pieces.push_back({SqlPiece::Kind::Plain, sql.mid(i, next - i)});
            i = next;
            continue;
        }
        const QChar close = quote == u'[' ? QChar(u']') : quote;
        qsizetype j = i + 1;
        for (; j < sql.size(); ++j) {
            if (sql.at(j) != close)
                continue;
            if (close != u']' && j + 1 < sql.size() && sql.at(j + 1) == close) {
                ++j; // a doubled quote stays inside
                continue;
            }
            break;
        }
        const qsizetype end = std::min(j + 1, sql.size());
        pieces.push_back(
            {quote == u'\'' ? SqlPiece::Kind::Value : SqlPiece::Kind::Name, sql.mid(i, end - i)});
        i = end;
    }
    return pieces;
}

// A LIKE pattern of Jet as SQLite's: "*" and "?" are the wildcards, and a "%" or "_" of
// the value is the character itself, as Jet took it. Returns the quoted pattern and
// whether it needs the escape clause.
std::pair<QString, bool> TranslatePattern(const QString& quoted) {
    QString out;
    bool escaped = false;
    const QString body = quoted.mid(1, quoted.size() - 2);
    for (const QChar c : body) {
        if (c == u'%' || c == u'_' || c == u'\\') {
            out += u'\\';
            escaped = true;
            out += c;
        } else if (c == u'*') {
            out += u'%';
        } else if (c == u'?') {
            out += u'_';
        } else {
            out += c;
        }
    }
    return {u'\'' + out + u'\'', escaped};
}

} // namespace

QString TranslateJet(const QString& jetSql, SqlDialect dialect) {
    static const QRegularExpression deleteStar(QStringLiteral("^\\s*DELETE\\s+\\*\\s+FROM\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression distinctRow(QStringLiteral("\\bDISTINCTROW\\s+"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression top(QStringLiteral("^(\\s*SELECT\\s+)TOP\\s+(\\d+)\\s+"),
                                        QRegularExpression::CaseInsensitiveOption);
    // The column Desc is a keyword of both engines; the keyword DESC is always spelled in
    // capitals.
    static const QRegularExpression descColumn(QStringLiteral("(?<!\\w)Desc\\b"));
    static const QRegularExpression likeBefore(QStringLiteral("\\bLIKE(\\s*)$"),
                                               QRegularExpression::CaseInsensitiveOption);
    const bool server = dialect == SqlDialect::Postgres;

    std::vector<SqlPiece> pieces = CutIntoPieces(jetSql);
    QString limit;
    // Only the plain pieces are rewritten: a value such as 'Desc stairs' stays as typed.
    for (size_t n = 0; n < pieces.size(); ++n) {
        SqlPiece& piece = pieces[n];
        if (piece.kind == SqlPiece::Kind::Value && n > 0 &&
            pieces[n - 1].kind == SqlPiece::Kind::Plain) {
            QString& before = pieces[n - 1].text;
            const auto like = likeBefore.match(before);
            if (like.hasMatch()) {
                const auto [pattern, escaped] = TranslatePattern(piece.text);
                piece.text = pattern;
                // The server's text compares without regard to case and refuses patterns;
                // ILIKE under a deterministic collation matches as the classic LIKE did.
                if (server) {
                    before.replace(like.capturedStart(), like.capturedLength(),
                                   QStringLiteral("ILIKE") + like.captured(1));
                    piece.text += QStringLiteral(" COLLATE \"%1\"")
                                      .arg(QLatin1String(kServerPatternCollation));
                }
                if (escaped)
                    piece.text += QStringLiteral(" ESCAPE '\\'");
                continue;
            }
        }
        if (piece.kind == SqlPiece::Kind::Name) {
            if (server)
                piece.text =
                    QuoteName(dialect, piece.text.mid(1, piece.text.size() - 2)
                                           .replace(QStringLiteral("\"\""), QStringLiteral("\"")));
            continue;
        }
        if (piece.kind != SqlPiece::Kind::Plain)
            continue;
        if (n == 0) {
            piece.text.replace(deleteStar, QStringLiteral("DELETE FROM"));
            const auto m = top.match(piece.text);
            if (m.hasMatch()) {
                limit = QStringLiteral(" LIMIT ") + m.captured(2);
                piece.text.replace(m.capturedStart(), m.capturedLength(), m.captured(1));
            }
        }
        piece.text.replace(distinctRow, QString());
        piece.text.replace(descColumn, QuoteName(dialect, QStringLiteral("Desc")));
    }
    QString sql;
    for (const SqlPiece& piece : pieces)
        sql += piece.text;
    return sql + limit;
}

SqlDialect DialectOf(const QSqlDatabase& db) {
    return db.driverName() == QLatin1String("QPSQL") ? SqlDialect::Postgres : SqlDialect::Sqlite;
}

QString QuoteName(SqlDialect dialect, const QString& name) {
    QString inner = dialect == SqlDialect::Postgres ? name.toLower() : name;
    inner.replace(u'"', QStringLiteral("\"\""));
    return u'"' + inner + u'"';
}

QString RowIdentityColumn(SqlDialect dialect) {
    return dialect == SqlDialect::Postgres ? QStringLiteral("ctid") : QStringLiteral("rowid");
}

QString SqlText(const QString& value) {
    QString quoted = value;
    quoted.replace(u'\'', QStringLiteral("''"));
    return u'\'' + quoted + u'\'';
}

void Execute(QSqlDatabase& db, const QString& jetSql) {
    ReconnectIfLost(db);
    QSqlQuery query(db);
    const QString sql = TranslateJet(jetSql, DialectOf(db));
    if (!query.exec(sql))
        Fail(query.lastError(), sql);
}

void LockTablesForWriting(QSqlDatabase& db, const QStringList& tables) {
    const SqlDialect dialect = DialectOf(db);
    if (dialect != SqlDialect::Postgres)
        return;
    QStringList names;
    for (const QString& table : tables)
        names << QuoteName(dialect, table);
    // EXCLUSIVE lets readers on and holds back every other writer and lock of this kind.
    Execute(db, QStringLiteral("LOCK TABLE %1 IN EXCLUSIVE MODE").arg(names.join(u',')));
}

QSqlQuery OpenQuery(QSqlDatabase& db, const QString& jetSql) {
    ReconnectIfLost(db);
    const QString sql = TranslateJet(jetSql, DialectOf(db));
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (query.exec(sql))
        return query;
    // A read changes nothing, so one that found the server gone runs again on a new
    // connection (never within a transaction, which went with the old one).
    const QSqlError error = query.lastError();
    if (ReconnectIfLost(db, error)) {
        QSqlQuery again(db);
        again.setForwardOnly(true);
        if (again.exec(sql))
            return again;
        Fail(again.lastError(), sql);
    }
    Fail(error, sql);
}

QSqlQuery ExecPrepared(QSqlDatabase& db, const QString& jetSql, const QVariantList& values) {
    ReconnectIfLost(db);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const QString sql = TranslateJet(jetSql, DialectOf(db));
    if (!query.prepare(sql))
        Fail(query.lastError(), sql);
    for (const QVariant& v : values)
        query.addBindValue(v);
    if (!query.exec())
        Fail(query.lastError(), sql);
    return query;
}

qint64 InsertRow(QSqlDatabase& db, const QString& table, const ColumnValues& values) {
    const SqlDialect dialect = DialectOf(db);
    QStringList columns, marks;
    QVariantList bound;
    for (const auto& [column, value] : values) {
        columns << QuoteName(dialect, column);
        marks << QStringLiteral("?");
        bound << value;
    }
    QString sql = values.empty() ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table)
                                 : QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                       .arg(table, columns.join(u','), marks.join(u','));
    const QString key = IdentityKeyOf(table);
    // The server gives the key with the row: a read of the highest key afterwards could see
    // another workstation's row.
    if (dialect == SqlDialect::Postgres && !key.isEmpty())
        sql += QStringLiteral(" RETURNING ") + QuoteName(dialect, key);
    QSqlQuery query = ExecPrepared(db, sql, bound);
    if (dialect == SqlDialect::Postgres)
        return !key.isEmpty() && query.next() ? query.value(0).toLongLong() : 0;
    return key.isEmpty() ? 0 : query.lastInsertId().toLongLong();
}

void UpdateRow(QSqlDatabase& db, const QString& table, const QString& keyColumn,
               const QVariant& key, const ColumnValues& values) {
    const SqlDialect dialect = DialectOf(db);
    QStringList sets;
    QVariantList bound;
    for (const auto& [column, value] : values) {
        sets << QuoteName(dialect, column) + QStringLiteral("=?");
        bound << value;
    }
    bound << key;
    ExecPrepared(db,
                 QStringLiteral("UPDATE %1 SET %2 WHERE %3=?")
                     .arg(table, sets.join(u','), QuoteName(dialect, keyColumn)),
                 bound);
}

PreparedInsert::PreparedInsert(QSqlDatabase& db, const QString& table, const QStringList& columns) {
    ReconnectIfLost(db);
    query_ = QSqlQuery(db);
    const SqlDialect dialect = DialectOf(db);
    QStringList quoted, marks;
    for (const QString& column : columns) {
        quoted << QuoteName(dialect, column);
        marks << QStringLiteral("?");
    }
    sql_ = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
               .arg(table, quoted.join(u','), marks.join(u','));
    key_ = IdentityKeyOf(table);
    returning_ = dialect == SqlDialect::Postgres && !key_.isEmpty();
    if (returning_)
        sql_ += QStringLiteral(" RETURNING ") + QuoteName(dialect, key_);
    if (!query_.prepare(sql_))
        Fail(query_.lastError(), sql_);
}

qint64 PreparedInsert::Insert(const QVariantList& values) {
    for (int i = 0; i < values.size(); ++i)
        query_.bindValue(i, values[i]);
    if (!query_.exec())
        Fail(query_.lastError(), sql_);
    if (returning_)
        return query_.next() ? query_.value(0).toLongLong() : 0;
    return key_.isEmpty() ? 0 : query_.lastInsertId().toLongLong();
}

Transaction::Transaction(QSqlDatabase& db) : db_(db) {
    ReconnectIfLost(db_);
    // A server that went away since the last statement is noticed by this one; nothing has
    // been done in the transaction yet, so it begins again on a new connection.
    if (!db_.transaction() && !(ReconnectIfLost(db_, db_.lastError()) && db_.transaction()))
        Fail(db_.lastError(), QStringLiteral("BEGIN"));
    open_ = true;
    MarkWithinTransaction(db_, true);
}

Transaction::~Transaction() {
    if (!open_)
        return;
    db_.rollback(); // on a lost connection the server has rolled it back already
    MarkWithinTransaction(db_, false);
}

void Transaction::Commit() {
    const bool committed = db_.commit();
    open_ = false;
    MarkWithinTransaction(db_, false);
    if (!committed)
        Fail(db_.lastError(), QStringLiteral("COMMIT"));
}

} // namespace tarvex
