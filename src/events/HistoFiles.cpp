// The daily care of the files: old traces and histories go, histories are copied to a second
// folder.

#include "events/HistoProcs.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "platform/DiskFlush.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <filesystem>

namespace HistoProcs {

using ErrorHandling::Guard;

namespace {

/// Id of the number of days of traces to keep.
constexpr int TraceDaysId = 100100;

QString FilesKey(const QString& key, const QString& fallback) {
    return IniRead(QStringLiteral("Files"), key, fallback);
}

/// The date at the head of a trace file's name; none for a file that the system didn't make.
QDate DateOfName(const QString& name) {
    return QDate::fromString(name.left(8), QStringLiteral("yyyyMMdd"));
}

/// In `failure` stands what went wrong last of the day's care; it is told when all is done.
void Remove(const QString& path, int& failure) {
    if (!QFile::remove(path) && QFile::exists(path))
        failure = platform::errors::PathAccess;
}

void PurgeTraces(const QDate& today, int& failure) {
    const int days = Bytes::LongVal(GetConfig(TraceDaysId));
    if (days <= 0)
        return;
    const QDate limit = today.addDays(-days);
    const QDir folder(Global::InApplicationFolder(QStringLiteral("Trace")));
    for (const QString& name : folder.entryList({QStringLiteral("*.log")}, QDir::Files)) {
        const QDate date = DateOfName(name);
        if (date.isValid() && date < limit)
            Remove(folder.filePath(name), failure);
    }
}

QFileInfoList Histories(const QDir& folder) {
    return folder.entryInfoList({QStringLiteral("*.his")}, QDir::Files);
}

/// Deletes the histories last written before the limit, write-protected ones too.
void PurgeHistories(const QDir& folder, const QDateTime& limit, int& failure) {
    for (const QFileInfo& info : Histories(folder))
        if (info.lastModified() < limit)
            Remove(info.filePath(), failure);
}

/// A stick keeps times in steps of two seconds, cut off: a copy of the source's length and of its
/// time without what was cut is no older one.
bool IsUpToDate(const QFileInfo& copy, const QFileInfo& source) {
    constexpr qint64 TimeStep = 2000;
    if (!copy.exists())
        return false;
    const qint64 copied = copy.lastModified().toMSecsSinceEpoch();
    const qint64 written = source.lastModified().toMSecsSinceEpoch();
    return copied >= written ||
           (copied == written / TimeStep * TimeStep && copy.size() == source.size());
}

/// By a temporary name: what stands in the second folder is always a whole file. The copy takes
/// the time of its original, so that it isn't newer than what is written to that afterwards.
bool CopyOver(const QFileInfo& source, const QString& target) {
    const QString temporary = target + QStringLiteral(".tmp");
    QFile::remove(temporary);
    QFile copy(temporary);
    // On a full disk a copy may call itself done while its last bytes are missing.
    if (!QFile::copy(source.filePath(), temporary) || copy.size() != source.size()) {
        QFile::remove(temporary);
        return false;
    }
    copy.setPermissions(copy.permissions() | QFile::WriteOwner);
    if (copy.open(QIODevice::ReadWrite)) {
        copy.setFileTime(source.lastModified(), QFileDevice::FileModificationTime);
        copy.close();
    }
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(temporary).toStdString(),
                            QFile::encodeName(target).toStdString(), error);
    if (error)
        QFile::remove(temporary);
    else
        platform::DiskFlush::Owe(target);
    return !error;
}

void CopyHistories(const QDir& from, const QDir& to, int& failure) {
    for (const QFileInfo& source : Histories(from)) {
        const QFileInfo copy(to.filePath(source.fileName()));
        if (IsUpToDate(copy, source) || CopyOver(source, copy.filePath()))
            continue;
        failure = QStorageInfo(to.path()).bytesAvailable() < source.size()
                      ? platform::errors::DiskFull
                      : platform::errors::PathAccess;
    }
}

} // namespace

void DoMidnightActions() {
    // A trace that can't be opened must not keep the disk from being purged.
    Guard("HistoProcs.DoMidnightActions", [] { Trace::OpenToday(); });
    Guard("HistoProcs.DoMidnightActions", [] {
        const QDateTime now(DateTimes::DateOf(DateTimes::Now()), QTime(0, 0));
        int failure = 0;
        PurgeTraces(now.date(), failure);
        const int period =
            Bytes::ShortVal(FilesKey(QStringLiteral("PeriodTime"), QStringLiteral("0")));
        const bool months =
            Bytes::Val(FilesKey(QStringLiteral("PeriodUnit"), QStringLiteral("0"))) < 1;
        const QDateTime limit = months ? now.addMonths(-period) : now.addDays(-period);
        const QDir own(platform::ApplicationFolder());
        // What is rehearsed never stands among the plant's.
        const QString named =
            Rehearsal::Runs() ? platform::ApplicationFolder()
                              : FilesKey(QStringLiteral("Histo"), platform::ApplicationFolder());
        const QDir second(own.absoluteFilePath(named));
        const bool ready = !named.isEmpty() && platform::IsReady(second.path());
        if (period > 0) {
            PurgeHistories(own, limit, failure);
            if (ready)
                PurgeHistories(second, limit, failure);
        }
        if (ready)
            CopyHistories(own, second, failure);
        else if (!named.isEmpty())
            Trace::Note(QStringLiteral("HISTORIES NOT COPIED TO ") + named);
        if (failure != 0)
            throw platform::RunTimeError(failure);
    });
}

} // namespace HistoProcs
