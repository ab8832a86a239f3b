#include "dbtools/Migration.h"

#include "data/DatabaseCheck.h"
#include "data/Sql.h"
#include "support/Dates.h"
#include "support/DurableFiles.h"
#include "support/Fault.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <algorithm>
#include <atomic>

namespace tarvex {

namespace {

// Rows sent to the target in one statement.
constexpr int kBatchRows = 100;

QString NewName(const char* role) {
    static std::atomic<int> serial{0};
    return QStringLiteral("move-%1-%2").arg(QLatin1String(role)).arg(++serial);
}

bool OnServer(const QSqlDatabase& db) {
    return DialectOf(db) == SqlDialect::Postgres;
}

// A date column's value as the program reads it, or null.
QVariant DateValue(const QVariant& value) {
    if (value.isNull())
        return {};
    if (value.typeId() == QMetaType::QDateTime)
        return DateToStorage(value.toDateTime());
    const QString text = value.toString();
    if (text.isEmpty())
        return {};
    const auto date = ParseDate(text);
    return date ? QVariant(DateToStorage(*date)) : QVariant(text);
}

bool BoolValue(const QVariant& value) {
    return value.typeId() == QMetaType::Bool ? value.toBool() : value.toLongLong() != 0;
}

// A value in the form the target is given, from the source's column of that kind.
QVariant Converted(const QVariant& value, ColumnKind kind) {
    if (value.isNull())
        return {};
    switch (kind) {
    case ColumnKind::Boolean:
        return BoolValue(value);
    case ColumnKind::Date:
        return DateValue(value);
    case ColumnKind::Currency:
        return value.toDouble();
    case ColumnKind::Text:
        return value.toString();
    default:
        return value;
    }
}

// A value as the tally counts it.
QByteArray Fingerprint(const QVariant& value, ColumnKind kind) {
    if (value.isNull())
        return QByteArrayLiteral("N");
    switch (kind) {
    case ColumnKind::Text:
        return 'T' + value.toString().toUtf8();
    case ColumnKind::Boolean:
        return BoolValue(value) ? QByteArrayLiteral("B1") : QByteArrayLiteral("B0");
    case ColumnKind::Date: {
        const QVariant date = DateValue(value);
        return date.isNull() ? QByteArrayLiteral("N") : 'D' + date.toString().toUtf8();
    }
    case ColumnKind::Currency:
        return 'C' + QByteArray::number(value.toDouble(), 'f', 4);
    default: {
        bool ok = false;
        const qlonglong number = value.toLongLong(&ok);
        return ok ? 'I' + QByteArray::number(number) : '?' + value.toString().toUtf8();
    }
    }
}

// The rows of a table in the order they were added: by key, or by the engine's own row
// identity for a table without one.
QSqlQuery ReadRows(QSqlDatabase& db, const TableShape& table) {
    QString order;
    for (const ColumnShape& c : table.Columns)
        if (c.Kind == ColumnKind::Identity || c.Kind == ColumnKind::Key)
            order = QLatin1String(c.Name);
    if (order.isEmpty())
        order = RowIdentityColumn(DialectOf(db));
    return OpenQuery(
        db, QStringLiteral("SELECT * FROM %1 ORDER BY %2").arg(QLatin1String(table.Name), order));
}

std::vector<int> ColumnIndexes(const QSqlQuery& rows, const TableShape& table) {
    const QSqlRecord record = rows.record();
    std::vector<int> indexes;
    for (const ColumnShape& c : table.Columns) {
        const int index = record.indexOf(QLatin1String(c.Name));
        if (index < 0)
            throw DatabaseFault(QStringLiteral("The table %1 has no column %2.")
                                    .arg(QLatin1String(table.Name), QLatin1String(c.Name)));
        indexes.push_back(index);
    }
    return indexes;
}

// Inserts rows a batch at a time.
class BatchInsert {
public:
    BatchInsert(QSqlDatabase& db, const TableShape& table) : db_(db), table_(table) {}

    void Add(const QVariantList& row) {
        pending_ += row;
        if (++rows_ == kBatchRows)
            Flush();
    }

    void Flush() {
        if (rows_ == 0)
            return;
        ExecPrepared(db_, Statement(rows_), pending_);
        pending_.clear();
        rows_ = 0;
    }

private:
    QString Statement(int rows) const {
        QStringList columns, marks;
        for (const ColumnShape& c : table_.Columns) {
            columns << QuoteName(SqlDialect::Sqlite, QLatin1String(c.Name));
            marks << QStringLiteral("?");
        }
        const QString one = u'(' + marks.join(u',') + u')';
        QStringList all;
        for (int i = 0; i < rows; ++i)
            all << one;
        return QStringLiteral("INSERT INTO %1 (%2) VALUES %3")
            .arg(QLatin1String(table_.Name), columns.join(u','), all.join(u','));
    }

