#pragma once

/// The selection of a list of rows and the part of it in sight.
class RowPosition {
public:
    int Count() const { return count_; }
    /// The selected row, -1 without rows.
    int Current() const { return current_; }
    /// The uppermost row in sight.
    int First() const { return first_; }
    /// Number of rows that are seen whole, at least 1.
    int Page() const { return page_; }

    /// Another list of so many rows: its first one is selected and in sight.
    void Reset(int rows);
    /// Throws RunTimeError `Subscript` for a row that isn't there, like SetCurrent and Removed.
    void CheckRow(int row) const;
    void SetCurrent(int row);
    void SetPage(int rows);
    /// Moves the selection as far as there are rows, and the view after it.
    void MoveBy(int rows);

    /// A row came at the end.
    void Appended();
    /// A row came on top, and the top comes in sight. The selection jumps there when asked, else it
    /// stays on its row.
    void InsertedOnTop(bool select);
    /// A row went. Selection and view stay on the rows on which they were, as far as those are
    /// left.
    void Removed(int row);

private:
    void KeepView();

    int count_ = 0;
    int current_ = -1;
    int first_ = 0;
    int page_ = 1;
};
