// From the words of a poll to events, and from an event to its consumers.

#include "bus/wPolling.h"

#include "bus/BusWatch.h"
#include "bus/Miroirs.h"
#include "bus/Registers.h"
#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/Decisions.h"
#include "events/HistoProcs.h"
#include "events/Klaxon.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/MirrorClass.h"
#include "model/Models.h"

#include <cmath>

using ErrorHandling::Guard;

namespace {

constexpr int NumberLimit = 1000000;
/// `Chnl` of the panel as a whole in the event memory.
constexpr int PanelWideInMemory = 15;

} // namespace

void wPolling::ExploitePanneau(PanelClass& panel, const Words& words) {
    // Whatever can't be written: all that the panel tells goes its way first.
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.ExploitePanneau", [&] {
        if (Models::IsQFamily(panel.Model()))
            ExploiteQFamily(panel, words);
        else if (panel.Model() == Models::Q6200XT)
            ExploiteFlag(panel, words);
        else if (Models::IsRemoteControlled(panel.Model()))
            ExploiteStates(panel, words);
    });
}

/// The module keeps its events until the receipt tells how many were taken, and the receipt is
/// queued only when the read went well: no event is lost on the line. While a receipt waits for
/// its next try the memory is left alone; events that were taken before are not taken twice.
void wPolling::ExploiteQFamily(PanelClass& panel, const Words& words) {
    constexpr qsizetype WordsAnEvent = EventReceipts::WordsAnEvent;
    const int address = panel.Numero();
    const int waiting = Bytes::Less<int>(words[0], BusWatch::MaxEvents);
    const int count = Bytes::Less(waiting, watch_->ReadLimit(address));
    if (count < 1 || queue_.Receipts().Waits(address))
        return;
    Words memory(WordsAnEvent * count);
    if (!ReadMemory(address, memory))
        return;
    watch_->MemoryRead(address, count, waiting);
    const int known = queue_.Receipts().Known(address, memory, waiting);
    queue_.MemoryTaken(address, memory, known);
    for (int i = known; i < count; ++i)
        ExploiteEvent(panel, quint16(memory[WordsAnEvent * i]),
                      quint16(memory[WordsAnEvent * i + 1]));
}

/// Bits of the head from the top, four each: channel, qualifier, code, clock bits 19 to 16.
void wPolling::ExploiteEvent(PanelClass& panel, quint16 head, quint16 clock) {
    const int place = head >> 12;
    EventClass event(panel.Numero(), qint16(place == PanelWideInMemory ? 0 : place),
                     qint16((head >> 8) & 0xF), qint16((head >> 4) & 0xF));
    event.setGDH(DateTimes::Now());
    event.setClock(((head & 0xF) << 16) | clock);
    if (event.Chnl() != Family::PanelWide)
        panel.Channel(event.Chnl()).setState(event.Aff());
    if (event.Chnl() == Family::PanelWide && event.Aff() == 1) {
        // The horn was acknowledged on the panel itself.
        Alarme(StopAlarme);
        return;
    }
    event.setNum(IncEvtNum());
    if (event.Aff() == Registers::NormalAgain)
        event.setAff(0);
    TraiteEvent(event);
}

void wPolling::ExploiteFlag(PanelClass& panel, const Words& words) {
    constexpr qint16 Acknowledged = 2;
    if (words[0] == 0)
        return;
    EventClass event(panel.Numero(), Family::PanelWide, 0, Acknowledged);
    event.setNum(IncEvtNum());
    event.setGDH(DateTimes::Now());
    TraiteEvent(event);
}

/// These models have no event memory: a state that differs from the last one is the event.
void wPolling::ExploiteStates(PanelClass& panel, const Words& words) {
    for (int number = 1; number <= words.size(); ++number) {
        ChannelClass& channel = panel.Channel(number);
        const qint16 before = channel.State();
        const qint16 state = words[number - 1];
        channel.setState(state);
        if (state == before)
            continue;
        EventClass event(panel.Numero(), qint16(number), 0, state);
        event.setGDH(DateTimes::Now());
        event.setClock(qint32(std::lround(event.GDH())));
        event.setNum(IncEvtNum());
        TraiteEvent(event);
    }
}

