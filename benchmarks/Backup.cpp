// A backup of a year, and what the polls of the bus notice of it.

#include "Bed.h"

#include "bus/wPolling.h"
#include "events/Backup.h"
#include "events/Restore.h"
#include "model/Models.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <benchmark/benchmark.h>
#include <ctime>

namespace {

constexpr int LinesOfAYear = 1000000;

/// Twelve files of lines that repeat no more than those of a plant do: 140 bytes each.
void WriteYear(const Bed& bed) {
    quint32 number = 1;
    for (int month = 1; month <= 12; ++month) {
        QFile file(bed.Path(QStringLiteral("Histo2026%1.his").arg(month, 2, 10, QChar(u'0'))));
        if (!file.open(QIODevice::WriteOnly))
            return;
        for (int i = 0; i < LinesOfAYear / 12; ++i) {
            number = number * 1664525 + 1013904223;
            QByteArray line = "2026-01-02 ";
            for (int field = 0; field < 6; ++field)
                line += QByteArray::number(number >> (2 * field)) + ' ';
            file.write(line.leftJustified(138, 'x', true) + "\r\n");
        }
    }
}

/// Lets the bus go on until the work is over; gives the longest time between two rounds, ms.
template <class Over> double LongestGap(wPolling& engine, const Over& over) {
    QElapsedTimer since;
    since.start();
    qint64 longest = 0;
    const auto connection = QObject::connect(&engine, &wPolling::RoundDone, [&] {
        longest = qMax(longest, since.nsecsElapsed());
        since.restart();
    });
    while (!over())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    QObject::disconnect(connection);
    return double(longest) / 1e6;
}

void BackupOfAYear(benchmark::State& state) {
    const Bed bed;
    const QString bus = bed.Path(QStringLiteral("bus"));
    const Simulator simulator(bus);
    WriteYear(bed);
    SaveCurrentConfig();
    QDir().mkdir(bed.Path(QStringLiteral("stick")));
    wPolling engine(platform::MakeSerialPort([&](int) { return QString(bus); }));
    engine.Form_Load();
    engine.setRun(true);
    Global::Configuration().Panel(1).setModel(Models::Q7100);
    Global::Configuration().Panel(1).setActive(true);
    Global::Configuration().Panel(1).setPresent(true);
    QElapsedTimer alone;
    alone.start();
    state.counters["gap_without_ms"] = LongestGap(engine, [&] { return alone.elapsed() > 5000; });
    for (auto step : state) {
        QElapsedTimer writing;
        writing.start();
        const std::clock_t processor = std::clock();
        BackupJob job(bed.Path(QStringLiteral("stick")), false, nullptr);
        state.counters["gap_backup_ms"] =
            LongestGap(engine, [&] { return job.Outcome() != BackupJob::State::Running; });
        state.SetIterationTime(double(writing.nsecsElapsed()) / 1e9);
        state.counters["processor_s"] = double(std::clock() - processor) / CLOCKS_PER_SEC;
        state.counters["megabytes"] = double(QFileInfo(job.Path()).size()) / 1e6;
        if (job.Outcome() != BackupJob::State::Complete)
            state.SkipWithError("no backup");
        QElapsedTimer unpacking;
        unpacking.start();
        platform::BackgroundTask task(
            [path = job.Path(), places = Restore::Places::OfProgram()](
                BackupFile::Progress& progress) { Restore::Stage(path, places, progress); });
        state.counters["gap_unpack_ms"] = LongestGap(engine, [&] { return task.Done(); });
        state.counters["unpack_s"] = double(unpacking.elapsed()) / 1000;
    }
    engine.Form_Unload();
}
BENCHMARK(BackupOfAYear)->Unit(benchmark::kSecond)->UseManualTime()->Iterations(1);

} // namespace
