#include "bus/BusSynchro.h"

#include "bus/AlarmConsole.h"
#include "bus/BusEngine.h"
#include "bus/CommandQueue.h"
#include "bus/Miroirs.h"
#include "bus/Registers.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Trace.h"
#include "events/HistoProcs.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <algorithm>

using ErrorHandling::Guard;

namespace {

/// Words that the slow update reads, whatever the model says.
constexpr int UpdateWords = 12;
constexpr int TypeTries = 3;

qint16 WithoutNormalAgain(qint16 state) {
    return state == Registers::NormalAgain ? 0 : state;
}

/// Throws the event memory of a module away. False when it may still stand.
bool DropEvents(platform::SerialLink& link, quint8 module) {
    Words count(1);
    if (!LitMots(link, module, Registers::EventCount, count))
        return false;
    return count[0] <= 0 || EcritUnMot(link, module, Registers::EventReceipt, count[0]);
}

/// Keeps what the module says it is. The configured model decides how it is asked, whatever it is:
/// where the two differ alarms may be missing.
void TakeModel(PanelClass& panel, int reported) {
    panel.setActualModel(quint8(reported));
    if (panel.ReportsOtherModel())
        Trace::Note(QStringLiteral("PANEL %1 IS SET UP AS %2, REPORTS %3")
                        .arg(QString::number(panel.Numero()), Models::NameOrCode(panel.Model()),
                             ModuleName(reported)));
}

/// False for a source that a damaged site file has put out of all bounds.
bool IsSourceActive(const MirrorClass& mirror) {
    ConfigClass& site = Global::Configuration();
    return mirror.FromModule() >= 1 && mirror.FromModule() <= ConfigClass::PanelCount &&
           mirror.FromChannel() >= 0 && mirror.FromChannel() <= PanelClass::MaxChannel &&
           site.Panel(mirror.FromModule()).Channel(mirror.FromChannel()).State() != 0;
}

/// Is the channel the target of pulse rules, and none of their sources active?
bool IsStale(int address, int number) {
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

} // namespace

void BusSynchro::Agree() {
    constexpr int Passes = 3;
    QualifierTable qualifiers{};
    Walk(1, Passes, [&](int address) { MeetPanel(address, qualifiers[size_t(address)]); });
    Walk(2, Passes, [this](int address) { ResetModule(address); });
    if (engine_.EndWanted())
        return;
    // Each step is worth as much without the one before.
    Guard("wPolling.SynchroGeneraleBus", [] { EmptyConsole(); });
    Walk(3, Passes, [&](int address) {
        Guard("wPolling.SynchroGeneraleBus",
              [&] { ReportStanding(address, qualifiers[size_t(address)]); });
    });
}

/// Goes through all panels until the program is to end, and tells how far it is: those that have a
/// model are counted.
void BusSynchro::Walk(int pass, int passes, const std::function<void(int address)>& work) {
    ConfigClass& site = Global::Configuration();
    BusStep step{0, 0, pass, passes};
    for (int address = 1; address <= PanelCount; ++address)
        step.panels += site.Panel(address).Model() != 0 ? 1 : 0;
    for (int address = 1; address <= PanelCount && !engine_.EndWanted(); ++address) {
        if (site.Panel(address).Model() != 0) {
            ++step.panel;
            if (onStep)
                onStep(step);
        }
        work(address);
    }
}

/// `GetModuleType` until it gives a model, at most three times.
int BusSynchro::AskModuleType(int address) {
    int type = 0;
    for (int tries = 0; tries < TypeTries && type == 0 && !engine_.EndWanted(); ++tries)
        type = GetModuleType(link_, quint8(address));
    return type;
}

/// Is the panel there, and what do its standing states mean?
void BusSynchro::MeetPanel(int address, ChannelWords& qualifiers) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (panel.Model() == 0)
        return;
    panel.setErrCptr(1, 0);
    panel.setErrCptr(2, 0);
    const int type = AskModuleType(address);
    TakeModel(panel, type);
    panel.setPresent(type > 0);
    // The list of alarms is emptied: the polls tell a loss, even one that was told before.
    panel.setLossUntold(type <= 0);
    panel.setLossTold(false);
    if (!Models::IsQFamily(type))
        return;
    Words words(panel.ChannelCount());
    if (LitMots(link_, quint8(address), Registers::Qualifier, words))
        std::copy(words.cbegin(), words.cend(), qualifiers.begin() + 1);
}

/// A module that doesn't answer costs the time of the exchanges and no more.
void BusSynchro::ResetModule(int address) {
    PanelClass& panel = Global::Configuration().Panel(address);
    const auto module = quint8(address);
    if (Models::HasChannels(panel.ActualModel())) {
        for (int number = 1; number <= panel.ChannelCount() && !engine_.EndWanted(); ++number)
            EcritUnMot(link_, module, Registers::ForcedStateBase + number, 0);
        if (engine_.EndWanted())
            return;
        EcritUnMot(link_, module, Registers::PanelCommand, Registers::Acknowledge);
        queue_.MemoryDropped(address, DropEvents(link_, module));
    } else if (panel.ActualModel() == Models::Q6200XT) {
        EcritUnMot(link_, module, Registers::Function, 0);
        Words flag(1);
        LitMots(link_, module, Registers::Flag, flag);
        EcritUnMot(link_, module, Registers::DisplayReset, 0);
        for (int number = 1; number <= panel.ChannelCount(); ++number)
            panel.Channel(number).setState(0);
    }
}

void BusSynchro::EmptyConsole() {
    Forms::Load(FormNames::wRunAlarms);
    if (AlarmConsole* console = AlarmConsole::Loaded())
        console->EmptyList();
}

