#pragma once

#include "bus/CommandClass.h"
#include "bus/EventReceipts.h"
#include "core/DateTimes.h"

#include <functional>
#include <optional>
#include <set>

class BusWatch;

namespace platform {
class SerialLink;
}

/// The commands that wait for the bus, and the receipts of the event memories among them: carries
/// them out, gives up those that fail, and keeps the rest over a restart.
class CommandQueue {
public:
    /// Tries of a command that is carried out outside of the queue.
    static constexpr qint16 MaxTries = 4;

    CommandQueue(platform::SerialLink& link, BusWatch& watch)
        : link_(link)
        , watch_(watch) {}

    const CommandClasses& Commands() const { return commands_; }
    EventReceipts& Receipts() { return receipts_; }
    void Add(const CommandPtr& command) { commands_.Add(command); }
    void Clear() { commands_ = CommandClasses(); }

    /// Carries out one command if it is due.
    void TraiteCommande(CommandClass& command);
    /// Carries out a command at once, with up to four tries. Done, it is of the kind `Done`.
    void CarryOut(CommandClass& command);

    /// How a walk over the queue ended.
    enum class Walk {
        Through,
        Parted, ///< the time of this tick is over: the next walk goes on there
        Ended,  ///< `ended` was true
    };
    /// Carries out each command once a round, with a yield behind each.
    Walk Work(const std::function<bool()>& ended);
    /// Takes out what is done and what is given up.
    void Purge();
    /// Settles a walk that was parted and is not gone on with.
    void LeaveWalk();
    /// Forgets such a walk.
    void DropWalk() { walked_.clear(); }
    /// A command was given up.
    std::function<void(const CommandClass& command)> onGivenUp;

    /// The machine's time was set back by so much: what waits for a time goes with it.
    void FollowClock(DateTime now, DateTime back);
    /// Events of a module were read, `known` of them before; queues the receipt.
    void MemoryTaken(int address, const Words& memory, int known);
    /// The memory of a module was thrown away, surely or perhaps.
    void MemoryDropped(int address, bool surely);

    /// Takes the commands of the former run out of the settings, and puts those that wait there.
    void Restore();
    void Store() const;

private:
    static bool IsReceipt(const CommandClass& command);
    std::optional<bool> IsObeyedReceipt(const CommandClass& command);
    bool SendByType(CommandClass& command, QString& line);
    static void TraceWriteError(const CommandClass& command);

    platform::SerialLink& link_;
    BusWatch& watch_;
    CommandClasses commands_;
    EventReceipts receipts_;
    std::set<CommandPtr> walked_; // of a round that was parted in its queue
    bool restored_ = false;       // the commands of the former run are taken
};
