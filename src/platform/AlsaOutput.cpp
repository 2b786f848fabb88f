#include "platform/AlsaOutput.h"

#include <alsa/asoundlib.h>

namespace platform {

namespace {

// All in ms.
constexpr int AlarmRetry = 250;
/// Looks whether there is a device while nothing sounds.
constexpr int IdleLook = 5000;
/// A device that takes nothing for so long is opened anew.
constexpr int Patience = 1000;
constexpr int Ahead = 400;

constexpr const char* Device = "default";

void SayNothing(const char* /*file*/, int /*line*/, const char* /*function*/, int /*error*/,
                const char* /*format*/, ...) {}

} // namespace

AlsaOutput::AlsaOutput() {
    snd_lib_error_set_handler(&SayNothing);
}

AlsaOutput::~AlsaOutput() {
    Close();
    snd_config_update_free_global();
}

void AlsaOutput::Play(std::shared_ptr<const Wave> wave) {
    if (wave_.Plays(wave))
        return;
    Close();
    wave_.Start(std::move(wave));
    heard_ = 0;
    nextTry_ = 0;
}

void AlsaOutput::Work() {
    const qint64 now = SoundTime();
    if (!wave_.Get()) {
        if (now >= nextTry_)
            Look(now);
    } else if (!device_) {
        if (now >= nextTry_)
            Open(now);
    } else if (!Feed() || now - progress_ > Patience) {
        Close();
        nextTry_ = now + AlarmRetry;
    }
}

void AlsaOutput::Open(qint64 now) {
    nextTry_ = now + AlarmRetry;
    if (snd_pcm_open(&device_, Device, SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK) < 0) {
        device_ = nullptr;
        return;
    }
    const Wave& wave = *wave_.Get();
    snd_pcm_uframes_t buffer = 0;
    snd_pcm_uframes_t period = 0;
    constexpr int Resample = 1;
    if (snd_pcm_set_params(device_, SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED,
                           unsigned(wave.channels), unsigned(wave.rate), Resample,
                           Ahead * 1000) < 0 ||
        snd_pcm_get_params(device_, &buffer, &period) < 0) {
        Close();
        return;
    }
    wave_.Rewind();
    written_ = 0;
    played_ = 0;
    buffer_ = qint64(buffer);
    progress_ = now;
    Feed();
}

void AlsaOutput::Close() {
    if (device_)
        snd_pcm_close(device_);
    device_ = nullptr;
}

/// Fills the device's buffer. False when the device is to be opened anew.
bool AlsaOutput::Feed() {
    const snd_pcm_sframes_t room = snd_pcm_avail_update(device_);
    if (room < 0)
        return snd_pcm_recover(device_, int(room), 1) >= 0;
    const qint64 played = written_ - (buffer_ - qMin(qint64(room), buffer_));
    if (played > played_) {
        progress_ = SoundTime();
        heard_ = progress_;
    }
    played_ = qMax(played, played_);
    const auto channels = size_t(wave_.Get()->channels);
    block_.resize(size_t(qMin(qint64(room), buffer_)) * channels);
    if (block_.empty())
        return true;
    WaveLoop ahead = wave_;
    ahead.Fill(block_.data(), block_.size());
    const snd_pcm_sframes_t taken =
        snd_pcm_writei(device_, block_.data(), block_.size() / channels);
    if (taken < 0)
        return taken == -EAGAIN || snd_pcm_recover(device_, int(taken), 1) >= 0;
    wave_.Fill(block_.data(), size_t(taken) * channels);
    written_ += taken;
    return true;
}

void AlsaOutput::Look(qint64 now) {
    nextTry_ = now + IdleLook;
    snd_pcm_t* device = nullptr;
    if (snd_pcm_open(&device, Device, SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK) < 0)
        return;
    there_ = now;
    snd_pcm_close(device);
}

} // namespace platform
