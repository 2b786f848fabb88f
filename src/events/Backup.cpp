#include "events/Backup.h"

#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/ForwardSettings.h"
#include "model/CurrentConfig.h"
#include "platform/FileReading.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"
#include "platform/Volumes.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>
#include <QSysInfo>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

const QString Section = QStringLiteral("Backup");
const QString WeekdayKey = QStringLiteral("Weekday");
const QString LastKey = QStringLiteral("Last");
const QString SinceKey = QStringLiteral("Since");

/// Days without a backup that must be told.
constexpr int LongestWithout = 14;
constexpr int YearOfHistory = 366;
/// When the automatic backup is made, if a stick is there.
constexpr int Hour = 2;
constexpr int RetryHours = 1;
constexpr int JobPeriodMs = 100;
constexpr int SchedulePeriodMs = 10000;

// Made ahead of the start: the background may outlast what is made later.
const QRegularExpression OtherLetters(QStringLiteral("[^A-Za-z0-9]"));
const QRegularExpression
    AutomaticName(QStringLiteral("\\AKorvanelle-[A-Za-z0-9_]*-\\d{8}-\\d{6}-auto\\.zip\\z"));

QPointer<BackupJob> current;

QDateTime QtTime(DateTime when) {
    return {DateTimes::DateOf(when), DateTimes::TimeOf(when)};
}

void WriteTime(const QString& key, DateTime when) {
    IniWrite(Section, key, DateTimes::KeptTime(when));
}

std::optional<DateTime> ReadTime(const QString& key) {
    return DateTimes::FromKept(IniRead(Section, key, QString()));
}

/// Letters and digits alone: it stands in the names of files on any medium.
QString MachineInName() {
    QString name = QSysInfo::machineHostName();
    return name.replace(OtherLetters, QStringLiteral("_"));
}

/// What the names of this machine's backups begin with.
QString OwnHead() {
    return QStringLiteral("Korvanelle-%1-").arg(MachineInName());
}

/// Small files are taken as they are now: they change while the backup is written.
void AddBytes(QList<BackupFile::Source>& sources, const QString& name, const QString& path) {
    BackupFile::Source source{name, QString(), platform::ReadFile(path), 0,
                              QFileInfo(path).lastModified()};
    source.size = source.bytes.size();
    sources += source;
}

void AddFiles(QList<BackupFile::Source>& sources, const QString& kind, const QString& folder,
              const QString& pattern, const QDateTime& since = {}) {
    // Names of files differ by case here: nothing reads an "X.WAV".
    const QDir::Filters filters = QDir::Files | QDir::CaseSensitive;
    for (const QFileInfo& info : QDir(folder).entryInfoList({pattern}, filters, QDir::Name)) {
        const QString name = kind + u'/' + info.fileName();
        const bool isThere =
            std::any_of(sources.cbegin(), sources.cend(),
                        [&](const BackupFile::Source& source) { return source.name == name; });
        if (!isThere && (!since.isValid() || info.lastModified() >= since))
            sources += {name, info.filePath(), QByteArray(), info.size(), info.lastModified()};
    }
}

/// Those that the settings name and that the program keeps, with the key that one of them holds:
/// without it the restored machine would forward nothing, and the users' codes are in a backup as
/// well.
void AddCertificates(QList<BackupFile::Source>& sources) {
    const platform::LogServerSetup server = ForwardSettings::Read().server;
    for (const QString& path : QSet<QString>{server.authority, server.certificate}) {
        const QFileInfo info(path);
        const QString name = BackupFile::Kinds::Certificates + u'/' + info.fileName();
        if (info.absolutePath() == Global::InApplicationFolder(ForwardFiles::Folder) &&
            info.isFile() && info.isReadable() && BackupFile::IsEntryName(name))
            AddBytes(sources, name, path);
    }
}

