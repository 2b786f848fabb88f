#pragma once

#include "platform/Clock.h"

#include <QByteArray>
#include <array>
#include <memory>
#include <optional>

/// What became of the exchanges with each panel, and the frames of late. `CommFunctions` reports
/// each exchange; nothing here waits, allocates or reads the time of day while it counts.
class BusDiagnosis {
public:
    enum class Outcome {
        Answered,
        NoAnswer,
        BadCrc,       ///< bytes that are no frame, too: cut, run together or of the wrong length
        Exception,    ///< the module refuses what it is asked
        OtherAddress, ///< a whole frame of another module
    };
    static constexpr int OutcomeCount = 5;
    /// Addresses of the bus.
    static constexpr int PanelCount = 64;
    /// Frames that are kept.
    static constexpr int FrameRing = 1000;
    /// Bytes kept of a frame; the longest of Modbus RTU has 256.
    static constexpr int FrameSize = 260;

    struct Counters {
        quint32 exchanges = 0;
        std::array<quint32, OutcomeCount> outcomes{};
        /// Time from the last byte handed to the device to the last byte of the reply, ms, over
        /// the exchanges that were answered.
        quint32 shortest = 0;
        quint32 longest = 0;
        quint64 sum = 0;

        quint32 Of(Outcome outcome) const { return outcomes[size_t(outcome)]; }
        quint32 Answers() const { return Of(Outcome::Answered); }
        /// 0 without an answer.
        double Mean() const { return Answers() == 0 ? 0 : double(sum) / Answers(); }
        bool operator==(const Counters&) const = default;

        void Count(Outcome outcome, quint32 milliseconds);
        void Add(const Counters& other);
    };

    enum class Direction : quint8 { Sent, Received };

    struct Frame {
        qint64 monotonicMs = 0;
        /// Panel that was asked, which needn't be the one that replies; 0 for a broadcast.
        quint8 panel = 0;
        Direction direction = Direction::Sent;
        /// Bytes on the line, of which at most `FrameSize` are kept.
        quint16 length = 0;
        std::array<char, FrameSize> bytes;

        QByteArray Bytes() const { return {bytes.data(), qMin<int>(length, FrameSize)}; }
    };

    BusDiagnosis();
    ~BusDiagnosis();

    /// A frame has gone to the device.
    void Sent(const QByteArray& frame);
    /// The wait for the reply to the frame sent last is over with these bytes, none at all when
    /// nothing came.
    void Replied(Outcome outcome, const QByteArray& bytes);
    /// Without a port nothing was exchanged: the panel has no last outcome any more.
    void NotSent(int address);

    /// Outcome of the last exchange with a panel, 1 to 64; none before the first.
    std::optional<Outcome> LastOf(int address) const;
    /// Since the start of the program.
    Counters SinceStart(int address) const;
    /// The minute that runs and the 59 ahead of it.
    Counters LastHour(int address) const;

    /// Frames are numbered from 0 on; those from `FirstFrame` up to and without `EndFrame` are
    /// kept.
    quint64 FirstFrame() const { return end_ > FrameRing ? end_ - FrameRing : 0; }
    quint64 EndFrame() const { return end_; }
    const Frame& FrameAt(quint64 number) const;
    /// When a frame was on the line, by the program's clock as it goes now, to the ms.
    platform::DateTime TimeOf(const Frame& frame) const;

private:
    struct Minute {
        qint64 number = -1;
        Counters counters;
    };
    static constexpr int Minutes = 60;
    struct Panel {
        std::optional<Outcome> last;
        Counters sinceStart;
        std::array<Minute, Minutes> minutes;
    };

    void Keep(Direction direction, const QByteArray& bytes, qint64 now);

    std::unique_ptr<std::array<Panel, PanelCount>> panels_;
    std::unique_ptr<std::array<Frame, FrameRing>> frames_;
    quint64 end_ = 0;
    quint8 panel_ = 0; // asked last
    qint64 sentMs_ = 0;
    // Time of day less the monotonic time. It is moved only when the clock was set: a frame
    // keeps its milliseconds however often it is shown.
    mutable platform::DateTime offset_ = 0;
};
