#include "bus/BusDiagnosis.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int MinuteMs = 60000;
/// Two clocks that are read one after the other differ by less, ms.
constexpr double Slack = 20;

bool IsPanel(int address) {
    return address >= 1 && address <= BusDiagnosis::PanelCount;
}

} // namespace

void BusDiagnosis::Counters::Count(Outcome outcome, quint32 milliseconds) {
    ++exchanges;
    ++outcomes[size_t(outcome)];
    if (outcome != Outcome::Answered)
        return;
    shortest = Answers() == 1 ? milliseconds : std::min(shortest, milliseconds);
    longest = std::max(longest, milliseconds);
    sum += milliseconds;
}

void BusDiagnosis::Counters::Add(const Counters& other) {
    if (other.Answers() != 0)
        shortest = Answers() == 0 ? other.shortest : std::min(shortest, other.shortest);
    longest = std::max(longest, other.longest);
    sum += other.sum;
    exchanges += other.exchanges;
    for (size_t i = 0; i < outcomes.size(); ++i)
        outcomes[i] += other.outcomes[i];
}

BusDiagnosis::BusDiagnosis()
    : panels_(std::make_unique<std::array<Panel, PanelCount>>())
    , frames_(std::make_unique<std::array<Frame, FrameRing>>()) {}

BusDiagnosis::~BusDiagnosis() = default;

void BusDiagnosis::Sent(const QByteArray& frame) {
    panel_ = frame.isEmpty() ? 0 : quint8(frame[0]);
    sentMs_ = platform::Clock::Current().MonotonicMs();
    Keep(Direction::Sent, frame, sentMs_);
}

void BusDiagnosis::Replied(Outcome outcome, const QByteArray& bytes) {
    const qint64 now = platform::Clock::Current().MonotonicMs();
    if (!bytes.isEmpty())
        Keep(Direction::Received, bytes, now);
    if (!IsPanel(panel_))
        return;
    Panel& panel = (*panels_)[size_t(panel_ - 1)];
    const qint64 number = now / MinuteMs;
    Minute& minute = panel.minutes[size_t(number % Minutes)];
    if (minute.number != number)
        minute = {number, {}};
    const auto milliseconds = quint32(now - sentMs_);
    panel.last = outcome;
    panel.sinceStart.Count(outcome, milliseconds);
    minute.counters.Count(outcome, milliseconds);
}

void BusDiagnosis::NotSent(int address) {
    if (IsPanel(address))
        (*panels_)[size_t(address - 1)].last.reset();
}

std::optional<BusDiagnosis::Outcome> BusDiagnosis::LastOf(int address) const {
    return IsPanel(address) ? (*panels_)[size_t(address - 1)].last : std::nullopt;
}

BusDiagnosis::Counters BusDiagnosis::SinceStart(int address) const {
    return IsPanel(address) ? (*panels_)[size_t(address - 1)].sinceStart : Counters();
}

BusDiagnosis::Counters BusDiagnosis::LastHour(int address) const {
    Counters sum;
    if (!IsPanel(address))
        return sum;
    const qint64 now = platform::Clock::Current().MonotonicMs() / MinuteMs;
    for (const Minute& minute : (*panels_)[size_t(address - 1)].minutes) {
        if (minute.number >= 0 && minute.number > now - Minutes)
            sum.Add(minute.counters);
    }
    return sum;
}

const BusDiagnosis::Frame& BusDiagnosis::FrameAt(quint64 number) const {
    return (*frames_)[size_t(number % FrameRing)];
}

platform::DateTime BusDiagnosis::TimeOf(const Frame& frame) const {
    const platform::Clock& clock = platform::Clock::Current();
    const double offset =
        clock.Now() - double(clock.MonotonicMs()) / double(platform::MillisecondsADay);
    if (std::abs(offset - offset_) * double(platform::MillisecondsADay) > Slack)
        offset_ = offset;
    return offset_ + double(frame.monotonicMs) / double(platform::MillisecondsADay);
}

void BusDiagnosis::Keep(Direction direction, const QByteArray& bytes, qint64 now) {
    Frame& frame = (*frames_)[size_t(end_ % FrameRing)];
    frame.monotonicMs = now;
    frame.panel = panel_;
    frame.direction = direction;
    frame.length = quint16(bytes.size());
    std::copy_n(bytes.constData(), std::min<qsizetype>(bytes.size(), FrameSize),
                frame.bytes.begin());
    ++end_;
}
