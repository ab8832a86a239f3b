#include "dbtools/ServerDump.h"

#include "data/Schema.h"
#include "data/Sql.h"
#include "support/Fault.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QSqlQuery>
#include <atomic>
#include <sys/stat.h>

namespace tarvex {

namespace {

// The run-time's number for a program that is not there ("File not found").
constexpr int kToolNotFound = 53;
// How much of a tool's error output a message shows.
constexpr qsizetype kShownErrorChars = 1500;

// A value of a libpq connection string, between quotes.
QString ConnectionValue(const QString& value) {
    QString inner = value;
    inner.replace(u'\\', QStringLiteral("\\\\")).replace(u'\'', QStringLiteral("\\'"));
    return u'\'' + inner + u'\'';
}

// The server as one argument of the tools: what is left empty libpq takes from its
// environment and defaults, as the program's own connections do. No password.
QString ConnectionArgument(const ServerSettings& server, const QString& applicationName) {
    QStringList parts;
    if (!server.Service.isEmpty())
        parts << QStringLiteral("service=") + ConnectionValue(server.Service);
    if (!server.Host.isEmpty())
        parts << QStringLiteral("host=") + ConnectionValue(server.Host);
    if (server.Port > 0)
        parts << QStringLiteral("port=") + QString::number(server.Port);
    if (!server.Database.isEmpty())
        parts << QStringLiteral("dbname=") + ConnectionValue(server.Database);
    if (!server.User.isEmpty())
        parts << QStringLiteral("user=") + ConnectionValue(server.User);
    parts << QStringLiteral("connect_timeout=10")
          << QStringLiteral("application_name=") + ConnectionValue(applicationName);
    return QStringLiteral("--dbname=") + parts.join(u' ');
}

// The three schemas, as the tools select them.
QStringList SchemaArguments() {
    QStringList arguments;
    for (const Store store : kAllStores)
        arguments << QStringLiteral("--schema=") + StoreSchemaName(store);
    return arguments;
}

QString ToolName(const QString& program) {
    return QFileInfo(program).fileName();
}

QString Said(const QString& errors) {
    const QString text = errors.trimmed();
    if (text.isEmpty())
        return QStringLiteral("nothing");
    return text.size() > kShownErrorChars ? text.left(kShownErrorChars) + QStringLiteral("...")
                                          : text;
}

// A tool's wait for a table, for a message: "10 seconds".
QString WaitText(int ms) {
    return QStringLiteral("%1 %2")
        .arg(ms / 1000.0)
        .arg(ms == 1000 ? QStringLiteral("second") : QStringLiteral("seconds"));
}

QString BusyText(int ms, const QString& job) {
    return QStringLiteral("The server is busy: another workstation held a table of the "
                          "databases for more than %1, so the %2 gave up.")
        .arg(WaitText(ms), job);
}

struct ToolRun {
    bool Stopped = false;
    int ExitCode = -1;
    QByteArray Output;
    QString Errors;
};

// Runs a tool to its end. Its files are made private to the user, it never waits for a
// password to be typed, and tick runs while it works (false stops it). A tool that cannot
// be started or that crashes is a Fault.
ToolRun RunTool(const QString& program, const QStringList& arguments,
                const std::function<bool()>& tick = {}) {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { ::umask(S_IRWXG | S_IRWXO); });
    process.start();
    if (!process.waitForStarted(-1))
        throw Fault(QStringLiteral("The program %1 could not be started: %2.\r\r%1 is one of "
                                   "PostgreSQL's client programs; install them on this "
                                   "workstation (Debian package postgresql-client).")
                        .arg(ToolName(program), process.errorString()),
                    kToolNotFound);
    ToolRun run;
    while (process.state() != QProcess::NotRunning) {
        if (process.waitForFinished(100))
            break;
        if (tick && !tick()) {
            process.kill();
            process.waitForFinished(-1);
            run.Stopped = true;
            return run;
        }
    }
    run.Output = process.readAllStandardOutput();
    run.Errors = QString::fromLocal8Bit(process.readAllStandardError());
    if (process.exitStatus() != QProcess::NormalExit)
        throw Fault(QStringLiteral("The program %1 stopped unexpectedly.\r\rIt said: %2")
                        .arg(ToolName(program), Said(run.Errors)),
                    DatabaseFault::kEngineError);
    run.ExitCode = process.exitCode();
    return run;
}

// "program" -> the names of its tables, as a dump's list gives them.
using DumpTables = QHash<QString, QSet<QString>>;

DumpTables ListedTables(const QString& list) {
    static const QRegularExpression entry(
        QStringLiteral("^\\d+; \\d+ \\d+ (SCHEMA - (\\S+)|TABLE (?!DATA )(\\S+) (\\S+)) "));
    DumpTables tables;
    for (const QString& line : list.split(u'\n')) {
        const QRegularExpressionMatch match = entry.match(line);
        if (!match.hasMatch())
            continue;
        if (!match.captured(2).isEmpty())
            tables[match.captured(2)];
        else
            tables[match.captured(3)].insert(match.captured(4));
    }
    return tables;
}

// The rows of the Version tables in a dump's data: schema -> version.
QHash<QString, QString> DumpedVersions(const QString& data) {
    static const QRegularExpression copy(QStringLiteral("^COPY (\\w+)\\.version "));
    QHash<QString, QString> versions;
    QString schema;
    for (const QString& line : data.split(u'\n')) {
        if (schema.isEmpty()) {
            const QRegularExpressionMatch match = copy.match(line);
            if (match.hasMatch())
                schema = match.captured(1);
        } else if (line == QLatin1String("\\.")) {
            schema.clear();
        } else if (!versions.contains(schema)) {
            versions[schema] = line.trimmed();
        }
    }
    return versions;
}

// A name for the restore's connection that the watch below finds it by.
QString RestoreApplicationName() {
    static std::atomic<int> serial{0};
    return QStringLiteral("tarvex-restore-%1-%2")
        .arg(QCoreApplication::applicationPid())
        .arg(++serial);
}

// Watches pg_restore's connection on a connection of its own. pg_restore sets its
// session's lock_timeout to 0 (wait forever) whatever the environment asks, so the wait is
// measured here: when its statement has waited for a lock longer than the limit, the
// statement is cancelled, and pg_restore ends with an error and rolls back.
class LockWatch {
public:
    LockWatch(const ServerSettings& server, QString applicationName, int limitMs)
        : db_(OpenServerDatabase(server, applicationName + QStringLiteral("-watch"))),
          name_(std::move(applicationName)), limitMs_(limitMs) {}

