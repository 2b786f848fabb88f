#include "screens/console/RowShapes.h"

#include "screens/touch/Theme.h"

#include <QPainter>
#include <QPolygonF>

namespace RowShapes {

namespace {

/// Side of the square on which the shapes are drawn.
constexpr qreal Side = 24;
constexpr qreal Line = 3;
constexpr int DigitPixels = 18;

/// A digit in a filled shape, cut out in the colour of the ground.
void Digit(QPainter& painter, const QColor& ground, QChar digit) {
    painter.setPen(ground);
    painter.setFont(Theme::Text(DigitPixels, true));
    painter.drawText(QRectF(0, 0, Side, Side), Qt::AlignCenter, digit);
}

void Filled(QPainter& painter, const QPolygonF& shape) {
    painter.setBrush(painter.pen().color());
    painter.drawPolygon(shape);
}

/// An arrow that comes round again.
void DrawReturn(QPainter& painter) {
    constexpr int Degree = 16;
    painter.drawArc(QRectF(4, 4, 16, 16), -30 * Degree, 260 * Degree);
    Filled(painter, {{{14.5, 15.5}, {22.5, 15.5}, {18.5, 21}}});
}

/// A wire with a gap.
void DrawCable(QPainter& painter) {
    painter.drawLine(QLineF(1.5, 12, 7, 12));
    painter.drawLine(QLineF(17, 12, 22.5, 12));
    painter.drawLine(QLineF(7, 18, 11, 6));
    painter.drawLine(QLineF(13, 18, 17, 6));
}

} // namespace

void Draw(QPainter& painter, const QRectF& area, RowState state, const QColor& ink,
          const QColor& ground) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal scale = qMin(area.width(), area.height()) / Side;
    painter.translate(area.center());
    painter.scale(scale, scale);
    painter.translate(-Side / 2, -Side / 2);
    painter.setPen(QPen(ink, Line, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    switch (state) {
    case RowState::FirstFault:
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawEllipse(QRectF(0.5, 0.5, 23, 23));
        Digit(painter, ground, u'1');
        break;
    case RowState::SecondFault:
        painter.fillRect(QRectF(1.5, 1.5, 21, 21), ink);
        Digit(painter, ground, u'2');
        break;
    case RowState::Cable:
        DrawCable(painter);
        break;
    case RowState::Reactivated:
        DrawReturn(painter);
        break;
    case RowState::Acknowledged:
        painter.drawPolyline(QPolygonF{{3, 13}, {9.5, 19.5}, {21, 5}});
        break;
    case RowState::Lost:
        painter.drawLine(QLineF(4, 4, 20, 20));
        painter.drawLine(QLineF(20, 4, 4, 20));
        break;
    case RowState::Back:
        painter.drawEllipse(QRectF(3, 3, 18, 18));
        painter.setBrush(ink);
        painter.drawEllipse(QRectF(10.5, 10.5, 3, 3));
        break;
    case RowState::Active:
        Filled(painter, {{{12, 4.5}, {20.5, 19.5}, {3.5, 19.5}}});
        break;
    case RowState::Report:
        painter.drawPolygon(QPolygonF{{12, 20}, {20, 5}, {4, 5}});
        break;
    case RowState::Other:
        painter.drawLine(QLineF(4, 12, 20, 12));
        break;
    }
    painter.restore();
}

} // namespace RowShapes
