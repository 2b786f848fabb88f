#include "events/EventPrinter.h"

#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "events/HistoProcs.h"
#include "platform/Clock.h"

#include <utility>

using platform::Clock;

namespace {

/// Rest between two looks at a printer that takes its time, ms.
constexpr int BusyStep = 10;
constexpr int LongestFinish = 2000;

} // namespace

EventPrinter::EventPrinter(DirectPrinting& printer)
    : printer_(printer) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Advance(); });
}

void EventPrinter::Print(const QString& line) {
    ErrorHandling::Guard("EventPrinter.Print", [&] {
        if (printer_.Port().isEmpty())
            return;
        // A try that is due puts its note ahead of the line.
        if (refusing_)
            Advance();
        if (!refusing_ && waiting_.size() >= MostWaiting) {
            refusing_ = true;
            nextTry_ = 0;
        }
        if (refusing_) {
            Miss(1);
            return;
        }
        waiting_ += line;
        Advance();
    });
}

void EventPrinter::Advance() {
    ErrorHandling::Guard("EventPrinter.Advance", [&] {
        if (printer_.Port().isEmpty()) {
            Forget();
            return;
        }
        if (current_ != Current::Nothing)
            Settle(printer_.Advance());
        while (current_ == Current::Nothing && Send())
            continue;
        SetTimer();
    });
}

/// Lines that queue go ahead of the note: it tells of what came after them.
bool EventPrinter::Send() {
    // Somebody else prints on the same port, such as a test of its settings.
    if (printer_.IsBusy())
        printer_.Advance();
    if (printer_.IsBusy())
        return false;
    if (!waiting_.isEmpty()) {
        current_ = Current::Line;
        Settle(printer_.PrintLine(waiting_.first()));
        return true;
    }
    if (!refusing_ || Clock::Current().MonotonicMs() < nextTry_)
        return false;
    refusing_ = false;
    noted_ = unprinted_;
    current_ = Current::Note;
    Settle(printer_.PrintLine(HistoProcs::UnprintedLine(noted_)));
    return true;
}

void EventPrinter::Settle(const QString& error) {
    if (!error.isEmpty()) {
        Fail();
        return;
    }
    if (printer_.IsBusy())
        return;
    if (std::exchange(current_, Current::Nothing) == Current::Line) {
        waiting_.removeFirst();
        return;
    }
    unprinted_ -= noted_;
    if (unprinted_ == 0)
        Faults::Clear(Faults::Kind::PrinterNotReached);
    else
        Miss(0);
}

void EventPrinter::Fail() {
    current_ = Current::Nothing;
    refusing_ = true;
    nextTry_ = Clock::Current().MonotonicMs() + TryPause;
    Miss(int(std::exchange(waiting_, {}).size()));
}

void EventPrinter::Miss(int lines) {
    unprinted_ += lines;
    Faults::Set(Faults::Kind::PrinterNotReached, QString::number(unprinted_));
}

void EventPrinter::Forget() {
    timer_.stop();
    waiting_.clear();
    current_ = Current::Nothing;
    refusing_ = false;
    if (std::exchange(unprinted_, 0) > 0)
        Faults::Clear(Faults::Kind::PrinterNotReached);
}

void EventPrinter::SetTimer() {
    if (current_ != Current::Nothing || !waiting_.isEmpty())
        timer_.start(BusyStep);
    else if (refusing_)
        timer_.start(int(qMax<qint64>(nextTry_ - Clock::Current().MonotonicMs(), BusyStep)));
    else
        timer_.stop();
}

void EventPrinter::Finish() {
    const qint64 end = Clock::Current().MonotonicMs() + LongestFinish;
    while (current_ != Current::Nothing && Clock::Current().MonotonicMs() < end) {
        Clock::Current().Sleep(BusyStep);
        Advance();
    }
    timer_.stop();
}
