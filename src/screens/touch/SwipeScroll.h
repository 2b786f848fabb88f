#pragma once

#include <QObject>
#include <QPoint>

class QAbstractItemView;
class QAbstractScrollArea;

/// Lets a finger push what a view shows: a swipe scrolls, and only a touch that doesn't move
/// selects the row on which it came down, if the view has rows. Other views must scroll by pixels.
class SwipeScroll : public QObject {
    Q_OBJECT
public:
    explicit SwipeScroll(QAbstractScrollArea& view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Follow(const QPoint& finger);
    void Tap() const;

    QAbstractScrollArea& view_;
    /// The view as one of rows, null for another one.
    QAbstractItemView* rows_;
    bool down_ = false;
    bool swipes_ = false;
    QPoint pressedAt_;
    int pressedValue_ = 0;
};
