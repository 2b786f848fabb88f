#include "events/AlarmReport.h"

#include "events/EventClass.h"

#include <algorithm>

namespace {

constexpr qint64 Day = 86400;
/// How far back an alarm may have come that stands in the period, days.
constexpr int LookBack = 366;
/// What comes of the period's last alarms is looked for so long, days.
constexpr int LookAhead = 1;
/// Origins have two digits for the panel.
constexpr int Panels = 100;
constexpr int ChannelsAPanel = Family::LastChannel + 1;

} // namespace

AlarmReport::AlarmReport(const AlarmPeriod& period)
    : period_(period)
    , parts_(period.Parts())
    , first_(period.End())
    , byPart_(parts_.size() - 1)
    , byDay_(size_t((period.End() - period.Begin() + Day - 1) / Day))
    , floods_(period.Begin(), period.End())
    , states_(size_t(Panels) * ChannelsAPanel)
    , waiting_(Panels) {}

QDate AlarmReport::ReadFrom(const AlarmPeriod& period) {
    return AlarmPeriod::TimeOf(period.Begin()).date().addDays(-LookBack);
}

QDate AlarmReport::ReadTo(const AlarmPeriod& period) {
    return AlarmPeriod::TimeOf(period.End() - 1).date().addDays(LookAhead);
}

AlarmReport::State& AlarmReport::At(size_t panel, size_t channel) {
    return states_[std::min<size_t>(panel, Panels - 1) * ChannelsAPanel +
                   std::min<size_t>(channel, Family::LastChannel)];
}

void AlarmReport::Take(const HistoryRecord& record) {
    first_ = std::min(first_, record.time);
    switch (record.kind) {
    case EventKind::Active:
    case EventKind::CableFault:
    case EventKind::FirstFault:
    case EventKind::SecondFault:
    case EventKind::PanelLost:
        Told(record);
        break;
    case EventKind::Normal:
        Go(At(record.panel, record.channel), record.time);
        // The step that ends an alarm: what was gone before it was acknowledged is so now.
        if (!record.isChange)
            Acknowledge(At(record.panel, record.channel), record.time);
        break;
    case EventKind::PanelPresent:
        Go(At(record.panel, record.channel), record.time);
        break;
    case EventKind::Acknowledged:
        Acknowledge(At(record.panel, record.channel), record.time);
        break;
    case EventKind::PanelAcknowledged:
    case EventKind::LampsAcknowledged:
        AcknowledgePanel(record.panel, record.time);
        break;
    case EventKind::AcknowledgedOnPc:
        AcknowledgeOnPc(record);
        break;
    case EventKind::Cleared:
        Clear(record.panel);
        break;
    case EventKind::OutOfService:
        TakeOut(record);
        break;
    default:
        break;
    }
}

void AlarmReport::Told(const HistoryRecord& record) {
    State& state = At(record.panel, record.channel);
    if (!state.stands || state.change.IsMissedGoing(record)) {
        Come(state, record);
        return;
    }
    if (state.change.IsAcknowledgement(record))
        Acknowledge(state, record.time);
    state.change.Take(record);
}

/// The loss of a panel doesn't wait: no line tells that somebody took note of it.
void AlarmReport::Come(State& state, const HistoryRecord& record) {
    const qint64 time = record.time;
    state.stands = true;
    state.change.Begin(record);
    state.coming = record;
    if (!state.waits && record.channel != 0) {
        state.waits = true;
        state.waitsSince = time;
        ++waiting_[std::min<size_t>(record.panel, Panels - 1)];
    }
    floods_.Take(time);
    CountChatter(state, time);
    if (!period_.Holds(time))
        return;
    ++alarms_;
    const auto part = std::upper_bound(parts_.cbegin(), parts_.cend(), time) - parts_.cbegin() - 1;
    ++byPart_[size_t(part)];
    ++byHour_[size_t(time % Day / AlarmPeriod::HourSeconds)];
    ++byDay_[size_t((time - period_.Begin()) / Day)];
    state.tally.panel = record.panel;
    state.tally.channel = record.channel;
    ++state.tally.alarms;
    state.tally.last = record;
}

/// The alarms that make three in a minute belong to the chattering that they begin.
void AlarmReport::CountChatter(State& state, qint64 time) {
    auto& [oldest, older] = state.earlier;
    const bool chatters =
        oldest != 0 && oldest <= older && older <= time && time - oldest <= AlarmLimits::Minute;
    if (chatters && period_.Holds(time)) {
        if (!state.chatters) {
            ++state.tally.chatters;
            state.tally.chatterAlarms += int(period_.Holds(oldest)) + int(period_.Holds(older));
        }
        ++state.tally.chatterAlarms;
    }
    state.chatters = chatters;
    oldest = older;
    older = time;
}

