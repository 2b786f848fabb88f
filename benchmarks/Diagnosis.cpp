// What the counting adds to an exchange: at most 1 µs, on the machine's own clock.

#include "bus/BusDiagnosis.h"

#include <benchmark/benchmark.h>

namespace {

/// The longest reply and the one of most exchanges.
void CountAnExchange(benchmark::State& state) {
    BusDiagnosis diagnosis;
    QByteArray frame(8, '\0');
    const QByteArray reply(state.range(0), '\0');
    int address = 0;
    for (auto step : state) {
        address = address % BusDiagnosis::PanelCount + 1;
        frame.data()[0] = char(address);
        diagnosis.Sent(frame);
        diagnosis.Replied(BusDiagnosis::Outcome::Answered, reply);
    }
}
BENCHMARK(CountAnExchange)->Arg(7)->Arg(253);

} // namespace
