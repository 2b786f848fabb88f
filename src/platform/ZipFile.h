#pragma once

#include "platform/BackgroundTask.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

struct zip;
struct zip_source;

namespace platform {

/// Builds a zip file: what is added is read when it is written.
class ZipWriter {
public:
    /// Nothing is written yet. Throws RunTimeError `PathAccess` for a path that can't be one.
    explicit ZipWriter(const QString& path);
    /// What isn't finished leaves no file.
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    void Add(const QString& name, const QByteArray& bytes);
    /// The first `size` bytes of a file.
    void AddFile(const QString& name, const QString& path, qint64 size);
    /// Writes all, with a text at the file's very end. `told` is called now and then with the share
    /// that is written, 0 to 1, and ends the work by false. Throws RunTimeError `PathAccess`,
    /// `DiskFull` or `DeviceIo`, and BackgroundTask::Ended.
    void Finish(const QByteArray& comment, const std::function<bool(double)>& told);

private:
    void Take(const QString& name, zip_source* source);

    zip* zip_;
    std::function<bool(double)> told_;
    bool stopped_ = false;
};

/// A zip file to read from.
class ZipReader {
public:
    /// Throws RunTimeError `FileNotFound`, or `DeviceIo` for what is no zip file.
    explicit ZipReader(const QString& path);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    /// In the order of the file, each as often as it stands there.
    QStringList Names() const;
    QByteArray Comment() const;
    /// Unpacks an entry piece by piece. Throws RunTimeError `FileNotFound` for one that isn't
    /// there, `DeviceIo` for one that can't be unpacked, and whatever `take` throws.
    void Read(const QString& name, const std::function<void(const QByteArray&)>& take) const;

private:
    zip* zip_;
};

} // namespace platform
