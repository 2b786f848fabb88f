#include "screens/touch/ValueLabel.h"

#include "core/Bytes.h"
#include "screens/touch/Theme.h"

#include <QPainter>

namespace {
constexpr int Margin = 6;
constexpr qreal Corner = 4;
} // namespace

ValueLabel::ValueLabel(QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

void ValueLabel::setCaption(const QString& caption) {
    if (caption == text())
        return;
    setText(caption);
    Q_EMIT Changed();
}

int ValueLabel::Number() const {
    return Bytes::LongVal(text());
}

bool ValueLabel::IsNumeric() const {
    bool isNumber = false;
    text().trimmed().toInt(&isNumber);
    return isNumber;
}

void ValueLabel::setPointed(bool on) {
    pointed_ = on;
    update();
}

void ValueLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::Edge);
    painter.setBrush(!isEnabled() ? Theme::Dormant : QColor(pointed_ ? Qt::yellow : Qt::white));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Corner, Corner);
    painter.setPen(Qt::black);
    const QRect room = rect().adjusted(Margin, 1, -Margin, -1);
    if (wordWrap()) {
        painter.drawText(room, int(alignment()) | Qt::TextWordWrap, text());
        return;
    }
    const QString line = QString(text()).replace(QLatin1String("\r\n"), QLatin1String(" "));
    painter.drawText(room, int(alignment()) | Qt::TextSingleLine,
                     fontMetrics().elidedText(line, Qt::ElideRight, room.width()));
}
