#include "simulator/Timeline.h"

namespace Sim {

Timeline::Timeline(const Scenario& scenario)
    : entries_(scenario.timeline)
    , loop_(scenario.loop) {}

std::optional<Milliseconds> Timeline::NextDue() const {
    if (next_ >= entries_.size()) {
        return std::nullopt;
    }
    return loopStart_ + entries_[next_].at;
}

std::optional<Command> Timeline::Take(Milliseconds now) {
    const auto due = NextDue();
    if (!due || *due > now) {
        return std::nullopt;
    }
    const auto command = entries_[next_++].command;
    if (loop_ && next_ == entries_.size()) {
        next_ = 0;
        loopStart_ += *loop_;
    }
    return command;
}

} // namespace Sim
