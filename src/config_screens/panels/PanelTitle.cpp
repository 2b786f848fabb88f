#include "config_screens/panels/PanelTitle.h"

#include "model/PanelClass.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QPainter>
#include <QTextLayout>

namespace {

/// Below this a title is hard to read from where an operator stands.
constexpr double LeastContrast = 4.5;
constexpr int Padding = 4;
constexpr qreal Corner = 4;

/// Where the first line of a text ends that is no wider than `width`: behind a blank, or anywhere
/// in a word that is wider by itself.
int LineEnd(const QString& text, const QFont& font, int width) {
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(width);
    layout.endLayout();
    return qMax(line.textLength(), 1);
}

} // namespace

PanelTitle::PanelTitle(QWidget* parent)
    : QLabel(parent)
    , ink_(Theme::Ink)
    , ground_(Theme::Tile) {
    setTextFormat(Qt::PlainText);
}

void PanelTitle::setPanel(const PanelClass& panel) {
    setText(panel.Title().replace(u'|', u'\n'));
    ink_ = Colours::FromBgr(panel.TitleColor());
    const bool legible = Colours::Contrast(ink_, Theme::Tile) >= LeastContrast;
    ground_ = legible ? QColor(Theme::Tile) : Colours::InkOn(ink_);
    update();
}

QRect PanelTitle::Room() const {
    return rect().adjusted(Padding, 0, -Padding, 0);
}

QStringList PanelTitle::Lines() const {
    const int most = qMax(1, Room().height() / fontMetrics().lineSpacing());
    QStringList lines;
    for (QString left : text().split(u'\n')) {
        do {
            const int end = LineEnd(left, font(), Room().width());
            if (lines.size() == most) {
                // Nothing of the last line may be lost without a sign.
                lines.last() = fontMetrics().elidedText(lines.last() + QChar(0x2026),
                                                        Qt::ElideRight, Room().width());
                return lines;
            }
            lines += left.left(end).trimmed();
            left = left.mid(end);
        } while (!left.isEmpty());
    }
    return lines;
}

void PanelTitle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!text().isEmpty() && ground_ != Theme::Tile) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground_);
        painter.drawRoundedRect(rect(), Corner, Corner);
    }
    painter.setPen(ink_);
    const QString lines = Lines().join(u'\n');
    painter.drawText(Room(), int(alignment()), lines);
}
