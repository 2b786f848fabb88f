// What looks at the whole bus at once: the general synchronisation, the slow update and the work
// of midnight.

#include "bus/wPolling.h"

#include "bus/AlarmConsole.h"
#include "bus/BusWatch.h"
#include "bus/Miroirs.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "core/Pointer.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "events/HistoProcs.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/DiskFlush.h"

#include <QScopedValueRollback>
#include <algorithm>
#include <optional>

using ErrorHandling::Guard;

namespace {

constexpr qint32 DisplayResetRegister = 0;
constexpr qint32 StateRegister = 1;
constexpr qint32 ForcedStateBase = 16;
constexpr qint32 QualifierRegister = 49;
constexpr qint32 FunctionRegister = 64;
constexpr qint32 PanelCommandRegister = 67;
constexpr qint32 FlagRegister = 68;
constexpr qint32 EventCountRegister = 144;
constexpr qint16 Acknowledge = 2;
constexpr qint16 NormalAgain = 5;
/// Words that the slow update reads, whatever the model says.
constexpr int UpdateWords = 12;
constexpr int TypeTries = 3;

/// The models whose channels can be read and forced one by one.
bool HasChannels(int model) {
    return Models::IsQFamily(model) || Models::IsRemoteControlled(model);
}

qint16 WithoutNormalAgain(qint16 state) {
    return state == NormalAgain ? 0 : state;
}

} // namespace

/// `GetModuleType` until it gives a model, at most three times.
int wPolling::AskModuleType(int address) {
    int type = 0;
    for (int tries = 0; tries < TypeTries && type == 0 && !EndWanted(); ++tries)
        type = GetModuleType(*link_, quint8(address));
    return type;
}

/// Throws the event memory of a module away. False when it may still stand.
static bool DropEvents(platform::SerialLink& link, quint8 module) {
    Words count(1);
    if (!LitMots(link, module, EventCountRegister, count))
        return false;
    return count[0] <= 0 || EcritUnMot(link, module, EventReceipts::Register, count[0]);
}

/// Brings PC and modules to one picture: forced states and event memories are thrown away, and
/// the list of alarms is made anew of what the channels show.
void wPolling::SynchroGeneraleBus() {
    // A second touch of a button may wait for the yield inside.
    if (synchronising_)
        return;
    const QScopedValueRollback synchronising(synchronising_, true);
    const Boxes::Held held;
    Guard("wPolling.SynchroGeneraleBus", [&] {
        Pointer::Hourglass();
        std::optional<Messages::Notice> notice;
        Guard("wPolling.SynchroGeneraleBus", [&] { notice.emplace(GetText(30015)); });
        Yield();
        if (closing_)
            return;
        // A trace that can't be written is told, and keeps the bus from nothing.
        Guard("wPolling.SynchroGeneraleBus", [] {
            Trace::Write(Trace::SystemLine(DateTimes::Now(), QStringLiteral("SYNCHR0"),
                                           QStringLiteral("SYNCHRO")));
        });
        Q_EMIT Synchronising(true);
        TellState();
        ReinitComm();
        JudgeAnew();
        Pointer::Hourglass();
        QualifierTable qualifiers = FirstPass();
        for (int address = 1; address <= PanelCount && !EndWanted(); ++address)
            ResetModule(address);
        if (EndWanted())
            return;
        // Each step is worth as much without the one before.
        Guard("wPolling.SynchroGeneraleBus", [this] { EmptyConsole(); });
        for (int address = 1; address <= PanelCount && !EndWanted(); ++address)
            Guard("wPolling.SynchroGeneraleBus",
                  [&] { ReportStanding(address, qualifiers[size_t(address)]); });
        // What was touched meanwhile, when nothing could answer, was meant for what stood then.
        YieldDroppingInput();
    });
    watch_->PollingBegins();
    Q_EMIT Synchronising(false);
    Pointer::Default();
}

/// Who is there, and what the standing states mean.
wPolling::QualifierTable wPolling::FirstPass() {
    QualifierTable qualifiers{};
    for (int address = 1; address <= PanelCount && !EndWanted(); ++address) {
        PanelClass& panel = Global::Configuration().Panel(address);
        if (panel.Model() == 0)
            continue;
        panel.setErrCptr(1, 0);
        panel.setErrCptr(2, 0);
        const int type = AskModuleType(address);
        panel.setActualModel(quint8(type));
        panel.setPresent(type > 0);
        // The list of alarms is emptied: the polls tell a loss, even one that was told before.
        panel.setLossUntold(type <= 0);
        panel.setLossTold(false);
        if (!Models::IsQFamily(type))
            continue;
        Words words(panel.ChannelCount());
        if (LitMots(*link_, quint8(address), QualifierRegister, words))
            std::copy(words.cbegin(), words.cend(), qualifiers[size_t(address)].begin() + 1);
    }
    return qualifiers;
}

