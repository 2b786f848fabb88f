#include "screens/touch/Stepper.h"

#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ValueLabel.h"

#include <QAbstractButton>
#include <utility>

Stepper::Stepper(HoldToRepeat& repeat, ValueLabel* shown, Arrows arrows, int digits)
    : QObject(shown)
    , shown_(shown)
    , arrows_(arrows)
    , digits_(digits) {
    repeat.Watch(arrows.down, [this] { StepBy(-1); });
    repeat.Watch(arrows.up, [this] { StepBy(1); });
    Show();
}

void Stepper::setBounds(int low, int high) {
    low_ = low;
    high_ = qMax(low, high);
    setValue(value_);
}

void Stepper::setValue(int value) {
    Set(value, false);
}

void Stepper::StepBy(int by) {
    Set(value_ + by, true);
}

void Stepper::Set(int value, bool byTouch) {
    const int limited = qBound(low_, value, high_);
    const int before = std::exchange(value_, limited);
    Show();
    if (before != limited)
        Q_EMIT Changed(limited, byTouch);
}

void Stepper::Show() {
    shown_->setCaption(QString::number(value_).rightJustified(digits_, u'0'));
    arrows_.down->setEnabled(value_ > low_);
    arrows_.up->setEnabled(value_ < high_);
}
