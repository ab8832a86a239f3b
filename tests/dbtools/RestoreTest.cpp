#include "MaintenanceFakes.h"
#include "support/TestFolder.h"

#include "data/Sql.h"
#include "dbtools/RestoreLogic.h"
#include "dbtools/ZipArchive.h"
#include "fakes/FakeControls.h"
#include "media/MediaFakes.h"
#include "support/FileDialog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <gtest/gtest.h>
#include <map>
#include <zip.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// An archive of the given names and contents, written with libzip as it is.
void MakeZip(const QString& path, const std::map<std::string, QByteArray>& files) {
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    ASSERT_NE(archive, nullptr);
    std::vector<QByteArray> keep;
    for (const auto& [name, bytes] : files) {
        keep.push_back(bytes);
        zip_source_t* source = zip_source_buffer(archive, keep.back().constData(),
                                                 static_cast<zip_uint64_t>(keep.back().size()), 0);
        ASSERT_GE(zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
    }
    ASSERT_EQ(zip_close(archive), 0);
}

struct Restore {
    Restore() : host(folder.state), logic(host, prompter, dialog) {
        OpenDatabases(folder.state);
        logic.Now = [] { return QDateTime(QDate(2026, 11, 24), QTime(9, 30, 5)); };
        backups.setAutoRemove(true);
    }
    ~Restore() { CloseDatabases(folder.state); }

    // A backup of the folder's three databases as they are now.
    QString Backup(const QString& password = QString()) {
        host.CloseDatabases();
        const QString archive = QDir(backups.path()).filePath("Tarvex Backup.ZIP");
        QuietZipEvents events;
        EXPECT_EQ(ZipAddFiles({archive,
                               folder.Path(),
                               {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"},
                               password},
                              events),
                  0);
        host.OpenDatabases();
        host.calls.clear();
        return archive;
    }

    QString Dump(const QString& file) {
        QProcess dump;
        dump.start("sqlite3", {folder.File(file), ".dump"});
        dump.waitForFinished(-1);
        return QString::fromUtf8(dump.readAllStandardOutput());
    }

    int Patients() {
        QSqlQuery q = OpenQuery(folder.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Patient");
        return q.next() ? q.value(0).toInt() : -1;
    }

    void AddPatient(const QString& name) {
        InsertRow(folder.state.Dbs.ProgramDb, "Patient", {{"FullName", name}});
    }

    TestFolder folder;
    QTemporaryDir backups;
    fakes::ScriptedPrompter prompter;
    ScriptedOpenDialog dialog;
    FakeMaintenanceHost host;
    RestoreLogic logic;
};

} // namespace

TEST(Restore, GivesBackExactlyTheDataOfTheBackupAndKeepsThePresentFiles) {
    Restore r;
    r.AddPatient("Tanaka, Hugo");
    const QString archive = r.Backup();
    r.host.CloseDatabases();
    const QString program = r.Dump("Tarvex.MDB");
    const QString library = r.Dump("Exercise Library.MDB");
    r.host.OpenDatabases();
    r.host.calls.clear();
    r.AddPatient("Jensen, Eve");
    Execute(r.folder.state.Dbs.LibraryDb, "DELETE FROM ExerciseLibrary WHERE ExerciseID = 5");
    r.folder.state.Program.PatientID = 2;

    r.dialog.answers = {archive};
    r.prompter.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();

    ASSERT_EQ(r.prompter.boxes.size(), 2u);
    EXPECT_EQ(r.prompter.boxes[0].title, "Restore Databases");
    EXPECT_TRUE(r.prompter.boxes[0].text.contains("Tarvex.MDB"));
    EXPECT_EQ(r.prompter.boxes[0].style, msg::YesNo | msg::Question | msg::DefaultButton2);
    EXPECT_EQ(r.prompter.boxes[1].text, "The databases were restored from '" + archive + "'.");
    EXPECT_EQ(r.host.calls, QStringList({"busy", "idle", "close", "open", "reset"}));
    EXPECT_EQ(r.Patients(), 1);
    r.host.CloseDatabases();
    EXPECT_EQ(r.Dump("Tarvex.MDB"), program);
    EXPECT_EQ(r.Dump("Exercise Library.MDB"), library);
    const QString kept = r.folder.File("Tarvex (before restore 2026-11-24 093005).MDB");
    EXPECT_TRUE(QFileInfo::exists(kept));
    EXPECT_TRUE(QFileInfo::exists(
        r.folder.File("Exercise Library (before restore 2026-11-24 093005).MDB")));
    EXPECT_TRUE(QDir(r.folder.Path()).entryList({"*.restore*"}).isEmpty());
}

TEST(Restore, AnEncryptedBackupAsksForItsPasswordAndAWrongOneChangesNothing) {
    Restore r;
    const QString archive = r.Backup("s3cret pass");
    r.AddPatient("Rossi, Ida");
    const int patients = r.Patients();
    r.dialog.answers = {archive, archive};
    r.prompter.inputs = {QString("wrong")};
    r.prompter.answers = {Answer::Ok};
    r.logic.RestoreDatabases();
    ASSERT_GE(r.prompter.boxes.size(), 2u);
    EXPECT_TRUE(r.prompter.boxes[0].text.contains("password"));
    EXPECT_EQ(r.Patients(), patients);
    EXPECT_TRUE(r.folder.state.Dbs.IsOpen());

    r.prompter.boxes.clear();
    r.prompter.inputs = {QString("s3cret pass")};
    r.prompter.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();
    EXPECT_EQ(r.prompter.boxes.back().text, "The databases were restored from '" + archive + "'.");
    EXPECT_EQ(r.Patients(), patients - 1);
}

TEST(Restore, CancelAtTheChooserOrNoAtTheQuestionChangesNothing) {
    Restore r;
    const QString archive = r.Backup();
    r.AddPatient("Müller, Grace");
    r.logic.RestoreDatabases(); // the chooser gives nothing
    EXPECT_TRUE(r.prompter.boxes.empty());
    r.dialog.answers = {archive};
    r.prompter.answers = {Answer::No};
    r.logic.RestoreDatabases();
    EXPECT_EQ(r.prompter.boxes.size(), 1u);
    EXPECT_TRUE(r.host.calls.isEmpty());
    EXPECT_EQ(r.Patients(), 1);
    EXPECT_TRUE(QDir(r.folder.Path()).entryList({"*before restore*", "*.restore*"}).isEmpty());
}

TEST(Restore, BadArchivesAreRefusedWithTheDatabasesUntouched) {
    Restore r;
    r.AddPatient("Nguyen, Ann");
    const QString program = ReadAll(r.folder.File("Tarvex.MDB")).toBase64();
    const QString good = r.Backup();
    const QDir dir(r.backups.path());
    // Not a zip; a zip cut short; a zip without the three files.
    QFile notZip(dir.filePath("not.zip"));
    ASSERT_TRUE(notZip.open(QIODevice::WriteOnly));
    notZip.write("this is a letter to the clinic, not an archive");
    notZip.close();
    QFile cut(dir.filePath("cut.zip"));
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(ReadAll(good).left(ReadAll(good).size() / 2));
    cut.close();
    MakeZip(dir.filePath("other.zip"), {{"notes.txt", "hello"}});
    // The files under hostile names only; a file of the right name that is no database.
    MakeZip(dir.filePath("hostile.zip"), {{"../Tarvex.MDB", ReadAll(r.folder.File("Tarvex.MDB"))},
                                          {"/tmp/Exercise Library.MDB", "x"},
                                          {"sub/Picklist.MDB", "y"}});
    MakeZip(dir.filePath("fake.zip"), {{"Tarvex.MDB", QByteArray(8192, 'q')},
                                       {"Exercise Library.MDB", QByteArray(8192, 'q')},
                                       {"Picklist.MDB", QByteArray(8192, 'q')}});
    for (const char* name : {"not.zip", "cut.zip", "other.zip", "hostile.zip", "fake.zip"}) {
        SCOPED_TRACE(name);
        r.prompter.boxes.clear();
        r.host.calls.clear();
        r.dialog.answers = {dir.filePath(name)};
        r.prompter.answers = {Answer::Yes, Answer::Ok};
        r.logic.RestoreDatabases();
        ASSERT_FALSE(r.prompter.boxes.empty());
        EXPECT_NE(r.prompter.boxes.back().text.left(30), "The databases were restored");
        EXPECT_FALSE(r.host.calls.contains("close"));
        EXPECT_TRUE(r.folder.state.Dbs.IsOpen());
        EXPECT_EQ(r.Patients(), 1);
        EXPECT_TRUE(QDir(r.folder.Path()).entryList({"*.restore*", "*before restore*"}).isEmpty());
    }
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(r.folder.Path()).dir().filePath("Tarvex.MDB")));
}

