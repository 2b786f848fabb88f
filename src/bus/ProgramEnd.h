#pragma once

#include "core/Rehearsal.h"

/// Ends everything in good order, the polling screen first. A rehearsal gives its place back to the
/// watch over the plant, which is told why.
void EndProgram(Rehearsal::Ending ending = Rehearsal::Ending::Asked);

/// Ends the watch over the plant in good order and puts a rehearsal in its place. The site is saved
/// as the program starts from it; false when it can't be.
bool BeginRehearsal();