/// A negative panel clock shows as "SYNCHRO": the module didn't say when.
void BusSynchro::ReportStanding(int address, const ChannelWords& qualifiers) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (!Models::HasChannels(panel.ActualModel()))
        return;
    Words states(panel.ChannelCount());
    if (!LitMots(link_, quint8(address), Registers::State, states))
        return;
    for (int number = 1; number <= states.size(); ++number) {
        const qint16 state = states[number - 1];
        if (state == 0)
            continue;
        EventClass event(qint16(address), qint16(number), qualifiers[size_t(number)],
                         WithoutNormalAgain(state));
        event.setClock(Registers::NoPanelClock);
        engine_.SendEvent(event);
        Miroirs::DoMirrors(event,
                           [this](const CommandPtr& command) { engine_.SendCommand(command); });
    }
}

/// Reads until it goes well or the panel is given up.
bool BusSynchro::ReadStubbornly(int address, qint32 registerNo, Words& words) {
    PanelClass& panel = Global::Configuration().Panel(address);
    while (!LitMots(link_, quint8(address), registerNo, words)) {
        engine_.AddError(address);
        if (panel.ErrCptr(2) > 0 || engine_.EndWanted())
            return false;
    }
    return true;
}

/// Every caller forces: without, the panel would be marked absent unasked.
void BusSynchro::UpdatePanel(int address, bool force) {
    Guard("wPolling.UpdatePanel", [&] {
        PanelClass& panel = Global::Configuration().Panel(address);
        int type = 0;
        if (force) {
            panel.setErrCptr(1, 0);
            panel.setErrCptr(2, 0);
            type = AskModuleType(address);
            if (engine_.EndWanted())
                return;
        }
        TakeModel(panel, type);
        SetPresence(address, type > 0);
        if (!Models::IsQFamily(type))
            return;
        panel.setErrCptr(1, 0);
        panel.setErrCptr(2, 0);
        Words qualifiers(UpdateWords);
        if (!ReadStubbornly(address, Registers::Qualifier, qualifiers))
            return;
        for (int counter = 0; counter <= 2; ++counter)
            panel.setErrCptr(counter, 0);
        Words states(UpdateWords);
        if (!ReadStubbornly(address, Registers::State, states))
            return;
        for (int i = 0; i < UpdateWords; ++i)
            ReportChange(panel, i + 1, qualifiers[i], states[i]);
    });
}

/// A loss is told by the polls that follow, a return from a loss that was told at once: its row
/// would stand on the console for good.
void BusSynchro::SetPresence(int address, bool present) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (present && panel.LossTold())
        engine_.TraitePanelMove(address, true);
    else if (present || panel.Present())
        panel.setLossUntold(!present);
    panel.setPresent(present);
}

void BusSynchro::ReportChange(PanelClass& panel, int number, qint16 qualifier, qint16 state) {
    ChannelClass& channel = panel.Channel(number);
    if (state != channel.State()) {
        EventClass event(panel.Numero(), qint16(number), qualifier, WithoutNormalAgain(state));
        engine_.SendEvent(event);
    }
    channel.setState(state);
}

void BusSynchro::LectureGeneraleBus() {
    for (int address = 1; address <= PanelCount && !engine_.EndWanted(); ++address)
        UpdatePanel(address, true);
}

/// Through after panel 63; nothing of the state of the bus is stored or printed then.
bool BusSynchro::ContinueUpdate() {
    if (updatePointer_ < 1)
        return false;
    const PanelClass& panel = Global::Configuration().Panel(updatePointer_);
    if (panel.Model() >= 1 && panel.Active())
        UpdatePanel(updatePointer_, true);
    updatePointer_ = qint16((updatePointer_ + 1) & 63);
    if (updatePointer_ != 0)
        return false;
    HistoBusState();
    if (Global::Configuration().PrintBusResult())
        PrintBusState();
    return true;
}

void BusSynchro::HistoBusState() {}

void BusSynchro::PrintBusState() {}

void BusSynchro::MidnightSynchro() {
    Guard("wPolling.MidnightSynchro", [&] {
        ConfigClass& site = Global::Configuration();
        Walk(1, 1, [this](int address) { RecordDay(address); });
        if (engine_.EndWanted())
            return;
        for (int address = 1; address <= PanelCount; ++address)
            for (int number = 1;
                 !engine_.EndWanted() && number <= site.Panel(address).ChannelCount(); ++number)
                ReleaseStale(address, number);
    });
}

void BusSynchro::RecordDay(int address) {
    if (Global::Configuration().Panel(address).Model() == 0)
        return;
    UpdatePanel(address, true);
    if (engine_.EndWanted())
        return;
    EventClass event(Global::Configuration().Panel(address).Numero(), Family::System, 0,
                     SystemEvents::MidnightState);
    event.setNum(engine_.IncEvtNum());
    event.setGDH(DateTimes::Now());
    // Straight to the history: no option can stop the day's record.
    HistoProcs::HistoEvent(event);
}

void BusSynchro::ReleaseStale(int address, int number) {
    PanelClass& panel = Global::Configuration().Panel(address);
    if (panel.Channel(number).State() == 0 || !IsStale(address, number))
        return;
    const auto write = [&](qint32 registerNo, qint16 value) {
        CommandClass command(qint16(address), registerNo, {value});
        queue_.TraiteCommande(command);
    };
    if (Models::HasChannels(panel.ActualModel())) {
        write(Registers::ForcedStateBase + number, 0);
    } else if (panel.ActualModel() == Models::Q6200XT) {
        constexpr qint16 ClearLater = -1;
        write(Registers::Function, 1);
        for (int other = 1; other <= panel.ChannelCount(); ++other)
            if (panel.Channel(other).State() == ClearLater)
                write(other, 0);
        write(number, 0);
    }
    panel.Channel(number).setState(0);
}
