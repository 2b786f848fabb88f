#include "platform/LineLog.h"

#include "platform/CodePage.h"
#include "platform/DiskFlush.h"
#include "platform/RunTimeError.h"

#include <QFileInfo>
#include <sys/stat.h>

namespace platform {

namespace {

constexpr auto OpenFlags = QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;

bool IsRemoved(int handle) {
    struct stat state = {};
    return fstat(handle, &state) == 0 && state.st_nlink == 0;
}

} // namespace

void EndTornLine(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || file.size() == 0)
        return;
    char last = '\n';
    if (file.seek(file.size() - 1) && file.getChar(&last) && last != '\n' && file.seek(file.size()))
        file.write("\r\n");
}

void LineLog::Open(const QString& path, int mode) {
    file_.close();
    file_.setFileName(QString());
    if (mode != AppendMode)
        throw RunTimeError(errors::InvalidPropertyValue);
    file_.setFileName(path);
    if (!OpenAgain())
        throw RunTimeError(errors::PathAccess);
}

bool LineLog::OpenAgain() {
    EndTornLine(file_.fileName());
    return file_.open(OpenFlags);
}

void LineLog::WriteLine(const QString& text) {
    // What kept the file from opening may be over.
    if (!file_.isOpen() && (file_.fileName().isEmpty() || !OpenAgain()))
        throw RunTimeError(errors::BadFileName);
    if (IsRemoved(file_.handle()))
        Renew();
    const qint64 sizeBefore = file_.size();
    const QByteArray line = ToCodePage(text) + "\r\n";
    if (file_.write(line) == line.size()) {
        DiskFlush::Owe(file_.fileName());
        return;
    }
    const bool full = file_.error() == QFileDevice::ResourceError;
    // A torn line would swallow the start of the next one.
    file_.resize(sizeBefore);
    file_.unsetError();
    throw RunTimeError(full ? errors::DiskFull : errors::DeviceIo);
}

void LineLog::Renew() {
    // Somebody removed the file under the running program; what is written to it is lost. With
    // its folder gone as well, the old file stays open so that the next line tries again.
    if (!QFileInfo(QFileInfo(file_.fileName()).path()).isDir())
        throw RunTimeError(errors::DeviceIo);
    file_.close();
    if (!file_.open(OpenFlags))
        throw RunTimeError(errors::DeviceIo);
}

void LineLog::Commit() {
    // Every line went to the system unbuffered.
    if (file_.isOpen())
        file_.flush();
}

} // namespace platform
