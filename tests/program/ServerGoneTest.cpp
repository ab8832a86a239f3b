// A workstation whose server goes away: in the middle of a save, and while the program
// waits between saves. Only the server can go away; on the files the tests skip.

#include "program/ProgramHarness.h"
#include "support/Fault.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QString kProgramFile = QStringLiteral("Tarvex.MDB");

int CountBehind(ProgramHarness& h, const QString& sql) {
    int n = -1;
    h.folder.WithDatabase(kProgramFile, [&](QSqlDatabase& db) {
        QSqlQuery q = OpenQuery(db, sql);
        n = q.next() ? q.value(0).toInt() : -1;
    });
    return n;
}

// The server ends the session of whoever inserts an exercise row in the given place of a
// program: for the program, its server is gone in the middle of the save.
void DropConnectionAtRow(ProgramHarness& h, int rank) {
    h.folder.WithDatabase(kProgramFile, [rank](QSqlDatabase& db) {
        Execute(db, "CREATE FUNCTION drop_connection() RETURNS trigger LANGUAGE plpgsql AS $$ "
                    "BEGIN PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NEW; END $$");
        Execute(db, QStringLiteral("CREATE TRIGGER drop_connection BEFORE INSERT ON exercise "
                                   "FOR EACH ROW WHEN (NEW.rankontape = %1) EXECUTE FUNCTION "
                                   "drop_connection()")
                        .arg(rank));
    });
}

void ServerBack(ProgramHarness& h) {
    h.folder.WithDatabase(kProgramFile, [](QSqlDatabase& db) {
        Execute(db, "DROP TRIGGER drop_connection ON exercise");
    });
}

int BackendOf(QSqlDatabase& db) {
    QSqlQuery q = OpenQuery(db, "SELECT pg_backend_pid()");
    return q.next() ? q.value(0).toInt() : -1;
}

} // namespace

TEST(ServerGoneAway, ASaveCutOffMidwayIsReportedStoresNothingAndTheNextSaveWorks) {
    if (!OnTestServer())
        GTEST_SKIP() << "a database file cannot go away in the middle of a save";
    ProgramHarness h;
    const int32_t patient = h.AddPatient("O'Brien-Zoë");
    h.Choose(patient, "O'Brien-Zoë, Ann");
    h.FillExercises(20);
    const int programs = CountBehind(h, "SELECT COUNT(*) FROM Invoice");
    const int rows = CountBehind(h, "SELECT COUNT(*) FROM Exercise");
    const int backend = BackendOf(h.Db());
    DropConnectionAtRow(h, 12);

    try {
        h.store.SaveProgram(false);
        ADD_FAILURE() << "the save went through without its server";
    } catch (const DatabaseFault& fault) {
        EXPECT_TRUE(fault.Message().contains("terminating connection") ||
                    fault.Message().contains("server closed the connection"))
            << fault.Message().toStdString();
    }
    EXPECT_EQ(CountBehind(h, "SELECT COUNT(*) FROM Invoice"), programs) << "no program half-saved";
    EXPECT_EQ(CountBehind(h, "SELECT COUNT(*) FROM Exercise"), rows);
    EXPECT_TRUE(h.Program().Modified) << "the clinician's program is still on the screen";
    EXPECT_TRUE(h.Program().IsNew);
    EXPECT_FALSE(h.Program().InvoiceID.has_value());

    ServerBack(h);
    h.store.SaveProgram(false);
    EXPECT_NE(BackendOf(h.Db()), backend) << "a new connection, without a restart";
    EXPECT_EQ(CountBehind(h, "SELECT COUNT(*) FROM Invoice"), programs + 1);
    EXPECT_EQ(CountBehind(h, "SELECT COUNT(*) FROM Exercise"), rows + 20);
    ASSERT_TRUE(h.Program().InvoiceID.has_value());
    const int32_t saved = *h.Program().InvoiceID;
    h.store.LoadProgram(saved);
    EXPECT_EQ(h.Program().NumExercises, 20);
}

TEST(ServerGoneAway, AConnectionDroppedBetweenSavesIsOpenedAgainByTheNextLoadOrSave) {
    if (!OnTestServer())
        GTEST_SKIP() << "a database file has no connection to drop";
    ProgramHarness h;
    const int32_t patient = h.AddPatient("Idle");
    h.Choose(patient, "Idle, Ann");
    h.FillExercises(5);
    h.store.SaveProgram(false);
    const int32_t first = *h.Program().InvoiceID;

    // The server restarts (or the network drops) while the program waits.
    const auto dropWorkstation = [&h] {
        const int backend = BackendOf(h.Db());
        h.folder.WithDatabase(kProgramFile, [backend](QSqlDatabase& db) {
            QSqlQuery q =
                OpenQuery(db, QStringLiteral("SELECT pg_terminate_backend(%1)").arg(backend));
            ASSERT_TRUE(q.next() && q.value(0).toBool());
        });
        return backend;
    };
    int gone = dropWorkstation();
    h.store.LoadProgram(first);
    EXPECT_EQ(h.Program().NumExercises, 5) << "the read ran again on a new connection";
    EXPECT_NE(BackendOf(h.Db()), gone);

    gone = dropWorkstation();
    h.FillExercises(7);
    h.Program().IsNew = false;
    h.store.SaveProgram(false);
    EXPECT_NE(BackendOf(h.Db()), gone);
    EXPECT_EQ(CountBehind(h, QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1")
                                 .arg(*h.Program().InvoiceID)),
              7);
    EXPECT_EQ(
        CountBehind(h,
                    QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE InvoiceID = %1").arg(first)),
        0)
        << "the save replaced the program";
}
