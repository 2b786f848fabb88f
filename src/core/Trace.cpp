#include "core/Trace.h"

#include "core/Faults.h"
#include "core/Global.h"
#include "platform/LineLog.h"

#include <QDir>

namespace Trace {

namespace {
platform::LineLog& Log() {
    static platform::LineLog log;
    return log;
}
} // namespace

QString FileName(DateTime day) {
    return Global::InApplicationFolder(QStringLiteral("Trace")) + QDir::separator() +
           DateTimes::FileDate(day) + QStringLiteral(".log");
}

void OpenToday() {
    Log().Open(FileName(DateTimes::Now()), platform::LineLog::AppendMode);
}

/// A trace that can't be written stands on the console for as long as that lasts.
void Write(const QString& line) {
    try {
        Log().WriteLine(line);
        Log().Commit();
    } catch (...) {
        Faults::Set(Faults::Kind::TraceNotWritten);
        throw;
    }
    Faults::Clear(Faults::Kind::TraceNotWritten);
}

void Note(const QString& words) noexcept {
    try {
        const QString line = DateTimes::DateAndTime(DateTimes::Now()) + u' ' + words;
        Write(line.left(LineWidth));
    } catch (...) {
        // Told by the fault that stands now.
        return;
    }
}

QString SystemLine(DateTime when, const QString& number, const QString& word) {
    Record record(Columns::Width);
    record.Set(Columns::Date, DateTimes::ShortDate(when));
    record.Set(Columns::Time, DateTimes::LongTime(when));
    record.Set(Columns::Number, number);
    record.Set(Columns::Key, Stars(Columns::Key.width));
    record.Set(Columns::Origin, QStringLiteral("SYSTEM"));
    record.Set(Columns::Parameter, QStringLiteral("COMM"));
    record.Set(Columns::Word, word);
    record.Set(Columns::Common, Stars(Columns::Common.width));
    record.Set(Columns::Specific, Stars(Columns::Specific.width));
    return record.Text();
}

} // namespace Trace
