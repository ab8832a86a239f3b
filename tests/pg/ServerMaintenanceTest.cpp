// The Database menu's maintenance with the databases on a server: compress and rebuild work on
// the server's tables, and the backup and the restore go through pg_dump and pg_restore,
// with the windows, boxes and status texts of the files' forms. Against the private cluster
// of the tests, with the real tools.

#include "dbtools/BackupFakes.h"
#include "dbtools/MaintenanceFakes.h"
#include "media/MediaFakes.h"
#include "pg/ServerHarness.h"

#include "dbtools/BackupLogic.h"
#include "dbtools/Migration.h"
#include "dbtools/ServerDump.h"
#include "dbtools/ServerMaintenance.h"
#include "dbtools/ServerRestore.h"
#include "dbtools/ZipArchive.h"
#include "shell/Shell.h"
#include "support/Fault.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <filesystem>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QStringList kRestingButtons = {"cmdBackup", "cmdOK", "cmdTest", "cmdFix", "cmdFolder"};
const QStringList kAllButtons = {"cmdBackup", "cmdAbort", "cmdOK",
                                 "cmdTest",   "cmdFix",   "cmdFolder"};

int TableCount() {
    int tables = 0;
    for (const Store store : kAllStores)
        tables += static_cast<int>(StoreTables(store).size());
    return tables;
}