    QSqlDatabase& db_;
    const TableShape& table_;
    QVariantList pending_;
    int rows_ = 0;
};

QString IdentityColumn(const TableShape& table) {
    for (const ColumnShape& c : table.Columns)
        if (c.Kind == ColumnKind::Identity)
            return QLatin1String(c.Name);
    return {};
}

// The last key the engine gave a table (0 for none): the next one is above it, even when
// the rows of the highest keys were deleted.
qint64 KeyCounter(QSqlDatabase& db, const TableShape& table, const QString& key) {
    const QString name = QLatin1String(table.Name);
    QSqlQuery counter =
        OnServer(db)
            ? ExecPrepared(
                  db, QStringLiteral("SELECT pg_sequence_last_value(pg_get_serial_sequence(?, ?))"),
                  {name.toLower(), key.toLower()})
            : ExecPrepared(db, QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = ?"),
                           {name});
    const qint64 last = counter.next() ? counter.value(0).toLongLong() : 0;
    counter.finish();
    // A key above the counter (a row added with its key given) counts as well.
    QSqlQuery highest = OpenQuery(db, QStringLiteral("SELECT MAX(%1) FROM %2").arg(key, name));
    return std::max(last, highest.next() ? highest.value(0).toLongLong() : 0);
}

void SetKeyCounter(QSqlDatabase& db, const TableShape& table, const QString& key, qint64 value) {
    const QString name = QLatin1String(table.Name);
    if (OnServer(db)) {
        if (value > 0)
            ExecPrepared(db, QStringLiteral("SELECT setval(pg_get_serial_sequence(?, ?), ?)"),
                         {name.toLower(), key.toLower(), value});
        return;
    }
    Execute(db, QStringLiteral("DELETE * FROM sqlite_sequence WHERE name = ") + SqlText(name));
    if (value > 0)
        ExecPrepared(db, QStringLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)"),
                     {name, value});
}

void RequireSameTallies(const TableTally& source, const TableTally& target) {
    if (source.Rows != target.Rows || source.Checksum != target.Checksum)
        throw DatabaseFault(
            QStringLiteral("The copy of the table %1.%2 differs from its source: %3 rows (%4) "
                           "were read, %5 rows (%6) were written. Nothing has been kept.")
                .arg(StoreSchemaName(source.Of), source.Table)
                .arg(source.Rows)
                .arg(QString::fromLatin1(source.Checksum.left(12)))
                .arg(target.Rows)
                .arg(QString::fromLatin1(target.Checksum.left(12))));
}

// A database file of the folder, opened only to be read, after the checks that the program
// itself makes before it opens one.
QSqlDatabase OpenSourceFile(const QString& folder, Store store) {
    const QString path = QDir(folder).filePath(StoreFileName(store));
    CheckDatabaseFile(path, StoreMarkTable(store));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), NewName("source"));
    db.setDatabaseName(path);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    if (!db.open()) {
        const QString error = db.lastError().text();
        CloseConnection(db);
        throw DatabaseFault(QStringLiteral("Could not open '%1': %2").arg(path, error));
    }
    return db;
}

void RequireKnownVersion(QSqlDatabase& db, Store store, const QString& where) {
    if (store == Store::Picklist)
        return;
    QSqlQuery row = OpenQuery(db, QStringLiteral("SELECT Version FROM Version"));
    const QString version = row.next() ? row.value(0).toString() : QString();
    const float number = version.toFloat();
    if (number < 3.7F || number > QString::fromLatin1(kCurrentDatabaseVersion).toFloat())
        throw DatabaseFault(
            QStringLiteral("The %1 store of %2 is at version \"%3\"; only databases of this "
                           "release (3.7 or 3.8) are moved. Open them once with this release of "
                           "TVX Regimenter, which brings them up to date, then move them.")
                .arg(StoreSchemaName(store), where, version));
}

} // namespace

TableTally TallyTable(QSqlDatabase& db, Store store, const TableShape& table) {
    QSqlQuery rows = ReadRows(db, table);
    const std::vector<int> indexes = ColumnIndexes(rows, table);
    std::vector<QByteArray> digests;
    while (rows.next()) {
        QCryptographicHash row(QCryptographicHash::Sha256);
        for (size_t i = 0; i < indexes.size(); ++i) {
            const QByteArray value = Fingerprint(rows.value(indexes[i]), table.Columns[i].Kind);
            row.addData(QByteArray::number(value.size()) + ':');
            row.addData(value);
        }
        digests.push_back(row.result());
    }
    std::sort(digests.begin(), digests.end());
    QCryptographicHash all(QCryptographicHash::Sha256);
    for (const QByteArray& digest : digests)
        all.addData(digest);
    return {store, QLatin1String(table.Name), static_cast<qint64>(digests.size()),
            all.result().toHex()};
}

