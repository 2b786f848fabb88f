#pragma once

#include "simulator/Bus.h"
#include "simulator/Frame.h"

#include <QByteArray>
#include <optional>

/// The simulator's modules at the far end of a FakeLink, without a line between.
namespace SimulatedLine {

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

} // namespace SimulatedLine
