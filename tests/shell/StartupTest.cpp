#include "shell/Startup.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "fakes/FakeSettingsStore.h"
#include "program/ProgramStore.h"
#include "shell/AppFolder.h"
#include "shell/ShellHarness.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::ShellHarness;

namespace {

struct StartupRun {
    explicit StartupRun(const QString& appFolder) : shell(state) {
        state.AppFolder = appFolder;
        state.DeliveredFolder = tarvex::testing::DeliveredFolder();
        store.values["Options/ShowTips"] = "False";
        host.onWorkspace = [this] { LoadLibraryCache(state); };
    }
    ~StartupRun() { CloseDatabases(state); }
    bool Start() { return RunStartup(state, shell.shell, store, host, prompter); }

    AppState state;
    ShellHarness shell;
    FakeSettingsStore store;
    FakeStartupHost host;
    ScriptedPrompter prompter;
};

} // namespace

TEST(Startup, AFirstStartInAnEmptyFolderCreatesTheDatabasesAndReachesTheReadyState) {
    QTemporaryDir dir;
    const QString appFolder = dir.filePath("Tarvex");
    StartupRun run(appFolder);
    ASSERT_TRUE(run.Start());
    for (const QString& name : DeliveredFileNames())
        EXPECT_TRUE(QFile::exists(QDir(appFolder).filePath(name))) << name.toStdString();
    EXPECT_EQ(run.shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(run.shell.shell.MenuMode(), MenuMode::All);
    EXPECT_EQ(run.shell.title.title, "TVX Regimenter"); // the title is not set during start-up
    EXPECT_EQ(run.shell.ToolbarOn(), QStringList({"Patient", "Programs", "Help"}));
    EXPECT_EQ(run.shell.MenuOn(), Shell::RestrictedMenuKeys());
    EXPECT_GT(run.state.Library.NumChoices, 0);
    EXPECT_EQ(run.state.TollFreeOrder, "1-888-555-0147");
    EXPECT_EQ(run.state.TollFreeFax, "1-800-555-0142");
    EXPECT_FALSE(run.state.CoverText.isEmpty());
    EXPECT_TRUE(run.state.CoverText.endsWith("\r\n"));
    EXPECT_EQ(run.state.Print.PrintScale, 1.0);
    EXPECT_EQ(run.state.WorkspaceMode, WorkspacePurpose::None);
    EXPECT_FALSE(run.state.Program.PatientID.has_value());
    EXPECT_TRUE(run.prompter.boxes.empty());
}

TEST(Startup, RunsItsStepsInOrder) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    run.store.values["Options/ShowTips"] = "True";
    run.store.values["Options/Picture"] = dir.filePath("no-pictures") + "/";
    ASSERT_TRUE(run.Start());
    // The picture folder holds no pictures, so the media window is offered.
    EXPECT_EQ(run.host.calls,
              QStringList({"instance", "splash", "main", "workspace", "tip", "checkmedia"}));
}

TEST(Startup, WithTipsOffNoTipWindowAppears) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    ASSERT_TRUE(run.Start());
    EXPECT_FALSE(run.host.calls.contains("tip"));
}

TEST(Startup, APictureSetInPlaceNeedsNoMediaCheck) {
    QTemporaryDir dir;
    QDir(dir.path()).mkpath("CD/PICTURE");
    QFile picture(dir.filePath("CD/PICTURE/385_1.JPG"));
    ASSERT_TRUE(picture.open(QIODevice::WriteOnly));
    picture.close();
    StartupRun run(dir.filePath("app"));
    run.store.values["Options/Picture"] = dir.filePath("CD/PICTURE") + "/";
    ASSERT_TRUE(run.Start());
    EXPECT_FALSE(run.host.calls.contains("checkmedia"));
}

