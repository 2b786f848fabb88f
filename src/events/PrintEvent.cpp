// One printed line for an event: the record in the operator's language behind the control
// sequences of the printer.

#include "events/HistoProcs.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Record.h"
#include "core/Trace.h"
#include "events/DirectPrinting.h"
#include "events/EventPrinter.h"
#include "events/ServiceTexts.h"
#include "events/TextProcs.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/CodePage.h"

#include <algorithm>

namespace HistoProcs {

using ErrorHandling::Guard;
using Trace::Stars;

namespace {

namespace PrintLine {
constexpr int Width = 130;
constexpr Column Date{0, 10};
constexpr Column Time{11, 8};
constexpr Column Number{20, 6};
constexpr Column Origin{27, 7};
constexpr Column Parameter{35, 11};
constexpr Column Display{47, 15};
constexpr Column Common{63, 26};
constexpr Column Specific{90, 40};
} // namespace PrintLine

/// One event, then more.
constexpr int EventsNotPrinted = 714060;
constexpr qint16 LastStyledAff = 5;
constexpr int NoStyle = -1;

/// The control bytes of a sequence: hexadecimal values separated by blanks.
QString Sequence(int index) {
    if (index == NoStyle)
        return {};
    QByteArray bytes;
    const QStringList items =
        Global::Configuration().PrinterInitString(index).split(u' ', Qt::SkipEmptyParts);
    for (const QString& item : items)
        bytes += char(item.toInt(nullptr, 16));
    return platform::FromCodePage(bytes);
}

/// Number of the sequence that an event is printed in. Lowers a channel's `Aff` to the last styled
/// one.
int StyleOf(EventClass& event) {
    static constexpr int ByAff[] = {4, 3, 1, 1, 2, 2};
    if (event.Chnl() == Family::Presence)
        return event.Aff() == 0 ? 1 : 4;
    if (event.Chnl() == Family::System)
        return 7;
    if (event.Chnl() > Family::LastChannel)
        return NoStyle;
    if (event.Param() == 0)
        return event.Aff() == 1 ? 5 : 6;
    event.setAff(Bytes::Limit<qint16>(event.Aff(), 0, LastStyledAff));
    return ByAff[event.Aff()];
}

void SetPresence(Record& record, const EventClass& event) {
    const bool appeared = event.Aff() != 0;
    const int model = Global::Configuration().Panel(event.Panel()).Model();
    record.Set(PrintLine::Origin, Global::Get().panelMark + Bytes::Padded(event.Panel(), 2) + u'-' +
                                      ModuleName(model).left(3));
    record.Set(PrintLine::Parameter, GetText(appeared ? 51001 : 51000));
    record.Set(PrintLine::Display, GetText(appeared ? 51031 : 51032));
}

void SetStartOrStop(Record& record, bool started, QStringView display) {
    record.Set(PrintLine::Parameter, started ? u"START" : u"STOP");
    record.Set(PrintLine::Display, display);
    record.Set(PrintLine::Common, Stars(PrintLine::Common.width));
    record.Set(PrintLine::Specific, Stars(PrintLine::Specific.width));
}

void SetService(Record& record, const EventClass& event) {
    const ServiceTexts::Words words = ServiceTexts::Of(event);
    record.Set(PrintLine::Origin, words.origin);
    record.Set(PrintLine::Parameter, words.parameter);
    record.Set(PrintLine::Display, words.display);
    record.Set(PrintLine::Common, words.common);
    record.Set(PrintLine::Specific, words.specific);
}

void SetSystem(Record& record, const EventClass& event) {
    record.Set(PrintLine::Origin, u"SYSTEM");
    switch (event.Aff()) {
    case SystemEvents::AcknowledgedOnPc:
        record.Set(PrintLine::Parameter, GetText(51041));
        record.Set(PrintLine::Display, GetText(51039));
        record.Set(PrintLine::Common, Global::Get().userName);
        record.Set(PrintLine::Specific, Stars(PrintLine::Specific.width));
        break;
    case SystemEvents::ApplicationStarted:
    case SystemEvents::ApplicationStopped:
        SetStartOrStop(record, event.Aff() == SystemEvents::ApplicationStarted, u"APPLIC");
        break;
    case SystemEvents::UserChanged:
        record.Set(PrintLine::Parameter, QStringLiteral("LEVEL %1").arg(Global::Get().userLevel));
        record.Set(PrintLine::Display, u"LOGIN");
        record.Set(PrintLine::Common, Global::Get().userName);
        break;
    case SystemEvents::CommStarted:
    case SystemEvents::CommStopped:
        SetStartOrStop(record, event.Aff() == SystemEvents::CommStarted, u"COMM");
        break;
    default:
        if (ServiceTexts::IsOne(event))
            SetService(record, event);
        break;
    }
}

void SetChannel(Record& record, const EventClass& event) {
    record.Set(PrintLine::Origin, TextProcs::ChannelOrigin(event.Panel(), event.Chnl()));
    record.Set(PrintLine::Display, TextProcs::DisplayText(event));
    record.Set(PrintLine::Parameter, GetText(51000 + event.Param()));
    record.Set(PrintLine::Common, TextProcs::CommonText(event.Panel(), event.Chnl()));
    record.Set(PrintLine::Specific,
               Global::Configuration().Panel(event.Panel()).Channel(event.Chnl()).PrintText());
}

QString TrimmedRight(const QString& text) {
    qsizetype length = text.size();
    while (length > 0 && text[length - 1] == u' ')
        --length;
    return text.left(length);
}

/// As the printer takes it: cut, and in its character set.
QString Ready(QString line) {
    const int maxLen = Global::Configuration().PrintMaxLen();
    if (maxLen > 0)
        line.truncate(maxLen);
    return DirectPrinting::AnsiToOem(line);
}

} // namespace

void PrintEvent(EventClass& event, EventPrinter& printer) {
    Guard("HistoProcs.PrintEvent", [&] {
        const QString start = Sequence(0) + Sequence(StyleOf(event));
        Record record(PrintLine::Width);
        record.Set(PrintLine::Date, DateTimes::ShortDate(event.GDH()));
        record.Set(PrintLine::Time, DateTimes::LongTime(event.GDH()));
        // The number stands right-aligned in fifteen columns of which the field takes the first
        // six: it prints blank, and the forms of every site count on that.
        record.Set(PrintLine::Number, QString::number(event.Num()).rightJustified(15));
        if (event.Chnl() == Family::Presence)
            SetPresence(record, event);
        else if (event.Chnl() == Family::System)
            SetSystem(record, event);
        else if (event.Chnl() <= Family::LastChannel)
            SetChannel(record, event);
        printer.Print(Ready(TrimmedRight(start + record.Text())));
    });
}

QString PlainLine(const QString& text) {
    return Ready(Sequence(0) + text);
}

int PlainLineWidth() {
    const int maxLen = Global::Configuration().PrintMaxLen();
    return std::max(0, (maxLen > 0 ? maxLen : PrintLine::Width) - int(Sequence(0).size()));
}

QString UnprintedLine(int events) {
    const QString words = TextProcs::PartOf(GetText(EventsNotPrinted, true), events == 1 ? 0 : 1);
    return PlainLine(QString(words).replace(u'$', QString::number(events)));
}

} // namespace HistoProcs
