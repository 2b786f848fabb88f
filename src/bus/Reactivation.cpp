#include "bus/Reactivation.h"

#include "bus/AlarmConsole.h"
#include "bus/ClockSlack.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/SLVfonctions.h"
#include "events/Decisions.h"
#include "events/Klaxon.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/RunTimeError.h"

namespace {

/// Reads a date and a time that must be there. Throws RunTimeError `TypeMismatch`.
DateTime ReadTime(const QString& date, const QString& time) {
    const std::optional<DateTime> when = DateTimes::Parse(date + u' ' + time);
    if (!when)
        throw platform::RunTimeError(platform::errors::TypeMismatch);
    return *when;
}

/// "hours:minutes" of the delay list in days; hours can pass 24.
DateTime DelayOf(int reactTpo) {
    const QStringList parts = ReactivTime(reactTpo).split(u':');
    if (parts.size() != 2)
        throw platform::RunTimeError(platform::errors::Subscript);
    return parts[0].toInt() / 24.0 + parts[1].toInt() / 1440.0;
}

} // namespace

void Reactivation::Work() {
    if (NbInstances(FormNames::wRunAlarms) < 1)
        FromSettings();
    else
        FromConsole();
}

void Reactivation::FromSettings() {
    const auto rows = IniReadSection(QStringLiteral("LastAlarms"));
    for (const auto& row : rows) {
        const QStringList pieces = row.second.split(u' ', Qt::SkipEmptyParts);
        if (pieces.size() > 3)
            ReactiverAlarme(qint32(pieces[0].toUInt(nullptr, 16)), ReadTime(pieces[2], pieces[3]),
                            pieces[1].toInt());
    }
}

/// The console is asked for anew at each row: an alarm that comes back unloads screens, and one of
/// them may take the console along.
void Reactivation::FromConsole() {
    for (int row = 0;; ++row) {
        const AlarmConsole* console = AlarmConsole::Loaded();
        if (console == nullptr || row >= console->RowCount())
            return;
        const QStringList pieces = console->RowText(row).trimmed().split(u' ', Qt::SkipEmptyParts);
        if (pieces.size() > 2)
            ReactiverAlarme(console->RowData(row), ReadTime(pieces[1], pieces[2]),
                            pieces[0].toInt());
    }
}

void Reactivation::ReactiverAlarme(qint32 id, DateTime time, qint32 number) {
    EventClass event;
    event.setID(id);
    event.setGDH(DateTimes::Now());
    event.setNum(number);
    if (event.Aff() < 1 || event.Param() != 1)
        return;
    const ChannelClass& channel =
        Global::Configuration().Panel(event.Panel()).Channel(event.Chnl());
    if (!channel.React() || channel.ReactTpo() <= 0)
        return;
    // A row of the future was written before the machine's clock was set back.
    if (event.GDH() <= time + DelayOf(channel.ReactTpo()) && time <= event.GDH() + ClockSlack)
        return;
    event.setAff(ReactivatedAff);
    showConsole_();
    if (AlarmConsole* console = AlarmConsole::Loaded())
        console->TakeEvent(event);
    if (IsToKlaxon(event))
        Alarme(channel);
}