TEST(Startup, ASecondCopyEndsAtOnceWithoutAWord) {
    QTemporaryDir dir;
    StartupRun run(dir.filePath("app"));
    run.host.anotherInstance = true;
    EXPECT_FALSE(run.Start());
    EXPECT_EQ(run.host.calls, QStringList({"instance"}));
    EXPECT_TRUE(run.prompter.boxes.empty());
    EXPECT_FALSE(run.state.Dbs.IsOpen());
    EXPECT_EQ(run.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
}

TEST(Startup, APreviousDatabaseIsReportedAndStartUpGoesOn) {
    QTemporaryDir dir;
    QFile old(dir.filePath("tvx.mdb"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.close();
    StartupRun run(dir.path());
    run.prompter.answers = {Answer::Ok};
    ASSERT_TRUE(run.Start());
    ASSERT_EQ(run.prompter.boxes.size(), 1u);
    EXPECT_EQ(run.prompter.boxes[0].title, "Previous Database Detected");
    EXPECT_EQ(run.prompter.boxes[0].text,
              "You have a previous version of the TVX Database.\n"
              "Run the Tarvex Database Ugrade program to import your data.");
    EXPECT_EQ(run.prompter.boxes[0].style, msg::Information);
    EXPECT_EQ(run.shell.shell.MenuMode(), MenuMode::All);
}

TEST(Startup, AMissingDatabaseEndsTheRunWithAFault) {
    tarvex::testing::TestFolder folder;
    ASSERT_TRUE(QFile::remove(folder.File("Tarvex.MDB")));
    // A missing file is copied anew from the delivered ones, so damage the delivered path.
    StartupRun run(folder.Path());
    run.state.DeliveredFolder = folder.File("nowhere");
    EXPECT_THROW(run.Start(), Fault);
}

TEST(Startup, AClinicRowWithoutACardDateEndsTheRun) {
    tarvex::testing::TestFolder folder;
    folder.WithDatabase("Tarvex.MDB", [](QSqlDatabase& db) {
        QSqlQuery(db).exec("INSERT INTO Clinic (Name) VALUES ('No date')");
    });
    StartupRun run(folder.Path());
    EXPECT_THROW(run.Start(), TypeFault);
}

TEST(Unload, ClosesTheDatabasesThenWritesTheOptions) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    ASSERT_TRUE(run.Start());
    run.store.writes.clear();
    run.state.Prefs.ShowTips = true;
    ProgramStore programs(run.state, run.shell.shell, run.prompter);
    RunUnload(run.state, run.store, programs);
    EXPECT_FALSE(run.state.Dbs.IsOpen());
    EXPECT_EQ(run.store.writes.size(), 7);
    EXPECT_EQ(run.store.values["Options/ShowTips"], "True");
}

TEST(Unload, ARunThatEndsAbnormallyLosesTheChangedOptions) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    ASSERT_TRUE(run.Start());
    run.state.Prefs.PrintCallTVX = true; // changed in the dialog; the run then dies
    EXPECT_FALSE(run.store.values.contains("Options/PrintCallTVX"));
}

TEST(PrepareAppFolder, NeverOverwritesAFileThatIsThere) {
    QTemporaryDir dir;
    QFile mine(dir.filePath("cover.txt"));
    ASSERT_TRUE(mine.open(QIODevice::WriteOnly));
    mine.write("our own cover text\n");
    mine.close();
    EXPECT_EQ(PrepareAppFolder(dir.path(), tarvex::testing::DeliveredFolder() + "/templates"), "");
    QFile again(dir.filePath("cover.txt"));
    ASSERT_TRUE(again.open(QIODevice::ReadOnly));
    EXPECT_EQ(again.readAll(), "our own cover text\n");
    EXPECT_TRUE(QFile::exists(dir.filePath("Tarvex.MDB")));
}

TEST(PrepareAppFolder, SaysWhatIsMissing) {
    QTemporaryDir dir;
    const QString problem = PrepareAppFolder(dir.filePath("app"), dir.filePath("no-templates"));
    EXPECT_TRUE(problem.contains("Tarvex.MDB"));
}

TEST(Unload, AModifiedProgramAnsweredNoIsLostAndTheRunStillEnds) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    ASSERT_TRUE(run.Start());
    ProgramStore programs(run.state, run.shell.shell, run.prompter);
    run.state.Program.PatientID = static_cast<int32_t>(
        InsertRow(run.state.Dbs.ProgramDb, "Patient", {{"LastName", "Ng"}, {"FullName", "Ng,"}}));
    run.state.Program.IsNew = true;
    run.state.Program.Modified = true;
    run.prompter.answers = {Answer::No};
    run.store.writes.clear();
    RunUnload(run.state, run.store, programs);
    ASSERT_EQ(run.prompter.boxes.size(), 1u);
    EXPECT_EQ(run.prompter.boxes[0].title, "Exercise Program Modified");
    EXPECT_FALSE(run.state.Dbs.IsOpen());
    EXPECT_EQ(run.store.writes.size(), 7); // the options are written all the same
    int programsStored = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "unload-check");
        db.setDatabaseName(QDir(dir.path()).filePath("Tarvex.MDB"));
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("SELECT COUNT(*) FROM Invoice") && q.next());
        programsStored = q.value(0).toInt();
    }
    QSqlDatabase::removeDatabase("unload-check");
    EXPECT_EQ(programsStored, 0);
}

