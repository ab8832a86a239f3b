#pragma once

#include "data/Server.h"
#include "dbtools/ServerDump.h"
#include "dbtools/ZipArchive.h"
#include "media/MediaDrives.h"
#include "support/Controls.h"

#include <QList>
#include <QString>
#include <cstdint>
#include <optional>

namespace tarvex {

class IMaintenanceHost;
class ISettingsStore;
class Prompter;

// The window's progress bar, from 0 to 100.
class IProgressBar {
public:
    virtual ~IProgressBar() = default;
    virtual void SetValue(int value) = 0;
    virtual int Value() const = 0;
};

// The folder dialog: the chosen folder, or nothing when the user cancelled.
class IFolderChooser {
public:
    virtual ~IFolderChooser() = default;
    virtual std::optional<QString> ChooseFolder(const QString& start) = 0;
};

// What the first touch of the target folder found: number 0 when a file can be made there,
// else the run-time error: 52 no such folder (the medium is not there), 75 read-only
// (write-protected), 61 full, 57 any other, with the description of the error.
struct FolderFault {
    int Number = 0;
    QString Description;
};
FolderFault ProbeTargetFolder(const QString& folder);

// The folder a backup goes to when the window opens: the folder the user chose last while
// it is there, else the first mounted removable medium, else the chosen folder all the same
// (a medium not plugged in), else the home folder.
QString DefaultBackupFolder(const QList<MediaDrive>& drives, const std::optional<QString>& chosen,
                            const QString& home);

// The logic of "Backup TVX Database": the three databases into one Zip archive, "Tarvex
// Backup.ZIP", in a folder the user chooses. It hears the engine's events itself. With the
// databases on a server the archive holds one dump of its three stores instead (see
// ServerDump.h), and the databases stay open.
class BackupLogic : public IZipEvents {
public:
    // The buttons are keyed by their names: "cmdBackup", "cmdAbort", "cmdOK", "cmdTest",
    // "cmdFix" and "cmdFolder" (which changes the target folder).
    struct Controls {
        IReportList& lstMain; // "Name", "Date", "Time", "Size"
        IProgressBar& prbMain;
        ICommands& buttons;
        ILabel& lblFolder;     // the target folder
        ITextBox& txtPassword; // empty: a plain archive
    };
    static inline const QString kSettingsSection = QStringLiteral("Backup");
    static inline const QString kSettingsKey = QStringLiteral("Folder");

    BackupLogic(Controls controls, IMaintenanceHost& host, Prompter& prompts,
                ISettingsStore& settings, IFolderChooser& folders);

    // On load: the target folder (see DefaultBackupFolder) and the buttons at rest.
    void Load(const QList<MediaDrive>& drives, const QString& home);
    // The databases are on this server: a backup dumps its stores with the tools.
    void UseServer(const ServerSettings& server, const ServerTools& tools = {});

    // The buttons. While a job runs every one but Abort does nothing.
    void cmdBackup();
    void cmdAbort();
    void cmdFolder();
    void cmdTest();
    void cmdFix();

    bool Running() const { return running_; }
    QString TargetFolder() const { return folder_; }
    QString ArchivePath() const;

    // The window's routines.
    void EnableBackupCommands(bool running);
    void SetZipProgress(int16_t percent);
    void TestBackup();
    void FixBackup(bool force);
    void ShowZipTotals();
    bool LastRowSelected() const;
    void ZipResultMessage(int16_t code, const QString& action);

    // The engine's events.
    void ZipAddingFile(const QString& name, int64_t size, const QString& dateText) override;
    void ZipFileCompressed(const QString& name, int64_t compressedSize) override;
    void ZipTestingFile(const QString& name, int64_t size) override;
    void ZipFilePercent(int16_t percent) override;
    void ZipOverallPercent(int16_t percent) override;
    void ZipFileSkipped(const QString& name, int reason) override;
    void ZipIdle() override;
    bool ZipAbortRequested() override { return abort_; }
    // Events this engine never raises (an archive never spans media, is always written
    // anew and is never extracted here), answered as the window always did.
    void ZipUpdatingFile(const QString& name, int64_t size);
    void ZipNeedDisk(int16_t disk);
    void ZipFileExists(const QString& name, int& overwrite);

    // The totals of the current job and the status bar's text.
    int16_t FileCount() const { return fileCount_; }
    int32_t SizeSum() const { return sizeSum_; }
    int32_t CompressedSum() const { return compressedSum_; }
    QString StatusText() const { return status_; }

private:
    class EngineJob;
    bool TargetReady();
    int16_t RunBackupJob(const QString& archive);
    // The dump of the server into the archive; nothing when it failed and a box said why.
    std::optional<int16_t> RunServerBackupJob(const QString& archive);
    void ShowBackupResult(int16_t result);
    void SetFolder(const QString& folder);
    void SetStatus(const QString& text);

    Controls c_;
    IMaintenanceHost& host_;
    Prompter& prompts_;
    ISettingsStore& settings_;
    IFolderChooser& folders_;
    std::optional<ServerSettings> server_;
    ServerTools tools_;
    QString folder_;
    QString status_;
    bool running_ = false;
    bool abort_ = false;
    int16_t fileCount_ = 0;
    int32_t sizeSum_ = 0;
    int32_t compressedSum_ = 0;
};

} // namespace tarvex
