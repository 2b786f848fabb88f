#pragma once

#include <QtGlobal>

namespace platform {

/// Date and time as a day number with the time of day as its fraction, local time. Day 0 is
/// 30 December 1899; 0 itself means "no time".
using DateTime = double;

inline constexpr qint64 MillisecondsADay = 86'400'000;
inline constexpr DateTime OneSecond = 1.15740740740741E-05;
inline constexpr DateTime OneMinute = 1.0 / 1440;

/// The one source of time. Everything that reads the time, waits or measures goes through the
/// installed clock, so that a test can set it.
class Clock {
public:
    virtual ~Clock() = default;

    /// Local date and time, to the millisecond.
    virtual DateTime Now() const = 0;
    /// Seconds that local time is ahead of UTC now. The local time alone doesn't tell: at the end
    /// of summer time an hour of it comes twice.
    virtual int OffsetFromUtc() const = 0;
    /// Milliseconds that never go back, for deadlines; its origin has no meaning.
    virtual qint64 MonotonicMs() const = 0;
    /// Blocks the thread without running the event loop.
    virtual void Sleep(int milliseconds) = 0;

    /// The installed clock; the machine's own until another is installed.
    static Clock& Current();
    /// Installs a clock that the caller keeps alive; a null pointer brings the machine's back.
    static void Install(Clock* clock);
};

/// A clock that stands still until it is moved; a sleep moves it.
class TestClock : public Clock {
public:
    /// Installs itself; the start is an ordinary day at noon.
    TestClock();
    ~TestClock() override;
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    DateTime Now() const override { return now_; }
    int OffsetFromUtc() const override { return offset_; }
    qint64 MonotonicMs() const override { return monotonic_; }
    void Sleep(int milliseconds) override { Advance(milliseconds); }

    void Set(DateTime now) { now_ = now; }
    void Set(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
    void setOffsetFromUtc(int seconds) { offset_ = seconds; }
    void Advance(qint64 milliseconds);

private:
    DateTime now_ = 0;
    int offset_ = 3600;
    qint64 monotonic_ = 1;
};

} // namespace platform
