#pragma once

#include "platform/Clock.h"

/// A clock that went back by more than this was set.
inline constexpr platform::DateTime ClockSlack = 2 * platform::OneSecond;
