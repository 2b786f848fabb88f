#pragma once

#include "bus/CommandClass.h"
#include "events/EventClass.h"

/// What those who work for the polling need of it.
class BusEngine {
public:
    virtual ~BusEngine() = default;

    /// The program is to end: what takes long stops behind the exchange that runs.
    virtual bool EndWanted() const = 0;
    /// Stamps and numbers an event made elsewhere and routes it.
    virtual void SendEvent(EventClass& event) = 0;
    /// Number of the next event.
    virtual qint32 IncEvtNum() = 0;
    /// Makes the event of a panel that came or went.
    virtual void TraitePanelMove(int address, bool present) = 0;
    /// Counts a failed exchange with a panel.
    virtual void AddError(int address) = 0;
    /// Puts a command into the queue unless it already waits there.
    virtual void SendCommand(const CommandPtr& command) = 0;
};
