#pragma once

#include <QByteArray>
#include <optional>
#include <vector>

namespace platform {

/// A sound that can be played: 16-bit samples, interleaved.
struct Wave {
    int rate = 0;     ///< frames a second
    int channels = 0; ///< 1 or 2
    std::vector<qint16> samples;
};

/// Reads a .wav file: whole numbers of 8 to 32 bits or 32-bit floats, of whose channels the first
/// two are kept. Nothing for any other kind of file, for one without samples and for one that ends
/// before its samples do.
std::optional<Wave> ReadWave(const QByteArray& bytes);

/// False for a sound that no loudspeaker makes audible.
bool IsAudible(const Wave& wave);

/// A two-tone horn that needs no file.
Wave Beep();

} // namespace platform
