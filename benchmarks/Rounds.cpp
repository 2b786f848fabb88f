// What the program itself takes of a round, and what it keeps of the memory.

#include "Bed.h"

#include "bus/wPolling.h"
#include "core/Forms.h"
#include "model/Models.h"
#include "screens/Screens.h"
#include "support/FakeLink.h"

#include <QApplication>
#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

/// A module that has nothing to tell: any read gives zeros.
QByteArray Nothing(const QByteArray& frame) {
    if (frame[1] != 3)
        return frame;
    const QByteArray words(2 * qsizetype(frame[5]), '\0');
    const QByteArray reply = frame.left(2) + char(words.size()) + words;
    const auto crc = quint16(CommFunctions::CRC16(reply + QByteArray(2, '\0'), int(reply.size())));
    return reply + char(crc & 0xFF) + char(crc >> 8);
}

std::unique_ptr<wPolling> Engine(int panels) {
    auto link = std::make_unique<FakeLink>();
    link->answer = Nothing;
    auto engine = std::make_unique<wPolling>(std::move(link));
    engine->Form_Load();
    engine->setRun(true);
    for (int number = 1; number <= panels; ++number) {
        Global::Configuration().Panel(number).setModel(Models::Q7100);
        Global::Configuration().Panel(number).setActive(true);
        Global::Configuration().Panel(number).setPresent(true);
    }
    return engine;
}

/// One round on a line that answers at once: without the two rests and the wire, all of it is the
/// program's own time.
void OwnTimeOfARound(benchmark::State& state) {
    const Bed bed;
    const RestlessClock clock;
    const auto engine = Engine(64);
    for (auto step : state)
        engine->RunComm();
    engine->Form_Unload();
}
BENCHMARK(OwnTimeOfARound)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// A turn over 64 good modules with the mandated rests: 25 ms ahead of the frame here, the other
/// 25 ms are the timer's and counted by its number of rounds.
void TurnOver64(benchmark::State& state) {
    const Bed bed;
    const QString bus = bed.Path(QStringLiteral("bus"));
    QStringList arguments = {QStringLiteral("--link"), bus, QStringLiteral("--quiet")};
    for (int number = 1; number <= 63; ++number)
        arguments << QStringLiteral("--model") << QStringLiteral("%1=Q7100").arg(number);
    QProcess simulator;
    simulator.start(QStringLiteral(KORVANELLE_BUILD_DIR "/simulator/korvanelle-sim"), arguments);
    simulator.waitForStarted();
    simulator.waitForReadyRead(5000);
    wPolling engine(platform::MakeSerialPort([&](int) { return QString(bus); }));
    engine.Form_Load();
    engine.setRun(true);
    for (int number = 1; number <= 63; ++number) {
        Global::Configuration().Panel(number).setModel(Models::Q7100);
        Global::Configuration().Panel(number).setActive(true);
        Global::Configuration().Panel(number).setPresent(true);
    }
    QEventLoop loop;
    QObject::connect(&engine, &wPolling::PollDone, &loop, &QEventLoop::quit);
    const auto turn = [&] { loop.exec(); };
    turn();
    for (auto step : state)
        turn();
    engine.Form_Unload();
    simulator.terminate();
    simulator.waitForFinished();
}
BENCHMARK(TurnOver64)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

/// Bytes in use before and behind a great number of routed events, console and files included.
void MemoryOfEvents(benchmark::State& state) {
    const Bed bed;
    const RestlessClock clock;
    RegisterScreens();
    const auto engine = Engine(1);
    Forms::Show(QStringLiteral("wRunAlarms"));
    const auto route = [&](int count) {
        for (int i = 0; i < count; ++i) {
            EventClass event(qint16(1 + i % 64), qint16(1 + i % 12), qint16(i / 2 % 2),
                             qint16(i % 2));
            engine->SendEvent(event);
            if (i % 100 == 0)
                QApplication::processEvents();
        }
    };
    route(10000);
    const size_t before = mallinfo2().uordblks;
    for (auto step : state)
        route(int(state.range(0)));
    const size_t after = mallinfo2().uordblks;
    state.counters["bytes_before"] = double(before);
    state.counters["bytes_grown"] = double(after) - double(before);
    Forms::UnloadAllBut({});
    engine->Form_Unload();
}
BENCHMARK(MemoryOfEvents)->Arg(1000000)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);

} // namespace
