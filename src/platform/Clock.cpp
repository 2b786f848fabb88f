#include "platform/Clock.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QThread>

namespace platform {

namespace {

const QDate DayZero(1899, 12, 30);

DateTime ToDayNumber(const QDate& date, const QTime& time) {
    return double(DayZero.daysTo(date)) + time.msecsSinceStartOfDay() / double(MillisecondsADay);
}

class MachineClock : public Clock {
public:
    MachineClock() { timer_.start(); }
    DateTime Now() const override {
        const QDateTime now = QDateTime::currentDateTime();
        return ToDayNumber(now.date(), now.time());
    }
    int OffsetFromUtc() const override { return QDateTime::currentDateTime().offsetFromUtc(); }
    qint64 MonotonicMs() const override { return timer_.elapsed(); }
    void Sleep(int milliseconds) override {
        QThread::msleep(static_cast<unsigned long>(qMax(0, milliseconds)));
    }

private:
    QElapsedTimer timer_;
};

Clock* installed = nullptr;

} // namespace

Clock& Clock::Current() {
    static MachineClock machine;
    return installed != nullptr ? *installed : machine;
}

void Clock::Install(Clock* clock) {
    installed = clock;
}

TestClock::TestClock() {
    Set(2024, 3, 15, 12, 0, 0);
    Clock::Install(this);
}

TestClock::~TestClock() {
    Clock::Install(nullptr);
}

void TestClock::Set(int year, int month, int day, int hour, int minute, int second) {
    now_ = ToDayNumber(QDate(year, month, day), QTime(hour, minute, second));
}

void TestClock::Advance(qint64 milliseconds) {
    now_ += double(milliseconds) / double(MillisecondsADay);
    monotonic_ += milliseconds;
}

} // namespace platform
