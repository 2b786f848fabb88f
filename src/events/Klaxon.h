#pragma once

#include <QtGlobal>

/// Silences the horn.
inline constexpr qint16 StopAlarme = -1;
/// Priority of faults that concern the whole system.
inline constexpr qint16 HighestPriority = 99;

/// Starts the looped sound of a priority, 1 to 99, unless one of the same or a higher priority
/// sounds; -1 stops whatever sounds. In place of a sound file that can't be played comes the sound
/// of that number of the base.
void Alarme(qint16 priority);
