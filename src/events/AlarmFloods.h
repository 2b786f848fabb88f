#pragma once

#include <QtGlobal>
#include <deque>
#include <vector>

/// Finds alarm floods: one begins when more than ten alarms come within ten minutes, with the first
/// of them, and ends when fewer than five came within the last ten.
class AlarmFloods {
public:
    struct Flood {
        qint64 begin;
        qint64 end;
        int alarms;
        int most; ///< in ten minutes
    };

    static constexpr qint64 Window = 600;
    static constexpr int BeginsAbove = 10;
    static constexpr int EndsBelow = 5;
    /// A clock that is kept right goes back by no more, seconds: that ends nothing.
    static constexpr qint64 SmallStep = 60;

    /// Counts what lies between two times.
    AlarmFloods(qint64 begin, qint64 end)
        : begin_(begin)
        , end_(end) {}

    /// The alarms in the order of their coming. Where a clock was set back by more than a small
    /// step the counting begins anew.
    void Take(qint64 time);
    /// Ends what still goes on.
    void Finish(qint64 now);

    const std::vector<Flood>& All() const { return floods_; }
    /// Most alarms in ten minutes.
    int Most() const { return most_; }

private:
    void Leave(qint64 now);
    void End(qint64 time);

    qint64 begin_;
    qint64 end_;
    std::deque<qint64> recent_;
    bool flooded_ = false;
    Flood flood_ = {};
    std::vector<Flood> floods_;
    int most_ = 0;
};
