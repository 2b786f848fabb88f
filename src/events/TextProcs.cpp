#include "events/TextProcs.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "events/ServiceTexts.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/RunTimeError.h"

namespace TextProcs {

using ErrorHandling::Guard;
using Trace::Stars;

namespace {

QString LevelText() {
    return QStringLiteral("LEVEL %1").arg(Global::Get().userLevel);
}

QString OrStars(const QString& text, int width) {
    return text.isEmpty() ? Stars(width) : text;
}

void SetPresence(Record& record, const EventClass& event) {
    const bool appeared = event.Aff() != 0;
    record.Set(ScreenLine::Display, GetText(appeared ? 51031 : 51032));
    record.Set(ScreenLine::Origin, PanelOrigin(event.Panel()));
    record.Set(ScreenLine::Parameter, GetText(appeared ? 51037 : 51038));
    record.Set(ScreenLine::Common,
               OrStars(GetText(appeared ? 51033 : 51034), ScreenLine::Common.width));
    record.Set(ScreenLine::Specific,
               OrStars(GetText(appeared ? 51035 : 51036), ScreenLine::Specific.width));
}

/// The channels' states as plain numbers one behind the other, as far as the column holds them.
QString StatesOf(const PanelClass& panel) {
    QString states;
    for (int channel = 1; channel <= panel.ChannelCount(); ++channel)
        states = (states.trimmed() + QString::number(panel.Channel(channel).State()))
                     .left(ScreenLine::Specific.width);
    return states;
}

void SetMidnightState(Record& record, const EventClass& event) {
    const PanelClass& panel = Global::Configuration().Panel(event.Panel());
    record.Set(ScreenLine::Origin, PanelOrigin(event.Panel()));
    record.Set(ScreenLine::Parameter, GetText(51048));
    record.Set(ScreenLine::Display, GetText(51047));
    record.Set(ScreenLine::PanelClock, Stars(ScreenLine::PanelClock.width));
    if (panel.ActualModel() == 0) {
        record.Set(ScreenLine::Common, GetText(51049));
        record.Set(ScreenLine::Specific, Stars(ScreenLine::Specific.width));
    } else if (!panel.Active()) {
        record.Set(ScreenLine::Common, GetText(51051));
        record.Set(ScreenLine::Specific, Stars(ScreenLine::Specific.width));
    } else {
        record.Set(ScreenLine::Common, GetText(51050));
        record.Set(ScreenLine::Specific, StatesOf(panel));
    }
}

void SetService(Record& record, const EventClass& event) {
    const ServiceTexts::Words words = ServiceTexts::Of(event);
    record.Set(ScreenLine::Origin, words.origin);
    record.Set(ScreenLine::Parameter, words.parameter);
    record.Set(ScreenLine::Display, words.display);
    record.Set(ScreenLine::Common, words.common);
    record.Set(ScreenLine::Specific, words.specific);
}

void SetSystem(Record& record, const EventClass& event) {
    record.Set(ScreenLine::Origin, QStringLiteral("SYSTEM"));
    const bool started =
        event.Aff() == SystemEvents::ApplicationStarted || event.Aff() == SystemEvents::CommStarted;
    switch (event.Aff()) {
    case SystemEvents::AcknowledgedOnPc:
        record.Set(ScreenLine::Parameter, LevelText());
        record.Set(ScreenLine::Display, GetText(51039));
        record.Set(ScreenLine::Common, Global::Get().userName);
        break;
    case SystemEvents::ApplicationStarted:
    case SystemEvents::ApplicationStopped:
        record.Set(ScreenLine::Parameter, started ? u"START" : u"STOP");
        record.Set(ScreenLine::Display, u"APPLIC");
        record.Set(ScreenLine::PanelClock, Stars(ScreenLine::PanelClock.width));
        record.Set(ScreenLine::Common, Stars(ScreenLine::Common.width));
        record.Set(ScreenLine::Specific, Stars(ScreenLine::Specific.width));
        break;
    case SystemEvents::UserChanged:
        record.Set(ScreenLine::Parameter, LevelText());
        record.Set(ScreenLine::Display, u"LOGIN");
        record.Set(ScreenLine::Common, Global::Get().userName);
        break;
    case SystemEvents::CommStarted:
    case SystemEvents::CommStopped:
        record.Set(ScreenLine::Parameter, started ? u"START" : u"STOP");
        record.Set(ScreenLine::Display, u"COMM");
        break;
    case SystemEvents::MidnightState:
        SetMidnightState(record, event);
        break;
    default:
        if (ServiceTexts::IsOne(event))
            SetService(record, event);
        break;
    }
}

void SetChannel(Record& record, const EventClass& event) {
    record.Set(ScreenLine::Display, DisplayText(event));
    record.Set(ScreenLine::PanelClock, PanelClockText(event.Clock()));
    record.Set(ScreenLine::Origin, ChannelOrigin(event.Panel(), event.Chnl()));
    record.Set(ScreenLine::Parameter, GetText(51000 + event.Param()));
    record.Set(ScreenLine::Common, CommonText(event.Panel(), event.Chnl()));
    record.Set(ScreenLine::Specific,
               Global::Configuration().Panel(event.Panel()).Channel(event.Chnl()).ScreenText());
}

/// The fields that both lines hold, under the columns of each.
struct Pair {
    Column screen;
    Column file;
};
constexpr Pair Pairs[] = {
    {ScreenLine::Date, FileLine::Date},         {ScreenLine::Time, FileLine::Time},
    {ScreenLine::Number, FileLine::Number},     {ScreenLine::PanelClock, FileLine::PanelClock},
    {ScreenLine::Origin, FileLine::Origin},     {ScreenLine::Parameter, FileLine::Parameter},
    {ScreenLine::Display, FileLine::Display},   {ScreenLine::Common, FileLine::Common},
    {ScreenLine::Specific, FileLine::Specific},
};

} // namespace

QString PartOf(const QString& text, int index) {
    const QStringList parts = text.split(u'|');
    if (index < 0 || index >= parts.size())
        throw platform::RunTimeError(platform::errors::Subscript);
    return parts[index];
}

QString PanelOrigin(int panel) {
    return Global::Get().panelMark + Bytes::Padded(panel, 2) + u'-' +
           ModuleName(Global::Configuration().Panel(panel).Model());
}

QString ChannelOrigin(int panel, int chnl) {
    const QString origin = Global::Get().panelMark + Bytes::Padded(panel, 2) + u'-';
    return chnl == Family::PanelWide ? origin + QStringLiteral("ACK")
                                     : origin + Global::Get().channelMark + Bytes::Padded(chnl, 2);
}

QString PanelClockText(qint32 clock) {
    return clock >= 0 ? Bytes::Padded(clock, 7) : QStringLiteral("SYNCHRO");
}

QString CommonText(int panel, int chnl) {
    ConfigClass& site = Global::Configuration();
    return site.BiblioText(site.Panel(panel).Channel(chnl).BibNum());
}

QString DisplayText(const EventClass& event) {
    if (event.Chnl() == Family::PanelWide)
        return GetText(51020 + event.Aff());
    const QString text = GetText(51010 + event.Aff(), true);
    return event.Aff() == 1 ? PartOf(text, event.Param()) : text;
}

QString FormateHistoScreen(const EventClass& event) {
    Record record(ScreenLine::Width);
    Guard("TextProcs.FormateHistoScreen", [&] {
        record.Break(ScreenLine::Break);
        record.Set(ScreenLine::Number, Bytes::Padded(event.Num(), ScreenLine::Number.width));
        record.Set(ScreenLine::Date, DateTimes::ShortDate(event.GDH()));
        record.Set(ScreenLine::Time, DateTimes::LongTime(event.GDH()));
        if (event.Chnl() == Family::Presence)
            SetPresence(record, event);
        else if (event.Chnl() == Family::System)
            SetSystem(record, event);
        else if (event.Chnl() <= Family::LastChannel)
            SetChannel(record, event);
    });
    return record.Text();
}

QString HistoScreenLineToHistoFileLine(const QString& line) {
    const Record screen(ScreenLine::Width, line);
    Record file(FileLine::Width);
    for (const Pair& pair : Pairs)
        file.Set(pair.file, screen.Get(pair.screen));
    return file.Text();
}

QString HistoFileLineToHistoScreenLine(const QString& line) {
    const Record file(FileLine::Width, line);
    Record screen(ScreenLine::Width);
    for (const Pair& pair : Pairs)
        screen.Set(pair.screen, file.Get(pair.file));
    return screen.Text();
}

} // namespace TextProcs
