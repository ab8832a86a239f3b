#include "program/ProgramHarness.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ProgramHarness;

// A process killed in the middle of saving a 20-exercise program leaves the database
// consistent: the old program intact or the new one whole, never half.
TEST(SaveProgram, AKilledProcessLeavesEitherTheOldProgramOrTheNewOneWhole) {
    ProgramHarness h;
    const int32_t patient = h.AddPatient("Crash");
    h.Choose(patient, "Crash, Ann");
    h.FillExercises(20);
    h.store.SaveProgram(false);
    CloseDatabases(h.State());

    QRandomGenerator random(20261122);
    int kills = 0;
    for (int run = 0; run < 12; ++run) {
        QProcess child;
        QStringList arguments = {h.folder.Path(), QString::number(patient)};
        if (!h.folder.ServerDatabase().isEmpty())
            arguments << h.folder.ServerDatabase();
        child.start(QStringLiteral(SAVE_CRASH_CHILD), arguments);
        ASSERT_TRUE(child.waitForStarted(10000));
        // Let it save a few times, then kill it at a random moment of its loop.
        ASSERT_TRUE(child.waitForReadyRead(20000)) << child.readAllStandardError().toStdString();
        QThread::usleep(random.bounded(200, 30000));
        child.kill();
        ASSERT_TRUE(child.waitForFinished(10000));
        ++kills;

        h.folder.WithDatabase("Tarvex.MDB", [&](QSqlDatabase& db) {
            // The file's own checks; a server keeps its relations as constraints.
            if (DialectOf(db) == SqlDialect::Sqlite) {
                QSqlQuery check = OpenQuery(db, "PRAGMA integrity_check");
                ASSERT_TRUE(check.next());
                EXPECT_EQ(check.value(0).toString(), "ok");
                QSqlQuery keys = OpenQuery(db, "PRAGMA foreign_key_check");
                EXPECT_FALSE(keys.next()) << "a row without its parent";
            }
            QSqlQuery programs = OpenQuery(
                db,
                QStringLiteral("SELECT InvoiceID FROM Invoice WHERE PatientID = %1").arg(patient));
            ASSERT_TRUE(programs.next()) << "the program is gone";
            const int invoice = programs.value(0).toInt();
            EXPECT_FALSE(programs.next()) << "two programs where one replaces the other";
            QSqlQuery rows = OpenQuery(
                db, QStringLiteral(
                        "SELECT COUNT(*), COUNT(DISTINCT Reps) FROM Exercise WHERE InvoiceID = %1")
                        .arg(invoice));
            ASSERT_TRUE(rows.next());
            EXPECT_EQ(rows.value(0).toInt(), 20);
            EXPECT_EQ(rows.value(1).toInt(), 1); // all rows of one save
            QSqlQuery orphans =
                OpenQuery(db, "SELECT COUNT(*) FROM Exercise WHERE InvoiceID NOT IN "
                              "(SELECT InvoiceID FROM Invoice)");
            ASSERT_TRUE(orphans.next());
            EXPECT_EQ(orphans.value(0).toInt(), 0);
        });
    }
    EXPECT_EQ(kills, 12);
}
