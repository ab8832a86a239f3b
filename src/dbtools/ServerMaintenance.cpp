#include "dbtools/ServerMaintenance.h"

#include "data/Dialect.h"
#include "data/Schema.h"
#include "data/Sql.h"
#include "dbtools/MaintenanceHost.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QSqlQuery>
#include <utility>

namespace tarvex {

namespace {

// A table of a store as the server names it from any search path: "program"."patient".
QString ServerTableName(Store store, const TableShape& table) {
    return QuoteName(SqlDialect::Postgres, StoreSchemaName(store)) + u'.' +
           QuoteName(SqlDialect::Postgres, QLatin1String(table.Name));
}

// "program.Patient", for the status bar.
QString ShownTableName(Store store, const TableShape& table) {
    return StoreSchemaName(store) + u'.' + QLatin1String(table.Name);
}

// A table that this role may not vacuum is passed over by the server with a mere warning;
// so the owner is looked at first, and a compress that would do nothing says why.
void CheckOwnership(QSqlDatabase& db, const ServerSettings& server) {
    QStringList schemas;
    for (const Store store : kAllStores)
        schemas << SqlText(StoreSchemaName(store));
    QSqlQuery foreign = OpenQuery(
        db, QStringLiteral("SELECT n.nspname || '.' || c.relname FROM pg_class c JOIN "
                           "pg_namespace n ON n.oid = c.relnamespace WHERE c.relkind = 'r' AND "
                           "n.nspname IN (%1) AND NOT pg_has_role(c.relowner, 'USAGE') AND NOT "
                           "pg_has_role((SELECT datdba FROM pg_database WHERE datname = "
                           "current_database()), 'USAGE') ORDER BY 1")
                .arg(schemas.join(QStringLiteral(", "))));
    QStringList tables;
    while (foreign.next())
        tables << foreign.value(0).toString();
    if (!tables.isEmpty())
        throw DatabaseFault(
            QStringLiteral("Only the owner of the clinic's database can compress it, and the "
                           "user of this workstation (%1) does not own %2.\r\rCompress from a "
                           "workstation that logs in as the owner (the user that moved the "
                           "databases to the server).")
                .arg(server.Describe(), tables.join(QStringLiteral(", "))));
}

} // namespace

ServerMaintenanceLogic::ServerMaintenanceLogic(ServerSettings server, IMaintenanceHost& host,
                                               Prompter& prompts)
    : server_(std::move(server)), host_(host), prompts_(prompts) {}

bool ServerMaintenanceLogic::Trapped(const std::function<void()>& work) {
    try {
        work();
        host_.SetStatusBar(Shell::kReady);
        return true;
    } catch (const Fault& fault) {
        host_.SetStatusBar(Shell::kReady);
        prompts_.MsgBox(QStringLiteral("Repair unsuccessful!\rError number: %1\r%2")
                            .arg(fault.Number())
                            .arg(fault.Message()),
                        msg::OkOnly, QStringLiteral("TVX Regimenter"));
        return false;
    }
}

void ServerMaintenanceLogic::CompressDatabase() {
    if (prompts_.MsgBox(QStringLiteral("Compress the TVX database?"), msg::YesNo,
                        QStringLiteral("Compress Database")) == Answer::No)
        return;
    const bool done = Trapped([this] {
        const HostHourglass busy(host_);
        OwnedConnection connection(OpenServerDatabase(server_, QStringLiteral("server-compress")));
        QSqlDatabase& db = connection.Db();
        CheckOwnership(db, server_);
        // VACUUM cannot run inside a transaction, so each table is a statement of its own on
        // a connection without one. Without FULL it takes no exclusive lock: the other
        // workstations go on reading and writing every table while it runs, and this one
        // keeps its databases open.
        for (const Store store : kAllStores)
            for (const TableShape& table : StoreTables(store)) {
                host_.SetStatusBar(
                    QStringLiteral(" Compressing %1...").arg(ShownTableName(store, table)));
                Execute(db, QStringLiteral("VACUUM (ANALYZE) ") + ServerTableName(store, table));
            }
    });
    if (!done)
        return;
    prompts_.MsgBox(QStringLiteral("Compression completed!"), msg::OkOnly,
                    QStringLiteral("Compress Database"));
}

void ServerMaintenanceLogic::RepairDatabase() {
    if (prompts_.MsgBox(QStringLiteral("Repair the TVX database?"), msg::YesNo,
                        QStringLiteral("Repair Database")) == Answer::No)
        return;
    int tables = 0;
    qint64 rows = 0;
    const bool done = Trapped([&] {
        const HostHourglass busy(host_);
        CheckServerStores(server_);
        OwnedConnection connection(OpenServerDatabase(server_, QStringLiteral("server-read")));
        QSqlDatabase& db = connection.Db();
        // One snapshot for the whole read, and every table read from its own pages rather
        // than from an index: count(*) then reads every page, so a damaged one is an error.
        Transaction transaction(db);
        Execute(db, QStringLiteral("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ, READ ONLY"));
        for (const char* plan : {"enable_indexscan", "enable_indexonlyscan", "enable_bitmapscan"})
            Execute(db, QStringLiteral("SET LOCAL %1 = off").arg(QLatin1String(plan)));
        for (const Store store : kAllStores)
            for (const TableShape& table : StoreTables(store)) {
                host_.SetStatusBar(
                    QStringLiteral(" Checking %1...").arg(ShownTableName(store, table)));
                QSqlQuery count = OpenQuery(db, QStringLiteral("SELECT count(*) FROM ") +
                                                    ServerTableName(store, table));
                if (count.next())
                    rows += count.value(0).toLongLong();
                ++tables;
            }
        transaction.Commit();
    });
    if (!done)
        return;
    prompts_.MsgBox(
        QStringLiteral("Check completed!\r\rThe databases on the server (%1) were read in full: "
                       "%2 tables with %3 rows, and all of them are sound.\r\rA PostgreSQL server "
                       "repairs itself after a crash from its write-ahead log, so there is "
                       "nothing to rebuild on a workstation.")
            .arg(server_.Describe())
            .arg(tables)
            .arg(rows),
        msg::OkOnly, QStringLiteral("Repair Database"));
}

} // namespace tarvex
