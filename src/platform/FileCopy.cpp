#include "platform/FileCopy.h"

#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <QDateTime>
#include <QFileInfo>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace platform {

FileCopy::FileCopy(const QString& from, const QString& to)
    : source_(from)
    , copy_(to + QStringLiteral(".tmp"))
    , target_(to) {
    if (!source_.open(QIODevice::ReadOnly))
        throw RunTimeError(source_.exists() ? errors::PathAccess : errors::PathNotFound);
    if (!copy_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw RunTimeError(copy_.error() == QFileDevice::ResourceError ? errors::DiskFull
                                                                       : errors::PathAccess);
}

FileCopy::~FileCopy() {
    if (finished_)
        return;
    copy_.close();
    copy_.remove();
}

bool FileCopy::Advance(qint64 most) {
    if (finished_)
        return false;
    const QByteArray portion = source_.read(most);
    if (portion.isEmpty()) {
        if (source_.error() != QFileDevice::NoError)
            throw RunTimeError(errors::DeviceIo);
        Finish();
        return false;
    }
    errno = 0;
    if (copy_.write(portion) != portion.size() || fdatasync(copy_.handle()) != 0)
        throw RunTimeError(FileError(errno, errors::DeviceIo));
    copied_ += portion.size();
    return true;
}

/// The copy takes the time of its original: a trace is told by its day.
void FileCopy::Finish() {
    copy_.setFileTime(QFileInfo(source_).lastModified(), QFileDevice::FileModificationTime);
    errno = 0;
    const bool stored = fsync(copy_.handle()) == 0;
    copy_.close();
    if (!stored)
        throw RunTimeError(FileError(errno, errors::DeviceIo));
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(copy_.fileName()).toStdString(),
                            QFile::encodeName(target_).toStdString(), error);
    if (error)
        throw RunTimeError(errors::PathAccess);
    finished_ = true;
}

} // namespace platform
