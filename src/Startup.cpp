#include "Startup.h"

#include "bus/OutOfServiceWatch.h"
#include "bus/ProgramEnd.h"
#include "bus/SimulatedPlant.h"
#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/Pointer.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/Backup.h"
#include "events/Klaxon.h"
#include "events/Restore.h"
#include "model/BusSettings.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/OutOfService.h"
#include "platform/Folders.h"
#include "platform/Replacement.h"
#include "platform/ServiceManager.h"
#include "screens/Screens.h"
#include "technician/Technician.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopeGuard>
#include <utility>

using ErrorHandling::Guard;

namespace {

const QString Files = QStringLiteral("Files");

/// Words of `Rehearsal::Ending`, from `Asked` on, which has none.
constexpr int FirstEnding = 718040;

void TellHorn(bool canBeHeard) {
    if (canBeHeard)
        Faults::Clear(Faults::Kind::NoHorn);
    else
        Faults::Set(Faults::Kind::NoHorn);
}

void TellStandIn(const QString& file, const QString& standIn) {
    Trace::Note(QStringLiteral("SOUND ") + file + QStringLiteral(" NOT PLAYABLE, IN ITS PLACE ") +
                standIn);
}

/// Tells why the program can't go on and waits for the answer: without it the screen would stay
/// black and nobody would know.
void TellTheEnd(const QString& text) {
    platform::ServiceManager::Current().Log(platform::ServiceManager::Priority::Error, text);
    const Operator::Acting acting;
    Message(text, Messages::Critical);
}

} // namespace

Startup::Startup() {
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Startup::TellStop);
}
// The thread of the horn ends before what it reports to. Whoever asked for the end since the
// program gave its place away gets it.
Startup::~Startup() {
    if (platform::ShutdownWatch::Pending())
        platform::Replacement::Forget();
    Global::Get().sound.reset();
}

bool Startup::ClaimInstance() {
    instance_ = std::make_unique<platform::SingleInstance>(
        Global::InApplicationFolder(platform::ExecutableName() + QStringLiteral(".lock")));
    if (instance_->Acquire())
        return true;
    TellTheEnd(QStringLiteral("Korvanelle is already in use. Multiple instances are not allowed.\r"
                              "If Korvanelle is not visible please use the task manager for "
                              "shutdown it then restart it (or reboot the panel)."));
    return false;
}

/// The standing alarms of the former run are dropped; keys that are no numbers stay.
void Startup::DropFormerAlarms() {
    const QString section = QStringLiteral("LastAlarms");
    QList<std::pair<QString, QString>> kept = SLVfonctions::IniReadSection(section);
    const auto dropped = kept.removeIf([](const std::pair<QString, QString>& entry) {
        bool isNumber = false;
        entry.first.toDouble(&isNumber);
        return isNumber;
    });
    if (dropped > 0)
        SLVfonctions::IniWriteSection(section, kept);
}

qint32 Startup::ReadConfiguration() {
    qint32 result = -1;
    Global::setConfiguration(std::make_unique<ConfigClass>());
    if (QFile::exists(CurrentConfigFile())) {
        result = Global::Configuration().Read(CurrentConfigFile());
        Global::Configuration().setModified(SLVfonctions::IsTrue(
            IniRead(Files, QStringLiteral("LastConfigModified"), QStringLiteral("1"))));
    }
    if (result != 0)
        IniWrite(Files, QStringLiteral("LastUsed"), GetText(50010));
    return result;
}

void Startup::LoadPolling() {
    platform::SerialSetup setup;
    setup.isRs485 = [](int number) {
        return SLVfonctions::PortOf(BusSettings::PortName(number)).rs485;
    };
    polling_ = std::make_unique<wPolling>(platform::MakeSerialPort(
        [](int number) { return SLVfonctions::DevicePath(BusSettings::PortName(number)); },
        std::move(setup)));
    polling_->Form_Load(started_);
    Forms::Load(FormNames::wPolling);
}

/// A port that isn't there yet, as an adapter that the system finds late, is tried again while the
/// console stands: nobody is there to start the bus.
void Startup::StartByItself() {
    Forms::Show(FormNames::wMain);
    polling_->RunWhenPortComes();
    if (HasEnded())
        return;
    Forms::Show(FormNames::wRunAlarms);
    Forms::Unload(FormNames::wMain);
    Forms::UnloadAllBut({FormNames::wRunAlarms, FormNames::wPolling});
}

/// The plant's watch comes back when that fails.
bool Startup::EnterRehearsal() {
    bool entered = false;
    Guard("Startup.EnterRehearsal", [&] {
        const auto backUnlessEntered = qScopeGuard([&] {
            if (!entered)
                platform::Replacement::Ask(Rehearsal::EndArguments(),
                                           Rehearsal::NoteOf(Rehearsal::Ending::NotBegun));
        });
        Rehearsal::Begin();
        entered = true;
    });
    return entered;
}

