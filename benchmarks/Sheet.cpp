// What the sheet of a full site's channels costs, each way.

#include "Bed.h"

#include "model/ChannelSheet.h"

#include <benchmark/benchmark.h>

namespace {

/// The panels of a site that has as many channels as there can be.
void GiveAllChannels() {
    for (int number = 1; number <= ConfigClass::PanelCount; ++number)
        Global::Configuration().Panel(number).setModel(2);
}

void ExportChannels(benchmark::State& state) {
    const Bed bed;
    GiveAllChannels();
    const QString path = bed.Path(QStringLiteral("channels.txt"));
    for (auto step : state) {
        const ChannelSheetExport sheet(Global::Configuration());
        sheet.Write(path);
        state.counters["lines"] = sheet.Lines();
    }
}
BENCHMARK(ExportChannels)->Unit(benchmark::kMillisecond)->UseRealTime();

void ImportChannels(benchmark::State& state) {
    const Bed bed;
    GiveAllChannels();
    const QString path = bed.Path(QStringLiteral("channels.txt"));
    ChannelSheetExport(Global::Configuration()).Write(path);
    for (auto step : state) {
        ConfigClass site;
        ChannelSheetImport sheet(site);
        sheet.Read(path);
        state.counters["changed"] = sheet.Changed();
    }
}
BENCHMARK(ImportChannels)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
