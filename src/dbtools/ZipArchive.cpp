#include "dbtools/ZipArchive.h"

#include "dbtools/ZipHandles.h"

#include "support/Fault.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <zip.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace tarvex {

using namespace zipio;

namespace {

// --- adding

struct PendingEntry {
    QString Name;
    QString Path;
    int64_t Size = 0;
    QDateTime Modified;
};

// The files of the job that are there to be read; the others are told as skipped.
std::vector<PendingEntry> CollectFiles(const ZipAddJob& job, IZipEvents& events, bool& skipped) {
    std::vector<PendingEntry> entries;
    for (const QString& name : job.Files) {
        const QString path = QDir(job.Folder).filePath(name);
        const QFileInfo info(path);
        int reason = -1;
        if (!info.isFile())
            reason = skipreason::kFileNotFound;
        else if (QFile file(path); !file.open(QIODevice::ReadOnly))
            reason = skipreason::kCannotOpen;
        if (reason >= 0) {
            skipped = true;
            events.ZipFileSkipped(name, reason);
            continue;
        }
        entries.push_back({name, path, info.size(), info.lastModified()});
    }
    return entries;
}

// Deflate at zip's own default level: libzip's default is the slowest, which takes four
// times as long on a database's many like pages for a few per mille of room.
constexpr zip_uint32_t kDeflateLevel = 6;

bool AddEntry(zip_t* zip, const PendingEntry& entry, const QByteArray& password) {
    zip_source_t* source = zip_source_file(zip, FileName(entry.Path).constData(), 0, -1);
    if (!source)
        return false;
    const zip_int64_t added = zip_file_add(zip, entry.Name.toUtf8().constData(), source,
                                           ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE);
    if (added < 0) {
        zip_source_free(source);
        return false;
    }
    const auto index = static_cast<zip_uint64_t>(added);
    return zip_file_set_mtime(zip, index, entry.Modified.toSecsSinceEpoch(), 0) == 0 &&
           zip_set_file_compression(zip, index, ZIP_CM_DEFLATE, kDeflateLevel) == 0 &&
           (password.isEmpty() ||
            zip_file_set_encryption(zip, index, ZIP_EM_AES_256, password.constData()) == 0);
}

// Turns libzip's progress of the whole archive into the events of each file. libzip 1.7
// gives entry j of n the part j/n to (j+1)/n of the range and starts it at exactly j/n.
class AddProgress {
public:
    AddProgress(IZipEvents& events, const std::vector<PendingEntry>& entries)
        : events_(events), entries_(entries) {}

    // The callbacks run inside libzip's C code, which an exception must not cross: it is
    // kept, the job is cancelled, and it goes on once zip_close has returned.
    static void OnProgress(zip_t*, double fraction, void* self) {
        auto* progress = static_cast<AddProgress*>(self);
        try {
            progress->Update(fraction);
        } catch (...) {
            progress->failure_ = std::current_exception();
        }
    }
    static int OnCancel(zip_t*, void* self) {
        auto* progress = static_cast<AddProgress*>(self);
        if (progress->failure_)
            return 1;
        try {
            return progress->events_.ZipAbortRequested() ? 1 : 0;
        } catch (...) {
            progress->failure_ = std::current_exception();
            return 1;
        }
    }

    void RethrowFailure() const {
        if (failure_)
            std::rethrow_exception(failure_);
    }
    // After a successful close: the starts that no update reached, and the full bar.
    void Finish() {
        StartUpTo(static_cast<int>(entries_.size()) - 1);
        SetFilePercent(100);
        SetOverall(100);
    }

private:
    void Update(double fraction) {
        const int count = static_cast<int>(entries_.size());
        int index = 0;
        while (index + 1 < count &&
               static_cast<double>(index + 1) / static_cast<double>(count) <= fraction)
            ++index;
        StartUpTo(index);
        const double start = static_cast<double>(index) / static_cast<double>(count);
        SetFilePercent(
            static_cast<int16_t>(std::clamp((fraction - start) * count, 0.0, 1.0) * 100));
        SetOverall(static_cast<int16_t>(std::clamp(fraction, 0.0, 1.0) * 100));
        events_.ZipIdle();
    }
    void StartUpTo(int index) {
        while (current_ < index) {
            if (current_ >= 0)
                SetFilePercent(100);
            const PendingEntry& entry = entries_[static_cast<size_t>(++current_)];
            filePercent_ = -1;
            events_.ZipAddingFile(entry.Name, entry.Size, ZipDateText(entry.Modified));
        }
    }
    void SetFilePercent(int16_t percent) {
        if (percent == filePercent_)
            return;
        filePercent_ = percent;
        events_.ZipFilePercent(percent);
    }
    void SetOverall(int16_t percent) {
        if (percent == overall_)
            return;
        overall_ = percent;
        events_.ZipOverallPercent(percent);
    }

    IZipEvents& events_;
    const std::vector<PendingEntry>& entries_;
    int current_ = -1;
    int16_t filePercent_ = -1;
    int16_t overall_ = -1;
    std::exception_ptr failure_;
};

// The room each file takes in the written archive. An archive that cannot be read back
// tells nothing here: the test after the backup reports it.
void ReportCompressedSizes(const QString& archive, const std::vector<PendingEntry>& entries,
                           IZipEvents& events) {
    int error = ZIP_ER_OK;
    const ZipHandle zip = OpenForReading(archive, error);
    if (!zip)
        return;
    for (const PendingEntry& entry : entries) {
        zip_stat_t stat;
        if (zip_stat(zip.get(), entry.Name.toUtf8().constData(), 0, &stat) == 0)
            events.ZipFileCompressed(entry.Name, static_cast<int64_t>(stat.comp_size));
    }
}

// A job that was killed while it wrote leaves libzip's temporary file, "<archive>.XXXXXX",
// with the user's data in it: the next job takes it away.
void RemoveLeftTemporaries(const QString& archive) {
    const QFileInfo info(archive);
    const QRegularExpression left(
        QStringLiteral("^%1\\.[A-Za-z0-9]{6}$").arg(QRegularExpression::escape(info.fileName())));
    const QDir folder = info.absoluteDir();
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden))
        if (left.match(name).hasMatch())
            QFile::remove(folder.filePath(name));
}

} // namespace

