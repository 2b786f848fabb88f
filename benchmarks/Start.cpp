// From the start of the process to the visible console, on a site that starts by itself. The sound
// files lie there but one: its writing is the program's next step behind the showing.

#include "Bed.h"

#include "core/SLVfonctions.h"

#include <QElapsedTimer>
#include <QThread>
#include <benchmark/benchmark.h>

namespace {

void StartToConsole(benchmark::State& state) {
    const Bed bed;
    const QString bus = bed.Path(QStringLiteral("bus"));
    const Simulator simulator(bus);
    IniWrite(QStringLiteral("Ports"), QStringLiteral("COM1"), bus);
    Global::Configuration().setAutoStart(true);
    SaveCurrentConfig();
    const QString program = bed.Path(QStringLiteral("korvanelle"));
    QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/src/korvanelle"), program);
    Config::ExportSounds([](int) { return 1; });
    const QString mark = bed.Path(QStringLiteral("AlarmSound99.wav"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (auto step : state) {
        QFile::remove(mark);
        QProcess process;
        process.setProcessEnvironment(environment);
        QElapsedTimer timer;
        timer.start();
        process.start(program, QStringList());
        while (!QFile::exists(mark) && timer.elapsed() < 10000)
            QThread::usleep(200);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        process.terminate();
        process.waitForFinished();
    }
}
BENCHMARK(StartToConsole)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

} // namespace
