#pragma once

// The Zip archive engine of the backup and the restore, over libzip. Every operation
// gives a result code of ZipMessages.h (0 for success) or, for the reading helpers of the
// restore, throws a Fault with a text for the user.

#include "dbtools/ZipMessages.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace tarvex {

// The backup archive's file name, in the folder the user backs up to.
inline constexpr const char* kBackupArchiveName = "Tarvex Backup.ZIP";

// The engine always writes a new archive into a temporary file beside the old one and
// renames it over the old one at the end, so a job can always be aborted.
inline constexpr bool kZipUsesTemporaryFile = true;

// One file in an archive.
struct ZipEntryInfo {
    QString Name; // as stored; never taken as a path
    int64_t Size = 0;
    int64_t CompressedSize = 0;
    QDateTime Modified;
    bool Encrypted = false;
};

// What a job tells while it runs, on the calling thread.
class IZipEvents {
public:
    virtual ~IZipEvents() = default;
    // A file starts to go into the archive; dateText is its time of change as
    // "MM/dd/yy HH:mm".
    virtual void ZipAddingFile(const QString& name, int64_t size, const QString& dateText) = 0;
    // After the archive is written: how much room a file takes in it.
    virtual void ZipFileCompressed(const QString& name, int64_t compressedSize) = 0;
    virtual void ZipTestingFile(const QString& name, int64_t size) = 0;
    virtual void ZipFilePercent(int16_t percent) = 0;
    virtual void ZipOverallPercent(int16_t percent) = 0;
    // A file that is passed over, with a reason of skipreason.
    virtual void ZipFileSkipped(const QString& name, int reason) = 0;
    // Lets pending events run (an Abort click among them).
    virtual void ZipIdle() = 0;
    // True when the user asked to stop; the job then ends with zipcode::kAborted.
    virtual bool ZipAbortRequested() = 0;
};

// Events that nobody hears: a job without a window, which is never aborted.
class QuietZipEvents : public IZipEvents {
public:
    void ZipAddingFile(const QString&, int64_t, const QString&) override {}
    void ZipFileCompressed(const QString&, int64_t) override {}
    void ZipTestingFile(const QString&, int64_t) override {}
    void ZipFilePercent(int16_t) override {}
    void ZipOverallPercent(int16_t) override {}
    void ZipFileSkipped(const QString&, int) override {}
    void ZipIdle() override {}
    bool ZipAbortRequested() override { return false; }
};

// What to put into an archive.
struct ZipAddJob {
    QString Archive;   // the archive's full path; it is replaced as a whole
    QString Folder;    // the files are read from here
    QStringList Files; // names within Folder, stored as they are given
    QString Password;  // empty: a plain archive; else every entry is AES-256 encrypted
};

// Writes a new archive of the files. A file that is missing or cannot be opened is
// skipped (with the event) and the result is then kFilesSkipped; when none is left the
// old archive stays as it was. On any failure or abort the old archive stays whole.
// The archive is made readable by its owner only. What a killed job left beside the
// archive (its temporary file) is removed first.
int16_t ZipAddFiles(const ZipAddJob& job, IZipEvents& events);

// Reads every file of the archive in full, which checks each one's CRC (and, when
// encrypted, its authentication code). An entry that cannot be decrypted with the
// password is skipped (reason kBadPassword): some skipped gives kFilesSkipped, all skipped
// kNothingTested. A damaged entry gives kTestFailed after all were tried.
int16_t ZipTestArchive(const QString& archive, const QString& password, IZipEvents& events);
// The same without events, for a check before a restore.
int16_t ZipTestArchive(const QString& archive, const QString& password);

// Repairs the archive with the system's "zip" tool ("-FF" when force, else "-F") into a
// temporary file beside it. The file a cut went through is then taken out (with "unzip"
// and "zip -d"), until the archive holds together; then it is renamed over the damaged
// one. When nothing can be saved the result is kCorrupted and the damaged file stays.
// Runs the events while the tools work, so the repair can be aborted.
int16_t ZipFixArchive(const QString& archive, bool force, IZipEvents& events);

// The files of an archive. A missing, empty, cut short or damaged file, or one that is no
// Zip archive, is a Fault. When a password is given it must open every encrypted file,
// else that is a Fault too (names and sizes themselves are never encrypted).
std::vector<ZipEntryInfo> ListArchive(const QString& path, const QString& password);

// Writes the bytes of one entry to targetPath (which the caller names, a temporary file
// as a rule), private to the user, flushed to the disk. A missing entry, a wrong password,
// a CRC error or a short read is a Fault, and no file of the target's name is left then.
void ExtractEntry(const QString& archive, const QString& entryName, const QString& password,
                  const QString& targetPath);

// A time as the list of added files shows it: "MM/dd/yy HH:mm".
QString ZipDateText(const QDateTime& time);

} // namespace tarvex
