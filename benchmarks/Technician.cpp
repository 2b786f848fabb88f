// What the technician's tools cost: a search of the whole bus with ten silent addresses, and a
// module's front that is watched live.

#include "Bed.h"
#include "Touch.h"

#include "bus/BusDiagnosis.h"
#include "bus/CommFunctions.h"
#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "screens/Screens.h"
#include "technician/ModuleFront.h"
#include "technician/Technician.h"

#include <QElapsedTimer>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <ctime>

namespace {

/// 54 modules; every sixth address and those above 63 are silent.
class Plant {
public:
    Plant() {
        const QString bus = bed_.Path(QStringLiteral("bus"));
        QStringList arguments{QStringLiteral("--link"), bus, QStringLiteral("--quiet")};
        for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
            if (address % 6 != 0)
                arguments += {QStringLiteral("--model"), QString::number(address) + "=Q7100"};
        }
        process_.start(QStringLiteral(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim"), arguments);
        process_.waitForStarted();
        process_.waitForReadyRead(5000);
        RegisterScreens();
        RegisterTechnician();
        engine = std::make_unique<wPolling>(platform::MakeSerialPort([bus](int) { return bus; }));
        engine->Form_Load();
        engine->CommBus().setPortOpen(true);
    }
    ~Plant() {
        CloseScreens();
        engine->Form_Unload();
        engine.reset();
        process_.terminate();
        process_.waitForFinished();
    }
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    std::unique_ptr<wPolling> engine;

private:
    Bed bed_;
    QProcess process_;
};

void SearchOfTheBus(benchmark::State& state) {
    const Plant plant;
    QWidget* finder = OpenScreenOf(FormNames::wTechFindPanels);
    for (auto step : state)
        Press(*finder->findChild<QWidget*>(QStringLiteral("imgFind_1")));
    int silent = 0;
    for (int address = 1; address <= ConfigClass::PanelCount; ++address)
        silent += plant.engine->Diagnosis().LastOf(address) == BusDiagnosis::Outcome::NoAnswer;
    state.counters["silent"] = silent;
    state.counters["floor_s"] = silent * CommFunctions::ReadDeadline(1, 9600) / 1000.0;
}
BENCHMARK(SearchOfTheBus)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);

/// Twenty seconds of a front with the polling at rest.
void LiveFront(benchmark::State& state) {
    constexpr int Seconds = 20;
    const Plant plant;
    Global::Configuration().Panel(1).setModel(1);
    auto* front = dynamic_cast<ModuleFront*>(Forms::Load(FormNames::wTechEtatModule));
    QTimer::singleShot(Seconds * 1000, qApp, [] { Forms::Unload(FormNames::wTechEtatModule); });
    const std::clock_t begun = std::clock();
    for (auto step : state)
        front->Present(Global::Configuration().Panel(1));
    state.counters["core_percent"] =
        100.0 * double(std::clock() - begun) / CLOCKS_PER_SEC / Seconds;
    // Lamps and horn are one exchange each.
    state.counters["refresh_ms"] =
        2000.0 * Seconds / double(plant.engine->Diagnosis().SinceStart(1).exchanges);
}
BENCHMARK(LiveFront)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);

} // namespace
