#include "dbtools/RestoreLogic.h"

#include "data/DatabaseCheck.h"
#include "data/Schema.h"
#include "dbtools/MaintenanceHost.h"
#include "shell/AppFolder.h"
#include "support/DurableFiles.h"
#include "support/Fault.h"
#include "support/FileDialog.h"
#include "support/Prompter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>

namespace tarvex {

namespace {

struct DatabaseFile {
    const char* Name;
    const char* MarkTable;
};

constexpr DatabaseFile kDatabases[] = {
    {kProgramDbFile, "Patient"}, {kLibraryDbFile, "ExerciseLibrary"}, {kPicklistDbFile, "Label"}};

const ZipEntryInfo* FindEntry(const std::vector<ZipEntryInfo>& files, const char* name) {
    for (const ZipEntryInfo& file : files)
        if (file.Name.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return &file;
    return nullptr;
}

// The journals of a closed database: empty ones go; one that still holds work means that
// something has the file open, and nothing is replaced.
void ClearJournals(const QString& path) {
    for (const char* suffix : {"-wal", "-journal"}) {
        const QFileInfo journal(path + QLatin1String(suffix));
        if (journal.isFile() && journal.size() > 0)
            throw DatabaseFault(
                QStringLiteral("'%1' is still in use by another program.").arg(path), 3045);
    }
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        QFile::remove(path + QLatin1String(suffix));
}

QString KeptName(const QString& path, const QDateTime& now) {
    const QFileInfo info(path);
    return info.dir().filePath(QStringLiteral("%1 (before restore %2).%3")
                                   .arg(info.completeBaseName(),
                                        now.toString(QStringLiteral("yyyy-MM-dd HHmmss")),
                                        info.suffix()));
}

} // namespace

RestoreLogic::RestoreLogic(IMaintenanceHost& host, Prompter& prompts, IOpenFileDialog& dialog)
    : host_(host), prompts_(prompts), dialog_(dialog) {}

void RestoreLogic::Fail(const QString& text) {
    prompts_.MsgBox(text, msg::OkOnly | msg::Critical, QLatin1String(kRestoreTitle));
}

bool ChooseBackupArchive(IOpenFileDialog& dialog, Prompter& prompts, const QString& startFolder,
                         QString& archive, QString& password) {
    OpenFileRequest request;
    request.Filter = QStringLiteral("Backup archives|*.zip|All files|*");
    request.InitDir = startFolder;
    request.FileName = QLatin1String(kBackupArchiveName);
    request.Flags = 4;
    const std::optional<QString> chosen = dialog.ShowOpen(request);
    if (!chosen || chosen->isEmpty())
        return false;
    archive = *chosen;
    const std::vector<ZipEntryInfo> files = ListArchive(archive, QString());
    const bool encrypted =
        std::any_of(files.begin(), files.end(), [](const ZipEntryInfo& f) { return f.Encrypted; });
    if (!encrypted)
        return true;
    const std::optional<QString> typed = prompts.InputBox(
        QStringLiteral("The backup '%1' is protected by a password. Type the password:")
            .arg(QFileInfo(archive).fileName()),
        QLatin1String(kRestoreTitle), QString());
    if (!typed)
        return false;
    password = *typed;
    return true;
}

bool RestoreLogic::Choose(QString& archive, QString& password) {
    return ChooseBackupArchive(dialog_, prompts_, StartFolder, archive, password);
}

bool RestoreLogic::Holds(const QString& archive, const std::vector<ZipEntryInfo>& files) {
    for (const DatabaseFile& db : kDatabases)
        if (!FindEntry(files, db.Name)) {
            Fail(QStringLiteral("The archive '%1' does not hold \"%2\". A backup of TVX "
                                "Regimenter holds \"Tarvex.MDB\", \"Exercise Library.MDB\" and "
                                "\"Picklist.MDB\". Nothing was restored.")
                     .arg(archive, QLatin1String(db.Name)));
            return false;
        }
    return true;
}

bool RestoreLogic::Confirm(const QString& archive, const std::vector<ZipEntryInfo>& files) {
    QStringList lines;
    for (const DatabaseFile& db : kDatabases) {
        const ZipEntryInfo* file = FindEntry(files, db.Name);
        lines << QStringLiteral("%1   %2   %3 K")
                     .arg(file->Name, QLocale::c().toString(file->Modified, "MM/dd/yy HH:mm"))
                     .arg(file->Size / 1024);
    }
    const int others = static_cast<int>(files.size()) - 3;
    if (others > 0)
        lines << QStringLiteral("(and %1 other files, which are not restored)").arg(others);
    const QString text =
        QStringLiteral("Restore the TVX databases from '%1'?\r\r%2\r\rThe databases as they are "
                       "now stay in the data folder under names that end in \"(before "
                       "restore ...)\".")
            .arg(archive, lines.join(u'\r'));
    return prompts_.MsgBox(text, msg::YesNo | msg::Question | msg::DefaultButton2,
                           QLatin1String(kRestoreTitle)) == Answer::Yes;
}

void RestoreLogic::Extract(const QString& archive, const QString& password,
                           const std::vector<ZipEntryInfo>& files) {
    const QString folder = host_.AppFolder();
    const QDateTime now = Now();
    entries_.clear();
    for (const DatabaseFile& db : kDatabases) {
        Entry entry;
        entry.Target = FindFileNoCase(folder, QLatin1String(db.Name));
        entry.FileName = QFileInfo(entry.Target).fileName();
        entry.Extracted = entry.Target + QStringLiteral(".restore");
        entry.Kept = KeptName(entry.Target, now);
        entries_.push_back(entry);
        QFile::remove(entry.Extracted);
        // The entry as the archive spells it; the file takes the folder's own name.
        ExtractEntry(archive, FindEntry(files, db.Name)->Name, password, entry.Extracted);
        // The file must be a database of this program before it replaces anything.
        CheckDatabaseFile(entry.Extracted, QLatin1String(db.MarkTable));
        // The check only read it: its empty journals go, so they never stand beside it.
        ClearJournals(entry.Extracted);
    }
}

void RestoreLogic::SwapIn() {
    for (Entry& entry : entries_) {
        ClearJournals(entry.Target);
        if (QFileInfo::exists(entry.Target))
            KeepSecondName(entry.Target, entry.Kept);
        ReplaceFileDurably(entry.Extracted, entry.Target);
        entry.Replaced = true;
    }
}

void RestoreLogic::PutBack() {
    for (Entry& entry : entries_) {
        if (entry.Replaced && QFileInfo::exists(entry.Kept)) {
            ClearJournals(entry.Target);
            ReplaceFileDurably(entry.Kept, entry.Target);
        } else if (!entry.Replaced) {
            QFile::remove(entry.Kept);
        }
        entry.Replaced = false;
    }
}

void RestoreLogic::RemoveExtracted() {
    for (const Entry& entry : entries_)
        for (const char* suffix : {"", "-wal", "-shm", "-journal"})
            QFile::remove(entry.Extracted + QLatin1String(suffix));
}

void RestoreLogic::RestoreDatabases() {
    QString archive;
    QString password;
    try {
        if (!Choose(archive, password))
            return;
        const int16_t tested = ZipTestArchive(archive, password);
        if (tested != zipcode::kSuccess) {
            ZipResultMessage(prompts_, tested, QStringLiteral("testing"));
            return;
        }
        const std::vector<ZipEntryInfo> files = ListArchive(archive, password);
        if (!Holds(archive, files) || !Confirm(archive, files))
            return;
        HostHourglass busy(host_);
        Extract(archive, password, files);
    } catch (const Fault& fault) {
        RemoveExtracted();
        Fail(QStringLiteral("Restore unsuccessful!\rError number: %1\r%2")
                 .arg(fault.Number())
                 .arg(fault.Message()));
        return;
    }

    ClosedDatabases closed(host_);
    try {
        SwapIn();
        closed.Reopen();
    } catch (const Fault& fault) {
        // The present files go back in their place, and open as before.
        try {
            host_.CloseDatabases();
            PutBack();
        } catch (const Fault&) { // NOLINT(bugprone-empty-catch): the first fault is reported
        }
        RemoveExtracted();
        Fail(QStringLiteral("Restore unsuccessful!\rError number: %1\r%2\r\rThe databases are "
                            "as they were before.")
                 .arg(fault.Number())
                 .arg(fault.Message()));
        closed.Reopen();
        host_.ResetShell();
        return;
    }
    prompts_.MsgBox(QStringLiteral("The databases were restored from '%1'.").arg(archive),
                    msg::OkOnly | msg::Information, QLatin1String(kRestoreTitle));
    host_.ResetShell();
}

} // namespace tarvex
