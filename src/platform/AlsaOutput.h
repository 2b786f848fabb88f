#pragma once

#include "platform/SoundOutput.h"

#include <vector>

// The name that the library's headers give it.
typedef struct _snd_pcm snd_pcm_t; // NOLINT(bugprone-reserved-identifier)

namespace platform {

/// The machine's sound device itself, for a machine without a sound server.
class AlsaOutput : public SoundOutput {
public:
    AlsaOutput();
    ~AlsaOutput() override;

    void Play(std::shared_ptr<const Wave> wave) override;
    /// Does what is due; must come more often than the device runs dry, each 200 ms.
    void Work();

private:
    void Open(qint64 now);
    void Close();
    bool Feed();
    void Look(qint64 now);

    snd_pcm_t* device_ = nullptr;
    WaveLoop wave_;
    std::vector<qint16> block_;
    qint64 nextTry_ = 0;
    qint64 progress_ = 0;
    qint64 written_ = 0; // frames
    qint64 played_ = 0;
    qint64 buffer_ = 0;
};

} // namespace platform
