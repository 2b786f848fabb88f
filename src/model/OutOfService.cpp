#include "model/OutOfService.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <algorithm>
#include <utility>

using ErrorHandling::Guard;

namespace OutOfService {

namespace {

const QString Section = QStringLiteral("OutOfService");
const QString ReasonSection = QStringLiteral("OutOfServiceReasons");

/// In place of a user: the time was over.
constexpr int TimeOver = 51064;
constexpr int FirstReason = 850130;
/// A clock that stands this far ahead of the time of a taking out was set back: the change to
/// winter time is none.
constexpr DateTime ClockSetBack = 2.0 / 24;

/// Fields of a value, parted by tabs, which the keyboard of the program doesn't type.
enum Field { Since, Until, Line, Back, BackBy, Settled, Who, Why, FieldCount };
constexpr QChar Separator = u'\t';

/// Key of the settings, the same in every language.
QString KeyOf(const Thing& thing) {
    return QStringLiteral("%1.%2").arg(thing.panel).arg(thing.channel);
}

std::optional<Thing> ThingOf(const QString& key) {
    bool isPanel = false;
    bool isChannel = false;
    const Thing thing{key.section(u'.', 0, 0).toInt(&isPanel),
                      key.section(u'.', 1).toInt(&isChannel)};
    const bool isOne = isPanel && isChannel && thing.panel >= 1 &&
                       thing.panel <= ConfigClass::PanelCount && thing.channel >= 0 &&
                       thing.channel <= PanelClass::MaxChannel;
    return isOne ? std::optional(thing) : std::nullopt;
}

QString TimeText(DateTime when) {
    return when == 0 ? QString() : DateTimes::KeptTime(when);
}

/// 0 for a text that is no time.
DateTime TimeOf(const QString& text) {
    const std::optional<DateTime> time = DateTimes::FromKept(text);
    return time ? *time : DateTimes::Parse(text).value_or(0);
}

QString LineText(int line) {
    return line == LineTold ? QString() : QString::number(line);
}

QString ValueOf(const Entry& entry) {
    const auto field = [](const QString& text) { return QString(text).replace(Separator, u' '); };
    return QStringList{TimeText(entry.since), TimeText(entry.until),
                       LineText(entry.line),  TimeText(entry.back),
                       field(entry.backBy),   entry.settled ? QStringLiteral("1") : QString(),
                       field(entry.who),      field(entry.why)}
        .join(Separator);
}

Entry EntryOf(const Thing& thing, const QString& value) {
    const QStringList fields = value.split(Separator);
    Entry entry;
    entry.thing = thing;
    entry.since = TimeOf(fields.first());
    entry.timeOnly = fields.size() < FieldCount;
    if (entry.timeOnly)
        return entry;
    entry.until = TimeOf(fields[Until]);
    // An end that nobody can read any more would never come.
    if (entry.until == 0 && !fields[Until].isEmpty())
        entry.until = DateTimes::Now();
    entry.line = fields[Line].isEmpty() ? LineTold : fields[Line].toInt();
    entry.back = TimeOf(fields[Back]);
    entry.backBy = fields[BackBy];
    entry.settled = !fields[Settled].isEmpty();
    entry.who = fields[Who];
    entry.why = fields[Why];
    return entry;
}

QString User() {
    return Global::Get().userLevel > 0 ? Global::Get().userName : QString();
}

/// The time as the settings keep it: a line must read the same when it is looked for later.
DateTime NowInSeconds() {
    return TimeOf(TimeText(DateTimes::Now()));
}

/// Nobody misses what isn't there, and no line tells of it.
bool Exists(const Thing& thing) {
    const PanelClass& panel = Global::Configuration().Panel(thing.panel);
    return panel.Model() != Models::None && thing.channel <= panel.ChannelCount();
}

void Set(const Thing& thing, bool out) {
    PanelClass& panel = Global::Configuration().Panel(thing.panel);
    if (thing.channel == 0)
        panel.setActive(!out);
    else
        panel.Channel(thing.channel).setOutOfOrder(out);
}

Entry& EntryIn(QList<Entry>& entries, const Thing& thing) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.thing == thing; });
    if (found != entries.end())
        return *found;
    entries.append(Entry{.thing = thing});
    return entries.last();
}

void RememberOut(QList<Entry>& entries, const Change& change) {
    const DateTime now = NowInSeconds();
    const DateTime until =
        change.minutes == ForEver ? 0 : now + change.minutes * platform::OneMinute;
    EntryIn(entries, change.thing) = Entry{.thing = change.thing,
                                           .since = now,
                                           .until = TimeOf(TimeText(until)),
                                           .who = User(),
                                           .why = change.why.left(MaxReason),
                                           .line = LineOwed};
}

void RememberBack(Entry& entry, const QString& by) {
    entry.back = NowInSeconds();
    entry.backBy = by;
    entry.settled = entry.thing.channel > 0;
    entry.line = LineOwed;
    entry.timeOnly = false;
}

