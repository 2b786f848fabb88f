#pragma once

#include "platform/SoundChoice.h"

#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// The machine's loudspeaker: one looped sound at a time.
class Sound {
public:
    virtual ~Sound() = default;
    /// Plays a sound file over and over, in place of what plays now. `path` may lack its ".wav".
    /// Returns at once. In place of a file that is missing or damaged plays the reserve, else any
    /// other alarm sound of its folder, else a beep.
    virtual void StartLooped(const QString& path, const SoundReserve& reserve) = 0;
    virtual void Stop() = 0;
};

/// What a sound has to tell; called in the event loop of the thread that made it.
struct SoundNews {
    /// False: what should sound has been silent for more than a second, or nothing is there that
    /// a sound could be played on. True: that is over.
    std::function<void(bool canBeHeard)> heard;
    /// A file can't be played; `standIn` plays in its place: "BASE" for the reserve, "BEEP", or
    /// the name of another file.
    std::function<void(const QString& file, const QString& standIn)> replaced;
};

/// The sound server, or where there is none the device itself. Whatever goes and comes back, the
/// server, its outputs, the device, what should sound is taken up again.
std::unique_ptr<Sound> MakeSound(SoundNews news);

/// Remembers what it was asked, for tests.
class SilentSound : public Sound {
public:
    void StartLooped(const QString& path, const SoundReserve& given) override {
        playing = path;
        reserve = given;
        ++starts;
    }
    void Stop() override {
        playing.clear();
        ++stops;
    }
    QString playing;
    SoundReserve reserve;
    int starts = 0;
    int stops = 0;
};

} // namespace platform
