#include "screens/touch/HoldToRepeat.h"

#include "core/ErrorHandling.h"
#include "core/Operator.h"

#include <QMouseEvent>
#include <QTimer>
#include <QWidget>

namespace {

/// Wait ahead of the first repeat and between the next ones, milliseconds.
constexpr int FirstRepeat = 1000;
constexpr int NextRepeat = 100;

bool IsPlainPress(const QEvent& event) {
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonDblClick)
        return false;
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    return mouse.button() == Qt::LeftButton &&
           (mouse.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

} // namespace

HoldToRepeat::HoldToRepeat(QWidget* form)
    : QObject(form)
    , tmrRepeat_(new QTimer(this)) {
    tmrRepeat_->setObjectName(QStringLiteral("tmrRepeat"));
    connect(tmrRepeat_, &QTimer::timeout, this, &HoldToRepeat::Repeat);
    form->installEventFilter(this);
}

void HoldToRepeat::Watch(QWidget* button, const std::function<void()>& act) {
    acts_.insert(button, act);
    button->installEventFilter(this);
}

/// A box that comes up, or a form that goes, while a button is held may take the release of the
/// finger: the button must not go on for ever then.
bool HoldToRepeat::eventFilter(QObject* watched, QEvent* event) {
    if (acts_.contains(watched)) {
        if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::Hide) {
            Stop();
        } else if (IsPlainPress(*event)) {
            held_ = watched;
            tmrRepeat_->start(FirstRepeat);
        }
    } else if (watched == parent()) {
        const auto* form = static_cast<QWidget*>(watched);
        const bool inactive = event->type() == QEvent::ActivationChange && !form->isActiveWindow();
        if (inactive || event->type() == QEvent::Hide)
            Stop();
    }
    return QObject::eventFilter(watched, event);
}

void HoldToRepeat::Stop() {
    tmrRepeat_->stop();
    tmrRepeat_->setInterval(0);
    held_ = nullptr;
}

void HoldToRepeat::Repeat() {
    if (held_ == nullptr)
        return;
    tmrRepeat_->setInterval(NextRepeat);
    const QByteArray source =
        (parent()->objectName() + QStringLiteral(".tmrRepeat_Timer")).toLatin1();
    // The finger lies on the button.
    const Operator::Acting acting;
    ErrorHandling::Guard(source.constData(), acts_.value(held_));
}
