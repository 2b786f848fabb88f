#pragma once

#include "platform/WaveFile.h"

#include <memory>
#include <thread>

namespace platform {

/// Keeps a sound going from a thread of its own: the main thread may be held up for seconds by the
/// bus. Goes to the sound server and, where there is none, to the device itself.
class SoundThread {
public:
    SoundThread();
    ~SoundThread();
    SoundThread(const SoundThread&) = delete;
    SoundThread& operator=(const SoundThread&) = delete;

    /// Plays a sound over and over in place of the one before; null is silence. Returns at once.
    void Play(std::shared_ptr<const Wave> wave);

    /// A silence of what should sound that must be told, ms.
    static constexpr int LongestSilence = 1200;

    /// All times by `SoundTime`.
    struct Account {
        bool wanted = false; ///< something should sound
        qint64 since = 0;    ///< since when it should, or was last known to
        qint64 heard = 0;    ///< when it was last seen to; 0 for never
        qint64 there = 0;    ///< when something could have been heard; 0 for never
        bool gap = false;    ///< it was silent for too long since the last look
    };
    Account Look();

private:
    struct Shared;
    static void Run(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

} // namespace platform
