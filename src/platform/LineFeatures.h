#pragma once

#include "platform/SerialLink.h"

#include <linux/serial.h>
#include <optional>

namespace platform {

/// Asks a driver to hand on each byte as it comes: USB adapters gather short replies up to 16 ms
/// otherwise. `timer` is the file in which the driver of FTDI adapters has that time in ms.
LineFeatures::Answer AskForLowLatency(const DeviceControl& control, int handle,
                                      const QString& timer);

/// The direction of a two-wire line, switched by the driver around each frame for as long as this
/// holds it.
class Rs485Direction {
public:
    /// Keeps the delays and the polarity of RTS that the board came with.
    LineFeatures::Answer Take(const DeviceControl& control, int handle);
    /// Leaves the device as it was found.
    void Release(const DeviceControl& control, int handle);
    bool IsTaken() const { return former_.has_value(); }

private:
    std::optional<serial_rs485> former_;
};

} // namespace platform
