// The backup window's logic over fakes, with the real archive engine and a real data
// folder: the command's steps, its boxes, the buttons and the status bar.
#include "dbtools/BackupLogic.h"
#include "BackupFakes.h"
#include "dbtools/ZipArchive.h"
#include "shell/Shell.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QStringList kJobCalls = {"close", "busy", "open", "idle", "reset"};
const QStringList kRestingButtons = {"cmdBackup", "cmdOK", "cmdTest", "cmdFix", "cmdFolder"};
const QStringList kAllButtons = {"cmdBackup", "cmdAbort", "cmdOK",
                                 "cmdTest",   "cmdFix",   "cmdFolder"};

void ExpectBox(const fakes::ScriptedPrompter::Box& box, const QString& text, int style,
               const QString& title) {
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.style, style) << box.text.toStdString();
    EXPECT_EQ(box.title, title) << box.text.toStdString();
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(Backup, LoadShowsTheChosenFolderWithTheButtonsAtRest) {
    BackupForm f;
    EXPECT_EQ(f.folder.caption, QDir::toNativeSeparators(f.target));
    EXPECT_EQ(f.logic.ArchivePath(), f.target + "/Tarvex Backup.ZIP");
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
    EXPECT_EQ(f.bar.value, 0);
}

TEST(Backup, TheFirstFolderIsTheLastChoiceWhileItIsThereThenARemovableMediumThenHome) {
    QTemporaryDir chosen;
    const QList<MediaDrive> drives = {{"Tarvex delivered media", "/usr/share/tarvex"},
                                      {"System (/)", "/"},
                                      {"STICK (/media/clinic/STICK)", "/media/clinic/STICK"}};
    EXPECT_EQ(DefaultBackupFolder(drives, chosen.path(), "/home/clinic"), chosen.path());
    // A chosen folder that is not there (its stick is out) gives way to a medium that is.
    EXPECT_EQ(DefaultBackupFolder(drives, QString("/media/clinic/OTHER"), "/home/clinic"),
              "/media/clinic/STICK");
    EXPECT_EQ(DefaultBackupFolder({{"SD", "/run/media/clinic/SD"}}, std::nullopt, "/home/c"),
              "/run/media/clinic/SD");
    // Without a medium the choice stands, so that the backup asks for its medium.
    EXPECT_EQ(DefaultBackupFolder(drives.mid(0, 2), QString("/media/clinic/OTHER"), "/home/c"),
              "/media/clinic/OTHER");
    EXPECT_EQ(DefaultBackupFolder(drives.mid(0, 2), std::nullopt, "/home/clinic"), "/home/clinic");
    EXPECT_EQ(DefaultBackupFolder({}, QString(), "/home/clinic"), "/home/clinic");
}

TEST(Backup, ChangingTheFolderShowsAndKeepsIt) {
    BackupForm f;
    const QString other = f.dir.filePath("other");
    f.chooser.answers = {other, std::nullopt};
    f.logic.cmdFolder();
    EXPECT_EQ(f.chooser.starts, QStringList{f.target});
    EXPECT_EQ(f.folder.caption, QDir::toNativeSeparators(other));
    EXPECT_EQ(f.settings.values.value("Backup/Folder"), other);
    f.logic.cmdFolder(); // cancelled: nothing changes
    EXPECT_EQ(f.logic.TargetFolder(), other);
    EXPECT_EQ(f.settings.writes, QStringList{"Folder"});
}

