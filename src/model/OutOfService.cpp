#include "model/OutOfService.h"

#include "core/ErrorHandling.h"
#include "core/SLVfonctions.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <algorithm>
#include <utility>

using ErrorHandling::Guard;

namespace OutOfService {

namespace {

const QString Section = QStringLiteral("OutOfService");

/// Key of the settings, the same in every language.
QString KeyOf(const Thing& thing) {
    return QStringLiteral("%1.%2").arg(thing.panel).arg(thing.channel);
}

using Times = QList<std::pair<QString, QString>>;

void Remove(Times& times, const QString& key) {
    times.removeIf([&](const auto& time) { return time.first == key; });
}

} // namespace

bool IsOut(const Thing& thing) {
    if (thing.panel < 1 || thing.panel > ConfigClass::PanelCount)
        return false;
    const PanelClass& panel = Global::Configuration().Panel(thing.panel);
    if (thing.channel == 0)
        return !panel.Active();
    return thing.channel >= 1 && thing.channel <= panel.ChannelCount() &&
           panel.Channel(thing.channel).OutOfOrder();
}

QList<Thing> Present() {
    QList<Thing> things;
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        const PanelClass& panel = Global::Configuration().Panel(number);
        if (panel.Model() == Models::None)
            continue;
        for (int channel = 0; channel <= panel.ChannelCount(); ++channel) {
            if (IsOut({number, channel}))
                things.append({number, channel});
        }
    }
    return things;
}

/// The site comes first: a settings file that can't be written keeps nothing in service.
void Apply(const QList<Change>& changes) {
    for (const auto& [thing, out] : changes) {
        PanelClass& panel = Global::Configuration().Panel(thing.panel);
        if (thing.channel == 0)
            panel.setActive(!out);
        else
            panel.Channel(thing.channel).setOutOfOrder(out);
    }
    Guard("OutOfService.Apply", [&] {
        Times times = IniReadSection(Section);
        for (const auto& [thing, out] : changes) {
            Remove(times, KeyOf(thing));
            if (out)
                times.append({KeyOf(thing), DateTimes::DateAndTime(DateTimes::Now())});
        }
        IniWriteSection(Section, times);
    });
}

std::optional<DateTime> Since(const Thing& thing) {
    return DateTimes::Parse(IniRead(Section, KeyOf(thing), QString()));
}

void DropPast() {
    Guard("OutOfService.DropPast", [&] {
        const Times before = IniReadSection(Section);
        Times times = before;
        times.removeIf([things = Present()](const auto& time) {
            return std::none_of(things.cbegin(), things.cend(),
                                [&](const Thing& thing) { return KeyOf(thing) == time.first; });
        });
        if (times != before)
            IniWriteSection(Section, times);
    });
}

void Forget() {
    Guard("OutOfService.Forget", [] { IniDeleteSection(Section); });
}

} // namespace OutOfService
