#include "platform/ActivityDetection.h"

#include <QCoreApplication>

namespace platform {

bool IsInput(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
        return true;
    default:
        return false;
    }
}

ActivityDetection::ActivityDetection(QObject* parent)
    : QObject(parent) {
    connect(&timer_, &QTimer::timeout, this, &ActivityDetection::Check);
}

void ActivityDetection::setEnabled(bool on) {
    idleChecks_ = 0;
    told_ = false;
    // The window system's events pass the application object before any window sees them.
    if (on) {
        qApp->installEventFilter(this);
        timer_.start();
    } else {
        timer_.stop();
        qApp->removeEventFilter(this);
    }
}

void ActivityDetection::Check() {
    if (told_ || ++idleChecks_ < count_)
        return;
    told_ = true;
    Q_EMIT UserIsNotHere();
}

bool ActivityDetection::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (IsInput(event->type())) {
        idleChecks_ = 0;
        told_ = false;
    }
    return false;
}

} // namespace platform
