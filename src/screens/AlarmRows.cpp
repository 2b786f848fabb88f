#include "screens/AlarmRows.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "events/TextProcs.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/RunTimeError.h"

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
    CheckRow(row);
    return rows_[row];
}

void AlarmRows::SetColour(int row, qint32 colour) {
    CheckRow(row);
    rows_[row].colour = colour;
}

void AlarmRows::Append(const AlarmRow& row) {
    rows_.append(row);
    if (current_ < 0)
        current_ = 0;
}

void AlarmRows::Remove(int row) {
    CheckRow(row);
    rows_.removeAt(row);
    if (current_ > row)
        --current_;
    if (first_ > row)
        --first_;
    current_ = std::min(current_, Count() - 1);
    KeepView();
}

void AlarmRows::Clear() {
    rows_.clear();
    current_ = -1;
    first_ = 0;
}

void AlarmRows::SetCurrent(int row) {
    CheckRow(row);
    current_ = row;
}

void AlarmRows::SetPage(int rows) {
    page_ = std::max(rows, 1);
    KeepView();
}

void AlarmRows::MoveBy(int rows) {
    if (IsEmpty())
        return;
    current_ = Bytes::Limit(current_ + rows, 0, Count() - 1);
    first_ = Bytes::Limit(first_, current_ - page_ + 1, current_);
    KeepView();
}

int AlarmRows::FindKey(qint32 id) const {
    const auto key = [](qint32 data) { return quint32(data) >> 16; };
    for (int row = Count() - 1; row >= 0; --row) {
        if (key(rows_[row].data) == key(id))
            return row;
    }
    return -1;
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
        rows_[row] = taken;
    }
}

/// The top comes in sight. The selection jumps there when asked, else it stays on its alarm, so
/// that a touch that is under way acknowledges what the operator was looking at.
void AlarmRows::InsertOnTop(const AlarmRow& row, bool select) {
    rows_.prepend(row);
    first_ = 0;
    current_ = select ? 0 : current_ + 1;
}

void AlarmRows::CheckRow(int row) const {
    if (row < 0 || row >= Count())
        throw platform::RunTimeError(platform::errors::Subscript);
}

/// No empty rows in sight while there are rows above.
void AlarmRows::KeepView() {
    first_ = Bytes::Limit(first_, 0, std::max(0, Count() - page_));
}

qint32 AlarmRows::RowColor(qint32 id) {
    EventClass event;
    event.setID(id);
    if (event.Chnl() == Family::Presence)
        return event.Aff() != 0 ? White : Red;
    if (event.Param() < 1)
        return event.Aff() == 1 ? Cyan : LightGreen;
    switch (event.Aff()) {
    case 1:
        return White;
    case 2:
        return LightBlue;
    case FirstFault:
        return Red;
    case 4:
        return Orange;
    case ReactivatedAff:
        return Magenta;
    default:
        return Black;
    }
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
    QStringList keys;
    IniReadKeys(keys, Section);
    for (const QString& key : std::as_const(keys)) {
        const QString value = IniRead(Section, key, QString());
        bool isNumber = false;
        key.toInt(&isNumber);
        bool isId = false;
        const auto id = qint32(value.left(KeyDigits).toUInt(&isId, 16));
        if (isNumber && isId)
            rows.Append(
                {value.mid(KeyDigits).replace(Bar, LineBreak), id, AlarmRows::RowColor(id)});
    }
    const int index =
        int(Bytes::Val(IniRead(Section, QStringLiteral("Index"), QStringLiteral("1"))));
    if (index > 0 && index < rows.Count() - 1)
        rows.SetCurrent(index);
}

void Write(const AlarmRows& rows) {
    SLVfonctions::IniDeleteSection(Section);
    for (int row = 0; row < rows.Count(); ++row) {
        QString text = rows.Row(row).text;
        text.replace(LineBreak, Bar).replace(u'\n', u'|').replace(u'\r', u'|');
        IniWrite(Section, QString::number(row + 1), Bytes::Hex8(rows.Row(row).data) + text);
    }
}

} // namespace LastAlarms
