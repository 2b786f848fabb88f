#pragma once

#include "platform/Clock.h"

/// The machine's clock with a lead, so that waits of minutes pass at once.
class LeadingClock : public platform::Clock {
public:
    LeadingClock()
        : machine_(platform::Clock::Current()) {
        platform::Clock::Install(this);
    }
    ~LeadingClock() override { platform::Clock::Install(nullptr); }
    LeadingClock(const LeadingClock&) = delete;
    LeadingClock& operator=(const LeadingClock&) = delete;

    DateTime Now() const override { return machine_.Now() + lead_; }
    int OffsetFromUtc() const override { return machine_.OffsetFromUtc(); }
    qint64 MonotonicMs() const override { return machine_.MonotonicMs(); }
    void Sleep(int milliseconds) override { machine_.Sleep(milliseconds); }
    void Lead(DateTime time) { lead_ += time; }

private:
    platform::Clock& machine_;
    DateTime lead_ = 0;
};
