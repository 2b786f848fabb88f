#pragma once

#include "events/HistoryRecords.h"

/// What the latest change of state in an alarm was: it tells whether the next one belongs to the
/// same alarm.
class LatestChange {
public:
    /// The line with which the alarm comes.
    void Begin(const HistoryRecord& line) {
        kind_ = IsChange(line) ? line.kind : EventKind::Unknown;
    }
    void Take(const HistoryRecord& line) {
        if (IsChange(line) && !(IsFault() && line.kind == EventKind::Active))
            kind_ = line.kind;
    }
    /// The panels report changes only: the same state twice is another alarm whose going before was
    /// missed, unless a reading of the bus has found it.
    bool IsMissedGoing(const HistoryRecord& line) const {
        return IsChange(line) && !line.isSynchro && line.kind == kind_;
    }
    /// Modules that only show states tell an acknowledged fault as an active channel.
    bool IsAcknowledgement(const HistoryRecord& line) const {
        return line.isChange && line.kind == EventKind::Active && IsFault() &&
               kind_ != EventKind::CableFault;
    }

private:
    static bool IsChange(const HistoryRecord& line) {
        return line.isChange || line.kind == EventKind::PanelLost;
    }
    bool IsFault() const {
        return kind_ == EventKind::CableFault || kind_ == EventKind::FirstFault ||
               kind_ == EventKind::SecondFault;
    }

    EventKind kind_ = EventKind::Unknown;
};
