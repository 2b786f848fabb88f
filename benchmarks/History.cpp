// What a long history and a full console cost.

#include "Bed.h"

#include "bus/BusWatch.h"
#include "bus/wPolling.h"
#include "core/DateTimes.h"
#include "core/Forms.h"
#include "events/HistoProcs.h"
#include "events/HistoryFile.h"
#include "model/Models.h"
#include "screens/Screens.h"
#include "screens/console/AlarmGrid.h"
#include "screens/history/HistoryGrid.h"
#include "support/FakeLink.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

constexpr int LongFile = 1000000;

/// The current history file with many lines of the system's own.
QString MakeLongFile() {
    EventClass event(1, 7, 0, 1);
    event.setGDH(DateTimes::Now());
    event.setNum(123456);
    HistoProcs::HistoEvent(event);
    QFile file(HistoProcs::HistoFileName());
    if (file.open(QIODevice::ReadWrite)) {
        file.readLine();
        const QByteArray lines = file.readLine().repeated(1000);
        for (int i = 0; i < LongFile / 1000; ++i)
            file.write(lines);
    }
    return file.fileName();
}

double HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd);
}

void IndexHistory(benchmark::State& state) {
    const Bed bed;
    const QString path = MakeLongFile();
    double bytes = 0;
    for (auto step : state) {
        const double before = HeapInUse();
        HistoryFile file;
        file.Load(path);
        bytes = HeapInUse() - before;
        state.counters["lines"] = file.Count();
    }
    state.counters["bytes"] = bytes;
}
BENCHMARK(IndexHistory)->Unit(benchmark::kMillisecond)->UseRealTime();

void PressKey(QWidget& grid, Qt::Key key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&grid, &press);
}

/// A page up and down, each with its paint.
void ScrollHistory(benchmark::State& state) {
    const Bed bed;
    HistoryGrid grid;
    grid.resize(792, 410);
    grid.show();
    grid.Load(MakeLongFile());
    grid.ShowLast();
    for (auto step : state) {
        PressKey(grid, Qt::Key_PageUp);
        QApplication::processEvents();
        PressKey(grid, Qt::Key_PageDown);
        QApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(ScrollHistory)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The console with every channel of every panel standing.
class FullConsole {
public:
    FullConsole() {
        RegisterScreens();
        engine_.Form_Load();
        Forms::Show(QStringLiteral("wRunAlarms"));
        for (qint16 panel = 1; panel <= ConfigClass::PanelCount; ++panel) {
            Global::Configuration().Panel(panel).setModel(Models::Q7100);
            for (qint16 channel = 1; channel <= PanelClass::MaxChannel; ++channel)
                Raise(panel, channel, 1);
        }
        QApplication::processEvents();
    }
    ~FullConsole() {
        Forms::UnloadAllBut({});
        engine_.Form_Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    FullConsole(const FullConsole&) = delete;
    FullConsole& operator=(const FullConsole&) = delete;

    void Raise(qint16 panel, qint16 channel, qint16 aff, qint16 param = 0) {
        EventClass event(panel, channel, param, aff);
        event.setGDH(DateTimes::Now());
        Q_EMIT engine_.BusEvent(event);
    }
    static AlarmGrid& Grid() {
        auto* console = dynamic_cast<QWidget*>(Forms::Find(QStringLiteral("wRunAlarms")));
        return *console->findChild<AlarmGrid*>();
    }
    wPolling& Engine() { return engine_; }
    FakeLink& Line() { return *line_; }

private:
    FakeLink* line_ = new FakeLink;
    wPolling engine_{std::unique_ptr<FakeLink>(line_)};
};

void ScrollFullConsole(benchmark::State& state) {
    const Bed bed;
    const FullConsole console;
    AlarmGrid& grid = FullConsole::Grid();
    for (auto step : state) {
        PressKey(grid, Qt::Key_PageDown);
        QApplication::processEvents();
        PressKey(grid, Qt::Key_PageUp);
        QApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * 2);
    state.counters["rows"] = grid.Rows().Count();
}
BENCHMARK(ScrollFullConsole)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Bursts of 62 events on the full list: rows go and come, painted once.
void BurstOnFullConsole(benchmark::State& state) {
    const Bed bed;
    FullConsole console;
    constexpr int Burst = BusWatch::MaxEvents;
    for (auto step : state) {
        for (qint16 i = 0; i < Burst; ++i) {
            const auto panel = qint16(i / 2 + 1);
            console.Raise(panel, 5, i % 2 == 0 ? 0 : 1, i % 2 == 0 ? 1 : 0);
        }
        QApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * Burst);
}
BENCHMARK(BurstOnFullConsole)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Leaving the console for another screen and coming back.
void KeepFullConsole(benchmark::State& state) {
    const Bed bed;
    const FullConsole console;
    for (auto step : state) {
        Forms::Unload(QStringLiteral("wRunAlarms"));
        Forms::Show(QStringLiteral("wRunAlarms"));
        QApplication::processEvents();
    }
}
BENCHMARK(KeepFullConsole)->Unit(benchmark::kMillisecond)->UseRealTime();

/// From the reply of the module to the painted row of its one event.
void EventToRow(benchmark::State& state) {
    const Bed bed;
    const RestlessClock clock;
    FullConsole console;
    bool active = false;
    console.Line().answer = [&](const QByteArray& frame) {
        QByteArray reply =
            frame.left(2) + char(4) + char(1 << 4) + char(active ? 0x10 : 0x00) + char(0) + char(1);
        const auto crc =
            quint16(CommFunctions::CRC16(reply + QByteArray(2, '\0'), int(reply.size())));
        return reply + char(crc & 0xFF) + char(crc >> 8);
    };
    PanelClass& panel = Global::Configuration().Panel(1);
    for (auto step : state) {
        active = !active;
        console.Engine().Queue().Receipts().Forget(1);
        console.Engine().ExploitePanneau(panel, {1});
        QApplication::processEvents();
    }
}
BENCHMARK(EventToRow)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
