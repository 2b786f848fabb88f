#pragma once

#include <QList>
#include <QObject>
#include <QWidget>

/// Takes no touch on controls of a screen for a moment after something changed under the finger by
/// itself. A touch that was under way is dropped as well.
class TouchGuard : public QObject {
    Q_OBJECT
public:
    /// Time from the sight of a change to a touch that means it, ms.
    static constexpr qint64 HoldMs = 500;

    /// Guards the screen and all that is on it, or comes up later.
    explicit TouchGuard(QWidget& screen);
    /// Guards some controls of the screen alone.
    TouchGuard(QWidget& screen, const QList<QWidget*>& controls);

    /// Something changed: the time begins when the screen has been painted with it.
    void Hold();
    bool Holds() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Painted();
    static void ReleaseOutside(QObject* watched);

    QWidget& screen_;
    bool wholeScreen_ = false;
    bool unseen_ = false;
    qint64 until_ = 0;
    /// A touch that came down while nothing was taken.
    bool dropped_ = false;
    bool releasing_ = false;
};
