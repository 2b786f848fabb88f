#include "screens/history/HistoryGrid.h"

#include "screens/touch/Theme.h"

#include <QPainter>
#include <algorithm>

namespace ScreenLine = TextProcs::ScreenLine;

namespace {

/// Where the second half begins, behind the line break.
constexpr int SecondHalf = ScreenLine::Break.start + ScreenLine::Break.width;
/// Two lines of text and the room that tells a row from the next.
constexpr double RowPitch = 2.7;
constexpr int FewestRows = 8;

/// Codes that aren't characters would be drawn as boxes.
QString Drawable(QString text) {
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !c.isPrint(); }, u' ');
    return text;
}

} // namespace

HistoryGrid::HistoryGrid(QWidget* parent)
    : RowGrid({Columns, RowPitch, FewestRows}, parent) {
    FitFont();
}

bool HistoryGrid::Load(const QString& path) {
    Clear();
    const bool found = file_.Load(path);
    Show();
    return found;
}

void HistoryGrid::Clear() {
    file_.Close();
    Show();
}

void HistoryGrid::Show() {
    at_.Reset(file_.Count());
    update();
    Q_EMIT RowColChange();
}

void HistoryGrid::ShowLast() {
    at_.MoveBy(at_.Count());
    update();
    Q_EMIT RowColChange();
}

QString HistoryGrid::CurrentLine() const {
    return at_.Count() == 0 ? QString() : file_.ScreenLine(at_.Current());
}

void HistoryGrid::PaintRow(QPainter& painter, int row, const QRect& area) const {
    const bool selected = row == at_.Current();
    painter.fillRect(area, selected ? Theme::Selection : Theme::Ground);
    painter.setPen(selected ? QColor(Qt::white) : Theme::Ink);
    PaintHalves(painter, area.adjusted(LeftMargin(), 0, 0, 0), file_.ScreenLine(row));
}

void HistoryGrid::PaintHalves(QPainter& painter, const QRect& area, const QString& line) {
    const QString shown = Drawable(line);
    const int half = area.height() / 2;
    const int flags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.drawText(area.adjusted(0, 2, 0, -half), flags, shown.left(Columns));
    painter.drawText(area.adjusted(0, half, 0, -2), flags, shown.mid(SecondHalf));
}
