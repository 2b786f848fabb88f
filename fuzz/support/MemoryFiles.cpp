// The program's own settings file, compiled onto files in memory: inside its namespace the names
// below hide those of the system.

#include "fuzz/support/MemoryFiles.h"

#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"
#include "platform/SettingsFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace MemoryFiles {

namespace {

struct Node {
    QByteArray bytes;
    quint64 number = 0;
    long changed = 0;
};
using NodePtr = std::shared_ptr<Node>;

struct Disk {
    std::map<QByteArray, NodePtr> files;
    std::vector<NodePtr> handles;
    long ticks = 0;
    Failure failure = Failure::None;
};

Disk& TheDisk() {
    // Never destroyed: a settings file that goes at the end of the process still flushes.
    static Disk& disk = *new Disk;
    return disk;
}

NodePtr Find(const QByteArray& path) {
    const auto found = TheDisk().files.find(path);
    return found == TheDisk().files.end() ? nullptr : found->second;
}

NodePtr Make(const QByteArray& path) {
    auto node = std::make_shared<Node>();
    node->changed = ++TheDisk().ticks;
    node->number = quint64(node->changed);
    return TheDisk().files[path] = node;
}

int Failed(int cause) {
    errno = cause;
    return -1;
}

int Describe(const NodePtr& node, struct stat* state) {
    if (!node)
        return Failed(ENOENT);
    state->st_dev = 1;
    state->st_ino = node->number;
    state->st_size = node->bytes.size();
    state->st_mode = S_IFREG | 0644;
    state->st_mtim = {0, node->changed};
    state->st_ctim = {0, node->changed};
    return 0;
}

} // namespace

void Clear() {
    TheDisk() = Disk();
}

void Put(const QByteArray& path, const QByteArray& bytes) {
    Make(path)->bytes = bytes;
}

void Remove(const QByteArray& path) {
    TheDisk().files.erase(path);
}

bool Exists(const QByteArray& path) {
    return Find(path) != nullptr;
}

QByteArray Content(const QByteArray& path) {
    const NodePtr node = Find(path);
    return node ? node->bytes : QByteArray();
}

size_t Count() {
    return TheDisk().files.size();
}

void Fail(Failure failure) {
    TheDisk().failure = failure;
}

} // namespace MemoryFiles

namespace platform {

namespace {

using MemoryFiles::Failure;
using MemoryFiles::TheDisk;

int open(const char* path, int flags, mode_t = 0) {
    const bool toWrite = (flags & O_ACCMODE) != O_RDONLY;
    if (toWrite && TheDisk().failure == Failure::OpenToWrite)
        return MemoryFiles::Failed(EACCES);
    MemoryFiles::NodePtr node = MemoryFiles::Find(path);
    if (!node && (flags & O_CREAT) == 0)
        return MemoryFiles::Failed(ENOENT);
    if (!node)
        node = MemoryFiles::Make(path);
    if ((flags & O_TRUNC) != 0)
        node->bytes.clear();
    TheDisk().handles.push_back(node);
    return int(TheDisk().handles.size()) - 1;
}

ssize_t pwrite(int handle, const void* bytes, size_t count, off_t offset) {
    if (TheDisk().failure == Failure::Write)
        return MemoryFiles::Failed(ENOSPC);
    const auto& node = TheDisk().handles.at(size_t(handle));
    node->bytes.replace(offset, qsizetype(count), static_cast<const char*>(bytes),
                        qsizetype(count));
    node->changed = ++TheDisk().ticks;
    return ssize_t(count);
}

ssize_t write(int handle, const void* bytes, size_t count) {
    return pwrite(handle, bytes, count, TheDisk().handles.at(size_t(handle))->bytes.size());
}

// Objects and no functions, for the argument would bring in the system's functions beside them.
constexpr auto stat = [](const char* path, struct stat* state) {
    return MemoryFiles::Describe(MemoryFiles::Find(path), state);
};

constexpr auto fstat = [](int handle, struct stat* state) {
    return MemoryFiles::Describe(TheDisk().handles.at(size_t(handle)), state);
};

int rename(const char* from, const char* to) {
    if (TheDisk().failure == Failure::Rename)
        return MemoryFiles::Failed(EACCES);
    const auto found = TheDisk().files.find(from);
    if (found == TheDisk().files.end())
        return MemoryFiles::Failed(ENOENT);
    TheDisk().files[to] = found->second;
    TheDisk().files.erase(from);
    return 0;
}

int unlink(const char* path) {
    return TheDisk().files.erase(path) != 0 ? 0 : MemoryFiles::Failed(ENOENT);
}

int close(int handle) {
    TheDisk().handles.at(size_t(handle)).reset();
    return 0;
}

int fchmod(int, mode_t) {
    return 0;
}

int fsync(int) {
    return 0;
}

class QFile {
public:
    explicit QFile(const QString& path)
        : path_(encodeName(path)) {}
    bool open(QIODevice::OpenMode) const {
        return TheDisk().failure != Failure::OpenToRead && MemoryFiles::Exists(path_);
    }
    QByteArray readAll() const { return MemoryFiles::Content(path_); }
    static QFileDevice::FileError error() { return QFileDevice::NoError; }
    static QByteArray encodeName(const QString& name) { return name.toUtf8(); }
    static QString decodeName(const QByteArray& name) { return QString::fromUtf8(name); }

private:
    QByteArray path_;
};

class QFileInfo {
public:
    explicit QFileInfo(const QString& path)
        : path_(path) {}
    static bool isSymLink() { return false; }
    QString symLinkTarget() const { return path_; }
    QString path() const { return path_.section(u'/', 0, -2); }

private:
    QString path_;
};

} // namespace

} // namespace platform

#include "platform/SettingsFile.cpp" // NOLINT(bugprone-suspicious-include)
