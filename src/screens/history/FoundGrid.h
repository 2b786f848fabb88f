#pragma once

#include "screens/touch/RowGrid.h"

#include <QString>

class HistorySearch;

/// The lines of the history that a search has found, two halves a row, on the colour in which the
/// console shows such an event and with the shape of that state. Only the rows in sight are read.
class FoundGrid : public RowGrid {
    Q_OBJECT
public:
    explicit FoundGrid(QWidget* parent = nullptr);

    /// Shows what `search` finds; it lives as long as the grid.
    void setSearch(const HistorySearch& search) { search_ = &search; }
    /// Begins another list.
    void Restart();
    /// Takes what was found since. The newest line stays selected while nobody looks at another.
    void Grow();
    /// Selects a row and puts it so many rows below the upper edge, as far as there are rows; with
    /// -1 it is brought in sight.
    void GoTo(int row, int below = -1);

    int Count() const { return at_.Count(); }
    /// The selected line in the screen layout, empty without lines.
    QString CurrentLine() const;

    const RowPosition& Position() const override { return at_; }

protected:
    RowPosition& MutablePosition() override { return at_; }
    void PaintRow(QPainter& painter, int row, const QRect& area) const override;

private:
    QString ScreenLine(int row) const;

    const HistorySearch* search_ = nullptr;
    RowPosition at_;
};
