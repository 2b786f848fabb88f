#pragma once

#include "core/DateTimes.h"
#include "core/Global.h"
#include "events/AlarmPeriod.h"
#include "events/EventClass.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"

#include <QFile>

/// Writes the monthly history files of a time that is over, line by line as the program would have
/// written them then.
class HistoryWriter {
public:
    /// `second` is of local time since 1970-01-01.
    void Put(EventClass event, qint64 second) {
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
    /// An alarm of a channel that comes, is acknowledged and goes, each so many seconds later; it
    /// stays as it is at a negative number.
    void PutAlarm(qint16 panel, qint16 channel, qint64 comes, int acknowledged, int gone) {
        Put({panel, channel, 0, 1}, comes);
        if (acknowledged >= 0)
            Put({panel, channel, 1, 1}, comes + acknowledged);
        if (gone >= 0)
            Put({panel, channel, 0, 0}, comes + gone);
    }

private:
    QFile file_;
    int number_ = 1;
};
