#pragma once

#include "data/Server.h"
#include "data/Sql.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <atomic>
#include <functional>

namespace tarvex::testing {

// The private cluster of the tests, reached on its own socket as the trusted role.
inline ServerSettings ClusterServer(const QString& database) {
    ServerSettings server;
    server.Host = QStringLiteral(TARVEX_PG_SOCKET_DIR);
    server.Port = 5432;
    server.Database = database;
    server.User = QStringLiteral("tarvex");
    return server;
}

// Runs work on a connection to one of the cluster's databases and closes it.
inline void OnClusterDatabase(const QString& database,
                              const std::function<void(QSqlDatabase&)>& work) {
    static std::atomic<int> serial{0};
    OwnedConnection db(
        OpenServerDatabase(ClusterServer(database), QStringLiteral("cluster-%1").arg(++serial)));
    work(db.Db());
}

// An empty database of the cluster for one test, dropped when it goes.
class EmptyServerDatabase {
public:
    EmptyServerDatabase() {
        static std::atomic<int> serial{0};
        name_ = QStringLiteral("e_%1_%2").arg(QCoreApplication::applicationPid()).arg(++serial);
        OnClusterDatabase(QStringLiteral("postgres"), [&](QSqlDatabase& db) {
            Execute(db, QStringLiteral("DROP DATABASE IF EXISTS ") + name_);
            Execute(db, QStringLiteral("CREATE DATABASE ") + name_);
        });
    }
    ~EmptyServerDatabase() {
        try {
            OnClusterDatabase(QStringLiteral("postgres"), [&](QSqlDatabase& db) {
                Execute(db, QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(name_));
            });
        } catch (...) {
            // The cluster goes with the test run.
        }
    }
    EmptyServerDatabase(const EmptyServerDatabase&) = delete;
    EmptyServerDatabase& operator=(const EmptyServerDatabase&) = delete;

    const QString& Name() const { return name_; }
    ServerSettings Server() const { return ClusterServer(name_); }
    void Run(const std::function<void(QSqlDatabase&)>& work) const {
        OnClusterDatabase(name_, work);
    }
    int Count(const QString& sql) const {
        int n = -1;
        Run([&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, sql);
            n = q.next() ? q.value(0).toInt() : -1;
        });
        return n;
    }

private:
    QString name_;
};

} // namespace tarvex::testing
