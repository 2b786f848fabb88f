#include "events/Restore.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "events/ForwardSettings.h"
#include "platform/CodePage.h"
#include "platform/FileReading.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"
#include "platform/SettingsFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <optional>
#include <utility>

namespace Restore {

namespace Kinds = BackupFile::Kinds;
using BackupFile::Entry;
using platform::SettingsFile;

namespace {

constexpr qint64 Portion = qint64(256) * 1024;
const QString StageName = QStringLiteral("Restore.stage%1");
const QString JournalName = QStringLiteral("Restore.list");
const QString General = QStringLiteral("General");
const QString Files = QStringLiteral("Files");
const QString LastUsed = QStringLiteral("LastUsed");
const QString LastEvent = QStringLiteral("LastEvent");
const QString Backups = QStringLiteral("Backup");
const QString LastBackup = QStringLiteral("Last");

/// Sections of what is on its way, which an old one must never bring back.
const QStringList& MomentSections() {
    static const QStringList sections{QStringLiteral("LastAlarms"),
                                      QStringLiteral("PendingCommands")};
    return sections;
}

/// An empty key stands for the whole section.
struct MachineSetting {
    QString section;
    QString key;
};
const QList<MachineSetting>& MachineSettings() {
    static const QList<MachineSetting> settings{{QStringLiteral("Ports"), QString()},
                                                {General, QStringLiteral("NoResize")},
                                                {General, QStringLiteral("ScreenKeyboard")},
                                                {Files, QStringLiteral("Histo")}};
    return settings;
}

QString Journal() {
    return Global::InApplicationFolder(JournalName);
}

/// SHA-256 of the first bytes of a file; nothing for one that is shorter or can't be read.
std::optional<QByteArray> DigestOf(const QString& path, qint64 size,
                                   const BackupFile::Progress& progress) {
    QFile file(path);
    if (file.size() < size || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (size > 0) {
        progress.Check();
        const QByteArray portion = file.read(qMin(size, Portion));
        if (portion.isEmpty())
            return std::nullopt;
        hash.addData(portion);
        size -= portion.size();
    }
    return hash.result().toHex();
}

/// The name beside a name.
QString Beside(const QString& name, int number) {
    const QFileInfo info(name);
    return info.completeBaseName() + QStringLiteral("R%1.").arg(number) + info.suffix();
}

QString FreeName(const QString& name) {
    QString found = name;
    for (int number = 1; QFile::exists(Global::InApplicationFolder(found)); ++number)
        found = Beside(name, number);
    return found;
}

/// Decides for one machine what becomes of each file.
class Planner {
public:
    Planner(const Places& places, const BackupFile::Progress& progress)
        : places_(places)
        , progress_(progress) {}

    Item Of(const Entry& entry) const {
        if (entry.name == BackupFile::CurrentSite)
            return Replacing(entry, places_.executable + QStringLiteral(".dat"));
        if (entry.Kind() == Kinds::Settings)
            return Replacing(entry, places_.executable + QStringLiteral(".ini"));
        if (entry.Kind() == Kinds::Site || entry.Kind() == Kinds::History)
            return Keeping(entry);
        if (entry.Kind() == Kinds::Certificates)
            return Replacing(entry, ForwardFiles::Folder + u'/' + entry.FileName());
        return Replacing(entry, entry.FileName());
    }

private:
    QString Path(const QString& name) const { return places_.folder + u'/' + name; }
    /// A history has grown since: the machine's own begins with it.
    bool IsThere(const Entry& entry, const QString& path) const {
        const bool mayGrow = entry.Kind() == Kinds::History;
        return (mayGrow || QFileInfo(path).size() == entry.size) &&
               DigestOf(path, entry.size, progress_) == entry.sha256;
    }
    QString Present(const Entry& entry, const QString& target) const {
        if (entry.Kind() != Kinds::Printers)
            return Path(target);
        for (const QString& folder : places_.programFolders) {
            if (QFile::exists(folder + u'/' + target))
                return folder + u'/' + target;
        }
        return Path(target);
    }
    Item Replacing(const Entry& entry, const QString& target) const {
        const QString present = Present(entry, target);
        if (!QFile::exists(present))
            return {entry.name, target, Effect::New};
        return {entry.name, target, IsThere(entry, present) ? Effect::Same : Effect::Replaced};
    }
    Item Keeping(const Entry& entry) const {
        QString target = entry.FileName();
        for (int number = 1;; ++number) {
            if (!QFile::exists(Path(target)))
                return {entry.name, target, number == 1 ? Effect::New : Effect::Beside};
            if (IsThere(entry, Path(target)))
                return {entry.name, target, Effect::Same};
            target = Beside(entry.FileName(), number);
        }
    }

    const Places& places_;
    const BackupFile::Progress& progress_;
};

/// Puts what one file of settings has of a section, or of one key, into another.
void TakeOver(const SettingsFile& from, SettingsFile& to, const QString& section,
              const QString& key) {
    const auto values = from.ReadSection(section);
    if (key.isEmpty()) {
        if (values.isEmpty())
            to.DeleteSection(section);
        else
            to.WriteSection(section, values);
        return;
    }
    const auto found = std::find_if(values.cbegin(), values.cend(), [&](const auto& value) {
        return value.first.compare(key, Qt::CaseInsensitive) == 0;
    });
    if (found == values.cend())
        to.DeleteKey(section, key);
    else
        to.Write(section, key, found->second);
}

/// The files that the program keeps are in this machine's folder.
void NameCertificates(const Plan& plan, SettingsFile& merged) {
    for (const QString& key : ForwardFiles::Keys) {
        const QFileInfo named(merged.Read(ForwardFiles::Section, key, QString()));
        const QString name = Kinds::Certificates + u'/' + named.fileName();
        for (const Item& item : plan.items)
            if (item.name == name)
                merged.Write(ForwardFiles::Section, key, Global::InApplicationFolder(item.target));
    }
}

/// The settings that this machine will have, in place of those that were unpacked.
void MergeSettings(const Plan& plan, bool keepMachine) {
    const SettingsFile present(SLVfonctions::IniFileName());
    SettingsFile merged(plan.FileOf(BackupFile::SettingsFile));
    if (keepMachine)
        for (const MachineSetting& setting : MachineSettings())
            TakeOver(present, merged, setting.section, setting.key);
    NameCertificates(plan, merged);
    const auto site = std::find_if(plan.items.cbegin(), plan.items.cend(), [](const Item& item) {
        return item.name.endsWith(QStringLiteral(".kv2"));
    });
    merged.Write(Files, LastUsed,
                 site == plan.items.cend() ? GetText(50010)
                                           : Global::InApplicationFolder(site->target));
}

/// What belongs to the moment is that of now, however long the restore has waited for its end.
void MergeMoment(const QString& settings) {
    const SettingsFile present(SLVfonctions::IniFileName());
    SettingsFile merged(settings);
    for (const QString& section : MomentSections())
        TakeOver(present, merged, section, QString());
    TakeOver(present, merged, Backups, LastBackup);
    const QString zero = QStringLiteral("0");
    const qint32 number = qMax(Bytes::LongVal(present.Read(General, LastEvent, zero)),
                               Bytes::LongVal(merged.Read(General, LastEvent, zero)));
    merged.Write(General, LastEvent, QString::number(number));
}

QStringList SectionsOf(const QString& path) {
    QStringList sections;
    if (!QFile::exists(path))
        return sections;
    for (const QString& line : platform::FromCodePage(platform::ReadFile(path)).split(u'\n')) {
        const QString head = line.trimmed();
        const QString section = head.mid(1).section(u']', 0, 0);
        if (head.startsWith(u'[') && !sections.contains(section, Qt::CaseInsensitive))
            sections += section;
    }
    return sections;
}

bool IsOfMachine(const QString& section, const QString& key) {
    return std::any_of(
        MachineSettings().cbegin(), MachineSettings().cend(), [&](const MachineSetting& setting) {
            return setting.section.compare(section, Qt::CaseInsensitive) == 0 &&
                   (setting.key.isEmpty() || setting.key.compare(key, Qt::CaseInsensitive) == 0);
        });
}

bool IsOfMoment(const QString& section, const QString& key) {
    return MomentSections().contains(section, Qt::CaseInsensitive) ||
           (section == Backups && key == LastBackup) ||
           key.compare(LastEvent, Qt::CaseInsensitive) == 0 ||
           key.compare(LastUsed, Qt::CaseInsensitive) == 0;
}

} // namespace

QStringList Plan::TargetsOf(const QString& kind, Effect effect) const {
    QStringList targets;
    for (const Item& item : items) {
        if (item.effect == effect && item.name.startsWith(kind + u'/'))
            targets += item.target;
    }
    return targets;
}

Places Places::OfProgram() {
    static int number = 0;
    return {platform::ApplicationFolder(), platform::ExecutableName(), platform::ProgramFolders(),
            Global::InApplicationFolder(StageName.arg(++number))};
}

StageFolder::StageFolder(QString newPath)
    : path(std::move(newPath)) {
    QDir(path).removeRecursively();
}

StageFolder::~StageFolder() {
    if (!isCommitted)
        QDir(path).removeRecursively();
}

Plan Stage(const QString& backup, const Places& places, BackupFile::Progress& progress) {
    Plan plan{{}, std::make_shared<StageFolder>(places.stage), {}};
    plan.manifest = BackupFile::Unpack(backup, places.stage, progress);
    const Planner planner(places, progress);
    for (const Entry& entry : plan.manifest.entries)
        plan.items += planner.Of(entry);
    return plan;
}

QList<Setting> ChangedSettings(const Plan& plan, bool keepMachine) {
    const QString hereFile = SLVfonctions::IniFileName();
    const QString thereFile = plan.FileOf(BackupFile::SettingsFile);
    const SettingsFile here(hereFile);
    const SettingsFile there(thereFile);
    QStringList sections = SectionsOf(hereFile);
    for (const QString& section : SectionsOf(thereFile)) {
        if (!sections.contains(section, Qt::CaseInsensitive))
            sections += section;
    }
    QList<Setting> changed;
    for (const QString& section : sections) {
        QStringList keys = here.Keys(section);
        for (const QString& key : there.Keys(section)) {
            if (!keys.contains(key, Qt::CaseInsensitive))
                keys += key;
        }
        for (const QString& key : keys) {
            const Setting setting{section, key, here.Read(section, key, QString()),
                                  there.Read(section, key, QString())};
            if (setting.here != setting.there && !IsOfMoment(section, key) &&
                !(keepMachine && IsOfMachine(section, key)))
                changed += setting;
        }
    }
    return changed;
}

/// The settings come last: what they name is there then.
void Commit(const Plan& plan, bool keepMachine) {
    MergeSettings(plan, keepMachine);
    QStringList lines{QFileInfo(plan.stage->path).fileName()};
    QString settings;
    for (const Item& item : plan.items) {
        if (item.name == BackupFile::SettingsFile)
            settings = item.name + u'\t' + item.target;
        else if (item.effect != Effect::Same)
            lines += item.name + u'\t' + item.target;
    }
    if (!settings.isEmpty())
        lines += settings;
    platform::ReplaceFile(Journal(), lines.join(u'\n').toUtf8());
    plan.stage->isCommitted = true;
    platform::FlushFolder(platform::ApplicationFolder());
}

bool Complete() {
    if (!QFile::exists(Journal()))
        return false;
    QStringList lines = QString::fromUtf8(platform::ReadFile(Journal())).split(u'\n');
    const QString stage = Global::InApplicationFolder(lines.takeFirst());
    for (const QString& line : lines) {
        const QString name = line.section(u'\t', 0, 0);
        const QString from = stage + u'/' + name;
        // One that isn't there any more has its place already.
        if (!QFile::exists(from))
            continue;
        QString target = line.section(u'\t', 1);
        // A month may have begun since the plan was made.
        if (name.startsWith(Kinds::History + u'/'))
            target = FreeName(target);
        if (name == BackupFile::SettingsFile)
            MergeMoment(from);
        const QString path = Global::InApplicationFolder(target);
        platform::MakeFolder(QFileInfo(path).path());
        platform::Rename(from, path);
    }
    platform::FlushFolder(Global::InApplicationFolder(ForwardFiles::Folder));
    platform::FlushFolder(platform::ApplicationFolder());
    QFile::remove(Journal());
    QDir(stage).removeRecursively();
    return true;
}

bool CompleteAtStart() {
    const bool completed = Complete();
    QDir folder(platform::ApplicationFolder());
    for (const QString& name : folder.entryList({StageName.arg(QStringLiteral("*"))}, QDir::Dirs))
        QDir(folder.filePath(name)).removeRecursively();
    return completed;
}

} // namespace Restore
