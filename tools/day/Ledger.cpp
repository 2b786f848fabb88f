#include "day/Ledger.h"

#include "bus/AlarmConsole.h"
#include "core/Config.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "events/Decisions.h"
#include "events/EventClass.h"
#include "events/TextProcs.h"

#include <QDir>
#include <QFile>
#include <cstdio>

namespace Columns = Trace::Columns;

namespace {

/// Words of a line of the day's record.
constexpr int MidnightState = 51047;
/// Failures that are told in words.
constexpr int MostTold = 20;

} // namespace

void Ledger::Fail(const QString& words) {
    if (++failures_ <= MostTold)
        std::printf("FAILURE at %s: %s\n", qUtf8Printable(DateTimes::DateAndTime(DateTimes::Now())),
                    qUtf8Printable(words));
}

void Ledger::Routed(const EventClass& event) {
    ++events_;
    lastRouted_ = event.Num();
    const int address = event.Panel();
    const QString text = QStringLiteral("%1 of panel %2").arg(event.Num()).arg(address);
    if (event.Chnl() <= Family::LastChannel && Plant::HasMemory(address)) {
        QQueue<EventKey>& raised = raised_[address];
        if (!raised.isEmpty() && raised.head() == ((EventKey(event.ID()) << 20) | event.Clock()))
            raised.dequeue();
        else if (event.Clock() == 0)
            ++madeUp_;
        else
            Fail(QStringLiteral("event %1 is %2, the next of its module is %3 of %4")
                     .arg(text)
                     .arg((EventKey(event.ID()) << 20) | event.Clock(), 0, 16)
                     .arg(raised.isEmpty() ? 0 : raised.head(), 0, 16)
                     .arg(raised.size()));
    } else if (Family::IsChannel(event.Chnl())) {
        qint32& state = states_[quint32(event.ID()) >> 16];
        if (state == event.Aff())
            Fail(QStringLiteral("event %1 tells a state twice").arg(text));
        state = event.Aff();
    }
    trace_.enqueue({event.Num(), QString::number(quint32(event.ID()), 16).toUpper()});
    if (IsToDisplay(event))
        changed_[quint32(event.ID()) >> 16] = {event.ID(), event.Num()};
}

void Ledger::CheckConsole() {
    if (changed_.isEmpty())
        return;
    const AlarmConsole* console = AlarmConsole::Loaded();
    QHash<quint32, int> rows;
    for (int row = 0; console != nullptr && row < console->RowCount(); ++row) {
        const quint32 place = quint32(console->RowData(row)) >> 16;
        if (rows.contains(place))
            Fail(QStringLiteral("two rows for %1").arg(place, 4, 16));
        rows[place] = row;
    }
    for (auto change = changed_.cbegin(); change != changed_.cend(); ++change) {
        EventClass event;
        event.setID(change->id);
        const bool isPresence = event.Chnl() == Family::Presence;
        const bool isOver = isPresence ? event.Aff() == 1 : event.Param() == 1 && event.Aff() == 0;
        const bool begins = isPresence || event.Param() == 0 || event.Aff() >= 1;
        const int row = rows.value(change.key(), -1);
        const bool isRight = row < 0 ? isOver || !begins
                                     : !isOver && console->RowData(row) == change->id &&
                                           console->RowText(row)
                                                   .section(u' ', 0, 0, QString::SectionSkipEmpty)
                                                   .toInt() == change->number;
        if (!isRight)
            Fail(QStringLiteral("event %1 isn't what its row says").arg(change->number));
    }
    changed_.clear();
}

/// Lines that came to the files of a folder since the last call, in the order of the names.
QStringList Ledger::NewLines(const QString& folder, const QString& pattern) {
    QStringList lines;
    const QDir dir(folder);
    for (const QString& name : dir.entryList({pattern}, QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        qint64& readTo = readTo_[file.fileName()];
        if (file.size() == readTo || !file.open(QIODevice::ReadOnly) || !file.seek(readTo))
            continue;
        lines +=
            QString::fromLatin1(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        readTo = file.size();
    }
    return lines;
}

void Ledger::CheckFiles() {
    const auto field = [](const QString& line, const auto& column) {
        return line.mid(column.start, column.width);
    };
    for (const QString& line :
         NewLines(Global::InApplicationFolder(QStringLiteral("Trace")), QStringLiteral("*.log"))) {
        bool isNumber = false;
        const int number = field(line, Columns::Number).toInt(&isNumber);
        if (!isNumber)
            continue;
        const Line routed = trace_.isEmpty() ? Line{} : trace_.dequeue();
        const QString key = field(line, Columns::Key);
        if (number != routed.number ||
            (!key.startsWith(u'*') && key != routed.key.rightJustified(8, u'0')))
            Fail(QStringLiteral("the trace has %1 %2 where %3 %4 was routed")
                     .arg(number)
                     .arg(key)
                     .arg(routed.number)
                     .arg(routed.key));
    }
    if (!trace_.isEmpty())
        Fail(QStringLiteral("%1 events are not in the trace").arg(trace_.size()));
    trace_.clear();
    using namespace TextProcs;
    for (const QString& line :
         NewLines(Global::InApplicationFolder(QString()), QStringLiteral("Histo*.his"))) {
        bool isNumber = false;
        const int number = field(line, FileLine::Number).toInt(&isNumber);
        if (!isNumber)
            continue;
        // The file has no room for the last digit.
        if (++lastHistory_ / 10 != number)
            Fail(QStringLiteral("the history has %1. where %2 is due")
                     .arg(number)
                     .arg(lastHistory_));
        dayRecords_ += field(line, FileLine::Display).trimmed() == GetText(MidnightState) ? 1 : 0;
    }
    if (lastHistory_ < lastRouted_)
        Fail(QStringLiteral("the history ends with %1, %2 was routed")
                 .arg(lastHistory_)
                 .arg(lastRouted_));
}

void Ledger::CheckDay(int panels) {
    dayRecords_ = 0;
    CheckFiles();
    if (dayRecords_ != panels)
        Fail(QStringLiteral("the day's record has %1 panels").arg(dayRecords_));
}

void Ledger::Printed(const QByteArray& paper) {
    for (const QByteArray& line : paper.split('\n')) {
        if (line.contains(" not printed"))
            notOnPaper_ += line.left(line.indexOf(' ')).toInt();
        else
            onPaper_ += line.isEmpty() ? 0 : 1;
    }
}

void Ledger::CheckEnd(Plant& plant, int unprinted) {
    CheckConsole();
    CheckFiles();
    for (auto raised = raised_.cbegin(); raised != raised_.cend(); ++raised) {
        if (!raised->isEmpty())
            Fail(QStringLiteral("%1 events of module %2 never came")
                     .arg(raised->size())
                     .arg(raised.key()));
    }
    for (int address = 1; address < Plant::Modules; ++address)
        for (int channel = 1; !Plant::HasMemory(address) && channel <= Plant::Channels; ++channel)
            if (states_.value(quint32(address << 8 | channel)) != plant.State(address, channel))
                Fail(
                    QStringLiteral("the last state of %1:%2 never came").arg(address).arg(channel));
    if (onPaper_ + notOnPaper_ + unprinted != events_)
        Fail(QStringLiteral("%1 lines on paper, %2 told as missing, %3 to be told, of %4 events")
                 .arg(onPaper_)
                 .arg(notOnPaper_)
                 .arg(unprinted)
                 .arg(events_));
}
