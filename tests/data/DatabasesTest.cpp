#include "data/Databases.h"
#include "data/Schema.h"
#include "data/Sql.h"
#include "dbtools/Upgrade.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::TestFolder;

namespace {

int Count(QSqlDatabase& db, const QString& sql) {
    QSqlQuery q = OpenQuery(db, sql);
    return q.next() ? q.value(0).toInt() : -1;
}

qint64 AddPatientWithProgram(QSqlDatabase& db, const QString& last) {
    const qint64 patient =
        InsertRow(db, "Patient", {{"LastName", last}, {"FullName", last + ", Ann"}});
    const qint64 invoice =
        InsertRow(db, "Invoice", {{"PatientID", patient}, {"Date", "2026-11-01 10:00:00"}});
    for (int rank = 0; rank < 3; ++rank)
        InsertRow(db, "Exercise",
                  {{"InvoiceID", invoice}, {"RankOnTape", rank}, {"ExerciseID", 1}});
    InsertRow(db, "Items", {{"InvoiceID", invoice}, {"PartNumber", "TVX-1"}, {"RankOnOrder", 0}});
    return patient;
}

} // namespace

TEST(Databases, OpenTheThreeFilesOfTheApplicationFolder) {
    TestFolder folder;
    OpenDatabases(folder.state);
    EXPECT_TRUE(folder.state.Dbs.ProgramDb.isOpen());
    EXPECT_TRUE(folder.state.Dbs.LibraryDb.isOpen());
    EXPECT_TRUE(folder.state.Dbs.PicklistDb.isOpen());
    EXPECT_TRUE(folder.state.Dbs.ProgramPath.endsWith("/Tarvex.MDB"));
    EXPECT_TRUE(folder.state.Dbs.LibraryPath.endsWith("/Exercise Library.MDB"));
    EXPECT_TRUE(folder.state.Dbs.PicklistPath.endsWith("/Picklist.MDB"));
    EXPECT_GT(folder.state.Dbs.Library.RecordCount(), 0);
    CloseDatabases(folder.state);
    EXPECT_FALSE(folder.state.Dbs.ProgramDb.isValid());
    EXPECT_FALSE(folder.state.Dbs.LibraryDb.isValid());
    EXPECT_FALSE(folder.state.Dbs.PicklistDb.isValid());
}

TEST(Databases, EveryTableOfTheSchemaIsThere) {
    TestFolder folder;
    OpenDatabases(folder.state);
    const auto tables = [](QSqlDatabase& db) {
        QStringList names = db.tables();
        names.removeAll("sqlite_sequence");
        names.sort();
        return names;
    };
    EXPECT_EQ(tables(folder.state.Dbs.ProgramDb),
              QStringList({"Clinic", "Exercise", "Invoice", "Items", "Patient", "Protocol",
                           "ProtocolExercise", "Version"}));
    EXPECT_EQ(tables(folder.state.Dbs.LibraryDb), QStringList({"ExerciseLibrary", "Version"}));
    EXPECT_EQ(tables(folder.state.Dbs.PicklistDb), QStringList({"Label", "Level1"}));
    EXPECT_EQ(ReadDatabaseVersion(folder.state.Dbs.ProgramPath), "3.8");
    EXPECT_EQ(ReadDatabaseVersion(folder.state.Dbs.LibraryPath), "3.8");
}

