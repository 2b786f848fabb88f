#pragma once

#include "simulator/Scenario.h"

namespace Sim {

/// Gives out the steps of a scenario when their time has come.
class Timeline {
public:
    explicit Timeline(const Scenario& scenario);

    /// When the next step is due, if there is one.
    std::optional<Milliseconds> NextDue() const;

    /// The next step that is due at the time `now`, once.
    std::optional<Command> Take(Milliseconds now);

private:
    std::vector<TimelineEntry> entries_;
    std::optional<Milliseconds> loop_;
    Milliseconds loopStart_{0};
    std::size_t next_ = 0;
};

} // namespace Sim
