#include "core/Faults.h"

#include "core/Trace.h"

#include <array>
#include <optional>

namespace Faults {

namespace {

/// First of the numbers of the words, in the order of the kinds.
constexpr int FirstText = 714001;

std::array<std::optional<Fault>, KindCount> standing;

std::optional<Fault>& Place(Kind kind) {
    return standing[size_t(kind)];
}

/// English, like all of the trace.
QString TraceWord(Kind kind) {
    static constexpr std::array<const char*, KindCount> words{"BUS STOPPED BY AN ERROR",
                                                              "NO HORN",
                                                              "DISK FULL",
                                                              "HISTORY NOT WRITTEN",
                                                              "TRACE NOT WRITTEN",
                                                              "PANEL NOT POLLED",
                                                              "EVENTS NOT READ",
                                                              "COMMAND GIVEN UP",
                                                              "PRINTER NOT REACHED",
                                                              "DISK NEARLY FULL",
                                                              "CLOCK SET BACK",
                                                              "MESSAGE UNREAD",
                                                              "NO BACKUP"};
    return QString::fromLatin1(words[size_t(kind)]);
}

void Tell(const char* change, const Fault& fault) {
    Trace::Note(QString::fromLatin1(change) + TraceWord(fault.kind) +
                (fault.detail.isEmpty() ? QString() : u' ' + fault.detail));
    Q_EMIT TheBoard().Changed();
}

} // namespace

void Set(Kind kind, const QString& detail) {
    std::optional<Fault>& place = Place(kind);
    if (!place) {
        place = Fault{kind, detail, DateTimes::Now()};
        Tell("FAULT BEGINS ", *place);
    } else if (place->detail != detail) {
        place->detail = detail;
        Q_EMIT TheBoard().Changed();
    }
}

void Clear(Kind kind) {
    if (!Place(kind))
        return;
    const Fault ended = *Place(kind);
    Place(kind).reset();
    Tell("FAULT ENDS   ", ended);
}

bool Stands(Kind kind) {
    return Place(kind).has_value();
}

QList<Fault> Standing() {
    QList<Fault> faults;
    for (const std::optional<Fault>& fault : standing) {
        if (fault)
            faults.append(*fault);
    }
    return faults;
}

void Forget() {
    standing.fill(std::nullopt);
    Q_EMIT TheBoard().Changed();
}

int TextOf(Kind kind) {
    return FirstText + int(kind);
}

bool HasDetail(Kind kind) {
    switch (kind) {
    case Kind::PanelNotPolled:
    case Kind::MemoryUnreadable:
    case Kind::CommandGivenUp:
    case Kind::PrinterNotReached:
    case Kind::DiskNearlyFull:
    case Kind::BoxUnanswered:
    case Kind::NoBackup:
        return true;
    default:
        return false;
    }
}

Board& TheBoard() {
    static Board board;
    return board;
}

} // namespace Faults
