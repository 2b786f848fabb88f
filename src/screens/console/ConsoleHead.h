#pragma once

#include "bus/wPolling.h"
#include "core/Faults.h"

#include <QList>
#include <QString>
#include <optional>

/// What the console says of the watch itself: whether anybody is listening to the panels.
namespace ConsoleHead {

struct Watch {
    BusState state = BusState::Stopped;
    /// Active panels that don't answer, upwards.
    QList<int> missing;
    /// One cause for all of them, or the port.
    bool busLost = false;
    /// There is a panel to be watched.
    bool anyPanel = true;
};

/// What the engine says now.
Watch Look();
/// Puts another watch in place of the engine's, for pictures and tests; none brings it back.
void OverrideWatch(std::optional<Watch> watch);

/// Active panels in their long retry, by the counters of the cycle.
QList<int> LongMissing();

enum class Tone { Calm, Warning, Alarm };

struct Verdict {
    Tone tone;
    /// In place of the empty list.
    QString words;
    /// In the line above the list, empty when nothing is to be said there.
    QString chip;
};

/// Calm only while there are active panels, and every one is watched and answers.
Verdict Judge(const Watch& watch);

/// "row of rows, so many not acknowledged". `row` counts from 1.
QString CountText(int row, int rows, int waiting);

/// How many things are out of service, empty when none is.
QString OutOfServiceText();

/// What stands, one paragraph a fault, with the time since when.
QString StandingList();
/// Words of a fault with what is known of it.
QString TextOf(const Faults::Fault& fault);

} // namespace ConsoleHead
