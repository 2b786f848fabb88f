#pragma once

#include <QFile>
#include <QString>

namespace platform {

/// Copies one file in portions, so that whoever copies goes on with other things in between. It
/// grows under another name and takes its place when it is whole and on the medium; one that is
/// left unfinished goes.
class FileCopy {
public:
    /// Opens both files. A target of the name is replaced at the end. Throws RunTimeError
    /// `PathNotFound` without a source, `DiskFull` or `PathAccess`.
    FileCopy(const QString& from, const QString& to);
    ~FileCopy();
    FileCopy(const FileCopy&) = delete;
    FileCopy& operator=(const FileCopy&) = delete;

    /// Copies at most so many bytes onto the medium itself. False when the file is whole. Throws
    /// RunTimeError `DiskFull`, `DeviceIo` or `PathAccess`, as when the medium is pulled out.
    bool Advance(qint64 most);
    qint64 Copied() const { return copied_; }

private:
    void Finish();

    QFile source_;
    QFile copy_;
    QString target_;
    qint64 copied_ = 0;
    bool finished_ = false;
};

} // namespace platform
