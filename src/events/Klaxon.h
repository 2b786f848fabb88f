#pragma once

#include "platform/SoundChoice.h"

#include <QString>
#include <functional>

class ChannelClass;

/// Silences the horn.
inline constexpr qint16 StopAlarme = -1;
/// Priority of faults that concern the whole system.
inline constexpr qint16 HighestPriority = 99;

/// Starts the looped sound of a priority, 1 to 99, unless one of the same or a higher priority
/// sounds; -1 stops whatever sounds. In place of a sound file that can't be played comes the sound
/// of that number of the base.
void Alarme(qint16 priority);
/// The same with the priority of a channel's alarms. One that there isn't, as a damaged site file
/// may have it, is the highest: -1 would silence the horn, and above 99 there is no sound.
void Alarme(const ChannelClass& channel);

/// Plays a sound file over and over so that somebody can hear what it is like; false while an alarm
/// sounds, which goes on. Whatever `Alarme` starts or stops puts an end to it, and `ended` is told.
bool TrySound(const QString& path, const platform::SoundReserve& reserve,
              std::function<void()> ended);
/// Ends that without telling; an alarm that came meanwhile goes on.
void EndSoundTrial();
