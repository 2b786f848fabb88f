#pragma once

#include <QString>
#include <QWidget>

/// What every window bears at its foot in a rehearsal: hatched in yellow and black, with words that
/// can't be overlooked. A touch on it leads to the simulated modules.
class RehearsalStrip : public QWidget {
    Q_OBJECT
public:
    explicit RehearsalStrip(QWidget* parent);

    /// The longest words that fit.
    QString Words() const;

Q_SIGNALS:
    void Touched();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};
