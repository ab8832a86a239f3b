// A workstation whose server is stopped and started again, on a cluster of this test's own
// (the shared one serves the other tests meanwhile).

#include "data/Databases.h"
#include "data/Server.h"
#include "data/Sql.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/ShellHarness.h"
#include "support/Fault.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// A cluster of its own in /tmp, made and removed with the test.
class OwnCluster {
public:
    OwnCluster()
        : dir_(QStringLiteral("/tmp/tarvex-pgr-%1").arg(QCoreApplication::applicationPid())) {
        Run("start");
    }
    ~OwnCluster() { QProcess::execute("bash", {Script(), "stop", dir_}); }
    OwnCluster(const OwnCluster&) = delete;
    OwnCluster& operator=(const OwnCluster&) = delete;

    void Run(const QString& command) {
        ASSERT_EQ(QProcess::execute("bash", {Script(), command, dir_}), 0) << command.toStdString();
    }
    ServerSettings Server(const QString& database) const {
        ServerSettings server;
        server.Host = dir_;
        server.Port = 5432;
        server.Database = database;
        server.User = QStringLiteral("tarvex");
        return server;
    }

private:
    static QString Script() { return QStringLiteral(TARVEX_PG_CLUSTER_SCRIPT); }
    QString dir_;
};

int Count(QSqlDatabase& db, const QString& sql) {
    QSqlQuery q = OpenQuery(db, sql);
    return q.next() ? q.value(0).toInt() : -1;
}

} // namespace

TEST(ServerRestart, ASaveWhileTheServerIsDownIsReportedAndTheNextSaveAfterItsReturnLands) {
    OwnCluster cluster;
    {
        OwnedConnection admin(OpenServerDatabase(cluster.Server("postgres"), "restart-admin"));
        Execute(admin.Db(), "CREATE DATABASE clinic");
    }
    CreateServerStores(cluster.Server("clinic"));

    AppState state;
    state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
    state.Dbs.Choice.Server = cluster.Server("clinic");
    OpenDatabases(state);
    tarvex::testing::ShellHarness shell(state);
    fakes::ScriptedPrompter prompter;
    ProgramStore store(state, shell.shell, prompter);
    ExerciseProgram& p = state.Program;
    p.PatientID = static_cast<int32_t>(
        InsertRow(state.Dbs.ProgramDb, "Patient", {{"LastName", "Müller"}, {"FirstName", "Jo"}}));
    p.IsNew = true;
    p.NumExercises = 3;
    for (int i = 0; i < 3; ++i) {
        p.Exercise(i).ExerciseID = 1 + i;
        p.Exercise(i).Desc = QStringLiteral("Heel slide %1").arg(i);
        p.Exercise(i).Reps = 10;
    }
    p.Modified = true;
    store.SaveProgram(false);
    ASSERT_TRUE(p.InvoiceID.has_value());

    cluster.Run("halt");
    p.Modified = true;
    p.Exercise(0).Reps = 12;
    try {
        store.SaveProgram(false);
        ADD_FAILURE() << "a save without a server went through";
    } catch (const DatabaseFault& fault) {
        EXPECT_FALSE(fault.Message().isEmpty());
    }
    EXPECT_TRUE(p.Modified) << "the program stays on the screen to be saved again";

    cluster.Run("resume");
    store.SaveProgram(false); // no restart of the program
    EXPECT_FALSE(p.Modified);
    EXPECT_EQ(Count(state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Invoice"), 1)
        << "the save replaced the program";
    EXPECT_EQ(Count(state.Dbs.ProgramDb,
                    QStringLiteral("SELECT Reps FROM Exercise WHERE InvoiceID = %1 AND "
                                   "RankOnTape = 0")
                        .arg(*p.InvoiceID)),
              12);
    CloseDatabases(state);
}