/// The modules are there before their port is opened.
bool Startup::PlaySite(qint32 result) {
    plant_ = std::make_unique<SimulatedPlant>();
    connect(
        plant_.get(), &SimulatedPlant::Over, this,
        [](Rehearsal::Ending ending) { EndProgram(ending); }, Qt::QueuedConnection);
    if (result == 0 && plant_->Start())
        return true;
    EndProgram(result == 0 ? Rehearsal::Ending::Simulator : Rehearsal::Ending::NotBegun);
    return false;
}

/// A rehearsal that ended by itself has left nobody to tell it to.
void Startup::TellRehearsal() {
    const auto ending = Rehearsal::EndingOf(platform::Replacement::Note());
    if (!ending || Rehearsal::Runs())
        return;
    Trace::Note(QStringLiteral("REHEARSAL ENDED"));
    if (*ending != Rehearsal::Ending::Asked)
        Boxes::Post(AndWhatOfTheBus(FirstEnding + int(*ending)), Messages::Warning);
}

bool Startup::Main(bool rehearses) {
    bool started = false;
    Guard("Startup.Main", [&] {
        shutdownWatch_ = std::make_unique<platform::ShutdownWatch>();
        connect(shutdownWatch_.get(), &platform::ShutdownWatch::Requested, this, &Startup::End);
        RegisterScreens();
        RegisterConfigScreens();
        RegisterTechnician();
        if (!ClaimInstance() || (rehearses && !EnterRehearsal()))
            return;
        // What fails is told over the first screen, when the bus runs.
        const Boxes::Held held;
        // A trace that can't be opened is told; the alarms go their way without it.
        Guard("Startup.Main", [] { Trace::OpenToday(); });
        // A restore that was cut short comes to its end before anything of it is read.
        Guard("Startup.Main", [] {
            if (Restore::CompleteAtStart())
                Trace::Note(QStringLiteral("RESTORE BROUGHT TO ITS END"));
        });
        DropFormerAlarms();
        if (!Config::OpenConfigBase()) {
            TellTheEnd(QStringLiteral("Unable to open configuration file."));
            return;
        }
        started = true;
        if (!ended_)
            ComeUp();
    });
    return started;
}

void Startup::ComeUp() {
    Pointer::Hourglass();
    Global::ReadMarks();
    Global::Get().sound = platform::MakeSound({TellHorn, TellStandIn});
    Global::Get().noResize = SLVfonctions::IsTrue(
        IniRead(QStringLiteral("General"), QStringLiteral("NoResize"), QStringLiteral("1")));
    const qint32 result = ReadConfiguration();
    OutOfService::Restore();
    if (HasEnded() || (Rehearsal::Runs() && !PlaySite(result)))
        return;
    LoadPolling();
    if (HasEnded())
        return;
    EventClass event(0, Family::System, 0, SystemEvents::ApplicationStarted);
    polling_->SendEvent(event);
    polling_->ServiceWatch().Check();
    const bool autoStart = Rehearsal::Runs() || Global::Configuration().AutoStart();
    if (autoStart && result == 0)
        StartByItself();
    if (HasEnded())
        return;
    Config::ExportSounds([](int place) { return Global::Configuration().AlarmPrioSound(place); });
    // The week's backup is the plant's.
    if (!Rehearsal::Runs())
        backups_ = std::make_unique<BackupSchedule>();
    Pointer::Default();
    if (!autoStart && !HasEnded())
        Forms::Show(FormNames::wMain);
    if (HasEnded())
        return;
    TellRehearsal();
    TellStart();
}

/// The first screen stands: whoever started the program is told.
void Startup::TellStart() {
    platform::ServiceManager& manager = platform::ServiceManager::Current();
    manager.Ready();
    manager.Log(platform::ServiceManager::Priority::Notice,
                Global::Title + u' ' + QCoreApplication::applicationVersion() +
                    QStringLiteral(" started in ") + platform::ApplicationFolder());
}

void Startup::TellStop() {
    platform::ServiceManager& manager = platform::ServiceManager::Current();
    // Another program goes on in this process: that is no end.
    if (platform::Replacement::IsAsked())
        return;
    if (!std::exchange(stopTold_, true))
        manager.Log(platform::ServiceManager::Priority::Notice,
                    Global::Title + QStringLiteral(" stops"));
    manager.Stopping();
}

bool Startup::HasEnded() const {
    return ended_ || platform::ShutdownWatch::Pending() || (polling_ && polling_->IsClosing());
}

void Startup::End(platform::UnloadMode mode) {
    Guard("Startup.End", [&] {
        ended_ = true;
        platform::Replacement::Forget();
        TellStop();
        // Nobody answers any more: an error on the way out must not hold up what follows it.
        Messages::Install({});
        if (polling_) {
            polling_->Form_QueryUnload(mode);
            polling_->Form_Unload();
        }
        Forms::UnloadAllBut({});
        QCoreApplication::exit(0);
    });
}