TEST(Backup, ABackupWritesTheDatabasesReportsAndTestsTheArchive) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    ASSERT_EQ(f.prompts.boxes.size(), 2u);
    ExpectBox(f.prompts.boxes[0], "Backup completed", msg::Information, "Backup Status");
    ExpectBox(f.prompts.boxes[1], "All files in the archive are OK.", msg::Information,
              Shell::kTitle);
    EXPECT_EQ(f.host.calls, kJobCalls);
    EXPECT_EQ(f.host.statuses.last(), "Ready");
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
    // What the files held when the databases were closed is what the archive holds.
    for (const QString& name : BackupFileNames()) {
        const QString out = f.dir.filePath(name);
        ExtractEntry(f.Archive(), name, {}, out);
        EXPECT_EQ(ReadAll(out), f.host.closedBytes.value(name)) << name.toStdString();
    }
    // The first touch of the folder left nothing there but the archive.
    EXPECT_EQ(QDir(f.target).entryList(QDir::Files | QDir::Hidden),
              QStringList{"Tarvex Backup.ZIP"});
}

TEST(Backup, EachAddedFileGetsARowAndTheTotals) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    ASSERT_EQ(f.list.RowCount(), 3);
    int32_t sum = 0;
    for (int row = 0; row < 3; ++row) {
        const QString name = BackupFileNames()[row];
        const QFileInfo file(f.data.File(name));
        const QString date = ZipDateText(file.lastModified());
        EXPECT_EQ(f.list.Text(row, 0), name);
        EXPECT_EQ(f.list.Text(row, 1), date.left(8));
        EXPECT_EQ(f.list.Text(row, 2), date.right(5));
        EXPECT_EQ(f.list.Text(row, 3), QString::number(file.size()).rightJustified(12));
        sum += static_cast<int32_t>(file.size());
    }
    int32_t compressed = 0;
    for (const ZipEntryInfo& entry : ListArchive(f.Archive(), {}))
        compressed += static_cast<int32_t>(entry.CompressedSize);
    EXPECT_EQ(f.logic.FileCount(), 3);
    EXPECT_EQ(f.logic.SizeSum(), sum);
    EXPECT_EQ(f.logic.CompressedSum(), compressed);
    f.logic.ShowZipTotals();
    EXPECT_EQ(f.host.statuses.last(), ZipTotalsText(3, sum, compressed));
    EXPECT_TRUE(f.host.statuses.last().startsWith(" 3 files, "));
}

TEST(Backup, TheStatusBarFollowsTheJob) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    const QStringList& s = f.host.statuses;
    const QString k = CalculateK(static_cast<int32_t>(QFileInfo(f.data.File("Tarvex.MDB")).size()));
    ASSERT_FALSE(s.isEmpty());
    EXPECT_EQ(s.first(), " Adding file: Tarvex.MDB (" + k + ",   0%)");
    EXPECT_TRUE(s.contains(" Adding file: Tarvex.MDB (" + k + ", 100%)"));
    EXPECT_TRUE(s.contains(" Adding file: Picklist.MDB (20K, 100%)"));
    const qsizetype testing =
        s.indexOf(" Testing all files in " + QDir::toNativeSeparators(f.Archive()) + "...");
    ASSERT_GE(testing, 0);
    EXPECT_EQ(s[testing + 1], " Testing file: Tarvex.MDB (" + k + ",   0%)");
    EXPECT_EQ(s.mid(s.size() - 2), QStringList({" Finished testing files.", "Ready"}));
    // The bar went to the end and back to 0 after the test.
    EXPECT_TRUE(f.bar.values.contains(100));
    EXPECT_EQ(f.bar.value, 0);
}

TEST(Backup, NoMediumShowsTheBoxAndOkWithTheMediumInGoesOn) {
    BackupForm f;
    QDir(f.target).removeRecursively();
    f.prompts.answers = {Answer::Ok, Answer::Ok, Answer::Ok};
    f.prompts.onBox = [&](const auto& box) {
        if (box.title == "No Diskette Error")
            QDir().mkpath(f.target); // the stick is put in
    };
    f.logic.cmdBackup();
    ASSERT_EQ(f.prompts.boxes.size(), 3u);
    ExpectBox(f.prompts.boxes[0], "Please insert a formatted diskette to continue.", msg::OkCancel,
              "No Diskette Error");
    EXPECT_EQ(f.prompts.boxes[1].title, "Backup Status");
    EXPECT_EQ(ListArchive(f.Archive(), {}).size(), 3u);
}

