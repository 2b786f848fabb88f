#pragma once

#include "platform/WaveFile.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace platform {

/// Monotonic milliseconds, for the threads of the sound; never 0.
inline qint64 SoundTime() {
    using namespace std::chrono;
    return 1 + duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

/// One road to a loudspeaker, used by one thread. It never waits for an answer: what isn't there
/// or doesn't go on is dropped and tried again.
class SoundOutput {
public:
    SoundOutput() = default;
    virtual ~SoundOutput() = default;
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    /// Plays a sound over and over in place of the one before; null is silence. Does nothing for
    /// the one that is wanted already.
    virtual void Play(std::shared_ptr<const Wave> wave) = 0;

    /// When it was last seen that the sound of the last `Play` goes on, by `SoundTime`; 0 for
    /// never.
    qint64 Heard() const { return heard_; }
    /// When it was last seen that something could be played; 0 for never.
    qint64 There() const { return qMax(there_, heard_); }

protected:
    qint64 heard_ = 0;
    qint64 there_ = 0;
};

/// Walks round and round through the samples of a wave.
class WaveLoop {
public:
    void Start(std::shared_ptr<const Wave> wave) {
        wave_ = std::move(wave);
        at_ = 0;
    }
    const Wave* Get() const { return wave_.get(); }
    bool Plays(const std::shared_ptr<const Wave>& wave) const { return wave_ == wave; }
    void Rewind() { at_ = 0; }
    void Fill(qint16* samples, size_t count) {
        for (size_t done = 0; done < count;) {
            const size_t step = qMin(count - done, wave_->samples.size() - at_);
            std::copy_n(wave_->samples.begin() + std::ptrdiff_t(at_), step, samples + done);
            at_ = (at_ + step) % wave_->samples.size();
            done += step;
        }
    }

private:
    std::shared_ptr<const Wave> wave_;
    size_t at_ = 0;
};

} // namespace platform
