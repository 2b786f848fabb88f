#include "events/EventForwarder.h"

#include "core/Faults.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "platform/RunTimeError.h"

#include <utility>

using platform::LogServerError;

namespace {

constexpr int TickInterval = 1000;
constexpr qint64 FirstPause = 1000;
constexpr qint64 LongestPause = 60000;
/// For the way there and the agreement on the encryption, ms.
constexpr qint64 ConnectTime = 15000;
/// A connection that has stood so long has shown that it can, ms.
constexpr qint64 Stable = 10000;
/// Bytes that may wait for the system; more is handed over in slices of so many.
constexpr qint64 Window = 64 << 10;
constexpr qint64 Slice = 32 << 10;
constexpr int JournalQueueLimit = 1000;

qint64 MonotonicNow() {
    return platform::Clock::Current().MonotonicMs();
}

} // namespace

EventForwarder::EventForwarder(std::unique_ptr<platform::LogServer> server,
                               std::unique_ptr<platform::Journal> journal,
                               platform::Spool::Limits limits)
    : server_(std::move(server))
    , journal_(journal ? std::move(journal) : std::make_unique<platform::Journal>())
    , limits_(limits) {
    server_->onConnected = [this] { Stands(); };
    server_->onLost = [this](LogServerError error, const QString& words) { Lost(error, words); };
    server_->onWritten = [this] {
        if (state_.phase == Phase::Connected)
            pump_.start();
    };
    tick_.setInterval(TickInterval);
    connect(&tick_, &QTimer::timeout, this, &EventForwarder::Tick);
    pump_.setSingleShot(true);
    pump_.setInterval(0);
    connect(&pump_, &QTimer::timeout, this, &EventForwarder::Pump);
}

void EventForwarder::Start() {
    Stop();
    settings_ = ForwardSettings::Read();
    if (!settings_.journal)
        journalQueue_.clear();
    if (!settings_.journal && !settings_.syslog) {
        Faults::Clear(Faults::Kind::NotForwarded);
        return;
    }
    tick_.start();
    lastGood_ = lastTick_ = MonotonicNow();
    if (!settings_.syslog)
        return;
    spool_ = std::make_unique<platform::Spool>(
        Global::InApplicationFolder(QStringLiteral("Forward")), limits_);
    pause_ = FirstPause;
    Connect(lastGood_);
}

void EventForwarder::Stop() {
    tick_.stop();
    pump_.stop();
    if (state_.phase == Phase::Connected)
        Pump();
    server_->Close();
    spool_.reset();
    toldTo_ = 0;
    marks_.clear();
    settings_ = {};
    lost_ = 0;
    state_ = {};
    TellChange();
}

void EventForwarder::Forward(const EventClass& event) {
    if (!settings_.journal && !settings_.syslog)
        return;
    Tell(SyslogLine::EntryOf(event));
}

void EventForwarder::SendTest(const QString& text) {
    Tell(SyslogLine::NoteOf(LogEntry::Severity::Information, "TEST", text));
}

void EventForwarder::Tell(const LogEntry& entry) noexcept {
    if (settings_.journal)
        ToJournal(entry);
    if (!settings_.syslog)
        return;
    if (!ToSpool(entry)) {
        ++untold_;
        ++lost_;
    }
    TellLost();
}

void EventForwarder::ToJournal(const LogEntry& entry) {
    if (journalQueue_.size() == JournalQueueLimit) {
        journalQueue_.removeFirst();
        ++lost_;
    }
    journalQueue_.append(SyslogLine::JournalFields(entry));
    EmptyJournalQueue();
}

void EventForwarder::EmptyJournalQueue() {
    while (!journalQueue_.isEmpty() && journal_->Send(journalQueue_.first()))
        journalQueue_.removeFirst();
}

/// False when there is no room.
bool EventForwarder::ToSpool(const LogEntry& entry) {
    try {
        spool_->Append(SyslogLine::Format(entry));
    } catch (const platform::RunTimeError&) {
        return false;
    }
    if (state_.phase == Phase::Connected)
        pump_.start();
    return true;
}

/// How many the server will never get is a line of its own, as soon as there is room for it.
void EventForwarder::TellLost() {
    const qint64 lost = spool_->TakeLost();
    untold_ += lost;
    lost_ += lost;
    if (untold_ == 0)
        return;
    const QString words = QStringLiteral("%1 EVENTS NOT FORWARDED").arg(untold_);
    if (!ToSpool(SyslogLine::NoteOf(LogEntry::Severity::Error, "EVENTS-LOST", words)))
        return;
    Trace::Note(words);
    untold_ = 0;
    toldTo_ = spool_->End();
}

EventForwarder::State EventForwarder::Present() const {
    State state = state_;
    state.waiting = spool_ ? spool_->Waiting() : 0;
    return state;
}