TEST(Backup, NoMediumAndCancelEndsTheCommandWithTheDatabasesOpen) {
    BackupForm f;
    QDir(f.target).removeRecursively();
    f.list.AddRow("k1", {"earlier"});
    f.prompts.answers = {Answer::Ok, Answer::Cancel}; // still no medium the second time
    f.logic.cmdBackup();
    EXPECT_EQ(f.Titles(), QStringList({"No Diskette Error", "No Diskette Error"}));
    EXPECT_TRUE(f.host.calls.isEmpty());
    EXPECT_TRUE(f.host.statuses.isEmpty());
    EXPECT_EQ(f.list.RowCount(), 0); // the list was cleared before the folder was touched
    EXPECT_FALSE(f.logic.Running());
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}

TEST(Backup, AnArchiveFromAnEarlierBackupIsReplaced) {
    BackupForm f;
    QFile old(f.Archive());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("an archive of last week, damaged since");
    old.close();
    QFile::setPermissions(f.Archive(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    EXPECT_EQ(f.Titles(), QStringList({"Backup Status", Shell::kTitle}));
    QStringList names;
    for (const ZipEntryInfo& entry : ListArchive(f.Archive(), {}))
        names << entry.Name;
    EXPECT_EQ(names, BackupFileNames());
    EXPECT_TRUE(IsOwnerOnly(f.Archive()));
}

TEST(Backup, AWriteProtectedMediumGivesTheSecondBox) {
    BackupForm f;
    TmpfsMount readOnly(f.target, "ro,size=64k");
    if (!readOnly.Mounted())
        GTEST_SKIP() << "mounting a read-only file system is not permitted here";
    f.prompts.answers = {Answer::Ok, Answer::Cancel};
    f.logic.cmdBackup();
    ASSERT_EQ(f.prompts.boxes.size(), 2u);
    ExpectBox(f.prompts.boxes[0], "Please remove write-protect from diskette.", msg::OkCancel,
              "Diskette Write Protected");
    EXPECT_EQ(f.prompts.boxes[1].title, "Diskette Write Protected");
    EXPECT_TRUE(f.host.calls.isEmpty());
}

TEST(Backup, AnyOtherFaultOfTheMediumGivesTheErrorBox) {
    BackupForm f;
    // A file system without a free inode: no file can be made on it.
    TmpfsMount noRoom(f.target, "size=64k,nr_inodes=1");
    if (!noRoom.Mounted())
        GTEST_SKIP() << "mounting a small file system is not permitted here";
    f.prompts.answers = {Answer::Cancel};
    f.logic.cmdBackup();
    ASSERT_EQ(f.prompts.boxes.size(), 1u);
    ExpectBox(f.prompts.boxes[0], "Error: 61 Disk full", msg::OkCancel, Shell::kTitle);
    EXPECT_TRUE(f.host.calls.isEmpty());
}

TEST(Backup, AFullMediumEndsInTheErrorBoxWithTheCode) {
    BackupForm f;
    TmpfsMount full(f.target, "size=16k");
    if (!full.Mounted())
        GTEST_SKIP() << "mounting a small file system is not permitted here";
    f.prompts.answers = {Answer::Ok};
    f.logic.cmdBackup();
    ASSERT_EQ(f.prompts.boxes.size(), 1u); // no test after a failed backup
    ExpectBox(f.prompts.boxes[0], "An error occurred during the backup procedure", msg::OkOnly,
              "Backup Error: 150");
    EXPECT_EQ(f.host.calls, kJobCalls);
    EXPECT_EQ(f.host.statuses.last(), "Ready");
}

TEST(Backup, AbortingDuringTheJobEndsInTheBoxWithTheCodeAndTheDatabasesOpen) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    const QByteArray good = ReadAll(f.Archive());
    f.prompts.boxes.clear();
    f.host.calls.clear();
    f.host.events = 0;
    QStringList duringJob;
    f.host.onEvents = [&](int events) {
        if (events == 1) {
            duringJob = f.host.calls;
            f.logic.cmdAbort();
        }
    };
    f.prompts.answers = {Answer::Yes, Answer::Ok};
    f.logic.cmdBackup();
    EXPECT_EQ(duringJob, QStringList({"close", "busy"})); // closed while it ran
    ASSERT_EQ(f.prompts.boxes.size(), 2u);
    ExpectBox(f.prompts.boxes[0], "Are you sure you want to abort the current operation?",
              msg::YesNo | msg::Question, "Abort");
    ExpectBox(f.prompts.boxes[1], "An error occurred during the backup procedure", msg::OkOnly,
              "Backup Error: 190");
    EXPECT_EQ(f.host.calls, kJobCalls);
    EXPECT_TRUE(f.data.state.Dbs.IsOpen());
    EXPECT_EQ(ReadAll(f.Archive()), good); // the last good backup is whole
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}

TEST(Backup, AnsweringNoToAbortLetsTheJobFinish) {
    BackupForm f;
    f.host.onEvents = [&](int events) {
        if (events == 1)
            f.logic.cmdAbort();
    };
    f.prompts.answers = {Answer::No, Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    EXPECT_EQ(f.Titles(), QStringList({"Abort", "Backup Status", Shell::kTitle}));
}

TEST(Backup, WhileTheJobRunsOnlyAbortIsOnAndOtherClicksDoNothing) {
    BackupForm f;
    QStringList enabled;
    bool passwordOn = true;
    f.host.onEvents = [&](int events) {
        if (events != 1)
            return;
        enabled = f.buttons.EnabledOf(kAllButtons);
        passwordOn = f.password.enabled;
        EXPECT_TRUE(f.logic.Running());
        f.logic.cmdBackup(); // a second click: no second job
        f.logic.cmdTest();
        f.logic.cmdFix();
        f.logic.cmdFolder();
    };
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    EXPECT_EQ(enabled, QStringList{"cmdAbort"});
    EXPECT_FALSE(passwordOn);
    EXPECT_EQ(f.Titles(), QStringList({"Backup Status", Shell::kTitle}));
    EXPECT_TRUE(f.chooser.starts.isEmpty());
    EXPECT_EQ(f.list.RowCount(), 3);
    EXPECT_EQ(f.host.calls, kJobCalls);
    EXPECT_FALSE(f.logic.Running());
}

TEST(Backup, AbortWhenNoJobRunsDoesNothing) {
    BackupForm f;
    f.logic.cmdAbort();
    EXPECT_TRUE(f.prompts.boxes.empty());
    EXPECT_FALSE(f.logic.ZipAbortRequested());
}

TEST(Backup, AFileNameWithAPathShowsOnlyItsLastPart) {
    BackupForm f;
    f.logic.ZipAddingFile("C:\\TVX\\Tarvex.MDB", 2048, "03/07/24 09:05");
    f.logic.ZipAddingFile("data/Picklist.MDB", 20480, "12/31/99 23:59");
    f.logic.ZipAddingFile("C:\\TVX\\", 0, "01/01/90 00:00");
    ASSERT_EQ(f.list.RowCount(), 3);
    EXPECT_EQ(f.list.rows[0].second,
              QStringList({"Tarvex.MDB", "03/07/24", "09:05", "        2048"}));
    EXPECT_EQ(f.list.rows[1].second,
              QStringList({"Picklist.MDB", "12/31/99", "23:59", "       20480"}));
    EXPECT_EQ(f.list.Text(2, 0), "<dir>");
    // The status bar names the file as given.
    EXPECT_EQ(f.host.statuses[0], " Adding file: C:\\TVX\\Tarvex.MDB (2K,   0%)");
    EXPECT_EQ(f.logic.FileCount(), 3);
    EXPECT_EQ(f.logic.SizeSum(), 22528);
}

TEST(Backup, EnableBackupCommandsSwapsAbortAndTheOthers) {
    BackupForm f;
    f.logic.EnableBackupCommands(true);
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), QStringList{"cmdAbort"});
    EXPECT_FALSE(f.password.enabled);
    f.logic.EnableBackupCommands(false);
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
    EXPECT_TRUE(f.password.enabled);
}

