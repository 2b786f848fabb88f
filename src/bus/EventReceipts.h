#pragma once

#include "bus/CommFunctions.h"

#include <QHash>
#include <algorithm>

/// What was taken of the modules' event memories and not yet surely dropped there. A receipt
/// whose reply is lost may have been obeyed or not: obeyed and sent again it would drop events
/// that nobody has read, not obeyed and forgotten it would have the same events read twice.
class EventReceipts {
public:
    static constexpr qint32 Register = 288;
    static constexpr qint32 MemoryRegister = 146;
    static constexpr int WordsAnEvent = 2;

    /// A receipt of the module is in the queue.
    bool Waits(int address) const { return notes_.value(address).waits; }
    /// The words that the last read took, empty when the module has dropped them.
    Words Taken(int address) const { return notes_.value(address).taken; }
    /// Notes a read of the memory; its receipt goes to the queue.
    void Take(int address, const Words& memory) { notes_[address] = {memory, true}; }
    /// The module has dropped what was taken.
    void Settle(int address) { notes_.remove(address); }
    /// The receipt was given up: what was taken may still stand in the module.
    void GiveUp(int address) { notes_[address].waits = false; }

    /// Does the memory begin with what was taken?
    bool BeginsWithTaken(int address, const Words& memory) const {
        const Words taken = Taken(address);
        return !taken.isEmpty() && memory.size() >= taken.size() &&
               std::equal(taken.cbegin(), taken.cend(), memory.cbegin());
    }

private:
    struct Note {
        Words taken;
        bool waits = false;
    };
    /// By the number that a panel bears, which a damaged site file may put out of all bounds.
    QHash<int, Note> notes_;
};
