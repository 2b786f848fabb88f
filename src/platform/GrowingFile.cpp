#include "platform/GrowingFile.h"

#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <QFileInfo>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace platform {

GrowingFile::GrowingFile(const QString& path)
    : file_(path + QStringLiteral(".tmp"))
    , target_(path) {
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw RunTimeError(file_.error() == QFileDevice::ResourceError ? errors::DiskFull
                                                                       : errors::PathAccess);
}

GrowingFile::~GrowingFile() {
    if (finished_)
        return;
    file_.close();
    file_.remove();
}

void GrowingFile::Append(const QByteArray& bytes) {
    errno = 0;
    if (file_.write(bytes) != bytes.size() || fdatasync(file_.handle()) != 0)
        throw RunTimeError(FileError(errno, errors::DeviceIo));
}

void GrowingFile::setTime(const QDateTime& time) {
    file_.setFileTime(time, QFileDevice::FileModificationTime);
}

void GrowingFile::Finish() {
    errno = 0;
    const bool stored = fsync(file_.handle()) == 0;
    file_.close();
    if (!stored)
        throw RunTimeError(FileError(errno, errors::DeviceIo));
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(file_.fileName()).toStdString(),
                            QFile::encodeName(target_).toStdString(), error);
    if (error)
        throw RunTimeError(errors::PathAccess);
    finished_ = true;
    FlushFolder(QFileInfo(target_).path());
}

} // namespace platform
