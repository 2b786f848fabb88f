#include "platform/FileWriting.h"

#include "platform/DiskFlush.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

constexpr mode_t NewFileMode = 0666;
constexpr int AppendFlags = O_WRONLY | O_APPEND | O_CLOEXEC;

/// A handle that closes itself.
class Handle {
public:
    explicit Handle(int number)
        : number_(number) {}
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    int Number() const { return number_; }
    /// False when what was written couldn't be kept after all.
    bool Close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || close(number) == 0;
    }

private:
    int number_;
};

/// Gives 0 or the system's error. What fits is written by the first call.
int Write(int handle, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            write(handle, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno != EINTR)
            return errno;
        done += qMax<ssize_t>(written, 0);
    }
    return 0;
}

/// The file that a path leads to through links; one that a link names may be missing.
QString BehindLinks(QString path) {
    constexpr int MostLinks = 40;
    for (int i = 0; i < MostLinks && QFileInfo(path).isSymLink(); ++i)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

[[noreturn]] void FailToOpen(int cause) {
    const bool noFolder = cause == ENOENT || cause == ENOTDIR;
    throw RunTimeError(noFolder ? errors::PathNotFound : FileError(cause, errors::PathAccess));
}

/// What is no file can't be replaced by one.
void WriteToDevice(const QByteArray& path, const QByteArray& bytes) {
    const Handle device(open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (device.Number() < 0)
        FailToOpen(errno);
    if (const int cause = Write(device.Number(), bytes))
        throw RunTimeError(FileError(cause, errors::DeviceIo));
}

/// Owner and mode of the former file, as far as this user may give them.
void KeepPermissions(int handle, const struct stat& former) {
    const bool owned = fchown(handle, former.st_uid, former.st_gid) == 0;
    fchmod(handle, former.st_mode & (owned ? 07777 : 0777));
}

/// Gives 0 or the system's error.
int WriteBeside(const QByteArray& temporary, const QByteArray& bytes, const struct stat* former) {
    Handle file(open(temporary.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW,
                     NewFileMode));
    if (file.Number() < 0)
        FailToOpen(errno);
    if (former != nullptr)
        KeepPermissions(file.Number(), *former);
    if (const int cause = Write(file.Number(), bytes))
        return cause;
    // A disk may find only now that there is no room.
    const bool flushed = fsync(file.Number()) == 0 || errno == EINVAL;
    return flushed && file.Close() ? 0 : errno;
}

} // namespace

int FileError(int cause, int otherwise) {
    return cause == ENOSPC || cause == EDQUOT ? errors::DiskFull : otherwise;
}

int OpenToAppend(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    int handle = open(name.constData(), AppendFlags | O_CREAT, NewFileMode);
    if (handle < 0 && errno == ENOENT && MakeFolder(QFileInfo(path).path()))
        handle = open(name.constData(), AppendFlags | O_CREAT, NewFileMode);
    if (handle < 0)
        throw RunTimeError(FileError(errno, errors::PathAccess));
    return handle;
}

void AppendTo(int handle, const QByteArray& bytes) {
    const off_t before = lseek(handle, 0, SEEK_END);
    const int cause = Write(handle, bytes);
    if (cause == 0)
        return;
    // A torn line would swallow the start of the next one. One that can't be taken back is ended
    // when the file is opened again.
    [[maybe_unused]] const bool takenBack = before >= 0 && ftruncate(handle, before) == 0;
    throw RunTimeError(FileError(cause, errors::DeviceIo));
}

void AppendTo(const QString& path, const QByteArray& bytes, const QByteArray& heading) {
    const bool isNew = !QFile::exists(path);
    const Handle file(OpenToAppend(path));
    try {
        AppendTo(file.Number(), isNew ? heading + bytes : bytes);
    } catch (const RunTimeError&) {
        // A file that is there never gets its heading.
        if (isNew)
            QFile::remove(path);
        throw;
    }
    DiskFlush::Owe(path);
}

void ReplaceFile(const QString& path, const QByteArray& bytes) {
    const QString target = BehindLinks(path);
    const QByteArray name = QFile::encodeName(target);
    struct stat former = {};
    const bool isThere = stat(name.constData(), &former) == 0;
    if (isThere && !S_ISREG(former.st_mode)) {
        WriteToDevice(name, bytes);
        return;
    }
    // A rename asks for rights on the folder alone: a protected file stays.
    if (isThere && access(name.constData(), W_OK) != 0)
        throw RunTimeError(errors::PathAccess);
    const QByteArray temporary = name + ".tmp";
    int cause = WriteBeside(temporary, bytes, isThere ? &former : nullptr);
    if (cause == 0 && rename(temporary.constData(), name.constData()) != 0)
        cause = errno;
    if (cause != 0) {
        unlink(temporary.constData());
        throw RunTimeError(FileError(cause, errors::DeviceIo));
    }
    DiskFlush::Owe(QFileInfo(target).path());
}

void Flush(int handle) {
    errno = 0;
    if (fsync(handle) != 0 && errno != EINVAL)
        throw RunTimeError(FileError(errno, errors::DeviceIo));
}

void FlushFolder(const QString& folder) {
    const Handle handle(
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.Number() >= 0)
        fsync(handle.Number());
}

void ForgetRead(int handle) {
    posix_fadvise(handle, 0, 0, POSIX_FADV_DONTNEED);
}

void Rename(const QString& from, const QString& to) {
    if (rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        throw RunTimeError(FileError(errno, errors::PathAccess));
}

} // namespace platform
