#include "dbtools/BackupLogic.h"

#include "data/Schema.h"
#include "dbtools/MaintenanceHost.h"
#include "shell/SettingsStore.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Numbers.h"
#include "support/Prompter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace tarvex {

namespace {

const QString kNoMediumDescription = QStringLiteral("Bad file name or number");

FolderFault FaultOfError(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return {52, kNoMediumDescription};
    case EROFS:
    case EACCES:
    case EPERM:
        return {75, QStringLiteral("Path/File access error")};
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
        return {61, QStringLiteral("Disk full")};
    default:
        return {57, QString::fromStdString(std::generic_category().message(error))};
    }
}

// Removable media are mounted by the desktop under /media/<user> or /run/media/<user>.
bool IsRemovableMount(const QString& root) {
    const QString clean = QDir::cleanPath(QDir::fromNativeSeparators(root));
    return clean.startsWith(QLatin1String("/media/")) ||
           clean.startsWith(QLatin1String("/run/media/"));
}

// The part of a file name behind its last folder separator; "<dir>" for a folder.
QString ShownName(const QString& name) {
    const qsizetype cut = std::max(name.lastIndexOf(u'\\'), name.lastIndexOf(u'/'));
    if (cut < 0)
        return name;
    const QString last = name.mid(cut + 1);
    return last.isEmpty() ? QStringLiteral("<dir>") : last;
}

int32_t ToSize(int64_t bytes) {
    return ToInt32(static_cast<double>(bytes));
}

// A job's running flag, down again however the job ends.
class RunningFlag {
public:
    explicit RunningFlag(bool& running) : running_(running) { running_ = true; }
    ~RunningFlag() { running_ = false; }
    RunningFlag(const RunningFlag&) = delete;
    RunningFlag& operator=(const RunningFlag&) = delete;

private:
    bool& running_;
};

// After the databases are opened again, no patient or program is current: the shell is
// told so however the job ended. A destructor must not throw: a failure shows at the
// next use of the shell.
class ShellReset {
public:
    explicit ShellReset(IMaintenanceHost& host) : host_(host) {}
    ~ShellReset() {
        try {
            host_.ResetShell();
        } catch (...) { // NOLINT(bugprone-empty-catch): see above
        }
    }
    ShellReset(const ShellReset&) = delete;
    ShellReset& operator=(const ShellReset&) = delete;

private:
    IMaintenanceHost& host_;
};

// The hourglass for the length of a job. (Not the BusyCursor of MaintenanceHost.h: the
// windows have a class of that name too, and with both in one program the linker keeps
// one destructor for the two, so one of them would not end its hourglass.)
class Hourglass {
public:
    explicit Hourglass(IMaintenanceHost& host) : host_(host) { host_.SetBusy(true); }
    ~Hourglass() { host_.SetBusy(false); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;

private:
    IMaintenanceHost& host_;
};

} // namespace

// The engine at work: Abort is the one button on, and a new job starts without an abort.
class BackupLogic::EngineJob {
public:
    explicit EngineJob(BackupLogic& logic) : logic_(logic) {
        logic_.abort_ = false;
        logic_.EnableBackupCommands(true);
    }
    ~EngineJob() { logic_.EnableBackupCommands(false); }
    EngineJob(const EngineJob&) = delete;
    EngineJob& operator=(const EngineJob&) = delete;

private:
    BackupLogic& logic_;
};

FolderFault ProbeTargetFolder(const QString& folder) {
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        return {52, kNoMediumDescription};
    const QString probe = QDir(folder).filePath(
        QStringLiteral(".~backup-probe-%1").arg(QRandomGenerator::global()->generate(), 8, 16));
    const QByteArray name = QFile::encodeName(probe);
    errno = 0;
    std::FILE* file = std::fopen(name.constData(), "wx");
    if (!file)
        return FaultOfError(errno);
    std::fclose(file);
    std::remove(name.constData());
    return {};
}