QString ZipDateText(const QDateTime& time) {
    return time.toString(QStringLiteral("MM/dd/yy HH:mm"));
}

int16_t ZipAddFiles(const ZipAddJob& job, IZipEvents& events) {
    bool skipped = false;
    const std::vector<PendingEntry> entries = CollectFiles(job, events, skipped);
    if (entries.empty())
        return zipcode::kFilesSkipped; // nothing to write: the old archive stays
    RemoveLeftTemporaries(job.Archive);
    int error = ZIP_ER_OK;
    // The new archive is built in memory and written by zip_close into a temporary file
    // beside the old one, which it replaces only when all went well.
    ZipHandle zip(zip_open(FileName(job.Archive).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error));
    if (!zip)
        return error == ZIP_ER_MEMORY ? zipcode::kOutOfMemory : zipcode::kCreateError;
    const QByteArray password = job.Password.toUtf8();
    for (const PendingEntry& entry : entries)
        if (!AddEntry(zip.get(), entry, password))
            return WriteResult(zip_get_error(zip.get()));
    AddProgress progress(events, entries);
    zip_register_progress_callback_with_state(zip.get(), 0.0, &AddProgress::OnProgress, nullptr,
                                              &progress);
    zip_register_cancel_callback_with_state(zip.get(), &AddProgress::OnCancel, nullptr, &progress);
    if (zip_close(zip.get()) < 0) {
        progress.RethrowFailure();
        return WriteResult(zip_get_error(zip.get()));
    }
    (void)zip.release(); // zip_close has freed it
    QFile::setPermissions(job.Archive, kOwnerOnly);
    progress.Finish();
    ReportCompressedSizes(job.Archive, entries, events);
    return skipped ? zipcode::kFilesSkipped : zipcode::kSuccess;
}

// --- testing

namespace {

enum class EntryOutcome { Tested, Skipped, Damaged, Aborted };

// Reads one entry to its end; libzip checks the CRC (and an AES entry's authentication
// code) when the last byte has been read.
EntryOutcome TestEntry(zip_t* zip, const zip_stat_t& stat, const QByteArray& password,
                       IZipEvents& events) {
    ZipFileHandle file(zip_fopen_index_encrypted(zip, stat.index, 0, PasswordOrNull(password)));
    if (!file) {
        const int reason = ZipSkipReason(zip_error_code_zip(zip_get_error(zip)));
        zip_error_clear(zip);
        if (reason < 0)
            return EntryOutcome::Damaged;
        events.ZipFileSkipped(QString::fromUtf8(stat.name), reason);
        return EntryOutcome::Skipped;
    }
    std::vector<char> buffer(64 * 1024);
    uint64_t total = 0;
    for (;;) {
        const zip_int64_t read = zip_fread(file.get(), buffer.data(), buffer.size());
        if (read < 0)
            return EntryOutcome::Damaged;
        if (read == 0)
            break;
        total += static_cast<uint64_t>(read);
        events.ZipFilePercent(Percent(total, stat.size));
        events.ZipIdle();
        if (events.ZipAbortRequested())
            return EntryOutcome::Aborted;
    }
    return total == stat.size ? EntryOutcome::Tested : EntryOutcome::Damaged;
}

} // namespace

int16_t ZipTestArchive(const QString& archive, const QString& password, IZipEvents& events) {
    int error = ZIP_ER_OK;
    const ZipHandle zip = OpenForReading(archive, error);
    if (!zip)
        return ZipReadResult(error);
    const zip_int64_t count = zip_get_num_entries(zip.get(), 0);
    if (count <= 0)
        return zipcode::kEmptyZipFile;
    const QByteArray key = password.toUtf8();
    int tested = 0, skipped = 0, damaged = 0;
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t stat;
        if (zip_stat_index(zip.get(), static_cast<zip_uint64_t>(i), 0, &stat) != 0) {
            ++damaged;
            continue;
        }
        events.ZipTestingFile(QString::fromUtf8(stat.name), static_cast<int64_t>(stat.size));
        switch (TestEntry(zip.get(), stat, key, events)) {
        case EntryOutcome::Tested:
            ++tested;
            break;
        case EntryOutcome::Skipped:
            ++skipped;
            break;
        case EntryOutcome::Damaged:
            ++damaged;
            break;
        case EntryOutcome::Aborted:
            return zipcode::kAborted;
        }
        events.ZipOverallPercent(
            Percent(static_cast<uint64_t>(i + 1), static_cast<uint64_t>(count)));
    }
    if (damaged > 0)
        return zipcode::kTestFailed;
    if (tested == 0)
        return zipcode::kNothingTested;
    return skipped > 0 ? zipcode::kFilesSkipped : zipcode::kSuccess;
}

int16_t ZipTestArchive(const QString& archive, const QString& password) {
    QuietZipEvents quiet;
    return ZipTestArchive(archive, password, quiet);
}

} // namespace tarvex
