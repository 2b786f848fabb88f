#include "platform/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace platform {

namespace {

QString UserPath(const QString& path) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QByteArray hash = QCryptographicHash::hash(QFileInfo(path).absoluteFilePath().toUtf8(),
                                                     QCryptographicHash::Sha1);
    return QDir(folder.isEmpty() ? QDir::tempPath() : folder)
        .filePath(QFileInfo(path).completeBaseName() + u'-' + QLatin1String(hash.toHex()) +
                  QStringLiteral(".lock"));
}

} // namespace

SingleInstance::SingleInstance(const QString& path)
    : path_(path)
    , lock_(path) {
    // A mark is as good after weeks as it was on the first day.
    lock_.setStaleLockTime(0);
}

bool SingleInstance::Acquire() {
    if (lock_.isLocked() || (userLock_ && userLock_->isLocked()) || lock_.tryLock(0))
        return true;
    if (lock_.error() == QLockFile::LockFailedError)
        return false;
    userLock_ = std::make_unique<QLockFile>(UserPath(path_));
    userLock_->setStaleLockTime(0);
    return userLock_->tryLock(0) || userLock_->error() != QLockFile::LockFailedError;
}

} // namespace platform
