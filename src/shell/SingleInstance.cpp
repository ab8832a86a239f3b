#include "shell/SingleInstance.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <cerrno>
#include <cstring>

namespace tarvex {

namespace {

// A lock file whose content cannot be read is one whose writer died between making it and
// filling it in; a copy that is starting takes far less than this to fill it.
constexpr qint64 kUnfinishedLockAgeMs = 10'000;

bool OldEnough(const QString& path) {
    const QDateTime modified = QFileInfo(path).lastModified();
    return modified.isValid() &&
           modified.msecsTo(QDateTime::currentDateTime()) > kUnfinishedLockAgeMs;
}

QString FolderOf(const QString& path) {
    return QDir::toNativeSeparators(QFileInfo(path).absolutePath());
}

} // namespace

SingleInstanceLock::SingleInstanceLock(const QString& lockPath) : path_(lockPath), lock_(lockPath) {
    lock_.setStaleLockTime(0); // only a lock whose process is gone is stale
}

InstanceClaim SingleInstanceLock::Claim() {
    if (lock_.isLocked())
        return InstanceClaim::Claimed;
    for (int attempt = 0; attempt < 2; ++attempt) {
        errno = 0;
        if (lock_.tryLock(0))
            return InstanceClaim::Claimed;
        if (lock_.error() != QLockFile::LockFailedError) {
            const int cause = errno;
            if (!QFileInfo(QFileInfo(path_).absolutePath()).isDir())
                systemError_ = QStringLiteral("the folder does not exist and cannot be made");
            else if (cause != 0)
                systemError_ = QString::fromLocal8Bit(std::strerror(cause));
            return InstanceClaim::FolderUnwritable;
        }
        QString app;
        if (lock_.getLockInfo(&holderPid_, &holderHost_, &app)) {
            if (!holderHost_.isEmpty() && holderHost_ != QSysInfo::machineHostName())
                return InstanceClaim::HeldElsewhere;
            return InstanceClaim::HeldHere; // a dead holder here was taken over by tryLock
        }
        // Unreadable content: taken over once it is clearly not being written just now.
        if (!OldEnough(path_) || !QFile::remove(path_))
            return InstanceClaim::HeldHere;
    }
    return InstanceClaim::HeldHere;
}

QString SingleInstanceLock::ProblemText(InstanceClaim claim) const {
    const QString folder = FolderOf(path_);
    const QString file = QDir::toNativeSeparators(QFileInfo(path_).absoluteFilePath());
    switch (claim) {
    case InstanceClaim::HeldElsewhere:
        return QStringLiteral(
                   "The data folder %1 is in use by TVX Regimenter on the computer \"%2\" "
                   "(process %3).\n\n"
                   "Only one copy of the program may work on a data folder at a time. Close "
                   "the program on that computer, then start it here again. If that computer "
                   "no longer runs the program (it was switched off or failed), delete the "
                   "file %4 and start again.")
            .arg(folder, holderHost_, QString::number(holderPid_), file);
    case InstanceClaim::FolderUnwritable:
        return QStringLiteral("TVX Regimenter cannot write in its data folder %1%2.\n\n"
                              "Make sure the folder exists, belongs to you and can be written "
                              "(the disk is not full and not mounted read-only), then start "
                              "the program again.")
            .arg(folder,
                 systemError_.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(systemError_));
    case InstanceClaim::Claimed:
    case InstanceClaim::HeldHere:
        break;
    }
    return {};
}

} // namespace tarvex
