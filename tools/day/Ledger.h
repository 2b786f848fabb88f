#pragma once

#include "day/Plant.h"

#include <QHash>
#include <QQueue>
#include <QString>

class EventClass;

/// Every event once and in order: from the module's memory through the engine to the console's
/// rows, the history, the trace and the paper. Keeps no more than what is still under way.
class Ledger {
public:
    void Raised(int address, EventKey key) { raised_[address].enqueue(key); }
    /// The first reading of the bus throws the memories away.
    void Forget() { raised_.clear(); }
    /// The engine has routed an event.
    void Routed(const EventClass& event);
    /// The rows of the console say what the events since the last call did to them.
    void CheckConsole();
    /// What the files got since the last call follows what was routed. To be called at least when
    /// the clock is set.
    void CheckFiles();
    /// Bytes from the printer.
    void Printed(const QByteArray& paper);
    /// A day's record of so many panels is in the history from here on.
    void CheckDay(int panels);
    /// Nothing is under way any more.
    void CheckEnd(Plant& plant, int unprinted);

    /// Says what is wrong; the first ones in words, the others counted.
    void Fail(const QString& words);
    int Failures() const { return failures_; }
    qint64 Events() const { return events_; }
    /// Events that the engine made up of standing states, beside those of the memories.
    qint64 MadeUp() const { return madeUp_; }
    qint64 NotOnPaper() const { return notOnPaper_; }

private:
    struct Row {
        qint32 id;
        qint32 number;
    };
    struct Line {
        qint32 number;
        QString key;
    };
    QStringList NewLines(const QString& folder, const QString& pattern);

    QHash<int, QQueue<EventKey>> raised_;
    QHash<quint32, Row> changed_;
    QHash<quint32, qint32> states_; // of modules without a memory
    QQueue<Line> trace_;
    QHash<QString, qint64> readTo_; // by path
    qint64 events_ = 0;
    qint64 madeUp_ = 0;
    qint64 onPaper_ = 0;
    qint64 notOnPaper_ = 0;
    qint32 lastHistory_ = 0; // number of the last line
    qint32 lastRouted_ = 0;
    int dayRecords_ = 0;
    int failures_ = 0;
};
