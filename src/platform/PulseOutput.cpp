#include "platform/PulseOutput.h"

#include <cstring>
#include <pulse/pulseaudio.h>

namespace platform {

namespace {

// All in ms.
/// Between two tries while something should sound, and while nothing should.
constexpr int AlarmRetry = 250;
constexpr int IdleRetry = 2000;
/// Between two questions.
constexpr int AlarmAsk = 200;
constexpr int IdleAsk = 3000;
/// A client starts the server itself where the machine is set so; each try costs a process.
constexpr int SpawnRetry = 5000;
/// A server that is silent for so long, or a stream that stands still, is given up.
constexpr int Patience = 1000;
/// A server that is started again gets the device first.
constexpr int AbsentAfter = 700;
/// What is handed over ahead: a stop is heard that much later.
constexpr int Ahead = 300;

/// Takes the sound of streams without a device and lets nothing be heard.
constexpr const char* Dummy = "auto_null";

void Release(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

PulseOutput::PulseOutput()
    : loop_(pa_mainloop_new()) {}

PulseOutput::~PulseOutput() {
    Drop(false);
    if (loop_)
        pa_mainloop_free(loop_);
}

void PulseOutput::Play(std::shared_ptr<const Wave> wave) {
    if (wave_.Plays(wave))
        return;
    CloseStream();
    const bool begins = !wave_.Get();
    wave_.Start(std::move(wave));
    heard_ = 0;
    if (wave_.Get() && begins) {
        nextTry_ = 0;
        nextAsk_ = 0;
    }
}

void PulseOutput::Work(int milliseconds) {
    if (!loop_)
        return;
    Tend();
    if (pa_mainloop_prepare(loop_, milliseconds * 1000) >= 0 && pa_mainloop_poll(loop_) >= 0)
        pa_mainloop_dispatch(loop_);
}

void PulseOutput::Wake() {
    if (loop_)
        pa_mainloop_wakeup(loop_);
}

bool PulseOutput::IsAbsent() const {
    return !loop_ || (refusedSince_ != 0 && SoundTime() - refusedSince_ >= AbsentAfter);
}

bool PulseOutput::IsReady() const {
    return context_ && pa_context_get_state(context_) == PA_CONTEXT_READY;
}

void PulseOutput::Tend() {
    const qint64 now = SoundTime();
    if (!context_) {
        if (now >= nextTry_)
            Connect(now);
        return;
    }
    const pa_context_state_t state = pa_context_get_state(context_);
    if (!PA_CONTEXT_IS_GOOD(state)) {
        Drop(true);
        return;
    }
    if (state != PA_CONTEXT_READY) {
        if (now - connecting_ > Patience)
            Drop(false);
        return;
    }
    refusedSince_ = 0;
    if (asked_ != 0 && now - asked_ > Patience) {
        Drop(false);
        return;
    }
    if (wave_.Get())
        TendStream(now);
    if (context_ && now >= nextAsk_)
        Ask(now);
}

void PulseOutput::TendStream(qint64 now) {
    if (!stream_) {
        if (now >= nextTry_)
            OpenStream(now);
        return;
    }
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) {
        CloseStream();
        nextTry_ = now + AlarmRetry;
    } else if (now - streamProgress_ > Patience) {
        Drop(false);
    }
}

void PulseOutput::Connect(qint64 now) {
    nextTry_ = now + (wave_.Get() ? AlarmRetry : IdleRetry);
    context_ = pa_context_new(pa_mainloop_get_api(loop_), "Korvanelle II");
    if (!context_)
        return;
    connecting_ = now;
    asked_ = 0;
    nextAsk_ = 0;
    const bool spawns = now >= nextSpawn_;
    if (spawns)
        nextSpawn_ = now + SpawnRetry;
    const pa_context_flags_t flags = spawns ? PA_CONTEXT_NOFLAGS : PA_CONTEXT_NOAUTOSPAWN;
    if (pa_context_connect(context_, nullptr, flags, nullptr) < 0)
        Drop(true);
}

/// `refused`: nobody was there, as against one who doesn't answer and may hold the device.
void PulseOutput::Drop(bool refused) {
    CloseStream();
    if (context_) {
        pa_context_disconnect(context_);
        pa_context_unref(context_);
        context_ = nullptr;
    }
    asked_ = 0;
    if (!refused)
        refusedSince_ = 0;
    else if (refusedSince_ == 0)
        refusedSince_ = SoundTime();
}

void PulseOutput::OpenStream(qint64 now) {
    const Wave& wave = *wave_.Get();
    const pa_sample_spec spec{PA_SAMPLE_S16NE, uint32_t(wave.rate), uint8_t(wave.channels)};
    stream_ = pa_stream_new(context_, "Alarm", &spec, nullptr);
    if (!stream_) {
        nextTry_ = now + AlarmRetry;
        return;
    }
    wave_.Rewind();
    played_ = -1;
    streamProgress_ = now;
    sinkHeard_ = false;
    inputHeard_ = false;
    pa_stream_set_write_callback(stream_, &PulseOutput::OnWrite, this);
    pa_buffer_attr buffer{};
    buffer.maxlength = uint32_t(-1);
    buffer.tlength = uint32_t(pa_usec_to_bytes(pa_usec_t(Ahead) * PA_USEC_PER_MSEC, &spec));
    buffer.prebuf = uint32_t(-1);
    buffer.minreq = uint32_t(-1);
    buffer.fragsize = uint32_t(-1);
    const auto flags = pa_stream_flags_t(PA_STREAM_ADJUST_LATENCY | PA_STREAM_START_UNMUTED);
    if (pa_stream_connect_playback(stream_, nullptr, &buffer, flags, nullptr, nullptr) < 0) {
        CloseStream();
        nextTry_ = now + AlarmRetry;
    }
}

void PulseOutput::CloseStream() {
    if (!stream_)
        return;
    pa_stream_set_write_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
    stream_ = nullptr;
}

void PulseOutput::Ask(qint64 now) {
    nextAsk_ = now + (wave_.Get() ? AlarmAsk : IdleAsk);
    if (asked_ == 0)
        asked_ = now;
    if (!stream_ || pa_stream_get_state(stream_) != PA_STREAM_READY) {
        Release(pa_context_get_sink_info_by_name(context_, "@DEFAULT_SINK@", &PulseOutput::OnSink,
                                                 this));
        return;
    }
    Release(pa_context_get_sink_info_by_index(context_, pa_stream_get_device_index(stream_),
                                              &PulseOutput::OnSink, this));
    Release(pa_context_get_sink_input_info(context_, pa_stream_get_index(stream_),
                                           &PulseOutput::OnInput, this));
    Release(pa_stream_update_timing_info(stream_, &PulseOutput::OnTiming, this));
}

void PulseOutput::OnWrite(pa_stream* stream, size_t bytes, void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    const size_t frame = sizeof(qint16) * size_t(output.wave_.Get()->channels);
    while (bytes >= frame) {
        void* place = nullptr;
        size_t room = bytes;
        if (pa_stream_begin_write(stream, &place, &room) < 0 || !place)
            return;
        room = qMin(room, bytes) / frame * frame;
        if (room == 0) {
            pa_stream_cancel_write(stream);
            return;
        }
        output.wave_.Fill(static_cast<qint16*>(place), room / sizeof(qint16));
        if (pa_stream_write(stream, place, room, nullptr, 0, PA_SEEK_RELATIVE) < 0)
            return;
        bytes -= room;
    }
}

void PulseOutput::OnSink(pa_context* /*context*/, const pa_sink_info* sink, int end, void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    output.asked_ = 0;
    if (end == 0 && sink)
        output.Answered(sink);
    else if (end < 0)
        output.sinkHeard_ = false;
}

void PulseOutput::Answered(const pa_sink_info* sink) {
    sinkHeard_ = std::strcmp(sink->name, Dummy) != 0 && sink->mute == 0 &&
                 pa_cvolume_max(&sink->volume) != PA_VOLUME_MUTED;
    if (sinkHeard_)
        there_ = SoundTime();
}

void PulseOutput::OnInput(pa_context* /*context*/, const pa_sink_input_info* input, int end,
                          void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    output.asked_ = 0;
    if (end == 0 && input) {
        output.inputHeard_ = input->mute == 0 && input->corked == 0 &&
                             pa_cvolume_max(&input->volume) != PA_VOLUME_MUTED;
    }
}

void PulseOutput::OnTiming(pa_stream* stream, int success, void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    output.asked_ = 0;
    const pa_timing_info* timing = pa_stream_get_timing_info(stream);
    if (success == 0 || !timing || stream != output.stream_)
        return;
    if (timing->playing != 0 && output.played_ >= 0 && timing->read_index > output.played_)
        output.Progressed();
    output.played_ = timing->read_index;
}

void PulseOutput::Progressed() {
    streamProgress_ = SoundTime();
    if (sinkHeard_ && inputHeard_)
        heard_ = streamProgress_;
}

} // namespace platform
