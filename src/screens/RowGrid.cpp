#include "screens/RowGrid.h"

#include "screens/Theme.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {

constexpr int ThumbWidth = 8;
constexpr double SmallestThumb = 16;
constexpr int SmallestPixels = 8;
constexpr int LargestPixels = 64;

} // namespace

RowGrid::RowGrid(const Design& design, QWidget* parent)
    : QWidget(parent)
    , design_(design) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::ClickFocus);
}

void RowGrid::FitFont() {
    const int room = width() - LeftMargin - ThumbWidth;
    const auto fits = [&](int pixels) {
        return pixels * design_.rowPitch * design_.fewestRows <= height() &&
               QFontMetricsF(Theme::Fixed(pixels, true))
                       .horizontalAdvance(QString(design_.columns, u'0')) <= room;
    };
    int pixels = SmallestPixels;
    while (pixels < LargestPixels && fits(pixels + 1))
        ++pixels;
    font_ = Theme::Fixed(pixels, true);
    const int page = std::max(1, int(height() / (pixels * design_.rowPitch)));
    rowHeight_ = std::max(1, height() / page);
    MutablePosition().SetPage(page);
}

void RowGrid::resizeEvent(QResizeEvent*) {
    FitFont();
    Q_EMIT RowColChange();
}

void RowGrid::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::Field);
    painter.setFont(font_);
    // What isn't seen whole tells nothing.
    const RowPosition& at = Position();
    const int end = std::min(at.First() + at.Page(), at.Count());
    for (int row = at.First(); row < end; ++row)
        PaintRow(painter, row,
                 QRect(0, (row - at.First()) * rowHeight_, width() - ThumbWidth, rowHeight_ - 1));
    PaintThumb(painter);
}

/// Where the rows in sight lie among all, at the right edge.
void RowGrid::PaintThumb(QPainter& painter) const {
    const RowPosition& at = Position();
    if (at.Count() <= at.Page())
        return;
    const QRectF track(width() - ThumbWidth + 2, 0, ThumbWidth - 2, height());
    painter.fillRect(track, Theme::Tile);
    const double length = std::max(SmallestThumb, track.height() * at.Page() / at.Count());
    const double way = double(at.First()) / (at.Count() - at.Page());
    painter.fillRect(QRectF(track.left(), way * (track.height() - length), track.width(), length),
                     Theme::QuietInk);
}

void RowGrid::mousePressEvent(QMouseEvent* event) {
    RowPosition& at = MutablePosition();
    const int row = at.First() + event->position().toPoint().y() / rowHeight_;
    if (event->button() != Qt::LeftButton || row >= std::min(at.First() + at.Page(), at.Count()))
        return;
    at.SetCurrent(row);
    update();
    Q_EMIT RowColChange();
}

void RowGrid::keyPressEvent(QKeyEvent* event) {
    RowPosition& at = MutablePosition();
    switch (event->key()) {
    case Qt::Key_PageUp:
        at.MoveBy(-at.Page());
        break;
    case Qt::Key_Up:
        at.MoveBy(-1);
        break;
    case Qt::Key_Down:
        at.MoveBy(1);
        break;
    case Qt::Key_PageDown:
        at.MoveBy(at.Page());
        break;
    case Qt::Key_Home:
        at.MoveBy(-at.Count());
        break;
    case Qt::Key_End:
        at.MoveBy(at.Count());
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
    Q_EMIT RowColChange();
}
