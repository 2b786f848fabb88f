#pragma once

#include "core/Rehearsal.h"

/// Ends everything in good order, the polling screen first. A rehearsal gives its place back to the
/// watch over the plant, which is told why.
void EndProgram(Rehearsal::Ending ending = Rehearsal::Ending::Asked);

/// Asks and, on OK, ends the watch over the plant in good order and puts a rehearsal in its place.
/// The site is saved as the program starts from it; where it can't be, nothing happens but that
/// this is told.
void BeginRehearsal();
/// Asks and, on OK, ends the rehearsal.
void EndRehearsal();
/// The words of a text of a rehearsal's end, and that the bus of the plant has to be started then
/// where it doesn't start by itself.
QString AndWhatOfTheBus(int text);
