#pragma once

#include "core/DateTimes.h"
#include "core/Record.h"

#include <QString>

/// The day's trace file, the technician's record: one line for each event and each action of the
/// system. Every line is committed as it is written, so that a crash loses none.
namespace Trace {

/// The columns of an event's line, 132 characters, one blank between fields.
namespace Columns {
inline constexpr int Width = 132;
inline constexpr Column Date{0, 10};
inline constexpr Column Time{11, 8};
inline constexpr Column Number{20, 6};
inline constexpr Column PanelClock{27, 7};
inline constexpr Column Key{35, 8};
inline constexpr Column Origin{44, 7};
inline constexpr Column Parameter{52, 6};
inline constexpr Column Word{59, 6};
inline constexpr Column Common{66, 26};
inline constexpr Column Specific{93, 39};
} // namespace Columns

/// Width at which lines other than an event's are cut.
inline constexpr int LineWidth = 80;

/// Path of the trace of a day.
QString FileName(DateTime day);
/// Makes the folder if there is none and opens the file of today. Throws RunTimeError.
void OpenToday();
/// Appends one line and commits it. Throws RunTimeError.
void Write(const QString& line);
/// Writes date, time and words as one line, cut at LineWidth. What can't be written is a standing
/// fault and no error: whoever notes something has more to do.
void Note(const QString& words) noexcept;
/// Line of an action on the bus as a whole, laid out like an event's: `word` stands in the number
/// column and again as the event's word, key and texts are stars.
QString SystemLine(DateTime when, const QString& number, const QString& word);
/// `count` times "*".
inline QString Stars(int count) {
    return QString(count, u'*');
}

} // namespace Trace
