#include "screens/touch/RowGrid.h"

#include "screens/touch/Theme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cstdlib>

namespace {

constexpr int ThumbWidth = 8;
constexpr int SmallestMargin = 4;
/// Height that a finger needs, pixels.
constexpr int Finger = 48;
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

int RowGrid::MarginOf(int pixels) const {
    return SmallestMargin + qRound(design_.markRoom * pixels);
}

void RowGrid::FitFont() {
    const auto fits = [&](int pixels) {
        const int room = width() - MarginOf(pixels) - ThumbWidth;
        return pixels * design_.rowPitch * design_.fewestRows <= height() &&
               QFontMetricsF(Theme::Fixed(pixels, true))
                       .horizontalAdvance(QString(design_.columns, u'0')) <= room;
    };
    int pixels = SmallestPixels;
    while (pixels < LargestPixels && fits(pixels + 1))
        ++pixels;
    font_ = Theme::Fixed(pixels, true);
    FitPage();
}

void RowGrid::FitPage() {
    const int page = std::max(1, int(height() / (font_.pixelSize() * design_.rowPitch)));
    rowHeight_ = std::max(1, height() / page);
    MutablePosition().SetPage(page);
}

void RowGrid::TakePlace(const QRect& place) {
    if (!keepsFont_)
        FitFont();
    keepsFont_ = true;
    setGeometry(place);
    FitPage();
}

void RowGrid::resizeEvent(QResizeEvent*) {
    if (keepsFont_)
        FitPage();
    else
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

/// The place whose row is nearest. A row is lower than a finger, so the last one is meant by what
/// falls short below it, too; -1 further down.
int RowGrid::PlaceAt(int y) const {
    const RowPosition& at = Position();
    const int seen = std::min(at.Page(), at.Count() - at.First());
    const int place = std::max(0, y / rowHeight_);
    const int spare = std::max(0, (Finger - rowHeight_) / 2);
    return place >= seen && y < seen * rowHeight_ + spare ? seen - 1 : place < seen ? place : -1;
}

void RowGrid::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    RowPosition& at = MutablePosition();
    pressedAt_ = event->position().toPoint().y();
    pressedFirst_ = at.First();
    swipes_ = false;
    const int place = PlaceAt(pressedAt_);
    if (place >= 0)
        at.Aim(place);
    update();
}

/// The rows go with the finger.
void RowGrid::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton))
        return;
    RowPosition& at = MutablePosition();
    const int way = pressedAt_ - event->position().toPoint().y();
    if (!swipes_ && std::abs(way) < std::max(QApplication::startDragDistance(), rowHeight_ / 2))
        return;
    swipes_ = true;
    at.DropAim();
    at.ScrollTo(pressedFirst_ + qRound(double(way) / rowHeight_));
    Changed();
}

void RowGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    RowPosition& at = MutablePosition();
    const int row = at.Aimed();
    at.DropAim();
    update();
    if (row < 0 || !rect().contains(event->position().toPoint()))
        return;
    at.SetCurrent(row);
    Changed();
    Q_EMIT Tapped();
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
    Changed();
}

void RowGrid::Changed() {
    update();
    Q_EMIT RowColChange();
}
