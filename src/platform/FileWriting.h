#pragma once

#include <QByteArray>
#include <QString>

/// Ways into a file that leave it whole, whatever happens in the middle.
namespace platform {

/// Number of the run-time error that a system's error stands for: `DiskFull` where nothing more
/// fits, on the disk or into the user's share of it, `otherwise` for all else.
int FileError(int cause, int otherwise);

/// Opens a file for appending; a missing one is made, with its folder. Gives its handle. Throws
/// RunTimeError `DiskFull` or `PathAccess`.
int OpenToAppend(const QString& path);

/// Appends by one write to what OpenToAppend gave; a write that falls short is taken back. Throws
/// RunTimeError `DiskFull` or `DeviceIo`.
void AppendTo(int handle, const QByteArray& bytes);

/// The same to a file that is open for no longer than the call. One that is made gets `heading`
/// ahead, by the same write, and goes again when that fails.
void AppendTo(const QString& path, const QByteArray& bytes, const QByteArray& heading);

/// Puts `bytes` in place of a file's content: written beside it, flushed and renamed, so that a
/// kill, a cut of power or a full disk leaves the former content or the new one. Permissions stay;
/// of a link the file behind it is replaced, and a device is written to. Throws RunTimeError
/// `PathNotFound`, `PathAccess`, `DiskFull` or `DeviceIo`, and has changed nothing then.
void ReplaceFile(const QString& path, const QByteArray& bytes);

/// Puts an open file on the disk itself. Throws RunTimeError `DiskFull` or `DeviceIo`.
void Flush(int handle);
/// The same for the names in a folder, as far as its medium can.
void FlushFolder(const QString& folder);
/// Makes the next reading of an open file that was flushed come from its medium.
void ForgetRead(int handle);
/// Gives a file another name on its volume, in place of one that has it. Throws RunTimeError
/// `DiskFull` or `PathAccess`.
void Rename(const QString& from, const QString& to);

} // namespace platform
