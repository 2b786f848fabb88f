#include "platform/DiskFlush.h"

#include <QFile>
#include <QStringList>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace platform::DiskFlush {

namespace {
/// Few files at a time: a trace, a history, the settings.
QStringList owed;
} // namespace

void Owe(const QString& path) {
    if (!owed.contains(path))
        owed += path;
}

int Pay() {
    const QStringList paths = std::exchange(owed, {});
    for (const QString& path : paths) {
        const int handle = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        if (handle < 0)
            continue;
        fdatasync(handle);
        close(handle);
    }
    return int(paths.size());
}

} // namespace platform::DiskFlush