QString SchemaList() {
    return QStringLiteral("('program', 'library', 'picklist')");
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// The PATH of the process for the length of a scope.
class ScopedPath {
public:
    explicit ScopedPath(const QString& path) : saved_(qgetenv("PATH")) {
        qputenv("PATH", QFile::encodeName(path));
    }
    ~ScopedPath() { qputenv("PATH", saved_); }
    ScopedPath(const ScopedPath&) = delete;
    ScopedPath& operator=(const ScopedPath&) = delete;

private:
    QByteArray saved_;
};

// A clinic on the cluster: the delivered databases moved into an empty database of it, and
// a workstation's state that has them open there. The work folder of the dumps is one of
// the test's own, to see that nothing stays in it.
struct ServerClinic {
    ServerClinic() {
        MoveFolderToServer(folder.Path(), database.Server(), {});
        folder.state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
        folder.state.Dbs.Choice.Server = database.Server();
        OpenDatabases(folder.state);
        tools.WorkFolder = work.path();
    }

    ServerSettings Server() const { return database.Server(); }
    AppState& State() { return folder.state; }

    // Every row of every table of the three stores, in order, as the server writes a row
    // out, one digest for each table with its row count; then where each key counter
    // stands.
    std::string Content() const {
        QStringList lines;
        database.Run([&](QSqlDatabase& db) {
            for (const Store store : kAllStores)
                for (const TableShape& table : StoreTables(store)) {
                    const QString name =
                        StoreSchemaName(store) + u'.' + QString::fromLatin1(table.Name).toLower();
                    QSqlQuery q = OpenQuery(
                        db, QStringLiteral("SELECT count(*), md5(coalesce(string_agg(t::text, "
                                           "chr(10) ORDER BY t::text), '')) FROM %1 t")
                                .arg(name));
                    EXPECT_TRUE(q.next());
                    lines << QStringLiteral("%1 %2 %3")
                                 .arg(name, q.value(0).toString(), q.value(1).toString());
                }
            QSqlQuery counters = OpenQuery(
                db, QStringLiteral("SELECT schemaname || '.' || sequencename, "
                                   "coalesce(last_value::text, '-') FROM pg_sequences WHERE "
                                   "schemaname IN %1 ORDER BY 1")
                        .arg(SchemaList()));
            while (counters.next())
                lines << counters.value(0).toString() + u' ' + counters.value(1).toString();
        });
        return lines.join(u'\n').toStdString();
    }

    int Count(const QString& sql) const { return database.Count(sql); }

    // What a day's work changes: a patient with a program, an exercise gone from the
    // library, a list entry renamed.
    void Change() {
        QSqlDatabase& program = folder.state.Dbs.ProgramDb;
        const qint64 patient = InsertRow(program, "Patient", {{"FullName", "Jensen, Eve"}});
        InsertRow(program, "Invoice", {{"PatientID", patient}, {"Provider", "Dr. O'Hara"}});
        Execute(folder.state.Dbs.LibraryDb,
                "DELETE FROM ExerciseLibrary WHERE ExerciseID = (SELECT MIN(ExerciseID) FROM "
                "ExerciseLibrary)");
        Execute(folder.state.Dbs.PicklistDb,
                "UPDATE Label SET Name = 'Renamed' WHERE ID = (SELECT MIN(ID) FROM Label)");
    }

    bool WorkFolderEmpty() const {
        return QDir(work.path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)
            .isEmpty();
    }

    EmptyServerDatabase database;
    TestFolder folder;
    QTemporaryDir work;
    ServerTools tools;
};

// The backup window's logic over fakes, for the clinic on the server.
struct ServerBackupForm {
    ServerBackupForm() {
        target = dir.filePath(QStringLiteral("stick"));
        QDir().mkpath(target);
        settings.values[QStringLiteral("Backup/Folder")] = target;
        logic.UseServer(clinic.Server(), clinic.tools);
        logic.Load({}, dir.filePath(QStringLiteral("home")));
    }
    QString Archive() const { return QDir(target).filePath(QLatin1String(kBackupArchiveName)); }

    // A backup that goes through, with its two boxes answered.
    void BackUp() {
        prompts.answers = {Answer::Ok, Answer::Ok};
        logic.cmdBackup();
        ASSERT_EQ(BoxTitles(prompts), QStringList({"Backup Status", Shell::kTitle}));
        prompts.boxes.clear();
        host.calls.clear();
        host.statuses.clear();
    }

    ServerClinic clinic;
    QTemporaryDir dir;
    QString target;
    fakes::FakeReportList list;
    FakeProgressBar bar;
    fakes::FakeCommands buttons;
    fakes::FakeLabel folder;
    fakes::FakeTextBox password;
    FakeBackupHost host{clinic.State()};
    HookedPrompter prompts;
    fakes::FakeSettingsStore settings;
    FakeFolderChooser chooser;
    BackupLogic logic{{list, bar, buttons, folder, password}, host, prompts, settings, chooser};
};

// The restore's logic over fakes, for the same clinic.
struct ServerRestoreForm {
    explicit ServerRestoreForm(ServerClinic& clinic)
        : host(clinic.State()), logic(clinic.Server(), host, prompts, dialog) {
        logic.Tools = clinic.tools;
    }
    FakeMaintenanceHost host;
    fakes::ScriptedPrompter prompts;
    ScriptedOpenDialog dialog;
    ServerRestoreLogic logic;
};

// A Zip archive of files made in a folder of their own.
QString ZipOf(const QString& folder, const QMap<QString, QByteArray>& files) {
    QStringList names;
    for (auto it = files.begin(); it != files.end(); ++it) {
        WriteFile(QDir(folder).filePath(it.key()), it.value());
        names << it.key();
    }
    const QString archive = QDir(folder).filePath(QStringLiteral("Other Backup.ZIP"));
    QuietZipEvents events;
    EXPECT_EQ(ZipAddFiles({archive, folder, names, {}}, events), zipcode::kSuccess);
    return archive;
}

} // namespace

TEST(ServerCompress, YesVacuumsEveryTableWithTheDatabasesOpenAndEndsWithTheEndMessage) {
    ServerClinic c;
    c.State().Program.PatientID = 4;
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::Yes, Answer::Ok};
    ServerMaintenanceLogic(c.Server(), host, prompts).CompressDatabase();

    ASSERT_EQ(prompts.boxes.size(), 2u);
    EXPECT_EQ(prompts.boxes[0].text, "Compress the TVX database?");
    EXPECT_EQ(prompts.boxes[0].title, "Compress Database");
    EXPECT_EQ(prompts.boxes[0].style, msg::YesNo);
    EXPECT_EQ(prompts.boxes[1].text, "Compression completed!");
    EXPECT_EQ(prompts.boxes[1].title, "Compress Database");
    EXPECT_EQ(prompts.boxes[1].style, msg::OkOnly);
    // Every table was vacuumed and analysed, by hand rather than by the server's own
    // autovacuum.
    EXPECT_EQ(c.Count("SELECT count(*) FROM pg_stat_user_tables WHERE schemaname IN " +
                      SchemaList() + " AND last_vacuum IS NOT NULL AND last_analyze IS NOT NULL"),
              TableCount());
    // The databases were never closed: the patient is still the current one.
    EXPECT_EQ(host.calls, QStringList({"busy", "idle"}));
    EXPECT_TRUE(c.State().Dbs.IsOpen());
    EXPECT_EQ(c.State().Program.PatientID, 4);
    EXPECT_TRUE(host.statuses.contains(" Compressing program.Patient..."));
    EXPECT_TRUE(host.statuses.contains(" Compressing picklist.Label..."));
    EXPECT_EQ(host.statuses.last(), Shell::kReady);
}

