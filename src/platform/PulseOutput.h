#pragma once

#include "platform/SoundOutput.h"

#include <cstdint>

struct pa_context;
struct pa_mainloop;
struct pa_sink_info;
struct pa_sink_input_info;
struct pa_stream;

namespace platform {

/// The sound server of the session, PulseAudio or PipeWire in its place.
class PulseOutput : public SoundOutput {
public:
    PulseOutput();
    ~PulseOutput() override;

    void Play(std::shared_ptr<const Wave> wave) override;
    /// Does what is due, and waits for more of it so long at most.
    void Work(int milliseconds);
    /// Ends the wait of `Work`; from any thread.
    void Wake();
    /// No server has taken the connection for a while: another road is free to be tried.
    bool IsAbsent() const;

private:
    void Tend();
    void TendStream(qint64 now);
    bool IsReady() const;
    void Connect(qint64 now);
    void Drop(bool refused);
    void OpenStream(qint64 now);
    void CloseStream();
    void Ask(qint64 now);
    void Answered(const pa_sink_info* sink);
    void Progressed();

    static void OnWrite(pa_stream* stream, size_t bytes, void* self);
    static void OnTiming(pa_stream* stream, int success, void* self);
    static void OnSink(pa_context* context, const pa_sink_info* sink, int end, void* self);
    static void OnInput(pa_context* context, const pa_sink_input_info* input, int end, void* self);

    pa_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
    WaveLoop wave_;
    qint64 nextTry_ = 0;        // of the connection
    qint64 nextSpawn_ = 0;      // of a start of the server by the client
    qint64 connecting_ = 0;     // since when
    qint64 refusedSince_ = 0;   // 0 while a server is there
    qint64 streamProgress_ = 0; // when the stream was last seen to go on
    qint64 nextAsk_ = 0;
    qint64 asked_ = 0;       // since when an answer is due; 0 when none is
    int64_t played_ = -1;    // bytes, as told last
    bool sinkHeard_ = false; // a real sink that isn't muted
    bool inputHeard_ = false;
};

} // namespace platform
