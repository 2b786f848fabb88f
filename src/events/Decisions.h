#pragma once

#include "events/EventClass.h"

// Where an event goes. Each function weighs one row of the site's routing options and one flag of
// the channel, and changes nothing.

/// Shall this event drive the horn? Never for the models `P5000` and `P5500`.
bool IsToKlaxon(const EventClass& event);
/// Shall this event reach the alarm console?
bool IsToDisplay(const EventClass& event);
/// Shall this event be written to the history?
bool IsToHisto(const EventClass& event);
/// Shall this event be printed?
bool IsToPrint(const EventClass& event);
