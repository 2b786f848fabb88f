#pragma once

#include <cstdint>
#include <deque>

namespace Sim {

/// The event memory of the Q family: first in, first out; when full, the oldest event is lost.
class EventMemory {
public:
    static constexpr std::size_t Capacity = 200;
    /// The channel number that stands for the panel as a whole.
    static constexpr int PanelChannel = 15;

    /// Stores an event; `channel` and `param` and `aff` have four bits, `clock` has twenty.
    void Store(int channel, std::uint16_t param, std::uint16_t aff, std::uint32_t clock);

    /// Drops the oldest events, all of them when there are not so many.
    void Drop(std::size_t count);

    std::size_t Count() const { return events_.size(); }

    /// Word `index` of the memory, two words an event, the oldest first; 0 behind the last event.
    std::uint16_t Word(std::size_t index) const;

private:
    std::deque<std::uint32_t> events_; // word 0 in the upper half, word 1 in the lower
};

} // namespace Sim
