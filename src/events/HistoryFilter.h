#pragma once

#include "events/HistoryRecords.h"

#include <QDate>
#include <QString>
#include <initializer_list>

/// Kinds of event as a set; an empty one stands for all.
class EventKinds {
public:
    EventKinds() = default;
    EventKinds(std::initializer_list<EventKind> kinds) {
        for (const EventKind kind : kinds)
            bits_ |= Bit(kind);
    }

    bool IsEmpty() const { return bits_ == 0; }
    bool Has(EventKind kind) const { return (bits_ & Bit(kind)) != 0; }
    bool operator==(const EventKinds&) const = default;

private:
    static quint64 Bit(EventKind kind) { return quint64(1) << quint8(kind); }

    quint64 bits_ = 0;
};

/// What is looked for in the history. Each field but the dates lets everything through while it is
/// empty or 0.
struct HistoryFilter {
    /// First and last day.
    QDate from;
    QDate to;
    int panel = 0;
    int channel = 0;
    EventKinds kinds;
    /// Who logged in, acknowledged, or took something out of service or back.
    QString user;
    /// All of these, divided by blanks, stand in the line, in capitals or not.
    QString words;

    bool operator==(const HistoryFilter&) const = default;
    bool SamePeriod(const HistoryFilter& other) const {
        return from == other.from && to == other.to;
    }
    /// Looks for something else than days.
    bool Chooses() const {
        HistoryFilter all;
        all.from = from;
        all.to = to;
        return !(*this == all);
    }
};
