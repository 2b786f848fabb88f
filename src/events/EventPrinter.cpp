#include "events/EventPrinter.h"

#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/SLVfonctions.h"
#include "events/HistoProcs.h"
#include "platform/Clock.h"

#include <memory>
#include <utility>

using platform::Clock;

namespace {

/// Rest between two looks at a printer that takes its time, ms.
constexpr int BusyStep = 10;
constexpr int LongestFinish = 2000;

const QString Section = QStringLiteral("Printer");
const QString UnprintedKey = QStringLiteral("Unprinted");

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
        if (printer_.Port().isEmpty())
            Forget();
        if (current_ != Current::Nothing)
            Settle(printer_.Advance());
        const bool isFree = current_ == Current::Nothing && TakeTurns();
        if (printer_.Port().isEmpty())
            Forget();
        while (isFree && current_ == Current::Nothing && Send())
            continue;
        SetTimer();
    });
}

void EventPrinter::Use(const QString& port, const QString& settings) {
    next_ = Choice{port, settings};
    Lend([this] {
        // Of several that waited for the same line the last one counts.
        const auto choice = std::exchange(next_, std::nullopt);
        if (!choice)
            return true;
        printer_.ClosePrinter();
        printer_.setPort(choice->port);
        printer_.setSettings(choice->settings);
        nextTry_ = 0;
        return true;
    });
}

void EventPrinter::PrintTest(const QString& portString,
                             std::function<void(const PrinterTest::Result& result)> done) {
    const auto test = std::make_shared<PrinterTest>(portString);
    Lend([this, test, done = std::move(done)] {
        printer_.ClosePrinter();
        if (!test->Advance())
            return false;
        QTimer::singleShot(0, &timer_, [result = test->Told(), done] { done(result); });
        return true;
    });
}

void EventPrinter::PrintReport(const QStringList& lines,
                               std::function<void(const QString& error)> done) {
    Lend([this, rest = lines, done = std::move(done)]() mutable {
        if (turnError_.isEmpty() && !rest.isEmpty()) {
            turnError_ = printer_.PrintLine(rest.takeFirst());
            return false;
        }
        QTimer::singleShot(0, &timer_, [error = turnError_, done] { done(error); });
        return true;
    });
}

void EventPrinter::Lend(Turn turn) {
    turns_ += std::move(turn);
    Advance();
}

/// True when the port is free again.
bool EventPrinter::TakeTurns() {
    while (!turns_.isEmpty()) {
        if (!LetTurnFinishItsLine())
            return false;
        // A turn that fails is over.
        bool over = true;
        ErrorHandling::Guard("EventPrinter.TakeTurns", [&] { over = turns_.first()(); });
        if (!over)
            return false;
        turns_.removeFirst();
        turnError_.clear();
    }
    return true;
}

bool EventPrinter::LetTurnFinishItsLine() {
    if (!printer_.IsBusy())
        return true;
    if (const QString error = printer_.Advance(); !error.isEmpty())
        turnError_ = error;
    return !printer_.IsBusy();
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
    Keep();
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
    if (lines > 0)
        Keep();
}

/// With each line: nobody knows when the program ends.
void EventPrinter::Keep() const {
    IniWrite(Section, UnprintedKey, QString::number(unprinted_));
}

void EventPrinter::Forget() {
    timer_.stop();
    waiting_.clear();
    current_ = Current::Nothing;
    refusing_ = false;
    if (std::exchange(unprinted_, 0) == 0)
        return;
    Faults::Clear(Faults::Kind::PrinterNotReached);
    Keep();
}

void EventPrinter::SetTimer() {
    if (current_ != Current::Nothing || !waiting_.isEmpty() || !turns_.isEmpty())
        timer_.start(BusyStep);
    else if (refusing_)
        timer_.start(int(qMax<qint64>(nextTry_ - Clock::Current().MonotonicMs(), BusyStep)));
    else
        timer_.stop();
}

void EventPrinter::Finish() {
    const qint64 end = Clock::Current().MonotonicMs() + LongestFinish;
    while ((current_ != Current::Nothing || !turns_.isEmpty()) &&
           Clock::Current().MonotonicMs() < end) {
        Clock::Current().Sleep(BusyStep);
        Advance();
    }
    timer_.stop();
    current_ = Current::Nothing;
    if (!waiting_.isEmpty())
        Miss(int(std::exchange(waiting_, {}).size()));
}

void EventPrinter::Recall() {
    ErrorHandling::Guard("EventPrinter.Recall", [&] {
        unprinted_ =
            Bytes::Greater(Bytes::LongVal(IniRead(Section, UnprintedKey, QStringLiteral("0"))), 0);
        if (unprinted_ == 0)
            return;
        refusing_ = true;
        nextTry_ = 0;
        Miss(0);
        Advance();
    });
}
