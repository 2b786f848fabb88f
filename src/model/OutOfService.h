#pragma once

#include "core/DateTimes.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

/// What is out of service, shelved by hand: panels that aren't polled, and channels whose events
/// nobody is told. Whether a thing is out, the site says; the settings of the machine remember who
/// took it out, since when, why and until when, and which line of the history is still owed. The
/// memory is changed as a whole, in one change of the settings file.
namespace OutOfService {

/// Most letters of a reason: the column of the history that takes it.
inline constexpr int MaxReason = 40;
/// Reasons that a site has ready.
inline constexpr int ReasonCount = 5;

// How long a thing is to be out of service, in minutes.
inline constexpr int ForEver = 0;
inline constexpr int Shift = 8 * 60;
inline constexpr int Day = 24 * 60;
inline constexpr int MaxDays = 366;

/// A panel, 1 to 64, or one of its channels; channel 0 for the panel as a whole.
struct Thing {
    int panel = 0;
    int channel = 0;
    bool operator==(const Thing&) const = default;
};

struct Change {
    Thing thing;
    /// Out of service, or back in it.
    bool out = false;
    /// Why and for how many minutes it is out.
    QString why = {};
    int minutes = ForEver;
    bool operator==(const Change&) const = default;
};

/// Number of a line of the history that was written, or is to be written and has none yet.
inline constexpr int LineTold = -1;
inline constexpr int LineOwed = 0;

/// What is remembered of a thing that is out of service, or that came back a moment ago.
struct Entry {
    Thing thing;
    DateTime since = 0; ///< 0 where nobody knows
    DateTime until = 0; ///< 0 for ever
    /// Name of the user, empty when nobody was logged in.
    QString who = {};
    QString why = {};
    /// When it came back, 0 while it is out.
    DateTime back = 0;
    QString backBy = {};
    /// The file that the program starts from holds the return.
    bool settled = false;
    /// Number of the event whose line isn't known to be in the history, or one of the above.
    int line = LineTold;
    /// Kept by a program that knew no more than the time: a restart brought its channels back.
    bool timeOnly = false;

    bool IsOut() const { return back == 0; }
    bool operator==(const Entry&) const = default;
};

/// False as well for a thing that the site doesn't have.
bool IsOut(const Thing& thing);
/// All that is out of service now, by panel and channel. A panel without a model isn't missed by
/// anybody.
QList<Thing> Present();

/// Makes the changes in the site and remembers them for the user who is logged in. What the site
/// holds already is left as it is.
void Apply(const QList<Change>& changes);
/// The site was changed otherwise: remembers what came and went since `before`, which is what
/// `Present` gave ahead of it.
void Notice(const QList<Thing>& before);
/// Remembers as back what the site has in service, or has no more.
void NoticeReturns();
/// The site is about to give way to another one: all that is remembered comes back.
void LeaveSite();
/// At start, behind the reading of the site: takes out of service again what was when the program
/// ended, whatever ended it; what the site doesn't have comes back.
void Restore();
/// Brings back what has been out for its time, by the clock or because `isOverdue` says so of
/// something that has an end. True when a panel came back: the site was changed.
bool BringBackDue(const std::function<bool(const Entry&)>& isOverdue);
/// The program starts from a file that holds the site as it is.
void SiteSaved();

/// All that is remembered, in the order of the settings.
QList<Entry> Memory();
void setMemory(const QList<Entry>& entries);
std::optional<Entry> Find(const Thing& thing);

/// The reasons that the site has ready, always five; an empty one is offered to nobody.
QStringList Reasons();
void setReason(int place, const QString& reason);

} // namespace OutOfService
