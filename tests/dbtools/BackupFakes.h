#pragma once

#include "data/Databases.h"
#include "data/Schema.h"
#include "dbtools/BackupLogic.h"
#include "dbtools/MaintenanceHost.h"
#include "fakes/FakeControls.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/AppState.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>

namespace tarvex::testing {

// The titles of the boxes a prompter showed, in order.
template <typename Prompts> QStringList BoxTitles(const Prompts& prompts) {
    QStringList titles;
    for (const auto& box : prompts.boxes)
        titles << box.title;
    return titles;
}

// True when only the file's owner may read and write it, and nobody may run it.
inline bool IsOwnerOnly(const QString& path) {
    namespace fs = std::filesystem;
    return fs::status(QFile::encodeName(path).toStdString()).permissions() ==
           (fs::perms::owner_read | fs::perms::owner_write);
}

// The three database files of a backup.
inline QStringList BackupFileNames() {
    return {QLatin1String(kProgramDbFile), QLatin1String(kLibraryDbFile),
            QLatin1String(kPicklistDbFile)};
}

// The program around the backup: really closes and opens the databases of a state, keeps
// the bytes of the files as they were when closed (what the archive must hold), and
// records everything else. onEvents runs while the job lets events through.
class FakeBackupHost : public IMaintenanceHost {
public:
    explicit FakeBackupHost(AppState& state) : state_(state) {}
    QString AppFolder() const override { return state_.AppFolder; }
    void CloseDatabases() override {
        calls << "close";
        tarvex::CloseDatabases(state_);
        for (const QString& name : BackupFileNames()) {
            QFile file(QDir(state_.AppFolder).filePath(name));
            closedBytes[name] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
    }
    void OpenDatabases() override {
        calls << "open";
        tarvex::OpenDatabases(state_);
    }
    void ResetShell() override { calls << "reset"; }
    void SetStatusBar(const QString& text) override { statuses << text; }
    void SetBusy(bool busy) override { calls << (busy ? "busy" : "idle"); }
    void DoEvents() override {
        ++events;
        if (onEvents)
            onEvents(events);
    }

    QStringList calls;
    QStringList statuses;
    QMap<QString, QByteArray> closedBytes;
    int events = 0;
    std::function<void(int)> onEvents;

private:
    AppState& state_;
};

class FakeProgressBar : public IProgressBar {
public:
    void SetValue(int v) override {
        value = v;
        values << v;
    }
    int Value() const override { return value; }
    int value = -1;
    QList<int> values;
};

class FakeFolderChooser : public IFolderChooser {
public:
    std::optional<QString> ChooseFolder(const QString& start) override {
        starts << start;
        if (answers.empty())
            return std::nullopt;
        auto answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::deque<std::optional<QString>> answers;
    QStringList starts;
};

// Scripted answers, and a hook that runs when a box has been answered: the world may
// change between a box and what follows it (a medium put in).
class HookedPrompter : public fakes::ScriptedPrompter {
public:
    Answer MsgBox(const QString& text, int style, const QString& title) override {
        const Answer answer = ScriptedPrompter::MsgBox(text, style, title);
        if (onBox)
            onBox(boxes.back());
        return answer;
    }
    std::function<void(const Box&)> onBox;
};

// The backup window's logic over fakes: a fresh data folder with the delivered databases
// open, and a target folder "stick" that the user chose before.
struct BackupForm {
    BackupForm() {
        OpenDatabases(data.state);
        target = dir.filePath(QStringLiteral("stick"));
        QDir().mkpath(target);
        settings.values[QStringLiteral("Backup/Folder")] = target;
        logic.Load({}, dir.filePath(QStringLiteral("home")));
    }
    QString Archive() const { return QDir(target).filePath(QLatin1String(kBackupArchiveName)); }
    QStringList Titles() const { return BoxTitles(prompts); }

    TestFolder data;
    QTemporaryDir dir;
    QString target;
    fakes::FakeReportList list;
    FakeProgressBar bar;
    fakes::FakeCommands buttons;
    fakes::FakeLabel folder;
    fakes::FakeTextBox password;
    FakeBackupHost host{data.state};
    HookedPrompter prompts;
    fakes::FakeSettingsStore settings;
    FakeFolderChooser chooser;
    BackupLogic logic{{list, bar, buttons, folder, password}, host, prompts, settings, chooser};
};

// The engine's events, recorded. onIdle runs each time the job lets events through.
class RecordingEvents : public IZipEvents {
public:
    void ZipAddingFile(const QString& name, int64_t size, const QString& dateText) override {
        log << QStringLiteral("add ") + name;
        sizes[name] = size;
        dates[name] = dateText;
    }
    void ZipFileCompressed(const QString& name, int64_t compressedSize) override {
        compressed[name] = compressedSize;
    }
    void ZipTestingFile(const QString& name, int64_t) override {
        log << QStringLiteral("test ") + name;
    }
    void ZipFilePercent(int16_t percent) override { log << QStringLiteral("file %1").arg(percent); }
    void ZipOverallPercent(int16_t percent) override { overall << percent; }
    void ZipFileSkipped(const QString& name, int reason) override {
        skipped << QStringLiteral("%1: %2").arg(name).arg(reason);
    }
    void ZipIdle() override {
        ++idles;
        if (onIdle)
            onIdle(idles);
    }
    bool ZipAbortRequested() override { return abort; }

    QStringList log;
    QMap<QString, int64_t> sizes;
    QMap<QString, QString> dates;
    QMap<QString, int64_t> compressed;
    QList<int> overall;
    QStringList skipped;
    int idles = 0;
    bool abort = false;
    std::function<void(int)> onIdle;
};

// A tool's exit code and what it wrote, run with an argument list.
struct ToolRun {
    int exitCode = -1;
    QString output;
};
inline ToolRun RunTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromLocal8Bit(process.readAll())};
}

// A small file system of its own under a folder, for a full or read-only medium. Needs
// the right to mount (root); Mounted() tells whether it worked.
class TmpfsMount {
public:
    TmpfsMount(const QString& folder, const QString& options) : folder_(folder) {
        QDir().mkpath(folder);
        mounted_ = RunTool(QStringLiteral("mount"),
                           {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                            options, QStringLiteral("tmpfs"), folder})
                       .exitCode == 0;
    }
    ~TmpfsMount() {
        if (mounted_)
            RunTool(QStringLiteral("umount"), {folder_});
    }
    TmpfsMount(const TmpfsMount&) = delete;
    TmpfsMount& operator=(const TmpfsMount&) = delete;
    bool Mounted() const { return mounted_; }

private:
    QString folder_;
    bool mounted_ = false;
};

} // namespace tarvex::testing