TEST(Restore, ExtraAndHostileNamesBesideTheThreeFilesAreNeverWritten) {
    Restore r;
    const QString good = r.Backup();
    const QDir dir(r.backups.path());
    std::map<std::string, QByteArray> files;
    for (const char* name : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"})
        files[name] = ReadAll(r.folder.File(name));
    files["../escaped.txt"] = "out";
    files["/tmp/tarvex-absolute.txt"] = "out";
    MakeZip(dir.filePath("extra.zip"), files);
    r.AddPatient("Kowalski, Jon");
    r.dialog.answers = {dir.filePath("extra.zip")};
    r.prompter.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();
    EXPECT_TRUE(r.prompter.boxes[0].text.contains("2 other files"));
    EXPECT_EQ(r.prompter.boxes.back().text.left(27), "The databases were restored");
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(r.folder.Path()).dir().filePath("escaped.txt")));
    EXPECT_FALSE(QFileInfo::exists("/tmp/tarvex-absolute.txt"));
    EXPECT_EQ(r.Patients(), 0);
}

TEST(Restore, ADatabaseThatDoesNotOpenAfterwardsPutsThePresentFilesBack) {
    Restore r;
    // A backup whose library carries a version the walk cannot read, and columns that
    // make its first step fail.
    r.host.CloseDatabases();
    r.folder.WithDatabase("Exercise Library.MDB", [](QSqlDatabase& db) {
        Execute(db, "UPDATE Version SET Version = 'abc'");
    });
    r.host.calls.clear();
    const QString archive = QDir(r.backups.path()).filePath("Tarvex Backup.ZIP");
    QuietZipEvents events;
    ASSERT_EQ(ZipAddFiles({archive,
                           r.folder.Path(),
                           {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"},
                           QString()},
                          events),
              0);
    r.folder.WithDatabase("Exercise Library.MDB", [](QSqlDatabase& db) {
        Execute(db, "UPDATE Version SET Version = '3.8'");
    });
    r.host.OpenDatabases();
    r.AddPatient("Okafor, Femi");
    r.host.calls.clear();
    r.dialog.answers = {archive};
    r.prompter.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();
    EXPECT_TRUE(r.prompter.boxes.back().text.startsWith("Restore unsuccessful!"));
    EXPECT_TRUE(r.prompter.boxes.back().text.contains("as they were before"));
    EXPECT_TRUE(r.folder.state.Dbs.IsOpen());
    EXPECT_EQ(r.Patients(), 1);
    EXPECT_TRUE(QDir(r.folder.Path()).entryList({"*before restore*", "*.restore*"}).isEmpty());
}

TEST(Restore, TheFilesAreFoundInTheArchiveWithoutRegardToCase) {
    Restore r;
    std::map<std::string, QByteArray> files;
    files["TARVEX.MDB"] = ReadAll(r.folder.File("Tarvex.MDB"));
    files["exercise library.mdb"] = ReadAll(r.folder.File("Exercise Library.MDB"));
    files["Picklist.MDB"] = ReadAll(r.folder.File("Picklist.MDB"));
    const QString archive = QDir(r.backups.path()).filePath("cases.zip");
    MakeZip(archive, files);
    r.AddPatient("García, Ida");
    r.dialog.answers = {archive};
    r.prompter.answers = {Answer::Yes, Answer::Ok};
    r.logic.RestoreDatabases();
    EXPECT_EQ(r.prompter.boxes.back().text.left(27), "The databases were restored");
    EXPECT_EQ(r.Patients(), 0);
    EXPECT_TRUE(QFileInfo::exists(r.folder.File("Tarvex.MDB")));
    EXPECT_FALSE(QFileInfo::exists(r.folder.File("TARVEX.MDB")));
}