void AlarmReport::Go(State& state, qint64 time) {
    if (!state.stands)
        return;
    state.stands = false;
    const qint64 stood = time - state.coming.time;
    if (stood >= 0 && stood <= AlarmLimits::Fleeting && period_.Holds(state.coming.time))
        ++state.tally.fleeting;
    EndStay(state, time, false);
}

/// One that became stale behind the period belongs to the next one.
void AlarmReport::EndStay(const State& state, qint64 time, bool stands) {
    const qint64 stale = state.coming.time + AlarmLimits::Stale;
    if (time > stale && time > period_.Begin() && stale < period_.End())
        stale_.push_back({state.coming, time, stands});
}

void AlarmReport::Acknowledge(State& state, qint64 time) {
    if (!state.waits)
        return;
    StopWaiting(state);
    if (time >= state.waitsSince && period_.Holds(state.waitsSince))
        waits_.push_back(time - state.waitsSince);
}

void AlarmReport::StopWaiting(State& state) {
    if (!state.waits)
        return;
    state.waits = false;
    --waiting_[std::min<size_t>(state.coming.panel, Panels - 1)];
}

void AlarmReport::AcknowledgePanel(int panel, qint64 time) {
    if (panel < 0 || panel >= Panels || waiting_[size_t(panel)] == 0)
        return;
    for (size_t channel = 0; channel < ChannelsAPanel; ++channel)
        Acknowledge(At(size_t(panel), channel), time);
}

/// The line names the user and not the panel: where alarms of one panel alone wait, it is that one.
/// Else the panel's own acknowledgements follow.
void AlarmReport::AcknowledgeOnPc(const HistoryRecord& record) {
    if (record.panel != 0) {
        AcknowledgePanel(record.panel, record.time);
        return;
    }
    const auto waits = [](int sources) { return sources > 0; };
    const auto panel = std::find_if(waiting_.cbegin(), waiting_.cend(), waits);
    if (panel != waiting_.cend() && std::none_of(panel + 1, waiting_.cend(), waits))
        AcknowledgePanel(int(panel - waiting_.cbegin()), record.time);
}

/// A module that is cleared forgets alarms that have gone.
void AlarmReport::Clear(int panel) {
    if (panel < 0 || panel >= Panels)
        return;
    for (size_t channel = 1; channel < ChannelsAPanel; ++channel) {
        State& state = At(size_t(panel), channel);
        if (!state.stands)
            StopWaiting(state);
    }
}

/// What is out of service tells nothing more: its alarm neither stands on nor waits. A panel is out
/// with all of its channels.
void AlarmReport::TakeOut(const HistoryRecord& record) {
    const bool isWhole = record.channel == 0;
    const size_t end = isWhole ? ChannelsAPanel : size_t(record.channel) + 1;
    for (size_t channel = record.channel; channel < end; ++channel) {
        State& state = At(record.panel, channel);
        Go(state, record.time);
        StopWaiting(state);
    }
}

void AlarmReport::Finish(qint64 now) {
    const qint64 known = std::min(now, period_.End() + LookAhead * Day);
    isKnownToNow_ = known == now;
    floods_.Finish(known);
    for (const State& state : states_) {
        if (state.stands)
            EndStay(state, known, true);
        if (state.waits && period_.Holds(state.waitsSince))
            ++unacknowledged_;
        if (state.tally.alarms > 0)
            sources_.push_back(state.tally);
    }
    std::stable_sort(sources_.begin(), sources_.end(),
                     [](const Source& a, const Source& b) { return a.alarms > b.alarms; });
    std::stable_sort(stale_.begin(), stale_.end(), [](const Stay& a, const Stay& b) {
        return a.went - a.coming.time > b.went - b.coming.time;
    });
    std::sort(waits_.begin(), waits_.end());
    const qint64 begin = std::max(period_.Begin(), first_ - first_ % Day);
    const qint64 end = std::min(period_.End(), std::max(now, begin));
    days_ = std::max(double(end - begin) / Day, double(AlarmPeriod::HourSeconds) / Day);
}

std::pair<int, qint64> AlarmReport::BusiestDay() const {
    const auto most = std::max_element(byDay_.cbegin(), byDay_.cend());
    return {*most, period_.Begin() + (most - byDay_.cbegin()) * Day};
}

int AlarmReport::DaysAbove(int limit) const {
    return int(std::count_if(byDay_.cbegin(), byDay_.cend(),
                             [limit](int alarms) { return alarms > limit; }));
}

qint64 AlarmReport::FloodTime() const {
    qint64 seconds = 0;
    for (const AlarmFloods::Flood& flood : Floods())
        seconds += std::min(flood.end, period_.End()) - std::max(flood.begin, period_.Begin());
    return seconds;
}

/// By nearest rank.
qint64 AlarmReport::AcknowledgedWithin(int percent) const {
    if (waits_.empty())
        return -1;
    const size_t rank = (waits_.size() * size_t(percent) + 99) / 100;
    return waits_[std::max<size_t>(rank, 1) - 1];
}
