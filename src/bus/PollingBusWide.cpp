// What stands around the work on the whole bus: the notice of a synchronisation, and midnight.

#include "bus/wPolling.h"

#include "bus/BusProgress.h"
#include "bus/BusWatch.h"
#include "bus/OutOfServiceWatch.h"
#include "bus/Registers.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "core/Pointer.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "events/HistoProcs.h"
#include "platform/DiskFlush.h"
#include "platform/ServiceManager.h"

#include <QScopeGuard>
#include <QScopedValueRollback>
#include <optional>

using ErrorHandling::Guard;

/// Brings PC and modules to one picture: forced states and event memories are thrown away, and
/// the list of alarms is made anew of what the channels show.
void wPolling::SynchroGeneraleBus() {
    // A second touch of a button may wait for the yield inside.
    if (synchronising_)
        return;
    const QScopedValueRollback synchronising(synchronising_, true);
    const Boxes::Held held;
    Guard("wPolling.SynchroGeneraleBus", [&] {
        Pointer::Hourglass();
        std::optional<BusProgress> notice;
        Guard("wPolling.SynchroGeneraleBus", [&] { notice.emplace(GetText(30015)); });
        synchro_.onStep = [&](const BusStep& step) {
            if (notice)
                notice->Tell(step);
        };
        const auto untold = qScopeGuard([this] { synchro_.onStep = nullptr; });
        Yield();
        if (closing_)
            return;
        // A trace that can't be written is told, and keeps the bus from nothing.
        Guard("wPolling.SynchroGeneraleBus", [] {
            Trace::Write(Trace::SystemLine(DateTimes::Now(), QStringLiteral("SYNCHR0"),
                                           QStringLiteral("SYNCHRO")));
        });
        Q_EMIT Synchronising(true);
        TellState();
        ReinitComm();
        JudgeAnew();
        Pointer::Hourglass();
        synchro_.Agree();
        if (EndWanted())
            return;
        // What was touched meanwhile, when nothing could answer, was meant for what stood then.
        YieldDroppingInput();
    });
    watch_->PollingBegins();
    Q_EMIT Synchronising(false);
    Pointer::Default();
}

void wPolling::MidnightSynchro(const QString& notice) {
    Guard("wPolling.MidnightSynchro", [&] {
        BusProgress progress(notice);
        synchro_.onStep = [&](const BusStep& step) { progress.Tell(step); };
        const auto untold = qScopeGuard([this] { synchro_.onStep = nullptr; });
        MidnightSynchro();
        watch_->PollingBegins();
    });
}

/// A day of the month that differs from the last second's is a midnight; the first tick differs
/// from the start of the program. What goes wrong is told when all is done: nobody is there at
/// midnight to answer a box, and the clocks of the modules are set by it.
void wPolling::tmrMidnight_Timer() {
    const ErrorHandling::Postponed postponed;
    Guard("wPolling.tmrMidnight_Timer", [&] {
        // Each second, and never inside a round: what was written goes to the disk itself.
        if (!inRound_)
            platform::DiskFlush::Pay();
        FollowClock();
        // A bus that nobody runs has no rounds; one that runs must show them itself.
        if (!run_)
            platform::ServiceManager::Current().Beat();
        outOfService_->Check();
        Guard("HistoProcs.DoMidnightActions", [&] { second_.Look(); });
        const DateTime now = DateTimes::Now();
        const DateTime last = std::exchange(lastMidnightCheck_, now);
        if (DateTimes::DateOf(last).day() == DateTimes::DateOf(now).day())
            return;
        // A clock that leaves a whole day out was set, perhaps to a wrong date: nothing is deleted
        // by it ahead of the next midnight.
        constexpr DateTime Day = 1;
        HistoProcs::DoMidnightActions(second_, now - last < Day);
        outOfService_->TellDay();
        if (run_) {
            MidnightSynchro();
            watch_->PollingBegins();
            const QScopedValueRollback inRound(inRound_, true);
            YieldDroppingInput();
        }
        ResetClocks(now);
    });
}

/// The broadcast goes through the queue while the bus runs, else at once.
void wPolling::ResetClocks(DateTime now) {
    const auto command = std::make_shared<CommandClass>(0, Registers::Clock, Words{0}, now);
    // At the end of the program it goes out now: stored, it would set the clocks at the next start,
    // which is no midnight.
    if (run_ && !EndWanted()) {
        SendCommand(command);
        return;
    }
    queue_.CarryOut(*command);
}
