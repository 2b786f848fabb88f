#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// Largest file that is read in one go; the largest that the program itself writes for reading
/// stays far below it.
inline constexpr qint64 MaxFileSize = qint64(64) * 1024 * 1024;

/// The content of a file. Throws RunTimeError `FileNotFound`, `PathAccess` or, for what is no
/// plain file or isn't plausible, `DeviceIo`.
QByteArray ReadFile(const QString& path);

/// The last bytes of a file, at most so many; nothing of a file that isn't there. Throws
/// RunTimeError `PathAccess` or `DeviceIo`.
QByteArray ReadEnd(const QString& path, qint64 most);

} // namespace platform
