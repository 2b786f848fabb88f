#pragma once

#include "events/EventClass.h"

#include <QList>
#include <QString>

/// A place of trouble as the console shows it.
struct AlarmRow {
    QString text;
    /// `ID` of the last event of the row; its upper half, panel and channel, is the row's key.
    qint32 data = 0;
    /// Background: red in the low byte, then green, then blue.
    qint32 colour = 0;
};

/// The standing alarms, newest on top, with the operator's selection and the part in sight. At
/// most one row stands for one panel and channel.
class AlarmRows {
public:
    static constexpr qint32 White = 0xFFFFFF;

    int Count() const { return int(rows_.size()); }
    bool IsEmpty() const { return rows_.isEmpty(); }
    /// Throws RunTimeError `Subscript` for a row that isn't there, like the changes below.
    const AlarmRow& Row(int row) const;
    void SetColour(int row, qint32 colour);
    /// Adds a row at the end, for a list that is read back.
    void Append(const AlarmRow& row);
    /// Takes a row out. Selection and view stay on the alarms on which they were, as far as those
    /// are left.
    void Remove(int row);
    void Clear();

    /// The selected row, -1 without rows.
    int Current() const { return current_; }
    void SetCurrent(int row);
    /// The uppermost row in sight.
    int First() const { return first_; }
    /// Number of rows that are seen whole, at least 1.
    int Page() const { return page_; }
    void SetPage(int rows);
    /// Moves the selection as far as there are rows, and the view after it.
    void MoveBy(int rows);

    /// Row of the same panel and channel, the last of several; -1 when there is none.
    int FindKey(qint32 id) const;
    /// Adds, changes or removes the row that an event concerns. `text` is the row's new text.
    void Take(const EventClass& event, const QString& text);

    /// Background of a row by the `ID` of its event.
    static qint32 RowColor(qint32 id);
    /// The columns of a row. Throws RunTimeError `Subscript` for a panel that isn't one.
    static QString RowText(const EventClass& event);

private:
    void CheckRow(int row) const;
    void KeepView();
    void InsertOnTop(const AlarmRow& row, bool select);

    QList<AlarmRow> rows_;
    int current_ = -1;
    int first_ = 0;
    int page_ = 1;
};

/// The alarms over the time in which the console isn't loaded: the section "LastAlarms" of the
/// settings.
namespace LastAlarms {
void Read(AlarmRows& rows);
void Write(const AlarmRows& rows);
} // namespace LastAlarms
