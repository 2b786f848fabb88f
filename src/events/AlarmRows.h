#pragma once

#include "core/RowPosition.h"
#include "events/EventClass.h"

#include <QHash>
#include <QList>
#include <QString>

/// What a row tells of its place: one for each line of the table of colours.
enum class RowState {
    Lost,         ///< the panel answers no more
    Back,         ///< the panel answers again
    Active,       ///< report: the state is on
    Report,       ///< report: any other state, and what a panel tells of itself
    Acknowledged, ///< an alarm that somebody knows of
    Cable,        ///< cable fault
    FirstFault,
    SecondFault,
    Reactivated, ///< an alarm that came back because nobody attended to it
    Other,
};
inline constexpr int RowStateCount = 10;

/// A place of trouble as the console shows it.
struct AlarmRow {
    QString text;
    /// `ID` of the last event of the row; its upper half, panel and channel, is the row's key.
    qint32 data = 0;
    /// Background: red in the low byte, then green, then blue.
    qint32 colour = 0;

    RowState State() const;
};

/// The standing alarms, newest on top, with the operator's selection and the part in sight. At
/// most one row stands for one panel and channel.
class AlarmRows {
public:
    static constexpr qint32 White = 0xFFFFFF;

    int Count() const { return at_.Count(); }
    bool IsEmpty() const { return Count() == 0; }
    /// Throws RunTimeError `Subscript` for a row that isn't there, like the changes below.
    const AlarmRow& Row(int row) const;
    void SetColour(int row, qint32 colour);
    /// Adds a row at the end, for a list that is read back.
    void Append(const AlarmRow& row);
    /// Takes a row out. Selection and view stay on the alarms on which they were, as far as those
    /// are left.
    void Remove(int row);
    void Clear();

    RowPosition& Position() { return at_; }
    const RowPosition& Position() const { return at_; }
    int Current() const { return at_.Current(); }
    int First() const { return at_.First(); }
    void SetCurrent(int row) { at_.SetCurrent(row); }

    /// Row of the same panel and channel, the last of several; -1 when there is none.
    int FindKey(qint32 id) const;
    /// Do two IDs belong to the same panel and channel?
    static bool IsSamePlace(qint32 one, qint32 other) { return Key(one) == Key(other); }
    /// Number of rows that wait for an acknowledgement: those with which it still does something.
    int Waiting() const;
    /// Adds, changes or removes the row that an event concerns. `text` is the row's new text.
    void Take(const EventClass& event, const QString& text);

    /// State and background of a row by the `ID` of its event.
    static RowState StateOf(qint32 id);
    static qint32 RowColor(qint32 id) { return ColourOf(StateOf(id)); }
    static qint32 ColourOf(RowState state);
    /// The columns of a row. Throws RunTimeError `Subscript` for a panel that isn't one.
    static QString RowText(const EventClass& event);

private:
    /// A row with its place in the order of the list: places fall from the top to the end and stay
    /// as they are while rows come and go.
    struct Placed {
        AlarmRow row;
        qint64 place;
    };

    static quint32 Key(qint32 id) { return quint32(id) >> 16; }
    int RowOf(qint64 place) const;
    void InsertOnTop(const AlarmRow& row, bool select);

    QList<Placed> rows_;
    /// Place of the last row of each key.
    QHash<quint32, qint64> places_;
    RowPosition at_;
};

/// The alarms over the time in which the console isn't loaded: the section "LastAlarms" of the
/// settings.
namespace LastAlarms {
void Read(AlarmRows& rows);
void Write(const AlarmRows& rows);
} // namespace LastAlarms
