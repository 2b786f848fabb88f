#include "screens/AlarmGrid.h"

#include "screens/Theme.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

/// Characters of a row without the blank at its end.
constexpr int Columns = 73;
constexpr int LeftMargin = 4;
constexpr int ThumbWidth = 8;
constexpr int SmallestPixels = 8;
constexpr int LargestPixels = 64;
/// Room around the letters that a finger and an eye at two metres need, in heights of the font.
constexpr double LinePitch = 1.85;
/// A wide display gets larger letters only as long as this many rows are seen.
constexpr int FewestRows = 11;
constexpr int FrameWidth = 3;
constexpr QColor Frame{0x12, 0x17, 0x1E};

/// Share of a channel in the light that a colour gives, by the definition of sRGB.
double Linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
    return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) +
           0.0722 * Linear(colour.blueF());
}

} // namespace

AlarmGrid::AlarmGrid(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::ClickFocus);
    FitFont();
}

QColor AlarmGrid::FromBgr(qint32 colour) {
    return {colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
}

double AlarmGrid::Contrast(const QColor& one, const QColor& other) {
    const double first = Luminance(one) + 0.05;
    const double second = Luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor AlarmGrid::InkOn(const QColor& background) {
    return Contrast(background, Qt::black) >= Contrast(background, Qt::white) ? Qt::black
                                                                              : Qt::white;
}

void AlarmGrid::FitFont() {
    const int room = width() - LeftMargin - ThumbWidth;
    const auto fits = [&](int pixels) {
        return pixels * LinePitch * FewestRows <= height() &&
               QFontMetricsF(Theme::Fixed(pixels, true))
                       .horizontalAdvance(QString(Columns, u'0')) <= room;
    };
    int pixels = SmallestPixels;
    while (pixels < LargestPixels && fits(pixels + 1))
        ++pixels;
    font_ = Theme::Fixed(pixels, true);
    const int page = std::max(1, int(height() / (pixels * LinePitch)));
    rowHeight_ = std::max(1, height() / page);
    rows_.SetPage(page);
}

void AlarmGrid::resizeEvent(QResizeEvent*) {
    FitFont();
    Q_EMIT RowColChange();
}

void AlarmGrid::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::Field);
    // What isn't seen whole tells nothing.
    const int end = std::min(rows_.First() + rows_.Page(), rows_.Count());
    for (int row = rows_.First(); row < end; ++row)
        PaintRow(painter, row);
    PaintThumb(painter);
}

void AlarmGrid::PaintRow(QPainter& painter, int row) const {
    const AlarmRow& alarm = rows_.Row(row);
    const QColor background = FromBgr(alarm.colour);
    const QRect area(0, (row - rows_.First()) * rowHeight_, width() - ThumbWidth, rowHeight_ - 1);
    painter.fillRect(area, background);
    painter.setFont(font_);
    painter.setPen(InkOn(background));
    QString text = alarm.text;
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    painter.drawText(area.adjusted(LeftMargin, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    if (row != rows_.Current())
        return;
    constexpr int Inset = FrameWidth / 2;
    painter.setPen(QPen(InkOn(background) == Qt::black ? Frame : QColor(Qt::white), FrameWidth));
    painter.drawRect(area.adjusted(Inset, Inset, -Inset - 1, -Inset - 1));
}

/// Where the rows in sight lie among all, at the right edge.
void AlarmGrid::PaintThumb(QPainter& painter) const {
    if (rows_.Count() <= rows_.Page())
        return;
    const QRectF track(width() - ThumbWidth + 2, 0, ThumbWidth - 2, height());
    painter.fillRect(track, Theme::Tile);
    const double share = track.height() / rows_.Count();
    painter.fillRect(
        QRectF(track.left(), rows_.First() * share, track.width(), rows_.Page() * share),
        Theme::QuietInk);
}

void AlarmGrid::mousePressEvent(QMouseEvent* event) {
    const int row = rows_.First() + event->position().toPoint().y() / rowHeight_;
    if (event->button() != Qt::LeftButton || row >= rows_.Count())
        return;
    rows_.SetCurrent(row);
    update();
    Q_EMIT RowColChange();
}

void AlarmGrid::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_PageUp:
        rows_.MoveBy(-rows_.Page());
        break;
    case Qt::Key_Up:
        rows_.MoveBy(-1);
        break;
    case Qt::Key_Down:
        rows_.MoveBy(1);
        break;
    case Qt::Key_PageDown:
        rows_.MoveBy(rows_.Page());
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
    Q_EMIT RowColChange();
}

AlarmMark::AlarmMark(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void AlarmMark::setPicture(const QString& name) {
    picture_ = name;
    update();
}

void AlarmMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Theme::DrawPicture(painter, picture_, rect());
}
