#include "screens/report/BarPlot.h"

#include "screens/touch/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

const BarPlot::Look BarPlot::OnScreen{Theme::Ink, Theme::Tile, QColor(0x5B, 0x8D, 0xB8),
                                      QColor(0xE0, 0xA0, 0x30), QColor(0xE8, 0x60, 0x40)};
const BarPlot::Look BarPlot::OnPaper{Qt::black, QColor(0xD0, 0xD4, 0xD8), QColor(0x4A, 0x7A, 0xA5),
                                     QColor(0xD0, 0x90, 0x20), QColor(0xC8, 0x40, 0x28)};

namespace {

constexpr double Gap = 6;
/// Room above the highest bar, of its height.
constexpr double Headroom = 1.12;
/// A limit is shown as long as the bars reach this share of it.
constexpr double ShareSeen = 0.3;
constexpr int Steps = 4;
constexpr double SmallestTop = 4;
/// Width of a bar, of its column.
constexpr double BarShare = 0.72;
/// Smallest letters of a number, of those of the names.
constexpr double SmallestNumber = 0.65;

double Greatest(const QList<double>& values) {
    return values.isEmpty() ? 0 : *std::max_element(values.cbegin(), values.cend());
}

/// 1, 2 or 5 and noughts.
double NiceStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(std::max(least, 1.0))));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least)
            return factor * power;
    return 10 * power;
}

} // namespace

BarPlot::BarPlot(const ReportBars& bars, const QRectF& area, const QFont& font)
    : bars_(bars)
    , area_(area)
    , font_(font) {
    Fit();
}

void BarPlot::Fit() {
    const double highest =
        bars_.alarms.isEmpty() ? 0 : *std::max_element(bars_.alarms.cbegin(), bars_.alarms.cend());
    top_ = std::max(highest, SmallestTop);
    for (const double limit : {Greatest(bars_.acceptable), Greatest(bars_.most)})
        if (highest >= limit * ShareSeen)
            top_ = std::max(top_, limit);
    top_ *= Headroom;
    step_ = NiceStep(top_ / Steps);
    const QFontMetricsF metrics(font_);
    const double left = metrics.horizontalAdvance(QString::number(int(top_))) + Gap;
    plot_ = area_.adjusted(left, metrics.height() / 2, 0, -metrics.height() - Gap);
    double widest = 0;
    for (const QString& name : bars_.names)
        widest = std::max(widest, metrics.horizontalAdvance(name) + Gap);
    const double column = plot_.width() / std::max<qsizetype>(1, bars_.names.size());
    nameEvery_ = std::max(1, int(std::ceil(widest / column)));
}

double BarPlot::HeightOf(double alarms) const {
    return plot_.height() * alarms / top_;
}

QRectF BarPlot::ColumnOf(int bar) const {
    const double width = plot_.width() / double(bars_.names.size());
    return {plot_.left() + bar * width, plot_.top(), width, plot_.height()};
}

int BarPlot::BarAt(const QPointF& place) const {
    if (bars_.names.isEmpty() || !area_.contains(place) || place.x() < plot_.left())
        return -1;
    const int bar = int((place.x() - plot_.left()) * double(bars_.names.size()) / plot_.width());
    return std::min(bar, int(bars_.names.size()) - 1);
}

void BarPlot::Paint(QPainter& painter, const Look& look) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font_);
    PaintScale(painter, look);
    for (int bar = 0; bar < bars_.names.size(); ++bar) {
        PaintBar(painter, look, bar);
        painter.setPen(look.ink);
        PaintName(painter, bar);
    }
    PaintLimit(painter, bars_.acceptable, look.above);
    PaintLimit(painter, bars_.most, look.most);
    painter.setPen(look.ink);
    painter.drawLine(plot_.bottomLeft(), plot_.bottomRight());
    painter.restore();
}

void BarPlot::PaintScale(QPainter& painter, const Look& look) const {
    const double half = QFontMetricsF(font_).height() / 2;
    for (double value = 0; value < top_; value += step_) {
        const double y = plot_.bottom() - HeightOf(value);
        painter.setPen(look.line);
        painter.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
        painter.setPen(look.ink);
        painter.drawText(
            QRectF(area_.left(), y - half, plot_.left() - area_.left() - Gap / 2, 2 * half),
            Qt::AlignRight | Qt::AlignVCenter, QString::number(int(value)));
    }
}

void BarPlot::PaintBar(QPainter& painter, const Look& look, int bar) const {
    const int alarms = bars_.alarms[bar];
    const QRectF column = ColumnOf(bar);
    const double width = column.width() * BarShare;
    const double height = HeightOf(alarms);
    const QRectF area(column.center().x() - width / 2, column.bottom() - height, width, height);
    painter.fillRect(area, alarms > bars_.most[bar]         ? look.most
                           : alarms > bars_.acceptable[bar] ? look.above
                                                            : look.bar);
    painter.setPen(look.ink);
    PaintNumber(painter, alarms, column);
}

/// Above its bar, in smaller letters where the column is too narrow for it.
void BarPlot::PaintNumber(QPainter& painter, int alarms, const QRectF& column) const {
    const QString number = QString::number(alarms);
    const double needed = QFontMetricsF(font_).horizontalAdvance(number);
    const double share = std::min(1.0, column.width() / std::max(needed, 1.0));
    if (alarms == 0 || share < SmallestNumber)
        return;
    QFont font = font_;
    font.setPixelSize(int(font.pixelSize() * share));
    painter.setFont(font);
    const double height = QFontMetricsF(font).height();
    painter.drawText(QRectF(column.left() - column.width(),
                            column.bottom() - HeightOf(alarms) - height, 3 * column.width(),
                            height),
                     Qt::AlignHCenter | Qt::AlignBottom, number);
    painter.setFont(font_);
}

void BarPlot::PaintName(QPainter& painter, int bar) const {
    if (bar % nameEvery_ != 0)
        return;
    const QRectF column = ColumnOf(bar);
    const double room = column.width() * nameEvery_;
    painter.drawText(QRectF(column.center().x() - room / 2, plot_.bottom() + Gap / 2, room,
                            area_.bottom() - plot_.bottom()),
                     Qt::AlignHCenter | Qt::AlignTop, bars_.names[bar]);
}

/// Months differ in their days: each bar has a limit of its own.
void BarPlot::PaintLimit(QPainter& painter, const QList<double>& limit,
                         const QColor& colour) const {
    if (Greatest(limit) > top_)
        return;
    painter.setPen(QPen(colour, 1.5, Qt::DashLine));
    for (int bar = 0; bar < limit.size(); ++bar) {
        const QRectF column = ColumnOf(bar);
        const double y = column.bottom() - HeightOf(limit[bar]);
        painter.drawLine(QPointF(column.left(), y), QPointF(column.right(), y));
    }
}
