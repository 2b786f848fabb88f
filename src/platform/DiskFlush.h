#pragma once

#include <QString>

/// Puts written files on the disk itself, so that a cut of power takes no more than the last
/// second. A flush can take many milliseconds: whoever writes only notes what it owes, and the
/// engine pays between two rounds of the bus.
namespace platform::DiskFlush {

/// Notes a file that was written to.
void Owe(const QString& path);
/// Flushes every noted file, once each; gives their number.
int Pay();

} // namespace platform::DiskFlush
