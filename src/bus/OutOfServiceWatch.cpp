#include "bus/OutOfServiceWatch.h"

#include "bus/wPolling.h"
#include "core/ErrorHandling.h"
#include "events/HistoProcs.h"
#include "model/CurrentConfig.h"

#include <algorithm>

using ErrorHandling::Guard;
using OutOfService::Entry;

namespace {

constexpr double MillisecondsADay = 86400000;
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
    return double(now - known.monotonicMs) / MillisecondsADay >
           entry.until - entry.since + Patience;
}

void OutOfServiceWatch::Check() {
    Guard("OutOfServiceWatch.Check", [&] {
        if (OutOfService::Memory().isEmpty())
            return;
        OutOfService::NoticeReturns();
        if (OutOfService::BringBackDue([this](const Entry& entry) { return IsOverdue(entry); }))
            KeepCurrentConfig();
        Tell(LinesASecond);
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
        }
        entries.removeIf(IsDone);
        OutOfService::setMemory(entries);
    });
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
