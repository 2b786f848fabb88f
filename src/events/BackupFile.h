#pragma once

#include "platform/BackgroundTask.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

/// The file of a backup: a zip file whose "manifest.json" names each other entry with its size and
/// SHA-256, and whose last 64 characters are the SHA-256 of all that stands before them. One that
/// is cut, altered or made by others is known by that before anything of it is used.
namespace BackupFile {

using Progress = platform::BackgroundTask::Progress;

/// What stands in front of the entries' names, and the one name that stands in it; a kind holds
/// nothing but files of its extension.
namespace Kinds {
inline const QString Site = QStringLiteral("site");
inline const QString Settings = QStringLiteral("settings");
inline const QString Sounds = QStringLiteral("sounds");
inline const QString Printers = QStringLiteral("printers");
inline const QString Certificates = QStringLiteral("certificates");
inline const QString History = QStringLiteral("history");
} // namespace Kinds
inline const QString CurrentSite = QStringLiteral("site/current.dat");
inline const QString SettingsFile = QStringLiteral("settings/settings.ini");

/// True for a name that an entry may have.
bool IsEntryName(const QString& name);

struct Entry {
    QString name; ///< kind, "/" and file name
    qint64 size = 0;
    QByteArray sha256; ///< hexadecimal
    QDateTime modified;

    QString Kind() const { return name.section(u'/', 0, 0); }
    QString FileName() const { return name.section(u'/', 1); }
};

struct Manifest {
    QString version; ///< of the program that wrote it
    QDateTime date;
    QString machine;
    QString site; ///< name of the site, empty without one
    QList<Entry> entries;

    /// Date and minute in the machine's form.
    QString DateText() const;
};

/// What goes into a backup: bytes, or the first `size` bytes of a file.
struct Source {
    QString name;
    QString path; ///< empty for bytes
    QByteArray bytes;
    qint64 size = 0;
    QDateTime modified;
};

/// Writes a backup beside its place, puts it on the medium, reads it back whole and gives it its
/// name; what fails leaves nothing. The head's entries are made here. Throws RunTimeError
/// `PathAccess`, `DiskFull` or `DeviceIo`, or `InvalidPropertyValue` when what was read back isn't
/// what was written; and BackgroundTask::Ended.
void Write(const QString& path, Manifest head, const QList<Source>& sources, Progress& progress);

/// What a backup says of itself, without a look at the rest. Throws like Verify.
Manifest ReadManifest(const QString& path);

/// Reads a backup to its end. Throws RunTimeError `InvalidPropertyValue` for one that isn't whole
/// and as it was written or that this program doesn't know, `FileNotFound`, `PathAccess` or
/// `DeviceIo` for one that can't be read; and BackgroundTask::Ended.
Manifest Verify(const QString& path, Progress& progress);

/// The same, and leaves the files under their names in a folder, each on the disk itself with the
/// time of its original. Throws `DiskFull` as well. Files that were unpacked up to a failure stay.
Manifest Unpack(const QString& path, const QString& folder, Progress& progress);

} // namespace BackupFile
