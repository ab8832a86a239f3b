#pragma once

#include <QLockFile>
#include <QString>

namespace tarvex {

// One copy of the program for each user: the first holds a lock file, a second finds it
// held. A lock left by a copy that died is taken over.
class SingleInstanceLock {
public:
    explicit SingleInstanceLock(const QString& lockPath);
    // True when this copy holds the lock (or already did).
    bool TryLock();

private:
    QLockFile lock_;
};

} // namespace tarvex
