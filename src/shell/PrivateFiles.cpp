#include "shell/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace tarvex {

namespace {

constexpr QFileDevice::Permissions kOthersRights =
    QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
    QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;

// Takes the group's and others' rights away; the owner's stay as they are, so a file the
// user made read-only stays read-only. Owner rights the entry lacks are not given.
bool TakeOthersRights(const QString& path, QFileDevice::Permissions ownerRights) {
    const QFileDevice::Permissions now = QFile::permissions(path);
    if (!(now & kOthersRights))
        return false;
    return QFile::setPermissions(path, now & ownerRights);
}

} // namespace

void RestrictNewFilesToOwner() {
#ifdef Q_OS_UNIX
    umask(S_IRWXG | S_IRWXO);
#endif
}

bool MakeFilePrivate(const QString& path) {
    if (!QFileInfo(path).isFile())
        return false;
    return TakeOthersRights(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

bool MakeFolderPrivate(const QString& folder) {
    if (!QFileInfo(folder).isDir())
        return false;
    bool tightened = TakeOthersRights(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ExeOwner);
    const QFileInfoList files =
        QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo& file : files)
        tightened = MakeFilePrivate(file.filePath()) || tightened;
    return tightened;
}

} // namespace tarvex
