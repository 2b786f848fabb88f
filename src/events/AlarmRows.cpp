#include "events/AlarmRows.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "events/TextProcs.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"

#include <QStringList>
#include <algorithm>

namespace {

constexpr qint32 Black = 0x000000;
constexpr qint32 Red = 0x0000FF;
constexpr qint32 Cyan = 0xFFFF00;
constexpr qint32 LightGreen = 0x80FF80;
constexpr qint32 LightBlue = 0xFF8080;
constexpr qint32 Orange = 0x0080FF;
constexpr qint32 Magenta = 0xFF00FF;

constexpr qint16 FirstFault = 3;

constexpr int NumberWidth = 7;
constexpr int LibraryWidth = 12;
constexpr int ScreenTextWidth = 24;
constexpr int ModelLetters = 3;

/// An alarm whose place is in order again.
bool IsOver(const EventClass& event) {
    if (event.Chnl() == Family::Presence)
        return event.Aff() == 1;
    return event.Chnl() <= Family::LastChannel && event.Param() == 1 && event.Aff() == 0;
}

/// Only an event that begins trouble makes a row of its own.
bool MakesRow(const EventClass& event) {
    if (event.Chnl() == Family::Presence && event.Aff() == 0)
        return true;
    return (event.Param() == 0 || event.Aff() >= 1) && event.Chnl() <= Family::LastChannel;
}

QString Field(const QString& text, int width) {
    return text.leftJustified(width, u' ', true);
}

} // namespace

const AlarmRow& AlarmRows::Row(int row) const {
    at_.CheckRow(row);
    return rows_[row].row;
}

void AlarmRows::SetColour(int row, qint32 colour) {
    at_.CheckRow(row);
    rows_[row].row.colour = colour;
}

void AlarmRows::Append(const AlarmRow& row) {
    const qint64 place = rows_.isEmpty() ? 0 : rows_.last().place - 1;
    rows_.append({row, place});
    places_.insert(Key(row.data), place);
    at_.Appended();
}

void AlarmRows::Remove(int row) {
    at_.Removed(row);
    const Placed removed = rows_.takeAt(row);
    const quint32 key = Key(removed.row.data);
    if (places_.value(key) != removed.place)
        return;
    places_.remove(key);
    // A list that was read back may hold a key twice.
    for (qsizetype above = row - 1; above >= 0 && !places_.contains(key); --above) {
        if (Key(rows_[above].row.data) == key)
            places_.insert(key, rows_[above].place);
    }
}

void AlarmRows::Clear() {
    rows_.clear();
    places_.clear();
    at_.Reset(0);
}

int AlarmRows::RowOf(qint64 place) const {
    const auto found =
        std::lower_bound(rows_.cbegin(), rows_.cend(), place,
                         [](const Placed& row, qint64 wanted) { return row.place > wanted; });
    return int(found - rows_.cbegin());
}

int AlarmRows::FindKey(qint32 id) const {
    const auto found = places_.constFind(Key(id));
    return found == places_.cend() ? -1 : RowOf(*found);
}

void AlarmRows::Take(const EventClass& event, const QString& text) {
    const AlarmRow taken{text, event.ID(), RowColor(event.ID())};
    const int row = FindKey(taken.data);
    if (row < 0) {
        if (MakesRow(event))
            InsertOnTop(taken, event.Aff() == FirstFault || event.Chnl() == Family::Presence);
    } else if (IsOver(event)) {
        Remove(row);
    } else if (event.Chnl() <= Family::LastChannel || event.Chnl() == Family::Presence) {
        // In its place: the order tells when the trouble began.
        rows_[row].row = taken;
    }
}

/// The selection stays on its alarm, so that a touch that is under way acknowledges what the
/// operator was looking at.
void AlarmRows::InsertOnTop(const AlarmRow& row, bool select) {
    const qint64 place = rows_.isEmpty() ? 0 : rows_.first().place + 1;
    rows_.prepend({row, place});
    places_.insert(Key(row.data), place);
    at_.InsertedOnTop(select);
}

