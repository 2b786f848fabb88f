#include "events/HistoProcs.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/ServiceTexts.h"
#include "events/TextProcs.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/CodePage.h"
#include "platform/FileReading.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/LineLog.h"
#include "platform/RunTimeError.h"

#include <QDir>

namespace HistoProcs {

using ErrorHandling::Guard;
using TextProcs::PartOf;
using Trace::Stars;
namespace Columns = Trace::Columns;
namespace FileLine = TextProcs::FileLine;

namespace {

void SetPresence(Record& record, const EventClass& event) {
    record.Set(Columns::Word, event.Aff() != 0 ? u"APPEAR" : u"DISAPP");
    record.Set(Columns::Origin, TextProcs::PanelOrigin(event.Panel()));
    record.Set(Columns::Parameter, u"Alarm");
    record.Set(Columns::Common, Stars(Columns::Common.width));
    record.Set(Columns::Specific, Stars(Columns::Specific.width));
}

void SetUser(Record& record, const QString& origin, QStringView word, const QString& specific) {
    record.Set(Columns::Origin, origin);
    record.Set(Columns::Word, word);
    record.Set(Columns::Parameter, u"USER");
    record.Set(Columns::Common, Global::Get().userName);
    record.Set(Columns::Specific, specific);
}

void SetStartOrStop(Record& record, QStringView word, QStringView parameter) {
    record.Set(Columns::Origin, u"SYSTEM");
    record.Set(Columns::Word, word);
    record.Set(Columns::Parameter, parameter);
    record.Set(Columns::Common, Stars(Columns::Common.width));
    record.Set(Columns::Specific, Stars(Columns::Specific.width));
}

void SetService(Record& record, const EventClass& event) {
    const ServiceTexts::Words words = ServiceTexts::Of(event);
    record.Set(Columns::Origin, words.origin);
    record.Set(Columns::Word, event.Aff() == SystemEvents::BackInService ? u"BACK" : u"OUT");
    record.Set(Columns::Parameter,
               event.Aff() == SystemEvents::OutOfServiceCount ? u"COUNT" : u"SERV");
    record.Set(Columns::Common, words.common);
    record.Set(Columns::Specific, words.specific);
}

void SetSystem(Record& record, const EventClass& event) {
    switch (event.Aff()) {
    case SystemEvents::AcknowledgedOnPc:
        SetUser(record, TextProcs::PanelOrigin(event.Panel()), u"ACK PC",
                Stars(Columns::Specific.width));
        break;
    case SystemEvents::ApplicationStarted:
    case SystemEvents::ApplicationStopped:
        record.Set(Columns::Key, Stars(Columns::Key.width));
        SetStartOrStop(record, event.Aff() == SystemEvents::ApplicationStarted ? u"START" : u"STOP",
                       u"APPLI");
        break;
    case SystemEvents::UserChanged:
        SetUser(record, QStringLiteral("SYSTEM"), u"CHANGE",
                QStringLiteral("LEVEL %1").arg(Global::Get().userLevel));
        break;
    case SystemEvents::CommStarted:
    case SystemEvents::CommStopped:
        SetStartOrStop(record, event.Aff() == SystemEvents::CommStarted ? u"START" : u"STOP",
                       u"COMM");
        break;
    default:
        if (ServiceTexts::IsOne(event))
            SetService(record, event);
        break;
    }
}

/// English word of an event of a channel or of a panel as a whole. Throws RunTimeError
/// `Subscript` for a code behind the lists.
QString TraceWord(const EventClass& event) {
    static const QStringList channelWords = {
        QStringLiteral("NORMAL"), QStringLiteral("ACTIVE|ACKLGD"), QStringLiteral("CABLE"),
        QStringLiteral("1stFLT"), QStringLiteral("2ndFLT")};
    static const QStringList panelWords = {QStringLiteral("ACK???"), QStringLiteral("ACK KL"),
                                           QStringLiteral("ACK CL"), QStringLiteral("CLEAR")};
    const bool ofPanel = event.Chnl() == Family::PanelWide;
    const QStringList& words = ofPanel ? panelWords : channelWords;
    if (event.Aff() < 0 || event.Aff() >= words.size())
        throw platform::RunTimeError(platform::errors::Subscript);
    const QString& word = words[event.Aff()];
    return !ofPanel && event.Aff() == 1 ? PartOf(word, event.Param()) : word;
}

void SetChannel(Record& record, const EventClass& event) {
    record.Set(Columns::Word, TraceWord(event));
    record.Set(Columns::PanelClock, TextProcs::PanelClockText(event.Clock()));
    record.Set(Columns::Origin, TextProcs::ChannelOrigin(event.Panel(), event.Chnl()));
    record.Set(Columns::Parameter, GetText(51000 + event.Param()));
    record.Set(Columns::Common, TextProcs::CommonText(event.Panel(), event.Chnl()));
    record.Set(Columns::Specific,
               Global::Configuration().Panel(event.Panel()).Channel(event.Chnl()).ScreenText());
}

/// Headings of two words hold a no-break space: whoever counts words by blanks sees one.
QString HeadingLine() {
    Record record(FileLine::Width);
    record.Set(FileLine::Date, u"Date");
    record.Set(FileLine::Time, u"Time");
    record.Set(FileLine::Number, u"Evt\u00A0No");
    record.Set(FileLine::PanelClock, u"PnlCnt");
    record.Set(FileLine::Origin, u"Origin");
    record.Set(FileLine::Parameter, u"Parameter");
    record.Set(FileLine::Display, u"Display");
    record.Set(FileLine::Common, u"Common\u00A0text");
    record.Set(FileLine::Specific, u"Specific\u00A0text");
    return record.Text();
}

/// The former run may have been killed in the middle of a line; this one leaves none torn. An empty
/// name makes the next one be looked at again.
void EndTornLineOnce(const QString& path) {
    static QString seen;
    if (seen == path)
        return;
    if (!path.isEmpty())
        platform::EndTornLine(path);
    seen = path;
}

bool DailyFiles() {
    return Bytes::Val(IniRead(QStringLiteral("Files"), QStringLiteral("PeriodUnit"),
                              QStringLiteral("0"))) >= 1;
}

/// Path of the history file of a moment.
QString FileOf(DateTime when) {
    return Global::InApplicationFolder(
        FileHead + (DailyFiles() ? DateTimes::FileDate(when) : DateTimes::FileMonth(when)) +
        FileEnd);
}

/// The line of an event as it stands in the file.
QByteArray BytesOf(const EventClass& event) {
    return platform::ToCodePage(
               TextProcs::HistoScreenLineToHistoFileLine(TextProcs::FormateHistoScreen(event))) +
           "\r\n";
}

/// How far back a line is looked for that a kill may have cut off, in bytes: some four hundred
/// lines, more than one start of the program writes.
constexpr qint64 LastLines = qint64(64) * 1024;

} // namespace

QString FormateTrace(const EventClass& event) {
    Record record(Columns::Width);
    Guard("HistoProcs.FormateTrace", [&] {
        record.Set(Columns::Date, DateTimes::ShortDate(event.GDH()));
        record.Set(Columns::Time, DateTimes::LongTime(event.GDH()));
        record.Set(Columns::Number, Bytes::Padded(event.Num(), Columns::Number.width));
        record.Set(Columns::Key, Bytes::Hex8(event.ID()));
        if (event.Chnl() == Family::Presence)
            SetPresence(record, event);
        else if (event.Chnl() == Family::System)
            SetSystem(record, event);
        else if (event.Chnl() <= Family::LastChannel)
            SetChannel(record, event);
    });
    return record.Text();
}

QStringList HistoFileNames() {
    return QDir(platform::ApplicationFolder())
        .entryList({FileHead + u'*' + FileEnd}, QDir::Files | QDir::CaseSensitive, QDir::Name);
}

QString HistoFileName() {
    return FileOf(DateTimes::Now());
}

bool HistoryHolds(const EventClass& event) {
    bool held = false;
    Guard("HistoProcs.HistoryHolds", [&] {
        const QByteArray line = BytesOf(event);
        for (const QString& path : {FileOf(event.GDH()), HistoFileName()})
            held = held || platform::ReadEnd(path, LastLines).contains(line);
    });
    return held;
}

void HistoEvent(const EventClass& event) {
    const bool written = Guard("HistoProcs.HistoEvent", [&] {
        const QByteArray line = BytesOf(event);
        const QString path = HistoFileName();
        EndTornLineOnce(path);
        try {
            platform::AppendTo(path, line, platform::ToCodePage(HeadingLine()) + "\r\n");
        } catch (const platform::RunTimeError&) {
            EndTornLineOnce(QString());
            throw;
        }
    });
    if (written)
        Faults::Clear(Faults::Kind::HistoryNotWritten);
    else
        Faults::Set(Faults::Kind::HistoryNotWritten);
}

} // namespace HistoProcs
