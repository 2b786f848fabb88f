#pragma once

#include "events/EventClass.h"
#include "events/ForwardSettings.h"
#include "events/SyslogLine.h"
#include "platform/Journal.h"
#include "platform/LogServer.h"
#include "platform/Spool.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

/// Tells each routed event to whoever listens outside: to the journal of the machine and, by
/// syslog, to one server. What goes to the server stands in a spool first and stays there until it
/// has arrived as surely as can be known: syslog has no receipt, so an entry counts as taken when
/// the server's machine has taken its bytes and the connection has stood `Doubt` longer. What was
/// in doubt when a connection ended is sent again, under the number that it had. Nothing waits for
/// anybody.
class EventForwarder : public QObject {
    Q_OBJECT
public:
    /// How long an entry is in doubt after the server's machine took it, ms.
    static constexpr qint64 Doubt = 3000;
    /// A server out of reach, or one that takes nothing, is a fault after so long, ms.
    static constexpr qint64 Patience = 60000;

    enum class Phase { Off, Waits, Connects, Connected };
    struct State {
        Phase phase = Phase::Off;
        /// Entries that the server doesn't surely have.
        qint64 waiting = 0;
        /// What went wrong last since the settings are these, and when.
        platform::LogServerError error = platform::LogServerError::None;
        DateTime errorTime = 0;
        bool operator==(const State&) const = default;
    };

    explicit EventForwarder(std::unique_ptr<platform::LogServer> server = platform::MakeLogServer(),
                            std::unique_ptr<platform::Journal> journal = {},
                            platform::Spool::Limits limits = {});

    /// Takes the settings as they are now; goes on where the last run ended.
    void Start();
    void Stop();
    /// Never throws and shows no box.
    void Forward(const EventClass& event);
    /// A line that says it is a test, by the same road.
    void SendTest(const QString& text);
    State Present() const;
    /// Each second: tries, confirms and judges.
    void Tick();

Q_SIGNALS:
    /// `Present` is new.
    void Changed();

private:
    /// Bytes written up to the end of an entry, and when the server's machine had them.
    struct Mark {
        qint64 bytes;
        platform::Spool::Place place;
        std::optional<qint64> taken;
    };

    void Tell(const LogEntry& entry) noexcept;
    void ToJournal(const LogEntry& entry);
    void EmptyJournalQueue();
    bool ToSpool(const LogEntry& entry);
    void TellLost();
    void Overlook(qint64 unseen, qint64 now);
    void Connect(qint64 now);
    void Stands();
    void Lost(platform::LogServerError error, const QString& words);
    void Pump();
    void Confirm(qint64 now);
    void Judge(qint64 now);
    void TellChange();

    std::unique_ptr<platform::LogServer> server_;
    std::unique_ptr<platform::Journal> journal_;
    const platform::Spool::Limits limits_;
    std::unique_ptr<platform::Spool> spool_; // while syslog is on
    ForwardSettings settings_;
    QTimer tick_;
    QTimer pump_;
    QList<platform::Journal::Fields> journalQueue_;
    QList<Mark> marks_;
    State state_;
    State told_;
    qint64 bytes_ = 0;    // written on this connection
    qint64 since_ = 0;    // monotonic, when the phase began
    qint64 lastTick_ = 0; // monotonic
    qint64 pause_ = 0;    // ahead of the next try, ms
    qint64 lastGood_ = 0; // monotonic, when all was well last
    qint64 untold_ = 0;   // lost entries that no line tells of yet
    qint64 lost_ = 0;     // lost since the server was last up to date
    qint64 toldTo_ = 0;   // number behind the last line that tells of lost ones
};