RowState AlarmRows::StateOf(qint32 id) {
    EventClass event;
    event.setID(id);
    if (event.Chnl() == Family::Presence)
        return event.Aff() != 0 ? RowState::Back : RowState::Lost;
    if (event.Param() < 1)
        return event.Aff() == 1 ? RowState::Active : RowState::Report;
    switch (event.Aff()) {
    case 1:
        return RowState::Acknowledged;
    case 2:
        return RowState::Cable;
    case FirstFault:
        return RowState::FirstFault;
    case 4:
        return RowState::SecondFault;
    case ReactivatedAff:
        return RowState::Reactivated;
    default:
        return RowState::Other;
    }
}

qint32 AlarmRows::ColourOf(RowState state) {
    switch (state) {
    case RowState::Lost:
    case RowState::FirstFault:
        return Red;
    case RowState::Back:
    case RowState::Acknowledged:
        return White;
    case RowState::Active:
        return Cyan;
    case RowState::Report:
        return LightGreen;
    case RowState::Cable:
        return LightBlue;
    case RowState::SecondFault:
        return Orange;
    case RowState::Reactivated:
        return Magenta;
    case RowState::Other:
        break;
    }
    return Black;
}

/// A reactivated alarm keeps its event when it is acknowledged; only its colour tells.
RowState AlarmRow::State() const {
    const RowState state = AlarmRows::StateOf(data);
    return state == RowState::Reactivated && colour == AlarmRows::White ? RowState::Acknowledged
                                                                        : state;
}

int AlarmRows::Waiting() const {
    return int(std::count_if(rows_.cbegin(), rows_.cend(), [](const Placed& placed) {
        const RowState state = placed.row.State();
        return state != RowState::Acknowledged && state != RowState::Back &&
               state != RowState::Other;
    }));
}

QString AlarmRows::RowText(const EventClass& event) {
    const PanelClass& panel = Global::Configuration().Panel(event.Panel());
    QStringList parts{QString::number(event.Num()).rightJustified(NumberWidth),
                      DateTimes::ShortDate(event.GDH()), DateTimes::LongTime(event.GDH())};
    const QString place = Global::Get().panelMark + Bytes::Padded(event.Panel(), 2) + u'-';
    if (event.Chnl() == Family::Presence) {
        parts << place + ModuleName(panel.Model()).left(ModelLetters)
              << GetText(event.Aff() != 0 ? 51031 : 51032, true);
        return parts.join(u' ');
    }
    const QString channel = event.Chnl() == Family::PanelWide
                                ? QStringLiteral("ACK")
                                : Global::Get().channelMark + Bytes::Padded(event.Chnl(), 2);
    parts << place + channel
          << Field(TextProcs::CommonText(event.Panel(), event.Chnl()), LibraryWidth)
          << Field(panel.Channel(event.Chnl()).ScreenText(), ScreenTextWidth) << QString();
    return parts.join(u' ');
}

namespace LastAlarms {

namespace {
const QString Section = QStringLiteral("LastAlarms");
const QString LineBreak = QStringLiteral("\r\n");
const QString Bar = QStringLiteral("|");
constexpr int KeyDigits = 8;
} // namespace

void Read(AlarmRows& rows) {
    for (const auto& [key, value] : IniReadSection(Section)) {
        bool isNumber = false;
        key.toInt(&isNumber);
        bool isId = false;
        const auto id = qint32(value.left(KeyDigits).toUInt(&isId, 16));
        if (isNumber && isId)
            rows.Append(
                {value.mid(KeyDigits).replace(Bar, LineBreak), id, AlarmRows::RowColor(id)});
    }
    const int index =
        Bytes::LongVal(IniRead(Section, QStringLiteral("Index"), QStringLiteral("1")));
    if (index > 0 && index < rows.Count() - 1)
        rows.SetCurrent(index);
}

void Write(const AlarmRows& rows) {
    QList<std::pair<QString, QString>> values;
    for (int row = 0; row < rows.Count(); ++row) {
        QString text = rows.Row(row).text;
        text.replace(LineBreak, Bar).replace(u'\n', u'|').replace(u'\r', u'|');
        values.append({QString::number(row + 1), Bytes::Hex8(rows.Row(row).data) + text});
    }
    IniWriteSection(Section, values);
}

} // namespace LastAlarms
