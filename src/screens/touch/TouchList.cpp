#include "screens/touch/TouchList.h"

#include "screens/touch/SwipeScroll.h"

#include <QScrollBar>

namespace {

/// Height of a row and width of the scroll bar in the design, pixels.
constexpr int Finger = 48;
constexpr int Arrow = 24;

const QString Rows = QStringLiteral(R"(
QListWidget { outline: none; }
QListWidget::item { height: %1px; padding-left: %3px; border-bottom: 1px solid #2C3744; }
QListWidget::item:selected { background: #3B5675; color: #FFFFFF; }
)");

const QString Bar = QStringLiteral(R"(
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

QString Scaled(QString style, double scale) {
    const auto pixels = [scale](int design) { return QString::number(qRound(design * scale)); };
    return style.replace(QStringLiteral("%1"), pixels(Finger))
        .replace(QStringLiteral("%2"), pixels(Arrow))
        .replace(QStringLiteral("%3"), pixels(Arrow / 4));
}

} // namespace

QString TouchScrollBar(double scale) {
    return Scaled(Bar, scale);
}

void MakeTouchList(QListWidget& list, double scale) {
    list.setStyleSheet(Scaled(Rows, scale) + TouchScrollBar(scale));
    // Rows that are laid out ahead of the first sight would keep the height of no style.
    list.ensurePolished();
    list.setUniformItemSizes(true);
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.setTextElideMode(Qt::ElideMiddle);
    list.setEditTriggers(QAbstractItemView::NoEditTriggers);
    list.setContextMenuPolicy(Qt::NoContextMenu);
    new SwipeScroll(list);
}
