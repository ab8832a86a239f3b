// The clinic's databases on a server: the stores made, opened and looked at before use, and
// the servers that must be refused with a clear message and left as they were.

#include "data/Databases.h"
#include "pg/ServerHarness.h"
#include "shell/AppState.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

std::string FaultText(const std::function<void()>& work) {
    try {
        work();
    } catch (const Fault& fault) {
        return fault.Message().toStdString();
    }
    return "no fault";
}

// Opens the three stores of a server through the session, as the program does.
void OpenOn(const ServerSettings& server, AppState& state) {
    state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
    state.Dbs.Choice.Server = server;
    OpenDatabases(state);
}

} // namespace

TEST(ServerStores, MadeInAnEmptyDatabaseTheyOpenWithTheirVersions) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    EXPECT_EQ(database.Count("SELECT COUNT(*) FROM pg_namespace WHERE nspname IN "
                             "('program', 'library', 'picklist')"),
              3);
    TestFolder folder;
    OpenOn(database.Server(), folder.state);
    EXPECT_TRUE(folder.state.Dbs.IsOpen());
    QSqlQuery version = OpenQuery(folder.state.Dbs.LibraryDb, "SELECT Version FROM Version");
    ASSERT_TRUE(version.next());
    EXPECT_EQ(version.value(0).toString(), "3.8");
    QSqlQuery patients = OpenQuery(folder.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Patient");
    ASSERT_TRUE(patients.next());
    EXPECT_EQ(patients.value(0).toInt(), 0);
    EXPECT_EQ(DialectOf(folder.state.Dbs.PicklistDb), SqlDialect::Postgres);
}

TEST(ServerStores, AreNeverMadeTwice) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    EXPECT_NE(FaultText([&] {
                  CreateServerStores(database.Server());
              }).find("already has the schema \"program\""),
              std::string::npos);
}

TEST(ServerStores, TextComparesWithoutRegardToCaseAndPatternsMatchAsTheClassicLikeDid) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    TestFolder folder;
    OpenOn(database.Server(), folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    InsertRow(db, "Patient",
              {{"LastName", QString::fromUtf8("Ørsted-Élan")}, {"FirstName", "o'Neil"}});
    InsertRow(db, "Patient", {{"LastName", "100% sure_"}, {"FirstName", "x"}});
    const auto count = [&](const QString& sql) {
        QSqlQuery q = OpenQuery(db, sql);
        return q.next() ? q.value(0).toInt() : -1;
    };
    EXPECT_EQ(
        count(QString::fromUtf8("SELECT COUNT(*) FROM Patient WHERE LastName = 'øRSTED-élan'")), 1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM Patient WHERE FirstName = 'O''NEIL'"), 1);
    EXPECT_EQ(count(QString::fromUtf8("SELECT COUNT(*) FROM Patient WHERE LastName LIKE 'øR*'")),
              1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM Patient WHERE LastName LIKE '100% S*'"), 1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM Patient WHERE LastName LIKE '100_ *'"), 0);
    EXPECT_EQ(count("SELECT COUNT(*) FROM Patient WHERE LastName LIKE '???% *'"), 1);
}

TEST(ServerStores, KeysComeFromTheServer) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    TestFolder folder;
    OpenOn(database.Server(), folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    const qint64 first = InsertRow(db, "Patient", {{"LastName", "A"}});
    const qint64 second = InsertRow(db, "Patient", {});
    EXPECT_GT(first, 0);
    EXPECT_EQ(second, first + 1);
    // A key taken and given back is not given again.
    Execute(db, QStringLiteral("DELETE * FROM Patient WHERE PatientID = %1").arg(second));
    EXPECT_EQ(InsertRow(db, "Patient", {}), second + 1);
}

