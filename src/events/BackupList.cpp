#include "events/BackupList.h"

#include "platform/RunTimeError.h"

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <algorithm>

namespace {

constexpr int LookPeriodMs = 200;
const QString OwnName = QStringLiteral("Korvanelle-");

} // namespace

struct BackupList::Shared {
    mutable QMutex mutex;
    QList<Backup> backups;
    bool read = false;
    int changes = 0;

    template <class Change> void Make(Change change) {
        const QMutexLocker lock(&mutex);
        change(*this);
        ++changes;
    }
};

BackupList::BackupList(const QString& folder, QObject* parent)
    : QObject(parent)
    , shared_(std::make_shared<Shared>()) {
    task_ = std::make_unique<platform::BackgroundTask>(
        [shared = shared_, folder](BackupFile::Progress& progress) {
            Read(shared, folder, progress);
        });
    timer_.callOnTimeout([this] { Look(); });
    timer_.start(LookPeriodMs);
}

BackupList::~BackupList() = default;

/// What says of itself what it is comes first: a name that is no backup's and a content that isn't
/// either are left out.
void BackupList::Read(const std::shared_ptr<Shared>& shared, const QString& folder,
                      BackupFile::Progress& progress) {
    QList<Backup> found;
    for (const QFileInfo& info :
         QDir(folder).entryInfoList({QStringLiteral("*.zip")}, QDir::Files)) {
        progress.Check();
        Backup backup{info.filePath(), info.size(), {}, State::Checking};
        try {
            backup.manifest = BackupFile::ReadManifest(backup.path);
        } catch (const platform::RunTimeError&) {
            if (!info.fileName().startsWith(OwnName))
                continue;
            backup.manifest.date = info.lastModified();
            backup.state = State::Damaged;
        }
        found += backup;
    }
    std::sort(found.begin(), found.end(), [](const Backup& one, const Backup& other) {
        return one.manifest.date > other.manifest.date;
    });
    shared->Make([&](Shared& shown) {
        shown.backups = found;
        shown.read = true;
    });
    for (qsizetype i = 0; i < found.size(); ++i) {
        State state = State::Damaged;
        try {
            if (found[i].state == State::Checking) {
                BackupFile::Verify(found[i].path, progress);
                state = State::Verified;
            }
        } catch (const platform::RunTimeError&) {
            progress.Check();
        }
        shared->Make([&](Shared& shown) { shown.backups[i].state = state; });
    }
}

QList<BackupList::Backup> BackupList::Backups() const {
    const QMutexLocker lock(&shared_->mutex);
    return shared_->backups;
}

bool BackupList::IsRead() const {
    const QMutexLocker lock(&shared_->mutex);
    return shared_->read;
}

void BackupList::Look() {
    if (task_->Done())
        timer_.stop();
    {
        const QMutexLocker lock(&shared_->mutex);
        if (seen_ == shared_->changes)
            return;
        seen_ = shared_->changes;
    }
    Q_EMIT Changed();
}
