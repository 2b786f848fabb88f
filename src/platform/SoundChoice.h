#pragma once

#include "platform/WaveFile.h"

#include <QString>
#include <functional>

namespace platform {

/// Bytes of a .wav file that stands in for one that can't be played; empty when there is none.
using SoundReserve = std::function<QByteArray()>;

struct SoundChoice {
    Wave wave;
    /// Where it comes from when not from the file that was asked for; empty when it does.
    QString standIn;
};

/// The sound of a file, or the best that stands in for it: the reserve, another "AlarmSound*.wav"
/// of its folder, at last a beep. A silent file is no good one, but where the reserve is silent
/// too, silence is what that sound is. Always gives something that plays.
SoundChoice ChooseSound(const QString& path, const SoundReserve& reserve);

} // namespace platform