QString DefaultBackupFolder(const QList<MediaDrive>& drives, const std::optional<QString>& chosen,
                            const QString& home) {
    // The user's own choice stands while it is there; a medium plugged in comes next; a
    // chosen medium that is not plugged in is asked for by the backup's first box.
    if (chosen && !chosen->isEmpty() && QFileInfo(*chosen).isDir())
        return *chosen;
    for (const MediaDrive& drive : drives)
        if (IsRemovableMount(drive.Root))
            return drive.Root;
    if (chosen && !chosen->isEmpty())
        return *chosen;
    return home;
}

BackupLogic::BackupLogic(Controls controls, IMaintenanceHost& host, Prompter& prompts,
                         ISettingsStore& settings, IFolderChooser& folders)
    : c_(controls), host_(host), prompts_(prompts), settings_(settings), folders_(folders) {}

void BackupLogic::Load(const QList<MediaDrive>& drives, const QString& home) {
    SetFolder(DefaultBackupFolder(drives, settings_.Get(kSettingsSection, kSettingsKey), home));
    EnableBackupCommands(false);
    SetZipProgress(0);
}

QString BackupLogic::ArchivePath() const {
    return QDir(folder_).filePath(QLatin1String(kBackupArchiveName));
}

void BackupLogic::UseServer(const ServerSettings& server, const ServerTools& tools) {
    server_ = server;
    tools_ = tools;
}

void BackupLogic::SetFolder(const QString& folder) {
    folder_ = QDir::cleanPath(QDir::fromNativeSeparators(folder));
    c_.lblFolder.SetCaption(QDir::toNativeSeparators(folder_));
}

void BackupLogic::SetStatus(const QString& text) {
    status_ = text;
    host_.SetStatusBar(text);
}

