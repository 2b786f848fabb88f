#include "screens/console/FaultBand.h"

#include "screens/console/ConsoleHead.h"
#include "screens/touch/Theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <array>

namespace {

constexpr int Gap = 4;
constexpr int Margin = 5;
constexpr qreal Radius = 8;
constexpr int OutlineWidth = 2;
/// Width of the place for "+10" in heights of the band.
constexpr double RestWidth = 1.25;
/// Words shrink a little before they are cut.
constexpr double SmallestLetters = 0.8;
constexpr QColor Warning{0xFF, 0xA6, 0x4D};
constexpr QColor Alarm{0xFF, 0x00, 0x00};

void PaintTile(QPainter& painter, const QRect& tile, bool alarm) {
    painter.setPen(QPen(alarm ? Alarm : Warning, OutlineWidth));
    painter.setBrush(alarm ? Alarm : Theme::Tile);
    painter.drawRoundedRect(QRectF(tile).adjusted(1, 1, -1, -1), Radius, Radius);
    painter.setPen(alarm ? QColor(Qt::black) : Theme::Ink);
}

/// Words in the font of the painter, smaller where they need it, cut where that isn't enough.
void PaintWords(QPainter& painter, const QRect& area, const QString& words) {
    QFont font = painter.font();
    const int smallest = int(font.pixelSize() * SmallestLetters);
    while (font.pixelSize() > smallest &&
           QFontMetrics(font).horizontalAdvance(words) > area.width())
        font.setPixelSize(font.pixelSize() - 1);
    painter.setFont(font);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(words, Qt::ElideRight, area.width()));
}

} // namespace

FaultBand::FaultBand(QWidget* parent)
    : QWidget(parent) {}

void FaultBand::Present(const QList<Faults::Fault>& faults) {
    faults_ = faults;
    update();
}

QString FaultBand::PictureOf(Faults::Kind kind) {
    static constexpr std::array<const char*, Faults::KindCount> names{
        "round",   "horn",    "disk_full", "history", "trace", "panel", "memory",
        "command", "printer", "disk",      "clock",   "box",   "backup"};
    return QStringLiteral("fault_") + QString::fromLatin1(names[size_t(kind)]);
}

QRect FaultBand::RestArea() const {
    if (faults_.size() <= MostShown)
        return {width(), 0, 0, height()};
    const int wide = qRound(height() * RestWidth);
    return {width() - wide, 0, wide, height()};
}

QRect FaultBand::Tile(int index) const {
    const int shown = int(qMin<qsizetype>(faults_.size(), MostShown));
    if (index < 0 || index >= shown)
        return {};
    const QRect rest = RestArea();
    const int room = rest.left() - (rest.isEmpty() ? 0 : Gap);
    const int wide = (room - Gap * (shown - 1)) / shown;
    return {index * (wide + Gap), 0, wide, height()};
}

QRect FaultBand::WordsArea(int index) const {
    const QRect tile = Tile(index);
    return tile.isEmpty() ? QRect() : tile.adjusted(height() + Margin, 0, -2 * Margin, 0);
}

void FaultBand::PaintFault(QPainter& painter, int index) const {
    const Faults::Fault& fault = faults_[index];
    const QRect tile = Tile(index);
    PaintTile(painter, tile, fault.kind == Faults::Kind::RoundStopped);
    const QRect picture(tile.left(), tile.top(), height(), height());
    Theme::DrawPicture(painter, PictureOf(fault.kind),
                       picture.adjusted(Margin, Margin, -Margin, -Margin));
    painter.setFont(font());
    PaintWords(painter, WordsArea(index), ConsoleHead::TextOf(fault));
}

void FaultBand::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < std::min<qsizetype>(faults_.size(), MostShown); ++index)
        PaintFault(painter, index);
    if (faults_.size() <= MostShown)
        return;
    PaintTile(painter, RestArea(), false);
    painter.setFont(font());
    painter.drawText(RestArea(), Qt::AlignCenter,
                     u'+' + QString::number(faults_.size() - MostShown));
}
