#pragma once

#include <QObject>
#include <QPoint>

class QAbstractItemView;

/// Lets a finger push the rows of a view: a swipe scrolls, and only a touch that doesn't move
/// selects the row on which it came down.
class SwipeScroll : public QObject {
    Q_OBJECT
public:
    explicit SwipeScroll(QAbstractItemView& view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Follow(const QPoint& finger);
    void Tap() const;

    QAbstractItemView& view_;
    bool down_ = false;
    bool swipes_ = false;
    QPoint pressedAt_;
    int pressedValue_ = 0;
};
