#pragma once

#include "events/EventClass.h"
#include "platform/Journal.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <utility>

/// An event as it is told to a log server or to the journal of the machine.
struct LogEntry {
    /// Those of syslog; the lower the more serious.
    enum class Severity { Critical = 2, Error = 3, Warning = 4, Notice = 5, Information = 6 };

    Severity severity = Severity::Information;
    /// Word of the kind in English: upper case letters and "-".
    QByteArray kind;
    DateTime when = 0;
    /// Names in lower case with what the event holds.
    QList<std::pair<QByteArray, QString>> params;
    /// In the operator's language.
    QString text;
};

namespace SyslogLine {

/// An event, with the words that the history has of it.
LogEntry EntryOf(const EventClass& event);
/// Something that is told of the forwarding itself.
LogEntry NoteOf(LogEntry::Severity severity, const QByteArray& kind, const QString& text);

/// One message by RFC 5424, facility local0, without a line feed: the params as the structured data
/// "event@32473", the text in UTF-8 behind its mark.
QByteArray Format(const LogEntry& entry);
/// The message in its frame on a stream by RFC 6587, its length ahead.
QByteArray Framed(const QByteArray& message);
/// The fields of the journal: MESSAGE, PRIORITY, SYSLOG_IDENTIFIER, KORVANELLE_KIND and one
/// KORVANELLE_ for each param.
platform::Journal::Fields JournalFields(const LogEntry& entry);

} // namespace SyslogLine
