#include "events/SecondFolder.h"

#include "core/Trace.h"
#include "events/HistoProcs.h"
#include "platform/BackgroundTask.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/GrowingFile.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

using platform::BackgroundTask;
using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

/// The allocator keeps the largest for the thread that copied, for good.
constexpr qint64 Portion = qint64(128) * 1024;

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

/// What stands in the folder is always a whole file. The copy takes the time that its original had
/// before: lines that come meanwhile make that the newer one again.
void Copy(const QFileInfo& source, const QString& target,
          const BackgroundTask::Progress& progress) {
    const QDateTime written = source.lastModified();
    QFile original(source.filePath());
    if (!original.open(QIODevice::ReadOnly))
        throw RunTimeError(errors::PathAccess);
    platform::GrowingFile copy(target);
    for (QByteArray part = original.read(Portion); !part.isEmpty(); part = original.read(Portion)) {
        progress.Check();
        copy.Append(part);
    }
    if (original.error() != QFileDevice::NoError)
        throw RunTimeError(errors::DeviceIo);
    copy.setTime(written);
    copy.Finish();
}

/// A file that can't be copied keeps no other from it.
int CopyHistories(const QDir& from, const QDir& to, const BackgroundTask::Progress& progress) {
    int failure = 0;
    for (const QFileInfo& source : HistoProcs::HistoriesIn(from)) {
        progress.Check();
        const QFileInfo copy(to.filePath(source.fileName()));
        try {
            if (!IsUpToDate(copy, source))
                Copy(source, copy.filePath(), progress);
        } catch (const RunTimeError& error) {
            failure = error.Number();
        }
    }
    platform::FlushFolder(to.path());
    return failure;
}

void CareFor(const QDir& own, const QDir& second, const std::optional<QDateTime>& limit,
             const BackgroundTask::Progress& progress) {
    if (!platform::IsReady(second.path()))
        throw RunTimeError(errors::PathNotFound);
    int failure = limit ? HistoProcs::PurgeHistories(second, *limit) : 0;
    if (const int error = CopyHistories(own, second, progress))
        failure = error;
    if (failure != 0)
        throw RunTimeError(failure);
}

} // namespace

SecondFolder::SecondFolder() = default;
SecondFolder::~SecondFolder() = default;

void SecondFolder::Begin(const QString& folder, const std::optional<QDateTime>& limit) {
    if (IsBusy()) {
        NoteNotCopied();
        return;
    }
    const QDir own(platform::ApplicationFolder());
    const QDir second(QDir::cleanPath(own.absoluteFilePath(folder)));
    if (folder.isEmpty() || second.path() == QDir::cleanPath(own.path()))
        return;
    folder_ = folder;
    task_ = std::make_unique<BackgroundTask>(
        [own, second, limit](const auto& progress) { CareFor(own, second, limit, progress); });
}

void SecondFolder::Look() {
    if (!IsBusy() || !task_->Done())
        return;
    const int error = std::exchange(task_, nullptr)->Error();
    if (error == errors::PathNotFound)
        NoteNotCopied();
    else if (error != 0)
        throw RunTimeError(error);
}

void SecondFolder::NoteNotCopied() const {
    Trace::Note(QStringLiteral("HISTORIES NOT COPIED TO ") + folder_);
}