void BackupLogic::cmdBackup() {
    if (running_)
        return;
    const RunningFlag running(running_);
    c_.lstMain.Clear();
    fileCount_ = 0;
    sizeSum_ = compressedSum_ = 0;
    const QString archive = ArchivePath();
    if (!TargetReady())
        return; // before the databases are closed: they stay open
    // The new archive takes the rights of the one it replaces: the user's alone.
    if (QFileInfo(archive).isFile())
        QFile::setPermissions(archive, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const std::optional<int16_t> result =
        server_ ? RunServerBackupJob(archive) : std::optional<int16_t>(RunBackupJob(archive));
    if (result) {
        ShowBackupResult(*result);
        if (*result == zipcode::kSuccess)
            TestBackup();
    }
    SetStatus(QStringLiteral("Ready"));
}

// The first touch of the target. The old archive is not deleted here: the engine writes
// the new one beside it and renames it over the old one at the end, so a failed or
// aborted backup leaves the last good archive whole, and a successful one replaces it.
bool BackupLogic::TargetReady() {
    for (;;) {
        const FolderFault fault = ProbeTargetFolder(folder_);
        if (fault.Number == 0)
            return true;
        QString text = QStringLiteral("Error: %1 %2").arg(fault.Number).arg(fault.Description);
        QString title = Shell::kTitle;
        if (fault.Number == 52) {
            text = QStringLiteral("Please insert a formatted diskette to continue.");
            title = QStringLiteral("No Diskette Error");
        } else if (fault.Number == 75) {
            text = QStringLiteral("Please remove write-protect from diskette.");
            title = QStringLiteral("Diskette Write Protected");
        }
        if (prompts_.MsgBox(text, msg::OkCancel, title) != Answer::Ok)
            return false;
    }
}

// From closing the databases to opening them again. The files are taken from the data
// folder by name; the process's current folder is left alone.
int16_t BackupLogic::RunBackupJob(const QString& archive) {
    const ShellReset reset(host_);
    ClosedDatabases closed(host_);
    const Hourglass busy(host_);
    const ZipAddJob job{archive,
                        host_.AppFolder(),
                        {QLatin1String(kProgramDbFile), QLatin1String(kLibraryDbFile),
                         QLatin1String(kPicklistDbFile)},
                        c_.txtPassword.Text()};
    int16_t result = zipcode::kSuccess;
    {
        const EngineJob engine(*this);
        result = ZipAddFiles(job, *this);
    }
    closed.Reopen();
    return result;
}

// The databases stay open: pg_dump reads one consistent snapshot of the three stores while
// the workstations work on. The dump is made in a private folder, goes into the archive
// through the engine as the files do, and goes with its folder however the job ends.
std::optional<int16_t> BackupLogic::RunServerBackupJob(const QString& archive) {
    const Hourglass busy(host_);
    try {
        const DumpFolder work(tools_);
        const EngineJob engine(*this);
        SetStatus(QStringLiteral(" Reading the databases from the server..."));
        const bool dumped = DumpServerStores(*server_, work.DumpPath(), tools_, [this] {
            host_.DoEvents();
            return !abort_;
        });
        if (!dumped)
            return zipcode::kAborted;
        return ZipAddFiles(
            {archive, work.Path(), {QLatin1String(kServerDumpEntry)}, c_.txtPassword.Text()},
            *this);
    } catch (const Fault& fault) {
        prompts_.MsgBox(QStringLiteral("The backup could not be made.\r\r%1\r\rNothing was "
                                       "written to the backup folder.")
                            .arg(fault.Message()),
                        msg::OkOnly | msg::Critical, QStringLiteral("Backup Error"));
        return std::nullopt;
    }
}

void BackupLogic::ShowBackupResult(int16_t result) {
    if (result == zipcode::kSuccess)
        prompts_.MsgBox(QStringLiteral("Backup completed"), msg::Information,
                        QStringLiteral("Backup Status"));
    else
        prompts_.MsgBox(QStringLiteral("An error occurred during the backup procedure"),
                        msg::OkOnly, QStringLiteral("Backup Error: %1").arg(result));
}

void BackupLogic::cmdAbort() {
    // The engine always writes through a temporary file, so an abort is always possible
    // and the box for a control without one never comes.
    static_assert(kZipUsesTemporaryFile);
    if (!c_.buttons.IsEnabled(QStringLiteral("cmdAbort")))
        return;
    if (prompts_.MsgBox(QStringLiteral("Are you sure you want to abort the current operation?"),
                        msg::YesNo | msg::Question, QStringLiteral("Abort")) == Answer::Yes)
        abort_ = true;
}

void BackupLogic::cmdFolder() {
    if (running_)
        return;
    const std::optional<QString> chosen = folders_.ChooseFolder(folder_);
    if (!chosen || chosen->isEmpty())
        return;
    SetFolder(*chosen);
    settings_.Set(kSettingsSection, kSettingsKey, folder_);
}

void BackupLogic::cmdTest() {
    if (running_)
        return;
    const RunningFlag running(running_);
    TestBackup();
}

void BackupLogic::cmdFix() {
    if (running_)
        return;
    const RunningFlag running(running_);
    FixBackup(true);
}

void BackupLogic::EnableBackupCommands(bool running) {
    c_.buttons.SetEnabled(QStringLiteral("cmdAbort"), running);
    for (const char* key : {"cmdBackup", "cmdOK", "cmdTest", "cmdFix", "cmdFolder"})
        c_.buttons.SetEnabled(QLatin1String(key), !running);
    c_.txtPassword.SetEnabled(!running);
}

void BackupLogic::SetZipProgress(int16_t percent) {
    c_.prbMain.SetValue(percent);
}

void BackupLogic::TestBackup() {
    const QString archive = ArchivePath();
    SetStatus(QStringLiteral(" Testing all files in %1...").arg(QDir::toNativeSeparators(archive)));
    int16_t result = zipcode::kSuccess;
    {
        const EngineJob engine(*this);
        result = ZipTestArchive(archive, c_.txtPassword.Text(), *this);
    }
    if (result == zipcode::kSuccess)
        prompts_.MsgBox(QStringLiteral("All files in the archive are OK."), msg::Information,
                        Shell::kTitle);
    else if (result == zipcode::kFilesSkipped)
        prompts_.MsgBox(QStringLiteral("All files tested in the archive are OK.\r(Some files "
                                       "were skipped)"),
                        msg::Information, Shell::kTitle);
    else
        ZipResultMessage(result, QStringLiteral("testing"));
    SetZipProgress(0);
    SetStatus(QStringLiteral(" Finished testing files."));
}

void BackupLogic::FixBackup(bool force) {
    SetStatus(QStringLiteral(" Repairing Zip archive..."));
    int16_t result = zipcode::kSuccess;
    {
        const EngineJob engine(*this);
        result = ZipFixArchive(ArchivePath(), force, *this);
    }
    if (result == zipcode::kSuccess)
        prompts_.MsgBox(QStringLiteral("The specified Zip file has been fixed."), msg::Information,
                        Shell::kTitle);
    else if (result == zipcode::kCorrupted)
        prompts_.MsgBox(QStringLiteral("The specified Zip file is too corrupted to be fixed."),
                        msg::Critical, Shell::kTitle);
    else
        ZipResultMessage(result, QStringLiteral("fixing"));
    SetZipProgress(0);
    SetStatus(QStringLiteral(" Finished fixing files."));
}

void BackupLogic::ShowZipTotals() {
    SetStatus(ZipTotalsText(fileCount_, sizeSum_, compressedSum_));
}

bool BackupLogic::LastRowSelected() const {
    const int rows = c_.lstMain.RowCount();
    return rows > 0 && c_.lstMain.SelectedRow() == rows - 1;
}

void BackupLogic::ZipResultMessage(int16_t code, const QString& action) {
    tarvex::ZipResultMessage(prompts_, code, action);
}

// The expected file count that could move the bar by files is never set, so the bar
// moves by the overall percent alone.
void BackupLogic::ZipAddingFile(const QString& name, int64_t size, const QString& dateText) {
    const int32_t bytes = ToSize(size);
    SetStatus(AddingFileStatus(name, bytes));
    c_.lstMain.AddRow(QStringLiteral("k%1").arg(c_.lstMain.RowCount() + 1),
                      {ShownName(name), dateText.left(8), dateText.right(5),
                       QStringLiteral("%1").arg(bytes, 12)});
    fileCount_ = ToInt16(fileCount_ + 1.0);
    sizeSum_ = ToInt32(static_cast<double>(sizeSum_) + bytes);
}

void BackupLogic::ZipFileCompressed(const QString&, int64_t compressedSize) {
    compressedSum_ = ToInt32(static_cast<double>(compressedSum_) + ToSize(compressedSize));
}

void BackupLogic::ZipTestingFile(const QString& name, int64_t size) {
    SetStatus(TestingFileStatus(name, ToSize(size)));
}

void BackupLogic::ZipUpdatingFile(const QString& name, int64_t size) {
    SetStatus(UpdatingFileStatus(name, ToSize(size)));
}

void BackupLogic::ZipFilePercent(int16_t percent) {
    SetStatus(WithFilePercent(status_, percent));
}

void BackupLogic::ZipOverallPercent(int16_t percent) {
    SetZipProgress(percent);
}

void BackupLogic::ZipFileSkipped(const QString& name, int reason) {
    prompts_.MsgBox(SkippedFileText(name, reason), msg::Exclamation, Shell::kTitle);
    SetZipProgress(0);
}

void BackupLogic::ZipIdle() {
    host_.DoEvents();
}

void BackupLogic::ZipNeedDisk(int16_t disk) {
    if (prompts_.MsgBox(NeedDiskText(disk), msg::OkCancel, Shell::kTitle) == Answer::Cancel)
        abort_ = true;
}

void BackupLogic::ZipFileExists(const QString& name, int& overwrite) {
    switch (prompts_.MsgBox(FileExistsText(name), msg::YesNoCancel, Shell::kTitle)) {
    case Answer::Yes:
        overwrite = 1;
        break;
    case Answer::No:
        overwrite = 0;
        break;
    case Answer::Cancel:
        abort_ = true;
        break;
    default:
        break;
    }
}

} // namespace tarvex
