#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QString>

namespace platform {

/// A file that is written in portions, so that whoever writes goes on with other things in between.
/// It grows under another name and takes its place when it is whole and on the medium; one that is
/// left unfinished goes.
class GrowingFile {
public:
    /// A file of the name is replaced at the end. Throws RunTimeError `DiskFull` or `PathAccess`.
    explicit GrowingFile(const QString& path);
    ~GrowingFile();
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;

    /// Writes a portion onto the medium itself. Throws RunTimeError `DiskFull` or `DeviceIo`, as
    /// when the medium is pulled out.
    void Append(const QByteArray& bytes);
    /// The time of its last change, in place of the present one.
    void setTime(const QDateTime& time);
    /// Gives the file its name, on the medium too: it may be pulled out then. Throws as `Append`,
    /// or `PathAccess`.
    void Finish();

private:
    QFile file_;
    QString target_;
    bool finished_ = false;
};

} // namespace platform
