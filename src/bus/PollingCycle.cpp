// One round of the bus: the command queue, then the next panel that is due.

#include "bus/wPolling.h"

#include "bus/BusWatch.h"
#include "bus/ClockSlack.h"
#include "bus/Registers.h"
#include "core/Boxes.h"
#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/ServiceManager.h"

#include <QScopedValueRollback>

using ErrorHandling::Guard;

namespace {

/// Error counters run modulo this.
constexpr int CounterLimit = 32000;
/// Consecutive failures after which a panel is missing.
constexpr int MissingAfter = 3;
/// Long failures after which the pace of the tries falls to ten minutes.
constexpr int SlowAfter = 3;
constexpr int SlowMinutes = 10;
/// Polls that read the states of `P5000` and `P5500`.
constexpr int StateWords = 12;

void Count(PanelClass& panel, int counter) {
    panel.setErrCptr(counter, qint16((panel.ErrCptr(counter) + 1) % CounterLimit));
}

/// Register and number of words of a model's poll; no words for a model without one.
struct Poll {
    qint32 registerNo;
    int words;
};
Poll PollOf(int model) {
    if (Models::IsQFamily(model))
        return {Registers::EventCount, 1};
    if (model == Models::Q6200XT)
        return {Registers::Flag, 1};
    if (Models::IsRemoteControlled(model))
        return {Registers::State, StateWords};
    return {0, 0};
}

QString CountersOf(const PanelClass& panel) {
    return Bytes::Padded(panel.ErrCptr(0), 4) + QStringLiteral("  ") + QStringLiteral("  ") +
           Bytes::Padded(panel.ErrCptr(1), 2) + QStringLiteral("  ") + QStringLiteral("  ") +
           Bytes::Padded(panel.ErrCptr(2), 2) + QStringLiteral("  ") + QStringLiteral("  ") +
           DateTimes::LongTime(panel.NextPoll());
}

} // namespace

/// The timer fires once and is started again only by the last line, so that rounds never overlap
/// and the 25 ms are the rest between them. A screen that stops and starts the bus in a yield
/// starts the timer as well: the tick inside the round is let go by.
void wPolling::RunComm() {
    tmrPoll_.stop();
    if (inRound_)
        return;
    const QScopedValueRollback inRound(inRound_, true);
    const Boxes::Held held;
    const bool through = Guard("wPolling.RunComm", [&] {
        if (EndIfClosing())
            return;
        if (!run_) {
            queue_.LeaveWalk();
            return;
        }
        if (queue_.Work([this] { return EndIfClosing(); }) != CommandQueue::Walk::Through) {
            if (!closing_)
                tmrPoll_.start(0);
            return;
        }
        queue_.Purge();
        FollowClock();
        bool turnEnded = false;
        const int address = PickPanel(turnEnded);
        if (address > 0)
            PollPanel(address);
        lastRound_ = DateTimes::LongTime(DateTimes::Now());
        pollPointer_ = qint16(pollPointer_ & 63);
        platform::ServiceManager::Current().Beat();
        Q_EMIT RoundDone(address);
        if (turnEnded && polledInTurn_ > 0) {
            Q_EMIT PollDone();
            polledInTurn_ = 0;
        }
        if (turnEnded && synchro_.ContinueUpdate())
            Q_EMIT UpdateDone();
        if (!unloaded_)
            tmrPoll_.start(PollRest);
    });
    if (!through && !closing_)
        StopRound();
    TellState();
}

/// An unload can arrive in any yield. It closes the port and stores the queue; what is left here
/// is to stop.
bool wPolling::EndIfClosing() {
    if (!closing_)
        return false;
    run_ = false;
    Form_Unload();
    Forms::Unload(FormNames::wPolling);
    return true;
}

/// Each second and each round. When the machine's time is set back, as it is each autumn, the times
/// of the next polls and of waiting commands go with it: no panel may fall silent and no
/// acknowledgement wait until the old time comes round again.
void wPolling::FollowClock() {
    const DateTime now = DateTimes::Now();
    const DateTime latest = std::exchange(lastRoundTime_, now);
    const DateTime back = latest - now;
    if (back <= ClockSlack)
        return;
    watch_->ClockWentBack(latest);
    for (int address = 1; address <= PanelCount; ++address) {
        PanelClass& panel = Global::Configuration().Panel(address);
        panel.setNextPoll(panel.NextPoll() - back);
    }
    queue_.FollowClock(now, back);
}

/// The address of the next panel that is due, or 0. A pointer that stopped at 64 starts the next
/// search at 2: panel 1 is then reached only by a search that runs past 64.
int wPolling::PickPanel(bool& turnEnded) {
    if (pollPointer_ < 1)
        pollPointer_ = 1;
    const qint16 start = pollPointer_;
    const DateTime now = DateTimes::Now();
    do {
        pollPointer_ = qint16((pollPointer_ & 63) + 1);
        if (pollPointer_ == PanelCount)
            turnEnded = true;
        if (BusWatch::IsDue(pollPointer_, now))
            return pollPointer_;
    } while ((pollPointer_ & 63) != start);
    return 0;
}

void wPolling::PollPanel(int address) {
    ++polledInTurn_;
    polledPanel_ = address;
    PanelClass& panel = Global::Configuration().Panel(address);
    const Poll poll = PollOf(panel.Model());
    // One of a model that nobody knows is never asked, and is told as not polled.
    if (poll.words > 0) {
        watch_->Polled(address);
        panel.setNextPoll(DateTimes::Now() - platform::OneSecond);
        Words words(poll.words);
        if (LitMots(*link_, quint8(address), poll.registerNo, words)) {
            ExploitePanneau(panel, words);
            if (!panel.Present() || panel.ErrCptr(2) > 0)
                TraitePanelMove(address, true);
            if (panel.ErrCptr(1) > 0)
                panel.setErrCptr(1, qint16(panel.ErrCptr(1) - 1));
            panel.setErrCptr(2, 0);
        } else {
            AddError(address);
        }
    }
    panel.setAsked(true);
    errorTexts_[size_t(address)] = CountersOf(panel);
}

void wPolling::AddError(int address) {
    Guard("wPolling.AddError", [&] {
        PanelClass& panel = Global::Configuration().Panel(address);
        Count(panel, 0);
        Count(panel, 1);
        if (panel.ErrCptr(1) < MissingAfter)
            return;
        panel.setNextPoll(DateTimes::Now() + platform::OneMinute);
        // One further failure comes here again.
        panel.setErrCptr(1, MissingAfter - 1);
        Count(panel, 2);
        TraitePanelMove(address, false);
        if (panel.ErrCptr(2) >= SlowAfter)
            panel.setNextPoll(DateTimes::Now() + SlowMinutes * platform::OneMinute);
    });
}

/// False when the memory can't be read. The panel has just told its count: such a failure counts,
/// but it alone makes no loss.
bool wPolling::ReadMemory(int address, Words& memory) {
    if (LitMots(*link_, quint8(address), Registers::EventMemory, memory))
        return true;
    // The rest of a reply that takes longer than its deadline must not meet the next frame.
    CommFunctions::WaitForSilence(*link_);
    watch_->MemoryFailed(address, int(memory.size() / EventReceipts::WordsAnEvent));
    PanelClass& panel = Global::Configuration().Panel(address);
    if (panel.ErrCptr(1) < MissingAfter - 1)
        AddError(address);
    else
        Count(panel, 0);
    return false;
}
