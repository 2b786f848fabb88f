#pragma once

/// Lets pending events of the one event loop run, from inside a long operation.
void Yield();

/// The same without the operator's input, which waits: a dialog that a touch opens would hold up
/// whatever yields for as long as it stands.
void YieldWithoutInput();

/// The same, and what the operator has touched or typed until now is thrown away.
void YieldDroppingInput();