qint32 wPolling::IncEvtNum() {
    lastEvent_ = (lastEvent_ % NumberLimit + 1) % NumberLimit;
    if (lastEvent_ <= 0)
        lastEvent_ = 1;
    IniWrite(QStringLiteral("General"), QStringLiteral("LastEvent"), QString::number(lastEvent_));
    return lastEvent_;
}

void wPolling::SendEvent(EventClass& event) {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.SendEvent", [&] {
        event.setGDH(DateTimes::Now());
        event.setNum(IncEvtNum());
        TraiteEvent(event);
    });
}

/// A loss that a synchronisation or an update has found is told here, though `Present` knows it.
/// A panel of which no loss was told, or that was never asked before, is there without a word.
void wPolling::TraitePanelMove(int address, bool present) {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.TraitePanelMove", [&] {
        PanelClass& panel = Global::Configuration().Panel(address);
        if (panel.Present() == present && (present || !panel.LossUntold()))
            return;
        if (present && panel.LossUntold()) {
            panel.setPresent(true);
            return;
        }
        panel.setLossUntold(false);
        panel.setLossTold(!present);
        EventClass event(qint16(address), Family::Presence, 1, present ? 1 : 0);
        event.setNum(IncEvtNum());
        event.setGDH(DateTimes::Now());
        TraiteEvent(event);
        panel.setPresent(present);
        Q_EMIT PanelMove(address, present, event.Num(), event.ID());
    });
}

void wPolling::TraiteEvent(EventClass& event) {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.TraiteEvent", [&] {
        ConfigClass& site = Global::Configuration();
        if (Family::IsChannel(event.Chnl())) {
            ChannelClass& channel = site.Panel(event.Panel()).Channel(event.Chnl());
            channel.setState(event.Aff());
            if (channel.OutOfOrder())
                return;
        }
        if (IsToKlaxon(event))
            TraiteKlaxon(event);
        if (IsToDisplay(event))
            ShowConsole();
        if (IsToHisto(event))
            HistoProcs::HistoEvent(event);
        if (IsToPrint(event))
            HistoProcs::PrintEvent(event, paper_);
        Q_EMIT BusEvent(event);
        // A trace that can't be written must not stop the mirrors.
        Guard("wPolling.TraiteEvent",
              [&] { Trace::Write(HistoProcs::FormateTrace(event).trimmed()); });
        if (event.Chnl() > Family::LastChannel)
            return;
        const auto mirrors = [this](const CommandPtr& command) { SendCommand(command); };
        if (event.Chnl() == Family::PanelWide &&
            site.Panel(event.Panel()).Model() == Models::Q6200XT) {
            MirrorClass refresh;
            refresh.setToModule(event.Panel());
            refresh.setToChannel(event.Chnl());
            Miroirs::TraitementR2R2(event, refresh, mirrors);
        }
        Miroirs::DoMirrors(event, mirrors);
    });
}

/// The console comes to the front and every other screen gives way to it.
void wPolling::ShowConsole() {
    Guard("wPolling.ShowConsole", [&] {
        const QString& console = FormNames::wRunAlarms;
        Forms::Show(console);
        Forms::BringToFront(console);
        Forms::GiveWayTo({FormNames::wPolling, console});
        if (NbInstances(console) > 0)
            return;
        Forms::Show(console);
        Forms::BringToFront(console);
    });
}

void wPolling::TraiteKlaxon(const EventClass& event) {
    Guard("wPolling.TraiteKlaxon", [&] {
        if (event.Chnl() == Family::Presence) {
            if (event.Aff() == 0)
                Alarme(HighestPriority);
        } else if (event.Chnl() == Family::PanelWide) {
            if (event.Aff() == 1)
                Alarme(StopAlarme);
            else if (event.Aff() > 1)
                Alarme(1);
        } else {
            if (event.Aff() == 1 && event.Param() != 0)
                Alarme(HighestPriority);
            else if (event.Aff() >= 1)
                Alarme(Global::Configuration().Panel(event.Panel()).Channel(event.Chnl()));
        }
    });
}
