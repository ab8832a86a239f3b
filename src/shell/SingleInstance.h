#pragma once

#include <QLockFile>
#include <QString>

namespace tarvex {

// What became of a start's claim on the data folder.
enum class InstanceClaim {
    Claimed,         // this copy holds the lock (a lock left by a copy that died is taken over)
    HeldHere,        // a live copy of the program on this computer holds it
    HeldElsewhere,   // a copy on another computer (a shared home folder) holds it
    FolderUnwritable // the lock file cannot be made: the folder is missing or read-only
};

// One copy of the program for each user: the first holds a lock file in the data folder,
// a second finds it held. A lock whose process is gone, and a lock file whose content was
// never finished, are taken over; a lock from another computer is left alone, since
// nothing here can tell whether that copy still runs.
class SingleInstanceLock {
public:
    explicit SingleInstanceLock(const QString& lockPath);
    InstanceClaim Claim();
    // What the user is told of a claim that failed for any reason but a live copy here:
    // the folder, the cause and what to do.
    QString ProblemText(InstanceClaim claim) const;

private:
    QString path_;
    QLockFile lock_;
    QString holderHost_;
    qint64 holderPid_ = 0;
    QString systemError_;
};

} // namespace tarvex
