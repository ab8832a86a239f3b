#include "support/DurableFiles.h"

#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace tarvex {

namespace {

std::filesystem::path FsPath(const QString& path) {
    return std::filesystem::path(path.toStdU16String());
}

#ifdef Q_OS_UNIX
bool SyncPath(const QString& path, int flags) {
    const int fd = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}
#endif

} // namespace

bool SyncFile(const QString& path) {
#ifdef Q_OS_UNIX
    return SyncPath(path, O_RDONLY);
#else
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.flush();
#endif
}

bool SyncFolder(const QString& folder) {
#ifdef Q_OS_UNIX
    return SyncPath(folder, O_RDONLY | O_DIRECTORY);
#else
    Q_UNUSED(folder);
    return true; // the rename is durable on its own there
#endif
}

void ReplaceFileDurably(const QString& finished, const QString& target) {
    if (!SyncFile(finished))
        throw Fault(QStringLiteral("Could not write '%1' to the disk.").arg(finished));
    std::error_code error;
    std::filesystem::rename(FsPath(finished), FsPath(target), error);
    if (error)
        throw Fault(QStringLiteral("Could not put '%1' in the place of '%2': %3")
                        .arg(finished, target, QString::fromStdString(error.message())));
    SyncFolder(QFileInfo(target).absolutePath());
}

void KeepSecondName(const QString& path, const QString& secondName) {
    std::error_code error;
    std::filesystem::create_hard_link(FsPath(path), FsPath(secondName), error);
    if (!error) {
        SyncFolder(QFileInfo(secondName).absolutePath());
        return;
    }
    const QString partial = secondName + QStringLiteral(".partial");
    QFile::remove(partial);
    if (!QFile::copy(path, partial)) {
        QFile::remove(partial);
        throw Fault(QStringLiteral("Could not keep a copy of '%1' as '%2'.").arg(path, secondName));
    }
    ReplaceFileDurably(partial, secondName);
}

} // namespace tarvex
