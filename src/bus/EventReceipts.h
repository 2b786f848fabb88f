#pragma once

#include "bus/CommFunctions.h"
#include "platform/Clock.h"

#include <QHash>
#include <algorithm>

/// What was taken of the modules' event memories and not yet surely dropped there. A receipt
/// whose reply is lost may have been obeyed or not: obeyed and sent again it would drop events
/// that nobody has read, not obeyed and forgotten it would have the same events read twice.
class EventReceipts {
public:
    static constexpr qsizetype WordsAnEvent = 2;

    /// A receipt of the module is in the queue.
    bool Waits(int address) const { return notes_.value(address).waits; }
    /// The words that the waiting receipt stands for, empty when the module has dropped them.
    Words Receipted(int address) const {
        const Note note = notes_.value(address);
        return note.taken.first(note.receipted);
    }
    /// The receipt has waited long, or over a stop of the bus: the module may have lost or dropped
    /// by itself what it stands for.
    bool IsDoubtful(int address) const {
        const Note note = notes_.value(address);
        return note.doubtful || Now() - note.since > LongWait;
    }
    /// Makes the receipts that wait now doubtful.
    void DoubtAll() {
        for (Note& note : notes_)
            note.doubtful = true;
    }
    /// Number of events at the head of `memory` that were taken before, for a module in which
    /// `waiting` events stand. Less of them than were taken is another memory. A receipt for a part
    /// of what was taken may have been obeyed though it was given up: the rest is known then.
    int Known(int address, const Words& memory, int waiting) {
        const auto note = notes_.find(address);
        if (note == notes_.end())
            return 0;
        const int known = Common(note->taken, memory, waiting);
        if (known > 0 || note->receipted == 0)
            return known;
        const Words rest = note->taken.sliced(note->receipted);
        const int left = Common(rest, memory, waiting);
        if (left > 0) {
            note->taken = rest;
            note->receipted = 0;
        }
        return left;
    }
    /// Notes a read of the memory, of which `known` events were taken before; its receipt goes to
    /// the queue.
    void Take(int address, const Words& memory, int known) {
        Note& note = notes_[address];
        if (known * WordsAnEvent < memory.size())
            note.taken = memory;
        note.receipted = memory.size();
        note.since = Now();
        note.waits = true;
        note.doubtful = false;
    }
    /// The module has dropped what the receipt stands for.
    void Settle(int address) {
        Note& note = notes_[address];
        note.taken = note.taken.sliced(note.receipted);
        note.receipted = 0;
        note.waits = false;
        if (note.taken.isEmpty())
            notes_.remove(address);
    }
    /// The module has dropped all that was taken.
    void Forget(int address) { notes_.remove(address); }
    /// The receipt was given up: what was taken may still stand in the module.
    void GiveUp(int address) { notes_[address].waits = false; }

private:
    /// A receipt goes out ahead of the next poll. Longer is long, ms.
    static constexpr qint64 LongWait = 2000;

    static int Common(const Words& taken, const Words& memory, int waiting) {
        const qsizetype common = std::min(taken.size(), memory.size());
        if (waiting * WordsAnEvent < taken.size() ||
            !std::equal(taken.cbegin(), taken.cbegin() + common, memory.cbegin()))
            return 0;
        return int(common / WordsAnEvent);
    }

    static qint64 Now() { return platform::Clock::Current().MonotonicMs(); }

    struct Note {
        Words taken;
        qsizetype receipted = 0; // of them those of the last receipt
        qint64 since = 0;        // monotonic, ms
        bool waits = false;
        bool doubtful = false;
    };
    /// By the number that a panel bears, which a damaged site file may put out of all bounds.
    QHash<int, Note> notes_;
};