void EventForwarder::Tick() {
    const qint64 now = MonotonicNow();
    Overlook(now - std::exchange(lastTick_, now) - TickInterval, now);
    EmptyJournalQueue();
    if (state_.phase == Phase::Waits && now - since_ >= pause_)
        Connect(now);
    else if (state_.phase == Phase::Connects && now - since_ >= ConnectTime)
        Lost(LogServerError::NoAnswer, QStringLiteral("No answer in time"));
    else if (state_.phase == Phase::Connected)
        Confirm(now);
    Judge(now);
    TellChange();
}

/// A server isn't to blame for a time in which the event loop stood, as in the first reading of the
/// bus, and what became of the connection meanwhile isn't known yet.
void EventForwarder::Overlook(qint64 unseen, qint64 now) {
    if (unseen < TickInterval)
        return;
    const auto shift = [unseen, now](qint64& time) { time = qMin(now, time + unseen); };
    shift(since_);
    shift(lastGood_);
    for (Mark& mark : marks_) {
        if (mark.taken)
            shift(*mark.taken);
    }
}

void EventForwarder::Connect(qint64 now) {
    state_.phase = Phase::Connects;
    since_ = now;
    server_->Connect(settings_.server);
    TellChange();
}

void EventForwarder::Stands() {
    state_.phase = Phase::Connected;
    since_ = MonotonicNow();
    bytes_ = 0;
    marks_.clear();
    spool_->Rewind();
    Trace::Note(QStringLiteral("FORWARDING TO %1:%2")
                    .arg(settings_.server.host)
                    .arg(settings_.server.port));
    Pump();
    TellChange();
}

void EventForwarder::Lost(LogServerError error, const QString& words) {
    if (state_.phase == Phase::Off)
        return;
    const qint64 now = MonotonicNow();
    // The same for hours stands in the trace once.
    if (error != state_.error || state_.phase == Phase::Connected)
        Trace::Note(QStringLiteral("NOT FORWARDING: ") + words);
    if (state_.phase == Phase::Connected && now - since_ >= Stable)
        pause_ = FirstPause;
    else if (state_.phase != Phase::Waits && state_.error != LogServerError::None)
        pause_ = qMin(2 * pause_, LongestPause);
    server_->Close();
    pump_.stop();
    marks_.clear();
    state_ = {Phase::Waits, 0, error, DateTimes::Now()};
    since_ = now;
    TellChange();
}

/// Hands over what the system takes without waiting, one slice at a time so that the bus has its
/// turns.
void EventForwarder::Pump() {
    if (state_.phase != Phase::Connected || server_->Buffered() >= Window)
        return;
    QByteArray slice;
    while (slice.size() < Slice) {
        const auto line = spool_->Next();
        if (!line)
            break;
        // What a cut of power left may begin with nothing at all.
        slice += SyslogLine::Framed(line->mid(qMax<qsizetype>(line->indexOf('<'), 0)));
    }
    if (slice.isEmpty())
        return;
    bytes_ += slice.size();
    marks_.append({bytes_, spool_->ReadTo(), {}});
    server_->Write(slice);
}

void EventForwarder::Confirm(qint64 now) {
    // Encryption only adds bytes: what is unsent of them is at least what is unsent of ours.
    const qint64 arrived = bytes_ - server_->Unsent();
    for (Mark& mark : marks_) {
        if (mark.bytes > arrived)
            break;
        if (!mark.taken)
            mark.taken = now;
    }
    std::optional<platform::Spool::Place> sure;
    while (!marks_.isEmpty() && marks_.first().taken && now - *marks_.first().taken >= Doubt)
        sure = marks_.takeFirst().place;
    if (!sure)
        return;
    // On a busy plant something always waits: what counts is that it gets through.
    if (journalQueue_.isEmpty()) {
        lastGood_ = now;
        if (untold_ == 0 && sure->number >= toldTo_)
            lost_ = 0;
    }
    try {
        spool_->Confirm(*sure);
    } catch (const platform::RunTimeError&) {
        // They are sent again at the next start.
        Trace::Note(QStringLiteral("FORWARDING: POSITION NOT WRITTEN"));
    }
}

/// A server that takes what it gets, or that is there while nothing waits, is all right.
void EventForwarder::Judge(qint64 now) {
    const qint64 waiting = Present().waiting + journalQueue_.size();
    const bool good = waiting == 0 && (!spool_ || state_.phase == Phase::Connected);
    if (good)
        lastGood_ = now;
    if (good && untold_ == 0)
        lost_ = 0;
    if (spool_)
        TellLost();
    if (lost_ == 0 && now - lastGood_ < Patience) {
        Faults::Clear(Faults::Kind::NotForwarded);
        return;
    }
    QString detail = QString::number(waiting);
    if (lost_ > 0)
        detail += QStringLiteral(" (-%1)").arg(lost_);
    Faults::Set(Faults::Kind::NotForwarded, detail);
}

void EventForwarder::TellChange() {
    const State state = Present();
    if (state == told_)
        return;
    told_ = state;
    Q_EMIT Changed();
}
