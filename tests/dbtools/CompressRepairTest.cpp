#include "MaintenanceFakes.h"
#include "UpgradeHarness.h"

#include "dbtools/CompressRepair.h"
#include "dbtools/DatabaseRepair.h"
#include "dbtools/Upgrade.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

struct Maintenance {
    Maintenance() : host(folder.state), logic(host, prompter) {
        OpenDatabases(folder.state);
        logic.Now = [] { return QDateTime(QDate(2026, 11, 24), QTime(9, 30, 5)); };
    }
    ~Maintenance() { CloseDatabases(folder.state); }

    QString Data() const { return folder.File("Tarvex.MDB"); }

    void AddPrograms(int count) {
        folder.WithDatabase("Tarvex.MDB", [&](QSqlDatabase& db) {
            Transaction transaction(db);
            const qint64 patient = InsertRow(db, "Patient", {{"FullName", "Rossi, Ida"}});
            for (int i = 0; i < count; ++i) {
                const qint64 invoice = InsertRow(db, "Invoice", {{"PatientID", patient}});
                for (int r = 0; r < 10; ++r)
                    InsertRow(db, "Exercise",
                              {{"InvoiceID", invoice},
                               {"RankOnTape", r},
                               {"ExerciseID", 1},
                               {"Desc", QString(200, u'x')}});
            }
            transaction.Commit();
        });
    }

    int Count(const QString& sql) {
        int n = -1;
        folder.WithDatabase("Tarvex.MDB", [&](QSqlDatabase& db) {
            QSqlQuery q = OpenQuery(db, sql);
            n = q.next() ? q.value(0).toInt() : -1;
        });
        return n;
    }

    TestFolder folder;
    fakes::ScriptedPrompter prompter;
    FakeMaintenanceHost host;
    CompressRepairLogic logic;
};

} // namespace

TEST(Compress, RewritesTheFileWithoutItsDeadSpaceKeepingItsDataAndVersion) {
    Maintenance m;
    CloseDatabases(m.folder.state);
    m.AddPrograms(300);
    m.folder.WithDatabase("Tarvex.MDB", [](QSqlDatabase& db) {
        Execute(db, "DELETE FROM Invoice WHERE InvoiceID > 20");
        Execute(db, "PRAGMA wal_checkpoint(TRUNCATE)");
    });
    OpenDatabases(m.folder.state);
    m.folder.state.Program.PatientID = 1;
    m.folder.state.Program.FullName = "Rossi, Ida";
    const qint64 before = QFileInfo(m.Data()).size();
    m.prompter.answers = {Answer::Yes, Answer::Ok};

    m.logic.CompressDatabase();

    ASSERT_EQ(m.prompter.boxes.size(), 2u);
    EXPECT_EQ(m.prompter.boxes[0].text, "Compress the TVX database?");
    EXPECT_EQ(m.prompter.boxes[0].title, "Compress Database");
    EXPECT_EQ(m.prompter.boxes[0].style, msg::YesNo);
    EXPECT_EQ(m.prompter.boxes[1].text, "Compression completed!");
    EXPECT_EQ(m.prompter.boxes[1].title, "Compress Database");
    EXPECT_EQ(m.prompter.boxes[1].style, msg::OkOnly);
    EXPECT_EQ(m.host.calls, QStringList({"close", "open", "reset"}));
    EXPECT_LT(QFileInfo(m.Data()).size(), before / 2);
    EXPECT_FALSE(QFileInfo::exists(m.folder.File("~TEMP.MDB")));
    EXPECT_TRUE(m.folder.state.Dbs.IsOpen());
    EXPECT_FALSE(m.folder.state.Program.PatientID.has_value());
    EXPECT_EQ(ReadDatabaseVersion(m.Data()), "3.8");
    EXPECT_EQ(m.Count("SELECT COUNT(*) FROM Exercise"), 200);
    EXPECT_EQ(QFileInfo(m.Data()).permissions() & (QFile::ReadOther | QFile::ReadGroup), 0);
}

TEST(Compress, ALeftoverWorkFileIsRemovedFirst) {
    Maintenance m;
    QFile leftover(m.folder.File("~TEMP.MDB"));
    ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
    leftover.write("half of a former compress");
    leftover.close();
    m.prompter.answers = {Answer::Yes, Answer::Ok};
    m.logic.CompressDatabase();
    EXPECT_EQ(m.prompter.boxes.back().text, "Compression completed!");
    EXPECT_FALSE(QFileInfo::exists(m.folder.File("~TEMP.MDB")));
    EXPECT_GT(m.Count("SELECT COUNT(*) FROM Protocol"), 0);
}

TEST(Compress, NoLeavesTheDatabasesOpenAndThePatientCurrent) {
    Maintenance m;
    m.folder.state.Program.PatientID = 4;
    m.prompter.answers = {Answer::No};
    m.logic.CompressDatabase();
    EXPECT_TRUE(m.folder.state.Dbs.IsOpen());
    EXPECT_EQ(m.folder.state.Program.PatientID, 4);
    EXPECT_TRUE(m.host.calls.isEmpty());
}