void RememberBackUnless(const QList<Thing>& out) {
    QList<Entry> entries = Memory();
    for (Entry& entry : entries) {
        if (entry.IsOut() && !out.contains(entry.thing))
            RememberBack(entry, User());
    }
    setMemory(entries);
}

/// The clock was set back behind the taking out: the thing stays out for the time it was given.
bool FollowClock(Entry& entry) {
    const DateTime ahead = entry.since - DateTimes::Now();
    if (!entry.IsOut() || ahead < ClockSetBack)
        return false;
    entry.since = NowInSeconds();
    if (entry.until != 0)
        entry.until = TimeOf(TimeText(entry.until - ahead));
    Trace::Note(QStringLiteral("OUT OF SERVICE  CLOCK SET BACK  ") + KeyOf(entry.thing));
    return true;
}

void RestoreOne(Entry& entry) {
    const bool forgotten = entry.timeOnly && (entry.thing.channel > 0 || !IsOut(entry.thing));
    if (!entry.IsOut()) {
        if (!entry.settled && Exists(entry.thing))
            Set(entry.thing, false);
    } else if (forgotten || !Exists(entry.thing)) {
        RememberBack(entry, QString());
    } else if (!IsOut(entry.thing)) {
        Set(entry.thing, true);
        Trace::Note(QStringLiteral("OUT OF SERVICE  KEPT FROM THE FORMER RUN  ") +
                    KeyOf(entry.thing));
    }
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
    QList<Entry> entries = Memory();
    for (const Change& change : changes) {
        if (IsOut(change.thing) == change.out)
            continue;
        Set(change.thing, change.out);
        if (!Exists(change.thing))
            continue;
        if (change.out)
            RememberOut(entries, change);
        else
            RememberBack(EntryIn(entries, change.thing), User());
    }
    setMemory(entries);
}

void Notice(const QList<Thing>& before) {
    const QList<Thing> now = Present();
    if (now == before)
        return;
    QList<Entry> entries = Memory();
    for (const Thing& thing : now) {
        if (!before.contains(thing))
            RememberOut(entries, {thing, true});
    }
    for (const Thing& thing : before) {
        if (!now.contains(thing))
            RememberBack(EntryIn(entries, thing), User());
    }
    setMemory(entries);
}

void NoticeReturns() {
    RememberBackUnless(Present());
}

void LeaveSite() {
    RememberBackUnless({});
}

void Restore() {
    Guard("OutOfService.Restore", [] {
        QList<Entry> entries = Memory();
        for (Entry& entry : entries)
            RestoreOne(entry);
        setMemory(entries);
    });
}

bool BringBackDue(const std::function<bool(const Entry&)>& isOverdue) {
    QList<Entry> entries = Memory();
    const DateTime now = DateTimes::Now();
    bool siteChanged = false;
    bool changed = false;
    for (Entry& entry : entries) {
        changed = FollowClock(entry) || changed;
        if (!entry.IsOut() || entry.until == 0 || (now < entry.until && !isOverdue(entry)))
            continue;
        changed = true;
        siteChanged = siteChanged || entry.thing.channel == 0;
        Set(entry.thing, false);
        RememberBack(entry, GetText(TimeOver));
    }
    if (changed)
        setMemory(entries);
    return siteChanged;
}

void SiteSaved() {
    QList<Entry> entries = Memory();
    for (Entry& entry : entries)
        entry.settled = !entry.IsOut();
    entries.removeIf([](const Entry& entry) { return entry.settled && entry.line == LineTold; });
    setMemory(entries);
}

/// Each second and each line asks for it: the settings are read again when they have changed.
QList<Entry> Memory() {
    static quint64 revision = 0;
    static QList<Entry> entries;
    const quint64 present = IniRevision();
    if (std::exchange(revision, present) == present)
        return entries;
    entries.clear();
    for (const auto& [key, value] : IniReadSection(Section)) {
        if (const auto thing = ThingOf(key))
            entries.append(EntryOf(*thing, value));
    }
    return entries;
}

void setMemory(const QList<Entry>& entries) {
    if (entries == Memory())
        return;
    QList<std::pair<QString, QString>> values;
    for (const Entry& entry : entries)
        values.append(
            {KeyOf(entry.thing), entry.timeOnly ? TimeText(entry.since) : ValueOf(entry)});
    IniWriteSection(Section, values);
}

std::optional<Entry> Find(const Thing& thing) {
    const QList<Entry> entries = Memory();
    const auto found = std::find_if(entries.cbegin(), entries.cend(),
                                    [&](const Entry& entry) { return entry.thing == thing; });
    return found == entries.cend() ? std::nullopt : std::optional(*found);
}

QStringList Reasons() {
    QStringList reasons;
    for (int place = 0; place < ReasonCount; ++place)
        reasons += IniRead(ReasonSection, QString::number(place + 1), GetText(FirstReason + place))
                       .left(MaxReason);
    return reasons;
}

void setReason(int place, const QString& reason) {
    IniWrite(ReasonSection, QString::number(place + 1), reason.left(MaxReason));
}

} // namespace OutOfService
