#include "support/TestFolder.h"

#include "data/Databases.h"
#include "data/Schema.h"
#include "data/Server.h"
#include "data/Sql.h"
#include "dbtools/Migration.h"
#include "shell/AppFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlQuery>
#include <atomic>
#include <stdexcept>

namespace tarvex::testing {

namespace {

// The database on the test server that holds the delivered databases; each test's database
// is made as a copy of it.
constexpr const char* kDeliveredOnServer = "tarvex_delivered";

ServerSettings TestServer(const QString& database) {
    ServerSettings server;
    server.Host = TestServerSocket();
    server.Database = database;
    server.User = QStringLiteral("tarvex");
    return server;
}

// Runs statements on the server's maintenance database, where databases are made and
// dropped.
void OnMaintenanceDatabase(const std::function<void(QSqlDatabase&)>& work) {
    static std::atomic<int> serial{0};
    const QString name = QStringLiteral("test-maintenance-%1").arg(++serial);
    OwnedConnection db(OpenServerDatabase(TestServer(QStringLiteral("postgres")), name));
    work(db.Db());
}

bool DatabaseExists(QSqlDatabase& db, const QString& name) {
    return ExecPrepared(db, QStringLiteral("SELECT 1 FROM pg_database WHERE datname = ?"), {name})
        .next();
}

// Makes the copy of the delivered databases on the server once for all tests of the
// cluster; the tests of several processes wait for one another here.
void EnsureDeliveredOnServer(const QString& folder) {
    OnMaintenanceDatabase([&](QSqlDatabase& db) {
        Execute(db, QStringLiteral("SELECT pg_advisory_lock(7401)"));
        try {
            const QString name = QLatin1String(kDeliveredOnServer);
            if (!DatabaseExists(db, name)) {
                Execute(db, QStringLiteral("CREATE DATABASE %1_making").arg(name));
                MoveFolderToServer(folder, TestServer(name + QStringLiteral("_making")), {});
                Execute(db, QStringLiteral("ALTER DATABASE %1_making RENAME TO %1").arg(name));
            }
        } catch (...) {
            Execute(db, QStringLiteral("SELECT pg_advisory_unlock(7401)"));
            throw;
        }
        Execute(db, QStringLiteral("SELECT pg_advisory_unlock(7401)"));
    });
}

} // namespace

QString DeliveredFolder() {
    return QStringLiteral(TARVEX_TEST_DELIVERED);
}

QString TestServerSocket() {
    return qEnvironmentVariable("TARVEX_TEST_SERVER");
}

TestFolder::TestFolder() {
    if (!dir_.isValid())
        throw std::runtime_error("no temporary folder");
    state.AppFolder = dir_.path();
    state.DeliveredFolder = DeliveredFolder();
    const QString problem = PrepareAppFolder(state.AppFolder, TemplatesFolder(state));
    if (!problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
    if (!OnTestServer())
        return;
    EnsureDeliveredOnServer(dir_.path());
    static std::atomic<int> serial{0};
    serverDatabase_ =
        QStringLiteral("t_%1_%2").arg(QCoreApplication::applicationPid()).arg(++serial);
    OnMaintenanceDatabase([&](QSqlDatabase& db) {
        Execute(db, QStringLiteral("CREATE DATABASE %1 TEMPLATE %2")
                        .arg(serverDatabase_, QLatin1String(kDeliveredOnServer)));
    });
    state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
    state.Dbs.Choice.Server = TestServer(serverDatabase_);
}

TestFolder::~TestFolder() {
    CloseDatabases(state);
    if (serverDatabase_.isEmpty())
        return;
    try {
        OnMaintenanceDatabase([&](QSqlDatabase& db) {
            Execute(db,
                    QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(serverDatabase_));
        });
    } catch (...) {
        // The cluster goes with the test run; a database left behind does no harm.
    }
}

void TestFolder::PointAt(AppState& other) const {
    other.AppFolder = state.AppFolder;
    other.DeliveredFolder = state.DeliveredFolder;
    other.Dbs.Choice = state.Dbs.Choice;
}

void RefuseWhen(QSqlDatabase& db, const QString& event, const QString& table,
                const QString& condition, const QString& message) {
    if (DialectOf(db) == SqlDialect::Postgres) {
        Execute(db, QStringLiteral("CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS "
                                   "$$ BEGIN RAISE EXCEPTION '%1'; END $$")
                        .arg(message));
        Execute(db, QStringLiteral("CREATE TRIGGER refuse BEFORE %1 ON %2 FOR EACH ROW %3 "
                                   "EXECUTE FUNCTION refuse()")
                        .arg(event, table,
                             condition.isEmpty() ? QString()
                                                 : QStringLiteral("WHEN (%1)").arg(condition)));
        return;
    }
    Execute(db, QStringLiteral("CREATE TRIGGER refuse BEFORE %1 ON %2 %3 BEGIN SELECT "
                               "RAISE(ABORT, '%4'); END")
                    .arg(event, table,
                         condition.isEmpty() ? QString() : QStringLiteral("WHEN ") + condition,
                         message));
}

void TestFolder::WithDatabase(const QString& fileName,
                              const std::function<void(QSqlDatabase&)>& work) const {
    const QString name = QStringLiteral("check-") + fileName;
    if (!serverDatabase_.isEmpty()) {
        Store store = Store::Program;
        for (const Store s : kAllStores)
            if (StoreFileName(s).compare(fileName, Qt::CaseInsensitive) == 0)
                store = s;
        OwnedConnection db(OpenServerStore(TestServer(serverDatabase_), store, name));
        work(db.Db());
        return;
    }
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(dir_.filePath(fileName));
        if (!db.open())
            throw std::runtime_error("cannot open " + fileName.toStdString());
        ApplyConnectionSettings(db);
        work(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace tarvex::testing
