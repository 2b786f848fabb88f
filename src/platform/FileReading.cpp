#include "platform/FileReading.h"

#include "platform/RunTimeError.h"

#include <QFile>

namespace platform {

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    if (!file.exists())
        throw RunTimeError(errors::FileNotFound);
    if (!file.open(QIODevice::ReadOnly))
        throw RunTimeError(errors::PathAccess);
    // A device has no size and might never end.
    if (file.isSequential() || file.size() > MaxFileSize)
        throw RunTimeError(errors::DeviceIo);
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw RunTimeError(errors::DeviceIo);
    return bytes;
}

QByteArray ReadEnd(const QString& path, qint64 most) {
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw RunTimeError(errors::PathAccess);
    if (!file.seek(qMax(file.size() - most, qint64(0))))
        throw RunTimeError(errors::DeviceIo);
    QByteArray bytes = file.read(most);
    if (file.error() != QFileDevice::NoError)
        throw RunTimeError(errors::DeviceIo);
    return bytes;
}

} // namespace platform
