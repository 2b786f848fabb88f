#include "model/SiteDifference.h"

#include "core/Config.h"
#include "model/ConfigClass.h"
#include "model/Models.h"

#include <QColor>
#include <QHash>
#include <functional>
#include <utility>

namespace {

enum Texts {
    No = 10001,
    Yes = 10002,
    Nothing = 716000,
    Changed,
    Settings,
    PanelPlace,
    ChannelPlace,
    Users,
    LibraryTexts,
    Instructions,
    Mirrors,
    PanelRule,
    ChannelRule,
};

/// A setting of a panel or of one of its channels.
template <class T> struct Field {
    int text;
    QString (*value)(const T& of);
};
/// A setting of the site as a whole; the "$" of its words is the number in a row of settings.
struct SiteField {
    int text;
    QString (*value)(const ConfigClass& site, int number);
    int from = 0;
    int to = 0;
};

QString Truth(bool value) {
    return GetText(value ? Yes : No);
}

template <class T, QString (T::*Get)() const> QString Word(const T& of) {
    return (of.*Get)();
}
template <class T, bool (T::*Get)() const> QString Flag(const T& of) {
    return Truth((of.*Get)());
}
template <class T, qint16 (T::*Get)() const> QString Number(const T& of) {
    return QString::number((of.*Get)());
}

/// A number and what it means where it has a meaning.
QString Explained(int number, const QString& meaning) {
    return meaning.isEmpty() ? QString::number(number)
                             : QStringLiteral("%1 (%2)").arg(number).arg(meaning);
}

/// Colours have red in their low byte.
QString ColourText(qint32 colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF).name().toUpper() +
           ((quint32(colour) >> 24) != 0 ? QStringLiteral(" +%1").arg(quint32(colour) >> 24)
                                         : QString());
}

using C = ChannelClass;
constexpr Field<C> ChannelFields[] = {
    {300622, Word<C, &C::ScreenText>},
    {300623, Word<C, &C::PrintText>},
    {300612, Flag<C, &C::ScrAlm>},
    {300613, Flag<C, &C::PrtAlm>},
    {300617, Flag<C, &C::Histo>},
    {300615, Flag<C, &C::Klaxon>},
    {300616, Number<C, &C::AlmPrio>},
    {300618, Number<C, &C::BibNum>},
    {300619, Number<C, &C::HelpNum>},
    {300620, Flag<C, &C::React>},
    {300621, [](const C& of) { return Explained(of.ReactTpo(), ReactivTime(of.ReactTpo())); }},
    {300614,
     [](const C& of) {
         const bool known = of.TypeImp() >= 0 && of.TypeImp() <= 3;
         return Explained(of.TypeImp(), known ? GetText(300310 + of.TypeImp()) : QString());
     }},
};

using P = PanelClass;
constexpr Field<P> PanelFields[] = {
    {510401, [](const P& of) { return Explained(of.Model(), ModuleName(of.Model())); }},
    {300604, Flag<P, &P::Active>},
    {300610, Word<P, &P::Title>},
    {300607, [](const P& of) { return ColourText(of.TitleColor()); }},
};

using S = ConfigClass;
constexpr int LastBit = 7;
constexpr SiteField SiteFields[] = {
    {716020, [](const S& of, int) { return of.BusSettings(); }},
    {716021, [](const S& of, int) { return of.PrtSettings(); }},
    {716022, [](const S& of, int) { return of.PrinterName(); }},
    {716023, [](const S& of, int) { return QString::number(of.PrintMaxLen()); }},
    {716024, [](const S& of, int number) { return of.PrinterInitCode(number); }, 0,
     S::PrinterStrings - 1},
    {716025,
     [](const S& of, int number) {
         return QString::fromLatin1(of.PrinterInitString(number).toUtf8().toPercentEncoding(" "));
     },
     0, S::PrinterStrings - 1},
    {630244, [](const S& of, int) { return Truth(of.AutoStart()); }},
    {716026, [](const S& of, int) { return Truth(of.PrintBusResult()); }},
    {716027, [](const S& of, int) { return QString::number(of.InactivityTime()); }},
    {716028, [](const S& of, int number) { return QString::number(of.AlarmPrioSound(number)); }, 1,
     S::MaxPriority},
    {716029, [](const S& of, int bit) { return Truth(of.OptionScreen(bit)); }, 0, LastBit},
    {716030, [](const S& of, int bit) { return Truth(of.OptionHisto(bit)); }, 0, LastBit},
    {716031, [](const S& of, int bit) { return Truth(of.OptionPrinter(bit)); }, 0, LastBit},
    {716032, [](const S& of, int bit) { return Truth(of.OptionKlaxon(bit)); }, 0, LastBit},
};
/// Kinds of events by the bit that routes them.
constexpr int FirstOption = 716029;
constexpr int FirstKindText = 430210;
constexpr int LastKind = 4;

/// Gathers what differs.
class Comparison {
public:
    /// Words are formed only for what differs: most of two sites doesn't.
    using Words = std::function<QString()>;
    void setPanels(bool on) { isPanel_ = on; }
    void setPlace(
        Words group, Words part = [] { return QString(); }) {
        group_ = std::move(group);
        part_ = std::move(part);
    }
    void Add(const Words& field, const QString& first, const QString& second) {
        if (first != second)
            found_ += {group_(), part_(), field(), first, second, isPanel_};
    }
    void Add(const QString& field, const QString& first, const QString& second) {
        Add([&] { return field; }, first, second);
    }
    const QList<SiteDifference>& Found() const { return found_; }

private:
    Words group_;
    Words part_;
    bool isPanel_ = false;
    QList<SiteDifference> found_;
};

