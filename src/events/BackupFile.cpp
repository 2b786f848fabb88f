#include "events/BackupFile.h"

#include "core/DateTimes.h"
#include "core/Global.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"
#include "platform/ZipFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cerrno>

namespace BackupFile {

namespace errors = platform::errors;
using platform::RunTimeError;

namespace {

constexpr int Format = 1;
constexpr qint64 Portion = qint64(256) * 1024;
constexpr qsizetype LargestManifest = qsizetype(4) * 1024 * 1024;
constexpr qsizetype DigestWidth = 64;
/// Share of the disk that unpacking leaves free, as the watch wants it.
constexpr double LeastFree = 0.05;
const QString ManifestName = QStringLiteral("manifest.json");
const QByteArray CommentHead = QByteArrayLiteral("Korvanelle II backup 1, SHA-256 of all before ");

[[noreturn]] void Refuse() {
    throw RunTimeError(errors::InvalidPropertyValue);
}

/// How far the work is: bytes over all its passes.
class Account {
public:
    Account(Progress& progress, qint64 all)
        : progress_(progress)
        , all_(all) {}
    void Add(qint64 bytes) {
        done_ += bytes;
        progress_.Tell(done_, all_);
        progress_.Check();
    }
    /// Shows so much of a pass that begins where the account stands; false to end.
    bool Show(qint64 part) {
        progress_.Tell(done_ + part, all_);
        return !progress_.Stopped();
    }

private:
    Progress& progress_;
    qint64 all_;
    qint64 done_ = 0;
};

void Open(QFile& file, QIODevice::OpenMode mode) {
    if (!file.open(mode | QIODevice::Unbuffered))
        throw RunTimeError(file.exists() ? errors::PathAccess : errors::FileNotFound);
}

/// SHA-256 of the first bytes of a file that is open at its start.
QByteArray DigestOf(QFile& file, qint64 size, Account& account) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (size > 0) {
        const QByteArray portion = file.read(qMin(size, Portion));
        if (portion.isEmpty())
            throw RunTimeError(errors::DeviceIo);
        hash.addData(portion);
        size -= portion.size();
        account.Add(portion.size());
    }
    return hash.result().toHex();
}

QByteArray DigestOf(const Source& source, Account& account) {
    if (source.path.isEmpty()) {
        account.Add(source.bytes.size());
        return QCryptographicHash::hash(source.bytes, QCryptographicHash::Sha256).toHex();
    }
    QFile file(source.path);
    Open(file, QIODevice::ReadOnly);
    return DigestOf(file, source.size, account);
}

QByteArray ToJson(const Manifest& manifest) {
    QJsonArray files;
    for (const Entry& entry : manifest.entries)
        files.append(
            QJsonObject{{QStringLiteral("name"), entry.name},
                        {QStringLiteral("size"), entry.size},
                        {QStringLiteral("sha256"), QString::fromLatin1(entry.sha256)},
                        {QStringLiteral("modified"), entry.modified.toString(Qt::ISODateWithMs)}});
    const QJsonObject root{{QStringLiteral("format"), Format},
                           {QStringLiteral("program"), Global::Title},
                           {QStringLiteral("version"), manifest.version},
                           {QStringLiteral("date"), manifest.date.toString(Qt::ISODate)},
                           {QStringLiteral("machine"), manifest.machine},
                           {QStringLiteral("site"), manifest.site},
                           {QStringLiteral("files"), files}};
    return QJsonDocument(root).toJson();
}

/// A file of its kind, and no way out of a folder. Made ahead of the start: the background may
/// outlast what is made later.
const QRegularExpression
    EntryPattern(QStringLiteral("\\A(site/current\\.dat|settings/settings\\.ini|"
                                "(site/[^/\\\\]+\\.kv2|sounds/[^/\\\\]+\\.wav|printers/[^/"
                                "\\\\]+\\.prt|history/[^/\\\\]+\\.his|"
                                "certificates/[^/\\\\]+\\.(?i:pem|crt|cer)))\\z"));

Manifest FromJson(const QByteArray& bytes) {
    const QJsonObject root = QJsonDocument::fromJson(bytes).object();
    if (root[QStringLiteral("program")].toString() != Global::Title ||
        root[QStringLiteral("format")].toInt() != Format)
        Refuse();
    Manifest manifest;
    manifest.version = root[QStringLiteral("version")].toString();
    manifest.date = QDateTime::fromString(root[QStringLiteral("date")].toString(), Qt::ISODate);
    manifest.machine = root[QStringLiteral("machine")].toString();
    manifest.site = root[QStringLiteral("site")].toString();
    for (const auto& value : root[QStringLiteral("files")].toArray()) {
        const QJsonObject file = value.toObject();
        Entry entry;
        entry.name = file[QStringLiteral("name")].toString();
        entry.size = file[QStringLiteral("size")].toInteger(-1);
        entry.sha256 = file[QStringLiteral("sha256")].toString().toLatin1();
        entry.modified =
            QDateTime::fromString(file[QStringLiteral("modified")].toString(), Qt::ISODateWithMs);
        if (!IsEntryName(entry.name) || entry.size < 0)
            Refuse();
        manifest.entries += entry;
    }
    return manifest;
}

/// What the archive holds is what its manifest names, each once.
Manifest ManifestOf(const platform::ZipReader& zip) {
    QByteArray bytes;
    zip.Read(ManifestName, [&](const QByteArray& portion) {
        bytes += portion;
        if (bytes.size() > LargestManifest)
            Refuse();
    });
    Manifest manifest = FromJson(bytes);
    QStringList named{ManifestName};
    for (const Entry& entry : manifest.entries)
        named += entry.name;
    QStringList held = zip.Names();
    named.sort();
    held.sort();
    if (named != held || QSet<QString>(held.cbegin(), held.cend()).size() != held.size())
        Refuse();
    return manifest;
}

/// The digest at the end is that of all before it. The file's size is added to the account.
void CheckDigest(QFile& file, Account& account) {
    const qint64 size = file.size() - DigestWidth;
    if (size < CommentHead.size())
        Refuse();
    const QByteArray digest = DigestOf(file, size, account);
    file.seek(size - CommentHead.size());
    if (file.read(CommentHead.size()) != CommentHead || file.read(DigestWidth) != digest)
        Refuse();
}

/// Unpacks one entry, to a file unless the path is empty, and refuses it when it isn't what the
/// manifest says.
void TakeEntry(const platform::ZipReader& zip, const Entry& entry, const QString& path,
               Account& account) {
    QFile file(path);
    if (!path.isEmpty())
        Open(file, QIODevice::WriteOnly | QIODevice::Truncate);
    // One of them holds a key.
    if (file.isOpen() && entry.Kind() == Kinds::Certificates)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    qint64 size = 0;
    zip.Read(entry.name, [&](const QByteArray& portion) {
        size += portion.size();
        if (size > entry.size)
            Refuse();
        hash.addData(portion);
        errno = 0;
        if (file.isOpen() && file.write(portion) != portion.size())
            throw RunTimeError(platform::FileError(errno, errors::DeviceIo));
        account.Add(portion.size());
    });
    if (size != entry.size || hash.result().toHex() != entry.sha256)
        Refuse();
    if (!file.isOpen())
        return;
    if (entry.modified.isValid())
        file.setFileTime(entry.modified, QFileDevice::FileModificationTime);
    platform::Flush(file.handle());
}

/// Those of the kinds, and the folder itself.
QStringList FoldersIn(const QString& folder) {
    QStringList folders;
    for (const QString& kind : {Kinds::Site, Kinds::Settings, Kinds::Sounds, Kinds::Printers,
                                Kinds::Certificates, Kinds::History})
        folders += folder + u'/' + kind;
    return folders + QStringList(folder);
}

/// The machine goes on writing beside what is unpacked.
void MakeRoom(const QString& folder, qint64 size) {
    const auto space = platform::SpaceOf(QFileInfo(folder).path());
    if (space && double(space->free - size) < LeastFree * double(space->total))
        throw RunTimeError(errors::DiskFull);
    for (const QString& one : FoldersIn(folder))
        platform::MakeFolder(one);
}

Manifest Read(const QString& path, const QString& folder, Progress& progress) {
    QFile file(path);
    Open(file, QIODevice::ReadOnly);
    {
        Account account(progress, 2 * file.size());
        CheckDigest(file, account);
    }
    const platform::ZipReader zip(path);
    Manifest manifest = ManifestOf(zip);
    qint64 unpacked = 0;
    for (const Entry& entry : manifest.entries)
        unpacked += entry.size;
    if (!folder.isEmpty())
        MakeRoom(folder, unpacked);
    // The first half was the file as it lies there.
    Account account(progress, 2 * unpacked);
    account.Add(unpacked);
    for (const Entry& entry : manifest.entries)
        TakeEntry(zip, entry, folder.isEmpty() ? QString() : folder + u'/' + entry.name, account);
    for (const QString& one : folder.isEmpty() ? QStringList() : FoldersIn(folder))
        platform::FlushFolder(one);
    return manifest;
}

/// The digest goes into the place that the comment keeps for it, and all onto the medium.
void Seal(const QString& path, Account& account) {
    QFile file(path);
    Open(file, QIODevice::ReadWrite);
    const qint64 size = file.size() - DigestWidth;
    const QByteArray digest = DigestOf(file, size, account);
    file.seek(size);
    if (file.write(digest) != DigestWidth)
        throw RunTimeError(errors::DeviceIo);
    platform::Flush(file.handle());
    // What is read back must come from the medium.
    platform::ForgetRead(file.handle());
}

/// Goes on where another work's own count stands.
class LastPart : public Progress {
public:
    LastPart(Account& account, qint64 room)
        : account_(account)
        , room_(room) {}
    bool Stopped() const override { return stopped_; }
    void Tell(qint64 done, qint64 all) override {
        stopped_ = !account_.Show(all > 0 ? qint64(double(done) / double(all) * double(room_)) : 0);
    }

private:
    Account& account_;
    qint64 room_;
    bool stopped_ = false;
};

void WriteAll(const QString& path, Manifest& manifest, const QList<Source>& sources,
              Progress& progress) {
    qint64 size = 0;
    for (const Source& source : sources)
        size += source.path.isEmpty() ? source.bytes.size() : source.size;
    // Three passes over what is kept: its digest, the packing, the reading back.
    Account account(progress, 3 * size);
    platform::ZipWriter zip(path);
    manifest.entries.clear();
    for (const Source& source : sources)
        manifest.entries += {source.name, source.path.isEmpty() ? source.bytes.size() : source.size,
                             DigestOf(source, account), source.modified};
    zip.Add(ManifestName, ToJson(manifest));
    for (const Source& source : sources) {
        if (source.path.isEmpty())
            zip.Add(source.name, source.bytes);
        else
            zip.AddFile(source.name, source.path, source.size);
    }
    zip.Finish(CommentHead + QByteArray(DigestWidth, '0'),
               [&](double share) { return account.Show(qint64(share * double(size))); });
    account.Add(size);
    progress.Check();
    platform::Unwatched unwatched;
    Account sealing(unwatched, 1);
    Seal(path, sealing);
    LastPart last(account, size);
    Read(path, QString(), last);
}

} // namespace

bool IsEntryName(const QString& name) {
    return EntryPattern.match(name).hasMatch() &&
           std::none_of(name.cbegin(), name.cend(), [](QChar one) { return one < u' '; });
}

QString Manifest::DateText() const {
    if (!date.isValid())
        return {};
    return DateTimes::ShortDate(DateTimes::FromDate(date.date())) +
           date.toString(QStringLiteral(" HH:mm"));
}

void Write(const QString& path, Manifest head, const QList<Source>& sources, Progress& progress) {
    const QString temporary = path + QStringLiteral(".tmp");
    try {
        WriteAll(temporary, head, sources, progress);
        platform::Rename(temporary, path);
    } catch (...) {
        QFile::remove(temporary);
        throw;
    }
    platform::FlushFolder(QFileInfo(path).path());
}

Manifest ReadManifest(const QString& path) {
    return ManifestOf(platform::ZipReader(path));
}

Manifest Verify(const QString& path, Progress& progress) {
    return Read(path, QString(), progress);
}

Manifest Unpack(const QString& path, const QString& folder, Progress& progress) {
    return Read(path, folder, progress);
}

} // namespace BackupFile
