#pragma once

#include <QEvent>
#include <QObject>
#include <QTimer>

namespace platform {

/// Is it the operator's doing: a key, a mouse, a wheel, a touch, a pen?
bool IsInput(QEvent::Type type);

/// Watches the operator's input. After `Count` checks in a row, one each `CheckPeriod`
/// milliseconds, without a key, a click, a move or a touch, it tells once that nobody is there;
/// the next input arms it again.
class ActivityDetection : public QObject {
    Q_OBJECT
public:
    explicit ActivityDetection(QObject* parent = nullptr);

    int CheckPeriod() const { return timer_.interval(); }
    void setCheckPeriod(int milliseconds) { timer_.setInterval(milliseconds); }
    int Count() const { return count_; }
    void setCount(int count) { count_ = count; }
    bool Enabled() const { return timer_.isActive(); }
    /// Switching on starts the count anew.
    void setEnabled(bool on);

    /// One check, as the timer makes it.
    void Check();

Q_SIGNALS:
    void UserIsNotHere();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTimer timer_;
    int count_ = 0;
    int idleChecks_ = 0;
    bool told_ = false;
};

} // namespace platform