/// A history grows at its end alone, so that its length now says which part belongs into the
/// backup.
QList<BackupFile::Source> Sources(const QString& site) {
    namespace Kinds = BackupFile::Kinds;
    QList<BackupFile::Source> sources;
    if (!QFile::exists(CurrentConfigFile()))
        SaveCurrentConfig();
    AddBytes(sources, BackupFile::CurrentSite, CurrentConfigFile());
    if (QFileInfo(site).isAbsolute() && QFileInfo(site).isFile())
        AddBytes(sources,
                 Kinds::Site + u'/' + QFileInfo(site).completeBaseName() + QStringLiteral(".kv2"),
                 site);
    if (QFile::exists(SLVfonctions::IniFileName()))
        AddBytes(sources, BackupFile::SettingsFile, SLVfonctions::IniFileName());
    const QString folder = platform::ApplicationFolder();
    AddFiles(sources, Kinds::Sounds, folder, QStringLiteral("*.wav"));
    for (const QString& one : platform::ProgramFolders())
        AddFiles(sources, Kinds::Printers, one, QStringLiteral("*.prt"));
    AddCertificates(sources);
    AddFiles(sources, Kinds::History, folder, QStringLiteral("*.his"),
             QtTime(DateTimes::Now()).addDays(-YearOfHistory));
    return sources;
}

BackupFile::Manifest Head(DateTime when, const QString& site) {
    BackupFile::Manifest head;
    head.version = QStringLiteral("%1.%2.%3")
                       .arg(Global::VersionMajor)
                       .arg(Global::VersionMinor)
                       .arg(Global::VersionRevision);
    head.date = QtTime(when);
    head.machine = QSysInfo::machineHostName();
    if (QFileInfo(site).isAbsolute() && QFileInfo(site).isFile())
        head.site = QFileInfo(site).completeBaseName();
    return head;
}

/// Of the automatic ones all but the newest go. The one just written is the newest, whatever clock
/// gave the others their names.
void DropOld(const QString& written) {
    const QFileInfo info(written);
    const QDir dir = info.dir();
    QStringList own = dir.entryList({QStringLiteral("*.zip")}, QDir::Files, QDir::Name);
    own.removeIf([&](const QString& name) {
        return !Backup::IsOwnAutomatic(name) || name == info.fileName();
    });
    while (own.size() >= Backup::KeptAutomatic)
        QFile::remove(dir.filePath(own.takeFirst()));
}

/// What a kill or a pulled stick has left goes; another machine may be writing beside it.
void DropHalfWritten(const QString& folder) {
    const QDir dir(folder);
    const QString own = OwnHead() + QStringLiteral("*.zip.tmp*");
    for (const QString& name : dir.entryList({own}, QDir::Files))
        QFile::remove(dir.filePath(name));
}

QString FailedWord(int error) {
    return QStringLiteral("BACKUP FAILED, ERROR %1 ").arg(error);
}

QString TraceWord(const BackupJob& job) {
    switch (job.Outcome()) {
    case BackupJob::State::Complete:
        return QStringLiteral("BACKUP WRITTEN ");
    case BackupJob::State::Stopped:
        return QStringLiteral("BACKUP STOPPED ");
    default:
        return FailedWord(job.Error());
    }
}

/// The stick that holds such backups already, or else any that can be written.
QString StickForBackups() {
    QString first;
    for (const platform::Volume& volume : platform::RemovableVolumes()) {
        if (!platform::IsReady(volume.path) ||
            platform::MediumOf(volume.path) != platform::Medium::There)
            continue;
        const QStringList names = QDir(volume.path).entryList({QStringLiteral("*.zip")});
        if (std::any_of(names.cbegin(), names.cend(), Backup::IsOwnAutomatic))
            return volume.path;
        if (first.isEmpty())
            first = volume.path;
    }
    return first;
}

} // namespace

namespace Backup {

QString FileName(DateTime when, bool automatic) {
    return OwnHead() + QtTime(when).toString(QStringLiteral("yyyyMMdd-HHmmss")) +
           (automatic ? QStringLiteral("-auto.zip") : QStringLiteral(".zip"));
}

bool IsAutomatic(const QString& fileName) {
    return AutomaticName.match(fileName).hasMatch();
}

bool IsOwnAutomatic(const QString& fileName) {
    return IsAutomatic(fileName) && fileName.startsWith(OwnHead());
}

int Weekday() {
    return Bytes::Limit(int(Bytes::ShortVal(IniRead(Section, WeekdayKey, QStringLiteral("0")))), 0,
                        7);
}

void setWeekday(int day) {
    if (day != 0 && Weekday() == 0)
        WriteTime(SinceKey, DateTimes::Now());
    IniWrite(Section, WeekdayKey, QString::number(day));
}

std::optional<DateTime> Last() {
    return ReadTime(LastKey);
}

bool IsOverdue() {
    if (Weekday() == 0)
        return false;
    const DateTime since = qMax(Last().value_or(0), ReadTime(SinceKey).value_or(0));
    // One far ahead is of a clock that was set back.
    return since > 0 && std::abs(DateTimes::Now() - since) > LongestWithout;
}

} // namespace Backup

BackupJob::BackupJob(const QString& folder, bool automatic, QObject* parent)
    : QObject(parent)
    , automatic_(automatic)
    , begun_(DateTimes::Now()) {
    path_ = QDir(folder).filePath(Backup::FileName(begun_, automatic));
    const QString site = IniRead(QStringLiteral("Files"), QStringLiteral("LastUsed"), QString());
    task_ = std::make_unique<platform::BackgroundTask>(
        [folder, automatic, path = path_, head = Head(begun_, site),
         sources = Sources(site)](BackupFile::Progress& progress) {
            DropHalfWritten(folder);
            BackupFile::Write(path, head, sources, progress);
            if (automatic)
                DropOld(path);
        });
    timer_.callOnTimeout([this] { Look(); });
    timer_.start(JobPeriodMs);
    current = this;
}

BackupJob::~BackupJob() = default;

BackupJob* BackupJob::Current() {
    return current;
}

void BackupJob::Look() {
    if (task_->Done()) {
        timer_.stop();
        state_ = task_->WasStopped()   ? State::Stopped
                 : task_->Error() != 0 ? State::Failed
                                       : State::Complete;
        Trace::Note(TraceWord(*this) + path_);
        if (state_ == State::Complete) {
            WriteTime(LastKey, begun_);
            Faults::Clear(Faults::Kind::NoBackup);
        }
    }
    Q_EMIT Changed();
}

BackupSchedule::BackupSchedule() {
    timer_.callOnTimeout([this] { Look(); });
    timer_.start(SchedulePeriodMs);
}

/// On its day from two o'clock on, once, and again an hour after one that failed. A last one that
/// is still to come is of a clock that was set back.
bool BackupSchedule::IsDue() const {
    const DateTime now = DateTimes::Now();
    const QDate today = DateTimes::DateOf(now);
    const DateTime hour = DateTimes::FromDate(today, QTime(Hour, 0));
    const DateTime last = Backup::Last().value_or(0);
    return Backup::Weekday() == today.dayOfWeek() && now >= hour && (last < hour || last > now) &&
           (!tried_ || now - *tried_ >= RetryHours / 24.0 || now < *tried_);
}

void BackupSchedule::Look() {
    ErrorHandling::Guard("BackupSchedule.Look", [&] {
        const bool runs = current && current->Outcome() == BackupJob::State::Running;
        if (!runs && IsDue()) {
            const QString folder = StickForBackups();
            if (!folder.isEmpty())
                Begin(folder);
        }
        TellFault();
    });
}

/// One that a finger made afterwards is as good.
void BackupSchedule::TellFault() {
    if (Backup::Weekday() == 0 || (current && current->Outcome() == BackupJob::State::Complete))
        failed_ = false;
    if (failed_ || Backup::IsOverdue()) {
        const std::optional<DateTime> last = Backup::Last();
        Faults::Set(Faults::Kind::NoBackup,
                    last ? DateTimes::ShortDate(*last) : QStringLiteral("---"));
    } else {
        Faults::Clear(Faults::Kind::NoBackup);
    }
}

void BackupSchedule::Begin(const QString& folder) {
    tried_ = DateTimes::Now();
    delete current.data();
    try {
        auto* job = new BackupJob(folder, true, this);
        connect(job, &BackupJob::Changed, this, &BackupSchedule::Ended);
    } catch (const platform::RunTimeError& error) {
        failed_ = true;
        Trace::Note(FailedWord(error.Number()) + folder);
    }
}

void BackupSchedule::Ended() {
    const auto* job = qobject_cast<BackupJob*>(sender());
    if (job == nullptr || job->Outcome() == BackupJob::State::Running)
        return;
    // One that was stopped says nothing.
    failed_ = failed_ || job->Outcome() == BackupJob::State::Failed;
    TellFault();
}