/// A module that doesn't answer costs the time of the exchanges and no more.
void wPolling::ResetModule(int address) {
    PanelClass& panel = Global::Configuration().Panel(address);
    const auto module = quint8(address);
    if (HasChannels(panel.ActualModel())) {
        for (int number = 1; number <= panel.ChannelCount() && !EndWanted(); ++number)
            EcritUnMot(*link_, module, ForcedStateBase + number, 0);
        if (EndWanted())
            return;
        EcritUnMot(*link_, module, PanelCommandRegister, Acknowledge);
        // A receipt that still waits would drop as many of the events that come next.
        for (int position = commands_.Count(); position >= 1; --position) {
            const CommandPtr command = commands_.Item(position);
            if (IsReceipt(*command) && command->Module() == address)
                commands_.Remove(position);
        }
        // Without a good reply it is open what stands in the memory: the next read compares.
        if (DropEvents(*link_, module))
            receipts_.Forget(address);
        else
            receipts_.GiveUp(address);
    } else if (panel.ActualModel() == Models::Q6200XT) {
        EcritUnMot(*link_, module, FunctionRegister, 0);
        Words flag(1);
        LitMots(*link_, module, FlagRegister, flag);
        EcritUnMot(*link_, module, DisplayResetRegister, 0);
        for (int number = 1; number <= panel.ChannelCount(); ++number)
            panel.Channel(number).setState(0);
    }
}

void wPolling::EmptyConsole() {
    Forms::Load(QStringLiteral("wRunAlarms"));
    if (AlarmConsole* console = AlarmConsole::Loaded())
        console->EmptyList();
}

/// A negative panel clock shows as "SYNCHRO": the module didn't say when.
void wPolling::ReportStanding(int address, const ChannelWords& qualifiers) {
    constexpr qint32 NoPanelClock = -1;
    PanelClass& panel = Global::Configuration().Panel(address);
    if (!HasChannels(panel.ActualModel()))
        return;
    Words states(panel.ChannelCount());
    if (!LitMots(*link_, quint8(address), StateRegister, states))
        return;
    for (int number = 1; number <= states.size(); ++number) {
        const qint16 state = states[number - 1];
        if (state == 0)
            continue;
        EventClass event(qint16(address), qint16(number), qualifiers[size_t(number)],
                         WithoutNormalAgain(state));
        event.setClock(NoPanelClock);
        SendEvent(event);
        Miroirs::DoMirrors(event);
    }
}

/// Reads until it goes well or the panel is given up.
bool wPolling::ReadStubbornly(int address, qint32 registerNo, Words& words) {
    PanelClass& panel = Global::Configuration().Panel(address);
    while (!LitMots(*link_, quint8(address), registerNo, words)) {
        AddError(address);
        if (panel.ErrCptr(2) > 0 || EndWanted())
            return false;
    }
    return true;
}

/// Every caller forces: without, the panel would be marked absent unasked.
void wPolling::UpdatePanel(int address, bool force) {
    Guard("wPolling.UpdatePanel", [&] {
        PanelClass& panel = Global::Configuration().Panel(address);
        int type = 0;
        if (force) {
            panel.setErrCptr(1, 0);
            panel.setErrCptr(2, 0);
            type = AskModuleType(address);
            if (EndWanted())
                return;
        }
        panel.setActualModel(quint8(type));
        SetPresence(address, type > 0);
        if (!Models::IsQFamily(type))
            return;
        panel.setErrCptr(1, 0);
        panel.setErrCptr(2, 0);
        Words qualifiers(UpdateWords);
        if (!ReadStubbornly(address, QualifierRegister, qualifiers))
            return;
        for (int counter = 0; counter <= 2; ++counter)
            panel.setErrCptr(counter, 0);
        Words states(UpdateWords);
        if (!ReadStubbornly(address, StateRegister, states))
            return;
        for (int i = 0; i < UpdateWords; ++i)
            ReportChange(panel, i + 1, qualifiers[i], states[i]);
    });
}

/// A loss is told by the polls that follow, a return from a loss that was told at once: its row
/// would stand on the console for good.
void wPolling::SetPresence(int address, bool present) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (present && panel.LossTold())
        TraitePanelMove(address, true);
    else if (present || panel.Present())
        panel.setLossUntold(!present);
    panel.setPresent(present);
}

void wPolling::ReportChange(PanelClass& panel, int number, qint16 qualifier, qint16 state) {
    ChannelClass& channel = panel.Channel(number);
    if (state != channel.State()) {
        EventClass event(panel.Numero(), qint16(number), qualifier, WithoutNormalAgain(state));
        SendEvent(event);
    }
    channel.setState(state);
}

