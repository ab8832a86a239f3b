#include "data/Server.h"

#include "data/Sql.h"
#include "support/Fault.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <libpq-fe.h>

namespace tarvex {

namespace {

// The key of the advisory lock that the workstations of one database take while they look
// at (or upgrade) its stores: "TVXR".
constexpr qint64 kUpgradeLock = 0x54565852;

// The newest version of the stores that this program knows; the program store stays at
// "3.7" (its later step runs at every opening on SQLite and has nothing to do on a server).
constexpr float kNewestVersion = 3.8F;
constexpr float kOldestServerVersion = 3.7F;

QString ConnectOptions(const ServerSettings& server, const QString& schema) {
    // A server that does not answer is reported within seconds, and a connection whose
    // server went away is noticed by the keepalives rather than by a hung save.
    QStringList options = {QStringLiteral("connect_timeout=10"),
                           QStringLiteral("application_name=tarvex"),
                           QStringLiteral("keepalives=1"), QStringLiteral("keepalives_idle=30")};
    if (!server.Service.isEmpty())
        options.prepend(QStringLiteral("service=") + server.Service);
    // A store's connection searches its schema alone, from the start of every session, so a
    // connection opened again finds its tables as the first did.
    if (!schema.isEmpty())
        options << QStringLiteral("options=-csearch_path=") + schema;
    return options.join(u';');
}

DatabaseFault NoConnection(const QString& where, const QString& answer) {
    return DatabaseFault(
        QStringLiteral("Could not connect to the clinic's database server (%1).\n\nThe "
                       "server answered: %2\n\nCheck that the server is running and can be "
                       "reached from this workstation, and the section [Database] of the "
                       "settings. A password belongs in the file ~/.pgpass.")
            .arg(where, answer.isEmpty() ? QStringLiteral("nothing") : answer));
}

// The property of a connection's driver that says a transaction of the program is open.
constexpr const char* kWithinTransaction = "tarvexWithinTransaction";

QSqlDatabase Connect(const ServerSettings& server, const QString& connectionName,
                     const QString& schema = {}) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connectionName);
    db.setHostName(server.Host);
    if (server.Port > 0)
        db.setPort(server.Port);
    db.setDatabaseName(server.Database);
    db.setUserName(server.User);
    db.setConnectOptions(ConnectOptions(server, schema));
    if (!db.isValid()) {
        QSqlDatabase::removeDatabase(connectionName);
        throw DatabaseFault(QStringLiteral("The PostgreSQL driver of Qt is not installed on this "
                                           "workstation (Debian package libqt6sql6-psql)."));
    }
    if (!db.open()) {
        const QString answer = db.lastError().databaseText().trimmed();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(connectionName);
        throw NoConnection(server.Describe(), answer);
    }
    return db;
}

QSqlQuery Query(QSqlDatabase& db, const QString& sql, const QVariantList& values = {}) {
    return ExecPrepared(db, sql, values);
}

// The version a store's table holds, or empty when it has none.
QString StoredVersion(QSqlDatabase& db, const QString& schema) {
    QSqlQuery row = Query(db, QStringLiteral("SELECT version FROM %1.version LIMIT 1").arg(schema));
    return row.next() ? row.value(0).toString() : QString();
}

QStringList MissingTables(QSqlDatabase& db, Store store) {
    QStringList missing;
    for (const TableShape& table : StoreTables(store)) {
        QSqlQuery row = Query(db,
                              QStringLiteral("SELECT 1 FROM information_schema.tables WHERE "
                                             "table_schema = ? AND table_name = ?"),
                              {StoreSchemaName(store), QString::fromLatin1(table.Name).toLower()});
        if (!row.next())
            missing << StoreSchemaName(store) + u'.' + QLatin1String(table.Name);
    }
    return missing;
}

void CheckVersion(QSqlDatabase& db, const ServerSettings& server, Store store) {
    const QString version = StoredVersion(db, StoreSchemaName(store));
    const float number = version.toFloat();
    if (number > kNewestVersion)
        throw DatabaseFault(
            QStringLiteral("The clinic's databases on the server (%1) were made by a newer "
                           "release of TVX Regimenter: the %2 store is at version %3, and this "
                           "program knows version %4 at most.\n\nNothing has been changed. "
                           "Install the newer release on this workstation.")
                .arg(server.Describe(), StoreSchemaName(store), version,
                     QLatin1String(kCurrentDatabaseVersion)));
    if (number < kOldestServerVersion)
        throw DatabaseFault(
            QStringLiteral("The %1 store on the server (%2) has no version this program knows "
                           "(\"%3\").\n\nNothing has been changed. Move the clinic's databases "
                           "to the server with tarvex-migrate, which copies them from the "
                           "files of an up-to-date workstation.")
                .arg(StoreSchemaName(store), server.Describe(), version));
}

} // namespace

