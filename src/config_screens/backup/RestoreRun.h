#pragma once

#include "events/Restore.h"
#include "model/SiteDifference.h"

#include <QList>

/// A restore between its proposal and its end.
namespace RestoreRun {

/// A backup that is unpacked and waits for somebody to take it; the one proposed before is dropped.
void Propose(const Restore::Plan& plan);
/// Null when none waits.
const Restore::Plan* Proposed();
/// Drops what waits.
void Drop();

/// Number of the text that tells why the proposed site can't be read; 0 when it can.
int Refusal();
/// All that the proposed backup would change: site, settings and files.
QList<SiteDifference> Differences();

/// Takes what is proposed, with the bus at rest meanwhile and as before afterwards. Throws
/// RunTimeError: either nothing was changed, or the rest is done at the next start.
void Run(bool keepMachine);

} // namespace RestoreRun
