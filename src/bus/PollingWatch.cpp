// What can be said of the watch as a whole: which panels are missing, whether all of them are
// asked, and that an error of the round stops it.

#include "bus/AlarmConsole.h"
#include "bus/BusWatch.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "events/Klaxon.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/ServiceManager.h"
#include "platform/ShutdownWatch.h"

using ErrorHandling::Guard;

namespace {

/// Words of the service's state.
enum Text { BusRuns = 710008, BusStands = 710009, Summary = 301310, RehearsalRuns = 718001 };

} // namespace

/// The program is to end. A signal counts from when it comes: where exchanges follow one another
/// without the event loop nothing else tells of it.
bool wPolling::EndWanted() const {
    return closing_ || platform::ShutdownWatch::Pending();
}

/// What this says of a panel is what the console's calm rests on.
bool wPolling::IsWatched(int address) {
    const PanelClass& panel = Global::Configuration().Panel(address);
    return panel.Active() && panel.Model() >= Models::Q7100 && panel.Model() <= Models::P5500;
}

BusState wPolling::State() const {
    if (unloaded_)
        return BusState::Stopped;
    if (synchronising_)
        return BusState::FirstReading;
    if (!run_)
        return waitsForPort_ ? BusState::WaitsForPort : BusState::Stopped;
    if (!link_->PortOpen())
        return BusState::PortLost;
    for (int address = 1; address <= PanelCount; ++address) {
        // One that the cycle doesn't reach is told as such.
        if (IsWatched(address) && !Global::Configuration().Panel(address).Asked() &&
            !watch_->IsUnpolled(address))
            return BusState::FirstReading;
    }
    return BusState::Running;
}

QList<int> wPolling::MissingPanels() const {
    QList<int> missing;
    for (int address = 1; address <= PanelCount; ++address) {
        const PanelClass& panel = Global::Configuration().Panel(address);
        if (IsWatched(address) && panel.Asked() && (!panel.Present() || panel.ErrCptr(2) > 0))
            missing.append(address);
    }
    return missing;
}

bool wPolling::IsLost(const QList<int>& missing) const {
    if (run_ && !link_->PortOpen())
        return true;
    int watched = 0;
    for (int address = 1; address <= PanelCount; ++address)
        watched += IsWatched(address) ? 1 : 0;
    return watched >= 2 && missing.size() == watched;
}

/// What is known of the panels is old. A missing one that waits for its next try stays missing.
void wPolling::JudgeAnew() {
    for (int address = 1; address <= PanelCount; ++address) {
        PanelClass& panel = Global::Configuration().Panel(address);
        if (panel.ErrCptr(2) == 0)
            panel.setAsked(false);
    }
    watch_->PollingBegins();
}

void wPolling::TellState() {
    Guard("wPolling.TellState", [&] {
        const BusState state = State();
        QList<int> missing = MissingPanels();
        const bool lost = IsLost(missing);
        if (state == toldState_ && lost == toldLost_ && missing == toldMissing_)
            return;
        toldState_ = state;
        toldLost_ = lost;
        toldMissing_ = std::move(missing);
        Q_EMIT StateChanged();
        TellService();
    });
}

/// Nobody is polled any more: all that can be heard and seen says so, until somebody starts the
/// bus again.
void wPolling::StopRound() {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.RunComm", [&] {
        run_ = false;
        queue_.DropWalk();
        Faults::Set(Faults::Kind::RoundStopped);
        Alarme(HighestPriority);
        Q_EMIT RunChanged(false);
        TellState();
        EventClass event(0, Family::System, 0, SystemEvents::CommStopped);
        SendEvent(event);
    });
}

/// Each 10 s.
void wPolling::CheckFaults() {
    watch_->CheckPolls(run_ && link_->PortOpen());
    watch_->CheckGivenUp();
    watch_->CheckClock();
    BusWatch::CheckDisk();
    TellState();
    TellService();
}

/// Modules and alarms in one line, for whoever asks the machine how the program does.
void wPolling::TellService() const {
    int watched = 0;
    for (int address = 1; address <= PanelCount; ++address)
        watched += IsWatched(address) ? 1 : 0;
    QStringList kept;
    const AlarmConsole* console = AlarmConsole::Loaded();
    if (console == nullptr)
        IniReadKeys(kept, QStringLiteral("LastAlarms"));
    const qsizetype alarms = console != nullptr ? console->RowCount() : kept.size();
    platform::ServiceManager::Current().Status(
        (Rehearsal::Runs() ? GetText(RehearsalRuns) + QStringLiteral(". ") : QString()) +
        GetText(run_ ? BusRuns : BusStands) + QStringLiteral(". ") +
        GetText(Summary)
            .replace(QStringLiteral("$1"), QString::number(watched))
            .replace(QStringLiteral("$2"), QString::number(MissingPanels().size()))
            .replace(QStringLiteral("$3"), QString::number(alarms)));
}

/// Some screen is always visible, and alarms that stand on come back.
void wPolling::tmrReactiv_Timer() {
    Guard("wPolling.tmr_Reactiv_Timer", [&] {
        ReopenLostPort();
        CheckFaults();
        if (!Forms::AnyVisible())
            Forms::Show(FormNames::wRunAlarms);
        reactivation_.Work();
    });
}

/// An adapter that was pulled and comes back, or that the system finds late, must not wait for
/// somebody to start the bus.
void wPolling::ReopenLostPort() {
    if ((!run_ && !waitsForPort_) || closing_ || (run_ && link_->PortOpen()) || !OpenPort())
        return;
    if (waitsForPort_) {
        setRun(true);
        return;
    }
    for (int address = 1; address <= PanelCount; ++address)
        Global::Configuration().Panel(address).setNextPoll(DateTimes::Now() - platform::OneSecond);
    TellState();
}
