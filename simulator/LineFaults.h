#pragma once

#include "simulator/Frame.h"

#include <random>

namespace Sim {

/// The troubles of one module's link, made on demand. The counted ones end by themselves.
struct LineFaults {
    bool muted = false;    ///< The module neither hears nor answers.
    int corrupt = 0;       ///< So many replies to come get a wrong CRC.
    Milliseconds delay{0}; ///< Every reply comes so much later.
    bool surplus = false;  ///< The next reply gets a byte too many.
    bool cut = false;      ///< The next reply loses its last byte.
    bool alien = false;    ///< The next reply bears another address, with a right CRC.
    bool ringing = false;  ///< No terminator: reflections hit bits, the more the longer the reply.
    bool twin = false;     ///< A second module of the same address answers a few bits later.

    /// Does to a reply what is due, and counts it off.
    void Spoil(Bytes& reply, std::mt19937& random);
};

} // namespace Sim
