// Moving a clinic between the files of a data folder and a server: the round trip gives the
// files back as they were, every table is checked, and a move that cannot be made whole
// leaves nothing behind.

#include "dbtools/Migration.h"
#include "pg/ServerHarness.h"
#include "program/ProgramHarness.h"
#include "protocol/ProtocolStore.h"
#include "support/Currency.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// The file's content as Debian's sqlite3 writes it out. The counters of the engine's keys
// are one line each whose order only tells which table got its first row first, so they are
// put in order.
QString Dump(const QString& path) {
    QProcess sqlite;
    sqlite.start("sqlite3", {path, ".dump"});
    EXPECT_TRUE(sqlite.waitForFinished(60000));
    const QStringList lines = QString::fromUtf8(sqlite.readAllStandardOutput()).split(u'\n');
    QStringList counters, rest;
    for (const QString& line : lines)
        (line.startsWith("INSERT INTO sqlite_sequence") ? counters : rest) << line;
    counters.sort();
    return rest.join(u'\n') + "\n-- counters\n" + counters.join(u'\n');
}

// A clinic with what a clinic's data holds: names with apostrophes and accents, a text of
// 10,000 characters, programs with exercises and an order, a protocol, deleted rows.
void FillClinic(ProgramHarness& h) {
    const QString longText(10000, u'x');
    const int32_t first = h.AddPatient("O'Brien", QString::fromUtf8("Zoë"));
    const int32_t second = h.AddPatient(QString::fromUtf8("Ørsted-Łukasz 山田"), longText);
    const int32_t gone = h.AddPatient("Gone");
    for (int32_t patient : {first, second, gone}) {
        h.Choose(patient, "someone");
        h.FillExercises(patient == second ? 20 : 3);
        h.Program().Provider = "Dr. \"Quote\" O'Hara";
        h.Program().NumItems = 1;
        h.Program().Item(0).PartNumber = "V-1";
        h.Program().Item(0).Description = longText;
        h.Program().Item(0).Qty = 2;
        h.Program().Item(0).Price = Currency::FromDouble(19.95);
        h.Program().Exercise(0).HasVideo = true;
        h.Program().Exercise(0).Instruct0 = longText;
        h.store.SaveProgram(false);
    }
    Execute(h.Db(), QStringLiteral("DELETE * FROM Patient WHERE PatientID = %1").arg(gone));
    h.FillExercises(4);
    InsertProtocol(h.State(), QStringLiteral("Knee 'après' surgery"));
}

} // namespace

