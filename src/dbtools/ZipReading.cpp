// Reading a backup archive for the restore: its list of files and one file's bytes.
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

// --- reading for the restore

namespace {

[[noreturn]] void ThrowArchiveFault(const QString& archive, int code) {
    throw Fault(QStringLiteral("The backup archive \"%1\" cannot be read: %2.")
                    .arg(Native(archive), ZipArchiveFaultReason(code)));
}

[[noreturn]] void ThrowEntryFault(const QString& archive, const QString& entry, int code) {
    throw Fault(QStringLiteral("The file \"%1\" in the backup archive \"%2\" cannot be read: %3.")
                    .arg(entry, Native(archive), ZipEntryFaultReason(code)));
}

ZipHandle OpenOrThrow(const QString& archive) {
    int error = ZIP_ER_OK;
    ZipHandle zip = OpenForReading(archive, error);
    if (!zip)
        ThrowArchiveFault(archive, error);
    return zip;
}

ZipFileHandle OpenEntryOrThrow(zip_t* zip, zip_uint64_t index, const QByteArray& password,
                               const QString& archive, const QString& entry) {
    ZipFileHandle file(zip_fopen_index_encrypted(zip, index, 0, PasswordOrNull(password)));
    if (!file)
        ThrowEntryFault(archive, entry, zip_error_code_zip(zip_get_error(zip)));
    return file;
}

void CopyEntry(zip_file_t* file, QFile& target, uint64_t size, const QString& archive,
               const QString& entry) {
    std::vector<char> buffer(64 * 1024);
    uint64_t total = 0;
    for (;;) {
        const zip_int64_t read = zip_fread(file, buffer.data(), buffer.size());
        if (read < 0)
            ThrowEntryFault(archive, entry, zip_error_code_zip(zip_file_get_error(file)));
        if (read == 0)
            break;
        if (target.write(buffer.data(), read) != read)
            throw Fault(QStringLiteral("\"%1\" cannot be written: %2.")
                            .arg(Native(target.fileName()), target.errorString()));
        total += static_cast<uint64_t>(read);
    }
    if (total != size)
        throw Fault(QStringLiteral("The file \"%1\" in the backup archive \"%2\" is cut short: "
                                   "%3 of %4 bytes.")
                        .arg(entry, Native(archive))
                        .arg(total)
                        .arg(size));
}

// Puts the written bytes on the disk before the caller renames the file into place.
void SyncAndClose(QFile& target) {
    bool synced = target.flush();
#ifdef Q_OS_UNIX
    synced = synced && ::fsync(target.handle()) == 0;
#endif
    target.close();
    if (!synced || target.error() != QFileDevice::NoError)
        throw Fault(QStringLiteral("\"%1\" cannot be written: %2.")
                        .arg(Native(target.fileName()), target.errorString()));
}

} // namespace

std::vector<ZipEntryInfo> ListArchive(const QString& path, const QString& password) {
    const ZipHandle zip = OpenOrThrow(path);
    const QByteArray key = password.toUtf8();
    const zip_int64_t count = zip_get_num_entries(zip.get(), 0);
    std::vector<ZipEntryInfo> entries;
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t stat;
        if (zip_stat_index(zip.get(), static_cast<zip_uint64_t>(i), 0, &stat) != 0)
            ThrowArchiveFault(path, zip_error_code_zip(zip_get_error(zip.get())));
        ZipEntryInfo info{QString::fromUtf8(stat.name), static_cast<int64_t>(stat.size),
                          static_cast<int64_t>(stat.comp_size),
                          QDateTime::fromSecsSinceEpoch(stat.mtime),
                          stat.encryption_method != ZIP_EM_NONE};
        if (info.Encrypted && !key.isEmpty())
            OpenEntryOrThrow(zip.get(), stat.index, key, path, info.Name);
        entries.push_back(std::move(info));
    }
    return entries;
}

namespace {

void WriteEntry(const QString& archive, const QString& entryName, const QString& password,
                const QString& targetPath) {
    const ZipHandle zip = OpenOrThrow(archive);
    const zip_int64_t index = zip_name_locate(zip.get(), entryName.toUtf8().constData(), 0);
    if (index < 0)
        throw Fault(QStringLiteral("The backup archive \"%1\" holds no file \"%2\".")
                        .arg(Native(archive), entryName));
    zip_stat_t stat;
    if (zip_stat_index(zip.get(), static_cast<zip_uint64_t>(index), 0, &stat) != 0)
        ThrowArchiveFault(archive, zip_error_code_zip(zip_get_error(zip.get())));
    const ZipFileHandle file =
        OpenEntryOrThrow(zip.get(), stat.index, password.toUtf8(), archive, entryName);
    QFile target(targetPath);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate, kOwnerOnly) ||
        !target.setPermissions(kOwnerOnly))
        throw Fault(QStringLiteral("\"%1\" cannot be written: %2.")
                        .arg(Native(targetPath), target.errorString()));
    CopyEntry(file.get(), target, stat.size, archive, entryName);
    SyncAndClose(target);
}

} // namespace

void ExtractEntry(const QString& archive, const QString& entryName, const QString& password,
                  const QString& targetPath) {
    try {
        WriteEntry(archive, entryName, password, targetPath);
    } catch (...) {
        QFile::remove(targetPath); // no part of a file, nor one of before, stays behind
        throw;
    }
}

} // namespace tarvex
