#include "screens/touch/SwipeScroll.h"

#include <QAbstractItemView>
#include <QMouseEvent>
#include <QScrollBar>

namespace {
/// A finger that wants to stay moves so far all the same, pixels.
constexpr int Tremble = 12;
} // namespace

SwipeScroll::SwipeScroll(QAbstractScrollArea& view)
    : QObject(&view)
    , view_(view)
    , rows_(qobject_cast<QAbstractItemView*>(&view)) {
    if (rows_ != nullptr)
        rows_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view.viewport()->installEventFilter(this);
}

bool SwipeScroll::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() < QEvent::MouseButtonPress || event->type() > QEvent::MouseMove)
        return QObject::eventFilter(watched, event);
    const auto* mouse = static_cast<QMouseEvent*>(event);
    const QPoint finger = mouse->position().toPoint();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        down_ = mouse->button() == Qt::LeftButton;
        swipes_ = false;
        pressedAt_ = finger;
        pressedValue_ = view_.verticalScrollBar()->value();
        break;
    case QEvent::MouseMove:
        if (down_)
            Follow(finger);
        break;
    case QEvent::MouseButtonRelease:
        if (down_ && !swipes_)
            Tap();
        down_ = false;
        break;
    default:
        break;
    }
    return true;
}

void SwipeScroll::Follow(const QPoint& finger) {
    const int way = pressedAt_.y() - finger.y();
    swipes_ = swipes_ || qAbs(way) > Tremble;
    if (swipes_)
        view_.verticalScrollBar()->setValue(pressedValue_ + way);
}

void SwipeScroll::Tap() const {
    const QModelIndex row = rows_ == nullptr ? QModelIndex() : rows_->indexAt(pressedAt_);
    if (!row.isValid())
        return;
    rows_->setFocus(Qt::MouseFocusReason);
    Q_EMIT rows_->pressed(row);
    rows_->setCurrentIndex(row);
    Q_EMIT rows_->clicked(row);
}
