#pragma once

#include "platform/Clock.h"

/// What every fuzz function stands on.
namespace Fuzz {

/// An application without files: the words of the built base, a clock that stands at noon of
/// 15 March 2024 and moves by sleeps only, dates of the C locale, no message boxes, no sound, no
/// settings. The site stays from run to run.
platform::TestClock& Prepare();

/// Ends the process when `holds` is false.
void Require(bool holds, const char* what);

} // namespace Fuzz
