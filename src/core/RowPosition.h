#pragma once

#include <QList>
#include <QtGlobal>

/// The selection of a list of rows and the part of it in sight.
class RowPosition {
public:
    /// Time from the look at a row to the finger on it, ms: rows that slid meanwhile are taken
    /// back.
    static constexpr qint64 AimMs = 250;

    int Count() const { return count_; }
    /// The selected row, -1 without rows.
    int Current() const { return current_; }
    /// The uppermost row in sight.
    int First() const { return first_; }
    /// Number of rows that are seen whole, at least 1.
    int Page() const { return page_; }
    /// The selected row is seen.
    bool InSight() const;

    /// Another list of so many rows: its first one is selected and in sight.
    void Reset(int rows);
    /// Throws RunTimeError `Subscript` for a row that isn't there, like SetCurrent and Removed.
    void CheckRow(int row) const;
    void SetCurrent(int row);
    void SetPage(int rows);
    /// Moves the selection as far as there are rows, and the view after it.
    void MoveBy(int rows);
    /// Moves the view alone, as far as there are rows.
    void ScrollTo(int first);
    /// Moves the view as little as brings the selection in sight.
    void ShowCurrent();

    /// A finger comes down on a place of the view, 0 the uppermost: it means the row that stood
    /// there a moment ago. The row stays aimed at wherever it slides.
    void Aim(int place);
    void DropAim() { aimed_ = -1; }
    /// The row under the finger, -1 for none.
    int Aimed() const { return aimed_; }

    /// A row came at the end.
    void Appended();
    /// A row came on top, and the top comes in sight. The selection jumps there when asked, else it
    /// stays on its row.
    void InsertedOnTop(bool select);
    /// A row went. Selection and view stay on the rows on which they were, as far as those are
    /// left.
    void Removed(int row);

private:
    /// What made rows slide.
    struct Shift {
        qint64 at;
        int firstBefore;
        /// The row that went, -1 for one that came on top.
        int removed;
    };
    static int After(const Shift& shift, int row);

    void Note(int removed);
    void KeepView();

    int count_ = 0;
    int current_ = -1;
    int first_ = 0;
    int page_ = 1;
    int aimed_ = -1;
    /// Those of the last moment, oldest first.
    QList<Shift> shifts_;
};
