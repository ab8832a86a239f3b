#include "shell/SingleInstance.h"

namespace tarvex {

SingleInstanceLock::SingleInstanceLock(const QString& lockPath) : lock_(lockPath) {
    lock_.setStaleLockTime(0); // only a lock whose process is gone is stale
}

bool SingleInstanceLock::TryLock() {
    return lock_.isLocked() || lock_.tryLock(0);
}

} // namespace tarvex
