#include "screens/history/FilterWords.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "events/HistorySearch.h"
#include "model/CurrentConfig.h"

#include <algorithm>
#include <array>

namespace FilterWords {

namespace {

constexpr int AllKinds = 711150;
constexpr int AllEvents = 711155;
constexpr int AllPanels = 711170;
constexpr int AllChannels = 711171;
constexpr int AllUsers = 711172;
constexpr int PanelWord = 711102;
constexpr int ChannelWord = 711103;
constexpr int UserWord = 711105;
constexpr int ShortDays = 711175;
constexpr int Days = 711176;

const QString Dash = QStringLiteral(" \u2013 ");

struct KindChoice {
    int text;
    /// Part of a text with "|".
    int part;
    EventKinds kinds;
};

/// Groups first, then single kinds under the words that stand in their lines.
const QList<KindChoice>& KindChoices() {
    using enum EventKind;
    static const QList<KindChoice> choices{
        {AllKinds, 0, {}},
        {711151, 0, {Active, CableFault, FirstFault, SecondFault}},
        {711152,
         0,
         {Acknowledged, PanelAcknowledged, HornSilenced, LampsAcknowledged, AcknowledgedOnPc}},
        {711153, 0, {PanelPresent, PanelLost}},
        {711154, 0, {ApplicationStarted, ApplicationStopped, CommStarted, CommStopped}},
        {51011, 0, {Active}},
        {51013, 0, {FirstFault}},
        {51014, 0, {SecondFault}},
        {51012, 0, {CableFault}},
        {51011, 1, {Acknowledged}},
        {51010, 0, {Normal}},
        {51023, 0, {Cleared}},
        {51022, 0, {LampsAcknowledged}},
        {51020, 0, {PanelAcknowledged}},
        {51039, 0, {AcknowledgedOnPc}},
        {51032, 0, {PanelLost}},
        {51031, 0, {PanelPresent}},
        {51060, 0, {OutOfService, OutOfServiceCount}},
        {51061, 0, {BackInService}},
        {711160, 0, {UserChanged}},
        {711161, 0, {ApplicationStarted}},
        {711162, 0, {ApplicationStopped}},
        {711163, 0, {CommStarted}},
        {711164, 0, {CommStopped}},
        {51047, 0, {MidnightState}},
        {711165, 0, {Unknown}},
    };
    return choices;
}

QString NameOf(const KindChoice& choice) {
    return GetText(choice.text, true).section(u'|', choice.part, choice.part);
}

QString KindName(const EventKinds& kinds) {
    for (const KindChoice& choice : KindChoices()) {
        if (choice.kinds == kinds)
            return NameOf(choice);
    }
    return {};
}

/// A number with the name that the site has for it now.
QString Item(int number, const QString& name) {
    return (Bytes::Padded(number, 2) + u' ' + name.simplified()).trimmed().replace(u'|', u' ');
}

/// A file may tell of a panel that no site can hold.
bool IsOfSite(int panel) {
    return panel >= 1 && panel <= ConfigClass::PanelCount;
}

QString PanelItem(int panel) {
    return Item(panel, IsOfSite(panel) ? Global::Configuration().Panel(panel).Title() : QString());
}

/// Without a panel a channel has no name.
QString ChannelItem(int panel, int channel) {
    return Item(channel, IsOfSite(panel)
                             ? Global::Configuration().Panel(panel).Channel(channel).ScreenText()
                             : QString());
}

/// Those of the site, and those that the files tell of.
QStringList PanelItems(const HistorySearch& search) {
    constexpr int PanelNumbers = 256;
    std::array<bool, PanelNumbers> known{};
    for (const HistoryRecord& record : search.Records().Records())
        known[record.panel] = true;
    QStringList items;
    for (int panel = 1; panel < PanelNumbers; ++panel) {
        if (known[size_t(panel)] ||
            (IsOfSite(panel) && Global::Configuration().Panel(panel).Model() > 0))
            items += PanelItem(panel);
    }
    return items;
}

QStringList UserItems(const HistorySearch& search) {
    QStringList names = search.Users();
    for (int user = 1; user <= Global::Configuration().UserCount(); ++user)
        names += Global::Configuration().UserName(user).trimmed();
    names.removeAll(QString());
    names.removeDuplicates();
    names.sort(Qt::CaseInsensitive);
    return names.replaceInStrings(QStringLiteral("|"), QStringLiteral(" "));
}

QString Day(const QDate& date) {
    return DateTimes::ShortDate(DateTimes::FromDate(date));
}

} // namespace

QString Value(Field field, const HistoryFilter& filter) {
    switch (field) {
    case Period: {
        const qint64 days = filter.from.daysTo(filter.to) + 1;
        return days == 1 ? Day(filter.from) : Filled(Days, {QString::number(days)});
    }
    case Panel:
        return filter.panel == 0 ? QString() : PanelItem(filter.panel);
    case Channel:
        return filter.channel == 0 ? QString() : ChannelItem(filter.panel, filter.channel);
    case Kind:
        return filter.kinds.IsEmpty() ? QString() : KindName(filter.kinds);
    case User:
        return filter.user;
    case Words:
        return filter.words;
    }
    return {};
}

QString Sentence(const HistoryFilter& filter) {
    QStringList parts;
    parts += filter.from == filter.to ? Day(filter.from) : Day(filter.from) + Dash + Day(filter.to);
    const auto add = [&](const QString& word, const QString& value) {
        if (!value.isEmpty())
            parts += word.isEmpty() ? value : word + u' ' + value;
    };
    add(GetText(PanelWord), Value(Panel, filter));
    add(GetText(ChannelWord), Value(Channel, filter));
    add(QString(), Value(Kind, filter));
    add(GetText(UserWord), filter.user);
    if (!filter.words.isEmpty())
        parts += u'"' + filter.words + u'"';
    if (parts.size() == 1)
        parts += GetText(AllEvents);
    return parts.join(Divider);
}

QStringList Choices(Field field, const HistorySearch& search) {
    QStringList items;
    switch (field) {
    case Panel:
        return QStringList(GetText(AllPanels)) + PanelItems(search);
    case Channel:
        items += GetText(AllChannels);
        for (int channel = 1; channel <= PanelClass::MaxChannel; ++channel)
            items += ChannelItem(search.Filter().panel, channel);
        return items;
    case Kind:
        for (const KindChoice& choice : KindChoices())
            items += NameOf(choice);
        return items;
    case User:
        return QStringList(GetText(AllUsers)) + UserItems(search);
    default:
        return items;
    }
}

QString Chosen(Field field, const HistoryFilter& filter) {
    QString value = Value(field, filter);
    if (!value.isEmpty())
        return value;
    switch (field) {
    case Panel:
        return GetText(AllPanels);
    case Channel:
        return GetText(AllChannels);
    case Kind:
        return GetText(AllKinds);
    default:
        return GetText(AllUsers);
    }
}

void Choose(HistoryFilter& filter, Field field, const QString& item) {
    const int number = item.section(u' ', 0, 0).toInt();
    switch (field) {
    case Panel:
        if (number != filter.panel)
            filter.channel = 0;
        filter.panel = number;
        break;
    case Channel:
        filter.channel = number;
        break;
    case Kind:
        for (const KindChoice& choice : KindChoices()) {
            if (NameOf(choice) == item)
                filter.kinds = choice.kinds;
        }
        break;
    case User:
        filter.user = item == GetText(AllUsers) ? QString() : item;
        break;
    default:
        break;
    }
}

QString Filled(int text, const QStringList& values) {
    QString filled;
    const QString pattern = GetText(text);
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        const int place = pattern[at] == u'$' ? pattern.mid(at + 1, 1).toInt() : 0;
        filled += place > 0 ? values.value(place - 1) : QString(pattern[at]);
        at += place > 0 ? 1 : 0;
    }
    return filled;
}

QString Duration(qint64 seconds) {
    constexpr qint64 Minute = 60;
    constexpr qint64 Hour = 60 * Minute;
    constexpr qint64 Day = 24 * Hour;
    const auto two = [](qint64 number) { return Bytes::Padded(qint32(number), 2); };
    const qint64 length = qMax<qint64>(seconds, 0);
    const QString tail = two(length % Minute);
    if (length < Hour)
        return QString::number(length / Minute) + u':' + tail;
    const QString clock =
        QString::number(length % Day / Hour) + u':' + two(length % Hour / Minute) + u':' + tail;
    return length < Day ? clock : Filled(ShortDays, {QString::number(length / Day)}) + u' ' + clock;
}

} // namespace FilterWords
