#pragma once

#include "data/Schema.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

namespace tarvex {

// Where a clinic's databases live.
enum class DatabaseEngine {
    Sqlite,   // the three files in the user's data folder (one workstation)
    Postgres, // three schemas of one database on a server (several workstations)
};

// How a workstation reaches the server. Either a service of libpq's service file, or the
// host, port, database and user; what is left empty libpq takes from its environment and
// defaults. The password is never here: libpq reads it from its password file.
struct ServerSettings {
    QString Service;
    QString Host;
    int Port = 0;
    QString Database;
    QString User;

    // "service clinic" or "tarvex on db.clinic.lan:5432 as frontdesk", for messages.
    QString Describe() const;
};

struct EngineChoice {
    DatabaseEngine Engine = DatabaseEngine::Sqlite;
    ServerSettings Server;
};

// Opens a connection to the server for one store, with its schema as the only one
// searched. A server that cannot be reached or refuses the login is a DatabaseFault that
// says where it looked and what the server answered.
QSqlDatabase OpenServerStore(const ServerSettings& server, Store store,
                             const QString& connectionName);

// Opens a connection to the server's database without a store (for making the schemas).
QSqlDatabase OpenServerDatabase(const ServerSettings& server, const QString& connectionName);

// Looks at the server before anything writes to it: the three schemas with the tables of
// this program, and versions that this program knows. Under an advisory lock of the
// database, so that workstations started together look (and, in a later release, upgrade)
// one at a time. Nothing is created or changed; a server that fails is a DatabaseFault.
void CheckServerStores(const ServerSettings& server);

// Makes the three schemas with their tables in an empty database of the server, with the
// present versions. A database that already holds one of them is refused.
void CreateServerStores(const ServerSettings& server);

// Within a transaction of a connection to the server's database: takes the lock of the
// database's stores (held to the end of the transaction); makes one store's schema with its
// tables (refused when the schema is there already) and searches it for the rest of the
// transaction.
void LockServerStores(QSqlDatabase& db);
void CreateStoreSchema(QSqlDatabase& db, Store store);

// A connection whose server went away (restarted, or the network between dropped) is
// opened again before the next statement runs on it, so that a workstation works on once
// the server is back, without a restart. Not within a transaction of the program: that
// transaction went with the connection and must fail whole. A server still away is a
// DatabaseFault, as at the first connection. Returns whether it opened the connection.
// An error that says the connection went away counts as lost, too: libpq may report the
// server's farewell before it notices the connection closed.
bool ReconnectIfLost(QSqlDatabase& db, const QSqlError& error = {});
// Whether the connection went away (never for a database file).
bool ConnectionLost(const QSqlDatabase& db, const QSqlError& error = {});
// Marks the connection as within a transaction of the program, or out of it again.
void MarkWithinTransaction(QSqlDatabase& db, bool within);

// Closes and forgets a connection.
void CloseConnection(QSqlDatabase& db);

// Owns a connection for a scope: closes and forgets it when it goes, whatever happens.
class OwnedConnection {
public:
    explicit OwnedConnection(const QSqlDatabase& db) : db_(db) {}
    ~OwnedConnection() { CloseConnection(db_); }
    OwnedConnection(const OwnedConnection&) = delete;
    OwnedConnection& operator=(const OwnedConnection&) = delete;

    QSqlDatabase& Db() { return db_; }

private:
    QSqlDatabase db_;
};

} // namespace tarvex