    // True while pg_restore may go on waiting.
    bool Tick() {
        QSqlQuery waiting = ExecPrepared(db_.Db(),
                                         QStringLiteral("SELECT pid FROM pg_stat_activity WHERE "
                                                        "application_name = ? AND "
                                                        "wait_event_type = 'Lock'"),
                                         {name_});
        if (!waiting.next()) {
            since_.invalidate();
            return true;
        }
        if (!since_.isValid())
            since_.start();
        if (!cancelled_ && since_.elapsed() > limitMs_) {
            ExecPrepared(db_.Db(), QStringLiteral("SELECT pg_cancel_backend(?)"),
                         {waiting.value(0)});
            cancelled_ = true;
        }
        return true;
    }
    bool Cancelled() const { return cancelled_; }

private:
    OwnedConnection db_;
    QString name_;
    int limitMs_;
    QElapsedTimer since_;
    bool cancelled_ = false;
};

} // namespace

DumpFolder::DumpFolder(const ServerTools& tools)
    : dir_(QDir(tools.WorkFolder.isEmpty() ? QDir::tempPath() : tools.WorkFolder)
               .filePath(QStringLiteral("tarvex-dump-XXXXXX"))) {
    if (!dir_.isValid())
        throw Fault(QStringLiteral("No private folder for the dump could be made: %1")
                        .arg(dir_.errorString()),
                    75);
    // mkdtemp makes it for the owner alone; said once more, as for every file of patients.
    QFile::setPermissions(dir_.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

QString DumpFolder::DumpPath() const {
    return dir_.filePath(QLatin1String(kServerDumpEntry));
}

bool DumpServerStores(const ServerSettings& server, const QString& path, const ServerTools& tools,
                      const DumpTick& tick) {
    QFile::remove(path);
    QStringList arguments = {QStringLiteral("--format=custom")};
    arguments << SchemaArguments() << QStringLiteral("--strict-names")
              << QStringLiteral("--no-owner") << QStringLiteral("--no-privileges")
              << QStringLiteral("--no-password")
              << QStringLiteral("--lock-wait-timeout=%1").arg(tools.LockWaitMs)
              << QStringLiteral("--file=") + path
              << ConnectionArgument(server, QStringLiteral("tarvex-backup"));
    const ToolRun run = RunTool(tools.PgDump, arguments, tick);
    if (run.Stopped) {
        QFile::remove(path);
        return false;
    }
    if (run.ExitCode != 0) {
        QFile::remove(path);
        // pg_dump first locks every table for reading; that waits only for a workstation
        // that is replacing the tables (a restore), and gives up after the limit.
        if (run.Errors.contains(QLatin1String("LOCK TABLE")))
            throw DatabaseFault(BusyText(tools.LockWaitMs, QStringLiteral("backup")) +
                                QStringLiteral(" Back up again when it is done.\r\r%1 said: %2")
                                    .arg(ToolName(tools.PgDump), Said(run.Errors)));
        throw DatabaseFault(QStringLiteral("%1 could not read the databases from the server "
                                           "(%2).\r\rIt said: %3")
                                .arg(ToolName(tools.PgDump), server.Describe(), Said(run.Errors)));
    }
    return true;
}

void CheckServerDump(const QString& path, const ServerTools& tools) {
    const QString tool = ToolName(tools.PgRestore);
    const ToolRun list = RunTool(tools.PgRestore, {QStringLiteral("--list"), path});
    if (list.ExitCode != 0)
        throw DatabaseFault(
            QStringLiteral("The backup holds no dump that %1 can read.\r\rIt said: %2")
                .arg(tool, Said(list.Errors)));
    const DumpTables tables = ListedTables(QString::fromUtf8(list.Output));
    for (const Store store : kAllStores) {
        const QString schema = StoreSchemaName(store);
        if (!tables.contains(schema))
            throw DatabaseFault(QStringLiteral("The backup's dump does not hold the schema \"%1\" "
                                               "of the clinic's databases.")
                                    .arg(schema));
        for (const TableShape& table : StoreTables(store))
            if (!tables[schema].contains(QString::fromLatin1(table.Name).toLower()))
                throw DatabaseFault(QStringLiteral("The backup's dump has no table %1.%2.")
                                        .arg(schema, QLatin1String(table.Name)));
    }

    QStringList arguments = {QStringLiteral("--data-only"), QStringLiteral("--table=version")};
    arguments << SchemaArguments() << QStringLiteral("--file=-") << path;
    const ToolRun data = RunTool(tools.PgRestore, arguments);
    if (data.ExitCode != 0)
        throw DatabaseFault(
            QStringLiteral("%1 could not read the versions of the backup's dump.\r\rIt said: %2")
                .arg(tool, Said(data.Errors)));
    const QHash<QString, QString> versions = DumpedVersions(QString::fromUtf8(data.Output));
    const float newest = QString::fromLatin1(kCurrentDatabaseVersion).toFloat();
    for (const Store store : {Store::Program, Store::Library}) {
        const QString schema = StoreSchemaName(store);
        const QString version = versions.value(schema);
        if (version.toFloat() > newest)
            throw DatabaseFault(QStringLiteral("The backup was made by a newer release of TVX "
                                               "Regimenter: its %1 store is at version %2, and "
                                               "this program knows version %3 at most.")
                                    .arg(schema, version, QLatin1String(kCurrentDatabaseVersion)));
    }
}

void RestoreServerDump(const ServerSettings& server, const QString& path,
                       const ServerTools& tools) {
    const QString name = RestoreApplicationName();
    LockWatch watch(server, name, tools.LockWaitMs);
    QStringList arguments = {QStringLiteral("--clean"),
                             QStringLiteral("--if-exists"),
                             QStringLiteral("--single-transaction"),
                             QStringLiteral("--no-owner"),
                             QStringLiteral("--no-privileges"),
                             QStringLiteral("--exit-on-error"),
                             QStringLiteral("--no-password")};
    arguments << SchemaArguments() << ConnectionArgument(server, name) << path;
    const ToolRun run = RunTool(tools.PgRestore, arguments, [&watch] { return watch.Tick(); });
    if (run.ExitCode == 0)
        return;
    if (watch.Cancelled())
        throw DatabaseFault(BusyText(tools.LockWaitMs, QStringLiteral("restore")) +
                            QStringLiteral("\r\rClose TVX Regimenter on the other workstations "
                                           "and restore again."));
    throw DatabaseFault(QStringLiteral("%1 could not put the backup on the server (%2).\r\rIt "
                                       "said: %3")
                            .arg(ToolName(tools.PgRestore), server.Describe(), Said(run.Errors)));
}

} // namespace tarvex