std::vector<TableTally> CopyStore(QSqlDatabase& from, QSqlDatabase& to, Store store,
                                  const std::function<void(const QString&)>& progress) {
    std::vector<TableTally> tallies;
    for (const TableShape& table : StoreTables(store)) {
        if (progress)
            progress(StoreSchemaName(store) + u'.' + QLatin1String(table.Name));
        {
            QSqlQuery rows = ReadRows(from, table);
            const std::vector<int> indexes = ColumnIndexes(rows, table);
            BatchInsert insert(to, table);
            while (rows.next()) {
                QVariantList values;
                for (size_t i = 0; i < indexes.size(); ++i)
                    values << Converted(rows.value(indexes[i]), table.Columns[i].Kind);
                insert.Add(values);
            }
            insert.Flush();
        }
        if (const QString key = IdentityColumn(table); !key.isEmpty())
            SetKeyCounter(to, table, key, KeyCounter(from, table, key));
        const TableTally source = TallyTable(from, store, table);
        RequireSameTallies(source, TallyTable(to, store, table));
        tallies.push_back(source);
    }
    return tallies;
}

std::vector<TableTally> MoveFolderToServer(const QString& folder, const ServerSettings& server,
                                           const std::function<void(const QString&)>& progress) {
    std::vector<TableTally> tallies;
    OwnedConnection target(OpenServerDatabase(server, NewName("target")));
    Transaction transaction(target.Db());
    LockServerStores(target.Db());
    for (const Store store : kAllStores) {
        OwnedConnection source(OpenSourceFile(folder, store));
        RequireKnownVersion(source.Db(), store, QDir::toNativeSeparators(folder));
        CreateStoreSchema(target.Db(), store);
        const auto copied = CopyStore(source.Db(), target.Db(), store, progress);
        tallies.insert(tallies.end(), copied.begin(), copied.end());
    }
    transaction.Commit();
    return tallies;
}

std::vector<TableTally> MoveServerToFolder(const ServerSettings& server, const QString& folder,
                                           const std::function<void(const QString&)>& progress) {
    const QDir dir(folder);
    if (!dir.exists())
        throw Fault(
            QStringLiteral("The folder %1 does not exist.").arg(QDir::toNativeSeparators(folder)));
    for (const Store store : kAllStores)
        if (QFileInfo::exists(dir.filePath(StoreFileName(store))))
            throw Fault(QStringLiteral("The folder %1 already has %2; the move makes the three "
                                       "files new and replaces none. Nothing has been changed.")
                            .arg(QDir::toNativeSeparators(folder), StoreFileName(store)));

    std::vector<TableTally> tallies;
    QStringList made;
    const auto removeMade = [&made] {
        for (const QString& path : made) {
            QFile::remove(path);
            QFile::remove(path + QStringLiteral("-wal"));
            QFile::remove(path + QStringLiteral("-shm"));
        }
    };
    try {
        for (const Store store : kAllStores) {
            const QString part = dir.filePath(StoreFileName(store) + QStringLiteral(".moving"));
            QFile::remove(part);
            made << part;
            {
                OwnedConnection source(OpenServerStore(server, store, NewName("source")));
                OwnedConnection target(
                    QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), NewName("target")));
                RequireKnownVersion(source.Db(), store, server.Describe());
                // The server's rows are read as one moment of the clinic.
                Transaction reading(source.Db());
                Execute(source.Db(),
                        QStringLiteral("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ"));
                target.Db().setDatabaseName(part);
                if (!target.Db().open())
                    throw DatabaseFault(QStringLiteral("Could not make '%1': %2")
                                            .arg(part, target.Db().lastError().text()));
                QFile::setPermissions(part, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
                Transaction writing(target.Db());
                for (const QString& sql : SchemaStatements(store, SqlDialect::Sqlite))
                    Execute(target.Db(), sql);
                const auto copied = CopyStore(source.Db(), target.Db(), store, progress);
                tallies.insert(tallies.end(), copied.begin(), copied.end());
                writing.Commit();
                reading.Commit();
            } // both connections closed: the file is whole on its own
            if (!SyncFile(part))
                throw Fault(QStringLiteral("Could not write '%1' to the disk.").arg(part));
        }
        // Only whole files take the real names; the folder had none of them before, so a
        // failure part way takes back the names already given.
        for (const Store store : kAllStores) {
            const QString part = dir.filePath(StoreFileName(store) + QStringLiteral(".moving"));
            ReplaceFileDurably(part, dir.filePath(StoreFileName(store)));
            made << dir.filePath(StoreFileName(store));
        }
    } catch (...) {
        removeMade();
        throw;
    }
    return tallies;
}

} // namespace tarvex
