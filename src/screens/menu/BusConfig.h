#pragma once

#include <QStringList>

namespace platform {
class SerialLink;
}

/// What is shown of the settings of a link, for reading: port number, speed, word of the parity in
/// the language in use, data bits, stop bits.
QStringList BusConfigTexts(const platform::SerialLink& link);

/// Labels `lblBusConfig` of these, in their order.
inline constexpr int FirstBusConfigLabel = 5;
