#include "config_screens/backup/RestoreRun.h"

#include "bus/OutOfServiceWatch.h"
#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"

#include <QScopeGuard>
#include <optional>

namespace RestoreRun {

namespace Kinds = BackupFile::Kinds;

namespace {

enum Texts {
    MachineSettings = 716121,
    SiteFile,
    Sounds,
    Printers,
    History,
    Added,
    Replaced,
    Beside,
    Certificates = 714330,
};

std::optional<Restore::Plan>& Waiting() {
    static std::optional<Restore::Plan> plan;
    return plan;
}

struct KindWords {
    QString kind;
    int place;
};

QString EffectText(Restore::Effect effect) {
    switch (effect) {
    case Restore::Effect::New:
        return GetText(Added);
    case Restore::Effect::Replaced:
        return GetText(Replaced);
    default:
        return GetText(Beside);
    }
}

/// The site as such is told field by field.
void AddFiles(QList<SiteDifference>& found) {
    const KindWords words[] = {{Kinds::Site, SiteFile},
                               {Kinds::Sounds, Sounds},
                               {Kinds::Printers, Printers},
                               {Kinds::Certificates, Certificates},
                               {Kinds::History, History}};
    for (const KindWords& word : words) {
        for (const Restore::Item& item : Waiting()->items) {
            const bool isCurrent = item.name == BackupFile::CurrentSite;
            if (item.effect == Restore::Effect::Same || isCurrent ||
                !item.name.startsWith(word.kind + u'/'))
                continue;
            const QString name = item.name.section(u'/', 1);
            const bool isBeside = item.effect == Restore::Effect::Beside;
            found += {GetText(word.place),
                      QString(),
                      name,
                      item.effect == Restore::Effect::New ? QString() : name,
                      EffectText(item.effect) +
                          (isBeside ? QStringLiteral(": ") + item.target : QString()),
                      false};
        }
    }
}

void AddSettings(QList<SiteDifference>& found) {
    for (const Restore::Setting& setting : Restore::ChangedSettings(*Waiting(), false))
        found += {GetText(MachineSettings),
                  QString(),
                  setting.section + u' ' + setting.key,
                  setting.here,
                  setting.there,
                  false};
}

/// The program goes on with what the files hold now.
void TakeUp() {
    Global::setConfiguration(std::make_unique<ConfigClass>());
    ConfigClass& site = Global::Configuration();
    site.Read(CurrentConfigFile());
    site.setModified(SLVfonctions::IsTrue(IniRead(
        QStringLiteral("Files"), QStringLiteral("LastConfigModified"), QStringLiteral("1"))));
    // What was out when the backup was made is so again, as at a start.
    OutOfService::Restore();
    Global::Get().language = Bytes::ShortVal(
        IniRead(QStringLiteral("General"), QStringLiteral("Language"), QStringLiteral("0")));
    Global::ReadMarks();
    if (wPolling* polling = Polling()) {
        polling->ReadLastEvent();
        TellOutOfService();
        polling->ConfigurationChanged();
        polling->ReinitComm();
        polling->SetupUserSleep();
        polling->SetupPrinter();
        polling->Forwarder().Start();
    }
}

} // namespace

void Propose(const Restore::Plan& plan) {
    Waiting() = plan;
}

const Restore::Plan* Proposed() {
    return Waiting() ? &*Waiting() : nullptr;
}

void Drop() {
    Waiting().reset();
}

int Refusal() {
    ConfigClass site;
    return qMax(0, int(site.Read(Waiting()->FileOf(BackupFile::CurrentSite))));
}

QList<SiteDifference> Differences() {
    ConfigClass site;
    site.Read(Waiting()->FileOf(BackupFile::CurrentSite));
    QList<SiteDifference> found = CompareSites(Global::Configuration(), site);
    AddSettings(found);
    AddFiles(found);
    return found;
}

void Run(bool keepMachine) {
    wPolling* polling = Polling();
    const bool ran = polling != nullptr && polling->Run();
    if (ran)
        polling->setRun(false);
    const auto restart = qScopeGuard([&] {
        if (ran && Polling() != nullptr)
            Polling()->setRun(true);
    });
    const Restore::Plan plan = *Waiting();
    Restore::Commit(plan, keepMachine);
    // From here on it happens, now or at the next start.
    Waiting().reset();
    OutOfService::LeaveSite();
    TellOutOfService();
    const auto takeUp =
        qScopeGuard([] { ErrorHandling::Guard("RestoreRun.TakeUp", [] { TakeUp(); }); });
    Restore::Complete();
    Trace::Note(QStringLiteral("BACKUP RESTORED, MADE ") +
                plan.manifest.date.toString(Qt::ISODate));
}

} // namespace RestoreRun