TEST(Migration, TheRoundTripGivesTheFilesBackAsTheyWere) {
    ProgramHarness h;
    FillClinic(h);
    const int videos = h.Count("SELECT COUNT(*) FROM Exercise WHERE HasVideo <> 0");
    EXPECT_GE(videos, 2);
    CloseDatabases(h.State());
    EmptyServerDatabase server;

    const std::vector<TableTally> up = MoveFolderToServer(h.folder.Path(), server.Server(), {});
    EXPECT_EQ(up.size(), 12u); // eight tables of the programs, two of the library, two lists
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.patient"), 2);
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.invoice"), 2);
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.exercise"), 23);
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.exercise WHERE hasvideo"), videos);
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.items WHERE price = 19.95"), 2);
    EXPECT_EQ(server.Count("SELECT MAX(length(firstname)) FROM program.patient"), 10000);

    QTemporaryDir back;
    const std::vector<TableTally> down = MoveServerToFolder(server.Server(), back.path(), {});
    ASSERT_EQ(down.size(), up.size());
    for (size_t i = 0; i < up.size(); ++i) {
        EXPECT_EQ(down[i].Table, up[i].Table);
        EXPECT_EQ(down[i].Rows, up[i].Rows) << up[i].Table.toStdString();
        EXPECT_EQ(down[i].Checksum, up[i].Checksum) << up[i].Table.toStdString();
    }
    // The program opens the files it was given, as at every start, and leaves them as it
    // leaves every file it opens: that is the state the clinic's own files are in.
    {
        AppState reopened;
        reopened.AppFolder = back.path();
        OpenDatabases(reopened);
        CloseDatabases(reopened);
    }
    for (const Store store : kAllStores) {
        const QString name = StoreFileName(store);
        const QString before = Dump(h.folder.File(name));
        EXPECT_GT(before.size(), 1000) << name.toStdString();
        EXPECT_EQ(Dump(QDir(back.path()).filePath(name)).toStdString(), before.toStdString())
            << name.toStdString();
        // The files hold patient data: private to the user.
        const QFileDevice::Permissions made = QFile::permissions(QDir(back.path()).filePath(name));
        EXPECT_TRUE(made.testFlags(QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        EXPECT_FALSE(made & (QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                             QFileDevice::ReadOther | QFileDevice::WriteOther));
    }
    // The next key on the server is above every key the clinic ever gave, deleted or not.
    EXPECT_EQ(server.Count("SELECT nextval(pg_get_serial_sequence('program.patient', "
                           "'patientid'))"),
              4);
}

TEST(Migration, AServerThatHoldsTheStoresAlreadyIsRefusedAndLeftAsItWas) {
    TestFolder folder;
    EmptyServerDatabase server;
    CreateServerStores(server.Server());
    server.Run([](QSqlDatabase& db) {
        Execute(db, "INSERT INTO program.patient (lastname) VALUES ('Kept')");
    });
    try {
        MoveFolderToServer(folder.Path(), server.Server(), {});
        FAIL() << "the move went ahead";
    } catch (const DatabaseFault& fault) {
        EXPECT_TRUE(fault.Message().contains("already has the schema"))
            << fault.Message().toStdString();
    }
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM program.patient WHERE lastname = 'Kept'"), 1);
}

TEST(Migration, AFolderThatHasTheFilesIsRefusedAndLeftAsItWas) {
    TestFolder folder;
    EmptyServerDatabase server;
    CreateServerStores(server.Server());
    const QByteArray before = [&] {
        QFile file(folder.File("Tarvex.MDB"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }();
    try {
        MoveServerToFolder(server.Server(), folder.Path(), {});
        FAIL() << "the move went ahead";
    } catch (const Fault& fault) {
        EXPECT_TRUE(fault.Message().contains("replaces none")) << fault.Message().toStdString();
    }
    QFile file(folder.File("Tarvex.MDB"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
}

TEST(Migration, ARowTheServerRefusesLeavesNothingOnTheServer) {
    ProgramHarness h;
    // SQLite keeps a text in a number column; the server does not.
    Execute(h.Db(), "INSERT INTO Patient (LastName) VALUES ('Bad')");
    Execute(h.Db(), "INSERT INTO Invoice (PatientID, Tax) VALUES (1, 'not a number')");
    CloseDatabases(h.State());
    EmptyServerDatabase server;
    try {
        MoveFolderToServer(h.folder.Path(), server.Server(), {});
        FAIL() << "the move went ahead";
    } catch (const DatabaseFault& fault) {
        EXPECT_TRUE(fault.Message().contains("not a number")) << fault.Message().toStdString();
    }
    EXPECT_EQ(server.Count("SELECT COUNT(*) FROM pg_namespace WHERE nspname IN "
                           "('program', 'library', 'picklist')"),
              0);
}

TEST(Migration, AFailedMoveToAFolderLeavesNoFileThere) {
    EmptyServerDatabase server;
    CreateServerStores(server.Server());
    server.Run([](QSqlDatabase& db) { Execute(db, "UPDATE library.version SET version = '9.9'"); });
    QTemporaryDir target;
    EXPECT_THROW(MoveServerToFolder(server.Server(), target.path(), {}), DatabaseFault);
    EXPECT_TRUE(QDir(target.path()).entryList(QDir::Files | QDir::Hidden).isEmpty())
        << QDir(target.path()).entryList(QDir::Files | QDir::Hidden).join(' ').toStdString();
}
