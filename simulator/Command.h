#pragma once

#include "simulator/Bus.h"

#include <ostream>
#include <stdexcept>
#include <string>

namespace Sim {

/// What is wrong with a command, for the one who gave it.
class CommandError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Verb {
    Active,
    Normal,
    Fault,
    Ack,
    Horn,
    Mute,
    Unmute,
    Corrupt,
    Delay,
    Surplus,
    Short,
    Alien,
    Terminator,
    Twin,
    Swap,
    Odd,
    Show,
    Quit
};

/// One command of the console or the timeline.
struct Command {
    Verb verb = Verb::Quit;
    int address = 0;
    int argument = 0;                  ///< Channel, number of replies, milliseconds, or 1 for on.
    Contact contact = Contact::Normal; ///< For `Active`, `Normal` and `Fault`.
};

/// Reads a command:
///   active M C, normal M C, fault M C first|second|cable     the wiring of channel C of module M
///   ack M                                                    the key on the module's front
///   odd M                                                    an event with a code of no list
///   mute M, unmute M, corrupt M N, delay M MS, surplus M, short M, alien M     the link
///   terminator M on|off    without it the replies of M are hit by reflections
///   twin M on|off          a second module answers to the address of M at the same time
///   swap on|off            the wires of the master's adapter, for all modules
///   show M, quit
/// Throws `CommandError`.
Command ParseCommand(const std::string& text);

/// Throws `CommandError` when the bus lacks the module or the module lacks the channel.
void CheckCommand(const Command& command, const Bus& bus);

/// Carries out a command that `CheckCommand` passes; `Show` writes to `out`, `Quit` does nothing.
void RunCommand(const Command& command, Bus& bus, std::ostream& out);

} // namespace Sim
