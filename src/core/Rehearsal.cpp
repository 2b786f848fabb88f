#include "core/Rehearsal.h"

#include "core/Global.h"
#include "platform/Folders.h"
#include "platform/Replacement.h"
#include "platform/RunTimeError.h"
#include "platform/SettingsFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Rehearsal {

namespace {

const QString Option = QStringLiteral("--rehearsal");
const QString FolderName = QStringLiteral("Rehearsal");
const QString Files = QStringLiteral("Files");
const QString LastUsed = QStringLiteral("LastUsed");

/// What isn't named here stays behind: ports, second folders, what leaves the machine, commands
/// and alarms that wait, and whatever the settings may come to hold.
struct Keys {
    QString section;
    QStringList keys;
};
const QList<Keys>& CopiedKeys() {
    static const QList<Keys> keys = {
        {QStringLiteral("General"),
         {QStringLiteral("Language"), QStringLiteral("NoResize"), QStringLiteral("LastEvent"),
          QStringLiteral("TechPanel"), QStringLiteral("PanelPage"),
          QStringLiteral("ScreenKeyboard")}},
        {Files,
         {QStringLiteral("PeriodUnit"), QStringLiteral("PeriodTime"), QStringLiteral("PeriodLimit"),
          QStringLiteral("LastConfigModified")}}};
    return keys;
}
const QStringList& CopiedSections() {
    static const QStringList sections = {QStringLiteral("OutOfService"),
                                         QStringLiteral("OutOfServiceReasons")};
    return sections;
}

bool runs = false;
QString simulator;

QString FileOf(const QString& folder, const QString& extension) {
    return folder + u'/' + platform::ExecutableName() + extension;
}

void CopySettings(const QString& from, const QString& to) {
    const QString extension = QStringLiteral(".ini");
    const platform::SettingsFile plant(FileOf(from, extension));
    platform::SettingsFile own(FileOf(to, extension));
    for (const auto& [section, keys] : CopiedKeys()) {
        const auto known = plant.ReadSection(section);
        for (const auto& [key, value] : known) {
            if (keys.contains(key, Qt::CaseInsensitive))
                own.Write(section, key, value);
        }
    }
    for (const QString& section : CopiedSections())
        own.WriteSection(section, plant.ReadSection(section));
    // Saved under its name, the site lands here.
    const QString site = plant.Read(Files, LastUsed, QString());
    if (!site.isEmpty())
        own.Write(Files, LastUsed,
                  site.contains(u'/') ? to + u'/' + QFileInfo(site).fileName() : site);
}

/// What tells of former rehearsals stays, all else goes.
void Clean(const QDir& folder) {
    const QStringList kept = {QStringLiteral("Histo*.his"), QFileInfo(Prints()).fileName()};
    for (const QString& name : folder.entryList(QDir::Files | QDir::System | QDir::Hidden)) {
        if (!QDir::match(kept, name))
            QFile::remove(folder.filePath(name));
    }
}

void CopyFiles(const QString& from, const QString& to, const QString& pattern) {
    for (const QString& name : QDir(from).entryList({pattern}, QDir::Files)) {
        if (!QFile::copy(from + u'/' + name, to + u'/' + name))
            throw platform::RunTimeError(platform::errors::PathAccess);
    }
}

} // namespace

bool Runs() {
    return runs;
}

QStringList BeginArguments() {
    return EndArguments() + QStringList(Option);
}

QStringList EndArguments() {
    QStringList arguments = platform::Replacement::Arguments();
    arguments.removeAll(Option);
    return arguments;
}

QByteArray NoteOf(Ending ending) {
    return "rehearsal " + QByteArray::number(int(ending));
}

std::optional<Ending> EndingOf(const std::optional<QByteArray>& note) {
    for (const Ending ending :
         {Ending::Asked, Ending::Unattended, Ending::Simulator, Ending::NotBegun}) {
        if (note == NoteOf(ending))
            return ending;
    }
    return std::nullopt;
}

void Begin() {
    const QString plant = platform::ApplicationFolder();
    const QString own = plant + u'/' + FolderName;
    if (!platform::UseApplicationFolder(own))
        throw platform::RunTimeError(platform::errors::PathAccess);
    runs = true;
    Clean(QDir(own));
    CopySettings(plant, own);
    CopyFiles(plant, own, platform::ExecutableName() + QStringLiteral(".dat"));
    CopyFiles(plant, own, QStringLiteral("AlarmSound*.wav"));
    // A printer's port is opened and never made.
    QFile prints(Prints());
    if (!prints.open(QIODevice::Append))
        throw platform::RunTimeError(platform::errors::PathAccess);
}

void Override(bool on) {
    runs = on;
}

QString SimulatorProgram() {
    return simulator.isEmpty()
               ? QCoreApplication::applicationDirPath() + QStringLiteral("/korvanelle-sim")
               : simulator;
}

bool HasSimulator() {
    return QFileInfo(SimulatorProgram()).isExecutable();
}

void OverrideSimulator(const QString& program) {
    simulator = program;
}

QString Line() {
    return Global::InApplicationFolder(QStringLiteral("bus"));
}

QString Prints() {
    return Global::InApplicationFolder(QStringLiteral("Printed.txt"));
}

} // namespace Rehearsal
