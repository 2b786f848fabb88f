#include "screens/touch/TouchList.h"

#include "screens/touch/SwipeScroll.h"
#include "screens/touch/Theme.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

/// Height of a row and width of the scroll bar in the design, pixels.
constexpr int Finger = 48;
constexpr int Arrow = 24;

const QString Rows = QStringLiteral(R"(
QListWidget { outline: none; }
QListWidget::item { height: %1px; padding-left: %2px; border-bottom: 1px solid #2C3744; }
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
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }
)");

QString Scaled(QString style, double scale) {
    const auto pixels = [scale](int design) { return QString::number(qRound(design * scale)); };
    return style.replace(QStringLiteral("%1"), pixels(Finger))
        .replace(QStringLiteral("%2"), pixels(Arrow / 4));
}

/// The arrows at the ends of a scroll bar, drawn over it. As images of its style each new bar would
/// have icons of its own, whose pictures Qt keeps long after the bar is gone.
class Arrows : public QWidget {
public:
    explicit Arrows(QScrollBar& bar)
        : QWidget(&bar) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        bar.installEventFilter(this);
        resize(bar.size());
        show();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Resize)
            resize(parentWidget()->size());
        return QWidget::eventFilter(watched, event);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const double finger = width();
        QRectF arrow(0, 0, finger * Arrow / Finger, finger * Arrow / Finger);
        arrow.moveCenter(QPointF(finger / 2, finger / 2));
        Theme::DrawPicture(painter, QStringLiteral("up"), arrow);
        arrow.moveCenter(QPointF(finger / 2, height() - finger / 2));
        Theme::DrawPicture(painter, QStringLiteral("down"), arrow);
    }
};

} // namespace

void GiveTouchScrollBar(QAbstractScrollArea& view, double scale, const QString& style) {
    view.setStyleSheet(style + Scaled(Bar, scale));
    QScrollBar* bar = view.verticalScrollBar();
    if (bar->findChild<QWidget*>() == nullptr)
        new Arrows(*bar);
}

void MakeTouchList(QListWidget& list, double scale) {
    GiveTouchScrollBar(list, scale, Scaled(Rows, scale));
    // Rows that are laid out ahead of the first sight would keep the height of no style.
    list.ensurePolished();
    list.setUniformItemSizes(true);
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.setTextElideMode(Qt::ElideMiddle);
    list.setEditTriggers(QAbstractItemView::NoEditTriggers);
    list.setContextMenuPolicy(Qt::NoContextMenu);
    new SwipeScroll(list);
}
