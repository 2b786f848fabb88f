#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

namespace platform {

/// Holds the mark that a program runs in a folder: a file at `path` or, where that folder can't be
/// written to, one in the user's folder of what runs, named after `path`. The mark of a process
/// that has died doesn't count.
class SingleInstance {
public:
    explicit SingleInstance(const QString& path);
    /// False when another live process holds the mark. True also where no mark can be written at
    /// all: that must not keep the alarms off the screen.
    bool Acquire();

private:
    QString path_;
    QLockFile lock_;
    /// Made when the other can't be.
    std::unique_ptr<QLockFile> userLock_;
};

} // namespace platform
