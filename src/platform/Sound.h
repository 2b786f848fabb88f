#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// The machine's loudspeaker: one looped sound at a time.
class Sound {
public:
    virtual ~Sound() = default;
    /// Plays a sound file over and over, in place of what plays now. `path` may lack its ".wav".
    /// Returns at once; a missing file is silence.
    virtual void StartLooped(const QString& path) = 0;
    virtual void Stop() = 0;
    /// Plays what should be playing, if it doesn't: its file may have come after the start.
    virtual void Resume() = 0;
};

/// The default audio output. A machine without one stays silent, and `noDevice` is called once.
/// A sound that stops because its output went away starts again when an output returns.
std::unique_ptr<Sound> MakeSound(std::function<void()> noDevice);

/// Remembers what it was asked, for tests.
class SilentSound : public Sound {
public:
    void StartLooped(const QString& path) override {
        playing = path;
        ++starts;
    }
    void Stop() override {
        playing.clear();
        ++stops;
    }
    void Resume() override {}
    QString playing;
    int starts = 0;
    int stops = 0;
};

} // namespace platform