void wPolling::LectureGeneraleBus() {
    for (int address = 1; address <= PanelCount && !EndWanted(); ++address)
        UpdatePanel(address, true);
}

void wPolling::StartUpdate() {
    updatePointer_ = 1;
}

/// Kept for the state of the bus after an update; nothing of it is stored or printed.
void wPolling::HistoBusState() {}

void wPolling::PrintBusState() {}

/// A day of the month that differs from the last second's is a midnight; the first tick differs
/// from the start of the program. What goes wrong is told when all is done: nobody is there at
/// midnight to answer a box, and the clocks of the modules are set by it.
void wPolling::tmrMidnight_Timer() {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.tmrMidnight_Timer", [&] {
        // Each second, and never inside a round: what was written goes to the disk itself.
        if (!inRound_)
            platform::DiskFlush::Pay();
        FollowClock();
        const DateTime now = DateTimes::Now();
        const DateTime last = std::exchange(lastMidnightCheck_, now);
        if (DateTimes::DateOf(last).day() == DateTimes::DateOf(now).day())
            return;
        HistoProcs::DoMidnightActions();
        if (run_) {
            MidnightSynchro();
            watch_->PollingBegins();
            YieldDroppingInput();
        }
        ResetClocks(now);
    });
}

/// The broadcast goes through the queue while the bus runs, else at once.
void wPolling::ResetClocks(DateTime now) {
    constexpr qint32 ClockRegister = 289;
    constexpr int MaxTries = 4;
    const auto command = std::make_shared<CommandClass>(0, ClockRegister, Words{0}, now);
    if (run_) {
        SendCommand(command);
        return;
    }
    command->ErrorsClear();
    while (command->CmdType() != CommandTypes::Done && command->ErrorCount() < MaxTries) {
        const qint16 errors = command->ErrorCount();
        TraiteCommande(*command);
        if (command->CmdType() != CommandTypes::Done && command->ErrorCount() == errors)
            return; // an error of the program itself, told already: no further try
    }
}

void wPolling::MidnightSynchro() {
    Guard("wPolling.MidnightSynchro", [&] {
        ConfigClass& site = Global::Configuration();
        for (int address = 1; address <= PanelCount; ++address) {
            PanelClass& panel = site.Panel(address);
            if (panel.Model() == 0)
                continue;
            UpdatePanel(address, true);
            if (EndWanted())
                return;
            EventClass event(panel.Numero(), Family::System, 0, SystemEvents::MidnightState);
            event.setNum(IncEvtNum());
            event.setGDH(DateTimes::Now());
            // Straight to the history: no option can stop the day's record.
            HistoProcs::HistoEvent(event);
        }
        for (int address = 1; address <= PanelCount; ++address)
            for (int number = 1; !EndWanted() && number <= site.Panel(address).ChannelCount();
                 ++number)
                ReleaseStale(address, number);
    });
}

/// False for a source that a damaged site file has put out of all bounds.
static bool IsSourceActive(const MirrorClass& mirror) {
    ConfigClass& site = Global::Configuration();
    return mirror.FromModule() >= 1 && mirror.FromModule() <= ConfigClass::PanelCount &&
           mirror.FromChannel() >= 0 && mirror.FromChannel() <= PanelClass::MaxChannel &&
           site.Panel(mirror.FromModule()).Channel(mirror.FromChannel()).State() != 0;
}

/// Is the channel the target of pulse rules, and none of their sources active?
static bool IsStale(int address, int number) {
    ConfigClass& site = Global::Configuration();
    bool counted = false;
    for (int position = 1; position <= site.Mirrors().Count(); ++position) {
        const MirrorClass& mirror = site.Mirrors().Item(position);
        if (mirror.ToModule() != address || mirror.ToChannel() != number ||
            mirror.MirrorType() != MirrorClass::Pulse)
            continue;
        counted = true;
        if (IsSourceActive(mirror))
            return false;
    }
    return counted;
}

void wPolling::ReleaseStale(int address, int number) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (panel.Channel(number).State() == 0 || !IsStale(address, number))
        return;
    const auto write = [&](qint32 registerNo, qint16 value) {
        CommandClass command(qint16(address), registerNo, {value});
        TraiteCommande(command);
    };
    if (HasChannels(panel.ActualModel())) {
        write(ForcedStateBase + number, 0);
    } else if (panel.ActualModel() == Models::Q6200XT) {
        constexpr qint16 ClearLater = -1;
        write(FunctionRegister, 1);
        for (int other = 1; other <= panel.ChannelCount(); ++other)
            if (panel.Channel(other).State() == ClearLater)
                write(other, 0);
        write(number, 0);
    }
    panel.Channel(number).setState(0);
}
