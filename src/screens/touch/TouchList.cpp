#include "screens/touch/TouchList.h"

#include <QScrollBar>

namespace {

/// Height of a row and width of the scroll bar in the design, pixels.
constexpr int Finger = 48;
constexpr int Arrow = 24;

const QString StyleSheet = QStringLiteral(R"(
QListWidget { outline: none; }
QListWidget::item { height: %1px; padding-left: %3px; border-bottom: 1px solid #2C3744; }
QListWidget::item:selected { background: #3B5675; color: #FFFFFF; }
QScrollBar:vertical { width: %1px; margin: %1px 0 %1px 0; background: #12171E; border: none; }
QScrollBar::handle:vertical { min-height: %1px; background: #4A5868; border-radius: 6px;
    margin: 2px 8px 2px 8px; }
QScrollBar::handle:vertical:pressed { background: #9AA6B4; }
QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: %1px; background: #2C3744;
    border: 1px solid #4A5868; border-radius: 6px; subcontrol-origin: margin; }
QScrollBar::add-line:vertical { subcontrol-position: bottom; }
QScrollBar::sub-line:vertical { subcontrol-position: top; }
QScrollBar::add-line:vertical:pressed, QScrollBar::sub-line:vertical:pressed {
    background: #475769; }
QScrollBar::up-arrow:vertical { image: url(:/pictures/up.svg); width: %2px; height: %2px; }
QScrollBar::down-arrow:vertical { image: url(:/pictures/down.svg); width: %2px; height: %2px; }
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }
)");

} // namespace

void MakeTouchList(QListWidget& list, double scale) {
    const auto scaled = [scale](int pixels) { return qRound(pixels * scale); };
    list.setStyleSheet(QString(StyleSheet)
                           .replace(QStringLiteral("%1"), QString::number(scaled(Finger)))
                           .replace(QStringLiteral("%2"), QString::number(scaled(Arrow)))
                           .replace(QStringLiteral("%3"), QString::number(scaled(Arrow / 4))));
    list.setUniformItemSizes(true);
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    list.setTextElideMode(Qt::ElideMiddle);
    list.setEditTriggers(QAbstractItemView::NoEditTriggers);
    list.setContextMenuPolicy(Qt::NoContextMenu);
}