QString SiteFieldName(const SiteField& field, int number) {
    QString name = GetText(field.text);
    const bool isKind = field.text >= FirstOption && number <= LastKind;
    return name.replace(u'$', isKind ? GetText(FirstKindText + number) : QString::number(number));
}

void CompareSettings(Comparison& found, const S& first, const S& second) {
    found.setPlace([] { return GetText(Settings); });
    for (const SiteField& field : SiteFields) {
        for (int number = field.from; number <= field.to; ++number)
            found.Add([&] { return SiteFieldName(field, number); }, field.value(first, number),
                      field.value(second, number));
    }
}

/// A user is known by his name.
int UserOfName(const S& site, const QString& name) {
    for (int i = 1; i <= site.UserCount(); ++i) {
        if (site.UserName(i) == name)
            return i;
    }
    return 0;
}

void CompareUsers(Comparison& found, const S& first, const S& second) {
    found.setPlace([] { return GetText(Users); });
    const QString level = GetText(612014) + u' ';
    for (int i = 1; i <= first.UserCount(); ++i) {
        const QString name = first.UserName(i);
        const QString mine = level + QString::number(first.UserLevel(i));
        const int other = UserOfName(second, name);
        if (other == 0) {
            found.Add(name, mine, GetText(Nothing));
            continue;
        }
        found.Add(name, mine, level + QString::number(second.UserLevel(other)));
        if (first.UserPwd(i) != second.UserPwd(other))
            found.Add(name, QString(), GetText(Changed));
    }
    for (int i = 1; i <= second.UserCount(); ++i) {
        if (UserOfName(first, second.UserName(i)) == 0)
            found.Add(second.UserName(i), GetText(Nothing),
                      level + QString::number(second.UserLevel(i)));
    }
}

/// Titles and texts on the display may hold line breaks of their own.
QString OneLine(const QString& text) {
    return text.simplified();
}

void CompareTexts(Comparison& found, const S& first, const S& second) {
    found.setPlace([] { return GetText(LibraryTexts); });
    for (int i = 1; i <= S::BiblioCount; ++i)
        found.Add(QString::number(i), first.BiblioText(i), second.BiblioText(i));
    found.setPlace([] { return GetText(Instructions); });
    for (int i = 1; i <= S::ConsigneCount; ++i)
        found.Add(QString::number(i), first.ConsigneText(i), second.ConsigneText(i));
}

QString Named(int text, int number, const QString& name) {
    return GetText(text).replace(u'$', QString::number(number)) +
           (name.isEmpty() ? QString() : u' ' + OneLine(name));
}

const QString& Either(const QString& first, const QString& second) {
    return first.isEmpty() ? second : first;
}

void ComparePanels(Comparison& found, const S& first, const S& second) {
    for (int number = 1; number <= S::PanelCount; ++number) {
        const P& one = first.Panel(number);
        const P& other = second.Panel(number);
        const auto panel = [&] {
            return Named(PanelPlace, number, Either(one.Title(), other.Title()));
        };
        found.setPlace(panel);
        for (const Field<P>& field : PanelFields)
            found.Add([&] { return GetText(field.text); }, field.value(one), field.value(other));
        for (int i = 1; i <= P::MaxChannel; ++i) {
            const C& channel = one.Channel(i);
            const C& otherChannel = other.Channel(i);
            found.setPlace(panel, [&] {
                return Named(ChannelPlace, i,
                             Either(channel.ScreenText(), otherChannel.ScreenText()));
            });
            for (const Field<C>& field : ChannelFields)
                found.Add([&] { return GetText(field.text); }, field.value(channel),
                          field.value(otherChannel));
        }
    }
}

QString EndOf(int module, int channel) {
    return channel == 0 ? GetText(PanelRule).replace(u'$', QString::number(module))
                        : GetText(ChannelRule)
                              .replace(QStringLiteral("$1"), QString::number(module))
                              .replace(QStringLiteral("$2"), QString::number(channel));
}

QString RuleName(const MirrorClass& rule) {
    return EndOf(rule.FromModule(), rule.FromChannel()) + QStringLiteral(" > ") +
           EndOf(rule.ToModule(), rule.ToChannel());
}

QString KindOf(const MirrorClass* rule) {
    if (rule == nullptr)
        return GetText(Nothing);
    const bool known = rule->MirrorType() >= 0 && rule->MirrorType() <= MirrorClass::Pulse;
    return known ? GetText(510300 + rule->MirrorType()) : QString::number(rule->MirrorType());
}

/// By its end points; of several between the same ones the first.
QHash<QString, const MirrorClass*> RulesOf(const S& site) {
    QHash<QString, const MirrorClass*> rules;
    for (const MirrorClass& rule : site.Mirrors()) {
        const MirrorClass*& place = rules[rule.ID()];
        place = place == nullptr ? &rule : place;
    }
    return rules;
}

void CompareMirrors(Comparison& found, const S& first, const S& second) {
    found.setPlace([] { return GetText(Mirrors); });
    const auto ofFirst = RulesOf(first);
    const auto ofSecond = RulesOf(second);
    for (const MirrorClass& rule : first.Mirrors())
        found.Add([&] { return RuleName(rule); }, KindOf(&rule), KindOf(ofSecond.value(rule.ID())));
    for (const MirrorClass& rule : second.Mirrors()) {
        if (!ofFirst.contains(rule.ID()))
            found.Add(RuleName(rule), GetText(Nothing), KindOf(&rule));
    }
}

} // namespace

QList<SiteDifference> CompareSites(const ConfigClass& first, const ConfigClass& second) {
    Comparison found;
    found.setPanels(true);
    ComparePanels(found, first, second);
    found.setPanels(false);
    CompareSettings(found, first, second);
    CompareUsers(found, first, second);
    CompareTexts(found, first, second);
    CompareMirrors(found, first, second);
    return found.Found();
}
