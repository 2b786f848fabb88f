#pragma once

#include "core/RowPosition.h"

#include <QFont>
#include <QRect>
#include <QWidget>

class QPainter;

/// A list on the screen in a fixed-pitch font: a tap selects a row, a swipe scrolls, the keys of a
/// list move the selection, and a bar at the right edge tells which part is in sight. The font is
/// the largest that shows the columns and the wanted number of rows.
class RowGrid : public QWidget {
    Q_OBJECT
public:
    /// Height of a row, pixels.
    int RowHeight() const { return rowHeight_; }
    virtual const RowPosition& Position() const = 0;
    /// Takes another place with the letters that it has, and keeps these from then on: fewer rows
    /// are seen when it is lower.
    void TakePlace(const QRect& place);

Q_SIGNALS:
    /// Selection or view are new.
    void RowColChange();
    /// A tap has selected a row.
    void Tapped();

protected:
    struct Design {
        /// Characters of a line.
        int columns;
        /// Height of a row in heights of the font.
        double rowPitch;
        /// A large display gets larger letters only as long as so many rows are seen.
        int fewestRows;
        /// Room for a mark left of the text, in heights of the font.
        double markRoom = 0;
    };

    RowGrid(const Design& design, QWidget* parent);

    /// Room left of the text, pixels.
    int LeftMargin() const { return MarginOf(font_.pixelSize()); }
    virtual RowPosition& MutablePosition() = 0;
    /// Draws one row; the font is set.
    virtual void PaintRow(QPainter& painter, int row, const QRect& area) const = 0;
    void FitFont();

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int MarginOf(int pixels) const;
    void FitPage();
    int PlaceAt(int y) const;
    void PaintThumb(QPainter& painter) const;
    void Changed();

    Design design_;
    QFont font_;
    int rowHeight_ = 1;
    bool keepsFont_ = false;
    /// Where the finger came down, and the view then.
    int pressedAt_ = 0;
    int pressedFirst_ = 0;
    bool swipes_ = false;
};