TEST(Unload, AModifiedProgramAnsweredYesIsSaved) {
    QTemporaryDir dir;
    StartupRun run(dir.path());
    ASSERT_TRUE(run.Start());
    ProgramStore programs(run.state, run.shell.shell, run.prompter);
    run.state.Program.PatientID = static_cast<int32_t>(
        InsertRow(run.state.Dbs.ProgramDb, "Patient", {{"LastName", "Ng"}, {"FullName", "Ng,"}}));
    run.state.Program.IsNew = true;
    run.state.Program.Modified = true;
    run.state.Program.Provider = "Mark Lee, PTA";
    run.prompter.answers = {Answer::Yes};
    RunUnload(run.state, run.store, programs);
    EXPECT_FALSE(run.state.Dbs.IsOpen());
    EXPECT_EQ(run.store.values["Options/Provider"], "Mark Lee, PTA");
}

TEST(PrepareAppFolder, AMissingDatabaseOfAFolderInUseEndsTheStartAndNothingIsCreated) {
    QTemporaryDir dir;
    const QString appFolder = dir.filePath("Tarvex");
    const QString templates = tarvex::testing::DeliveredFolder() + "/templates";
    ASSERT_EQ(PrepareAppFolder(appFolder, templates), "");
    ASSERT_TRUE(QFile::remove(QDir(appFolder).filePath("Tarvex.MDB")));

    const QString problem = PrepareAppFolder(appFolder, templates);
    EXPECT_TRUE(problem.contains("\"Tarvex.MDB\"")) << problem.toStdString();
    EXPECT_TRUE(problem.contains(QDir::toNativeSeparators(appFolder))) << problem.toStdString();
    EXPECT_FALSE(QFile::exists(QDir(appFolder).filePath("Tarvex.MDB")));

    StartupRun run(appFolder);
    try {
        run.Start();
        ADD_FAILURE() << "the start went on without its database";
    } catch (const Fault& fault) {
        EXPECT_EQ(fault.Message(), problem);
    }
    EXPECT_FALSE(QFile::exists(QDir(appFolder).filePath("Tarvex.MDB")));
}

