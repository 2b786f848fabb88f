// The daily care of the files: old traces and histories go; the second folder is cared for by
// itself.

#include "events/HistoProcs.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/SecondFolder.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <optional>

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

/// Gives 0 or the error number, like all that takes files away: it is told when all is done.
int Remove(const QString& path) {
    return QFile::remove(path) || !QFile::exists(path) ? 0 : platform::errors::PathAccess;
}

int PurgeTraces(const QDate& today) {
    int failure = 0;
    const int days = Bytes::LongVal(GetConfig(TraceDaysId));
    if (days <= 0)
        return failure;
    const QDate limit = today.addDays(-days);
    const QDir folder(Global::InApplicationFolder(QStringLiteral("Trace")));
    for (const QString& name : folder.entryList({QStringLiteral("*.log")}, QDir::Files)) {
        const QDate date = DateOfName(name);
        if (date.isValid() && date < limit)
            failure = qMax(failure, Remove(folder.filePath(name)));
    }
    return failure;
}

/// Histories last written before go; nothing where all are kept.
std::optional<QDateTime> Limit(const QDate& today) {
    const int period = Bytes::ShortVal(FilesKey(QStringLiteral("PeriodTime"), QStringLiteral("0")));
    if (period <= 0)
        return std::nullopt;
    const bool months = Bytes::Val(FilesKey(QStringLiteral("PeriodUnit"), QStringLiteral("0"))) < 1;
    return (months ? today.addMonths(-period) : today.addDays(-period)).startOfDay();
}

} // namespace

QFileInfoList HistoriesIn(const QDir& folder) {
    return folder.entryInfoList({QStringLiteral("*.his")}, QDir::Files);
}

/// Write-protected ones too.
int PurgeHistories(const QDir& folder, const QDateTime& limit) {
    int failure = 0;
    for (const QFileInfo& info : HistoriesIn(folder))
        if (info.lastModified() < limit)
            failure = qMax(failure, Remove(info.filePath()));
    return failure;
}

void DoMidnightActions(SecondFolder& second, bool purges) {
    // A trace that can't be opened must not keep the disk from being purged.
    Guard("HistoProcs.DoMidnightActions", [] { Trace::OpenToday(); });
    Guard("HistoProcs.DoMidnightActions", [&] {
        const QDate today = DateTimes::DateOf(DateTimes::Now());
        const std::optional<QDateTime> limit = purges ? Limit(today) : std::nullopt;
        int failure = purges ? PurgeTraces(today) : 0;
        if (limit)
            failure = qMax(failure, PurgeHistories(platform::ApplicationFolder(), *limit));
        // What is rehearsed never stands among the plant's.
        if (!Rehearsal::Runs())
            second.Begin(FilesKey(QStringLiteral("Histo"), platform::ApplicationFolder()), limit);
        if (failure != 0)
            throw platform::RunTimeError(failure);
    });
}

} // namespace HistoProcs
