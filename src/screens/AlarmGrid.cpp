#include "screens/AlarmGrid.h"

#include "screens/Theme.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

/// Characters of a row without the blank at its end.
constexpr int Columns = 73;
/// Room around the letters that a finger and an eye at two metres need, in heights of the font.
constexpr double RowPitch = 1.85;
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
    : RowGrid({Columns, RowPitch, FewestRows}, parent) {
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

void AlarmGrid::PaintRow(QPainter& painter, int row, const QRect& area) const {
    const AlarmRow& alarm = rows_.Row(row);
    const QColor background = FromBgr(alarm.colour);
    painter.fillRect(area, background);
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