TEST(Backup, EventsSetTheStatusBarAndTheBar) {
    BackupForm f;
    f.logic.ZipTestingFile("Picklist.MDB", 20480);
    EXPECT_EQ(f.host.statuses.last(), " Testing file: Picklist.MDB (20K,   0%)");
    f.logic.ZipFilePercent(37);
    EXPECT_EQ(f.host.statuses.last(), " Testing file: Picklist.MDB (20K,  37%)");
    f.logic.ZipUpdatingFile("Tarvex.MDB", 94208);
    EXPECT_EQ(f.host.statuses.last(), " Updating file: Tarvex.MDB (92K,   0%)");
    f.logic.ZipFilePercent(100);
    EXPECT_EQ(f.logic.StatusText(), " Updating file: Tarvex.MDB (92K, 100%)");
    f.logic.ZipOverallPercent(64);
    EXPECT_EQ(f.bar.value, 64);
    f.logic.SetZipProgress(12);
    EXPECT_EQ(f.bar.value, 12);
}

TEST(Backup, NeedADiskAsksForTheDiskAndCancelAborts) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Cancel};
    f.logic.ZipNeedDisk(2);
    EXPECT_FALSE(f.logic.ZipAbortRequested());
    f.logic.ZipNeedDisk(0);
    EXPECT_TRUE(f.logic.ZipAbortRequested());
    ExpectBox(f.prompts.boxes[0], "Please insert disk #2 of the set.", msg::OkCancel,
              Shell::kTitle);
    ExpectBox(f.prompts.boxes[1], "Please insert the last disk of the set.", msg::OkCancel,
              Shell::kTitle);
}

