#include "events/SyslogLine.h"

#include "core/Record.h"
#include "events/TextProcs.h"
#include "platform/Clock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>
#include <QSysInfo>
#include <array>

namespace SyslogLine {

namespace {

using Severity = LogEntry::Severity;

const QByteArray Application = QByteArrayLiteral("korvanelle");
/// Number for examples and private use, under which structured data is named.
const QByteArray DataId = QByteArrayLiteral("event@32473");
constexpr int FacilityLocal0 = 16;
constexpr int SeveritiesAFacility = 8;
constexpr int LongestHost = 255;

struct Kind {
    const char* word;
    Severity severity;
};

constexpr std::array PresenceKinds{Kind{"PANEL-LOST", Severity::Error},
                                   Kind{"PANEL-BACK", Severity::Notice}};
constexpr std::array SystemKinds{Kind{"ACK-PC", Severity::Notice},
                                 Kind{"APPLI-START", Severity::Information},
                                 Kind{"APPLI-STOP", Severity::Information},
                                 Kind{"USER-CHANGE", Severity::Information},
                                 Kind{"COMM-START", Severity::Information},
                                 Kind{"COMM-STOP", Severity::Information},
                                 Kind{"MIDNIGHT-STATE", Severity::Information},
                                 Kind{"OUT-OF-SERVICE", Severity::Notice},
                                 Kind{"BACK-IN-SERVICE", Severity::Notice},
                                 Kind{"OUT-OF-SERVICE-COUNT", Severity::Information}};
constexpr std::array PanelKinds{Kind{"ACK-UNKNOWN", Severity::Notice},
                                Kind{"ACK-KL", Severity::Notice}, Kind{"ACK-CL", Severity::Notice},
                                Kind{"CLEAR", Severity::Notice}};
constexpr std::array ChannelKinds{
    Kind{"NORMAL", Severity::Notice}, Kind{"ACTIVE", Severity::Critical},
    Kind{"CABLE-FAULT", Severity::Warning}, Kind{"FIRST-FAULT", Severity::Critical},
    Kind{"SECOND-FAULT", Severity::Error}};
constexpr Kind Acknowledged{"ACKLGD", Severity::Notice};

template <size_t Count> Kind Of(const std::array<Kind, Count>& kinds, int aff, const Kind& other) {
    return aff >= 0 && aff < int(Count) ? kinds[size_t(aff)] : other;
}

Kind KindOf(const EventClass& event) {
    switch (event.Chnl()) {
    case Family::Presence:
        return PresenceKinds[event.Aff() != 0 ? 1 : 0];
    case Family::System:
        return Of(SystemKinds, event.Aff(), {"SYSTEM", Severity::Information});
    case Family::PanelWide:
        return Of(PanelKinds, event.Aff(), {"PANEL", Severity::Notice});
    default:
        return event.Aff() == 1 && event.Param() == 1
                   ? Acknowledged
                   : Of(ChannelKinds, event.Aff(), {"CHANNEL", Severity::Notice});
    }
}

/// What a column holds, empty where it is filled with stars.
QString Value(const Record& record, const Column& column) {
    const QString value = record.Get(column).trimmed();
    return value.count(u'*') == value.size() ? QString() : value;
}

/// Neither a line of the spool nor one of the journal takes a control character.
QByteArray OneLine(const QString& text) {
    QByteArray line = text.toUtf8();
    for (char& c : line) {
        if (uchar(c) < ' ' || c == '\x7F')
            c = ' ';
    }
    return line;
}

QByteArray Escaped(const QString& value) {
    return OneLine(value).replace('\\', "\\\\").replace('"', "\\\"").replace(']', "\\]");
}

/// Of a time that is just now.
QByteArray TimeStamp(DateTime when) {
    const QDateTime stamp(DateTimes::DateOf(when), DateTimes::TimeOf(when), Qt::OffsetFromUTC,
                          platform::Clock::Current().OffsetFromUtc());
    return stamp.toString(Qt::ISODateWithMs).toLatin1();
}

/// Letters, digits and signs that print, or "-" for none.
QByteArray HostName() {
    QByteArray name;
    for (const char c : QSysInfo::machineHostName().toLatin1()) {
        if (c > ' ' && c < '\x7F')
            name += c;
    }
    return name.isEmpty() ? QByteArrayLiteral("-") : name.left(LongestHost);
}

/// Stays the same from start to end.
const QByteArray& Origin() {
    static const QByteArray origin = HostName() + ' ' + Application + ' ' +
                                     QByteArray::number(QCoreApplication::applicationPid());
    return origin;
}

} // namespace

LogEntry EntryOf(const EventClass& event) {
    namespace Line = TextProcs::ScreenLine;
    const Kind kind = KindOf(event);
    const Record record(Line::Width, TextProcs::FormateHistoScreen(event));
    const QString common = Value(record, Line::Common);
    const QString specific = Value(record, Line::Specific);
    QStringList words{Value(record, Line::Origin), Value(record, Line::Parameter),
                      Value(record, Line::Display), common, specific};
    words.removeAll(QString());
    return {kind.severity,
            kind.word,
            event.GDH(),
            {{"panel", QString::number(event.Panel())},
             {"channel", QString::number(event.Chnl())},
             {"kind", QString::fromLatin1(kind.word)},
             {"number", QString::number(event.Num())},
             {"param", QString::number(event.Param())},
             {"clock", QString::number(event.Clock())},
             {"common", common},
             {"specific", specific}},
            words.join(u' ')};
}

LogEntry NoteOf(LogEntry::Severity severity, const QByteArray& kind, const QString& text) {
    return {severity, kind, DateTimes::Now(), {}, text};
}

QByteArray Format(const LogEntry& entry) {
    QByteArray data;
    for (const auto& [name, value] : entry.params)
        data += ' ' + name + "=\"" + Escaped(value) + '"';
    return '<' + QByteArray::number(FacilityLocal0 * SeveritiesAFacility + int(entry.severity)) +
           ">1 " + TimeStamp(entry.when) + ' ' + Origin() + ' ' + entry.kind + ' ' +
           (data.isEmpty() ? QByteArrayLiteral("-") : '[' + DataId + data + ']') + " \xEF\xBB\xBF" +
           OneLine(entry.text);
}

QByteArray Framed(const QByteArray& message) {
    return QByteArray::number(message.size()) + ' ' + message;
}

platform::Journal::Fields JournalFields(const LogEntry& entry) {
    platform::Journal::Fields fields{{"MESSAGE", OneLine(entry.text)},
                                     {"PRIORITY", QByteArray::number(int(entry.severity))},
                                     {"SYSLOG_IDENTIFIER", Application}};
    if (entry.params.isEmpty())
        fields.append({"KORVANELLE_KIND", entry.kind});
    for (const auto& [name, value] : entry.params)
        fields.append({"KORVANELLE_" + name.toUpper(), OneLine(value)});
    return fields;
}

} // namespace SyslogLine
