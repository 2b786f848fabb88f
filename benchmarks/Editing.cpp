// What the screens of the configuration cost while the bus runs: how long a change takes to be
// seen, and the longest gap between two rounds while somebody taps on them.

#include "Bed.h"
#include "Touch.h"

#include "bus/wPolling.h"
#include "config_screens/ConfigScreens.h"
#include "core/FormNames.h"
#include "model/Models.h"
#include "screens/Screens.h"
#include "screens/touch/TouchImage.h"
#include "technician/Technician.h"

#include <QApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>

namespace {

/// A bus of one good module, the longest time between the ends of two rounds, and the answer "no"
/// to each question.
class Bus {
public:
    Bus()
        : simulator_(bed_.Path(QStringLiteral("bus"))) {
        RegisterScreens();
        RegisterConfigScreens();
        RegisterTechnician();
        Messages::Install([](const QString&, int, bool) { return int(Messages::No); });
        engine_ = std::make_unique<wPolling>(
            platform::MakeSerialPort([this](int) { return bed_.Path(QStringLiteral("bus")); }));
        engine_->Form_Load();
        PanelClass& panel = Global::Configuration().Panel(1);
        panel.setModel(Models::Q7100);
        panel.setActive(true);
        engine_->setRun(true);
        QObject::connect(engine_.get(), &wPolling::RoundDone, [this] {
            if (since_.isValid())
                longest_ = std::max(longest_, since_.elapsed());
            since_.start();
        });
    }
    ~Bus() {
        engine_->Form_Unload();
        CloseScreens();
    }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    void LetRun(int milliseconds) {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < milliseconds;)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    void Forget() { longest_ = 0; }
    qint64 Longest() const { return longest_; }

private:
    Bed bed_;
    Simulator simulator_;
    std::unique_ptr<wPolling> engine_;
    QElapsedTimer since_;
    qint64 longest_ = 0;
};

/// Whoever waits for an answer gets none: the dialog goes with the next turn of the event loop.
void CloseDialogs() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (auto* dialog = dynamic_cast<Forms::Form*>(QApplication::activeModalWidget()))
                dialog->Unload();
        },
        Qt::QueuedConnection);
}

/// A tap each 20 ms on the buttons of a screen, which is opened again when it was left.
void GapWhileTapping(benchmark::State& state, const QString& form) {
    Bus bus;
    bus.LetRun(2000);
    std::mt19937 random(7);
    for (auto step : state) {
        bus.Forget();
        for (int tap = 0; tap < 200; ++tap) {
            auto* screen = dynamic_cast<QWidget*>(Forms::Find(form));
            if (screen == nullptr) {
                Forms::UnloadAllBut({});
                screen = OpenScreenOf(form);
            }
            if (screen == nullptr) {
                state.SkipWithError("the screen isn't there");
                return;
            }
            const QList<TouchImage*> buttons = screen->findChildren<TouchImage*>();
            CloseDialogs();
            if (TouchImage* button = buttons.value(qsizetype(random() % unsigned(buttons.size()))))
                Press(*button);
            bus.LetRun(20);
        }
    }
    state.counters["longest_gap_ms"] = double(bus.Longest());
}

const bool editingRegistered = [] {
    for (const QString& form :
         {FormNames::wMain, FormNames::wBusModules, FormNames::wBusPanneau, FormNames::wBusMiroirs,
          FormNames::wParamBiblio, FormNames::wParamConsignes, FormNames::wParamEcran,
          FormNames::wParamPrinter, FormNames::wSysComm, FormNames::wSysConfSon})
        benchmark::RegisterBenchmark(("GapWhileTapping/" + form.toStdString()).c_str(),
                                     GapWhileTapping, form)
            ->Unit(benchmark::kSecond)
            ->UseRealTime()
            ->Iterations(1);
    return true;
}();

} // namespace
