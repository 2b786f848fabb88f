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
constexpr QChar Ellipsis(0x2026);
/// A long title is written smaller, down to this share of the font, before it is cut.
constexpr double SmallestFont = 0.83;

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

bool PanelTitle::Lay(const QFont& font, QStringList& lines) const {
    const QFontMetrics metrics(font);
    const int most = qMax(1, Room().height() / metrics.lineSpacing());
    lines.clear();
    for (QString left : text().split(u'\n')) {
        do {
            const int end = LineEnd(left, font, Room().width());
            if (lines.size() == most) {
                lines.last() =
                    metrics.elidedText(lines.last() + Ellipsis, Qt::ElideRight, Room().width());
                return false;
            }
            lines += left.left(end).trimmed();
            left = left.mid(end);
        } while (!left.isEmpty());
    }
    return true;
}

QFont PanelTitle::LaidFont(QStringList& lines) const {
    QFont fitted = font();
    const int smallest = qRound(fitted.pixelSize() * SmallestFont);
    while (!Lay(fitted, lines) && fitted.pixelSize() > smallest)
        fitted.setPixelSize(fitted.pixelSize() - 1);
    return fitted;
}

QStringList PanelTitle::Lines() const {
    QStringList lines;
    LaidFont(lines);
    return lines;
}

void PanelTitle::PaintGround(QPainter& painter, const QRect& area) const {
    if (text().isEmpty() || ground_ == Theme::Tile)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground_);
    painter.drawRoundedRect(area, Corner, Corner);
}

void PanelTitle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!bare_)
        PaintGround(painter, rect());
    painter.setPen(ink_);
    QStringList lines;
    painter.setFont(LaidFont(lines));
    painter.drawText(Room(), int(alignment()), lines.join(u'\n'));
}
