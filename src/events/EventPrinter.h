#pragma once

#include "events/DirectPrinting.h"

#include <QStringList>
#include <QTimer>

/// Prints the lines of events without ever waiting for the printer: they queue and leave with the
/// event loop. A printer that isn't there or takes nothing is left alone for a while; what comes
/// meanwhile isn't printed but counted, stands on the console's band, and is told on paper as soon
/// as the printer is back.
class EventPrinter {
public:
    /// Rest between two tries of a printer that failed, ms.
    static constexpr qint64 TryPause = 30000;
    /// Lines that wait for a slow printer; more are counted as if it had failed.
    static constexpr int MostWaiting = 1000;

    /// `printer` stays with its owner, who sets its port; without a port nothing is printed.
    explicit EventPrinter(DirectPrinting& printer);

    /// Takes a line in the printer's character set.
    void Print(const QString& line);
    /// Goes on with what is under way, or tries again. Called by its own timer.
    void Advance();
    /// Waits for the lines that still queue, at the end of the program; no longer than a line may
    /// take.
    void Finish();
    /// Lines that were not printed and not told on paper yet.
    int Unprinted() const { return unprinted_; }

private:
    enum class Current { Nothing, Line, Note };

    /// Something was put under way.
    bool Send();
    void Settle(const QString& error);
    void Fail();
    void Miss(int lines);
    void Forget();
    void SetTimer();

    DirectPrinting& printer_;
    QTimer timer_;
    QStringList waiting_; // the first is under way when current_ is a line
    Current current_ = Current::Nothing;
    int unprinted_ = 0;
    int noted_ = 0; // of these, on the note that is under way
    bool refusing_ = false;
    qint64 nextTry_ = 0; // of the monotonic clock
};
