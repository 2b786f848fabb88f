#include "screens/touch/RehearsalStrip.h"

#include "core/Config.h"
#include "screens/touch/Theme.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int ShortWords = 718002;
constexpr int LongWords = 718003;

constexpr QColor Yellow{0xFF, 0xC8, 0x00};
constexpr double TextShare = 0.5;
/// Width and distance of the stripes, and room for them beside the words, in shares of the height.
constexpr double StripeShare = 0.5;
constexpr double SideShare = 1.5;

QFont FontOf(const QWidget& strip) {
    return Theme::Text(qRound(strip.height() * TextShare), true);
}

} // namespace

RehearsalStrip::RehearsalStrip(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("lblRehearsal"));
    setCursor(Theme::TouchPointer());
}

QString RehearsalStrip::Words() const {
    const QString words = GetText(LongWords);
    const double room = width() - 2 * SideShare * height();
    return QFontMetrics(FontOf(*this)).horizontalAdvance(words) <= room ? words
                                                                        : GetText(ShortWords);
}

void RehearsalStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Yellow);
    painter.setRenderHint(QPainter::Antialiasing);
    const double stripe = height() * StripeShare;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const double foot = height();
    for (double x = -foot; x < width(); x += 2 * stripe)
        painter.drawPolygon(
            QPolygonF({{x, foot}, {x + foot, 0.0}, {x + foot + stripe, 0.0}, {x + stripe, foot}}));
    const QString words = Words();
    painter.setFont(FontOf(*this));
    const int wide = painter.fontMetrics().horizontalAdvance(words) + height();
    QRect middle(0, 0, wide, height());
    middle.moveCenter(rect().center());
    painter.fillRect(middle, Yellow);
    painter.setPen(Qt::black);
    painter.drawText(middle, Qt::AlignCenter, words);
}

void RehearsalStrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        Q_EMIT Touched();
}
