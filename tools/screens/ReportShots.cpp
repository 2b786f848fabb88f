// The alarm report of a month with quiet days and busy ones.

#include "Shots.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "support/HistoryWriter.h"

#include <random>

void WriteAlarms() {
    constexpr qint64 Day = 86400;
    const qint64 now = AlarmPeriod::SecondsOf(QDateTime::currentDateTime());
    const qint64 begin = AlarmPeriod(AlarmPeriod::Unit::Month, now).Next(-1).Begin();
    HistoryWriter history;
    history.PutAlarm(3, 11, begin + 4 * Day, 400, 3 * int(Day));
    history.PutAlarm(3, 12, begin + 5 * Day, 900, -1);
    std::mt19937 random(4);
    for (qint64 at = begin + 5 * Day; at < now - 120;) {
        const qint64 day = (at - begin) / Day;
        const bool isNight = at % Day < Day / 4;
        at += 1 + qint64(random() % (isNight ? 2400 : 300 + day * 7 % 5 * 180));
        const auto panel = qint16(1 + random() % 8 % (1 + random() % 8));
        history.PutAlarm(panel, qint16(1 + random() % 6), at, int(5 + random() % 200),
                         int(3 + random() % 900));
        if (random() % 60 != 0)
            continue;
        for (int i = 0; i < 14; ++i)
            history.PutAlarm(2, i % 2 == 0 ? 4 : qint16(1 + i), at += 1 + qint64(i) * 3, 60, 8);
    }
}

void TakeReport(const Paths& path) {
    const QString form = FormNames::wAlarmReport;
    Forms::Show(form);
    for (const char* unit : {"cmdUnit_0", "cmdUnit_1", "cmdUnit_2", "cmdUnit_3"}) {
        Click(form, unit);
        Save(form, path(("wAlarmReport_" + QByteArray(unit)).constData()));
    }
    // The help shows the month.
    Save(form, path("wAlarmReport"));
    for (const char* page : {"cmdPage_1", "cmdPage_2", "cmdPage_3", "cmdPage_4", "cmdPage_5"}) {
        Click(form, page);
        Save(form, path(("wAlarmReport_" + QByteArray(page)).constData()));
    }
    Forms::Unload(form);
}
