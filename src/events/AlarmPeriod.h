#pragma once

#include <QDate>
#include <QDateTime>
#include <optional>
#include <vector>

/// A span of the calendar for which alarms are reckoned, and the parts that its bars stand for. All
/// times are seconds of local time as history lines show them.
class AlarmPeriod {
public:
    enum class Unit { Hour, Day, Week, Month, Year };
    static constexpr qint64 HourSeconds = 3600;

    /// The hour, day and so on that holds a second. Weeks begin with their Monday.
    AlarmPeriod(Unit unit, qint64 within);

    Unit Kind() const { return unit_; }
    qint64 Begin() const { return begin_; }
    /// The first second behind it.
    qint64 End() const { return end_; }
    bool Holds(qint64 time) const { return time >= begin_ && time < end_; }
    /// The one so many later, or earlier.
    AlarmPeriod Next(int by) const;
    bool operator==(const AlarmPeriod& other) const = default;

    /// Where its parts begin, and its end: ten minutes of an hour, hours of a day, days of a week
    /// or month, months of a year.
    std::vector<qint64> Parts() const;
    /// A part as a period of its own; none for ten minutes.
    std::optional<AlarmPeriod> Part(int index) const;

    /// Of local time, and back.
    static QDateTime TimeOf(qint64 seconds);
    static qint64 SecondsOf(const QDateTime& time);

private:
    Unit unit_;
    qint64 begin_;
    qint64 end_;
};
