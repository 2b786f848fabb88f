// What the memory of what is out of service costs the watch.

#include "Bed.h"

#include "bus/OutOfServiceWatch.h"
#include "bus/wPolling.h"
#include "model/Models.h"
#include "support/FakeLink.h"

#include <benchmark/benchmark.h>

namespace {

/// So many channels, from the first panel on.
QList<OutOfService::Change> Channels(qint64 count, bool out) {
    QList<OutOfService::Change> changes;
    for (int i = 0; i < count; ++i)
        changes.append({{i / PanelClass::MaxChannel + 1, i % PanelClass::MaxChannel + 1},
                        out,
                        QStringLiteral("Cable repair"),
                        OutOfService::Day});
    return changes;
}

void MakeLarge() {
    for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
        Global::Configuration().Panel(address).setModel(Models::Q6200XT);
        Global::Configuration().Panel(address).setActive(true);
    }
}

/// The look of each second at so many channels that are out.
void CheckService(benchmark::State& state) {
    const Bed bed;
    MakeLarge();
    wPolling engine(std::make_unique<FakeLink>());
    engine.Form_Load();
    OutOfService::Apply(Channels(state.range(0), true));
    TellOutOfService();
    for (auto step : state)
        engine.ServiceWatch().Check();
    engine.Form_Unload();
}
BENCHMARK(CheckService)->Arg(0)->Arg(10)->Arg(200)->Arg(1536)->Unit(benchmark::kMicrosecond);

/// The lines that one second tells at most, from the change on.
void TellService(benchmark::State& state) {
    const Bed bed;
    MakeLarge();
    wPolling engine(std::make_unique<FakeLink>());
    engine.Form_Load();
    bool out = false;
    for (auto step : state) {
        out = !out;
        OutOfService::Apply(Channels(20, out));
        engine.ServiceWatch().Check();
    }
    engine.Form_Unload();
}
BENCHMARK(TellService)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
