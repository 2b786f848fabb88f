#include "events/AlarmPeriod.h"

namespace {

constexpr qint64 TenMinutes = 600;
constexpr int DaysAWeek = 7;

qint64 Midnight(const QDate& date) {
    return AlarmPeriod::SecondsOf(QDateTime(date, QTime(0, 0), Qt::UTC));
}

/// The first day of what holds a date.
QDate FirstDay(AlarmPeriod::Unit unit, const QDate& date) {
    switch (unit) {
    case AlarmPeriod::Unit::Week:
        return date.addDays(1 - date.dayOfWeek());
    case AlarmPeriod::Unit::Month:
        return {date.year(), date.month(), 1};
    case AlarmPeriod::Unit::Year:
        return {date.year(), 1, 1};
    default:
        return date;
    }
}

QDate Later(AlarmPeriod::Unit unit, const QDate& first, int by) {
    switch (unit) {
    case AlarmPeriod::Unit::Week:
        return first.addDays(qint64(by) * DaysAWeek);
    case AlarmPeriod::Unit::Month:
        return first.addMonths(by);
    case AlarmPeriod::Unit::Year:
        return first.addYears(by);
    default:
        return first.addDays(by);
    }
}

} // namespace

QDateTime AlarmPeriod::TimeOf(qint64 seconds) {
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

qint64 AlarmPeriod::SecondsOf(const QDateTime& time) {
    return QDateTime(time.date(), time.time(), Qt::UTC).toSecsSinceEpoch();
}

AlarmPeriod::AlarmPeriod(Unit unit, qint64 within)
    : unit_(unit) {
    const QDateTime time = TimeOf(within);
    const QDate first = FirstDay(unit, time.date());
    begin_ = Midnight(first) + (unit == Unit::Hour ? time.time().hour() * HourSeconds : 0);
    end_ = unit == Unit::Hour ? begin_ + HourSeconds : Midnight(Later(unit, first, 1));
}

AlarmPeriod AlarmPeriod::Next(int by) const {
    if (unit_ == Unit::Hour)
        return {unit_, begin_ + by * HourSeconds};
    return {unit_, Midnight(Later(unit_, TimeOf(begin_).date(), by))};
}

std::vector<qint64> AlarmPeriod::Parts() const {
    std::vector<qint64> parts;
    if (unit_ == Unit::Hour || unit_ == Unit::Day) {
        for (qint64 at = begin_; at < end_; at += unit_ == Unit::Hour ? TenMinutes : HourSeconds)
            parts.push_back(at);
    } else {
        const Unit part = unit_ == Unit::Year ? Unit::Month : Unit::Day;
        const QDate end = TimeOf(end_).date();
        for (QDate day = TimeOf(begin_).date(); day < end; day = Later(part, day, 1))
            parts.push_back(Midnight(day));
    }
    parts.push_back(end_);
    return parts;
}

std::optional<AlarmPeriod> AlarmPeriod::Part(int index) const {
    const std::vector<qint64> parts = Parts();
    if (unit_ == Unit::Hour || index < 0 || index + 1 >= int(parts.size()))
        return std::nullopt;
    const Unit part = unit_ == Unit::Year  ? Unit::Month
                      : unit_ == Unit::Day ? Unit::Hour
                                           : Unit::Day;
    return AlarmPeriod(part, parts[size_t(index)]);
}
