#pragma once

#include <QList>
#include <QString>

namespace tarvex {

struct AppState;

// A place that may hold the delivered media laid out as on the CD (PICTURE, MOVIE, ICON):
// a mounted volume, a removable medium, a share, or the delivered media installed with the
// program. Name is what the drive list shows; Root is the folder the media lie under.
struct MediaDrive {
    QString Name;
    QString Root;
};

// The part of a drive setting that names the drive: a drive letter such as "D:" keeps its
// first two characters, as on the system this program came from; a folder stays whole.
QString DriveRoot(const QString& drive);

// The folder of the drive under which a media folder ("Picture", "Movie") lies, found
// without regard to case, with a final separator.
QString DriveMediaFolder(const QString& drive, const QString& folderWord);

// The places for the drive list: the delivered media first, then the CD drive setting when
// it names another folder, then every mounted volume and share that is ready (removable
// media among them). System and pseudo file systems are left out.
QList<MediaDrive> ListMediaDrives(const AppState& state);

} // namespace tarvex
