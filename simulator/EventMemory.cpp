#include "simulator/EventMemory.h"

#include <algorithm>

namespace Sim {

void EventMemory::Store(int channel, std::uint16_t param, std::uint16_t aff, std::uint32_t clock) {
    if (events_.size() == Capacity) {
        events_.pop_front();
    }
    events_.push_back((static_cast<std::uint32_t>(channel) & 0xFU) << 28U | (param & 0xFU) << 24U |
                      (aff & 0xFU) << 20U | (clock & 0xFFFFFU));
}

void EventMemory::Drop(std::size_t count) {
    const auto dropped = static_cast<std::ptrdiff_t>(std::min(count, events_.size()));
    events_.erase(events_.begin(), events_.begin() + dropped);
}

std::uint16_t EventMemory::Word(std::size_t index) const {
    if (index / 2 >= events_.size()) {
        return 0;
    }
    const auto event = events_[index / 2];
    return static_cast<std::uint16_t>(index % 2 == 0 ? event >> 16U : event & 0xFFFFU);
}

} // namespace Sim
