#pragma once

#include "events/AlarmFloods.h"
#include "events/AlarmPeriod.h"
#include "events/LatestChange.h"

#include <QDate>
#include <array>
#include <vector>

/// Limits of an alarm system that one operator can handle, as ISA-18.2 and EEMUA 191 name them.
namespace AlarmLimits {
inline constexpr int AcceptableADay = 150;
inline constexpr int MostADay = 300;
/// In any ten minutes, as after an upset.
inline constexpr int MostInTenMinutes = 10;
/// Alarms of one channel within a minute that make it a chattering one.
inline constexpr int Chattering = 3;
inline constexpr qint64 Minute = 60;
/// An alarm that goes within so many seconds is a fleeting one.
inline constexpr qint64 Fleeting = 10;
/// One that stands longer is stale, seconds.
inline constexpr qint64 Stale = 86400;
/// Rows of the list of those that came most.
inline constexpr int BadActors = 10;
} // namespace AlarmLimits

/// What the history of a period tells of its alarms.
///
/// An alarm is the coming of a channel's alarm or the loss of a panel. A channel that is told to
/// stand again while it stands has either taken a step of the same alarm, or its going was missed.
/// What a general reading of the bus finds standing is one only if it wasn't known to stand.
class AlarmReport {
public:
    /// A channel, or with channel 0 the presence of a panel, and what it did in the period.
    struct Source {
        quint8 panel = 0;
        quint8 channel = 0;
        int alarms = 0;
        int chatters = 0;      ///< times that it began to chatter
        int chatterAlarms = 0; ///< alarms that came while it did
        int fleeting = 0;
        HistoryRecord last = {}; ///< its latest alarm of the period
    };
    /// An alarm that stood longer than a day, in the period.
    struct Stay {
        HistoryRecord coming;
        qint64 went;
        bool stands; ///< it hasn't gone: `went` is as far as the history is known
    };

    explicit AlarmReport(const AlarmPeriod& period);

    /// What must be read for a period: its alarms may have come before it, and are acknowledged
    /// and go after it.
    static QDate ReadFrom(const AlarmPeriod& period);
    static QDate ReadTo(const AlarmPeriod& period);

    /// Takes the lines in the order of the files, those before and behind the period among them.
    void Take(const HistoryRecord& record);
    /// Reckons what all lines together tell. `now` ends a period that isn't over.
    void Finish(qint64 now);

    const AlarmPeriod& Period() const { return period_; }
    int Alarms() const { return alarms_; }
    /// By the parts of the period.
    const std::vector<int>& ByPart() const { return byPart_; }
    /// By the hour of the day.
    const std::array<int, 24>& ByHour() const { return byHour_; }
    /// Days of the period that are over and have a history, in parts of a day; at least an hour.
    double Days() const { return days_; }
    double AlarmsADay() const { return alarms_ / days_; }
    /// Alarms of the busiest calendar day of the period, and that day.
    std::pair<int, qint64> BusiestDay() const;
    /// Days with more alarms than a limit.
    int DaysAbove(int limit) const;
    int MostInTenMinutes() const { return floods_.Most(); }
    /// Floods that touch the period, in their order.
    const std::vector<AlarmFloods::Flood>& Floods() const { return floods_.All(); }
    /// Seconds of the period in floods.
    qint64 FloodTime() const;

    /// Those with alarms, the most first.
    const std::vector<Source>& Sources() const { return sources_; }
    /// Those that stood longest first.
    const std::vector<Stay>& StaleAlarms() const { return stale_; }
    /// What stands by the report stands now. Else it may have gone since.
    bool IsKnownToNow() const { return isKnownToNow_; }
    /// Seconds until so many of a hundred were acknowledged, of the alarms of the period that
    /// were; -1 when none was. An acknowledgement answers every alarm of its channel since the
    /// first one that waits.
    qint64 AcknowledgedWithin(int percent) const;
    int Acknowledged() const { return int(waits_.size()); }
    /// Channels whose alarm of the period nobody has acknowledged.
    int Unacknowledged() const { return unacknowledged_; }

private:
    struct State {
        bool stands = false;
        bool waits = false;
        bool chatters = false;
        LatestChange change;
        HistoryRecord coming = {};
        qint64 waitsSince = 0;
        qint64 earlier[AlarmLimits::Chattering - 1] = {};
        Source tally;
    };

    State& At(size_t panel, size_t channel);
    void Told(const HistoryRecord& record);
    void Come(State& state, const HistoryRecord& record);
    void CountChatter(State& state, qint64 time);
    void Go(State& state, qint64 time);
    void EndStay(const State& state, qint64 time, bool stands);
    void Acknowledge(State& state, qint64 time);
    void StopWaiting(State& state);
    void AcknowledgePanel(int panel, qint64 time);
    void AcknowledgeOnPc(const HistoryRecord& record);
    void Clear(int panel);
    void TakeOut(const HistoryRecord& record);

    AlarmPeriod period_;
    std::vector<qint64> parts_;
    qint64 first_ = 0; // of all lines
    int alarms_ = 0;
    std::vector<int> byPart_;
    std::array<int, 24> byHour_ = {};
    std::vector<int> byDay_;
    double days_ = 1;
    AlarmFloods floods_;
    std::vector<State> states_;
    std::vector<int> waiting_; // sources that wait, by panel
    std::vector<qint64> waits_;
    int unacknowledged_ = 0;
    std::vector<Source> sources_;
    std::vector<Stay> stale_;
    bool isKnownToNow_ = true;
};
