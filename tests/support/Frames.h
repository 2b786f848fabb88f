#pragma once

#include "support/FakeModules.h"

#include <sstream>
#include <string>
#include <vector>

/// Frames of the line as a test writes them down: "read 5 132 1", "write 5 17 0" and
/// "writes 5 25 1 2 3" with module, register and number of words or values.
namespace Frames {

inline std::string Said(const QByteArray& frame) {
    const bool several = frame[1] == 16;
    std::ostringstream text;
    text << (frame[1] == 3 ? "read " : (several ? "writes " : "write ")) << int(quint8(frame[0]))
         << ' ' << FakeModules::WordAt(frame, 2);
    const int values = several ? FakeModules::WordAt(frame, 4) : 1;
    for (int i = 0; i < values; ++i)
        text << ' ' << FakeModules::WordAt(frame, (several ? 7 : 4) + 2 * i);
    return text.str();
}

inline std::vector<std::string> Said(const QList<QByteArray>& frames) {
    std::vector<std::string> said;
    for (const QByteArray& frame : frames)
        said.push_back(Said(frame));
    return said;
}

} // namespace Frames
