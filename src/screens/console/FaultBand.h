#pragma once

#include "core/Faults.h"

#include <QList>
#include <QWidget>

/// The band of the console for standing faults of the system itself: a picture and words for each.
/// As many as are read from afar stand side by side, the most serious first; the rest is counted at
/// the right end.
class FaultBand : public QWidget {
    Q_OBJECT
public:
    /// Faults side by side.
    static constexpr int MostShown = 2;

    explicit FaultBand(QWidget* parent = nullptr);

    void Present(const QList<Faults::Fault>& faults);
    /// Name of the drawing of a fault in the resources.
    static QString PictureOf(Faults::Kind kind);
    /// Where the words of a shown fault stand; empty for one that is only counted.
    QRect WordsArea(int index) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect Tile(int index) const;
    QRect RestArea() const;
    void PaintFault(QPainter& painter, int index) const;

    QList<Faults::Fault> faults_;
};
