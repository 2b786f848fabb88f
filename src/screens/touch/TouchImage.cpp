#include "screens/touch/TouchImage.h"

#include "screens/touch/Theme.h"

#include <QPainter>

namespace {
constexpr int Margin = 6;
constexpr int CaptionGap = 2;
constexpr qreal Radius = 8;
constexpr int LargestPicture = 64;
constexpr qreal DormantOpacity = 0.35;
constexpr QSize Smallest{48, 48};
} // namespace

TouchImage::TouchImage(QWidget* parent)
    : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
}

void TouchImage::setPicture(const QString& name) {
    if (picture_ == name)
        return;
    picture_ = name;
    update();
}

QSize TouchImage::sizeHint() const {
    return Smallest;
}

bool TouchImage::IsWide() const {
    return width() * 2 >= height() * 3;
}

QRect TouchImage::PictureArea() const {
    const QRect inner = rect().adjusted(Margin, Margin, -Margin, -Margin);
    const int largest = LargestPicture * qMax(1, height() / LargestPicture);
    if (text().isEmpty()) {
        const int side = qMin(qMin(inner.width(), inner.height()), largest);
        QRect area(0, 0, side, side);
        area.moveCenter(rect().center());
        return area;
    }
    if (IsWide()) {
        const int side = qMin(qMin(inner.height(), inner.width() / 3), largest);
        return {inner.left(), rect().center().y() - side / 2, side, side};
    }
    const int captionHeight = fontMetrics().lineSpacing() + CaptionGap;
    const int side = qMin(inner.width(), inner.height() - captionHeight);
    return {rect().center().x() - side / 2, inner.top(), side, side};
}

QRect TouchImage::CaptionArea() const {
    const QRect inner = rect().adjusted(Margin, Margin, -Margin, -Margin);
    if (picture_.isEmpty())
        return inner;
    if (IsWide())
        return inner.adjusted(PictureArea().width() + Margin, 0, 0, 0);
    return inner.adjusted(0, PictureArea().height(), 0, 0);
}

int TouchImage::CaptionFlags() const {
    const int side = IsWide() && !picture_.isEmpty() ? int(Qt::AlignLeft) : int(Qt::AlignHCenter);
    return side | Qt::AlignVCenter | Qt::TextWordWrap;
}

QFont TouchImage::CaptionFont() const {
    constexpr double SmallestShare = 0.6;
    const QRect area = CaptionArea();
    QFont fitted = font();
    const int smallest = qMax(1, int(fitted.pixelSize() * SmallestShare));
    const auto fits = [&] {
        return area.size().expandedTo(
                   QFontMetrics(fitted).boundingRect(area, CaptionFlags(), text()).size()) ==
               area.size();
    };
    while (fitted.pixelSize() > smallest && !fits())
        fitted.setPixelSize(fitted.pixelSize() - 1);
    return fitted;
}

void TouchImage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(isEnabled() ? Theme::Edge : Theme::Tile, 1));
    painter.setBrush(!isEnabled() ? Theme::Ground : isDown() ? Theme::Pressed : Theme::Tile);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Radius, Radius);
    const bool other = isChecked() && !checkedPicture_.isEmpty();
    Theme::DrawPicture(painter, other ? checkedPicture_ : picture_, PictureArea(),
                       isEnabled() ? 1 : DormantOpacity);
    if (text().isEmpty())
        return;
    painter.setPen(isEnabled() ? Theme::Ink : Theme::Dormant);
    painter.setFont(CaptionFont());
    painter.drawText(CaptionArea(), CaptionFlags(), text());
}
