// How long each screen takes from its name to its first picture, and what a flush to the disk
// costs.

#include "Bed.h"

#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/Forms.h"
#include "platform/DiskFlush.h"
#include "screens/Screens.h"
#include "support/FakeLink.h"
#include "technician/Technician.h"

#include <QApplication>
#include <QWidget>
#include <benchmark/benchmark.h>

namespace {

void OpenScreen(benchmark::State& state, const QString& form) {
    const Bed bed;
    RegisterScreens();
    RegisterConfigScreens();
    RegisterTechnician();
    wPolling engine(std::make_unique<FakeLink>());
    engine.Form_Load();
    for (auto step : state) {
        Forms::Show(form);
        auto* widget = dynamic_cast<QWidget*>(Forms::Find(form));
        if (widget == nullptr) {
            state.SkipWithError("the screen isn't there");
            break;
        }
        benchmark::DoNotOptimize(widget->grab());
        state.PauseTiming();
        Forms::Unload(form);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        state.ResumeTiming();
    }
    engine.Form_Unload();
    Forms::UnloadAllBut({});
}

/// A trace with new lines, a history and the settings, as they are each second of a busy bus.
void FlushToDisk(benchmark::State& state) {
    const Bed bed;
    for (auto step : state) {
        state.PauseTiming();
        Trace::Write(QString(130, u'x'));
        platform::DiskFlush::Owe(Trace::FileName(DateTimes::Now()));
        state.ResumeTiming();
        platform::DiskFlush::Pay();
    }
}
BENCHMARK(FlushToDisk)->Unit(benchmark::kMillisecond)->UseRealTime();

const bool screensRegistered = [] {
    for (const char* form : {"wMain", "wRunAlarms", "wHistoric", "wTeleCmdes", "wPolling", "wHelp",
                             "dlgUserCodes", "dlgDefPwds", "dlgKeyboard", "dlgFilePicker"})
        benchmark::RegisterBenchmark((std::string("OpenScreen/") + form).c_str(), OpenScreen,
                                     QString::fromLatin1(form))
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    return true;
}();

} // namespace