TEST(Databases, DeletingAPatientRemovesProgramsExercisesAndItemsThroughTheRelations) {
    TestFolder folder;
    OpenDatabases(folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    const qint64 gone = AddPatientWithProgram(db, "Gone");
    AddPatientWithProgram(db, "Stays");
    Execute(db, QStringLiteral("DELETE * FROM Patient WHERE PatientID = %1").arg(gone));
    EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Patient"), 1);
    EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Invoice"), 1);
    EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Exercise"), 3);
    EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Items"), 1);
}

TEST(Databases, DeletingAProtocolOrALabelRemovesItsRows) {
    TestFolder folder;
    OpenDatabases(folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    const qint64 protocol = InsertRow(db, "Protocol", {{"Name", "Knee replacement, week 1"}});
    InsertRow(db, "ProtocolExercise", {{"ProtocolID", protocol}, {"RankOnTape", 0}});
    const QString rows =
        QStringLiteral("SELECT COUNT(*) FROM ProtocolExercise WHERE ProtocolID=%1").arg(protocol);
    EXPECT_EQ(Count(db, rows), 1);
    Execute(db, QStringLiteral("DELETE * FROM Protocol WHERE ProtocolID=%1").arg(protocol));
    EXPECT_EQ(Count(db, rows), 0);

    QSqlDatabase& picklists = folder.state.Dbs.PicklistDb;
    EXPECT_GT(Count(picklists, "SELECT COUNT(*) FROM Level1"), 0);
    Execute(picklists, "DELETE * FROM Label");
    EXPECT_EQ(Count(picklists, "SELECT COUNT(*) FROM Level1"), 0);
}

TEST(Databases, AnEmptyPayOrShipMethodIsRefusedSoTheWriterLeavesItNull) {
    TestFolder folder;
    OpenDatabases(folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    const qint64 patient = InsertRow(db, "Patient", {{"LastName", "Ng"}});
    EXPECT_THROW(InsertRow(db, "Invoice", {{"PatientID", patient}, {"PayMethod", ""}}),
                 DatabaseFault);
    EXPECT_THROW(InsertRow(db, "Invoice", {{"PatientID", patient}, {"ShipMethod", ""}}),
                 DatabaseFault);
    const qint64 invoice = InsertRow(db, "Invoice", {{"PatientID", patient}});
    QSqlQuery q = OpenQuery(db, QStringLiteral("SELECT PayMethod, ShipMethod FROM Invoice WHERE "
                                               "InvoiceID = %1")
                                    .arg(invoice));
    ASSERT_TRUE(q.next());
    EXPECT_TRUE(q.value(0).isNull());
    EXPECT_TRUE(q.value(1).isNull());
}

TEST(Databases, TextComparesWithoutRegardToCase) {
    TestFolder folder;
    OpenDatabases(folder.state);
    QSqlDatabase& db = folder.state.Dbs.ProgramDb;
    InsertRow(db, "Patient", {{"LastName", "McKenzie"}});
    EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Patient WHERE LastName = 'mckenzie'"), 1);
    EXPECT_EQ(Count(folder.state.Dbs.LibraryDb,
                    "SELECT COUNT(*) FROM ExerciseLibrary WHERE AbbrevDesc = 'CHIN TUCKS'"),
              1);
}

TEST(Databases, ARankOnTapeIsRequired) {
    TestFolder folder;
    OpenDatabases(folder.state);
    EXPECT_THROW(InsertRow(folder.state.Dbs.ProgramDb, "Exercise", {{"ExerciseID", 1}}),
                 DatabaseFault);
}

TEST(Databases, AfterASecondOpeningNoPatientIsCurrent) {
    TestFolder folder;
    OpenDatabases(folder.state);
    folder.state.Program.PatientID = 12;
    folder.state.Program.InvoiceID = 40;
    CloseDatabases(folder.state);
    OpenDatabases(folder.state);
    EXPECT_FALSE(folder.state.Program.PatientID.has_value());
    EXPECT_FALSE(folder.state.Program.InvoiceID.has_value());
    EXPECT_EQ(folder.state.Dbs.OpenCount, 2);
}

TEST(Databases, AMissingFileIsAFaultAndIsNeverCreated) {
    TestFolder folder;
    ASSERT_TRUE(QFile::remove(folder.File("Picklist.MDB")));
    EXPECT_THROW(OpenDatabases(folder.state), DatabaseFault);
    EXPECT_FALSE(QFile::exists(folder.File("Picklist.MDB")));
    EXPECT_FALSE(folder.state.Dbs.ProgramDb.isValid()); // nothing is left half open
}

TEST(Databases, ADamagedFileIsAFault) {
    TestFolder folder;
    QFile file(folder.File("Tarvex.MDB"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray(4096, '\x5a'));
    file.close();
    EXPECT_THROW(OpenDatabases(folder.state), DatabaseFault);
}

TEST(Databases, AFileOfAFormerVersionIsBroughtUpToDateAndACopyKept) {
    TestFolder folder;
    folder.WithDatabase("Exercise Library.MDB", [](QSqlDatabase& db) { WriteVersion(db, "3.5"); });
    OpenDatabases(folder.state);
    CloseDatabases(folder.state);
    EXPECT_EQ(ReadDatabaseVersion(folder.File("Exercise Library.MDB")), "3.8");
    EXPECT_EQ(ReadDatabaseVersion(folder.File("Exercise Library (version 3.5).MDB")), "3.5");
}

TEST(DatabaseSession, AReopenGivesAFreshUnfilteredLibraryViewAndNoCurrentPatient) {
    TestFolder folder;
    OpenDatabases(folder.state);
    DatabaseSession& session = folder.state.Dbs;
    const int all = session.Library.RecordCount();
    session.Library.SetFilter("(Joint LIKE '*Knee*')");
    ASSERT_LT(session.Library.RecordCount(), all);
    folder.state.Program.PatientID = 7;

    session.ReopenAll();
    EXPECT_TRUE(session.IsOpen());
    EXPECT_EQ(session.Library.Filter(), "");
    EXPECT_EQ(session.Library.RecordCount(), all);
    EXPECT_EQ(session.OpenCount, 2);
    // Only the three connections of the session exist: the old ones are gone.
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), 3);
    OpenDatabases(folder.state);
    EXPECT_FALSE(folder.state.Program.PatientID.has_value());
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), 3);
    session.CloseAll();
    EXPECT_FALSE(session.IsOpen());
    EXPECT_FALSE(session.Library.IsOpen());
    EXPECT_TRUE(QSqlDatabase::connectionNames().isEmpty());
}