TEST(Backup, FileExistsAnswersTheOverwriteQuestion) {
    BackupForm f;
    f.prompts.answers = {Answer::Yes, Answer::No, Answer::Cancel};
    int overwrite = 7;
    f.logic.ZipFileExists("Tarvex.MDB", overwrite);
    EXPECT_EQ(overwrite, 1);
    f.logic.ZipFileExists("Tarvex.MDB", overwrite);
    EXPECT_EQ(overwrite, 0);
    EXPECT_FALSE(f.logic.ZipAbortRequested());
    overwrite = 7;
    f.logic.ZipFileExists("Tarvex.MDB", overwrite);
    EXPECT_EQ(overwrite, 7); // Cancel leaves the answer and stops the job
    EXPECT_TRUE(f.logic.ZipAbortRequested());
    ExpectBox(f.prompts.boxes[0],
              "The file 'Tarvex.MDB' already exists. Do you want to replace this file?",
              msg::YesNoCancel, Shell::kTitle);
}

TEST(Backup, AFileSkippedShowsTheReasonAndEmptiesTheBar) {
    BackupForm f;
    f.logic.SetZipProgress(40);
    f.prompts.answers = {Answer::Ok};
    f.logic.ZipFileSkipped("Picklist.MDB", skipreason::kBadPassword);
    ExpectBox(f.prompts.boxes[0],
              "Can't process 'Picklist.MDB', invalid or no password to decrypt file.",
              msg::Exclamation, Shell::kTitle);
    EXPECT_EQ(f.bar.value, 0);
}

TEST(Backup, LastRowSelectedWantsRowsAndTheLastOneChosen) {
    BackupForm f;
    EXPECT_FALSE(f.logic.LastRowSelected());
    f.logic.ZipAddingFile("Tarvex.MDB", 1, "03/07/24 09:05");
    f.logic.ZipAddingFile("Picklist.MDB", 1, "03/07/24 09:05");
    EXPECT_FALSE(f.logic.LastRowSelected());
    f.list.SetSelectedRow(0);
    EXPECT_FALSE(f.logic.LastRowSelected());
    f.list.SetSelectedRow(1);
    EXPECT_TRUE(f.logic.LastRowSelected());
}