TEST(Compress, AFailureTellsRepairUnsuccessfulResetsTheShellAndLeavesTheFileWhole) {
    Maintenance m;
    // A work file that cannot be removed: a folder with a file in it.
    ASSERT_TRUE(QDir(m.folder.Path()).mkpath("~TEMP.MDB/inside"));
    const int protocols = m.Count("SELECT COUNT(*) FROM Protocol");
    m.prompter.answers = {Answer::Yes, Answer::Ok};
    m.logic.CompressDatabase();
    ASSERT_EQ(m.prompter.boxes.size(), 2u);
    EXPECT_TRUE(m.prompter.boxes[1].text.startsWith("Repair unsuccessful!\rError number: 75\r"))
        << m.prompter.boxes[1].text.toStdString();
    EXPECT_EQ(m.prompter.boxes[1].style, msg::OkOnly);
    EXPECT_EQ(m.host.calls, QStringList({"close", "reset"}));
    // The databases stay closed on this path; the file is as it was.
    EXPECT_FALSE(m.folder.state.Dbs.IsOpen());
    EXPECT_EQ(m.Count("SELECT COUNT(*) FROM Protocol"), protocols);
}

TEST(Repair, ASoundFileIsLeftAsItIs) {
    Maintenance m;
    m.prompter.answers = {Answer::Yes, Answer::Ok};
    const QByteArray before = [&] {
        CloseDatabases(m.folder.state);
        QFile f(m.Data());
        f.open(QIODevice::ReadOnly);
        const QByteArray bytes = f.readAll();
        OpenDatabases(m.folder.state);
        return bytes;
    }();
    m.logic.RepairDatabase();
    ASSERT_EQ(m.prompter.boxes.size(), 2u);
    EXPECT_EQ(m.prompter.boxes[0].text, "Repair the TVX database?");
    EXPECT_EQ(m.prompter.boxes[0].title, "Repair Database");
    EXPECT_EQ(m.prompter.boxes[1].text, "Repair completed!");
    EXPECT_EQ(m.prompter.boxes[1].title, "Repair Database");
    EXPECT_EQ(m.host.calls, QStringList({"close", "open", "reset"}));
    CloseDatabases(m.folder.state);
    QFile f(m.Data());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), before);
    EXPECT_TRUE(QDir(m.folder.Path()).entryList({"*damaged*"}).isEmpty());
}

TEST(Repair, ADamagedFileIsRecoveredIntoAnOpenableDatabaseAndTheOriginalKept) {
    Maintenance m;
    CloseDatabases(m.folder.state);
    m.AddPrograms(200);
    m.folder.WithDatabase("Tarvex.MDB",
                          [](QSqlDatabase& db) { Execute(db, "PRAGMA wal_checkpoint(TRUNCATE)"); });
    // Damage a few pages in the middle of the file.
    {
        QFile f(m.Data());
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        const qint64 size = f.size();
        ASSERT_GT(size, 100000);
        f.seek(size / 2);
        f.write(QByteArray(3 * 4096, '\x5a'));
    }
    ASSERT_FALSE(DatabaseIsSound(m.Data()));
    // The start refuses such a file; a rebuild is run with the databases closed.
    m.prompter.answers = {Answer::Yes, Answer::Ok};
    m.logic.RepairDatabase();
    EXPECT_EQ(m.prompter.boxes.back().text, "Repair completed!");
    EXPECT_TRUE(DatabaseIsSound(m.Data()));
    EXPECT_TRUE(m.folder.state.Dbs.IsOpen());
    const QString kept = m.folder.File("Tarvex (damaged 2026-11-24 093005).MDB");
    EXPECT_TRUE(QFileInfo::exists(kept));
    EXPECT_FALSE(DatabaseIsSound(kept));
    // Most of what the file held is back.
    EXPECT_GT(m.Count("SELECT COUNT(*) FROM Exercise"), 1000);
    EXPECT_EQ(ReadDatabaseVersion(m.Data()), "3.8");
}

TEST(Repair, AFileThatIsNoDatabaseAtAllFailsWithTheTrapAndStaysAsItWas) {
    Maintenance m;
    CloseDatabases(m.folder.state);
    {
        QFile f(m.Data());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(QByteArray(4096, 'z'));
    }
    m.prompter.answers = {Answer::Yes, Answer::Ok};
    m.logic.RepairDatabase();
    ASSERT_EQ(m.prompter.boxes.size(), 2u);
    EXPECT_TRUE(m.prompter.boxes[1].text.startsWith("Repair unsuccessful!\rError number: "));
    EXPECT_EQ(QFileInfo(m.Data()).size(), 4096);
}
