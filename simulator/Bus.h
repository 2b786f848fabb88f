#pragma once

#include "simulator/Frame.h"
#include "simulator/LineFaults.h"
#include "simulator/Module.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>

namespace Sim {

constexpr int LastAddress = 64;

/// A module with its title and its link.
struct Station {
    std::string title;
    std::unique_ptr<Module> module;
    LineFaults faults;
};

/// A reply, and how long it has to wait before it is sent.
struct Reply {
    Bytes frame;
    Milliseconds delay{0};
};

/// The modules on the line, and what they make of a request.
class Bus {
public:
    using WriteListener = std::function<void(const Request&)>;

    /// `seed` decides the random bits of the line faults.
    explicit Bus(TimeSource now, std::uint32_t seed = 1);

    /// Puts a module on the line. The address, 1 to 64, must be free.
    void Add(int address, Model model, std::string title);

    /// The module of that address, or null.
    Station* Find(int address);
    const Station* Find(int address) const;

    /// Called for each write that at least one module receives.
    void setWriteListener(WriteListener listener) { listener_ = std::move(listener); }

    /// The two wires of the master's adapter are swapped: its bits arrive inverted, so no module
    /// hears a frame and none answers.
    void setSwapped(bool swapped) { swapped_ = swapped; }

    /// Lets the modules obey a request; gives the reply, if one is due.
    std::optional<Reply> Handle(const Request& request);

private:
    std::optional<Reply> Noise();
    void Broadcast(const Request& request);

    TimeSource now_;
    std::mt19937 random_;
    std::map<int, Station> stations_;
    WriteListener listener_;
    bool swapped_ = false;
};

} // namespace Sim
