#pragma once

#include "events/EventClass.h"

#include <QDir>
#include <QString>
#include <QStringList>

class EventPrinter;
class SecondFolder;

/// What is written of an event: trace line, history line, printed line; and the daily care of the
/// files.
namespace HistoProcs {

/// The 132-character trace line, in English whatever the operator's language.
QString FormateTrace(const EventClass& event);

/// Appends one event to the history file of the month, or of the day when "PeriodUnit" is above
/// 0. Never asks whether the event belongs there, so that a line can be forced. The file is open
/// for no longer than the call.
void HistoEvent(const EventClass& event);

/// The history holds the line of the event, which was written shortly before the end of the program
/// or not any more.
bool HistoryHolds(const EventClass& event);

// What stands around the date in the name of a history file.
inline const QString FileHead = QStringLiteral("Histo");
inline const QString FileEnd = QStringLiteral(".his");
/// Names of the history files in the application's folder, in their order.
QStringList HistoFileNames();
/// Path of the history file that takes the lines of the present moment.
QString HistoFileName();

/// Prints one line for the event. May lower `Aff` to 5, which stays on the event.
void PrintEvent(EventClass& event, EventPrinter& printer);

/// A line of no event as the printer takes it: behind the sequence of every line, cut, and in its
/// character set.
QString PlainLine(const QString& text);
/// Characters of such a line that are printed.
int PlainLineWidth();

/// The line that tells on paper how many events it doesn't hold.
QString UnprintedLine(int events);

/// The histories of a folder, whoever made them.
QFileInfoList HistoriesIn(const QDir& folder);
/// Deletes those last written before the limit. Gives 0 or the number of the error of one that
/// stays.
int PurgeHistories(const QDir& folder, const QDateTime& limit);

/// The daily task, in this order: the trace file of the new day; purge of traces by the date of
/// their name; purge of histories by the time they were last written, here and in the second
/// folder; copy of the histories to the second folder. Without `purges` nothing is deleted.
void DoMidnightActions(SecondFolder& second, bool purges = true);

} // namespace HistoProcs
