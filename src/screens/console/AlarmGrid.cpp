#include "screens/console/AlarmGrid.h"

#include "events/EventClass.h"
#include "model/CurrentConfig.h"
#include "screens/console/RowShapes.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QPainter>
#include <QRegion>

namespace {

/// Characters of a row without the blank at its end.
constexpr int Columns = 73;
/// Room around the letters that a finger and an eye at two metres need, in heights of the font.
constexpr double RowPitch = 1.85;
constexpr int FewestRows = 11;
/// Room for the shape beside the blank with which each text begins, in heights of the font.
constexpr double MarkRoom = 0.95;
/// Two tones, so that one of them is seen on any colour, pixels each.
constexpr int OuterFrame = 3;
constexpr int InnerFrame = 2;
/// Column at which the text of a channel stands in its row.
constexpr qsizetype TextColumn = 49;

} // namespace

AlarmGrid::AlarmGrid(QWidget* parent)
    : RowGrid({Columns, RowPitch, FewestRows, MarkRoom}, parent) {
    FitFont();
}

/// The row of a lost panel has room where a channel has its text: the panel's title stands there.
/// It is only painted, the text of a row is read by others as it is.
QString AlarmGrid::PaintedText(const AlarmRow& alarm) {
    QString text = alarm.text;
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    EventClass event;
    event.setID(alarm.data);
    if (event.Chnl() != Family::Presence || event.Panel() < 1 ||
        event.Panel() > ConfigClass::PanelCount)
        return text;
    const QString title = Global::Configuration().Panel(event.Panel()).TitleLine().trimmed();
    const qsizetype column = qMax(TextColumn, text.size() + 1);
    return title.isEmpty() ? text : (text.leftJustified(column) + title).left(Columns);
}

void AlarmGrid::PaintRow(QPainter& painter, int row, const QRect& area) const {
    const AlarmRow& alarm = rows_.Row(row);
    const QColor background = Colours::FromBgr(alarm.colour);
    const QColor ink = Colours::InkOn(background);
    painter.fillRect(area, background);
    painter.setPen(ink);
    painter.drawText(area.adjusted(LeftMargin(), 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, PaintedText(alarm));
    constexpr int Frame = OuterFrame + InnerFrame;
    const int digits = LeftMargin() + painter.fontMetrics().horizontalAdvance(u'0');
    const QRect mark(area.left() + Frame + 1, area.top() + Frame, digits - Frame - 5,
                     area.height() - 2 * Frame);
    RowShapes::Draw(painter, mark, alarm.State(), ink, background);
    if (row == rows_.Current())
        PaintFrame(painter, area);
    else if (row == Position().Aimed())
        Band(painter, area, InnerFrame, ink);
}

/// A frame of a width along the inside of an area.
void AlarmGrid::Band(QPainter& painter, const QRect& area, int width, const QColor& colour) {
    const QRect inside = area.adjusted(width, width, -width, -width);
    for (const QRect& side : QRegion(area).subtracted(inside))
        painter.fillRect(side, colour);
}

void AlarmGrid::PaintFrame(QPainter& painter, const QRect& area) {
    Band(painter, area, OuterFrame, Qt::black);
    const QRect inner = area.adjusted(OuterFrame, OuterFrame, -OuterFrame, -OuterFrame);
    Band(painter, inner, InnerFrame, Qt::white);
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
