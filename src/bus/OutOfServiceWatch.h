#pragma once

#include "events/EventClass.h"
#include "model/OutOfService.h"

#include <QHash>
#include <QList>
#include <limits>
#include <utility>

class wPolling;

/// Watches over what is out of service: brings it back at the end of its time, and writes the line
/// of each coming and going, once, whatever ends the program in the middle.
///
/// A line is owed from the change on that the settings remember. It gets its number there ahead of
/// its way into the history; a number found there later is looked for in the history first.
class OutOfServiceWatch {
public:
    explicit OutOfServiceWatch(wPolling& engine)
        : engine_(engine) {}

    /// Each second: what is due comes back, and what isn't out any more is told. So is an alarm
    /// that stands on a channel that came back: nobody heard of it.
    void Check();
    /// Routes the lines that are owed, or the first of them.
    void Tell(qsizetype most = std::numeric_limits<qsizetype>::max());
    /// The line of the day; none as long as nobody took anything out of service.
    void TellDay();

private:
    /// Place of an entry whose line is owed, and whether it may be in the history all the same.
    struct Owed {
        qsizetype place;
        bool doubtful;
    };
    struct Known {
        DateTime since = 0;     ///< time of its taking out, as the memory has it
        qint64 monotonicMs = 0; ///< since when this program has known it
    };

    bool IsOverdue(const OutOfService::Entry& entry);
    QList<Owed> Number(QList<OutOfService::Entry>& entries, qsizetype most);
    void TellStanding();

    wPolling& engine_;
    /// By number of the panel and of the channel.
    QHash<std::pair<int, int>, Known> known_;
    /// Came back a moment ago.
    QList<OutOfService::Thing> returned_;
};

/// Routes the lines that are owed, if there is an engine.
void TellOutOfService();
