#pragma once

#include "simulator/Bus.h"
#include "simulator/Frame.h"

#include <QByteArray>
#include <functional>
#include <optional>

/// The simulator's modules at the far end of a FakeLink, without a line between.
namespace SimulatedLine {

/// Registers of a module with a memory: how many events wait, the first of them, two words each,
/// and the receipt for as many as it says.
constexpr int CountRegister = 144;
constexpr int MemoryRegister = 146;
constexpr int ReceiptRegister = 288;
/// Kinds of trouble that a link can get.
constexpr int Troubles = 6;

/// What a whole frame asks for; none when it is no request.
inline std::optional<Sim::Request> RequestOf(const QByteArray& frame) {
    Sim::FrameReader reader;
    reader.Feed(Sim::Bytes(frame.cbegin(), frame.cend()), Sim::Milliseconds(0));
    return reader.Next();
}

/// The bytes of a reply, empty for silence.
inline QByteArray BytesOf(const std::optional<Sim::Reply>& reply) {
    return reply ? QByteArray(reinterpret_cast<const char*>(reply->frame.data()),
                              qsizetype(reply->frame.size()))
                 : QByteArray();
}

/// Gives a link the trouble `kind`, from 0. `random` draws a number below its argument.
inline void GiveTrouble(Sim::LineFaults& faults, int kind, const std::function<int(int)>& random) {
    switch (kind) {
    case 0:
        faults.muted = true;
        break;
    case 1:
        faults.corrupt = 1 + random(3);
        break;
    case 2:
        faults.surplus = true;
        break;
    case 3:
        faults.cut = true;
        break;
    case 4:
        faults.alien = true;
        break;
    default:
        faults.ringing = true;
    }
}

} // namespace SimulatedLine