TEST(ServerStores, ANewerVersionIsRefusedAndNothingIsWritten) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    database.Run(
        [](QSqlDatabase& db) { Execute(db, "UPDATE library.version SET version = '4.0'"); });
    TestFolder folder;
    const std::string text = FaultText([&] { OpenOn(database.Server(), folder.state); });
    EXPECT_NE(text.find("newer release of TVX Regimenter"), std::string::npos) << text;
    EXPECT_NE(text.find("version 4.0"), std::string::npos) << text;
    EXPECT_NE(text.find("Nothing has been changed"), std::string::npos) << text;
    EXPECT_FALSE(folder.state.Dbs.IsOpen());
    EXPECT_EQ(database.Count("SELECT COUNT(*) FROM library.version WHERE version = '4.0'"), 1);
}

TEST(ServerStores, AnOlderOrMissingVersionIsRefused) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    database.Run([](QSqlDatabase& db) { Execute(db, "DELETE FROM program.version"); });
    TestFolder folder;
    const std::string text = FaultText([&] { OpenOn(database.Server(), folder.state); });
    EXPECT_NE(text.find("has no version this program knows"), std::string::npos) << text;
    EXPECT_FALSE(folder.state.Dbs.IsOpen());
}

TEST(ServerStores, ADatabaseOfAnotherProgramIsRefusedAndLeftAsItWas) {
    EmptyServerDatabase database;
    database.Run([](QSqlDatabase& db) {
        Execute(db, "CREATE TABLE patient (id serial primary key, name text)");
        Execute(db, "INSERT INTO patient (name) VALUES ('someone else''s')");
    });
    TestFolder folder;
    const std::string text = FaultText([&] { OpenOn(database.Server(), folder.state); });
    EXPECT_NE(text.find("is not one of TVX Regimenter"), std::string::npos) << text;
    EXPECT_NE(text.find("program.Patient"), std::string::npos) << text;
    EXPECT_EQ(database.Count("SELECT COUNT(*) FROM pg_namespace WHERE nspname = 'program'"), 0);
    EXPECT_EQ(database.Count("SELECT COUNT(*) FROM public.patient"), 1);
}

TEST(ServerStores, AWrongHostIsReportedWithWhereTheProgramLooked) {
    TestFolder folder;
    ServerSettings server = ClusterServer("postgres");
    server.Host = folder.Path() + "/no-server-here";
    const std::string text = FaultText([&] { OpenOn(server, folder.state); });
    EXPECT_NE(text.find("Could not connect to the clinic's database server"), std::string::npos)
        << text;
    EXPECT_NE(text.find("no-server-here"), std::string::npos) << text;
    EXPECT_FALSE(folder.state.Dbs.IsOpen());
}

TEST(ServerStores, ThePasswordComesFromLibpqsPasswordFileAndAWrongOneIsReported) {
    EmptyServerDatabase database;
    CreateServerStores(database.Server());
    database.Run([&](QSqlDatabase& db) {
        Execute(db, "DO $$ BEGIN IF NOT EXISTS (SELECT 1 FROM pg_roles WHERE rolname = 'clinic') "
                    "THEN CREATE ROLE clinic LOGIN PASSWORD 'right horse'; END IF; END $$");
        Execute(db, "GRANT ALL ON SCHEMA program, library, picklist TO clinic");
        Execute(db, "GRANT ALL ON ALL TABLES IN SCHEMA program, library, picklist TO clinic");
    });
    QTemporaryDir home;
    const QString passFile = home.filePath("pgpass");
    const auto writePass = [&](const char* password) {
        QFile file(passFile);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QStringLiteral("*:*:*:clinic:%1\n").arg(QLatin1String(password)).toUtf8());
        file.close();
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    };
    qputenv("PGPASSFILE", passFile.toUtf8());
    ServerSettings server = database.Server();
    server.User = "clinic";

    writePass("wrong");
    TestFolder refused;
    const std::string text = FaultText([&] { OpenOn(server, refused.state); });
    EXPECT_NE(text.find("password authentication failed"), std::string::npos) << text;
    EXPECT_NE(text.find("~/.pgpass"), std::string::npos) << text;

    writePass("right horse");
    TestFolder admitted;
    EXPECT_EQ(FaultText([&] { OpenOn(server, admitted.state); }), "no fault");
    EXPECT_TRUE(admitted.state.Dbs.IsOpen());
    admitted.state.Dbs.CloseAll();
    qunsetenv("PGPASSFILE");
}
