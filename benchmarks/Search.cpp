// What looking through a million lines of history costs, and saving what was found.

#include "Bed.h"

#include "core/DateTimes.h"
#include "events/AlarmCourse.h"
#include "events/HistoProcs.h"
#include "events/HistorySearch.h"
#include "screens/history/HistoryExport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <benchmark/benchmark.h>
#include <functional>

namespace {

constexpr int Lines = 1000000;
/// As the screen asks for it, ms.
constexpr int Budget = 20;

/// The current history file with a million lines of 64 panels, an alarm and its end in turn, and a
/// login every thousand lines.
void MakeHistory() {
    const QString path = HistoProcs::HistoFileName();
    const auto lineOf = [&](EventClass event) {
        event.setGDH(DateTimes::Now());
        event.setNum(123456);
        HistoProcs::HistoEvent(event);
        QFile file(path);
        const bool opened = file.open(QIODevice::ReadOnly);
        QByteArray line = opened ? file.readAll().split('\n').value(1) + '\n' : QByteArray();
        file.close();
        file.remove();
        return line;
    };
    QByteArray thousand;
    for (int i = 1; i < 1000; ++i)
        thousand +=
            lineOf(EventClass(qint16(1 + i / 2 % 64), qint16(1 + i / 128 % 12), 0, qint16(i % 2)));
    Global::Get().userName = QStringLiteral("Winter");
    thousand += lineOf(EventClass(0, Family::System, 0, SystemEvents::UserChanged));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        for (int i = 0; i < Lines / 1000; ++i)
            file.write(thousand);
    }
}

HistoryFilter Today() {
    HistoryFilter filter;
    filter.from = filter.to = DateTimes::DateOf(DateTimes::Now());
    return filter;
}

/// Searches to the end; gives the longest of the slices, ms.
double Search(HistorySearch& search, const HistoryFilter& filter) {
    double longest = 0;
    QElapsedTimer slice;
    search.Begin(filter);
    for (bool done = false; !done;) {
        slice.start();
        done = search.Step(Budget);
        longest = qMax(longest, double(slice.nsecsElapsed()) / 1e6);
    }
    return longest;
}

/// Looks for something in what was read before.
void SearchFor(benchmark::State& state, const std::function<void(HistoryFilter&)>& choose) {
    const Bed bed;
    MakeHistory();
    HistorySearch search;
    Search(search, Today());
    HistoryFilter filter = Today();
    choose(filter);
    double longest = 0;
    for (auto step : state)
        longest = Search(search, filter);
    state.counters["of"] = double(search.Records().Records().size());
    state.counters["found"] = double(search.Found().size());
    state.counters["longest_slice_ms"] = longest;
}

void SearchReadingAll(benchmark::State& state) {
    const Bed bed;
    MakeHistory();
    double longest = 0;
    for (auto step : state) {
        HistorySearch search;
        longest = Search(search, Today());
        state.counters["found"] = double(search.Found().size());
    }
    state.counters["longest_slice_ms"] = longest;
}
BENCHMARK(SearchReadingAll)->Unit(benchmark::kMillisecond)->UseRealTime();

void SearchPanel(benchmark::State& state) {
    SearchFor(state, [](HistoryFilter& filter) { filter.panel = 12; });
}
BENCHMARK(SearchPanel)->Unit(benchmark::kMillisecond)->UseRealTime();

void SearchUser(benchmark::State& state) {
    SearchFor(state, [](HistoryFilter& filter) { filter.user = QStringLiteral("Winter"); });
}
BENCHMARK(SearchUser)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Words that stand in no line: each is looked through to its end.
void SearchWords(benchmark::State& state) {
    SearchFor(state, [](HistoryFilter& filter) { filter.words = QStringLiteral("XXX valve"); });
}
BENCHMARK(SearchWords)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The course of an alarm that never ends, in the middle of all.
void CourseOfAnAlarm(benchmark::State& state) {
    const Bed bed;
    MakeHistory();
    HistorySearch search;
    Search(search, Today());
    std::vector<HistoryRecord> records = search.Records().Records();
    HistoryRecord& middle = records[records.size() / 2];
    middle.panel = 99;
    middle.kind = EventKind::FirstFault;
    for (auto step : state)
        benchmark::DoNotOptimize(CourseOf(records, records.size() / 2));
}
BENCHMARK(CourseOfAnAlarm)->Unit(benchmark::kMillisecond)->UseRealTime();

void SaveFound(benchmark::State& state, HistoryExport::Format format, int panel) {
    const Bed bed;
    MakeHistory();
    HistorySearch search;
    HistoryFilter filter = Today();
    filter.panel = panel;
    Search(search, filter);
    QElapsedTimer slice;
    double longest = 0;
    for (auto step : state) {
        HistoryExport saved(search, format, bed.Path(QStringLiteral("found")),
                            {QStringLiteral("History"), {}, {}, QStringList(9, u"Title"_qs)},
                            nullptr);
        while (saved.Outcome() == HistoryExport::State::Running) {
            slice.start();
            QCoreApplication::processEvents();
            longest = qMax(longest, double(slice.nsecsElapsed()) / 1e6);
        }
    }
    state.counters["lines"] = double(search.Found().size());
    state.counters["longest_slice_ms"] = longest;
    state.counters["MB"] = double(QFile(bed.Path(QStringLiteral("found"))).size()) / 1e6;
}

void SaveMillionAsCsv(benchmark::State& state) {
    SaveFound(state, HistoryExport::Format::Csv, 0);
}
BENCHMARK(SaveMillionAsCsv)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

void SavePanelAsPdf(benchmark::State& state) {
    SaveFound(state, HistoryExport::Format::Pdf, 12);
}
BENCHMARK(SavePanelAsPdf)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

} // namespace
