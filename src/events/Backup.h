#pragma once

#include "core/DateTimes.h"
#include "events/BackupFile.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>
#include <optional>

/// Backups of this machine on a stick: what goes into one, its name, and the settings of those that
/// are made by themselves.
namespace Backup {

/// So many automatic backups of a machine stay on a stick.
inline constexpr int KeptAutomatic = 4;

/// Name of the file of a backup.
QString FileName(DateTime when, bool automatic);
/// The name is that of an automatic backup, of this machine or of any.
bool IsAutomatic(const QString& fileName);
bool IsOwnAutomatic(const QString& fileName);

/// The day of the week on which a backup is made, 1 for Monday to 7 for Sunday; 0 for none.
int Weekday();
void setWeekday(int day);
/// When the last good backup was made; nothing when none is known.
std::optional<DateTime> Last();
/// Long enough without a backup, on a machine that makes them by itself, that it must be told.
bool IsOverdue();

} // namespace Backup

/// One backup on its way to a medium. The bus goes on; what isn't whole in the end leaves nothing.
class BackupJob : public QObject {
    Q_OBJECT
public:
    enum class State { Running, Complete, Stopped, Failed };

    /// Begins at once. What the files hold now goes into the backup. Throws RunTimeError when the
    /// site or the settings can't be read.
    BackupJob(const QString& folder, bool automatic, QObject* parent);
    ~BackupJob() override;

    /// The one that runs or has run last; null when there was none.
    static BackupJob* Current();

    void Stop() { task_->Stop(); }
    State Outcome() const { return state_; }
    bool Automatic() const { return automatic_; }
    int Percent() const { return task_->Percent(); }
    /// Number of the run-time error of one that failed.
    int Error() const { return task_->Error(); }
    const QString& Path() const { return path_; }

Q_SIGNALS:
    /// There is progress, or the outcome.
    void Changed();

private:
    void Look();

    QString path_;
    bool automatic_;
    DateTime begun_;
    State state_ = State::Running;
    std::unique_ptr<platform::BackgroundTask> task_;
    QTimer timer_;
};

/// Makes the backup of the week when its day has come and a stick is there. Nobody is asked: what
/// fails, or fails to come, is a standing fault.
class BackupSchedule : public QObject {
    Q_OBJECT
public:
    BackupSchedule();

    /// Runs by itself each 10 s.
    void Look();

private:
    bool IsDue() const;
    void Begin(const QString& folder);
    void Ended();
    void TellFault();

    QTimer timer_;
    std::optional<DateTime> tried_;
    bool failed_ = false;
};
