#pragma once

#include "events/BackupFile.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>

/// The backups in a folder, each read to its end in the background to see whether it is whole.
class BackupList : public QObject {
    Q_OBJECT
public:
    enum class State { Checking, Verified, Damaged };
    struct Backup {
        QString path;
        qint64 size = 0;
        BackupFile::Manifest manifest; ///< without a date while it isn't known
        State state = State::Checking;
    };

    /// Begins to look at once.
    BackupList(const QString& folder, QObject* parent);
    ~BackupList() override;

    /// The newest first.
    QList<Backup> Backups() const;
    /// Every backup of the folder is known, though some may still be checked.
    bool IsRead() const;

Q_SIGNALS:
    void Changed();

private:
    struct Shared;
    static void Read(const std::shared_ptr<Shared>& shared, const QString& folder,
                     BackupFile::Progress& progress);
    void Look();

    std::shared_ptr<Shared> shared_;
    std::unique_ptr<platform::BackgroundTask> task_;
    QTimer timer_;
    int seen_ = 0;
};
