#include "events/ServiceTexts.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Trace.h"
#include "events/TextProcs.h"
#include "model/OutOfService.h"

#include <algorithm>
#include <cmath>

namespace ServiceTexts {

using OutOfService::Entry;
using OutOfService::Thing;
using TextProcs::ScreenLine::Common;
using TextProcs::ScreenLine::Parameter;
using TextProcs::ScreenLine::Specific;

namespace {

enum Text { GoesOut = 51060, ComesBack, DailyCount, NoEnd, Counts = 51065 };

/// An end farther away than this is told with its year, in days.
constexpr DateTime NearlyAYear = 300;
constexpr int YearDigits = 4;
constexpr int MinuteLetters = 5;

QString OrStars(const QString& text, const Column& column) {
    return text.isEmpty() ? Trace::Stars(column.width) : text;
}

/// The date without its year and the separator beside it.
QString DayAndMonth(DateTime when) {
    QString date = DateTimes::ShortDate(when);
    const qsizetype year = DateTimes::ShortDatePattern().indexOf(QStringLiteral("yyyy"));
    date.remove(year == 0 ? 0 : year - 1, YearDigits + 1);
    return date;
}

/// Hours and minutes.
QString Span(const Entry& entry) {
    if (entry.since == 0 || entry.back < entry.since)
        return Trace::Stars(Parameter.width);
    const auto minutes =
        qint64(std::floor((entry.back - entry.since) / platform::OneMinute + 0.01));
    return QStringLiteral("%1 h %2").arg(minutes / 60).arg(minutes % 60, 2, 10, QChar(u'0'));
}

Words OfCount() {
    const QList<Thing> things = OutOfService::Present();
    const auto panels = std::count_if(things.cbegin(), things.cend(),
                                      [](const Thing& thing) { return thing.channel == 0; });
    return {QStringLiteral("SYSTEM"), QString::number(things.size()), GetText(DailyCount),
            GetText(Counts)
                .replace(QStringLiteral("$1"), QString::number(panels))
                .replace(QStringLiteral("$2"), QString::number(things.size() - panels)),
            Trace::Stars(Specific.width)};
}

} // namespace

QString Until(DateTime since, DateTime until) {
    if (until == 0)
        return GetText(NoEnd);
    if (until - since > NearlyAYear)
        return DateTimes::ShortDate(until);
    return DayAndMonth(until) + u' ' + DateTimes::LongTime(until).left(MinuteLetters);
}

bool IsOne(const EventClass& event) {
    const bool ofThing =
        event.Aff() == SystemEvents::OutOfService || event.Aff() == SystemEvents::BackInService;
    return event.Aff() == SystemEvents::OutOfServiceCount || (ofThing && event.Panel() > 0);
}

Words Of(const EventClass& event) {
    if (event.Aff() == SystemEvents::OutOfServiceCount)
        return OfCount();
    const Thing thing{event.Panel(), event.Param()};
    const Entry entry = OutOfService::Find(thing).value_or(Entry());
    const bool out = event.Aff() == SystemEvents::OutOfService;
    return {thing.channel == 0 ? TextProcs::PanelOrigin(thing.panel)
                               : TextProcs::ChannelOrigin(thing.panel, thing.channel),
            out ? Until(entry.since, entry.until) : Span(entry), GetText(out ? GoesOut : ComesBack),
            OrStars(out ? entry.who : entry.backBy, Common), OrStars(entry.why, Specific)};
}

} // namespace ServiceTexts