TEST(ServerCompress, NoDoesNothing) {
    ServerClinic c;
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::No};
    ServerMaintenanceLogic(c.Server(), host, prompts).CompressDatabase();
    EXPECT_EQ(prompts.boxes.size(), 1u);
    EXPECT_TRUE(host.calls.isEmpty());
    EXPECT_TRUE(host.statuses.isEmpty());
    EXPECT_EQ(c.Count("SELECT count(*) FROM pg_stat_user_tables WHERE schemaname IN " +
                      SchemaList() + " AND last_vacuum IS NOT NULL"),
              0);
}

TEST(ServerCompress, AUserWhoDoesNotOwnTheTablesIsToldSoInsteadOfANothingDone) {
    ServerClinic c;
    const QString visitor = QStringLiteral("visitor_%1").arg(QCoreApplication::applicationPid());
    c.database.Run([&](QSqlDatabase& db) {
        Execute(db, QStringLiteral("DROP ROLE IF EXISTS %1").arg(visitor));
        Execute(db, QStringLiteral("CREATE ROLE %1 LOGIN").arg(visitor));
    });
    ServerSettings asVisitor = c.Server();
    asVisitor.User = visitor;
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::Yes, Answer::Ok};
    ServerMaintenanceLogic(asVisitor, host, prompts).CompressDatabase();
    c.database.Run([&](QSqlDatabase& db) { Execute(db, "DROP ROLE " + visitor); });

    ASSERT_EQ(prompts.boxes.size(), 2u);
    EXPECT_TRUE(prompts.boxes[1].text.startsWith("Repair unsuccessful!\rError number: 3000\r"))
        << prompts.boxes[1].text.toStdString();
    EXPECT_TRUE(prompts.boxes[1].text.contains("does not own library.exerciselibrary"))
        << prompts.boxes[1].text.toStdString();
    EXPECT_EQ(c.Count("SELECT count(*) FROM pg_stat_user_tables WHERE schemaname IN " +
                      SchemaList() + " AND last_vacuum IS NOT NULL"),
              0);
}

TEST(ServerRepair, ASoundServerIsReadInFullAndTheBoxSaysWhatWasChecked) {
    ServerClinic c;
    c.State().Program.PatientID = 2;
    qint64 rows = 0;
    for (const Store store : kAllStores)
        for (const TableShape& table : StoreTables(store))
            rows += c.Count(QStringLiteral("SELECT count(*) FROM %1.%2")
                                .arg(StoreSchemaName(store), QLatin1String(table.Name)));
    ASSERT_GT(rows, 100); // the delivered library
    const std::string before = c.Content();
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::Yes, Answer::Ok};
    ServerMaintenanceLogic(c.Server(), host, prompts).RepairDatabase();

    ASSERT_EQ(prompts.boxes.size(), 2u);
    EXPECT_EQ(prompts.boxes[0].text, "Repair the TVX database?");
    EXPECT_EQ(prompts.boxes[0].title, "Repair Database");
    EXPECT_EQ(prompts.boxes[1].title, "Repair Database");
    EXPECT_EQ(prompts.boxes[1].style, msg::OkOnly);
    const QString& text = prompts.boxes[1].text;
    EXPECT_TRUE(text.startsWith("Check completed!\r\r")) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("%1 tables with %2 rows").arg(TableCount()).arg(rows)))
        << text.toStdString();
    EXPECT_TRUE(text.contains(c.Server().Describe()));
    EXPECT_TRUE(text.contains("write-ahead log")) << text.toStdString();
    EXPECT_EQ(host.calls, QStringList({"busy", "idle"}));
    EXPECT_TRUE(host.statuses.contains(" Checking library.ExerciseLibrary..."));
    EXPECT_EQ(host.statuses.last(), Shell::kReady);
    EXPECT_EQ(c.State().Program.PatientID, 2);
    EXPECT_EQ(c.Content(), before);
}

