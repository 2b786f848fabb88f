#include "screens/touch/Colours.h"

#include <algorithm>
#include <cmath>

namespace Colours {

namespace {

/// Share of a channel in the light that a colour gives, by the definition of sRGB.
double Linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
    return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) +
           0.0722 * Linear(colour.blueF());
}

} // namespace

QColor FromBgr(qint32 colour) {
    return {colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
}

qint32 ToBgr(const QColor& colour) {
    return colour.red() | colour.green() << 8 | colour.blue() << 16;
}

double Contrast(const QColor& one, const QColor& other) {
    const double first = Luminance(one) + 0.05;
    const double second = Luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor InkOn(const QColor& background) {
    return Contrast(background, Qt::black) >= Contrast(background, Qt::white) ? Qt::black
                                                                              : Qt::white;
}

} // namespace Colours
