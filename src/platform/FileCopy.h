#pragma once

#include "platform/GrowingFile.h"

#include <QFile>
#include <QString>

namespace platform {

/// Copies one file in portions, so that whoever copies goes on with other things in between.
class FileCopy {
public:
    /// Opens both files. A target of the name is replaced at the end. Throws RunTimeError
    /// `PathNotFound` without a source, `DiskFull` or `PathAccess`.
    FileCopy(const QString& from, const QString& to);

    /// Copies at most so many bytes onto the medium itself. False when the file is whole. Throws
    /// RunTimeError `DiskFull`, `DeviceIo` or `PathAccess`, as when the medium is pulled out.
    bool Advance(qint64 most);
    qint64 Copied() const { return copied_; }

private:
    void Finish();

    QFile source_;
    GrowingFile copy_;
    qint64 copied_ = 0;
    bool finished_ = false;
};

} // namespace platform
