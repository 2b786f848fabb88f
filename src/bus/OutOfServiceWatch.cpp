#include "bus/OutOfServiceWatch.h"

#include "bus/Registers.h"
#include "bus/wPolling.h"
#include "core/ErrorHandling.h"
#include "events/HistoProcs.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <algorithm>
#include <utility>

using ErrorHandling::Guard;
using OutOfService::Entry;

namespace {

/// A clock that was set back by less makes an end late by no more; the change to winter time does.
constexpr DateTime Patience = 1.5 / 24;
/// Lines that a second tells; the next one goes on, so that the polls needn't wait.
constexpr qsizetype LinesASecond = 20;

EventClass EventOf(const Entry& entry) {
    EventClass event(qint16(entry.thing.panel), Family::System, qint16(entry.thing.channel),
                     entry.IsOut() ? SystemEvents::OutOfService : SystemEvents::BackInService);
    event.setNum(entry.line);
    event.setGDH(entry.IsOut() ? entry.since : entry.back);
    return event;
}

bool IsDone(const Entry& entry) {
    return !entry.IsOut() && entry.settled && entry.line == OutOfService::LineTold;
}

} // namespace

void TellOutOfService() {
    if (wPolling* engine = Polling())
        engine->ServiceWatch().Tell();
}

/// Longer out than it was to be, by a clock that nobody can set: the machine's was set back.
bool OutOfServiceWatch::IsOverdue(const Entry& entry) {
    const qint64 now = platform::Clock::Current().MonotonicMs();
    Known& known = known_[{entry.thing.panel, entry.thing.channel}];
    if (known.since != entry.since)
        known = {entry.since, now};
    return double(now - known.monotonicMs) / double(platform::MillisecondsADay) >
           entry.until - entry.since + Patience;
}

void OutOfServiceWatch::Check() {
    Guard("OutOfServiceWatch.Check", [&] {
        if (!OutOfService::Memory().isEmpty()) {
            OutOfService::NoticeReturns();
            if (OutOfService::BringBackDue([this](const Entry& entry) { return IsOverdue(entry); }))
                SaveCurrentConfig();
            Tell(LinesASecond);
        }
        TellStanding();
    });
}

void OutOfServiceWatch::Tell(qsizetype most) {
    // A box in the middle would let the next second work on the same lines.
    const ErrorHandling::Postponed postponed;
    Guard("OutOfServiceWatch.Tell", [&] {
        QList<Entry> entries = OutOfService::Memory();
        const QList<Owed> lines = Number(entries, most);
        if (lines.isEmpty())
            return;
        OutOfService::setMemory(entries);
        for (const Owed& line : lines) {
            Entry& entry = entries[line.place];
            EventClass event = EventOf(entry);
            if (!line.doubtful || !HistoProcs::HistoryHolds(event))
                engine_.TraiteEvent(event);
            entry.line = OutOfService::LineTold;
            // One that leaves with its site stays out in it.
            if (!entry.IsOut() && !OutOfService::IsOut(entry.thing))
                returned_ += entry.thing;
        }
        entries.removeIf(IsDone);
        OutOfService::setMemory(entries);
    });
}

/// What the channel's events said meanwhile is its state. It goes out as a general reading would
/// tell it, and from the timer: it brings the console up, and the screen that brought the channel
/// back must have come to its end.
void OutOfServiceWatch::TellStanding() {
    for (const OutOfService::Thing& thing : std::exchange(returned_, {})) {
        const PanelClass& panel = Global::Configuration().Panel(thing.panel);
        if (thing.channel == 0 || !Models::HasChannels(panel.Model()) || OutOfService::IsOut(thing))
            continue;
        const qint16 state = panel.Channel(thing.channel).State();
        if (state <= 0 || state >= Registers::NormalAgain)
            continue;
        EventClass event(qint16(thing.panel), qint16(thing.channel), 0, state);
        event.setClock(Registers::NoPanelClock);
        engine_.SendEvent(event);
    }
}

/// Gives their numbers to the first lines that are owed. One that has its number already is from
/// before a kill.
QList<OutOfServiceWatch::Owed> OutOfServiceWatch::Number(QList<Entry>& entries, qsizetype most) {
    QList<Owed> lines;
    for (qsizetype place = 0; place < entries.size() && lines.size() < most; ++place) {
        Entry& entry = entries[place];
        if (entry.line == OutOfService::LineTold)
            continue;
        lines.append({place, entry.line != OutOfService::LineOwed});
        if (entry.line == OutOfService::LineOwed)
            entry.line = engine_.IncEvtNum();
    }
    return lines;
}

void OutOfServiceWatch::TellDay() {
    const QList<Entry> entries = OutOfService::Memory();
    if (std::none_of(entries.cbegin(), entries.cend(),
                     [](const Entry& entry) { return entry.IsOut(); }))
        return;
    EventClass event(0, Family::System, 0, SystemEvents::OutOfServiceCount);
    engine_.SendEvent(event);
}
