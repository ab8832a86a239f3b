#include "UpgradeHarness.h"

#include "dbtools/DatabaseRepair.h"
#include "dbtools/Upgrade.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// Copies the files of one folder into another, which is emptied first.
void CopyFolder(const QString& from, const QString& to) {
    QDir(to).removeRecursively();
    QDir().mkpath(to);
    QDirIterator files(from, QDir::Files);
    while (files.hasNext()) {
        const QString path = files.next();
        ASSERT_TRUE(QFile::copy(path, QDir(to).filePath(files.fileName())));
    }
}

// Starts the child on the folder, lets it work for a random moment and kills it.
void KillDuring(const char* mode, const QString& folder, QRandomGenerator& random, int upToMs,
                const QString& archive = QString()) {
    QProcess child;
    QStringList args = {QLatin1String(mode), folder};
    if (!archive.isEmpty())
        args << archive;
    child.start(QStringLiteral(MAINTENANCE_CRASH_CHILD), args);
    ASSERT_TRUE(child.waitForStarted(10000));
    ASSERT_TRUE(child.waitForReadyRead(20000)) << child.readAllStandardError().toStdString();
    QThread::usleep(random.bounded(0, upToMs * 1000));
    child.kill();
    ASSERT_TRUE(child.waitForFinished(10000));
}

int Count(const QString& path, const QString& sql) {
    int n = -1;
    const QString name = QStringLiteral("crash-check");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", name);
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(sql) && q.next())
                n = q.value(0).toInt();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return n;
}

} // namespace

// A start killed at any moment of the upgrade leaves every file whole, with every stored
// program, and the next start finishes the walk.
TEST(MaintenanceCrash, AnUpgradeKilledAtRandomLeavesEveryFileWholeAndTheNextStartFinishes) {
    OldFolder old("", {30, 120, 8, 4});
    const QString pristine = old.folder.Path() + "/pristine";
    CopyFolder(old.folder.Path(), pristine);
    const QString work = old.folder.Path() + "/work";
    const int exercises = Count(pristine + "/Tarvex.MDB", "SELECT COUNT(*) FROM Exercise");
    ASSERT_EQ(exercises, 960);
    QRandomGenerator random(20261124);
    int finished = 0;
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        CopyFolder(pristine, work);
        KillDuring("upgrade", work, random, 900);
        for (const char* file : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"})
            EXPECT_TRUE(DatabaseIsSound(work + "/" + file)) << file;
        EXPECT_EQ(Count(work + "/Tarvex.MDB", "SELECT COUNT(*) FROM Exercise"), exercises);
        EXPECT_EQ(Count(work + "/Tarvex.MDB", "SELECT COUNT(*) FROM Invoice"), 120);
        if (ReadDatabaseVersion(work + "/Tarvex.MDB") == "3.7")
            ++finished;
        UpgradeDatabases(
            {work, work + "/Tarvex.MDB", work + "/Exercise Library.MDB", work + "/Picklist.MDB"},
            nullptr);
        EXPECT_EQ(ReadDatabaseVersion(work + "/Tarvex.MDB"), "3.7");
        EXPECT_EQ(ReadDatabaseVersion(work + "/Exercise Library.MDB"), "3.8");
        EXPECT_EQ(Count(work + "/Tarvex.MDB",
                        "SELECT COUNT(*) FROM pragma_table_info('Exercise') WHERE name = 'Temp'"),
                  0);
    }
    // Some kills came in the middle of the walk, not only after it.
    EXPECT_LT(finished, 50);
}

// A compress killed at any moment leaves "Tarvex.MDB" there, sound, with every program.
TEST(MaintenanceCrash, ACompressKilledAtRandomLeavesTheProgramDatabaseWhole) {
    TestFolder folder;
    folder.WithDatabase("Tarvex.MDB", [](QSqlDatabase& db) {
        Transaction transaction(db);
        const qint64 patient = InsertRow(db, "Patient", {{"FullName", "Okafor, Femi"}});
        for (int i = 0; i < 400; ++i) {
            const qint64 invoice = InsertRow(db, "Invoice", {{"PatientID", patient}});
            for (int r = 0; r < 10; ++r)
                InsertRow(db, "Exercise",
                          {{"InvoiceID", invoice}, {"RankOnTape", r}, {"ExerciseID", 7}});
        }
        transaction.Commit();
        Execute(db, "PRAGMA wal_checkpoint(TRUNCATE)");
    });
    QRandomGenerator random(4242);
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        KillDuring("compress", folder.Path(), random, 400);
        const QString data = folder.File("Tarvex.MDB");
        ASSERT_TRUE(QFile::exists(data));
        EXPECT_TRUE(DatabaseIsSound(data));
        EXPECT_EQ(Count(data, "SELECT COUNT(*) FROM Exercise"), 4000);
        EXPECT_EQ(ReadDatabaseVersion(data), "3.8");
    }
}

