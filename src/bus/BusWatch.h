#pragma once

#include "bus/CommandClass.h"

#include <QHash>
#include <QMap>
#include <QString>

/// What a bus that runs leaves undone, and what the machine under it lacks: panels that the cycle
/// doesn't reach, event memories that can't be read, commands that were never taken, a clock that
/// was set back, a disk that fills. Keeps the standing faults of these.
class BusWatch {
public:
    /// Most events of one read: two words each, the largest read on the bus.
    static constexpr int MaxEvents = 62;

    /// The panel is to be polled now.
    static bool IsDue(int address, DateTime now);
    /// The panel was polled.
    void Polled(int address);
    /// From now on the panels can be polled; what was before doesn't count.
    void PollingBegins();
    /// Looks for active panels that are due and weren't polled for a minute; each 10 s. Those that
    /// wait as missing for their next try are not due.
    void CheckPolls(bool polling);
    /// The panel is told as not polled.
    bool IsUnpolled(int address) const { return unpolled_.contains(address); }

    /// How many events the next read of a memory may ask for.
    int ReadLimit(int address) const;
    /// A read of so many events went well, or not: the next one asks for half as many, until a
    /// read has got all that waited.
    void MemoryRead(int address, int events, int waiting);
    void MemoryFailed(int address, int events);
    /// Forgets what the reads came to; the link or the site is new.
    void ForgetMemories();

    /// A command was given up, or one was taken.
    void GivenUp(const CommandClass& command);
    void Taken(int module);
    /// Lets commands that were given up go after ten minutes.
    void CheckGivenUp();

    /// The machine's clock showed `latest` and was then set back.
    void ClockWentBack(DateTime latest);
    /// The times that come a second time are over when the clock passes the latest it had shown,
    /// and after two hours.
    void CheckClock();

    /// Looks how much of the disk is free.
    static void CheckDisk();

private:
    struct Memory {
        int limit = MaxEvents;
        int failures = 0;
    };
    struct Order {
        QString text;
        qint64 since = 0; // monotonic, ms
    };

    void TellMemories() const;
    void TellGivenUp() const;

    // By address: monotonic time from which an active panel is due and not polled, ms.
    QMap<int, qint64> dueSince_;
    QList<int> unpolled_;
    QMap<int, Memory> memories_;
    QMap<int, Order> givenUp_;
    DateTime latest_ = 0; // the clock's, before it went back; 0 for none
    qint64 wentBack_ = 0; // monotonic, ms
};
