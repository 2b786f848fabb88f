#include "screens/RowPosition.h"

#include "core/Bytes.h"
#include "platform/RunTimeError.h"

void RowPosition::Reset(int rows) {
    count_ = rows;
    current_ = rows > 0 ? 0 : -1;
    first_ = 0;
}

void RowPosition::CheckRow(int row) const {
    if (row < 0 || row >= count_)
        throw platform::RunTimeError(platform::errors::Subscript);
}

void RowPosition::SetCurrent(int row) {
    CheckRow(row);
    current_ = row;
}

void RowPosition::SetPage(int rows) {
    page_ = Bytes::Greater(rows, 1);
    KeepView();
}

void RowPosition::MoveBy(int rows) {
    if (count_ == 0)
        return;
    current_ = Bytes::Limit(current_ + rows, 0, count_ - 1);
    first_ = Bytes::Limit(first_, current_ - page_ + 1, current_);
    KeepView();
}

void RowPosition::Appended() {
    ++count_;
    current_ = Bytes::Greater(current_, 0);
}

void RowPosition::InsertedOnTop(bool select) {
    ++count_;
    first_ = 0;
    current_ = select ? 0 : current_ + 1;
}

void RowPosition::Removed(int row) {
    CheckRow(row);
    --count_;
    if (current_ > row)
        --current_;
    if (first_ > row)
        --first_;
    current_ = Bytes::Less(current_, count_ - 1);
    KeepView();
}

/// No empty rows in sight while there are rows above.
void RowPosition::KeepView() {
    first_ = Bytes::Limit(first_, 0, Bytes::Greater(0, count_ - page_));
}