QString ServerSettings::Describe() const {
    if (!Service.isEmpty())
        return QStringLiteral("service %1").arg(Service);
    QString where = Database.isEmpty() ? QStringLiteral("the default database") : Database;
    where += QStringLiteral(" on ") + (Host.isEmpty() ? QStringLiteral("this computer") : Host);
    if (Port > 0)
        where += u':' + QString::number(Port);
    if (!User.isEmpty())
        where += QStringLiteral(" as ") + User;
    return where;
}

QSqlDatabase OpenServerDatabase(const ServerSettings& server, const QString& connectionName) {
    return Connect(server, connectionName);
}

QSqlDatabase OpenServerStore(const ServerSettings& server, Store store,
                             const QString& connectionName) {
    return Connect(server, connectionName, StoreSchemaName(store));
}

void CheckServerStores(const ServerSettings& server) {
    OwnedConnection connection(Connect(server, QStringLiteral("server-check")));
    QSqlDatabase& db = connection.Db();
    Transaction transaction(db);
    LockServerStores(db);
    QStringList missing;
    for (const Store store : kAllStores)
        missing << MissingTables(db, store);
    if (!missing.isEmpty())
        throw DatabaseFault(
            QStringLiteral("The database on the server (%1) is not one of TVX Regimenter: it has "
                           "no table %2.\n\nNothing has been changed. Check the section "
                           "[Database] of the settings, or move the clinic's databases there "
                           "with tarvex-migrate.")
                .arg(server.Describe(), missing.join(QStringLiteral(", "))));
    CheckVersion(db, server, Store::Program);
    CheckVersion(db, server, Store::Library);
    transaction.Commit();
}

void CreateServerStores(const ServerSettings& server) {
    OwnedConnection connection(Connect(server, QStringLiteral("server-create")));
    QSqlDatabase& db = connection.Db();
    Transaction transaction(db);
    LockServerStores(db);
    for (const Store store : kAllStores) {
        CreateStoreSchema(db, store);
        if (store != Store::Picklist)
            ExecPrepared(db, QStringLiteral("INSERT INTO Version (Version) VALUES (?)"),
                         {QLatin1String(kCurrentDatabaseVersion)});
    }
    transaction.Commit();
}

void LockServerStores(QSqlDatabase& db) {
    Query(db, QStringLiteral("SELECT pg_advisory_xact_lock(?)"), {kUpgradeLock});
}

void CreateStoreSchema(QSqlDatabase& db, Store store) {
    const QString schema = StoreSchemaName(store);
    if (Query(db, QStringLiteral("SELECT 1 FROM pg_namespace WHERE nspname = ?"), {schema}).next())
        throw DatabaseFault(QStringLiteral("The database on the server (%1) already has the "
                                           "schema \"%2\"; nothing has been changed.")
                                .arg(db.databaseName(), schema));
    Execute(db, QStringLiteral("CREATE SCHEMA ") + schema);
    Execute(db, QStringLiteral("SET LOCAL search_path TO ") + schema);
    for (const QString& sql : SchemaStatements(store, SqlDialect::Postgres))
        Execute(db, sql);
}

bool ConnectionLost(const QSqlDatabase& db, const QSqlError& error) {
    if (!db.isValid() || DialectOf(db) != SqlDialect::Postgres)
        return false;
    // The server's codes of a connection ended (class 08) or a server shut down or starting
    // (57P01 to 57P03).
    const QString code = error.nativeErrorCode();
    if (code.startsWith(QLatin1String("08")) || code.startsWith(QLatin1String("57P0")))
        return true;
    // Qt's driver closes itself when it finds its connection gone; a connection the program
    // closed on purpose is no longer valid.
    if (!db.isOpen())
        return true;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "PGconn*") != 0)
        return false;
    auto* const connection = *static_cast<PGconn* const*>(handle.constData());
    return connection != nullptr && PQstatus(connection) == CONNECTION_BAD;
}

bool ReconnectIfLost(QSqlDatabase& db, const QSqlError& error) {
    if (!ConnectionLost(db, error) || db.driver()->property(kWithinTransaction).toBool())
        return false;
    // The same connection opens again with its options (the schema searched among them).
    db.close();
    if (!db.open()) {
        const QString where = db.hostName().isEmpty()
                                  ? db.databaseName()
                                  : db.databaseName() + QStringLiteral(" on ") + db.hostName();
        throw NoConnection(where, db.lastError().databaseText().trimmed());
    }
    return true;
}

void MarkWithinTransaction(QSqlDatabase& db, bool within) {
    if (db.isValid() && DialectOf(db) == SqlDialect::Postgres)
        db.driver()->setProperty(kWithinTransaction, within);
}

void CloseConnection(QSqlDatabase& db) {
    if (!db.isValid())
        return;
    const QString name = db.connectionName();
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

} // namespace tarvex
