// tarvex-migrate: moves a clinic's three databases from the SQLite files of a data folder to
// a PostgreSQL server, or back, and checks every table of the copy against its source.

#include "data/Server.h"
#include "dbtools/Migration.h"
#include "shell/AppFolder.h"
#include "shell/CommandLine.h"
#include "shell/Options.h"
#include "shell/PrivateFiles.h"
#include "shell/SettingsStore.h"
#include "support/Fault.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <cstdio>

namespace {

using namespace tarvex;

constexpr const char* kName = "tarvex-migrate";

int Fail(const QString& message, int code = 1) {
    std::fprintf(stderr, "%s: %s\n", kName, qPrintable(message));
    return code;
}

void Say(const QString& line) {
    std::fprintf(stdout, "%s\n", qPrintable(line));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    RestrictNewFilesToOwner(); // the files hold patient data
    QCoreApplication app(argc, argv);
    // The settings are named in full where they are opened; this name is the one in the messages.
    QCoreApplication::setApplicationName(QLatin1String(kName));
    QCoreApplication::setApplicationVersion(ProgramVersion());

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Moves a clinic's databases between the files of a data folder (SQLite) and a\n"
        "PostgreSQL server, and checks the row count and checksum of every table.\n\n"
        "  to-server   copies the folder's three files into an empty server database\n"
        "  to-folder   copies the server's three stores into a folder without them\n\n"
        "The source is only read. The server is the one of the options below, or else the\n"
        "one of section [Database] of the settings. A password is read by libpq from\n"
        "~/.pgpass or the service file, never from the command line."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("direction"),
                                 QStringLiteral("to-server or to-folder"));
    const QCommandLineOption folderOption(
        QStringLiteral("folder"),
        QStringLiteral("The data folder (default: this user's, %1).")
            .arg(QDir::toNativeSeparators(DefaultAppFolder())),
        QStringLiteral("DIR"));
    const QCommandLineOption serviceOption(QStringLiteral("service"),
                                           QStringLiteral("A service of libpq's service file."),
                                           QStringLiteral("NAME"));
    const QCommandLineOption hostOption(
        QStringLiteral("host"), QStringLiteral("The server's host name, or its socket folder."),
        QStringLiteral("HOST"));
    const QCommandLineOption portOption(
        QStringLiteral("port"), QStringLiteral("The server's port."), QStringLiteral("PORT"));
    const QCommandLineOption dbnameOption(QStringLiteral("dbname"),
                                          QStringLiteral("The database on the server."),
                                          QStringLiteral("NAME"));
    const QCommandLineOption userOption(
        QStringLiteral("user"), QStringLiteral("The role to log in as."), QStringLiteral("ROLE"));
    parser.addOptions(
        {folderOption, serviceOption, hostOption, portOption, dbnameOption, userOption});
    if (const auto end =
            ReadConsoleCommandLine(parser, QCoreApplication::arguments(), QLatin1String(kName)))
        return *end;

    const QStringList args = parser.positionalArguments();
    if (args.size() != 1 ||
        (args[0] != QLatin1String("to-server") && args[0] != QLatin1String("to-folder")))
        return Fail(QStringLiteral("say to-server or to-folder (see --help)"), 2);
    const bool toServer = args[0] == QLatin1String("to-server");
    const QString folder =
        parser.isSet(folderOption) ? parser.value(folderOption) : DefaultAppFolder();

    try {
        ServerSettings server;
        const bool given = parser.isSet(serviceOption) || parser.isSet(hostOption) ||
                           parser.isSet(portOption) || parser.isSet(dbnameOption) ||
                           parser.isSet(userOption);
        if (given) {
            server.Service = parser.value(serviceOption);
            server.Host = parser.value(hostOption);
            server.Database = parser.value(dbnameOption);
            server.User = parser.value(userOption);
            if (parser.isSet(portOption)) {
                bool ok = false;
                server.Port = parser.value(portOption).toInt(&ok);
                if (!ok || server.Port < 1 || server.Port > 65535)
                    return Fail(QStringLiteral("--port needs a port number"), 2);
            }
        } else {
            QtSettingsStore store;
            const EngineChoice choice = ReadEngineChoice(store);
            if (choice.Engine != DatabaseEngine::Postgres)
                return Fail(QStringLiteral("name the server with --service or --host, --dbname "
                                           "and --user (the settings choose no server)"),
                            2);
            server = choice.Server;
        }

        const auto progress = [](const QString& table) { Say(QStringLiteral("copying ") + table); };
        const std::vector<TableTally> tallies = toServer
                                                    ? MoveFolderToServer(folder, server, progress)
                                                    : MoveServerToFolder(server, folder, progress);
        qint64 rows = 0;
        for (const TableTally& t : tallies) {
            Say(QStringLiteral("%1.%2: %3 rows, checksum %4 on both sides")
                    .arg(StoreSchemaName(t.Of), t.Table)
                    .arg(t.Rows)
                    .arg(QString::fromLatin1(t.Checksum)));
            rows += t.Rows;
        }
        Say(QStringLiteral("Moved %1 tables, %2 rows, from %3 to %4.")
                .arg(tallies.size())
                .arg(rows)
                .arg(toServer ? QDir::toNativeSeparators(folder) : server.Describe(),
                     toServer ? server.Describe() : QDir::toNativeSeparators(folder)));
    } catch (const Fault& fault) {
        return Fail(fault.Message());
    }
    return 0;
}
