#pragma once

#include "core/DateTimes.h"

#include <QList>
#include <QObject>
#include <QString>

/// Standing faults of the system itself, as against those of the plant: what keeps the watch from
/// being seen, heard or recorded. Whoever finds one sets it and clears it when it is over; the
/// console shows them while they stand, and the trace tells when each came and went.
namespace Faults {

/// In the order in which they are shown, the most serious first.
enum class Kind {
    RoundStopped,      ///< an error of the round itself stopped the bus
    NoHorn,            ///< what should sound doesn't
    DiskFull,          ///< nothing can be written any more
    HistoryNotWritten, ///< the last event that belonged into the history isn't there
    TraceNotWritten,   ///< the last line of the trace isn't there
    PanelNotPolled,    ///< an active panel that the cycle doesn't reach or can't ask
    MemoryUnreadable,  ///< a panel counts events that can't be read
    CommandGivenUp,    ///< a command that the bus never took
    PrinterNotReached, ///< lines wait to be told on paper
    DiskNearlyFull,    ///< under 5 % free
    ClockSetBack,      ///< times come a second time
    BoxUnanswered,     ///< a box that nobody has read
    NoBackup,          ///< the last backup failed or is too old
    NotForwarded,      ///< whoever listens outside doesn't get them
};
inline constexpr int KindCount = 14;

struct Fault {
    Kind kind;
    /// Stands behind the words of the kind: a number, a name. Empty for none.
    QString detail;
    DateTime since;
};

/// Begins, or changes the detail of one that stands. Never throws and shows no box.
void Set(Kind kind, const QString& detail = QString());
/// Ends; does nothing where none stands. Never throws and shows no box.
void Clear(Kind kind);
bool Stands(Kind kind);
/// What stands now, the most serious first.
QList<Fault> Standing();
/// Drops all without a word, at the end of the program and in tests.
void Forget();

/// Number of the words of a kind.
int TextOf(Kind kind);
/// The words of a kind end in a colon that something follows.
bool HasDetail(Kind kind);

/// Tells that what stands is new.
class Board : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void Changed();
};
Board& TheBoard();

} // namespace Faults