namespace {

// A program database of 400 programs with damage in its middle pages.
void DamageProgramDatabase(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.seek(f.size() / 2);
    f.write(QByteArray(2 * 4096, '\x5a'));
}

void AddPrograms(TestFolder& folder, int count) {
    folder.WithDatabase("Tarvex.MDB", [count](QSqlDatabase& db) {
        Transaction transaction(db);
        const qint64 patient = InsertRow(db, "Patient", {{"FullName", "Okafor, Femi"}});
        for (int i = 0; i < count; ++i) {
            const qint64 invoice = InsertRow(db, "Invoice", {{"PatientID", patient}});
            for (int r = 0; r < 10; ++r)
                InsertRow(db, "Exercise",
                          {{"InvoiceID", invoice}, {"RankOnTape", r}, {"ExerciseID", 7}});
        }
        transaction.Commit();
        Execute(db, "PRAGMA wal_checkpoint(TRUNCATE)");
    });
}

bool ArchiveTestsWhole(const QString& archive) {
    QProcess unzip;
    unzip.start("unzip", {"-tq", archive});
    unzip.waitForFinished(-1);
    return unzip.exitStatus() == QProcess::NormalExit && unzip.exitCode() == 0;
}

} // namespace

// A rebuild killed at any moment leaves "Tarvex.MDB" there: the damaged file as it was or
// the recovered one; a rebuild afterwards ends with a sound file.
TEST(MaintenanceCrash, ARebuildKilledAtRandomLeavesTheDamagedFileOrTheRecoveredOne) {
    TestFolder folder;
    AddPrograms(folder, 400);
    const QString data = folder.File("Tarvex.MDB");
    DamageProgramDatabase(data);
    const QString damaged = folder.Path() + "/damaged.MDB";
    ASSERT_TRUE(QFile::copy(data, damaged));
    QRandomGenerator random(77);
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        QFile::remove(data);
        ASSERT_TRUE(QFile::copy(damaged, data));
        KillDuring("repair", folder.Path(), random, 300);
        ASSERT_TRUE(QFile::exists(data));
        RepairDatabaseFile(data, QDateTime::currentDateTime().addSecs(run));
        EXPECT_TRUE(DatabaseIsSound(data));
        EXPECT_GT(Count(data, "SELECT COUNT(*) FROM Exercise"), 2000);
    }
}

// A backup killed at any moment leaves the former archive whole or the new one, never a
// part of one under the archive's name.
TEST(MaintenanceCrash, ABackupKilledAtRandomLeavesAWholeArchive) {
    TestFolder folder;
    AddPrograms(folder, 400);
    QTemporaryDir target;
    const QString archive = target.path() + "/Tarvex Backup.ZIP";
    QRandomGenerator random(99);
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        KillDuring("backup", folder.Path(), random, 400, archive);
        if (QFile::exists(archive)) {
            EXPECT_TRUE(ArchiveTestsWhole(archive));
        }
        for (const char* file : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"})
            EXPECT_TRUE(DatabaseIsSound(folder.File(file)));
    }
    EXPECT_TRUE(QFile::exists(archive));
}

// A restore killed at any moment leaves each database whole: the present one or the
// backup's, with every program of one or the other.
TEST(MaintenanceCrash, ARestoreKilledAtRandomLeavesEveryDatabaseWhole) {
    TestFolder folder;
    AddPrograms(folder, 100);
    QTemporaryDir target;
    const QString archive = target.path() + "/Tarvex Backup.ZIP";
    {
        QProcess zip;
        zip.setWorkingDirectory(folder.Path());
        zip.start("zip", {"-q", archive, "Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"});
        zip.waitForFinished(-1);
        ASSERT_EQ(zip.exitCode(), 0);
    }
    AddPrograms(folder, 100); // the present files hold 200 programs, the backup 100
    QRandomGenerator random(123);
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        KillDuring("restore", folder.Path(), random, 600, archive);
        for (const char* file : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"})
            EXPECT_TRUE(DatabaseIsSound(folder.File(file))) << file;
        const int programs = Count(folder.File("Tarvex.MDB"), "SELECT COUNT(*) FROM Invoice");
        EXPECT_TRUE(programs == 100 || programs == 200) << programs;
        EXPECT_EQ(Count(folder.File("Tarvex.MDB"), "SELECT COUNT(*) FROM Exercise"), programs * 10);
        if (programs == 100)
            AddPrograms(folder, 100); // the next kill finds the present files different again
    }
}
