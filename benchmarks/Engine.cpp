// What an event, a text and a site file cost.

#include "Bed.h"

#include "bus/BusWatch.h"
#include "bus/wPolling.h"
#include "core/Forms.h"
#include "model/Models.h"
#include "screens/Screens.h"
#include "support/FakeLink.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

/// The reply to a read of 124 words: 62 events on 12 channels, in turn active and normal.
QByteArray EventMemory(const QByteArray& frame) {
    QByteArray reply = frame.left(2) + char(248);
    for (int i = 0; i < BusWatch::MaxEvents; ++i) {
        const int active = (i / 12) % 2 == 0 ? 1 : 0;
        reply += char(((i % 12 + 1) << 4));
        reply += char(active << 4);
        reply += char(0);
        reply += char(i);
    }
    const auto crc = quint16(CommFunctions::CRC16(reply + QByteArray(2, '\0'), int(reply.size())));
    return reply + char(crc & 0xFF) + char(crc >> 8);
}

/// From the reply of the module to the last consumer: history and trace on disk, console with its
/// paint.
void RouteBurst(benchmark::State& state) {
    const Bed bed;
    const RestlessClock clock;
    RegisterScreens();
    auto link = std::make_unique<FakeLink>();
    link->answer = EventMemory;
    wPolling engine(std::move(link));
    engine.Form_Load();
    Forms::Show(QStringLiteral("wRunAlarms"));
    PanelClass& panel = Global::Configuration().Panel(1);
    panel.setModel(Models::Q7100);
    for (auto step : state) {
        engine.Queue().Receipts().Forget(1);
        engine.ExploitePanneau(panel, {BusWatch::MaxEvents});
        QApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * BusWatch::MaxEvents);
    Forms::UnloadAllBut({});
    engine.Form_Unload();
}
BENCHMARK(RouteBurst)->Unit(benchmark::kMillisecond)->UseRealTime();

void LookUpText(benchmark::State& state) {
    const Bed bed;
    for (auto step : state)
        benchmark::DoNotOptimize(GetText(51001));
}
BENCHMARK(LookUpText);

void SaveSite(benchmark::State& state) {
    const Bed bed;
    for (auto step : state)
        benchmark::DoNotOptimize(Global::Configuration().Save(bed.Path(QStringLiteral("a.kv2"))));
}
BENCHMARK(SaveSite)->Unit(benchmark::kMillisecond)->UseRealTime();

void ReadSite(benchmark::State& state) {
    const Bed bed;
    Global::Configuration().Save(bed.Path(QStringLiteral("a.kv2")));
    for (auto step : state) {
        ConfigClass site;
        if (site.Read(bed.Path(QStringLiteral("a.kv2"))) != ConfigClass::ReadDone)
            state.SkipWithError("the site wasn't read");
    }
}
BENCHMARK(ReadSite)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
