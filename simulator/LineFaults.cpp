#include "simulator/LineFaults.h"

#include <utility>

namespace Sim {

void LineFaults::Spoil(Bytes& reply, std::mt19937& random) {
    if (std::exchange(alien, false)) {
        // Another address of the bus, 1 to 64, never the module's own.
        const auto step = 1 + random() % 63;
        reply[0] = static_cast<std::uint8_t>((reply[0] - 1 + step) % 64 + 1);
        reply.erase(reply.end() - 2, reply.end());
        AppendCrc(reply);
    }
    if (corrupt > 0) {
        --corrupt;
        reply.back() ^= static_cast<std::uint8_t>(1U << random() % 8);
    }
    if (std::exchange(surplus, false)) {
        reply.push_back(static_cast<std::uint8_t>(random()));
    }
    if (std::exchange(cut, false)) {
        reply.pop_back();
    }
}

} // namespace Sim
