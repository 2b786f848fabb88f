#pragma once

#include "events/EventClass.h"

#include <QString>

/// The words of what is taken out of service and comes back, the same in the history and on paper.
/// The event says which thing it is; the rest is what the memory of the thing holds.
namespace ServiceTexts {

struct Words {
    QString origin;
    /// Until when it is out, or for how long it was; of the daily line the number.
    QString parameter;
    QString display;
    /// Who did it.
    QString common;
    /// Why it is out.
    QString specific;
};

/// The event is of this kind, and of a thing that can be.
bool IsOne(const EventClass& event);
Words Of(const EventClass& event);

/// Until when, in the eleven columns of a parameter: day, month and time, or the date of an end
/// that is nearly a year away; a word for no end.
QString Until(DateTime since, DateTime until);

} // namespace ServiceTexts
