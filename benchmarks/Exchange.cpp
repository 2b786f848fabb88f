// One exchange over a pseudo-terminal, beside libmodbus doing the same with the same far end.

#include "Bed.h"

#include "bus/CommFunctions.h"

#include <benchmark/benchmark.h>
#include <modbus.h>

namespace {

/// The event memory, the only block that is long enough.
constexpr int FirstRegister = 146;

void OwnExchange(benchmark::State& state) {
    const Bed bed;
    const QString bus = bed.Path(QStringLiteral("bus"));
    const Simulator simulator(bus);
    const RestlessClock clock;
    const auto link = platform::MakeSerialPort([&](int) { return QString(bus); });
    link->setSettings(QStringLiteral("115200,N,8,1"));
    link->setPortOpen(true);
    Words words(state.range(0));
    for (auto step : state) {
        if (!LitMots(*link, 1, FirstRegister, words))
            state.SkipWithError("the exchange failed");
    }
}
BENCHMARK(OwnExchange)->Arg(1)->Arg(124)->Unit(benchmark::kMicrosecond)->UseRealTime();

void LibmodbusExchange(benchmark::State& state) {
    const Bed bed;
    const QString bus = bed.Path(QStringLiteral("bus"));
    const Simulator simulator(bus);
    modbus_t* master = modbus_new_rtu(QFile::encodeName(bus).constData(), 115200, 'N', 8, 1);
    modbus_set_slave(master, 1);
    if (modbus_connect(master) != 0)
        state.SkipWithError("the port doesn't open");
    std::vector<uint16_t> words(size_t(state.range(0)));
    for (auto step : state) {
        if (modbus_read_registers(master, FirstRegister, int(words.size()), words.data()) < 0) {
            state.SkipWithError("the exchange failed");
            break;
        }
    }
    modbus_close(master);
    modbus_free(master);
}
BENCHMARK(LibmodbusExchange)->Arg(1)->Arg(124)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace
