// What it costs the routing to forward an event, and how fast a spool empties into a log server by
// TLS.

#include "Bed.h"

#include "core/Faults.h"
#include "events/EventForwarder.h"
#include "support/Rsyslog.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace {

EventClass Alarm(int number) {
    EventClass event(qint16(1 + number % 64), qint16(1 + number % 12), 0, 1);
    event.setGDH(DateTimes::Now());
    event.setNum(number);
    return event;
}

void SwitchOn(const QString& authority, int port) {
    ForwardSettings settings;
    settings.syslog = true;
    settings.server.host = QStringLiteral("localhost");
    settings.server.port = quint16(port);
    settings.server.authority = authority;
    settings.Write();
}

/// Text and spool, with nobody there to take it.
void ForwardEvent(benchmark::State& state) {
    const Bed bed;
    if (state.range(0) != 0)
        SwitchOn(QString(), FreePort());
    EventForwarder forwarder;
    forwarder.Start();
    int number = 0;
    for (auto step : state)
        forwarder.Forward(Alarm(++number));
    Faults::Forget();
}
BENCHMARK(ForwardEvent)->ArgName("on")->Arg(0)->Arg(1)->UseRealTime();

/// From the first connection until the server has written the last of 20,000.
void EmptySpool(benchmark::State& state) {
    constexpr int Events = 20000;
    if (Rsyslog::Program().isEmpty()) {
        state.SkipWithError("rsyslogd isn't there");
        return;
    }
    for (auto step : state) {
        state.PauseTiming();
        const Bed bed;
        Rsyslog server(bed.Path(QStringLiteral(".")));
        SwitchOn(bed.Path(QStringLiteral("ca.pem")), server.Port());
        EventForwarder forwarder;
        forwarder.Start();
        for (int number = 1; number <= Events; ++number)
            forwarder.Forward(Alarm(number));
        server.Start();
        while (forwarder.Present().phase != EventForwarder::Phase::Connected)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        state.ResumeTiming();
        while (server.Lines() < Events)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        state.PauseTiming();
        forwarder.Stop();
        Faults::Forget();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * Events);
}
BENCHMARK(EmptySpool)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace
