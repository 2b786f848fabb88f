#include "config_screens/panel/ChannelParameters.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "model/ConfigClass.h"
#include "model/Models.h"

#include <QStringList>

namespace ChannelParameters {

namespace {

constexpr int No = 10001;
constexpr int Yes = 10002;
constexpr int FirstKind = 300310;
constexpr int Kinds = 4;

/// The same list for all panels.
template <char Marker> QString Plain(const PanelClass&) {
    return QString(QLatin1Char(Marker));
}

template <int Low, int High> QString Numbers(const PanelClass&) {
    return QStringLiteral("*|%1|%2").arg(Low).arg(High);
}

QString ChannelNumbers(const PanelClass& panel) {
    return QStringLiteral("*|1|%1").arg(panel.ChannelCount());
}

QString Delays(const PanelClass&) {
    return Models::ReactivTimeList();
}

QStringList KindWords() {
    QStringList words;
    for (int kind = 0; kind < Kinds; ++kind)
        words += GetText(FirstKind + kind, true);
    return words;
}

QString KindList(const PanelClass&) {
    return QStringLiteral("@|") + KindWords().join(u'|');
}

template <auto Get, auto Set> Parameter YesOrNo() {
    return {
        &Plain<'$'>,
        [](const ChannelClass& channel) { return GetText((channel.*Get)() ? Yes : No); },
        [](ChannelClass& channel, const QString& shown) { (channel.*Set)(shown == GetText(Yes)); }};
}

template <auto Get, auto Set, int Low, int High> Parameter OneNumber() {
    return {&Numbers<Low, High>,
            [](const ChannelClass& channel) { return QString::number((channel.*Get)()); },
            [](ChannelClass& channel, const QString& shown) {
                (channel.*Set)(qint16(Bytes::LongVal(shown)));
            }};
}

template <auto Get, auto Set> Parameter Text() {
    return {nullptr, [](const ChannelClass& channel) { return (channel.*Get)(); },
            [](ChannelClass& channel, const QString& shown) { (channel.*Set)(shown); }};
}

Parameter KindOfPrinting() {
    return {
        &KindList,
        [](const ChannelClass& channel) { return GetText(FirstKind + channel.TypeImp(), true); },
        [](ChannelClass& channel, const QString& shown) {
            const qsizetype kind = KindWords().indexOf(shown);
            if (kind >= 0)
                channel.setTypeImp(qint16(kind));
        }};
}

Parameter Delay() {
    return {&Delays, [](const ChannelClass& channel) { return ReactivTime(channel.ReactTpo()); },
            [](ChannelClass& channel, const QString& shown) {
                if (const auto delay = ReactivTime(shown))
                    channel.setReactTpo(*delay);
            }};
}

} // namespace

const QList<Parameter>& All() {
    using C = ChannelClass;
    static const QList<Parameter> table{
        {},
        {&ChannelNumbers},
        YesOrNo<&C::ScrAlm, &C::setScrAlm>(),
        YesOrNo<&C::PrtAlm, &C::setPrtAlm>(),
        KindOfPrinting(),
        YesOrNo<&C::Klaxon, &C::setKlaxon>(),
        OneNumber<&C::AlmPrio, &C::setAlmPrio, 1, 99>(),
        YesOrNo<&C::Histo, &C::setHisto>(),
        OneNumber<&C::BibNum, &C::setBibNum, 0, ConfigClass::BiblioCount>(),
        OneNumber<&C::HelpNum, &C::setHelpNum, 0, ConfigClass::ConsigneCount>(),
        YesOrNo<&C::React, &C::setReact>(),
        Delay(),
        Text<&C::ScreenText, &C::setScreenText>(),
        Text<&C::PrintText, &C::setPrintText>(),
    };
    return table;
}

} // namespace ChannelParameters
