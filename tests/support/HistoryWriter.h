#pragma once

#include "core/DateTimes.h"
#include "core/Global.h"
#include "events/AlarmPeriod.h"
#include "events/EventClass.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"

#include <QFile>
#include <limits>
#include <map>

/// Writes the monthly history files of a time that is over, line by line as the program would have
/// written them then.
class HistoryWriter {
public:
    HistoryWriter() = default;
    ~HistoryWriter() { WriteUntil(std::numeric_limits<qint64>::max()); }
    HistoryWriter(const HistoryWriter&) = delete;
    HistoryWriter& operator=(const HistoryWriter&) = delete;

    /// `second` is of local time since 1970-01-01. Lines are written in the order of their time as
    /// far as they were put ahead of a later alarm.
    void Put(const EventClass& event, qint64 second) { waiting_.emplace(second, event); }
    /// An alarm of a channel that comes, is acknowledged and goes, each so many seconds later; at a
    /// negative number it isn't.
    void PutAlarm(qint16 panel, qint16 channel, qint64 comes, int acknowledged, int gone) {
        WriteUntil(comes);
        Put({panel, channel, 0, 1}, comes);
        if (acknowledged >= 0)
            Put({panel, channel, 1, 1}, comes + acknowledged);
        if (gone >= 0)
            Put({panel, channel, 0, 0}, comes + gone);
    }

private:
    void WriteUntil(qint64 second) {
        const auto end = waiting_.lower_bound(second);
        for (auto event = waiting_.begin(); event != end; ++event)
            Write(event->second, event->first);
        waiting_.erase(waiting_.begin(), end);
    }
    void Write(EventClass event, qint64 second) {
        const QDateTime time = AlarmPeriod::TimeOf(second);
        const DateTime when = DateTimes::FromDate(time.date(), time.time());
        const QString path = Global::InApplicationFolder(
            QStringLiteral("Histo%1.his").arg(DateTimes::FileMonth(when)));
        if (file_.fileName() != path) {
            file_.close();
            file_.setFileName(path);
            if (!file_.open(QIODevice::Append))
                return;
        }
        event.setGDH(when);
        event.setNum(number_);
        event.setClock(number_);
        number_ = number_ % 999999 + 1;
        file_.write(platform::ToCodePage(TextProcs::HistoScreenLineToHistoFileLine(
                        TextProcs::FormateHistoScreen(event))) +
                    "\r\n");
    }

    std::multimap<qint64, EventClass> waiting_;
    QFile file_;
    int number_ = 1;
};
