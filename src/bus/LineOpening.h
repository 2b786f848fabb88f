#pragma once

#include "platform/SerialLink.h"

/// Opens the line of the bus, and notes in the trace what its device took or refused of what makes
/// replies come at once and switches the direction of a two-wire line. Nothing is noted of a device
/// that doesn't offer it. Throws RunTimeError `PortUnavailable`.
void OpenLine(platform::SerialLink& link);
