#include "platform/SingleInstance.h"

namespace platform {

bool SingleInstance::Acquire() {
    if (lock_.isLocked() || lock_.tryLock(0))
        return true;
    return lock_.error() != QLockFile::LockFailedError;
}

} // namespace platform
