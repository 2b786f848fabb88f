#include "screens/touch/TouchGuard.h"

#include "platform/Clock.h"

#include <QChildEvent>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QScopedValueRollback>

namespace {

qint64 NowMs() {
    return platform::Clock::Current().MonotonicMs();
}

} // namespace

TouchGuard::TouchGuard(QWidget& screen)
    : QObject(&screen)
    , screen_(screen)
    , wholeScreen_(true) {
    screen.installEventFilter(this);
    for (QWidget* control : screen.findChildren<QWidget*>())
        control->installEventFilter(this);
}

TouchGuard::TouchGuard(QWidget& screen, const QList<QWidget*>& controls)
    : QObject(&screen)
    , screen_(screen) {
    screen.installEventFilter(this);
    for (QWidget* control : controls)
        control->installEventFilter(this);
}

void TouchGuard::Hold() {
    unseen_ = true;
    screen_.update();
}

bool TouchGuard::Holds() const {
    return unseen_ || NowMs() < until_;
}

void TouchGuard::Painted() {
    if (!unseen_)
        return;
    unseen_ = false;
    until_ = NowMs() + HoldMs;
}

/// A control that is down comes up again without having been pressed.
void TouchGuard::ReleaseOutside(QObject* watched) {
    const QPointF outside(-1, -1);
    QMouseEvent release(QEvent::MouseButtonRelease, outside, outside, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(watched, &release);
}

bool TouchGuard::eventFilter(QObject* watched, QEvent* event) {
    if (releasing_)
        return false;
    switch (event->type()) {
    case QEvent::Paint:
        if (watched == &screen_)
            Painted();
        return false;
    case QEvent::ChildAdded:
        if (QObject* child = static_cast<QChildEvent*>(event)->child();
            wholeScreen_ && child->isWidgetType())
            child->installEventFilter(this);
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        dropped_ = Holds();
        return dropped_;
    case QEvent::MouseMove:
        return dropped_;
    case QEvent::MouseButtonRelease: {
        if (!dropped_ && !Holds())
            return false;
        dropped_ = false;
        const QScopedValueRollback releasing(releasing_, true);
        ReleaseOutside(watched);
        return true;
    }
    default:
        return false;
    }
}
