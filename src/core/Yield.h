#pragma once

/// Lets pending events of the one event loop run, from inside a long operation.
void Yield();
