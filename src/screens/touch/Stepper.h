#pragma once

#include <QObject>
#include <QString>
#include <functional>

class HoldToRepeat;
class ValueLabel;
class QAbstractButton;

/// A number that two arrows take down and up within bounds, again and again while a finger holds
/// them. An arrow is enabled while it would change something.
class Stepper : public QObject {
    Q_OBJECT
public:
    struct Arrows {
        QAbstractButton* down;
        QAbstractButton* up;
    };

    /// The number is shown in `shown`, with at least so many `digits`. The form hands its taps on
    /// the arrows to `StepBy`, so that an error behind them is told under its name.
    Stepper(HoldToRepeat& repeat, ValueLabel* shown, Arrows arrows, int digits = 1);

    void setBounds(int low, int high);
    int Low() const { return low_; }
    int High() const { return high_; }
    int Value() const { return value_; }
    /// Takes a number, limited to the bounds.
    void setValue(int value);
    /// Down or up by so many.
    void StepBy(int by);

Q_SIGNALS:
    /// The number is another one. `byTouch` is false for a number that the program set.
    void Changed(int value, bool byTouch);

private:
    void Set(int value, bool byTouch);
    void Show();

    ValueLabel* shown_;
    Arrows arrows_;
    int digits_;
    int low_ = 1;
    int high_ = 1;
    int value_ = 1;
};
