// What the screens of the configuration cost by themselves, on a site that is full: 64 panels of
// models, every text at its length, 1,000 mirror rules.

#include "Bed.h"
#include "Touch.h"

#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "config_screens/mirrors/wBusMiroirs.h"
#include "core/FormNames.h"
#include "screens/Screens.h"
#include "support/FakeLink.h"
#include "technician/Technician.h"

#include <benchmark/benchmark.h>
#include <utility>

namespace {

class FullBed {
public:
    FullBed()
        : engine_(std::make_unique<FakeLink>()) {
        RegisterScreens();
        RegisterConfigScreens();
        RegisterTechnician();
        engine_.Form_Load();
        ConfigClass& site = Global::Configuration();
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            site.Panel(number).setModel(1);
            site.Panel(number).setActive(true);
        }
        site.Mirrors().RemoveAll();
        for (int rule = 0; rule < 1000; ++rule)
            site.Mirrors().Add(qint16(1 + rule * 7 % 32), qint16(1 + rule / 32 % 12),
                               qint16(33 + rule * 5 % 32), qint16(1 + rule % 12), 1);
    }
    ~FullBed() {
        engine_.Form_Unload();
        CloseScreens();
    }
    FullBed(const FullBed&) = delete;
    FullBed& operator=(const FullBed&) = delete;

private:
    Bed bed_;
    wPolling engine_;
};

/// From the name of a screen to its first picture.
void OpenFull(benchmark::State& state, const QString& form) {
    const FullBed bed;
    for (auto step : state) {
        QWidget* screen = OpenScreenOf(form);
        if (screen == nullptr) {
            state.SkipWithError("the screen isn't there");
            return;
        }
        benchmark::DoNotOptimize(screen->grab());
        state.PauseTiming();
        CloseScreens();
        state.ResumeTiming();
    }
}

/// From the touch to what it changed being painted; there and back in turn, so that each touch
/// changes something.
void Change(benchmark::State& state, const QString& form, const QString& there,
            const QString& back) {
    const FullBed bed;
    QWidget* screen = OpenScreenOf(form);
    auto* button = screen == nullptr ? nullptr : screen->findChild<QWidget*>(there);
    auto* other = screen == nullptr ? nullptr : screen->findChild<QWidget*>(back);
    if (button == nullptr || other == nullptr) {
        state.SkipWithError("the control isn't there");
        return;
    }
    QApplication::processEvents();
    for (auto step : state) {
        Press(*button);
        screen->repaint();
        std::swap(button, other);
    }
}

/// Of 1,000 rules all rows, sorted.
void FillMirrors(benchmark::State& state) {
    const FullBed bed;
    auto* screen = dynamic_cast<wBusMiroirs*>(OpenScreenOf(FormNames::wBusMiroirs));
    for (auto step : state) {
        screen->FillTable();
        benchmark::DoNotOptimize(screen->grab());
    }
}
BENCHMARK(FillMirrors)->Unit(benchmark::kMillisecond)->UseRealTime();

const bool configuringRegistered = [] {
    for (const QString& form :
         {FormNames::wBusModules, FormNames::wBusPanneau, FormNames::dlgBusCopy,
          FormNames::wBusMiroirs, FormNames::wBusMirrorOne, FormNames::dlgEditMirror,
          FormNames::wParamBiblio, FormNames::wParamConsignes, FormNames::wParamEcran,
          FormNames::wSysComm, FormNames::wSysConfSon, FormNames::dlgSysTime,
          FormNames::wParamPrinter, FormNames::dlgParamPrinter})
        benchmark::RegisterBenchmark(("OpenFull/" + form.toStdString()).c_str(), OpenFull, form)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    const struct {
        QString form;
        const char* there;
        const char* back;
    } changes[] = {{FormNames::wBusModules, "imgNavig_2", "imgNavig_1"},
                   {FormNames::wBusPanneau, "imgControl_1", "imgControl_0"},
                   {FormNames::wBusPanneau, "imgActive", "imgActive"},
                   {FormNames::dlgEditMirror, "imgPlusMoins_1", "imgPlusMoins_0"},
                   {FormNames::wParamBiblio, "imgControl_3", "imgControl_2"},
                   {FormNames::wParamConsignes, "imgControl_3", "imgControl_2"},
                   {FormNames::wParamEcran, "lblAffich_0", "lblAffich_0"},
                   {FormNames::wSysConfSon, "imgControl_9", "imgControl_8"},
                   {FormNames::dlgSysTime, "imgControl_1", "imgControl_0"}};
    for (const auto& [form, there, back] : changes)
        benchmark::RegisterBenchmark(("Change/" + form.toStdString() + '/' + there).c_str(), Change,
                                     form, QString::fromLatin1(there), QString::fromLatin1(back))
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    return true;
}();

} // namespace
