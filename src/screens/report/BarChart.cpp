#include "screens/report/BarChart.h"

#include "screens/touch/Theme.h"

#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr int Margin = 8;
} // namespace

BarChart::BarChart(QWidget* parent)
    : QWidget(parent) {
    setFocusPolicy(Qt::NoFocus);
}

void BarChart::setBars(const ReportBars& bars) {
    bars_ = bars;
    pressed_ = -1;
    update();
}

BarPlot BarChart::Plot() const {
    return {bars_, QRectF(rect()).adjusted(Margin, Margin, -Margin, -Margin), font()};
}

void BarChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::Field);
    if (!bars_.names.isEmpty())
        Plot().Paint(painter, BarPlot::OnScreen);
}

void BarChart::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        pressed_ = Plot().BarAt(event->position());
}

void BarChart::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const int bar = Plot().BarAt(event->position());
    if (bar >= 0 && bar == pressed_)
        Q_EMIT Touched(bar);
    pressed_ = -1;
}
