#pragma once

#include "events/DirectPrinting.h"
#include "events/PrinterTest.h"

#include <QList>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <optional>

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
    /// Puts the printer on another port as soon as the line under way is out, so that no closing of
    /// the port waits. What failed before is tried there at once.
    void Use(const QString& port, const QString& settings);
    /// Where it prints as soon as the line under way is out.
    QString Port() const { return next_ ? next_->port : printer_.Port(); }
    QString Settings() const { return next_ ? next_->settings : printer_.Settings(); }
    /// Prints a test line with the settings of a port string, as soon as the line under way is out;
    /// the others queue until it is over. The printer's own port is closed for it and stays what it
    /// is. `done` comes from the event loop.
    void PrintTest(const QString& portString,
                   std::function<void(const PrinterTest::Result& result)> done);
    /// Prints lines of no event in one piece, as soon as the line under way is out; those of events
    /// queue until it is over. A printer that takes a line no more gets none of the rest. `done`
    /// comes from the event loop with the error, empty if all is well.
    void PrintReport(const QStringList& lines, std::function<void(const QString& error)> done);
    /// Waits for the lines that still queue, at the end of the program; no longer than a line may
    /// take. What isn't out by then counts as not printed.
    void Finish();
    /// At the start of the program: takes over what the former run didn't print and didn't tell.
    void Recall();
    /// Lines that were not printed and not told on paper yet.
    int Unprinted() const { return unprinted_; }

private:
    enum class Current { Nothing, Line, Note };
    /// Somebody else's turn with the port: called again until it gives true.
    using Turn = std::function<bool()>;
    struct Choice {
        QString port;
        QString settings;
    };

    void Lend(Turn turn);
    bool TakeTurns();
    bool LetTurnFinishItsLine();
    /// Something was put under way.
    bool Send();
    void Settle(const QString& error);
    void Fail();
    void Miss(int lines);
    void Keep() const;
    void Forget();
    void SetTimer();

    DirectPrinting& printer_;
    QTimer timer_;
    QStringList waiting_; // the first is under way when current_ is a line
    QList<Turn> turns_;
    std::optional<Choice> next_; // that a turn is to take
    QString turnError_;          // of the line that the first of them printed
    Current current_ = Current::Nothing;
    int unprinted_ = 0;
    int noted_ = 0; // of these, on the note that is under way
    bool refusing_ = false;
    qint64 nextTry_ = 0; // of the monotonic clock
};
