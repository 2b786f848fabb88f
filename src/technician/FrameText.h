#pragma once

#include "bus/BusDiagnosis.h"
#include "core/DateTimes.h"

#include <QString>

/// A frame of the bus on its own, with what only its neighbours tell.
struct TracedFrame {
    BusDiagnosis::Frame frame;
    DateTime time = 0;
    /// First register of the read that this replies to, -1 for any other frame: a reply doesn't
    /// bear it.
    int askedRegister = -1;
};

/// A frame as a technician reads it.
namespace FrameText {

/// Frame of a number that is still kept.
TracedFrame Traced(const BusDiagnosis& diagnosis, quint64 number);

/// "12:00:00.123", 12 characters.
QString Time(const TracedFrame& traced);
/// "TX" or "RX", as the program sees it.
QString Direction(const TracedFrame& traced);
/// Bytes as "05 03 00 90". Of more than are kept three dots stand for the rest.
QString Hex(const TracedFrame& traced);
/// Address, function, register and words in the language in use; what no frame can be is told as
/// such.
QString Decoded(const TracedFrame& traced);

} // namespace FrameText
