#pragma once

#include "core/DateTimes.h"

#include <QList>
#include <optional>

/// What a technician has taken out of service: panels that aren't polled, and channels whose events
/// nobody is told. The settings of the machine keep since when.
namespace OutOfService {

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
    bool operator==(const Change&) const = default;
};

/// False as well for a thing that the site doesn't have.
bool IsOut(const Thing& thing);
/// All that is out of service now, by panel and channel. A panel without a model isn't missed by
/// anybody.
QList<Thing> Present();
/// Makes the changes in the site and notes the time of each.
void Apply(const QList<Change>& changes);
/// Since when a thing is out of service; nothing when that isn't known.
std::optional<DateTime> Since(const Thing& thing);
/// Drops the times of what is back in service, whoever brought it back.
void DropPast();
/// Drops all times: they say nothing of another site.
void Forget();

} // namespace OutOfService
