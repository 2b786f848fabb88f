#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <functional>

class QTimer;
class QWidget;

/// Buttons of a form that act again and again while a finger holds them: first after a second, then
/// ten times a second. The touch itself stays the button's own business.
class HoldToRepeat : public QObject {
    Q_OBJECT
public:
    /// Ends with `form`. Its timer is named `tmrRepeat`.
    explicit HoldToRepeat(QWidget* form);

    /// Runs `act` at each repeat of `button`. An error in it is reported under the form.
    void Watch(QWidget* button, const std::function<void()>& act);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Stop();
    void Repeat();

    QTimer* tmrRepeat_;
    QHash<QObject*, std::function<void()>> acts_;
    /// The button that is held, null for none.
    QPointer<QObject> held_;
};
