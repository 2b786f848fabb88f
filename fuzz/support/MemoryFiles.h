#pragma once

#include <QByteArray>

/// The disk on which the settings file of a fuzz function stands: memory, since a run must cost
/// microseconds.
namespace MemoryFiles {

/// What the disk can't do for the time being.
enum class Failure { None, OpenToRead, OpenToWrite, Write, Rename };

void Clear();
/// Puts a file in place as an editor does: by a new one and a rename.
void Put(const QByteArray& path, const QByteArray& bytes);
void Remove(const QByteArray& path);
bool Exists(const QByteArray& path);
/// Empty without a file.
QByteArray Content(const QByteArray& path);
/// Number of files, temporary ones too.
size_t Count();
void Fail(Failure failure);

} // namespace MemoryFiles
