#pragma once

#include <QLockFile>
#include <QString>

namespace platform {

/// Holds the mark that this program runs in `folder`. The mark of a process that has died doesn't
/// count.
class SingleInstance {
public:
    explicit SingleInstance(const QString& path)
        : lock_(path) {}
    /// False when another live process holds the mark. True also where no mark can be written: a
    /// read-only folder must not keep the alarms off the screen.
    bool Acquire();

private:
    QLockFile lock_;
};

} // namespace platform
