#include "events/AlarmFloods.h"

#include <algorithm>

void AlarmFloods::Take(qint64 time) {
    if (!recent_.empty() && time < recent_.back() - SmallStep) {
        End(recent_.back());
        recent_.clear();
    }
    if (!recent_.empty())
        time = std::max(time, recent_.back());
    Leave(time);
    recent_.push_back(time);
    const int count = int(recent_.size());
    if (time >= begin_ && time < end_)
        most_ = std::max(most_, count);
    if (flooded_)
        flood_ = {flood_.begin, time, flood_.alarms + 1, std::max(flood_.most, count)};
    else if (count > BeginsAbove)
        flood_ = {recent_.front(), time, count, count};
    flooded_ = flooded_ || count > BeginsAbove;
}

/// Alarms leave the window one by one: the flood ends with the one that leaves too few.
void AlarmFloods::Leave(qint64 now) {
    while (!recent_.empty() && recent_.front() <= now - Window) {
        const qint64 left = recent_.front() + Window;
        recent_.pop_front();
        if (recent_.size() < EndsBelow)
            End(left);
    }
}

void AlarmFloods::End(qint64 time) {
    if (flooded_ && flood_.begin < end_ && time > begin_)
        floods_.push_back({flood_.begin, time, flood_.alarms, flood_.most});
    flooded_ = false;
}

void AlarmFloods::Finish(qint64 now) {
    Leave(now);
    End(std::max(now, recent_.empty() ? now : recent_.back()));
    recent_.clear();
}