TEST(ServerRepair, AServerWithATableMissingGoesToTheTrapBox) {
    ServerClinic c;
    c.database.Run([](QSqlDatabase& db) { Execute(db, "DROP TABLE program.items"); });
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::Yes, Answer::Ok};
    ServerMaintenanceLogic(c.Server(), host, prompts).RepairDatabase();

    ASSERT_EQ(prompts.boxes.size(), 2u);
    EXPECT_EQ(prompts.boxes[1].title, "TVX Regimenter");
    EXPECT_EQ(prompts.boxes[1].style, msg::OkOnly);
    EXPECT_TRUE(prompts.boxes[1].text.startsWith("Repair unsuccessful!\rError number: 3000\r"))
        << prompts.boxes[1].text.toStdString();
    EXPECT_TRUE(prompts.boxes[1].text.contains("program.Items"))
        << prompts.boxes[1].text.toStdString();
    EXPECT_EQ(host.calls, QStringList({"busy", "idle"}));
    EXPECT_EQ(host.statuses.last(), Shell::kReady);
}

TEST(ServerRepair, NoDoesNothing) {
    ServerClinic c;
    FakeMaintenanceHost host(c.State());
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::No};
    ServerMaintenanceLogic(c.Server(), host, prompts).RepairDatabase();
    EXPECT_EQ(prompts.boxes.size(), 1u);
    EXPECT_TRUE(host.calls.isEmpty());
    EXPECT_TRUE(host.statuses.isEmpty());
}

TEST(ServerBackup, TheArchiveHoldsOneDumpOfTheStoresAndTheDatabasesStayOpen) {
    ServerBackupForm f;
    f.clinic.State().Program.PatientID = 3;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();

    ASSERT_EQ(f.prompts.boxes.size(), 2u);
    EXPECT_EQ(f.prompts.boxes[0].text, "Backup completed");
    EXPECT_EQ(f.prompts.boxes[0].title, "Backup Status");
    EXPECT_EQ(f.prompts.boxes[1].text, "All files in the archive are OK.");
    const std::vector<ZipEntryInfo> entries = ListArchive(f.Archive(), {});
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].Name, "Tarvex Server.dump");
    EXPECT_TRUE(IsOwnerOnly(f.Archive()));
    ASSERT_EQ(f.list.RowCount(), 1);
    EXPECT_EQ(f.list.Text(0, 0), "Tarvex Server.dump");
    EXPECT_EQ(f.logic.FileCount(), 1);
    // Never closed, never reset: the work of the day goes on while the dump is read.
    EXPECT_EQ(f.host.calls, QStringList({"busy", "idle"}));
    EXPECT_TRUE(f.clinic.State().Dbs.IsOpen());
    EXPECT_EQ(f.clinic.State().Program.PatientID, 3);
    EXPECT_EQ(f.host.statuses.first(), " Reading the databases from the server...");
    EXPECT_EQ(f.host.statuses.last(), "Ready");
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
    // The entry is a dump of the three schemas that pg_restore reads.
    const QString out = f.dir.filePath("out.dump");
    ExtractEntry(f.Archive(), entries[0].Name, {}, out);
    const ToolRun list = RunTool("pg_restore", {"--list", out});
    EXPECT_EQ(list.exitCode, 0) << list.output.toStdString();
    for (const char* schema : {"program", "library", "picklist"})
        EXPECT_TRUE(list.output.contains(QStringLiteral("SCHEMA - %1 ").arg(schema))) << schema;
    EXPECT_TRUE(list.output.contains("TABLE DATA library exerciselibrary"));
}

