#include "media/MediaDrives.h"

#include "shell/AppFolder.h"
#include "shell/AppState.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace tarvex {

QString DriveRoot(const QString& drive) {
    if (drive.contains(u'/'))
        return drive;
    return drive.left(2);
}

QString DriveMediaFolder(const QString& drive, const QString& folderWord) {
    const QString root = DriveRoot(drive);
    QString folder = FindFileNoCase(root, folderWord);
    if (!folder.endsWith(u'/'))
        folder += u'/';
    return QDir::toNativeSeparators(folder);
}

namespace {

// File systems that hold files a clinic copies from: disks, removable media, optical
// discs and network shares. Everything else (proc, tmpfs, snap images ...) is no drive.
bool IsMediaVolume(const QStorageInfo& volume) {
    if (!volume.isValid() || !volume.isReady())
        return false;
    const QByteArray type = volume.fileSystemType();
    static const QList<QByteArray> shares = {"nfs", "nfs4", "cifs", "smb3", "fuse.sshfs"};
    if (shares.contains(type))
        return true;
    const QByteArray device = volume.device();
    return device.startsWith("/dev/") && !device.startsWith("/dev/loop") && type != "squashfs";
}

QString VolumeName(const QStorageInfo& volume) {
    QString label = volume.name();
    if (label.isEmpty())
        label = QFileInfo(volume.rootPath()).fileName();
    const QString root = QDir::toNativeSeparators(volume.rootPath());
    return label.isEmpty() ? root : QStringLiteral("%1 (%2)").arg(label, root);
}

} // namespace

QList<MediaDrive> ListMediaDrives(const AppState& state) {
    QList<MediaDrive> drives;
    QStringList roots;
    const auto add = [&](const QString& name, const QString& root) {
        const QString clean = QDir::cleanPath(root);
        if (roots.contains(clean))
            return;
        roots << clean;
        drives.push_back({name, QDir::toNativeSeparators(clean)});
    };
    if (QFileInfo(state.DeliveredFolder).isDir())
        add(QStringLiteral("Tarvex delivered media (%1)")
                .arg(QDir::toNativeSeparators(QDir::cleanPath(state.DeliveredFolder))),
            state.DeliveredFolder);
    const QString setting = DriveRoot(state.CDRomDrive);
    if (setting.contains(u'/') && QFileInfo(setting).isDir())
        add(QStringLiteral("CD-ROM drive setting (%1)").arg(QDir::toNativeSeparators(setting)),
            setting);
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (IsMediaVolume(volume))
            add(VolumeName(volume), volume.rootPath());
    }
    return drives;
}

} // namespace tarvex
