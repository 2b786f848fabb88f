#include "technician/FrontLamp.h"

#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QPainter>

namespace {

/// In shares of the lamp's side.
constexpr double RingStroke = 0.1;
constexpr double MarkText = 0.7;

} // namespace

FrontLamp::FrontLamp(QWidget* parent)
    : QWidget(parent) {}

void FrontLamp::setFillColor(qint32 colour) {
    if (colour == fillColor_)
        return;
    fillColor_ = colour;
    update();
}

void FrontLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = qMin(width(), height());
    const double stroke = qMax(1.0, side * RingStroke);
    QRectF disc(0, 0, side - stroke, side - stroke);
    disc.moveCenter(QRectF(rect()).center());
    const QColor colour = Colours::FromBgr(fillColor_);
    const bool lit = fillColor_ == LampColours::Red;
    painter.setPen(QPen(lit ? QColor(Qt::white) : Theme::Edge, stroke));
    painter.setBrush(colour);
    painter.drawEllipse(disc);
    if (fillColor_ != LampColours::Yellow)
        return;
    painter.setPen(Colours::InkOn(colour));
    painter.setFont(Theme::Text(qRound(side * MarkText), true));
    painter.drawText(disc, Qt::AlignCenter, QStringLiteral("?"));
}
