#include "core/RowPosition.h"

#include "core/Bytes.h"
#include "platform/Clock.h"
#include "platform/RunTimeError.h"

#include <utility>

namespace {

qint64 NowMs() {
    return platform::Clock::Current().MonotonicMs();
}

} // namespace

void RowPosition::Reset(int rows) {
    count_ = rows;
    current_ = rows > 0 ? 0 : -1;
    first_ = 0;
    aimed_ = -1;
    shifts_.clear();
}

bool RowPosition::InSight() const {
    return current_ >= first_ && current_ < first_ + page_;
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

void RowPosition::ScrollTo(int first) {
    first_ = first;
    KeepView();
}

void RowPosition::ShowCurrent() {
    MoveBy(0);
}

/// Where a row stands after a shift, -1 when it went.
int RowPosition::After(const Shift& shift, int row) {
    if (shift.removed < 0)
        return row + 1;
    if (shift.removed == row)
        return -1;
    return shift.removed < row ? row - 1 : row;
}

void RowPosition::Aim(int place) {
    const qint64 looked = NowMs() - AimMs;
    int row = first_ + place;
    bool slid = false;
    for (const Shift& shift : std::as_const(shifts_)) {
        if (shift.at <= looked)
            continue;
        if (!slid)
            row = shift.firstBefore + place;
        slid = true;
        row = row < 0 ? row : After(shift, row);
    }
    aimed_ = row < count_ ? row : -1;
}

void RowPosition::Note(int removed) {
    const Shift shift{NowMs(), first_, removed};
    while (!shifts_.isEmpty() && shifts_.first().at <= shift.at - AimMs)
        shifts_.removeFirst();
    shifts_.append(shift);
    if (aimed_ >= 0)
        aimed_ = After(shift, aimed_);
}

void RowPosition::Appended() {
    ++count_;
    current_ = Bytes::Greater(current_, 0);
}

void RowPosition::InsertedOnTop(bool select) {
    Note(-1);
    ++count_;
    first_ = 0;
    current_ = select ? 0 : current_ + 1;
}

void RowPosition::Removed(int row) {
    CheckRow(row);
    Note(row);
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
