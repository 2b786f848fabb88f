#include "simulator/LineFaults.h"

#include <utility>
#include <vector>

namespace Sim {

namespace {

// A byte on the line is a start bit, eight data bits from the lowest on, and a stop bit.
constexpr std::size_t ByteBits = 10;

std::vector<bool> Levels(const Bytes& bytes) {
    std::vector<bool> levels;
    for (const auto byte : bytes) {
        levels.push_back(false);
        for (int bit = 0; bit < 8; ++bit) {
            levels.push_back((byte >> bit & 1) != 0);
        }
        levels.push_back(true);
    }
    return levels;
}

// A receiver takes a byte from each start bit that it sees, whether its stop bit is right or not.
Bytes Received(const std::vector<bool>& levels) {
    Bytes bytes;
    for (std::size_t at = 0; at < levels.size();) {
        if (levels[at]) {
            ++at;
            continue;
        }
        unsigned byte = 0;
        for (std::size_t bit = 0; bit < 8; ++bit) {
            const auto place = at + 1 + bit;
            byte |= (place >= levels.size() || levels[place] ? 1U : 0U) << bit;
        }
        bytes.push_back(static_cast<std::uint8_t>(byte));
        at += ByteBits;
    }
    return bytes;
}

// Where one of two drivers pulls the line down it is down.
Bytes Collided(const Bytes& reply, std::size_t bitsLater) {
    const auto one = Levels(reply);
    auto line = one;
    line.resize(one.size() + bitsLater, true);
    for (std::size_t i = 0; i < one.size(); ++i) {
        line[i + bitsLater] = line[i + bitsLater] && one[i];
    }
    return Received(line);
}

// One byte in 16 is hit, and behind one reply in four the tail rings on like a start bit.
void Ring(Bytes& reply, std::mt19937& random) {
    for (auto& byte : reply) {
        if (random() % 16 == 0) {
            byte ^= static_cast<std::uint8_t>(1U << random() % 8);
        }
    }
    if (random() % 4 == 0) {
        reply.push_back(0xFF);
    }
}

} // namespace

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
    if (twin) {
        reply = Collided(reply, 1 + random() % (ByteBits - 1));
    }
    if (ringing) {
        Ring(reply, random);
    }
}

} // namespace Sim