TEST(PrepareAppFolder, AFolderWithoutAnyDatabaseIsFilledAsAtTheFirstStart) {
    QTemporaryDir dir;
    const QString templates = tarvex::testing::DeliveredFolder() + "/templates";
    ASSERT_EQ(PrepareAppFolder(dir.path(), templates), "");
    for (const char* name : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB"})
        EXPECT_TRUE(QFile::exists(dir.filePath(name))) << name;
}

TEST(PrepareAppFolder, TheDataFolderAndItsFilesArePrivateToTheUser) {
    QTemporaryDir dir;
    const QString appFolder = dir.filePath("Tarvex");
    const QString templates = tarvex::testing::DeliveredFolder() + "/templates";
    bool madePrivate = true;
    ASSERT_EQ(PrepareAppFolder(appFolder, templates, &madePrivate), "");
    EXPECT_FALSE(madePrivate); // a new folder is private from the start: nothing to say
    const auto owner = QFile::ReadOwner | QFile::WriteOwner;
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                        QFile::WriteOther | QFile::ExeOther;
    EXPECT_FALSE(QFile::permissions(appFolder) & others);
    for (const char* name : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB", "cover.txt"}) {
        const auto rights = QFile::permissions(QDir(appFolder).filePath(name));
        EXPECT_FALSE(rights & others) << name;
        EXPECT_EQ(rights & owner, owner) << name;
    }
}

TEST(Startup, MakingTheFolderPrivateNeverMakesAReadOnlyDatabaseWritable) {
    QTemporaryDir dir;
    const QString appFolder = dir.filePath("Tarvex");
    ASSERT_EQ(PrepareAppFolder(appFolder, tarvex::testing::DeliveredFolder() + "/templates"), "");
    const QString program = QDir(appFolder).filePath("Tarvex.MDB");
    ASSERT_TRUE(
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    StartupRun run(appFolder);
    try {
        run.Start();
        ADD_FAILURE() << "a read-only database was opened";
    } catch (const DatabaseFault& fault) {
        EXPECT_TRUE(fault.Message().contains("is read-only")) << fault.Message().toStdString();
        EXPECT_TRUE(fault.Message().contains(QDir::toNativeSeparators(program)));
    }
    EXPECT_EQ(QFile::permissions(program) & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser),
              QFile::ReadOwner);
}

TEST(Startup, AnOpenDataFolderOfAnEarlierReleaseIsMadePrivateAndTheStatusLineSaysSo) {
    QTemporaryDir dir;
    const QString appFolder = dir.filePath("Tarvex");
    ASSERT_EQ(PrepareAppFolder(appFolder, tarvex::testing::DeliveredFolder() + "/templates"), "");
    const auto open = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
    ASSERT_TRUE(QFile::setPermissions(appFolder,
                                      open | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther));
    ASSERT_TRUE(QFile::setPermissions(QDir(appFolder).filePath("Tarvex.MDB"), open));
    {
        StartupRun run(appFolder);
        ASSERT_TRUE(run.Start());
        EXPECT_EQ(run.shell.status.panels[0], kMadePrivateText.arg(appFolder));
    }
    EXPECT_EQ(QFile::permissions(appFolder) & (QFile::ReadOther | QFile::ReadGroup), 0);
    EXPECT_EQ(QFile::permissions(QDir(appFolder).filePath("Tarvex.MDB")),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    StartupRun again(appFolder);
    ASSERT_TRUE(again.Start());
    EXPECT_NE(again.shell.status.panels[0], kMadePrivateText.arg(appFolder)); // said once
}

// Installed, the delivered files are read-only: the user's copies must still be theirs to
// change (a picture bench save writes the icons, a save writes the databases).
TEST(PrepareAppFolder, CopiesFromAReadOnlyInstallationAreTheUsersToWrite) {
    QTemporaryDir dir;
    const QString delivered = dir.filePath("share/tarvex");
    const QDir source(tarvex::testing::DeliveredFolder());
    const auto readOnlyFile = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    const auto readOnlyFolder = readOnlyFile | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    for (const char* folder : {"templates", "ICON"}) {
        const QDir from(source.filePath(folder));
        const QString to = QDir(delivered).filePath(folder);
        ASSERT_TRUE(QDir().mkpath(to));
        const QStringList names = from.entryList(QDir::Files);
        ASSERT_FALSE(names.isEmpty()) << folder;
        for (const QString& name : names) {
            const QString copy = QDir(to).filePath(name);
            ASSERT_TRUE(QFile::copy(from.filePath(name), copy));
            ASSERT_TRUE(QFile::setPermissions(copy, readOnlyFile));
        }
        ASSERT_TRUE(QFile::setPermissions(to, readOnlyFolder));
    }

    const QString appFolder = dir.filePath("home/Tarvex");
    ASSERT_EQ(PrepareAppFolder(appFolder, QDir(delivered).filePath("templates")), "");
    const auto readWrite = QFile::ReadOwner | QFile::WriteOwner;
    for (const char* name : {"Tarvex.MDB", "Exercise Library.MDB", "Picklist.MDB", "cover.txt"})
        EXPECT_EQ(QFile::permissions(QDir(appFolder).filePath(name)) & readWrite, readWrite)
            << name;
    const QDir icons(QDir(appFolder).filePath("ICON"));
    const QStringList copied = icons.entryList(QDir::Files);
    EXPECT_EQ(copied.size(), QDir(QDir(delivered).filePath("ICON")).entryList(QDir::Files).size());
    for (const QString& name : copied)
        EXPECT_EQ(QFile::permissions(icons.filePath(name)) & readWrite, readWrite)
            << name.toStdString();

    // So that the temporary folder can be removed again.
    for (const char* folder : {"templates", "ICON"})
        QFile::setPermissions(QDir(delivered).filePath(folder), readOnlyFolder | QFile::WriteOwner);
}
