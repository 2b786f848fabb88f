// What it costs the routing to forward an event, and how fast a spool empties into a log server by
// TLS.

#include "Bed.h"

#include "core/Faults.h"
#include "events/EventForwarder.h"
#include "support/Rsyslog.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>

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

/// Lets the event loop work off what is there; gives the processor's time that it took, ms.
double Turn() {
    const auto now = [] {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    };
    const double begin = now();
    QCoreApplication::processEvents();
    const double took = now() - begin;
    if (took < 0.1)
        QThread::msleep(5);
    return took;
}

/// From the first connection until the server has written the last of 20,000. "longest" is the
/// longest work between two turns of the bus, agreement on the encryption included.
void EmptySpool(benchmark::State& state) {
    constexpr int Events = 20000;
    if (Rsyslog::Program().isEmpty()) {
        state.SkipWithError("rsyslogd isn't there");
        return;
    }
    double longest = 0;
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
            longest = std::max(longest, Turn());
        state.ResumeTiming();
        for (int turn = 0; turn % 32 != 0 || server.Lines() < Events; ++turn)
            longest = std::max(longest, Turn());
        state.PauseTiming();
        forwarder.Stop();
        Faults::Forget();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * Events);
    state.counters["longest"] = longest;
}
BENCHMARK(EmptySpool)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace
