#include "screens/history/FoundGrid.h"

#include "events/HistorySearch.h"
#include "events/HistoryState.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"
#include "screens/console/AlarmGrid.h"
#include "screens/console/RowShapes.h"
#include "screens/history/HistoryGrid.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QPainter>

namespace {

/// The last column of each half is blank.
constexpr int Columns = HistoryGrid::Columns - 1;
/// The frame of the selected row leaves the letters free.
constexpr double RowPitch = 2.9;
constexpr int FewestRows = 7;
/// Room for the shape, in heights of the font.
constexpr double MarkRoom = 1.3;
constexpr int MarkMargin = 5;
constexpr int FrameRoom = 3;

} // namespace

FoundGrid::FoundGrid(QWidget* parent)
    : RowGrid({Columns, RowPitch, FewestRows, MarkRoom}, parent) {
    FitFont();
}

void FoundGrid::Restart() {
    at_.Reset(0);
    update();
    Q_EMIT RowColChange();
}

void FoundGrid::Grow() {
    const int found = int(search_->Found().size());
    const bool follows = at_.Current() == at_.Count() - 1;
    while (at_.Count() < found)
        at_.Appended();
    if (follows)
        at_.MoveBy(found);
    update();
    Q_EMIT RowColChange();
}

void FoundGrid::GoTo(int row, int below) {
    at_.SetCurrent(row);
    if (below >= 0)
        at_.ScrollTo(row - below);
    at_.ShowCurrent();
    update();
    Q_EMIT RowColChange();
}

QString FoundGrid::ScreenLine(int row) const {
    return TextProcs::HistoFileLineToHistoScreenLine(platform::FromCodePage(search_->Line(row)));
}

QString FoundGrid::CurrentLine() const {
    return at_.Count() == 0 ? QString() : ScreenLine(at_.Current());
}

void FoundGrid::PaintRow(QPainter& painter, int row, const QRect& area) const {
    const std::optional<RowState> state = StateOf(search_->Row(row));
    const QColor ground =
        state ? Colours::FromBgr(AlarmRows::ColourOf(*state)) : QColor(Theme::Ground);
    const QColor ink = state ? Colours::InkOn(ground) : QColor(Theme::Ink);
    painter.fillRect(area, ground);
    if (state) {
        const QRect mark(area.left() + MarkMargin + 1, area.top(), LeftMargin() - 2 * MarkMargin,
                         area.height());
        RowShapes::Draw(painter, mark, *state, ink, ground);
    }
    painter.setPen(ink);
    HistoryGrid::PaintHalves(painter, area.adjusted(LeftMargin(), FrameRoom, 0, -FrameRoom),
                             ScreenLine(row));
    if (row == at_.Current())
        AlarmGrid::PaintFrame(painter, area);
}
