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
    const QString key = QStringLiteral("%1.%2 %3")
                            .arg(entry.thing.panel)
                            .arg(entry.thing.channel)
                            .arg(entry.since, 0, 'f', 6);
    const auto known = knownSince_.constFind(key);
    if (known == knownSince_.cend()) {
        knownSince_.insert(key, now);
        return false;
    }
    return double(now - *known) / MillisecondsADay > entry.until - entry.since + Patience;
}

void OutOfServiceWatch::Check() {
    Guard("OutOfServiceWatch.Check", [&] {
        if (OutOfService::Memory().isEmpty())
            return;
        OutOfService::NoticeReturns();
        if (OutOfService::BringBackDue([this](const Entry& entry) { return IsOverdue(entry); }))
            KeepCurrentConfig();
        Tell();
    });
}

void OutOfServiceWatch::Tell() {
    Guard("OutOfServiceWatch.Tell", [&] {
        QList<Entry> entries = OutOfService::Memory();
        QList<Entry> owed;
        QList<bool> looked;
        for (Entry& entry : entries) {
            if (entry.line == OutOfService::LineTold)
                continue;
            // A number without its end is from before a kill.
            looked += entry.line != OutOfService::LineOwed;
            if (entry.line == OutOfService::LineOwed)
                entry.line = engine_.IncEvtNum();
            owed += entry;
        }
        if (owed.isEmpty())
            return;
        OutOfService::setMemory(entries);
        for (qsizetype i = 0; i < owed.size(); ++i)
            TellOne(owed[i], looked[i]);
        for (Entry& entry : entries)
            entry.line = OutOfService::LineTold;
        entries.removeIf(IsDone);
        OutOfService::setMemory(entries);
    });
}

void OutOfServiceWatch::TellOne(const Entry& entry, bool looked) {
    EventClass event = EventOf(entry);
    if (!looked || !HistoProcs::HistoryHolds(event))
        engine_.TraiteEvent(event);
}

void OutOfServiceWatch::TellDay() {
    const QList<Entry> entries = OutOfService::Memory();
    if (std::none_of(entries.cbegin(), entries.cend(),
                     [](const Entry& entry) { return entry.IsOut(); }))
        return;
    EventClass event(0, Family::System, 0, SystemEvents::OutOfServiceCount);
    engine_.SendEvent(event);
}
