#include "platform/LineLog.h"

#include "platform/CodePage.h"
#include "platform/DiskFlush.h"
#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {

void EndTornLine(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || file.size() == 0)
        return;
    char last = '\n';
    if (file.seek(file.size() - 1) && file.getChar(&last) && last != '\n' && file.seek(file.size()))
        file.write("\r\n");
}

void LineLog::Open(const QString& path, int mode) {
    Close();
    path_.clear();
    if (mode != AppendMode)
        throw RunTimeError(errors::InvalidPropertyValue);
    path_ = path;
    OpenAgain();
}

void LineLog::Close() {
    if (IsOpen())
        close(std::exchange(handle_, -1));
}

void LineLog::OpenAgain() {
    Close();
    EndTornLine(path_);
    handle_ = OpenToAppend(path_);
}

/// Somebody may have removed or moved the file under the running program, or its folder: what is
/// written to it then is lost.
bool LineLog::IsInPlace() const {
    struct stat named = {};
    struct stat held = {};
    return stat(QFile::encodeName(path_).constData(), &named) == 0 && fstat(handle_, &held) == 0 &&
           named.st_ino == held.st_ino && named.st_dev == held.st_dev;
}

void LineLog::WriteLine(const QString& text) {
    if (path_.isEmpty())
        throw RunTimeError(errors::BadFileName);
    // What kept the file from opening may be over.
    if (!IsOpen() || !IsInPlace())
        OpenAgain();
    try {
        AppendTo(handle_, ToCodePage(text) + "\r\n");
    } catch (const RunTimeError&) {
        Close();
        throw;
    }
    DiskFlush::Owe(path_);
}

void LineLog::Commit() const {
    // Every line went to the system unbuffered: there is nothing to hand over.
}

} // namespace platform
