// What the alarm report of a whole year costs.

#include "Bed.h"

#include "core/DateTimes.h"
#include "events/AlarmReport.h"
#include "events/HistoProcs.h"
#include "events/TextProcs.h"
#include "model/Models.h"
#include "platform/CodePage.h"

#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <random>

namespace {

constexpr int LinesAYear = 1000000;
constexpr int Year = 2024;

/// A file line of an event at a moment.
QByteArray LineOf(EventClass event, qint64 second, int number) {
    const QDateTime time = AlarmPeriod::TimeOf(second);
    event.setGDH(DateTimes::FromDate(time.date(), time.time()));
    event.setNum(number % 999999 + 1);
    event.setClock(number % 0x100000);
    return platform::ToCodePage(
               TextProcs::HistoScreenLineToHistoFileLine(TextProcs::FormateHistoScreen(event))) +
           "\r\n";
}

/// Twelve monthly files in which alarms come, are acknowledged and go, now and then in floods.
void WriteYear() {
    std::mt19937 random(1);
    for (int panel = 1; panel <= ConfigClass::PanelCount; ++panel)
        Global::Configuration().Panel(panel).setModel(Models::Q7100);
    const AlarmPeriod year(AlarmPeriod::Unit::Year,
                           AlarmPeriod::SecondsOf({QDate(Year, 1, 1), QTime(0, 0)}));
    const double pace = double(year.End() - year.Begin()) / (LinesAYear / 3);
    double at = double(year.Begin());
    QFile file;
    for (int alarm = 0; alarm < LinesAYear / 3 + 1; ++alarm) {
        at += pace * (alarm % 500 < 200 ? 0.01 : 1.66);
        const auto second = qint64(at);
        const QString path = Global::InApplicationFolder(
            QStringLiteral("Histo%1.his").arg(AlarmPeriod::TimeOf(second).toString("yyyyMM")));
        if (file.fileName() != path) {
            file.close();
            file.setFileName(path);
            if (!file.open(QIODevice::WriteOnly))
                return;
        }
        const auto panel = qint16(1 + random() % ConfigClass::PanelCount);
        const auto channel = qint16(1 + random() % PanelClass::MaxChannel);
        file.write(LineOf({panel, channel, 0, 1}, second, 3 * alarm));
        file.write(LineOf({panel, channel, 1, 1}, second + 20, 3 * alarm + 1));
        file.write(LineOf({panel, channel, 0, 0}, second + 60, 3 * alarm + 2));
    }
}

void ReportYear(benchmark::State& state) {
    const Bed bed;
    WriteYear();
    const AlarmPeriod year(AlarmPeriod::Unit::Year,
                           AlarmPeriod::SecondsOf({QDate(Year, 1, 1), QTime(0, 0)}));
    // The longest that one slice keeps the watch of the bus waiting.
    qint64 longest = 0;
    for (auto step : state) {
        HistoryRecords records;
        AlarmReport report(year);
        records.Begin(AlarmReport::ReadFrom(year), AlarmReport::ReadTo(year));
        for (bool done = false; !done;) {
            QElapsedTimer slice;
            slice.start();
            done = records.Step(20);
            longest = std::max(longest, slice.elapsed());
        }
        for (const HistoryRecord& record : records.Records())
            report.Take(record);
        report.Finish(year.End());
        state.counters["lines"] = double(records.Records().size());
        state.counters["alarms"] = report.Alarms();
        state.counters["floods"] = double(report.Floods().size());
    }
    state.counters["slice_ms"] = double(longest);
}
BENCHMARK(ReportYear)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
