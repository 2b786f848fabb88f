// What the alarm report of a whole year costs.

#include "Bed.h"

#include "events/AlarmReport.h"
#include "model/Models.h"
#include "support/HistoryWriter.h"

#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <random>

namespace {

constexpr int LinesAYear = 1000000;
constexpr int Year = 2024;

/// Twelve monthly files in which alarms come, are acknowledged and go, now and then in floods.
void WriteYear() {
    std::mt19937 random(1);
    for (int panel = 1; panel <= ConfigClass::PanelCount; ++panel)
        Global::Configuration().Panel(panel).setModel(Models::Q7100);
    const AlarmPeriod year(AlarmPeriod::Unit::Year,
                           AlarmPeriod::SecondsOf({QDate(Year, 1, 1), QTime(0, 0)}));
    const double pace = double(year.End() - year.Begin()) * 3 / LinesAYear;
    double at = double(year.Begin());
    HistoryWriter history;
    for (int alarm = 0; alarm < LinesAYear / 3 + 1; ++alarm) {
        at += pace * (alarm % 500 < 200 ? 0.01 : 1.66);
        const auto panel = qint16(1 + random() % ConfigClass::PanelCount);
        const auto channel = qint16(1 + random() % PanelClass::MaxChannel);
        history.PutAlarm(panel, channel, qint64(at), 20, 60);
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