TEST(Backup, AnEncryptedBackupTestsWithItsPasswordOnly) {
    BackupForm f;
    f.password.text = "s3cret";
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    EXPECT_EQ(f.prompts.boxes[1].text, "All files in the archive are OK.");
    for (const ZipEntryInfo& entry : ListArchive(f.Archive(), {}))
        EXPECT_TRUE(entry.Encrypted);
    f.prompts.boxes.clear();
    f.password.text = "wrong";
    f.prompts.answers = {Answer::Ok, Answer::Ok, Answer::Ok, Answer::Ok};
    f.logic.cmdTest();
    ASSERT_EQ(f.prompts.boxes.size(), 4u);
    ExpectBox(f.prompts.boxes[0],
              "Can't process 'Tarvex.MDB', invalid or no password to decrypt file.",
              msg::Exclamation, Shell::kTitle);
    ExpectBox(f.prompts.boxes[3], "No files ended up being tested in the archive.", msg::Critical,
              Shell::kTitle);
    EXPECT_EQ(f.host.statuses.last(), " Finished testing files.");
}

TEST(Backup, TestingAMissingOrCutShortArchiveSaysSo) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdTest();
    ExpectBox(f.prompts.boxes[0], "Could not find the archive file.", msg::Critical, Shell::kTitle);
    QFile cut(f.Archive());
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(QByteArray("PK\x03\x04", 4) + QByteArray(3000, '\0'));
    cut.close();
    f.logic.cmdTest();
    ExpectBox(f.prompts.boxes[1], "The archive file is corrupted. Try using the Fix option on it.",
              msg::Critical, Shell::kTitle);
    EXPECT_EQ(f.host.statuses.last(), " Finished testing files.");
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}

TEST(Backup, FixRepairsACutShortArchiveOrSaysItIsTooCorrupted) {
    BackupForm f;
    f.prompts.answers = {Answer::Ok, Answer::Ok};
    f.logic.cmdBackup();
    const QByteArray whole = ReadAll(f.Archive());
    QFile file(f.Archive());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(whole.left(whole.size() * 7 / 10));
    file.close();
    f.prompts.boxes.clear();
    f.prompts.answers = {Answer::Ok, Answer::Ok, Answer::Ok};
    f.logic.cmdFix();
    ExpectBox(f.prompts.boxes[0], "The specified Zip file has been fixed.", msg::Information,
              Shell::kTitle);
    EXPECT_EQ(f.host.statuses.mid(f.host.statuses.size() - 2),
              QStringList({" Repairing Zip archive...", " Finished fixing files."}));
    EXPECT_FALSE(ListArchive(f.Archive(), {}).empty());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray(4000, 'x'));
    file.close();
    f.logic.cmdFix();
    ExpectBox(f.prompts.boxes[1], "The specified Zip file is too corrupted to be fixed.",
              msg::Critical, Shell::kTitle);
    QFile::remove(f.Archive());
    f.logic.cmdFix();
    ExpectBox(f.prompts.boxes[2], "Could not find the archive file.", msg::Critical, Shell::kTitle);
}

TEST(Backup, AFaultDuringTheJobStillOpensTheDatabasesAndResetsTheShell) {
    BackupForm f;
    f.host.onEvents = [](int) { throw Fault("a fault in the window"); };
    EXPECT_THROW(f.logic.cmdBackup(), Fault);
    // The hourglass goes first here, then the databases open and the shell is reset.
    EXPECT_EQ(f.host.calls, QStringList({"close", "busy", "idle", "open", "reset"}));
    EXPECT_TRUE(f.data.state.Dbs.IsOpen());
    EXPECT_FALSE(f.logic.Running());
    EXPECT_EQ(f.buttons.EnabledOf(kAllButtons), kRestingButtons);
}