TEST(ServerBackup, WithoutPgDumpOnTheWorkstationTheBoxSaysSoAndNoArchiveIsWritten) {
    ServerBackupForm f;
    QTemporaryDir emptyBin;
    {
        const ScopedPath path(emptyBin.path());
        f.prompts.answers = {Answer::Ok};
        f.logic.cmdBackup();
    }
    ASSERT_EQ(f.prompts.boxes.size(), 1u);
    EXPECT_EQ(f.prompts.boxes[0].title, "Backup Error");
    EXPECT_EQ(f.prompts.boxes[0].style, msg::OkOnly | msg::Critical);
    const QString& text = f.prompts.boxes[0].text;
    EXPECT_TRUE(text.startsWith("The backup could not be made.\r\rThe program pg_dump could not "
                                "be started"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("(Debian package postgresql-client)")) << text.toStdString();
    EXPECT_TRUE(text.endsWith("Nothing was written to the backup folder.")) << text.toStdString();
    EXPECT_FALSE(QFileInfo::exists(f.Archive()));
    EXPECT_TRUE(QDir(f.target).entryList(QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
    EXPECT_EQ(f.host.calls, QStringList({"busy", "idle"}));
    EXPECT_EQ(f.host.statuses.last(), "Ready");
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}

TEST(ServerBackup, ADumpTheServerRefusesGivesWhatPgDumpSaidAndKeepsTheLastArchive) {
    ServerBackupForm f;
    f.BackUp();
    const QByteArray good = ReadAll(f.Archive());
    ServerSettings missing = f.clinic.Server();
    missing.Database = QStringLiteral("no_such_clinic");
    f.logic.UseServer(missing, f.clinic.tools);
    f.prompts.answers = {Answer::Ok};
    f.logic.cmdBackup();

    ASSERT_EQ(f.prompts.boxes.size(), 1u);
    EXPECT_EQ(f.prompts.boxes[0].title, "Backup Error");
    const QString& text = f.prompts.boxes[0].text;
    EXPECT_TRUE(text.contains("pg_dump could not read the databases from the server (" +
                              missing.Describe() + ")"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("database \"no_such_clinic\" does not exist")) << text.toStdString();
    EXPECT_EQ(ReadAll(f.Archive()), good);
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
}

TEST(ServerBackup, AbortWhilePgDumpWaitsStopsItAndKeepsTheLastArchive) {
    ServerBackupForm f;
    f.BackUp();
    const QByteArray good = ReadAll(f.Archive());
    // Another workstation changes a table's shape: pg_dump waits for it, and the user aborts.
    OwnedConnection other(OpenServerDatabase(f.clinic.Server(), "other-workstation"));
    Transaction holding(other.Db());
    Execute(other.Db(), "LOCK TABLE program.patient IN ACCESS EXCLUSIVE MODE");
    f.host.events = 0;
    f.host.onEvents = [&](int events) {
        if (events == 3)
            f.logic.cmdAbort();
    };
    f.prompts.answers = {Answer::Yes, Answer::Ok};
    QElapsedTimer took;
    took.start();
    f.logic.cmdBackup();

    EXPECT_LT(took.elapsed(), f.clinic.tools.LockWaitMs);
    ASSERT_EQ(f.prompts.boxes.size(), 2u);
    EXPECT_EQ(f.prompts.boxes[0].title, "Abort");
    EXPECT_EQ(f.prompts.boxes[1].text, "An error occurred during the backup procedure");
    EXPECT_EQ(f.prompts.boxes[1].title, "Backup Error: 190");
    EXPECT_EQ(ReadAll(f.Archive()), good);
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}

TEST(ServerBackup, ATableHeldTooLongEndsTheDumpWithWhatPgDumpSaid) {
    ServerBackupForm f;
    ServerTools quick = f.clinic.tools;
    quick.LockWaitMs = 500;
    f.logic.UseServer(f.clinic.Server(), quick);
    OwnedConnection other(OpenServerDatabase(f.clinic.Server(), "other-workstation"));
    Transaction holding(other.Db());
    Execute(other.Db(), "LOCK TABLE library.exerciselibrary IN ACCESS EXCLUSIVE MODE");
    f.prompts.answers = {Answer::Ok};
    f.logic.cmdBackup();

    ASSERT_EQ(f.prompts.boxes.size(), 1u);
    EXPECT_EQ(f.prompts.boxes[0].title, "Backup Error");
    const QString& text = f.prompts.boxes[0].text;
    EXPECT_TRUE(text.startsWith("The backup could not be made.\r\rThe server is busy: another "
                                "workstation held a table of the databases for more than 0.5 "
                                "seconds, so the backup gave up."))
        << text.toStdString();
    EXPECT_TRUE(text.contains("LOCK TABLE library.exerciselibrary")) << text.toStdString();
    EXPECT_FALSE(QFileInfo::exists(f.Archive()));
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
}

TEST(ServerRestore, TheRowsOfTheBackupComeBackAfterTheDaysChanges) {
    ServerBackupForm f;
    InsertRow(f.clinic.State().Dbs.ProgramDb, "Patient", {{"FullName", "Tanaka, Hugo"}});
    f.password.text = QStringLiteral("s3cret");
    f.BackUp();
    ASSERT_TRUE(ListArchive(f.Archive(), "s3cret").at(0).Encrypted);
    const std::string backedUp = f.clinic.Content();
    f.clinic.Change();
    ASSERT_NE(f.clinic.Content(), backedUp);
    f.clinic.State().Program.PatientID = 2;

    ServerRestoreForm r(f.clinic);
    r.logic.StartFolder = f.target;
    r.dialog.answers = {f.Archive()};
    r.prompts.inputs = {QStringLiteral("s3cret")};
    r.prompts.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();

    ASSERT_EQ(r.prompts.boxes.size(), 3u);
    EXPECT_EQ(r.dialog.requests.at(0).InitDir, f.target);
    EXPECT_EQ(r.prompts.boxes[0].style, -1); // the password
    const auto& question = r.prompts.boxes[1];
    EXPECT_EQ(question.title, "Restore Databases");
    EXPECT_EQ(question.style, msg::YesNo | msg::Question | msg::DefaultButton2);
    EXPECT_TRUE(question.text.startsWith("Restore the TVX databases on the server (" +
                                         f.clinic.Server().Describe() + ") from '" + f.Archive() +
                                         "'?\r\rTarvex Server.dump   "))
        << question.text.toStdString();
    EXPECT_TRUE(question.text.contains("Close TVX Regimenter on the other workstations first."));
    EXPECT_EQ(r.prompts.boxes[2].text, "The databases were restored from '" + f.Archive() + "'.");
    EXPECT_EQ(r.host.calls, QStringList({"busy", "idle", "close", "busy", "idle", "busy", "open",
                                         "idle", "reset"}));
    EXPECT_EQ(f.clinic.Content(), backedUp);
    EXPECT_TRUE(f.clinic.State().Dbs.IsOpen());
    EXPECT_FALSE(f.clinic.State().Program.PatientID.has_value());
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
    // The reopened databases take new rows with keys after the restored ones.
    const int highest = f.clinic.Count("SELECT max(patientid) FROM program.patient");
    EXPECT_GT(InsertRow(f.clinic.State().Dbs.ProgramDb, "Patient", {{"FullName", "New, One"}}),
              highest);
}

TEST(ServerRestore, AnArchiveWhoseDumpIsNoDumpIsRefusedBeforeAnythingCloses) {
    ServerClinic c;
    const std::string before = c.Content();
    QTemporaryDir made;
    const QString archive =
        ZipOf(made.path(), {{"Tarvex Server.dump", QByteArray("this is no dump\n").repeated(50)}});
    ServerRestoreForm r(c);
    r.dialog.answers = {archive};
    r.prompts.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();

    ASSERT_EQ(r.prompts.boxes.size(), 2u);
    const QString& text = r.prompts.boxes[1].text;
    EXPECT_TRUE(text.startsWith("Restore unsuccessful!\rError number: 3000\rThe backup holds no "
                                "dump that pg_restore can read."))
        << text.toStdString();
    EXPECT_TRUE(text.contains("valid archive")) << text.toStdString();
    EXPECT_EQ(r.prompts.boxes[1].style, msg::OkOnly | msg::Critical);
    EXPECT_EQ(r.host.calls, QStringList({"busy", "idle"}));
    EXPECT_EQ(c.Content(), before);
    EXPECT_TRUE(c.State().Dbs.IsOpen());
    EXPECT_TRUE(c.WorkFolderEmpty());
}

TEST(ServerRestore, AFailureHalfWayRollsEverythingBackAndSaysSo) {
    ServerBackupForm f;
    f.BackUp();
    f.clinic.Change();
    const std::string changed = f.clinic.Content();
    // The server refuses the restore's indexes, which come after its tables were dropped,
    // made again and filled.
    f.clinic.database.Run([](QSqlDatabase& db) {
        Execute(db, "CREATE FUNCTION public.refuse_index() RETURNS event_trigger LANGUAGE "
                    "plpgsql AS $$ BEGIN RAISE EXCEPTION 'no index today'; END $$");
        Execute(db, "CREATE EVENT TRIGGER refuse_index ON ddl_command_end WHEN TAG IN ('CREATE "
                    "INDEX') EXECUTE FUNCTION public.refuse_index()");
    });
    ServerRestoreForm r(f.clinic);
    r.dialog.answers = {f.Archive()};
    r.prompts.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();

    ASSERT_EQ(r.prompts.boxes.size(), 2u);
    const QString& text = r.prompts.boxes[1].text;
    EXPECT_TRUE(text.startsWith("Restore unsuccessful!\rError number: 3000\rpg_restore could not "
                                "put the backup on the server"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("no index today")) << text.toStdString();
    EXPECT_TRUE(text.endsWith("\r\rThe databases are as they were before.")) << text.toStdString();
    EXPECT_EQ(r.host.calls,
              QStringList({"busy", "idle", "close", "busy", "idle", "open", "reset"}));
    EXPECT_EQ(f.clinic.Content(), changed);
    EXPECT_TRUE(f.clinic.State().Dbs.IsOpen());
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
}

TEST(ServerRestore, ATableHeldByAnotherWorkstationEndsTheRestoreCleanly) {
    ServerBackupForm f;
    f.BackUp();
    f.clinic.Change();
    const std::string changed = f.clinic.Content();
    // Another workstation in the middle of its work on the patients.
    OwnedConnection other(OpenServerStore(f.clinic.Server(), Store::Program, "other-workstation"));
    Transaction working(other.Db());
    QSqlQuery reading = OpenQuery(other.Db(), "SELECT count(*) FROM Patient");
    ASSERT_TRUE(reading.next());
    ServerRestoreForm r(f.clinic);
    r.logic.Tools.LockWaitMs = 1000;
    r.dialog.answers = {f.Archive()};
    r.prompts.answers = {Answer::Yes, Answer::Ok};
    QElapsedTimer took;
    took.start();
    r.logic.RestoreDatabases();

    EXPECT_LT(took.elapsed(), 20000);
    ASSERT_EQ(r.prompts.boxes.size(), 2u);
    const QString& text = r.prompts.boxes[1].text;
    EXPECT_TRUE(text.contains("The server is busy: another workstation held a table of the "
                              "databases for more than 1 second, so the restore gave up."))
        << text.toStdString();
    EXPECT_TRUE(text.contains("Close TVX Regimenter on the other workstations"))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith("The databases are as they were before.")) << text.toStdString();
    EXPECT_EQ(f.clinic.Content(), changed);
    EXPECT_TRUE(f.clinic.State().Dbs.IsOpen());
}

TEST(ServerRestore, CancelInTheChooserOrNoToTheQuestionChangesNothing) {
    ServerBackupForm f;
    f.BackUp();
    f.clinic.Change();
    const std::string changed = f.clinic.Content();
    f.clinic.State().Program.PatientID = 2;
    ServerRestoreForm r(f.clinic);
    r.dialog.answers = {std::nullopt};
    r.logic.RestoreDatabases();
    EXPECT_TRUE(r.prompts.boxes.empty());

    r.dialog.answers = {f.Archive()};
    r.prompts.answers = {Answer::No};
    r.logic.RestoreDatabases();
    ASSERT_EQ(r.prompts.boxes.size(), 1u);
    EXPECT_EQ(r.dialog.requests.size(), 2u);
    EXPECT_TRUE(r.host.calls.isEmpty());
    EXPECT_EQ(f.clinic.Content(), changed);
    EXPECT_EQ(f.clinic.State().Program.PatientID, 2);
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
}

TEST(ServerRestore, ABackupOfTheFilesIsRefusedWithWhereSuchFilesGo) {
    ServerClinic c;
    const std::string before = c.Content();
    QTemporaryDir made;
    const QString archive =
        ZipOf(made.path(), {{"Tarvex.MDB", ReadAll(c.folder.File("Tarvex.MDB"))},
                            {"Picklist.MDB", QByteArray("x")}});
    ServerRestoreForm r(c);
    r.dialog.answers = {archive};
    r.prompts.answers = {Answer::Ok};
    r.logic.RestoreDatabases();
    ASSERT_EQ(r.prompts.boxes.size(), 1u);
    const QString& text = r.prompts.boxes[0].text;
    EXPECT_TRUE(
        text.startsWith("The archive '" + archive + "' does not hold \"Tarvex Server.dump\""))
        << text.toStdString();
    EXPECT_TRUE(text.contains("tarvex-migrate")) << text.toStdString();
    EXPECT_TRUE(r.host.calls.isEmpty());
    EXPECT_EQ(c.Content(), before);
}

TEST(ServerRestore, ABackupOfANewerReleaseIsRefusedBeforeAnythingCloses) {
    ServerBackupForm f;
    f.clinic.database.Run(
        [](QSqlDatabase& db) { Execute(db, "UPDATE library.version SET version = '9.1'"); });
    f.BackUp();
    f.clinic.database.Run(
        [](QSqlDatabase& db) { Execute(db, "UPDATE library.version SET version = '3.8'"); });
    const std::string before = f.clinic.Content();
    ServerRestoreForm r(f.clinic);
    r.dialog.answers = {f.Archive()};
    r.prompts.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();

    ASSERT_EQ(r.prompts.boxes.size(), 2u);
    EXPECT_EQ(r.prompts.boxes[1].text,
              "Restore unsuccessful!\rError number: 3000\rThe backup was made by a newer release "
              "of TVX Regimenter: its library store is at version 9.1, and this program knows "
              "version 3.8 at most.");
    EXPECT_EQ(r.host.calls, QStringList({"busy", "idle"}));
    EXPECT_EQ(f.clinic.Content(), before);
    EXPECT_TRUE(f.clinic.WorkFolderEmpty());
}

TEST(ServerDump, TheDumpIsPrivateToTheUserAndSoIsItsFolder) {
    ServerClinic c;
    const DumpFolder work(c.tools);
    EXPECT_TRUE(work.Path().startsWith(c.work.path() + "/"));
    namespace fs = std::filesystem;
    EXPECT_EQ(fs::status(QFile::encodeName(work.Path()).toStdString()).permissions(),
              fs::perms::owner_all);
    ASSERT_TRUE(DumpServerStores(c.Server(), work.DumpPath(), c.tools, [] { return true; }));
    EXPECT_EQ(QFileInfo(work.DumpPath()).fileName(), "Tarvex Server.dump");
    EXPECT_TRUE(IsOwnerOnly(work.DumpPath()));
    EXPECT_NO_THROW(CheckServerDump(work.DumpPath(), c.tools));
    // A tick that says stop ends the dump and leaves no file.
    const QString stopped = QDir(work.Path()).filePath("stopped.dump");
    OwnedConnection other(OpenServerDatabase(c.Server(), "other-workstation"));
    Transaction holding(other.Db());
    Execute(other.Db(), "LOCK TABLE picklist.label IN ACCESS EXCLUSIVE MODE");
    EXPECT_FALSE(DumpServerStores(c.Server(), stopped, c.tools, [] { return false; }));
    EXPECT_FALSE(QFileInfo::exists(stopped));
}
